// The editor's editing commands driven through the dialog offscreen: deleting, new entries,
// ordering, drag and drop, the trees' context menu and the copy to the application catalog.
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "editor/CatalogEditorIds.h"
#include "editor/CatalogTreeWidget.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/support/FindControl.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QMenu>
#include <QtTest>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

class TestCatalogEditorCommands : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    void deleteAsksAndRemoves_data();
    void deleteAsksAndRemoves();
    void newEntries_data();
    void newEntries();
    void ordering_data();
    void ordering();
    void dragAndDrop_data();
    void dragAndDrop();
    void contextMenu_data();
    void contextMenu();
    void addToApplicationRefillsCatalogTree();
};

void TestCatalogEditorCommands::deleteAsksAndRemoves_data()
{
    QTest::addColumn<int>("tree");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("answer");
    QTest::addColumn<QStringList>("rootAfter");
    QTest::addColumn<int>("elementsAfter");

    const int lower = Ids::CatalogTree;
    const QStringList all{"Loose item", "Medium voltage", "Low voltage"};
    QTest::newRow("group, yes") << lower << "Medium voltage" << true << QStringList{"Loose item", "Low voltage"} << 4;
    QTest::newRow("group, no") << lower << "Medium voltage" << false << all << 8;
    QTest::newRow("item below, yes") << lower << "Medium voltage/Copper/Cu 95" << true << all << 7;
    QTest::newRow("root row empties the root level") << lower << "" << true << QStringList{} << 0;
    QTest::newRow("root row, no") << lower << "" << false << all << 8;
    QTest::newRow("drawing tree item, yes") << int(Ids::DrawingTree) << "Low voltage" << true
                                            << QStringList{"Medium voltage", "Loose item"} << 5;
}

void TestCatalogEditorCommands::deleteAsksAndRemoves()
{
    QFETCH(int, tree);
    QFETCH(QString, path);
    QFETCH(bool, answer);
    QFETCH(QStringList, rootAfter);
    QFETCH(int, elementsAfter);

    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, tree, path);
    m_host.queueAnswer(answer);
    QTest::keyClick(findControl<QWidget>(dlg.get(), tree), Qt::Key_Delete);
    QCOMPARE(m_host.questions().size(), 1);
    QCOMPARE(m_host.questions().first().text,
             QString("Do you really want to delete the selected entries?"));
    QCOMPARE(childTexts(rowAt(findControl<QTreeWidget>(dlg.get(), tree), "")), rootAfter);
    auto catalog = CCatalogManager::Instance()->GetCatalog("CABLES", tree == Ids::DrawingTree ? 0 : 1);
    QCOMPARE(int(catalog->GetAllElementsMap()->size()), elementsAfter);
    // Whatever is current now is a live row: its item (if any) is still in the catalog.
    if (CCatalogItem* current = dlg->CurrentItem())
        QVERIFY(catalog->GetItembyGuid(current->GetGUID()));
}

void TestCatalogEditorCommands::newEntries_data()
{
    QTest::addColumn<int>("command");   // the button whose handler runs; 105 through Insert
    QTest::addColumn<QString>("path");  // selected row of the catalog tree; "-" for none
    QTest::addColumn<QString>("parent"); // where the new row is; "-" when nothing is made
    QTest::addColumn<QString>("name");  // the new entry's name, or the alert

    // The template's definition is "Cable 4x25": the factory names new items after it.
    QTest::newRow("NEW in a group of items") << 105 << "Low voltage" << "Low voltage" << "Cable 4x2501";
    QTest::newRow("NEW beside an item") << 105 << "Low voltage/Cable 4x16" << "Low voltage" << "Cable 4x2501";
    QTest::newRow("NEW in an empty group") << 105 << "Medium voltage/Aluminium" << "Medium voltage/Aluminium" << "Cable 4x25";
    QTest::newRow("NEW in a group of groups") << 105 << "Medium voltage" << "-" << "An item cannot be added to a group that holds groups.";
    QTest::newRow("NEW beside a root item") << 105 << "Loose item" << "-" << "";
    QTest::newRow("copy of an item") << 110 << "Low voltage/Cable 4x16" << "Low voltage" << "Cable 4x2501";
    QTest::newRow("group, nothing selected") << 107 << "-" << "" << "New group";
    QTest::newRow("group in a group of groups") << 107 << "Medium voltage" << "Medium voltage" << "New group";
    QTest::newRow("group at the deepest level") << 107 << "Medium voltage/Aluminium" << "-" << "";
    QTest::newRow("group in a group of items") << 107 << "Low voltage" << "-" << "A group cannot be added to a group that holds items.";
}

