#include "controls/ResizeAnchors.h"

#include "controls/ControlId.h"

#include <QEvent>
#include <QWidget>
#include <algorithm>
#include <cmath>

CResizeAnchors::CResizeAnchors(QWidget* dialog) : QObject(dialog), m_dialog(dialog)
{
    if (m_dialog)
        m_dialog->installEventFilter(this);
    Init();
}

CResizeAnchors::~CResizeAnchors()
{
    if (m_dialog)
        m_dialog->removeEventFilter(this);
}

void CResizeAnchors::Init()
{
    m_initialSize = m_dialog ? m_dialog->size() : QSize();
    m_lastGrowth = QSize(0, 0);
    // Controls anchored before keep their current place as their place without growth.
    for (Anchor& anchor : m_anchors)
        rebase(anchor, QSize(0, 0));
}

QSize CResizeAnchors::growth() const
{
    if (!m_dialog)
        return QSize(0, 0);
    return m_dialog->size() - m_initialSize;
}

bool CResizeAnchors::setResize(QWidget* control, double left, double top, double right,
                               double bottom)
{
    if (!control)
        return false;
    auto it = std::find_if(m_anchors.begin(), m_anchors.end(),
                           [control](const Anchor& a) { return a.control == control; });
    if (it == m_anchors.end())
    {
        m_anchors.push_back(Anchor{});
        it = std::prev(m_anchors.end());
        it->control = control;
    }
    it->left = left;
    it->top = top;
    it->right = right;
    it->bottom = bottom;
    it->lastPlaced = QRect();
    rebase(*it, growth());
    return true;
}

bool CResizeAnchors::setResize(int id, double left, double top, double right, double bottom)
{
    return setResize(findControlById(m_dialog, id), left, top, right, bottom);
}

void CResizeAnchors::removeResize(QWidget* control)
{
    std::erase_if(m_anchors, [control](const Anchor& a) { return a.control == control; });
}

// Works out where the control would sit without growth, from where it sits now and the
// growth it was last placed for.
void CResizeAnchors::rebase(Anchor& anchor, const QSize& atGrowth) const
{
    if (!anchor.control)
        return;
    const QRect g = anchor.control->geometry();
    anchor.x0 = g.x() - anchor.left * atGrowth.width();
    anchor.y0 = g.y() - anchor.top * atGrowth.height();
    anchor.x1 = g.x() + g.width() - anchor.right * atGrowth.width();
    anchor.y1 = g.y() + g.height() - anchor.bottom * atGrowth.height();
    anchor.lastPlaced = g;
}

QRect CResizeAnchors::place(const Anchor& anchor, const QSize& growth)
{
    const int x0 = int(std::lround(anchor.x0 + anchor.left * growth.width()));
    const int y0 = int(std::lround(anchor.y0 + anchor.top * growth.height()));
    const int x1 = int(std::lround(anchor.x1 + anchor.right * growth.width()));
    const int y1 = int(std::lround(anchor.y1 + anchor.bottom * growth.height()));
    return QRect(x0, y0, std::max(0, x1 - x0), std::max(0, y1 - y0));
}

void CResizeAnchors::apply()
{
    std::erase_if(m_anchors, [](const Anchor& a) { return a.control.isNull(); });
    const QSize now = growth();
    for (Anchor& anchor : m_anchors)
    {
        // Moved by someone else since we placed it (a splitter): start from there.
        if (anchor.control->geometry() != anchor.lastPlaced)
            rebase(anchor, m_lastGrowth);
        const QRect target = place(anchor, now);
        if (target != anchor.control->geometry())
            anchor.control->setGeometry(target);
        anchor.lastPlaced = anchor.control->geometry();
    }
    m_lastGrowth = now;
}

bool CResizeAnchors::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_dialog && event->type() == QEvent::Resize)
        apply();
    return QObject::eventFilter(watched, event);
}
