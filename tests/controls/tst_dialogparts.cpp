#include "controls/ControlId.h"
#include "controls/ResizeAnchors.h"
#include "controls/TabOrder.h"
#include "controls/WindowPlacement.h"
#include "tests/support/TabWalk.h"
#include "controls/ZEVBitmapButton.h"

#include <QDialog>
#include <QPainter>
#include <QPushButton>
#include <QTreeView>
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

    // Two screens side by side: 0..1919 and 1920..3199 (the second 1280 x 1024, lower).
    void placementFitsOnScreens_data()
    {
        QTest::addColumn<QRect>("saved");
        QTest::addColumn<QRect>("expected");
        // clang-format off
        QTest::newRow("as saved")             << QRect(100, 50, 1100, 800)   << QRect(100, 50, 1100, 800);
        QTest::newRow("below the minimum")    << QRect(100, 50, 300, 200)    << QRect(100, 50, 1013, 735);
        QTest::newRow("past the right edge")  << QRect(2500, 50, 1100, 800)  << QRect(2100, 50, 1100, 800);
        QTest::newRow("across both screens")  << QRect(1500, 50, 1100, 800)  << QRect(1920, 50, 1100, 800);
        QTest::newRow("mostly on the second") << QRect(2100, 300, 1013, 735) << QRect(2100, 289, 1013, 735);
        QTest::newRow("off every screen")     << QRect(-5000, 9000, 1100, 800) << QRect(0, 280, 1100, 800);
        QTest::newRow("larger than a screen") << QRect(0, 0, 2500, 1500)   << QRect(0, 0, 1920, 1080);
        QTest::newRow("second screen, too big") << QRect(2000, 100, 1900, 1200) << QRect(1920, 0, 1280, 1024);
        // clang-format on
    }
    void placementFitsOnScreens()
    {
        QFETCH(QRect, saved);
        QFETCH(QRect, expected);
        const QList<QRect> screens{QRect(0, 0, 1920, 1080), QRect(1920, 0, 1280, 1024)};
        QCOMPARE(ZEVGis::Utility::FitOnScreens(saved, QSize(1013, 735), screens), expected);
        // A screen smaller than the minimum still gets the minimum, from its corner.
        QCOMPARE(ZEVGis::Utility::FitOnScreens(saved, QSize(1013, 735), {QRect(0, 0, 800, 600)}),
                 QRect(0, 0, qMax(1013, qMin(800, saved.width())), qMax(735, qMin(600, saved.height()))));
    }

    // Qt moves a control in the tab chain only up to its last part that takes the focus;
    // a tree's viewport passes its focus on and was left behind, so Shift+Tab from the first
    // control went into the tree instead of to the last control.
    void tabOrderKeepsCompoundsWhole()
    {
        QDialog dialog;
        auto* first = new QPushButton("first", &dialog);
        auto* last = new QPushButton("last", &dialog);
        auto* compound = new QWidget(&dialog); // made last, as the dialogs make their grid
        auto* tree = new QTreeView(compound);
        auto* plainTree = new QTreeView(&dialog); // a control whose viewport passes the focus on
        plainTree->move(0, 0);
        compound->setFocusPolicy(tree->focusPolicy());
        compound->setFocusProxy(tree);
        for (QWidget* w : {static_cast<QWidget*>(first), static_cast<QWidget*>(last), compound})
            w->move(0, 0);
        ZEVGis::Utility::SetTabOrder({first, plainTree, compound, last});
        // Every part keeps its own focus policy.
        QCOMPARE(compound->focusPolicy(), Qt::StrongFocus);
        QCOMPARE(tree->focusPolicy(), Qt::StrongFocus);
        QCOMPARE(tree->viewport()->focusPolicy(), Qt::NoFocus);
        QCOMPARE(first->focusPolicy(), Qt::StrongFocus);
        QCOMPARE(plainTree->focusPolicy(), Qt::StrongFocus);
        QCOMPARE(TestSupport::tabStops(&dialog).size(), 4);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        const QStringList traps = TestSupport::tabTraps(&dialog);
        QVERIFY2(traps.isEmpty(), qPrintable(traps.join('\n')));
        QCOMPARE(TestSupport::walkTab(first, false, 1), QList<QWidget*>{last});
    }
};

QTEST_MAIN(TestDialogParts)
#include "tst_dialogparts.moc"