void TestCatalogEditorCommands::newEntries()
{
    QFETCH(int, command);
    QFETCH(QString, path);
    QFETCH(QString, parent);
    QFETCH(QString, name);

    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<CatalogTreeWidget>(dlg.get(), Ids::CatalogTree);
    if (path != "-")
        focusAndSelect(*dlg, Ids::CatalogTree, path);
    if (command == Ids::BtnNew)
        QTest::keyClick(lower, Qt::Key_Insert);
    else if (command == Ids::BtnNewItems)
        dlg->OnBnClickedBtnNewFromItem();
    else
        dlg->OnBnClickedBtnAddGroup();

    auto catalog = CCatalogManager::Instance()->GetCatalog("CABLES", 1);
    if (parent == "-")
    {
        QCOMPARE(m_host.alerts(), name.isEmpty() ? QStringList{} : QStringList{name});
        QCOMPARE(int(catalog->GetAllElementsMap()->size()), 8);
        return;
    }
    QVERIFY(m_host.alerts().isEmpty());
    QCOMPARE(int(catalog->GetAllElementsMap()->size()), 9);
    QTreeWidgetItem* added = lower->currentItem();
    QCOMPARE(added->text(0), name);
    QCOMPARE(added->parent(), rowAt(lower, parent));
    CCatalogItem* item = Editor::CatalogItemOfRow(added);
    QVERIFY(catalog->GetItembyGuid(item->GetGUID()));
    CCatalogItem* parentItem = Editor::CatalogItemOfRow(added->parent());
    QCOMPARE(item->GetParentItemGuid(), parentItem ? parentItem->GetGUID() : QString());
    // A new group's label opens for its name; a new item is known by its row.
    QCOMPARE(lower->isEditingLabel(), command == Ids::BtnAddGroup);
    if (command != Ids::BtnAddGroup)
        QCOMPARE(dlg->RowOfItem(item), added);
}

void TestCatalogEditorCommands::ordering_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("children"); // of the rows re-sorted; for SORT in ascending order

    QTest::newRow("down") << 118 << "Low voltage/Cable 4x16" << "Cable 4x25, Cable 4x16";
    QTest::newRow("up on the first") << 119 << "Low voltage/Cable 4x16" << "Cable 4x16, Cable 4x25";
    QTest::newRow("a group stays") << 118 << "Medium voltage/Copper" << "Copper, Aluminium";
    QTest::newRow("a root item stays") << 119 << "Loose item" << "Loose item, Medium voltage, Low voltage";
    QTest::newRow("sort the root level by text") << 120 << "" << "Loose item, Low voltage, Medium voltage";
    QTest::newRow("sort an item's group by number") << 120 << "Low voltage/Cable 4x25" << "Cable 4x16, Cable 4x25";
}

