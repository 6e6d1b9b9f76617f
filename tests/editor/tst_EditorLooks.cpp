// The editor as a user sees and reaches it: Tab through every control, tool tips, the bar of
// a catalog that does not load, the inactive tree's selection, the grid's focus frame and the
// place kept between runs.
#include "catalog/CatalogItem.h"
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "controls/ZEVBitmapButton.h"
#include "editor/CatalogEditorIds.h"
#include "editor/CatalogTreeWidget.h"
#include "host/QtHostServices.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/support/FindControl.h"
#include "tests/support/TabWalk.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QSettings>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

class TestEditorLooks : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    void tabReachesEveryControl_data();
    void tabReachesEveryControl();
    void tabGoesRoundInThePicturePreview();
    void iconButtonsHaveToolTips_data();
    void iconButtonsHaveToolTips();
    void brokenCatalogIsExplainedInTheDialog_data();
    void brokenCatalogIsExplainedInTheDialog();
    void unreadableRegistryAlertCarriesTheReason();
    void inactiveTreeShowsSelectionDimmed();
    void focusedGridShowsFrame();
    void initialSelectionFillsGridAndPicture_data();
    void initialSelectionFillsGridAndPicture();
    void placementIsKeptBetweenRuns_data();
    void placementIsKeptBetweenRuns();
};

namespace
{

// Answers the next modal box with `button` (Escape: the key) once it is up.
void answerNextBox(QMessageBox::StandardButton button)
{
    QTimer::singleShot(0, qApp, [button] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return answerNextBox(button);
        if (button == QMessageBox::Escape)
            QTest::keyClick(box, Qt::Key_Escape);
        else
            box->button(button)->click();
    });
}

// Colours that differ by no more than the style's shading of a selection.
bool nearly(const QColor& a, const QColor& b)
{
    return qAbs(a.red() - b.red()) <= 4 && qAbs(a.green() - b.green()) <= 4 &&
           qAbs(a.blue() - b.blue()) <= 4;
}

QColor pixelAt(QWidget* widget, const QPoint& point)
{
    return widget->grab().toImage().pixelColor(point * widget->devicePixelRatioF());
}

// The colour in the middle of a row's text cell, right of its icon and text.
QColor rowColour(QTreeWidget* tree, QTreeWidgetItem* row)
{
    const QRect rect = tree->visualItemRect(row);
    const QPoint inViewport(qMin(rect.right() - 2, tree->viewport()->width() - 4),
                            rect.center().y());
    return pixelAt(tree, tree->viewport()->mapTo(tree, inViewport));
}

// The texts in `language` while alive, English again afterwards.
struct LanguageScope
{
    explicit LanguageScope(const QString& language)
    {
        CModuleConfiguration::Instance()->SetLanguage(language);
    }
    ~LanguageScope() { CModuleConfiguration::Instance()->SetLanguage("en"); }
};

// The program's placement settings (in the test folder of QStandardPaths' test mode).
QSettings placementSettings()
{
    return QSettings(QSettings::NativeFormat, QSettings::UserScope, "zevxcatalogeditor",
                     "placement");
}

} // namespace

void TestEditorLooks::tabReachesEveryControl_data()
{
    QTest::addColumn<QString>("sequence");
    QTest::addColumn<QString>("language");
    QTest::newRow("just opened") << "" << "en";
    QTest::newRow("just opened, Croatian") << "" << "hr";
    QTest::newRow("Delete answered No") << "delete-no" << "en";
    QTest::newRow("Delete answered Yes") << "delete-yes" << "hr";
    QTest::newRow("Delete answered with Escape") << "delete-escape" << "en";
    QTest::newRow("root Delete answered Yes") << "root-yes" << "en";
    QTest::newRow("item selected, grid filled") << "select" << "en";
}

// From every control, Tab and Shift+Tab reach every other one, also after a real question
// box was answered.
void TestEditorLooks::tabReachesEveryControl()
{
    QFETCH(QString, sequence);
    QFETCH(QString, language);
    const LanguageScope inLanguage(language);
    writeDefaultStore();
    Host::QtHostServices realBoxes;
    Host::ScopedHostServices useBoxes(realBoxes);
    auto dlg = openDialog("CABLES");
    if (sequence == "select")
        focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    else if (!sequence.isEmpty())
    {
        const bool root = sequence.startsWith("root");
        focusAndSelect(*dlg, Ids::CatalogTree, root ? "" : "Low voltage/Cable 4x25");
        answerNextBox(sequence.endsWith("yes")  ? QMessageBox::Yes
                      : sequence.endsWith("no") ? QMessageBox::No
                                                : QMessageBox::Escape);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
        // The offscreen platform gives no window the activation back, as a desktop does.
        dlg->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dlg.get()));
    }
    const QList<QWidget*> stops = TestSupport::tabStops(dlg.get());
    QVERIFY(stops.contains(findControl<PropertyGridWidget>(dlg.get(), Ids::Grid)->view()));
    QVERIFY(stops.contains(findControlById(dlg.get(), Ids::CatalogCombo)));
    const QStringList traps = TestSupport::tabTraps(dlg.get());
    QVERIFY2(traps.isEmpty(), qPrintable(traps.join('\n')));
}

