#pragma once

#include <QPoint>
#include <QPointer>
#include <QWidget>

class SplitterTrackingLine;

// A thin bar that the user drags to share space between the controls on either side of it.
// While the left button is held the bar stays put and a tracking line follows the mouse
// within the range; on release the bar moves there and splitterMoved() tells the owner by
// how many pixels. The owner then lays out its controls with the static helpers.
class CSplitterControl : public QWidget
{
    Q_OBJECT
public:
    enum Type
    {
        SplitterVertical = 1,  // moves left and right
        SplitterHorizontal = 2 // moves up and down
    };
    // The code of the "moved" notification; splitterMoved() carries it as a Qt signal.
    static constexpr int SplitterMoved = 0x401;
    static constexpr int kThickness = 5;
    // Which edge ChangeWidth / ChangeHeight move.
    enum Edge
    {
        RightEdge = 1,
        LeftEdge = 2,
        BottomEdge = 3,
        TopEdge = 4
    };
    // The style bit that makes the bar visible at creation.
    static constexpr unsigned kStyleVisible = 0x10000000;

    explicit CSplitterControl(QWidget* parent = nullptr);
    ~CSplitterControl() override;

    // Places the bar on `rect` (parent coordinates) in `parent` with controlId `id`. A rect
    // at least as wide as high makes a horizontal bar, else a vertical one; the thickness is
    // forced to 5 pixels. The range is the bar's centre alone until SetRange is called, so
    // the bar cannot move. Non-zero on success.
    int Create(unsigned style, const QRect& rect, QWidget* parent, int id);

    int SetType(int type);
    int GetType() const { return m_type; }
    void SetRange(int minimum, int maximum);
    // root < 0: the bar's current centre on its axis, in screen coordinates.
    void SetRange(int subtraction, int addition, int root);
    int minimum() const { return m_minimum; }
    int maximum() const { return m_maximum; }
    bool isPressed() const { return m_pressed; }
    QPoint trackingPoint() const { return m_tracking; }

    // Moves the bar so that its centre on its axis lies at `point` (parent coordinates).
    void MoveWindowTo(const QPoint& point);

    // Owner helpers, in the parent's coordinates; they do nothing for a window without a
    // parent.
    static void ChangeWidth(QWidget* window, int dx, int edge);
    static void ChangeHeight(QWidget* window, int dy, int edge);
    // Offsets the window by -dx horizontally and +dy vertically: a positive dx moves it left.
    static void ChangePos(QWidget* window, int dx, int dy);

signals:
    // After a drag: the bar's controlId and the pixels it moved (positive: right or down).
    void splitterMoved(int controlId, int delta);

protected:
    // Toggles the tracking line at (x, y), screen coordinates: drawing it twice at the same
    // place removes it, as the owner's screen was before.
    virtual void DrawLine(int x, int y);

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QRect screenRect() const;
    int screenCentre() const;
    void applyCursor();

    bool m_pressed = false;
    int m_type = 0;
    QPoint m_tracking;
    int m_minimum = 0;
    int m_maximum = 0;
    int m_start = 0;
    QPointer<SplitterTrackingLine> m_line;
};
