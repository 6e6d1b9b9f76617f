// The editor dialog driven offscreen through its controls, on catalog stores written to a
// temporary folder, with the scripted host answering and recording: start-up, the trees, the
// grid and picture, keys and the ways the dialog ends.
#include "catalog/CatalogManager.h"
#include "controls/PictureBox.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "controls/SplitterControl.h"
#include "editor/CatalogEditorIds.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/support/FindControl.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QtTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

class TestCatalogEditorDlg : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    void startUp_data();
    void startUp();
    void controlsCarryTheirIdsAndTexts();
    void layoutFollowsResizeAndSplitter();
    void treesShowCatalogInTheirOrder();
    void selectionSetsButtons_data();
    void selectionSetsButtons();
    void selectionShowsPropertiesInGrid();
    void gridEditReachesItemAndNameRenamesRow();
    void labelEditing_data();
    void labelEditing();
    void keysFollowButtons_data();
    void keysFollowButtons();
    void tabOrderFollowsLayout();
    void setDefaultMarksRows();
    void endings_data();
    void endings();
    void testButtonTogglesReadOnlyInOrder();
    void ctrlNewUpgradesCurrentItem();
    void picturesFollowSelection();
    void infoPreviewsTemplatePicture_data();
    void infoPreviewsTemplatePicture();
};

void TestCatalogEditorDlg::startUp_data()
{
    QTest::addColumn<QStringList>("registry"); // "REF:Name" or "REF:Name:hidden"
    QTest::addColumn<QString>("reference");
    QTest::addColumn<int>("showHidden");
    QTest::addColumn<QStringList>("lines");    // empty: the dialog is refused
    QTest::addColumn<QString>("selected");

    QTest::newRow("empty registry") << QStringList{} << "" << 1 << QStringList{} << "";
    QTest::newRow("all hidden, not shown")
        << QStringList{"A:Alpha:hidden", "B:Beta:hidden"} << "" << 0 << QStringList{} << "";
    QTest::newRow("hidden shown, preselection ignoring case")
        << QStringList{"POLES:Poles", "SECRET:Secret:hidden"} << "secret" << 1
        << QStringList{"Poles", "Secret*** HIDDEN ***"} << "Secret*** HIDDEN ***";
}

void TestCatalogEditorDlg::startUp()
{
    QFETCH(QStringList, registry);
    QFETCH(QString, reference);
    QFETCH(int, showHidden);
    QFETCH(QStringList, lines);
    QFETCH(QString, selected);

    std::vector<EditorTestStore::Entry> entries;
    for (const QString& line : registry)
    {
        const QStringList parts = line.split(':');
        entries.push_back(entry(parts[0], parts[1], smallCatalog(parts[0], parts[1]),
                                parts.size() > 2 ? 1 : 0));
    }
    writeStore(entries);

    CCatalogEditorDlg dlg;
    dlg.SetCatalogReference(reference);
    dlg.SetShowHiddenCatalogs(showHidden);
    if (lines.isEmpty())
    {
        QCOMPARE(dlg.exec(), int(QDialog::Rejected));
        QCOMPARE(m_host.alerts(), QStringList{"Catalog error!"});
        QVERIFY(!dlg.isVisible());
        return;
    }
    QVERIFY(dlg.OnInitDialog());
    auto* combo = findControl<QComboBox>(&dlg, Ids::CatalogCombo);
    QVERIFY(combo);
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i)
        texts << combo->itemText(i);
    QCOMPARE(texts, lines);
    QCOMPARE(combo->currentText(), selected);
    QVERIFY(m_host.alerts().isEmpty());
    // The lower tree shows the chosen catalog.
    auto* tree = findControl<QTreeWidget>(&dlg, Ids::CatalogTree);
    QCOMPARE(childTexts(rowAt(tree, "")).size(), 1);
}