// The editor's other dialog: its controls too are reached from each other.
void TestEditorLooks::tabGoesRoundInThePicturePreview()
{
    auto definition = cablesCatalog()->GetItembyGuid("{A-25}");
    definition->SetPictureRef("cable.png");
    auto cables = entry("CABLES", "Cables", cablesCatalog());
    cables.templates = {boost::make_shared<Data::CCatalogItemTemplate>("Cable", 1, definition)};
    writeStore({cables});
    QImage picture(20, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QDir().mkpath(m_store->root() + "/pictures");
    QVERIFY(picture.save(m_store->root() + "/pictures/cable.png"));

    auto dlg = openDialog("CABLES");
    QStringList traps{"the preview did not open"};
    int stops = 0;
    QTimer::singleShot(0, this, [&] {
        if (auto* preview = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
        {
            preview->activateWindow();
            if (QTest::qWaitForWindowActive(preview))
            {
                stops = int(TestSupport::tabStops(preview).size());
                traps = TestSupport::tabTraps(preview);
            }
            preview->close();
        }
    });
    findControl<QAbstractButton>(dlg.get(), Ids::BtnInfo)->click();
    QVERIFY2(traps.isEmpty(), qPrintable(traps.join('\n')));
    QVERIFY(stops >= 1);
}

void TestEditorLooks::iconButtonsHaveToolTips_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("Up") << "en" << int(Ids::BtnUp) << "Move the item up";
    QTest::newRow("Down") << "en" << int(Ids::BtnDown) << "Move the item down";
    QTest::newRow("SORT") << "en" << int(Ids::BtnSort) << "Sort by name (ascending, then descending)";
    QTest::newRow("Info") << "en" << int(Ids::BtnInfo) << "Show the picture of the selected template";
    QTest::newRow("DEL names its key") << "en" << int(Ids::BtnDelete) << "Delete the selected entry (Del)";
    QTest::newRow("NEW names its key") << "en" << int(Ids::BtnNew) << "New item from the selected template (Ins)";
    QTest::newRow("Up, Croatian") << "hr" << int(Ids::BtnUp) << "Pomakni stavku gore";
    QTest::newRow("SORT, Croatian") << "hr" << int(Ids::BtnSort) << "Poredaj po nazivu (uzlazno, pa silazno)";
    QTest::newRow("Info, Croatian") << "hr" << int(Ids::BtnInfo) << "Prikaži sliku odabranog predloška";
    // The key's name is Qt's own, in Qt's Croatian translation.
    QTest::newRow("DEL, Croatian") << "hr" << int(Ids::BtnDelete) << "Obriši odabranu stavku (Izbriši)";
}

void TestEditorLooks::iconButtonsHaveToolTips()
{
    QFETCH(QString, language);
    QFETCH(int, button);
    QFETCH(QString, toolTip);
    const LanguageScope inLanguage(language);
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    QCOMPARE(findControl<QAbstractButton>(dlg.get(), button)->toolTip(), toolTip);
    // No icon button goes without one.
    for (auto* iconButton : dlg->findChildren<Utility::CZEVBitmapButton*>())
        QVERIFY2(!iconButton->toolTip().isEmpty(), qPrintable(iconButton->text()));
}

void TestEditorLooks::brokenCatalogIsExplainedInTheDialog_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("notice"); // parts of the bar's text
    QTest::newRow("garbage") << "en" << QByteArray("this is\nno catalog <at all")
        << QStringList{"Catalog \"Cables\" could not be loaded", "cables.xml, line 2, column 19:",
                       "not well-formed XML"};
    QTest::newRow("bad attribute, Croatian") << "hr"
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog ref=\"CABLES\">\n"
                      " <i id=\"{X}\" n=\"A\" g=\"yes\"/>\n</catalog>\n")
        << QStringList{"Katalog „Cables” nije moguće učitati", "cables.xml, redak 3, stupac 2:",
                       "group flag g=\"yes\" is not 0 or 1"};
}

