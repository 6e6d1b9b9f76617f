// The dialog's size, place and splitter kept between runs (the standalone program asks for it).
#include "editor/CatalogEditorDlg.h"

#include "controls/ResizeAnchors.h"
#include "controls/SplitterControl.h"
#include "controls/WindowPlacement.h"

#include <QGuiApplication>
#include <QScreen>

using namespace ZEVGis;

namespace
{
const QString PlacementKey = QStringLiteral("CatalogEditor");
}

void CCatalogEditorDlg::SetRememberPlacement(bool remember)
{
    m_rememberPlacement = remember;
}

void CCatalogEditorDlg::RestorePlacement()
{
    Utility::WindowPlacement placement;
    if (!m_rememberPlacement || !Utility::LoadWindowPlacement(PlacementKey, placement))
        return;
    QList<QRect> screens;
    if (QScreen* primary = QGuiApplication::primaryScreen())
        screens << primary->availableGeometry();
    for (QScreen* screen : QGuiApplication::screens())
        if (!screens.contains(screen->availableGeometry()))
            screens << screen->availableGeometry();
    setGeometry(Utility::FitOnScreens(placement.geometry, minimumSize(), screens));
    // A dialog not shown yet hears of its new size only when shown: place the controls now,
    // so the splitter moves from where the layout puts it for this size.
    if (m_anchors)
        m_anchors->apply();
    KeepSplitterRangeWithBar();
    MoveSplitterBy(placement.splitterOffset);
    if (placement.maximized)
        setWindowState(windowState() | Qt::WindowMaximized);
}

void CCatalogEditorDlg::SavePlacement()
{
    if (!m_rememberPlacement || !m_initOk)
        return;
    Utility::WindowPlacement placement;
    placement.maximized = isMaximized();
    placement.geometry = placement.maximized ? normalGeometry() : geometry();
    if (m_splitter)
        placement.splitterOffset = m_splitter->geometry().center().y() -
                                   (m_splitter->minimum() + m_splitter->maximum()) / 2;
    Utility::SaveWindowPlacement(PlacementKey, placement);
}

// Moves the bar as a drag by `delta` pixels would, within its range.
void CCatalogEditorDlg::MoveSplitterBy(int delta)
{
    if (!m_splitter)
        return;
    const int centre = m_splitter->geometry().center().y();
    delta = qBound(m_splitter->minimum(), centre + delta, m_splitter->maximum()) - centre;
    if (delta == 0)
        return;
    m_splitter->MoveWindowTo(QPoint(0, centre + delta));
    OnSplitterMoved(delta);
}

void CCatalogEditorDlg::done(int result)
{
    SavePlacement();
    QDialog::done(result);
}