void TestCatalogEditorDlg::controlsCarryTheirIdsAndTexts()
{
    writeDefaultStore();
    auto dlg = openDialog();
    for (int id : {1, 2, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 115, 116, 117,
                   118, 119, 120, 121, 122, 123, 124, 1000})
        QVERIFY2(findControlById(dlg.get(), id), qPrintable(QString::number(id)));
    QCOMPARE(dlg->windowTitle(), QString("Catalog editor"));
    QCOMPARE(findControl<QAbstractButton>(dlg.get(), Ids::Ok)->text(), QString("OK"));
    QCOMPARE(findControl<QAbstractButton>(dlg.get(), Ids::BtnAddToApp)->text(),
             QString("Add to application"));
    QCOMPARE(findControl<QAbstractButton>(dlg.get(), Ids::BtnAddGroup)->toolTip(),
             QString("Add a new group"));
    QVERIFY(!findControl<QAbstractButton>(dlg.get(), Ids::BtnNew)->icon().isNull());
    QVERIFY(!findControl<QWidget>(dlg.get(), Ids::BtnTest)->isVisible());
    // Templates of version -1 are not offered.
    auto* templates = findControl<QComboBox>(dlg.get(), Ids::TemplateCombo);
    QCOMPARE(templates->count(), 1);
    QCOMPARE(templates->currentText(), QString("Cable"));
    // Nothing selected yet: the editing buttons wait for a selection.
    QVERIFY(enabledEditButtons(*dlg).isEmpty());
}

void TestCatalogEditorDlg::layoutFollowsResizeAndSplitter()
{
    writeDefaultStore();
    auto dlg = openDialog();
    dlg->resize(400, 300);
    QCOMPARE(dlg->size(), QSize(1013, 735));

    // A size given before the start-up is kept, with the controls placed for it.
    CCatalogEditorDlg sized;
    sized.resize(1013 + 60, 735);
    sized.show();
    QCOMPARE(sized.size(), QSize(1013 + 60, 735));
    QCOMPARE(findControlById(&sized, Ids::Ok)->pos(), findControlById(dlg.get(), Ids::Ok)->pos() + QPoint(60, 0));
    sized.hide();

    // Growing moves the bottom-right buttons with the corner and widens the grid by a third.
    auto* ok = findControlById(dlg.get(), Ids::Ok);
    auto* grid = findControlById(dlg.get(), Ids::Grid);
    const QPoint okBefore = ok->pos();
    const int gridBefore = grid->width();
    dlg->resize(1013 + 300, 735 + 90);
    QCOMPARE(ok->pos(), okBefore + QPoint(300, 90));
    QVERIFY(qAbs(grid->width() - (gridBefore + 100)) <= 1);

    // A splitter drag gives the upper tree what it takes from the lower one.
    auto* splitter = findControl<CSplitterControl>(dlg.get(), Ids::Splitter);
    QVERIFY(splitter);
    QWidget* upper = findControlById(dlg.get(), Ids::DrawingTree);
    QWidget* lower = findControlById(dlg.get(), Ids::CatalogTree);
    QWidget* addToApp = findControlById(dlg.get(), Ids::BtnAddToApp);
    const QRect upperBefore = upper->geometry();
    const QRect lowerBefore = lower->geometry();
    const QPoint buttonBefore = addToApp->pos();
    emit splitter->splitterMoved(Ids::Splitter, 12);
    QCOMPARE(upper->geometry(), upperBefore.adjusted(0, 0, 0, 12));
    QCOMPARE(lower->geometry(), lowerBefore.adjusted(0, 12, 0, 0));
    QCOMPARE(addToApp->pos(), buttonBefore + QPoint(0, 12));
    // ... and the next resize starts from there.
    dlg->resize(dlg->width(), dlg->height() + 40);
    QCOMPARE(upper->geometry().bottom(), upperBefore.bottom() + 12 + 20);
}