// A catalog file that does not load is explained in a bar above the trees, without a box; the
// bar goes when another catalog is chosen, and the file is never written over.
void TestEditorLooks::brokenCatalogIsExplainedInTheDialog()
{
    QFETCH(QString, language);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, notice);
    const LanguageScope inLanguage(language);
    writeDefaultStore();
    QFile file(m_store->root() + "/cables.xml");
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
    file.close();
    m_store->reopen();

    // Standard error hears of it too.
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Catalog CABLES: .*cables.xml is not a catalog file: "));
    auto dlg = openDialog("CABLES");
    auto* bar = findControl<QLabel>(dlg.get(), Ids::LoadNotice);
    QVERIFY(bar);
    QVERIFY(bar->isVisible());
    for (const QString& part : notice)
        QVERIFY2(bar->text().contains(part), qPrintable(bar->text()));
    QVERIFY(m_host.alerts().isEmpty());
    QVERIFY(m_host.questions().isEmpty());
    // The upper tree makes room for the bar.
    auto* upper = findControlById(dlg.get(), Ids::DrawingTree);
    QVERIFY(upper->geometry().top() > bar->geometry().bottom());
    QVERIFY(!bar->geometry().intersects(findControlById(dlg.get(), Ids::DrawingCaption)->geometry()));
    const int upperTop = upper->geometry().top();

    auto* combo = findControl<QComboBox>(dlg.get(), Ids::CatalogCombo);
    combo->setCurrentIndex(combo->findText("Poles"));
    QVERIFY(!bar->isVisible());
    QVERIFY(upper->geometry().top() < upperTop);
    dlg->OnBnClickedOk();
    QCOMPARE(m_store->catalogFileBytes("CABLES"), content);
}

void TestEditorLooks::unreadableRegistryAlertCarriesTheReason()
{
    writeDefaultStore();
    QFile registry(m_store->root() + "/registry.xml");
    QVERIFY(registry.open(QIODevice::WriteOnly | QIODevice::Truncate));
    registry.write("<registry><catalog");
    registry.close();
    m_store->reopen();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Catalog registry .*registry.xml is broken: "));
    CCatalogEditorDlg dlg;
    QVERIFY(!dlg.OnInitDialog());
    QCOMPARE(m_host.alerts(), QStringList{"Catalog error!"});
    QVERIFY2(m_host.alertDetails().value(0).contains("registry.xml is broken"),
             qPrintable(m_host.alertDetails().value(0)));
}

// The tree the buttons and the grid work on shows its selection in full colour, the other
// one pale.
void TestEditorLooks::inactiveTreeShowsSelectionDimmed()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* upper = findControl<CatalogTreeWidget>(dlg.get(), Ids::DrawingTree);
    auto* lower = findControl<CatalogTreeWidget>(dlg.get(), Ids::CatalogTree);
    focusAndSelect(*dlg, Ids::DrawingTree, "Low voltage/Cable 4x16");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x16");
    const QColor highlight = lower->palette().color(QPalette::Active, QPalette::Highlight);
    QTreeWidgetItem* upperRow = rowAt(upper, "Low voltage/Cable 4x16");
    QTreeWidgetItem* lowerRow = rowAt(lower, "Low voltage/Cable 4x16");
    auto check = [&](QTreeWidget* active, QTreeWidgetItem* activeRow, QTreeWidget* other,
                     QTreeWidgetItem* otherRow) {
        const QColor full = rowColour(active, activeRow);
        const QColor pale = rowColour(other, otherRow);
        QVERIFY2(nearly(full, highlight), qPrintable(full.name()));
        QVERIFY2(!nearly(pale, highlight) && !nearly(pale, other->palette().color(QPalette::Base)),
                 qPrintable(pale.name()));
    };
    check(lower, lowerRow, upper, upperRow);
    // The grid and the buttons still work on the lower tree while they have the focus.
    findControlById(dlg.get(), Ids::Ok)->setFocus(Qt::TabFocusReason);
    check(lower, lowerRow, upper, upperRow);
    upper->setFocus(Qt::TabFocusReason);
    check(upper, upperRow, lower, lowerRow);
}

void TestEditorLooks::focusedGridShowsFrame()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    auto* grid = findControl<PropertyGridWidget>(dlg.get(), Ids::Grid)->view();
    const QColor highlight = grid->palette().color(QPalette::Active, QPalette::Highlight);
    const QPoint edges[] = {{0, grid->height() / 2}, {grid->width() / 2, 0},
                            {grid->width() - 1, grid->height() / 2}, {grid->width() / 2, grid->height() - 1}};
    for (const QPoint& edge : edges)
        QVERIFY(pixelAt(grid, edge) != highlight);
    QWidget* info = findControlById(dlg.get(), Ids::BtnInfo);
    info->setFocus(Qt::TabFocusReason);
    QTest::keyClick(info, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), grid);
    for (const QPoint& edge : edges)
        QCOMPARE(pixelAt(grid, edge), highlight);
}

