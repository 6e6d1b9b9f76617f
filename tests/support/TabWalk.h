#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QDialog;
class QWidget;

// Keyboard walks through a dialog, for tests of any dialog: Tab and Shift+Tab pressed as a
// user would, on whatever has the focus, with the application's own focus handling.
namespace TestSupport
{

// The widgets of `dialog` that Tab can give the focus to: enabled, shown, in the dialog's own
// window and taking focus by Tab. A compound control counts as the widget its focus goes to.
QList<QWidget*> tabStops(const QDialog* dialog);

// Gives `start` the focus, then presses Tab (`forward`) or Shift+Tab until the focus comes
// back to `start`, leaves the dialog or `presses` keys were pressed. The widgets that had the
// focus after each press, in turn (null where nothing had it).
QList<QWidget*> walkTab(QWidget* start, bool forward, int presses);

// From each of the dialog's tab stops, Tab and Shift+Tab each reach every other stop. Empty
// when they do; else one line per start and direction naming what was not reached. The dialog
// must be shown and active.
QStringList tabTraps(QDialog* dialog);

// "QPushButton 'OK' (id 1)": a widget as a failure message names it.
QString describeWidget(const QWidget* widget);

} // namespace TestSupport
