#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QPixmap>

class QWidget;

// The check-box pictures of a tree's state images: unchecked, checked and tri-state, each
// normal and disabled, once more with the hover look for the enabled ones. Image n is cell n
// of the strip (x = n * size); cells 0, 4, 8, 12 and 16 hold only the background.
struct CStateImageList
{
    int size = 0;
    QImage strip;          // 17 cells side by side
    QList<QPixmap> images; // the 17 cells, magenta pixels transparent

    static constexpr int kCount = 17;
    bool isNull() const { return images.isEmpty(); }
};

// Fills `images` with the pictures drawn for `widget` at `size` x `size` pixels on
// `background`. A magenta (#FF00FF) background becomes transparent in the images; any other
// colour stays visible round each check box. Returns false, with `images` untouched, when
// there is no widget, size is below 1 or the pictures cannot be made.
//
// The look: with themes on (the default) the check boxes come from the widget's own style;
// with themes off from the classic "Windows" style that Qt carries on every platform
// (falling back to "Fusion" and then to the common style). Normal, hot and disabled map to
// the style states enabled, enabled with mouse-over and not enabled; the classic flat frame
// has no counterpart in Qt's styles.
bool CreateStateImages(const QWidget* widget, CStateImageList& images, int size,
                       const QColor& background);

// Whether the themed look is used; stands for the system's theme switch.
void SetStateImageThemesEnabled(bool enabled);
bool StateImageThemesEnabled();