void TestEditorLooks::initialSelectionFillsGridAndPicture_data()
{
    QTest::addColumn<QString>("select");
    QTest::addColumn<QString>("current"); // name of the item shown, empty: none
    QTest::newRow("by GUID") << "{A-25}" << "Cable 4x25";
    QTest::newRow("by name, in a closed group") << "Cu 95" << "Cu 95";
    QTest::newRow("no match") << "Cable 4x99" << "";
}

// What --select asks for: the entry selected in the catalog tree as a click would select it.
void TestEditorLooks::initialSelectionFillsGridAndPicture()
{
    QFETCH(QString, select);
    QFETCH(QString, current);
    writeDefaultStore();
    auto dlg = std::make_unique<CCatalogEditorDlg>();
    dlg->SetCatalogReference("CABLES");
    dlg->SetInitialSelection(select);
    dlg->show();
    QVERIFY(QTest::qWaitForWindowExposed(dlg.get()));
    QCOMPARE(dlg->CurrentItem() ? dlg->CurrentItem()->GetName() : QString(), current);
    if (current.isEmpty())
        return;
    QCOMPARE(dlg->ActiveTree(), 2);
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    QCOMPARE(lower->currentItem()->text(0), current);
    QVERIFY(lower->currentItem()->parent()->isExpanded());
    QVERIFY(findControl<PropertyGridWidget>(dlg.get(), Ids::Grid)->model()->rowCount() > 0);
}

void TestEditorLooks::placementIsKeptBetweenRuns_data()
{
    // The offscreen screen is 800 x 800, narrower than the dialog may be.
    QTest::addColumn<QRect>("saved"); // empty: as the user left it
    QTest::addColumn<QSize>("size");
    QTest::newRow("moved, grown, splitter dragged") << QRect() << QSize(1013, 780);
    QTest::newRow("saved smaller than the minimum") << QRect(20, 30, 300, 200) << QSize(1013, 735);
    QTest::newRow("saved off every screen") << QRect(-5000, 9000, 1013, 760) << QSize(1013, 760);
}

void TestEditorLooks::placementIsKeptBetweenRuns()
{
    QFETCH(QRect, saved);
    QFETCH(QSize, size);
    writeDefaultStore();
    placementSettings().clear();
    auto splitter = [](QWidget* dlg) { return findControlById(dlg, Ids::Splitter); };
    QRect left;
    int splitterY = 0;
    {
        CCatalogEditorDlg first;
        first.SetRememberPlacement(true);
        first.show();
        QVERIFY(QTest::qWaitForWindowExposed(&first));
        first.setGeometry(QRect(QPoint(0, 10), QSize(1013, 780)));
        // Fifteen pixels down, as a drag gives them.
        QWidget* bar = splitter(&first);
        const QPoint grip = bar->rect().center();
        QTest::mousePress(bar, Qt::LeftButton, {}, grip);
        QTest::mouseMove(bar, grip + QPoint(0, 15));
        QTest::mouseRelease(bar, Qt::LeftButton, {}, grip + QPoint(0, 15));
        splitterY = bar->y();
        left = first.geometry();
        first.OnBnClickedOk();
    }
    if (saved.isValid())
        placementSettings().setValue("CatalogEditor/geometry", saved);
    CCatalogEditorDlg second;
    second.SetRememberPlacement(true);
    second.show();
    QVERIFY(QTest::qWaitForWindowExposed(&second));
    QCOMPARE(second.size(), size);
    const QRect screen = second.screen()->availableGeometry();
    QVERIFY(second.geometry().top() >= screen.top());
    QVERIFY(second.geometry().bottom() <= screen.bottom());
    QVERIFY(second.geometry().left() <= screen.left() + 10);
    if (!saved.isValid())
    {
        // The offscreen platform may shift a window by its frame's two pixels.
        QCOMPARE(second.size(), left.size());
        QVERIFY((second.pos() - left.topLeft()).manhattanLength() <= 2);
        QCOMPARE(splitter(&second)->y(), splitterY);
    }
    // A dialog that is not asked to remember opens as it always did.
    CCatalogEditorDlg plain;
    plain.show();
    QCOMPARE(plain.size(), QSize(1013, 735));
    placementSettings().clear();
}

QTEST_MAIN(TestEditorLooks)
#include "tst_EditorLooks.moc"
