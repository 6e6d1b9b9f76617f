#include "controls/ZEVBitmapButton.h"

namespace ZEVGis::Utility
{

CZEVBitmapButton::CZEVBitmapButton(QWidget* parent) : CZEVBitmapButton(QString(), parent) {}

CZEVBitmapButton::CZEVBitmapButton(const QString& text, QWidget* parent) : QToolButton(parent)
{
    setText(text);
    setAccessibleName(text);
    // Icon only; a tool button falls back to its text while the icon is null.
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    setIconSize(QSize(kIconSize, kIconSize));
    setAutoRaise(false);
    // Reachable with Tab and by click, like every dialog button.
    setFocusPolicy(Qt::StrongFocus);
}

CZEVBitmapButton::~CZEVBitmapButton() = default;

void CZEVBitmapButton::SetToolTip(const QString& text)
{
    setToolTip(text);
}

void CZEVBitmapButton::SetIcon(const QIcon& icon)
{
    setIcon(icon);
}

} // namespace ZEVGis::Utility
