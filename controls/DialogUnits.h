#pragma once

#include "controls/ControlId.h"

#include <QRect>
#include <QWidget>

// Dialog units of the module's templates in pixels: the scale the catalog editor's template
// (670 x 434 units at 1013 x 735 pixels) gives, used by every dialog so they match.
inline constexpr double kDialogUnitX = 1013.0 / 670.0;
inline constexpr double kDialogUnitY = 735.0 / 434.0;

// The pixel rectangle of a template rectangle (x, y, w, h in dialog units); edges are rounded,
// so neighbours that touch in units touch in pixels.
inline QRect DialogUnitsToPixels(int x, int y, int w, int h)
{
    const int left = int(x * kDialogUnitX + 0.5);
    const int top = int(y * kDialogUnitY + 0.5);
    return QRect(left, top, int((x + w) * kDialogUnitX + 0.5) - left,
                 int((y + h) * kDialogUnitY + 0.5) - top);
}

// One control of a dialog template: its control id and rectangle in dialog units.
struct TemplatePlacement
{
    int id;
    int x, y, w, h;
};

// Puts every control of `dialog` named in `placements` (by control id) at its place.
template <typename Placements>
void PlaceTemplateControls(QWidget* dialog, const Placements& placements)
{
    for (const TemplatePlacement& p : placements)
        if (QWidget* control = findControlById(dialog, p.id))
            control->setGeometry(DialogUnitsToPixels(p.x, p.y, p.w, p.h));
}