void TestCatalogEditorDlg::treesShowCatalogInTheirOrder()
{
    writeDefaultStore();
    auto dlg = openDialog("cables");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    auto* upper = findControl<QTreeWidget>(dlg.get(), Ids::DrawingTree);
    QCOMPARE(rowAt(lower, "")->text(0), QString("Catalog - Disk"));
    QCOMPARE(rowAt(upper, "")->text(0), QString("Catalog"));
    QCOMPARE(imageOf(rowAt(lower, "")), 7);
    QCOMPARE(imageOf(rowAt(upper, "")), 8);
    // The catalog tree's top level is ordered by order number; the drawing tree's keeps the
    // catalog's own order.
    QCOMPARE(childTexts(rowAt(lower, "")),
             QStringList({"Loose item", "Medium voltage", "Low voltage"}));
    QCOMPARE(childTexts(rowAt(upper, "")),
             QStringList({"Low voltage", "Medium voltage", "Loose item"}));
    QCOMPARE(childTexts(rowAt(lower, "Medium voltage")), QStringList({"Copper", "Aluminium"}));
    for (QTreeWidget* tree : {lower, upper})
    {
        QCOMPARE(imageOf(rowAt(tree, "Low voltage/Cable 4x16")), 9);
        QCOMPARE(imageOf(rowAt(tree, "Low voltage/Cable 4x25")), 6);
        QCOMPARE(imageOf(rowAt(tree, "Medium voltage/Copper")), 0);
        QVERIFY(rowAt(tree, "")->isExpanded());
    }
    QVERIFY(upper->isEnabled());
    QVERIFY(findControl<QAbstractButton>(dlg.get(), Ids::BtnAddToApp)->isEnabled());

    // A catalog without a drawing version: the upper tree and "add to application" are off.
    findControl<QComboBox>(dlg.get(), Ids::CatalogCombo)->setCurrentIndex(1);
    QVERIFY(!upper->isEnabled());
    QVERIFY(!findControl<QAbstractButton>(dlg.get(), Ids::BtnAddToApp)->isEnabled());
    QCOMPARE(childTexts(rowAt(lower, "")), QStringList({"Wood"}));
}

void TestCatalogEditorDlg::selectionSetsButtons_data()
{
    QTest::addColumn<QString>("catalog");
    QTest::addColumn<int>("tree");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("enabled");

    const int lower = Ids::CatalogTree;
    const int upper = Ids::DrawingTree;
    QTest::newRow("lower root") << "CABLES" << lower << "" << "107 108 120";
    QTest::newRow("item in upper tree") << "CABLES" << upper << "Medium voltage/Copper/Cu 95" << "108 105 110 119 118 120 123";
    QTest::newRow("upper root keeps buttons") << "CABLES" << upper << "" << "";
    QTest::newRow("item, new items disabled") << "LOCKED" << lower << "Fixed/Fixed item" << "119 118 120";
}

void TestCatalogEditorDlg::selectionSetsButtons()
{
    QFETCH(QString, catalog);
    QFETCH(int, tree);
    QFETCH(QString, path);
    QFETCH(QString, enabled);

    writeDefaultStore();
    auto dlg = openDialog(catalog);
    focusAndSelect(*dlg, tree, path);
    QCOMPARE(dlg->ActiveTree(), tree == Ids::DrawingTree ? 1 : 2);
    QCOMPARE(enabledEditButtons(*dlg).join(' '), enabled);
}

