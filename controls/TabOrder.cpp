#include "controls/TabOrder.h"

#include <QWidget>
#include <utility>
#include <vector>

namespace ZEVGis::Utility
{

namespace
{

// While alive, every part of the given controls takes the focus by Tab, so Qt counts all of
// them as the control's own; the policies are put back afterwards.
class WholeControls
{
public:
    explicit WholeControls(std::initializer_list<QWidget*> controls)
    {
        // The controls themselves too: a part's policy also goes to its focus proxy.
        for (QWidget* control : controls)
        {
            if (!control)
                continue;
            m_policies.emplace_back(control, control->focusPolicy());
            for (QWidget* part : control->findChildren<QWidget*>())
                if (!part->isWindow())
                    m_policies.emplace_back(part, part->focusPolicy());
        }
        for (const auto& [part, policy] : m_policies)
            if (policy == Qt::NoFocus)
                part->setFocusPolicy(Qt::TabFocus);
    }

    ~WholeControls()
    {
        // A policy given to a part also goes to its focus proxy: the parts with a proxy get
        // theirs back first, then the proxies get their own.
        for (const bool withProxy : {true, false})
            for (const auto& [part, policy] : m_policies)
                if ((part->focusProxy() != nullptr) == withProxy)
                    part->setFocusPolicy(policy);
    }

    WholeControls(const WholeControls&) = delete;
    WholeControls& operator=(const WholeControls&) = delete;

private:
    std::vector<std::pair<QWidget*, Qt::FocusPolicy>> m_policies;
};

} // namespace

void SetTabOrder(std::initializer_list<QWidget*> controls)
{
    const WholeControls whole(controls);
    QWidget* previous = nullptr;
    for (QWidget* control : controls)
    {
        if (!control)
            continue;
        if (previous)
            QWidget::setTabOrder(previous, control);
        previous = control;
    }
}

} // namespace ZEVGis::Utility
