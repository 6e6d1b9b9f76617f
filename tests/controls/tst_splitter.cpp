#include "controls/ControlId.h"
#include "controls/SplitterControl.h"

#include <QSignalSpy>
#include <QTest>

namespace
{

// Shows `window` with a 400 x 400 panel in it whose origin lies at `origin` on the screen
// (the window system decides where the window itself goes).
QWidget* panelAt(QWidget& window, const QPoint& origin)
{
    window.resize(500, 500);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return nullptr;
    auto* panel = new QWidget(&window);
    panel->setGeometry(QRect(origin - window.mapToGlobal(QPoint(0, 0)), QSize(400, 400)));
    panel->show();
    return panel;
}

QRgb pixel(QWidget* widget, int x, int y)
{
    return widget->grab().toImage().pixel(x, y);
}

} // namespace

class TestSplitter : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*")); }

    void createChoosesTypeAndThickness_data()
    {
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<int>("type");
        QTest::addColumn<QRect>("geometry");
        QTest::newRow("wide") << QRect(10, 100, 300, 20)
                              << int(CSplitterControl::SplitterHorizontal)
                              << QRect(10, 100, 300, 5);
        QTest::newRow("square") << QRect(10, 100, 8, 8) << int(CSplitterControl::SplitterHorizontal)
                                << QRect(10, 100, 8, 5);
        QTest::newRow("tall") << QRect(40, 10, 6, 200) << int(CSplitterControl::SplitterVertical)
                              << QRect(40, 10, 5, 200);
    }
    void createChoosesTypeAndThickness()
    {
        QFETCH(QRect, rect);
        QFETCH(int, type);
        QFETCH(QRect, geometry);
        QWidget window;
        CSplitterControl bar;
        QCOMPARE(bar.Create(0x50000000, rect, &window, 115), 1);
        QCOMPARE(bar.GetType(), type);
        QCOMPARE(bar.geometry(), geometry);
        QCOMPARE(controlId(&bar), 115);
        QCOMPARE(bar.cursor().shape(), type == CSplitterControl::SplitterVertical
                                           ? Qt::SizeHorCursor
                                           : Qt::SizeVerCursor);
        // Until a range is set the bar can only stay where it is.
        QCOMPARE(bar.minimum(), bar.maximum());
        QCOMPARE(bar.SetType(CSplitterControl::SplitterVertical), type);
        QCOMPARE(CSplitterControl().Create(0, rect, nullptr, 1), 0);
    }

    // Drags the bar by `moveBy` pixels from its centre along its axis and releases it.
    void dragMovesWithinRange_data()
    {
        QTest::addColumn<bool>("vertical");
        QTest::addColumn<int>("windowOffset");
        QTest::addColumn<bool>("setRange");
        QTest::addColumn<int>("moveBy");
        QTest::addColumn<int>("delta");
        QTest::newRow("within down") << false << 0 << true << 7 << 7;
        QTest::newRow("within up") << false << 0 << true << -12 << -12;
        QTest::newRow("beyond down") << false << 0 << true << 100 << 20;
        QTest::newRow("beyond up") << false << 0 << true << -100 << -20;
        QTest::newRow("no move") << false << 0 << true << 0 << 0;
        QTest::newRow("range never set") << false << 0 << false << 30 << 0;
        QTest::newRow("vertical beyond right") << true << 0 << true << 60 << 20;
        QTest::newRow("vertical within left") << true << 0 << true << -5 << -5;
        // The default root is a screen coordinate while the clamping works in the window's
        // coordinates: with the window 50 pixels down the range lies 50 pixels lower.
        QTest::newRow("offset window small move") << false << 50 << true << 1 << 30;
        QTest::newRow("offset window big move") << false << 50 << true << 100 << 70;
    }
    void dragMovesWithinRange()
    {
        QFETCH(bool, vertical);
        QFETCH(int, windowOffset);
        QFETCH(bool, setRange);
        QFETCH(int, moveBy);
        QFETCH(int, delta);
        QWidget window;
        CSplitterControl bar;
        QWidget* panel = panelAt(window, QPoint(windowOffset, windowOffset));
        QVERIFY(panel);
        QCOMPARE(panel->mapToGlobal(QPoint(0, 0)), QPoint(windowOffset, windowOffset));
        const QRect rect = vertical ? QRect(200, 20, 5, 300) : QRect(20, 200, 300, 5);
        QVERIFY(bar.Create(0x50000000, rect, panel, 115));
        if (setRange)
            bar.SetRange(20, 20, -1);
        QSignalSpy moved(&bar, &CSplitterControl::splitterMoved);
        const QRect before = bar.geometry();

        const QPoint centre(2, 2);
        const QPoint step = vertical ? QPoint(moveBy, 0) : QPoint(0, moveBy);
        QTest::mousePress(&bar, Qt::LeftButton, {}, centre);
        QVERIFY(bar.isPressed());
        QTest::mouseMove(&bar, centre + step);
        QVERIFY(moved.isEmpty());
        QCOMPARE(bar.geometry(), before);
        QTest::mouseRelease(&bar, Qt::LeftButton, {}, centre + step);

        QVERIFY(!bar.isPressed());
        QCOMPARE(moved.size(), 1);
        QCOMPARE(moved.at(0).at(0).toInt(), 115);
        QCOMPARE(moved.at(0).at(1).toInt(), delta);
        const QPoint shift = vertical ? QPoint(delta, 0) : QPoint(0, delta);
        QCOMPARE(bar.geometry(), before.translated(shift));
    }

    void trackingLineFollowsMouse()
    {
        QWidget window;
        QWidget* panel = panelAt(window, QPoint(0, 0));
        QVERIFY(panel);
        CSplitterControl bar;
        QVERIFY(bar.Create(0x50000000, QRect(20, 200, 300, 5), panel, 115));
        // The line is drawn over the whole window, which may lie elsewhere on the screen.
        const QPoint screenToWindow = -window.mapToGlobal(QPoint(0, 0));
        bar.SetRange(50, 50, -1);
        auto line = [&window] { return window.findChild<QWidget*>("splitterTrackingLine"); };

        QTest::mousePress(&bar, Qt::LeftButton, {}, QPoint(5, 2));
        QVERIFY(line() && line()->isVisible());
        QCOMPARE(line()->geometry(), QRect(20, 201, 300, 3).translated(screenToWindow));
        QTest::mouseMove(&bar, QPoint(5, 2 + 30));
        QCOMPARE(line()->geometry(), QRect(20, 231, 300, 3).translated(screenToWindow));
        QCOMPARE(bar.trackingPoint().y(), 232);

        const QImage shot = window.grab().toImage();
        const QPoint at = QPoint(100, 232) + screenToWindow;
        QCOMPARE(shot.pixel(at - QPoint(0, 1)), qRgb(200, 200, 200));
        QCOMPARE(shot.pixel(at + QPoint(0, 1)), qRgb(200, 200, 200));
        QVERIFY(shot.pixel(at) != qRgb(200, 200, 200));

        QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(5, 32));
        QVERIFY(!line()->isVisible());
        QCOMPARE(bar.geometry(), QRect(20, 230, 300, 5));
    }

    void rightButtonDoesNothing()
    {
        QWidget window;
        CSplitterControl bar;
        QVERIFY(bar.Create(0x50000000, QRect(20, 200, 300, 5), &window, 115));
        bar.SetRange(20, 20, -1);
        QSignalSpy moved(&bar, &CSplitterControl::splitterMoved);
        QTest::mousePress(&bar, Qt::RightButton, {}, QPoint(2, 2));
        QTest::mouseRelease(&bar, Qt::RightButton, {}, QPoint(2, 12));
        QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(2, 12));
        QVERIFY(moved.isEmpty());
    }

    void moveWindowToCentresBar()
    {
        QWidget window;
        CSplitterControl bar;
        QVERIFY(bar.Create(0x50000000, QRect(20, 200, 300, 5), &window, 115));
        bar.MoveWindowTo(QPoint(999, 300));
        // (200 + 205) / 2 = 202 is moved to 300.
        QCOMPARE(bar.geometry(), QRect(20, 298, 300, 5));
        bar.SetType(CSplitterControl::SplitterVertical);
        bar.MoveWindowTo(QPoint(100, 0));
        // (20 + 320) / 2 = 170 is moved to 100.
        QCOMPARE(bar.geometry(), QRect(-50, 298, 300, 5));
    }

    void ownerHelpers_data()
    {
        QTest::addColumn<QString>("helper");
        QTest::addColumn<int>("a");
        QTest::addColumn<int>("b");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("width right") << "width" << 10 << 1 << QRect(100, 100, 60, 40);
        QTest::newRow("width left") << "width" << 10 << 2 << QRect(90, 100, 60, 40);
        QTest::newRow("width other side") << "width" << 10 << 3 << QRect(100, 100, 50, 40);
        QTest::newRow("height bottom") << "height" << 10 << 3 << QRect(100, 100, 50, 50);
        QTest::newRow("height top") << "height" << 10 << 4 << QRect(100, 90, 50, 50);
        QTest::newRow("height top shrinks") << "height" << -10 << 4 << QRect(100, 110, 50, 30);
        QTest::newRow("height other side") << "height" << 10 << 1 << QRect(100, 100, 50, 40);
        QTest::newRow("pos left") << "pos" << 10 << 0 << QRect(90, 100, 50, 40);
        QTest::newRow("pos right and down") << "pos" << -5 << 7 << QRect(105, 107, 50, 40);
    }
    void ownerHelpers()
    {
        QFETCH(QString, helper);
        QFETCH(int, a);
        QFETCH(int, b);
        QFETCH(QRect, expected);
        auto apply = [&](QWidget* w)
        {
            if (helper == "width")
                CSplitterControl::ChangeWidth(w, a, b);
            else if (helper == "height")
                CSplitterControl::ChangeHeight(w, a, b);
            else
                CSplitterControl::ChangePos(w, a, b);
        };
        QWidget window;
        auto* child = new QWidget(&window);
        child->setGeometry(100, 100, 50, 40);
        apply(child);
        QCOMPARE(child->geometry(), expected);

        QWidget orphan;
        orphan.setGeometry(100, 100, 50, 40);
        apply(&orphan);
        QCOMPARE(orphan.geometry(), QRect(100, 100, 50, 40));
        apply(nullptr);
    }

    void paintsFrameAndFill()
    {
        QWidget window;
        CSplitterControl bar;
        QVERIFY(bar.Create(0x50000000, QRect(0, 0, 40, 5), &window, 115));
        const QRgb light = bar.palette().color(QPalette::Light).rgb();
        const QRgb shadow = bar.palette().color(QPalette::Dark).rgb();
        QCOMPARE(pixel(&bar, 20, 0), light);
        QCOMPARE(pixel(&bar, 0, 2), light);
        QCOMPARE(pixel(&bar, 20, 4), shadow);
        QCOMPARE(pixel(&bar, 39, 2), shadow);
        QCOMPARE(pixel(&bar, 39, 0), shadow);
        QCOMPARE(pixel(&bar, 20, 1), qRgb(200, 200, 200));
        QCOMPARE(pixel(&bar, 1, 2), qRgb(200, 200, 200));
        QCOMPARE(pixel(&bar, 20, 3), qRgb(200, 200, 200));
        QCOMPARE(pixel(&bar, 38, 2), qRgb(200, 200, 200));
        QCOMPARE(pixel(&bar, 20, 2), qRgb(200, 220, 220));
        QCOMPARE(pixel(&bar, 37, 2), qRgb(200, 220, 220));
    }
};

QTEST_MAIN(TestSplitter)
#include "tst_splitter.moc"
