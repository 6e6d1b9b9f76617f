#include "controls/WindowPlacement.h"

#include <QSettings>

namespace ZEVGis::Utility
{

namespace
{

qint64 Area(const QRect& rect)
{
    return rect.isValid() ? qint64(rect.width()) * rect.height() : 0;
}

// The program's own settings file, not the organisation-wide one: the program names no
// organisation, and its data folder must stay where it is.
QSettings ProgramSettings()
{
    return QSettings(QSettings::NativeFormat, QSettings::UserScope,
                     QStringLiteral("zevxcatalogeditor"), QStringLiteral("placement"));
}

} // namespace

QRect FitOnScreens(const QRect& saved, const QSize& minimum, const QList<QRect>& screens)
{
    QRect fitted(saved.topLeft(), saved.size().expandedTo(minimum));
    if (screens.isEmpty())
        return fitted;
    QRect screen = screens.first();
    qint64 best = 0;
    for (const QRect& candidate : screens)
    {
        const qint64 overlap = Area(candidate.intersected(fitted));
        if (overlap > best)
        {
            best = overlap;
            screen = candidate;
        }
    }
    fitted.setSize(fitted.size().boundedTo(screen.size()).expandedTo(minimum));
    // Too wide or too tall for the screen even at the minimum: the top left corner shows,
    // with the title bar and the first controls.
    const int left = qMax(screen.left(), qMin(fitted.left(), screen.right() + 1 - fitted.width()));
    const int top = qMax(screen.top(), qMin(fitted.top(), screen.bottom() + 1 - fitted.height()));
    fitted.moveTopLeft(QPoint(left, top));
    return fitted;
}

bool LoadWindowPlacement(const QString& key, WindowPlacement& placement)
{
    QSettings settings = ProgramSettings();
    settings.beginGroup(key);
    const QRect geometry = settings.value(QStringLiteral("geometry")).toRect();
    if (!geometry.isValid())
        return false;
    placement.geometry = geometry;
    placement.maximized = settings.value(QStringLiteral("maximized"), false).toBool();
    placement.splitterOffset = settings.value(QStringLiteral("splitter"), 0).toInt();
    return true;
}

void SaveWindowPlacement(const QString& key, const WindowPlacement& placement)
{
    QSettings settings = ProgramSettings();
    settings.beginGroup(key);
    settings.setValue(QStringLiteral("geometry"), placement.geometry);
    settings.setValue(QStringLiteral("maximized"), placement.maximized);
    settings.setValue(QStringLiteral("splitter"), placement.splitterOffset);
}

} // namespace ZEVGis::Utility
