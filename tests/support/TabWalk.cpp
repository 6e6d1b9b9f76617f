#include "tests/support/TabWalk.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QSet>
#include <QTest>
#include <QWidget>

namespace TestSupport
{

namespace
{

QWidget* deepestProxy(QWidget* widget)
{
    while (widget && widget->focusProxy())
        widget = widget->focusProxy();
    return widget;
}

bool takesTabFocus(const QWidget* widget, const QDialog* dialog)
{
    return (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget->isEnabled() &&
           widget->isVisibleTo(dialog) && widget->window() == dialog;
}

} // namespace

QList<QWidget*> tabStops(const QDialog* dialog)
{
    QList<QWidget*> stops;
    for (QWidget* widget : dialog->findChildren<QWidget*>())
    {
        QWidget* target = deepestProxy(widget);
        if (target && takesTabFocus(target, dialog) && !stops.contains(target))
            stops << target;
    }
    return stops;
}

QList<QWidget*> walkTab(QWidget* start, bool forward, int presses)
{
    QList<QWidget*> focused;
    start->setFocus(Qt::TabFocusReason);
    QWidget* const window = start->window();
    for (int i = 0; i < presses; ++i)
    {
        QWidget* at = QApplication::focusWidget();
        if (!at || at->window() != window)
            break;
        if (forward)
            QTest::keyClick(at, Qt::Key_Tab);
        else
            QTest::keyClick(at, Qt::Key_Backtab, Qt::ShiftModifier);
        QWidget* now = QApplication::focusWidget();
        focused << now;
        if (now == start || !now || now->window() != window)
            break;
    }
    return focused;
}

QStringList tabTraps(QDialog* dialog)
{
    QStringList traps;
    const QList<QWidget*> stops = tabStops(dialog);
    // Twice round the dialog is enough to see every stop from anywhere.
    const int presses = 2 * int(stops.size()) + 2;
    for (QWidget* start : stops)
    {
        for (const bool forward : {true, false})
        {
            const QList<QWidget*> walk = walkTab(start, forward, presses);
            const QSet<QWidget*> reached(walk.cbegin(), walk.cend());
            QStringList missed;
            for (QWidget* stop : stops)
                if (stop != start && !reached.contains(stop))
                    missed << describeWidget(stop);
            if (missed.isEmpty() && QApplication::focusWidget() == start)
                continue;
            QStringList path;
            for (QWidget* w : walk.mid(0, stops.size() + 2))
                path << describeWidget(w);
            const QString fault = missed.isEmpty()
                                      ? QStringLiteral("never comes back")
                                      : QStringLiteral("misses %1").arg(missed.join(QStringLiteral(", ")));
            traps << QStringLiteral("%1 from %2 %3; focus went %4")
                         .arg(forward ? QStringLiteral("Tab") : QStringLiteral("Shift+Tab"),
                              describeWidget(start), fault, path.join(QStringLiteral(" > ")));
        }
    }
    return traps;
}

QString describeWidget(const QWidget* widget)
{
    if (!widget)
        return QStringLiteral("nothing");
    QString text = QString::fromLatin1(widget->metaObject()->className());
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        if (!button->text().isEmpty())
            text += QStringLiteral(" '%1'").arg(button->text());
    if (!widget->objectName().isEmpty())
        text += QStringLiteral(" %1").arg(widget->objectName());
    // The dialogs' controls carry their resource id; the nearest id names a control's part.
    for (const QWidget* w = widget; w; w = w->parentWidget())
    {
        const QVariant id = w->property("controlId");
        if (id.isValid())
        {
            text += QStringLiteral(" (id %1)").arg(id.toInt());
            break;
        }
    }
    return text;
}

} // namespace TestSupport
