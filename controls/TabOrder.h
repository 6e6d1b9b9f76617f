#pragma once

#include <initializer_list>

class QWidget;

namespace ZEVGis::Utility
{

// Sets the Tab order of `controls` (nulls skipped) as QWidget::setTabOrder does pair by pair,
// but keeps each compound control whole. Qt moves a control only up to its last part that
// takes the focus: parts that take none but pass it on (a tree's viewport) stayed behind,
// after the last control, where Shift+Tab from the first control went back into the compound.
void SetTabOrder(std::initializer_list<QWidget*> controls);

} // namespace ZEVGis::Utility