void TestCatalogEditorDlg::selectionShowsPropertiesInGrid()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* grid = findControl<PropertyGridWidget>(dlg.get(), Ids::Grid);
    QVERIFY(grid);
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    QVERIFY(dlg->CurrentItem());
    QCOMPARE(dlg->CurrentItem()->GetName(), QString("Cable 4x25"));
    QVERIFY(grid->model()->rowCount() > 0);
    // A root row shows nothing.
    focusAndSelect(*dlg, Ids::CatalogTree, "");
    QVERIFY(!dlg->CurrentItem());
    QCOMPARE(grid->model()->rowCount(), 0);
    // Focus alone re-shows the selection of the tree that takes it.
    focusAndSelect(*dlg, Ids::DrawingTree, "Medium voltage/Copper/Cu 95");
    findControl<QWidget>(dlg.get(), Ids::CatalogTree)->setFocus(Qt::MouseFocusReason);
    QVERIFY(!dlg->CurrentItem());
    findControl<QWidget>(dlg.get(), Ids::DrawingTree)->setFocus(Qt::MouseFocusReason);
    QVERIFY(dlg->CurrentItem());
    QCOMPARE(dlg->CurrentItem()->GetName(), QString("Cu 95"));
}

void TestCatalogEditorDlg::gridEditReachesItemAndNameRenamesRow()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    CCatalogItem* item = dlg->CurrentItem();
    QVERIFY(item);
    auto* grid = findControl<PropertyGridWidget>(dlg.get(), Ids::Grid);
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);

    auto edit = [&](const QString& tag, const QString& text) { editInGrid(*dlg, tag, text); };

    edit("CROSS_SECTION", "35");
    QCOMPARE(item->GetProperty("CROSS_SECTION")->GetValue().ToString(), QString("35"));
    QCOMPARE(lower->currentItem()->text(0), QString("Cable 4x25"));
    QVERIFY(dlg->isVisible());

    edit("CATALOGITEM_NAME", "Cable 4x35");
    QCOMPARE(lower->currentItem()->text(0), QString("Cable 4x35"));
    QCOMPARE(item->GetProperty("CATALOGITEM_NAME")->GetValue().ToString(), QString("Cable 4x35"));
    dlg->OnItemUpdated(nullptr);

    // Without a selection in the catalog tree no row is renamed.
    focusAndSelect(*dlg, Ids::DrawingTree, "Low voltage/Cable 4x16");
    const auto drawingName = dlg->CurrentItem()->GetProperty("CATALOGITEM_NAME");
    lower->setCurrentItem(nullptr);
    dlg->OnItemUpdated(drawingName.get());
    QCOMPARE(childTexts(rowAt(lower, "Low voltage")), QStringList({"Cable 4x16", "Cable 4x35"}));
}

void TestCatalogEditorDlg::labelEditing_data()
{
    QTest::addColumn<int>("tree");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("textAfter");

    // "Cable 4x16" is a sibling's name: it is accepted all the same.
    QTest::newRow("catalog tree, Enter renames") << int(Ids::CatalogTree) << int(Qt::Key_Return) << "Cable 4x16";
    QTest::newRow("catalog tree, Escape keeps") << int(Ids::CatalogTree) << int(Qt::Key_Escape) << "Cable 4x25";
    QTest::newRow("drawing tree, edit dropped") << int(Ids::DrawingTree) << int(Qt::Key_Return) << "Cable 4x25";
}

void TestCatalogEditorDlg::labelEditing()
{
    QFETCH(int, tree);
    QFETCH(int, key);
    QFETCH(QString, textAfter);

    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, tree, "Low voltage/Cable 4x25");
    auto* widget = findControl<CatalogTreeWidget>(dlg.get(), tree);
    QTest::keyClick(widget, Qt::Key_F2);
    QVERIFY(widget->isEditingLabel());
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, "Cable 4x16");
    QTest::keyClick(editor, Qt::Key_Delete); // stays in the editor
    QTest::keyClick(editor, Qt::Key(key));
    QCoreApplication::processEvents();

    QVERIFY(dlg->isVisible());
    QVERIFY(!widget->isEditingLabel());
    QCOMPARE(widget->currentItem()->text(0), textAfter);
    auto catalog = CCatalogManager::Instance()->GetCatalog("CABLES", tree == Ids::DrawingTree ? 0 : 1);
    auto item = catalog->GetItembyGuid("{A-25}");
    QCOMPARE(item->GetName(), textAfter);
    QCOMPARE(item->GetProperty("CATALOGITEM_NAME")->GetValue().ToString(), textAfter);
    QCOMPARE(int(catalog->GetAllElementsMap()->size()), 8);
    QVERIFY(m_host.alerts().isEmpty());

    // The root row has no label editor.
    focusAndSelect(*dlg, tree, "");
    QTest::keyClick(widget, Qt::Key_F2);
    QVERIFY(!widget->isEditingLabel());
}

