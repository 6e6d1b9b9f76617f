#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <vector>

class QWidget;

// Keeps a dialog's controls in place while the dialog is resized. Each control gets four
// anchors: the share of the dialog's growth (beyond the size it had when the anchors were
// set up) that its left, top, right and bottom edges follow. 0 keeps an edge where it was,
// 1 moves it with the dialog's right or bottom edge, 0.5 by half the growth.
//
// The helper watches the dialog's resize events itself, so dialogs hold no layout
// arithmetic of their own. A control moved by someone else in between (a splitter) keeps
// its new place: the next resize starts from there.
class CResizeAnchors : public QObject
{
    Q_OBJECT
public:
    // Takes the dialog's current size as the size without growth.
    explicit CResizeAnchors(QWidget* dialog);
    ~CResizeAnchors() override;

    // Takes the dialog's current size again as the size without growth (call once the
    // dialog has its initial size, before the first setResize).
    void Init();

    // Anchors `control` (a child of the dialog). A control anchored twice keeps the last
    // anchors. Returns false for a null control.
    bool setResize(QWidget* control, double left, double top, double right, double bottom);
    // The same for the dialog's child whose controlId is `controlId`; false when none.
    bool setResize(int controlId, double left, double top, double right, double bottom);
    void removeResize(QWidget* control);

    // Places every anchored control for the dialog's current size (done on every resize).
    void apply();

    QSize initialSize() const { return m_initialSize; }
    QWidget* dialog() const { return m_dialog; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Anchor
    {
        QPointer<QWidget> control;
        double left = 0, top = 0, right = 0, bottom = 0;
        // Edges (right and bottom exclusive) the control would have without growth.
        double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
        QRect lastPlaced;
    };

    QSize growth() const;
    void rebase(Anchor& anchor, const QSize& growth) const;
    static QRect place(const Anchor& anchor, const QSize& growth);

    QPointer<QWidget> m_dialog;
    QSize m_initialSize;
    QSize m_lastGrowth;
    std::vector<Anchor> m_anchors;
};