void TestCatalogEditorCommands::ordering()
{
    QFETCH(int, button);
    QFETCH(QString, path);
    QFETCH(QString, children);

    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, path);
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    QTreeWidgetItem* row = lower->currentItem();
    QTreeWidgetItem* sorted = path.isEmpty() ? row : row->parent();
    // The direction alternates for the whole module, so it is read, not assumed.
    const bool ascending = CCatalogEditorDlg::NextSortAscending();
    auto* clicked = findControl<QAbstractButton>(dlg.get(), button);
    clicked->click();

    QStringList expected = children.split(", ");
    if (button == Ids::BtnSort)
    {
        if (!ascending)
            std::reverse(expected.begin(), expected.end());
        QCOMPARE(CCatalogEditorDlg::NextSortAscending(), !ascending);
        const auto icon = CModuleConfiguration::Instance()->LoadImageW(
            ascending ? "IDI_SORT_DESC" : "IDI_SORT_ASC", 1, 24, 24, 0);
        QCOMPARE(clicked->icon().pixmap(24, 24).toImage(), icon.toImage());
    }
    QCOMPARE(childTexts(sorted), expected);
    // The order is the catalog's: it holds after a refill.
    findControl<QComboBox>(dlg.get(), Ids::CatalogCombo)->setCurrentIndex(1);
    findControl<QComboBox>(dlg.get(), Ids::CatalogCombo)->setCurrentIndex(0);
    QCOMPARE(childTexts(rowAt(lower, path.isEmpty() ? "" : path.section('/', 0, -2))), expected);
    QCOMPARE(lower->topLevelItemCount(), 1);
}

void TestCatalogEditorCommands::dragAndDrop_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to"); // "-": empty space below the rows
    QTest::addColumn<bool>("ctrl");
    QTest::addColumn<QStringList>("where"); // rows named like the dragged one, afterwards

    const QStringList stays{"Low voltage/Cable 4x25"};
    QTest::newRow("onto a group: moved") << "Low voltage/Cable 4x25" << "Medium voltage/Aluminium" << false << QStringList{"Medium voltage/Aluminium/Cable 4x25"};
    QTest::newRow("onto an item: into its group") << "Low voltage/Cable 4x25" << "Medium voltage/Copper/Cu 95" << false << QStringList{"Medium voltage/Copper/Cable 4x25"};
    QTest::newRow("with Ctrl: copied") << "Low voltage/Cable 4x25" << "Medium voltage/Aluminium" << true << QStringList{"Medium voltage/Aluminium/Cable 4x25", "Low voltage/Cable 4x25"};
    QTest::newRow("onto the root row") << "Low voltage/Cable 4x25" << "" << false << stays;
    QTest::newRow("onto empty space, with Ctrl") << "Low voltage/Cable 4x25" << "-" << true << stays;
    QTest::newRow("a group is not dragged") << "Medium voltage/Copper" << "Low voltage" << false << QStringList{"Medium voltage/Copper"};
}

void TestCatalogEditorCommands::dragAndDrop()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(bool, ctrl);
    QFETCH(QStringList, where);

    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<CatalogTreeWidget>(dlg.get(), Ids::CatalogTree);
    rowAt(lower, "Low voltage")->setExpanded(true);
    rowAt(lower, "Medium voltage")->setExpanded(true);
    const QPoint end = to == "-" ? QPoint(20, lower->viewport()->height() - 4)
                                 : centreOf(lower, rowAt(lower, to));
    const QPoint start = centreOf(lower, rowAt(lower, from)); // after any row opened for `end`
    QCOMPARE(lower->itemAt(end) == nullptr, to == "-");
    dragRow(lower, start, end, ctrl);

    QVERIFY(!lower->isDraggingItem());
    QCOMPARE(pathsOf(rowAt(lower, ""), from.section('/', -1)), where);
    // The rows that were open are open again after the refill.
    QVERIFY(rowAt(lower, "Medium voltage")->isExpanded());
    QVERIFY(rowAt(lower, "Low voltage")->isExpanded());
    auto catalog = CCatalogManager::Instance()->GetCatalog("CABLES", 1);
    QCOMPARE(int(catalog->GetAllElementsMap()->size()), 7 + int(where.size()));
}

