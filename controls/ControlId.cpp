#include "controls/ControlId.h"

#include <QVariant>
#include <QWidget>

void setControlId(QWidget* widget, int id)
{
    if (widget)
        widget->setProperty(kControlIdProperty, id);
}

int controlId(const QWidget* widget)
{
    if (!widget)
        return -1;
    bool ok = false;
    const int id = widget->property(kControlIdProperty).toInt(&ok);
    return ok ? id : -1;
}

QWidget* findControlById(const QWidget* root, int id)
{
    if (!root)
        return nullptr;
    for (QObject* child : root->children())
    {
        auto* widget = qobject_cast<QWidget*>(child);
        if (!widget)
            continue;
        if (controlId(widget) == id)
            return widget;
        if (QWidget* found = findControlById(widget, id))
            return found;
    }
    return nullptr;
}