void TestCatalogEditorDlg::keysFollowButtons_data()
{
    QTest::addColumn<QString>("catalog");
    QTest::addColumn<QString>("path");     // selected row of the catalog tree
    QTest::addColumn<int>("focus");        // control that has the focus
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("open");        // the dialog is still open afterwards
    QTest::addColumn<QString>("children"); // of the selected row's parent, afterwards

    const int lower = Ids::CatalogTree;
    QTest::newRow("Enter on a focused button clicks it") << "CABLES" << "Low voltage/Cable 4x16" << int(Ids::BtnDown) << int(Qt::Key_Return) << true << "Cable 4x25, Cable 4x16";
    QTest::newRow("keypad Enter on a focused button") << "CABLES" << "Low voltage/Cable 4x25" << int(Ids::BtnUp) << int(Qt::Key_Enter) << true << "Cable 4x25, Cable 4x16";
    QTest::newRow("Enter on the tree is OK") << "CABLES" << "Low voltage/Cable 4x16" << lower << int(Qt::Key_Return) << false << "Cable 4x16, Cable 4x25";
}

// Enter on a focused button is that button's; elsewhere in the dialog it is OK.

void TestCatalogEditorDlg::keysFollowButtons()
{
    QFETCH(QString, catalog);
    QFETCH(QString, path);
    QFETCH(int, focus);
    QFETCH(int, key);
    QFETCH(bool, open);
    QFETCH(QString, children);

    writeDefaultStore();
    auto dlg = openDialog(catalog);
    focusAndSelect(*dlg, Ids::CatalogTree, path);
    auto* focused = findControl<QWidget>(dlg.get(), focus);
    focused->setFocus(Qt::TabFocusReason);
    QTest::keyClick(focused, Qt::Key(key));

    QCOMPARE(dlg->isVisible(), open);
    QVERIFY(m_host.questions().isEmpty());
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    QCOMPARE(childTexts(rowAt(lower, path.section('/', 0, -2))).join(", "), children);
    QCOMPARE(int(CCatalogManager::Instance()->GetCatalog(catalog, 1)->GetAllElementsMap()->size()), 8);
}

void TestCatalogEditorDlg::tabOrderFollowsLayout()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    // The controls Tab visits, by id, starting at the catalog combo.
    QWidget* first = findControlById(dlg.get(), Ids::CatalogCombo);
    QList<int> visited;
    QWidget* next = first;
    do
    {
        if ((next->focusPolicy() & Qt::TabFocus) && next->isVisibleTo(dlg.get()))
        {
            QWidget* owner = next;
            while (owner && owner != dlg.get() && controlId(owner) < 0)
                owner = owner->parentWidget();
            const int id = controlId(owner);
            if (id > 0 && (visited.isEmpty() || visited.last() != id))
                visited << id;
        }
        next = next->nextInFocusChain();
    } while (next != first && visited.size() < 100);
    const QList<int> expected{104, 103, 116, 1300, 114, 107, 110, 108, 119, 118, 123, 120, 121,
                              122, 109, 105, 111, 1000, 1, 2};
    QCOMPARE(visited, expected);
}

