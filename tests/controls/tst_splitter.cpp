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

} // namespace

class TestSplitter : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*")); }

    // Creates a bar on `rect`, drags it by `moveBy` pixels from its centre along its axis
    // and releases it. A rect at least as wide as high makes a horizontal bar, 5 pixels high.
    void dragMovesWithinRange_data()
    {
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<int>("windowOffset");
        QTest::addColumn<int>("root"); // SetRange(20, 20, root); -2: no range set
        QTest::addColumn<int>("moveBy");
        QTest::addColumn<int>("delta");
        const QRect wide(20, 200, 300, 20), tall(200, 20, 6, 300);
        // clang-format off
        QTest::newRow("within down")           << wide << 0 << -1 << 7    << 7;
        QTest::newRow("within up")             << wide << 0 << -1 << -12  << -12;
        QTest::newRow("beyond down")           << wide << 0 << -1 << 100  << 20;
        QTest::newRow("beyond up")             << wide << 0 << -1 << -100 << -20;
        QTest::newRow("range never set")       << wide << 0 << -2 << 30   << 0;
        // The bar's centre is at y 202; a root of its own moves the range with it.
        QTest::newRow("explicit root")         << wide << 0 << 212 << 100 << 30;
        QTest::newRow("square is horizontal")  << QRect(20, 200, 8, 8) << 0 << -1 << 9 << 9;
        QTest::newRow("vertical beyond right") << tall << 0 << -1 << 60   << 20;
        QTest::newRow("vertical within left")  << tall << 0 << -1 << -5   << -5;
        // The default root is a screen coordinate while the clamping works in the window's
        // coordinates: with the window 50 pixels down the range lies 50 pixels lower.
        QTest::newRow("offset window small move") << wide << 50 << -1 << 1   << 30;
        QTest::newRow("offset window big move")   << wide << 50 << -1 << 100 << 70;
        // clang-format on
    }
    void dragMovesWithinRange()
    {
        QFETCH(QRect, rect);
        QFETCH(int, windowOffset);
        QFETCH(int, root);
        QFETCH(int, moveBy);
        QFETCH(int, delta);
        QWidget window;
        CSplitterControl bar;
        QCOMPARE(bar.Create(0x50000000, rect, nullptr, 115), 0);
        QWidget* panel = panelAt(window, QPoint(windowOffset, windowOffset));
        QVERIFY(panel);
        QCOMPARE(panel->mapToGlobal(QPoint(0, 0)), QPoint(windowOffset, windowOffset));
        QCOMPARE(bar.Create(0x50000000, rect, panel, 115), 1);
        const bool vertical = rect.height() > rect.width();
        QCOMPARE(bar.GetType(), vertical ? CSplitterControl::SplitterVertical
                                         : CSplitterControl::SplitterHorizontal);
        QCOMPARE(bar.cursor().shape(), vertical ? Qt::SizeHorCursor : Qt::SizeVerCursor);
        const QRect before = vertical ? QRect(rect.topLeft(), QSize(5, rect.height()))
                                      : QRect(rect.topLeft(), QSize(rect.width(), 5));
        QCOMPARE(bar.geometry(), before);
        if (root != -2)
            bar.SetRange(20, 20, root);
        QSignalSpy moved(&bar, &CSplitterControl::splitterMoved);

        const QPoint centre(2, 2);
        const QPoint step = vertical ? QPoint(moveBy, 0) : QPoint(0, moveBy);
        QTest::mousePress(&bar, Qt::LeftButton, {}, centre);
        QVERIFY(bar.isPressed());
        QTest::mouseMove(&bar, centre + step);
        QVERIFY(moved.isEmpty());
        QCOMPARE(bar.geometry(), before);
        // The tracking line: two grey lines either side of the tracking point, across the bar.
        auto* line = window.findChild<QWidget*>("splitterTrackingLine");
        QVERIFY(line && line->isVisible());
        const QRect barOnScreen(bar.mapToGlobal(QPoint(0, 0)), bar.size());
        const QPoint tp = bar.trackingPoint();
        QCOMPARE(QRect(line->mapToGlobal(QPoint(0, 0)), line->size()),
                 vertical ? QRect(tp.x() - 1, barOnScreen.top(), 3, barOnScreen.height())
                          : QRect(barOnScreen.left(), tp.y() - 1, barOnScreen.width(), 3));
        const QImage shot = window.grab().toImage();
        const QPoint first = line->geometry().topLeft() + (vertical ? QPoint(0, 3) : QPoint(3, 0));
        QCOMPARE(shot.pixel(first), qRgb(200, 200, 200));
        QVERIFY(shot.pixel(first + (vertical ? QPoint(1, 0) : QPoint(0, 1))) !=
                qRgb(200, 200, 200));
        QTest::mouseRelease(&bar, Qt::LeftButton, {}, centre + step);

        QVERIFY(!bar.isPressed());
        QVERIFY(!line->isVisible());
        QCOMPARE(moved.size(), 1);
        QCOMPARE(moved.at(0).at(0).toInt(), 115);
        QCOMPARE(moved.at(0).at(1).toInt(), delta);
        const QPoint shift = vertical ? QPoint(delta, 0) : QPoint(0, delta);
        QCOMPARE(bar.geometry(), before.translated(shift));
    }

    void ownerHelpers_data()
    {
        QTest::addColumn<QString>("helper");
        QTest::addColumn<int>("a");
        QTest::addColumn<int>("b");
        QTest::addColumn<QRect>("expected");
        // The window starts at (100, 100, 50 x 40).
        // clang-format off
        QTest::newRow("width right")        << "width"  << 10  << 1 << QRect(100, 100, 60, 40);
        QTest::newRow("width left")         << "width"  << 10  << 2 << QRect(90, 100, 60, 40);
        QTest::newRow("width other side")   << "width"  << 10  << 3 << QRect(100, 100, 50, 40);
        QTest::newRow("height bottom")      << "height" << 10  << 3 << QRect(100, 100, 50, 50);
        QTest::newRow("height top shrinks") << "height" << -10 << 4 << QRect(100, 110, 50, 30);
        QTest::newRow("height other side")  << "height" << 10  << 1 << QRect(100, 100, 50, 40);
        QTest::newRow("pos left")           << "pos"    << 10  << 0 << QRect(90, 100, 50, 40);
        QTest::newRow("pos right and down") << "pos"    << -5  << 7 << QRect(105, 107, 50, 40);
        // clang-format on
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
        const QImage shot = bar.grab().toImage();
        const QRgb light = bar.palette().color(QPalette::Light).rgb();
        const QRgb shadow = bar.palette().color(QPalette::Dark).rgb();
        const QRgb pen = qRgb(200, 200, 200), fill = qRgb(200, 220, 220);
        // clang-format off
        const QList<std::pair<QPoint, QRgb>> expected{
            {{20, 0}, light}, {{0, 2}, light}, {{20, 4}, shadow}, {{39, 0}, shadow},
            {{1, 2}, pen}, {{38, 2}, pen}, {{20, 3}, pen}, {{20, 2}, fill}};
        // clang-format on
        for (const auto& [at, colour] : expected)
            QVERIFY2(shot.pixel(at) == colour,
                     qPrintable(QString("%1,%2").arg(at.x()).arg(at.y())));
    }
};

QTEST_MAIN(TestSplitter)
#include "tst_splitter.moc"
