#pragma once

#include <QList>
#include <QRect>
#include <QSize>
#include <QString>

namespace ZEVGis::Utility
{

// Where a window last placed on `saved` goes back to: at least `minimum` large, moved (and
// shrunk, never below `minimum`, when it does not fit) into the screen area it overlaps most,
// or into the first of `screens` when it overlaps none. `saved` as it is when no screen is
// known.
QRect FitOnScreens(const QRect& saved, const QSize& minimum, const QList<QRect>& screens);

// A dialog's place kept between runs of the standalone program, in the user's settings.
struct WindowPlacement
{
    QRect geometry; // the dialog's client area, screen coordinates
    bool maximized = false;
    int splitterOffset = 0; // the splitter bar's distance from where the layout puts it
};

// The placement saved under `key`; false when none was saved.
bool LoadWindowPlacement(const QString& key, WindowPlacement& placement);
void SaveWindowPlacement(const QString& key, const WindowPlacement& placement);

} // namespace ZEVGis::Utility
