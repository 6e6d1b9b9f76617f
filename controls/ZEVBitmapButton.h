#pragma once

#include <QToolButton>

namespace ZEVGis::Utility
{

// A push button that shows a 24 x 24 icon. The button keeps the text it was given (the
// dialog table's text, such as "NEW") as its text and accessible name; the text is drawn
// only while the button has no icon.
class CZEVBitmapButton : public QToolButton
{
    Q_OBJECT
public:
    // `parent` is the owning dialog.
    explicit CZEVBitmapButton(QWidget* parent = nullptr);
    CZEVBitmapButton(const QString& text, QWidget* parent);
    ~CZEVBitmapButton() override;

    void SetToolTip(const QString& text);
    void SetIcon(const QIcon& icon);

    static constexpr int kIconSize = 24;
};

} // namespace ZEVGis::Utility
