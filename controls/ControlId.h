#pragma once

class QWidget;

// Every control of a dialog carries the id of its dialog-table entry as the dynamic property
// "controlId" (int), so code and tests find controls by the same ids as the dialog table.
inline constexpr char kControlIdProperty[] = "controlId";

void setControlId(QWidget* widget, int id);
// The id of `widget`, or -1 when it has none.
int controlId(const QWidget* widget);
// The first descendant of `root` (depth first, in child order) with this id, or null.
QWidget* findControlById(const QWidget* root, int id);
