#pragma once

#include "controls/ControlId.h"

#include <QWidget>

// The control of `dialog` whose "controlId" property is `id`, as a T; null when there is none
// or it is of another kind.
template <typename T> T* findControl(const QWidget* dialog, int id)
{
    return qobject_cast<T*>(findControlById(dialog, id));
}
