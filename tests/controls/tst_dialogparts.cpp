#include "controls/ControlId.h"
#include "controls/ResizeAnchors.h"
#include "controls/ZEVBitmapButton.h"

#include <QPainter>
#include <QTest>

using ZEVGis::Utility::CZEVBitmapButton;

class TestDialogParts : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*")); }

    // A control at (10, 20, 100 x 50) in a 400 x 300 dialog that grows by (dx, dy).
    void anchorsFollowGrowth_data()
    {
        QTest::addColumn<QList<double>>("anchors");
        QTest::addColumn<QSize>("growth");
        QTest::addColumn<QRect>("expected");
        using A = QList<double>;
        // clang-format off
        QTest::newRow("fixed")        << A{0, 0, 0, 0}         << QSize(100, 50)  << QRect(10, 20, 100, 50);
        QTest::newRow("stretched")    << A{0, 0, 1, 1}         << QSize(100, 50)  << QRect(10, 20, 200, 100);
        QTest::newRow("moved")        << A{1, 1, 1, 1}         << QSize(100, 50)  << QRect(110, 70, 100, 50);
        QTest::newRow("middle third") << A{0.333, 0, 0.666, 1} << QSize(300, 100) << QRect(110, 20, 200, 150);
        QTest::newRow("half down")    << A{0, 0.5, 0.333, 0.5} << QSize(90, 40)   << QRect(10, 40, 130, 50);
        QTest::newRow("shrunk")       << A{0, 0, 1, 1}         << QSize(-50, -30) << QRect(10, 20, 50, 20);
        // clang-format on
    }
    void anchorsFollowGrowth()
    {
        QFETCH(QList<double>, anchors);
        QFETCH(QSize, growth);
        QFETCH(QRect, expected);
        QWidget dialog;
        dialog.resize(400, 300);
        auto* control = new QWidget(&dialog);
        setControlId(control, 1000);
        control->setGeometry(10, 20, 100, 50);
        CResizeAnchors anchorsHelper(&dialog);
        QVERIFY(anchorsHelper.setResize(1000, anchors[0], anchors[1], anchors[2], anchors[3]));
        dialog.show();
        // Through an odd size first: the result must not depend on the way there.
        dialog.resize(QSize(400, 300) + growth + QSize(13, 7));
        dialog.resize(QSize(400, 300) + growth);
        QCOMPARE(control->geometry(), expected);
        dialog.resize(400, 300);
        QCOMPARE(control->geometry(), QRect(10, 20, 100, 50));
    }

    // A control moved by someone else (the splitter) keeps its new place and is anchored
    // from there on.
    void movedControlKeepsNewPlace()
    {
        QWidget dialog;
        dialog.resize(400, 300);
        auto* upper = new QWidget(&dialog);
        upper->setGeometry(10, 10, 100, 100);
        CResizeAnchors anchors(&dialog);
        anchors.setResize(upper, 0, 0, 1, 0.5);
        dialog.show();
        dialog.resize(500, 400);
        QCOMPARE(upper->geometry(), QRect(10, 10, 200, 150));
        upper->setGeometry(10, 10, 200, 170);
        dialog.resize(600, 500);
        QCOMPARE(upper->geometry(), QRect(10, 10, 300, 220));
    }

    void unknownControls()
    {
        QWidget dialog;
        CResizeAnchors anchors(&dialog);
        QVERIFY(!anchors.setResize(42, 0, 0, 1, 1));
        QVERIFY(!anchors.setResize(nullptr, 0, 0, 1, 1));
        auto* gone = new QWidget(&dialog);
        anchors.setResize(gone, 0, 0, 1, 1);
        delete gone;
        dialog.resize(800, 600);
    }

    // The button shows its icon only, and keeps its text for the accessible name.
    void bitmapButtonShowsIcon()
    {
        QWidget dialog;
        auto* button = new CZEVBitmapButton(QStringLiteral("NEW"), &dialog);
        button->resize(40, 40);
        button->SetToolTip(QStringLiteral("New item"));
        QCOMPARE(button->toolTip(), "New item");
        QCOMPARE(button->accessibleName(), "NEW");
        QPixmap icon(24, 24);
        icon.fill(Qt::red);
        button->SetIcon(QIcon(icon));
        const QImage shot = button->grab().toImage();
        int red = 0;
        for (int y = 0; y < shot.height(); ++y)
            for (int x = 0; x < shot.width(); ++x)
                red += shot.pixelColor(x, y) == QColor(Qt::red);
        QCOMPARE(red, 24 * 24);
    }
};

QTEST_MAIN(TestDialogParts)
#include "tst_dialogparts.moc"