void TestCatalogEditorDlg::setDefaultMarksRows()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage");
    dlg->OnBnClickedBtnSetDefault(); // a group: nothing happens
    QCOMPARE(imageOf(rowAt(lower, "Low voltage/Cable 4x16")), 9);
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    dlg->OnBnClickedBtnSetDefault();
    QCOMPARE(imageOf(rowAt(lower, "Low voltage/Cable 4x16")), 6);
    QCOMPARE(imageOf(rowAt(lower, "Low voltage/Cable 4x25")), 9);
    auto catalog = CCatalogManager::Instance()->GetCatalog("CABLES", 1);
    QVERIFY(catalog->GetItembyGuid("{A-25}")->GetIsDefault());
    QVERIFY(!catalog->GetItembyGuid("{A-16}")->GetIsDefault());
}

void TestCatalogEditorDlg::endings_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("saved");

    QTest::newRow("OK saves") << "ok" << true;
    QTest::newRow("switching catalogs saves, unasked") << "switch" << true;
    QTest::newRow("Cancel reloads") << "cancel" << false;
    QTest::newRow("close box reloads") << "close" << false;
    QTest::newRow("close box while a label is edited") << "close editing" << false;
    QTest::newRow("Escape reloads") << "escape" << false;
}

void TestCatalogEditorDlg::endings()
{
    QFETCH(QString, how);
    QFETCH(bool, saved);

    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    const QByteArray before = m_store->catalogFileBytes("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    dlg->CurrentItem()->GetProperty("CROSS_SECTION")->SetValue(CDataBox::fromString("50"));
    if (how == "ok")
        findControl<QAbstractButton>(dlg.get(), Ids::Ok)->click();
    else if (how == "switch")
        findControl<QComboBox>(dlg.get(), Ids::CatalogCombo)->setCurrentIndex(1);
    else if (how == "cancel")
        findControl<QAbstractButton>(dlg.get(), Ids::Cancel)->click();
    else if (how.startsWith("close"))
    {
        auto* tree = findControl<CatalogTreeWidget>(dlg.get(), Ids::CatalogTree);
        if (how == "close editing")
            QVERIFY(tree->beginLabelEdit(tree->currentItem()));
        dlg->close();
    }
    else
        QTest::keyClick(findControl<QWidget>(dlg.get(), Ids::CatalogTree), Qt::Key_Escape);
    QCOMPARE(dlg->isVisible(), how == "switch");
    QCoreApplication::processEvents(); // a label editor closed with the rows is gone now
    if (how != "switch")
        QCOMPARE(dlg->result(), int(how == "ok" ? QDialog::Accepted : QDialog::Rejected));
    QVERIFY(m_host.questions().isEmpty());
    QCOMPARE(m_store->catalogFileBytes("CABLES") != before, saved);
    // Read anew from the store, also after a reload: the edit is there exactly when saved.
    dlg.reset();
    m_store->reopen();
    const auto item = CCatalogManager::Instance()->GetCatalog("CABLES", 1)->GetItembyGuid("{A-25}");
    QCOMPARE(item->GetProperty("CROSS_SECTION")->GetValue().ToString(), QString(saved ? "50" : "25"));
}

void TestCatalogEditorDlg::testButtonTogglesReadOnlyInOrder()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* grid = findControl<PropertyGridWidget>(dlg.get(), Ids::Grid);
    // The flag is passed before it is inverted: the first press leaves the grid writable.
    for (bool readOnly : {false, true, false})
    {
        dlg->OnBnClickedBtnTest();
        QCOMPARE(grid->isReadOnly(), readOnly);
    }
}

void TestCatalogEditorDlg::ctrlNewUpgradesCurrentItem()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, "Loose item");
    CCatalogItem* item = dlg->CurrentItem();
    QVERIFY(item);
    QVERIFY(!item->GetProperty("CROSS_SECTION"));
    auto* grid = findControl<PropertyGridWidget>(dlg.get(), Ids::Grid);
    const int rowsBefore = grid->model()->rowCount(grid->model()->index(0, 0));

    m_host.setCtrlPressed(true);
    findControl<QAbstractButton>(dlg.get(), Ids::BtnNew)->click();
    m_host.setCtrlPressed(false);

    // The template's properties were added, the name kept, and no item was created.
    QVERIFY(item->GetProperty("CROSS_SECTION"));
    QVERIFY(item->GetProperty("LSEQUIP_TYPE"));
    QCOMPARE(item->GetName(), QString("Loose item"));
    QCOMPARE(int(CCatalogManager::Instance()->GetCatalog("CABLES", 1)->GetAllElementsMap()->size()), 8);
    QVERIFY(grid->model()->rowCount(grid->model()->index(0, 0)) > rowsBefore);
}