void TestCatalogEditorCommands::contextMenu_data()
{
    QTest::addColumn<QString>("catalog");
    QTest::addColumn<int>("tree");
    QTest::addColumn<QString>("path");    // "-": empty space
    QTest::addColumn<QString>("entries"); // "(text)" disabled, "-" separator; empty: no menu
    QTest::addColumn<QString>("choose");  // empty: dismissed
    QTest::addColumn<QString>("check");   // row whose children are compared
    QTest::addColumn<QString>("children");

    const int lower = Ids::CatalogTree;
    const int upper = Ids::DrawingTree;
    const QString rootLevel = "Loose item, Medium voltage, Low voltage";
    QTest::newRow("catalog group: copy") << "CABLES" << lower << "Low voltage"
        << "(Add group), New item from the selected template, -, Delete group contents, Delete group, -, Copy group"
        << "Copy group" << "Low voltage_copy" << "Cable 4x16, Cable 4x25";
    QTest::newRow("catalog group: delete contents") << "CABLES" << lower << "Medium voltage"
        << "Add group, New item from the selected template, -, Delete group contents, Delete group, -, Copy group"
        << "Delete group contents" << "Medium voltage" << "";
    QTest::newRow("drawing item: delete") << "CABLES" << upper << "Low voltage/Cable 4x16"
        << "Add to application catalog, -, Delete item" << "Delete item" << "Low voltage" << "Cable 4x25";
    QTest::newRow("dismissed") << "CABLES" << lower << "" << "Add group, -, Delete all entries of the catalog" << "" << "" << rootLevel;
    QTest::newRow("empty space") << "CABLES" << lower << "-" << "" << "" << "" << rootLevel;
    QTest::newRow("new items disabled") << "LOCKED" << lower << "Fixed" << "" << "" << "Fixed" << "Fixed item";
}

void TestCatalogEditorCommands::contextMenu()
{
    QFETCH(QString, catalog);
    QFETCH(int, tree);
    QFETCH(QString, path);
    QFETCH(QString, entries);
    QFETCH(QString, choose);
    QFETCH(QString, check);
    QFETCH(QString, children);

    writeDefaultStore();
    auto dlg = openDialog(catalog);
    auto* widget = findControl<QTreeWidget>(dlg.get(), tree);
    const QPoint at = path == "-" ? QPoint(20, widget->viewport()->height() - 4)
                                  : centreOf(widget, rowAt(widget, path));
    m_host.queueAnswer(true);
    QStringList seen;
    QTimer::singleShot(0, this, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        QAction* chosen = nullptr;
        for (QAction* action : menu->actions())
        {
            seen << (action->isSeparator() ? "-" : action->isEnabled() ? action->text() : "(" + action->text() + ")");
            if (!action->isSeparator() && action->text() == choose)
                chosen = action;
        }
        if (chosen)
            chosen->trigger();
        menu->close();
    });
    emit widget->customContextMenuRequested(at);
    QCoreApplication::processEvents();
    QCOMPARE(seen.join(", "), entries);
    QCOMPARE(childTexts(rowAt(widget, check)).join(", "), children);
    QCOMPARE(m_host.questions().size(), choose.startsWith("Delete") ? 1 : 0);
    if (path == "-")
        QVERIFY(!widget->currentItem());
}

void TestCatalogEditorCommands::addToApplicationRefillsCatalogTree()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage");
    m_host.queueAnswer(true);
    findControl<QAbstractButton>(dlg.get(), Ids::BtnDelete)->click();
    QVERIFY(!rowAt(lower, "Low voltage"));

    focusAndSelect(*dlg, Ids::DrawingTree, "Low voltage/Cable 4x16");
    auto* add = findControl<QAbstractButton>(dlg.get(), Ids::BtnAddToApp);
    add->click();
    QCOMPARE(childTexts(rowAt(lower, "Low voltage")), QStringList{"Cable 4x16"});
    QVERIFY(m_host.alerts().isEmpty());
    add->click();
    QCOMPARE(m_host.alerts(),
             QStringList{"The item \"Cable 4x16\" is already in the application catalog."});
}

QTEST_MAIN(TestCatalogEditorCommands)
#include "tst_CatalogEditorCommands.moc"