void TestCatalogEditorDlg::picturesFollowSelection()
{
    auto catalog = cablesCatalog();
    catalog->GetItembyGuid("{B-95}")->SetPictureRef("cu95.png");
    catalog->GetItembyGuid("{A-16}")->GetProperty("CROSS_SECTION")->SetPictureRef("section.png");
    auto cables = entry("CABLES", "Cables", catalog);
    writeStore({cables});
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QDir().mkpath(m_store->root() + "/pictures");
    QVERIFY(picture.save(m_store->root() + "/pictures/cu95.png"));
    QVERIFY(picture.save(m_store->root() + "/pictures/section.png"));

    auto dlg = openDialog("CABLES");
    auto* box = findControl<CPictureBox>(dlg.get(), Ids::PictureBox);
    QVERIFY(box);
    focusAndSelect(*dlg, Ids::CatalogTree, "Medium voltage/Copper/Cu 95");
    QVERIFY(box->hasImage());
    focusAndSelect(*dlg, Ids::CatalogTree, "Medium voltage");
    QVERIFY(!box->hasImage());

    // Selecting a property shows that property's picture; one without a picture empties the box.
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x16");
    QVERIFY(!box->hasImage());
    CCatalogItem* item = dlg->CurrentItem();
    dlg->OnItemSelChanged(item->GetProperty("CROSS_SECTION").get());
    QVERIFY(box->hasImage());
    dlg->OnItemSelChanged(item->GetProperty("LSEQUIP_TYPE").get());
    QVERIFY(!box->hasImage());
}

void TestCatalogEditorDlg::infoPreviewsTemplatePicture_data()
{
    QTest::addColumn<QString>("pictureRef");
    QTest::addColumn<QString>("shownTitle"); // empty: no preview
    QTest::addColumn<QStringList>("alerts");

    QTest::newRow("with picture") << "cable.png" << "Cable 4x25" << QStringList{};
    QTest::newRow("without picture") << "" << "" << QStringList{"No picture is available for this item."};
}

void TestCatalogEditorDlg::infoPreviewsTemplatePicture()
{
    QFETCH(QString, pictureRef);
    QFETCH(QString, shownTitle);
    QFETCH(QStringList, alerts);

    auto definition = cablesCatalog()->GetItembyGuid("{A-25}");
    definition->SetPictureRef(pictureRef);
    auto cables = entry("CABLES", "Cables", cablesCatalog());
    cables.templates = {boost::make_shared<CCatalogItemTemplate>("Cable", 1, definition)};
    writeStore({cables});
    QImage picture(20, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QDir().mkpath(m_store->root() + "/pictures");
    QVERIFY(picture.save(m_store->root() + "/pictures/cable.png"));

    auto dlg = openDialog("CABLES");
    QString seenTitle;
    QTimer::singleShot(0, this, [&seenTitle] {
        if (QWidget* preview = QApplication::activeModalWidget())
        {
            seenTitle = preview->windowTitle();
            preview->close();
        }
    });
    findControl<QAbstractButton>(dlg.get(), Ids::BtnInfo)->click();
    QCoreApplication::processEvents(); // the closer has run whether or not a preview opened
    QCOMPARE(seenTitle, shownTitle);
    QCOMPARE(m_host.alerts(), alerts);
    QVERIFY(dlg->isVisible());
}

QTEST_MAIN(TestCatalogEditorDlg)
#include "tst_CatalogEditorDlg.moc"
