// Undo and redo in the editor dialog (what the user sees comes back with the catalog), and
// the trees' name filter with the editing commands on a filtered tree.
#include "catalog/CatalogItem.h"
#include "catalog/CatalogManager.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "editor/CatalogEditorIds.h"
#include "editor/TreeRowFilter.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/support/FindControl.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTreeWidget>
#include <QUndoStack>
#include <QtTest>
#include <boost/make_shared.hpp>
#include <functional>

using namespace ZEVGis;
using namespace ZEVGis::Data;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{

// Every row of a tree, in order, with its image and whether it is open or hidden.
QString dumpTree(QTreeWidget* tree)
{
    QStringList lines;
    std::function<void(QTreeWidgetItem*, int)> walk = [&](QTreeWidgetItem* row, int depth) {
        lines << QStringLiteral("%1%2 [%3]%4%5")
                     .arg(QString(depth * 2, QLatin1Char(' ')), row->text(0))
                     .arg(imageOf(row))
                     .arg(row->isExpanded() ? QStringLiteral(" open") : QString(),
                          row->isHidden() ? QStringLiteral(" hidden") : QString());
        for (int i = 0; i < row->childCount(); ++i)
            walk(row->child(i), depth + 1);
    };
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        walk(tree->topLevelItem(i), 0);
    return lines.join(QLatin1Char('\n'));
}

QString pathOf(QTreeWidgetItem* row)
{
    QStringList names;
    for (; row && row->parent(); row = row->parent())
        names.prepend(row->text(0));
    return row ? QLatin1Char('/') + names.join(QLatin1Char('/')) : QStringLiteral("(none)");
}

// The first line where two states part, with what each has there.
QString firstDifference(const QStringList& actual, const QStringList& expected)
{
    for (int i = 0; i < std::max(actual.size(), expected.size()); ++i)
        if (actual.value(i, "(end)") != expected.value(i, "(end)"))
            return QStringLiteral("line %1: '%2' instead of '%3'")
                .arg(i)
                .arg(actual.value(i, "(end)"), expected.value(i, "(end)"));
    return QString();
}

using Action = std::function<void(CCatalogEditorDlg&, Host::ScriptedHost&)>;

} // namespace

Q_DECLARE_METATYPE(Action)

class TestEditorUndoDialog : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    void undoShowsTheEditorAsBefore_data();
    void undoShowsTheEditorAsBefore();
    void keysUndoAndRedo();
    void editChangingNothingKeepsRedo_data();
    void editChangingNothingKeepsRedo();
    void catalogSwitchAndCancelDropTheStack();

    void filterShowsMatchesWithTheirGroups();
    void filterKeys();
    void filterFollowsChangedRows_data();
    void filterFollowsChangedRows();
    void rowsMadeOrRenamedWhileFilteredStayShown();
    void commandsWorkOnWhatIsShown();

private:
    // The catalog's XML, both trees, the current rows, the buttons and the grid's item.
    QStringList state(CCatalogEditorDlg& dlg)
    {
        auto* upper = findControl<QTreeWidget>(&dlg, Ids::DrawingTree);
        auto* lower = findControl<QTreeWidget>(&dlg, Ids::CatalogTree);
        const CPropertyEx* gridRow = findControl<PropertyGridWidget>(&dlg, Ids::Grid)->currentProperty();
        const auto catalog = dlg.GetCatalog(1);
        return QStringList{catalog->GetXML(), dlg.GetCatalog(0)->GetXML(), dumpTree(upper),
                           dumpTree(lower), "upper " + pathOf(upper->currentItem()),
                           "lower " + pathOf(lower->currentItem()),
                           enabledEditButtons(dlg).join(' '),
                           "grid " + (dlg.CurrentItem() ? dlg.CurrentItem()->GetName() : "-"),
                           "grid row " + (gridRow ? gridRow->GetTag() : "-"),
                           QString::number(dlg.ActiveTree())}
            .join("\n--\n")
            .split('\n');
    }
    QLineEdit* filterField(CCatalogEditorDlg& dlg)
    {
        return findControl<QLineEdit>(&dlg, Ids::FilterEdit);
    }
};

void TestEditorUndoDialog::undoShowsTheEditorAsBefore_data()
{
    QTest::addColumn<Action>("setup");
    QTest::addColumn<Action>("action");
    auto row = [](const char* name, Action action, Action setup = {}) {
        QTest::newRow(name) << setup << action;
    };
    // Selects a row of the catalog tree; with `yes` the next question is answered Yes.
    auto select = [this](const QString& path, bool yes = false) {
        return [this, path, yes](CCatalogEditorDlg& dlg, Host::ScriptedHost& host) {
            focusAndSelect(dlg, Ids::CatalogTree, path);
            if (yes)
                host.queueAnswer(true);
        };
    };
    using D = CCatalogEditorDlg;
    auto click = [](void (D::*handler)()) {
        return [handler](D& dlg, Host::ScriptedHost&) { (dlg.*handler)(); };
    };

    row("new item in a group", click(&D::OnBnClickedBtnNew), select("Low voltage"));
    row("new item beside an item", click(&D::OnBnClickedBtnNew), select("Low voltage/Cable 4x25"));
    row("new item from the item", click(&D::OnBnClickedBtnNewFromItem),
        select("Low voltage/Cable 4x16"));
    row("new group at the root", [](D& dlg, Host::ScriptedHost&) {
            dlg.OnBnClickedBtnAddGroup();
            // The name the label editor offers is taken as it is.
            auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
            QVERIFY(editor);
            QTest::keyClick(editor, Qt::Key_Return);
            QCoreApplication::processEvents();
        }, select(""));
    // Named in the label editor that opens with it: one edit, not two.
    row("new group named", [](D& dlg, Host::ScriptedHost&) {
            dlg.OnBnClickedBtnAddGroup();
            auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
            QVERIFY(editor);
            editor->selectAll();
            editor->insert(QString::fromUtf8("Razvodni ormari"));
            QTest::keyClick(editor, Qt::Key_Return);
            QCoreApplication::processEvents();
        }, select("Medium voltage"));
    row("delete an item", click(&D::OnBnClickedBtnDel), select("Low voltage/Cable 4x16", true));
    row("delete a group with a group in it", click(&D::OnBnClickedBtnDel),
        select("Medium voltage", true));
    row("delete the root level", click(&D::OnBnClickedBtnDel), select("", true));
    row("delete a group's contents", [](D& dlg, Host::ScriptedHost&) {
            dlg.DeleteGroupContents(dlg.CurrentItem(), 1);
        }, select("Low voltage", true));
    row("copy a group", [](D& dlg, Host::ScriptedHost&) { dlg.CopyGroup(dlg.CurrentItem()); },
        select("Low voltage"));
    row("rename", [](D& dlg, Host::ScriptedHost&) {
            auto* lower = findControl<QTreeWidget>(&dlg, Ids::CatalogTree);
            QTest::keyClick(lower, Qt::Key_F2);
            auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
            QVERIFY(editor);
            editor->selectAll();
            editor->insert(QString::fromUtf8("Kabel 4x25 Končar"));
            QTest::keyClick(editor, Qt::Key_Return);
            QCoreApplication::processEvents();
        }, select("Low voltage/Cable 4x25"));
    row("move down", click(&D::OnBnClickedBtnDown), select("Low voltage/Cable 4x16"));
    row("move up", click(&D::OnBnClickedBtnUp), select("Low voltage/Cable 4x25"));
    row("sort", click(&D::OnBnClickedBtnSort), select("Medium voltage"));
    row("default marking", click(&D::OnBnClickedBtnSetDefault), select("Low voltage/Cable 4x25"));
    row("drag an item into another group", [](D& dlg, Host::ScriptedHost&) {
        auto* lower = findControl<QTreeWidget>(&dlg, Ids::CatalogTree);
        dlg.OnItemDropped(rowAt(lower, "Low voltage/Cable 4x25"), rowAt(lower, "Medium voltage/Copper"));
    });
    row("drag with Ctrl copies", [](D& dlg, Host::ScriptedHost& host) {
        auto* lower = findControl<QTreeWidget>(&dlg, Ids::CatalogTree);
        host.setCtrlPressed(true);
        dlg.OnItemDropped(rowAt(lower, "Low voltage/Cable 4x25"), rowAt(lower, "Medium voltage/Copper/Cu 95"));
        host.setCtrlPressed(false);
    });
    // The grid's current row is the one edited: it is current again after undo and redo.
    auto selectInGrid = [select](const QString& path, const QString& tag) {
        return [select, path, tag](D& dlg, Host::ScriptedHost& host) {
            select(path)(dlg, host);
            auto* grid = findControl<PropertyGridWidget>(&dlg, Ids::Grid);
            grid->view()->setCurrentIndex(grid->model()->indexOfTag(tag));
        };
    };
    row("property edit in the grid", [](D& dlg, Host::ScriptedHost&) {
            auto* grid = findControl<PropertyGridWidget>(&dlg, Ids::Grid);
            const QModelIndex index = grid->model()->indexOfTag("CROSS_SECTION");
            QVERIFY(grid->model()->setData(index.siblingAtColumn(PropertyGridModel::ValueColumn),
                                           "35", Qt::EditRole));
        }, selectInGrid("Low voltage/Cable 4x25", "CROSS_SECTION"));
    row("name edit in the grid", [](D& dlg, Host::ScriptedHost&) {
            auto* grid = findControl<PropertyGridWidget>(&dlg, Ids::Grid);
            const QModelIndex index = grid->model()->indexOfTag("CATALOGITEM_NAME");
            QVERIFY(grid->model()->setData(index.siblingAtColumn(PropertyGridModel::ValueColumn),
                                           "Cable 4x35", Qt::EditRole));
        }, selectInGrid("Low voltage/Cable 4x25", "CATALOGITEM_NAME"));
    row("add to the application catalog", click(&D::OnBnClickedBtnAddToApp),
        [this](D& dlg, Host::ScriptedHost&) {
        // The drawing copy gets an entry the catalog lacks.
        auto drawing = dlg.GetCatalog(0);
        auto group = boost::make_shared<CCatalogItem>();
        group->SetGUID("{D-NEW}");
        group->SetName("Drawing group");
        group->SetIsGroup(1);
        drawing->AddItem(group);
        dlg.OnCbnSelchangeComboCatalog(); // shows it (and saves)
        focusAndSelect(dlg, Ids::DrawingTree, "Drawing group");
    });
}

void TestEditorUndoDialog::undoShowsTheEditorAsBefore()
{
    QFETCH(Action, setup);
    QFETCH(Action, action);
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    // A state worth coming back to: a closed group, an open one, a row selected.
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    rowAt(lower, "Medium voltage")->setExpanded(true);
    focusAndSelect(*dlg, Ids::CatalogTree, "Medium voltage/Copper");
    if (setup)
        setup(*dlg, m_host);

    const QStringList before = state(*dlg);
    action(*dlg, m_host);
    QVERIFY(!QTest::currentTestFailed());
    QCOMPARE(dlg->UndoStack()->count(), 1);
    const QStringList after = state(*dlg);
    QVERIFY(after != before);
    dlg->OnUndo();
    QCOMPARE(firstDifference(state(*dlg), before), QString());
    dlg->OnRedo();
    QCOMPARE(firstDifference(state(*dlg), after), QString());
    dlg->OnUndo();
    QCOMPARE(firstDifference(state(*dlg), before), QString());
    QVERIFY(m_host.alerts().isEmpty());
}

void TestEditorUndoDialog::keysUndoAndRedo()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x16");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    const QStringList before = state(*dlg);
    dlg->OnBnClickedBtnDown();
    const QStringList after = state(*dlg);
    QVERIFY(after != before);
    QTest::keyClick(lower, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(firstDifference(state(*dlg), before), QString());
    QTest::keyClick(lower, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(firstDifference(state(*dlg), after), QString());
    QTest::keyClick(lower, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(lower, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(firstDifference(state(*dlg), after), QString());
    // Nothing more to redo, nothing changes.
    QTest::keyClick(lower, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(firstDifference(state(*dlg), after), QString());
}

void TestEditorUndoDialog::editChangingNothingKeepsRedo_data()
{
    QTest::addColumn<Action>("action");
    using D = CCatalogEditorDlg;
    auto row = [](const char* name, Action action) { QTest::newRow(name) << action; };
    auto inGrid = [](const QString& tag, const QString& value) {
        return [tag, value](D& dlg, Host::ScriptedHost&) {
            auto* grid = findControl<PropertyGridWidget>(&dlg, Ids::Grid);
            const QModelIndex index = grid->model()->indexOfTag(tag);
            grid->model()->setData(index.siblingAtColumn(PropertyGridModel::ValueColumn), value,
                                   Qt::EditRole);
        };
    };

    row("renamed to its name", [](D& dlg, Host::ScriptedHost&) {
        QTest::keyClick(findControl<QTreeWidget>(&dlg, Ids::CatalogTree), Qt::Key_F2);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    });
    row("a value set to what it is", inGrid("CROSS_SECTION", "25"));
    row("the name set to what it is in the grid", inGrid("CATALOGITEM_NAME", "Cable 4x25"));
    row("a level of one sorted", [this](D& dlg, Host::ScriptedHost&) {
        focusAndSelect(dlg, Ids::CatalogTree, "Medium voltage/Copper");
        dlg.OnBnClickedBtnSort();
    });
    row("the default marked again", [this](D& dlg, Host::ScriptedHost&) {
        focusAndSelect(dlg, Ids::CatalogTree, "Low voltage/Cable 4x16");
        dlg.OnBnClickedBtnSetDefault();
    });
    row("dropped into its own group", [](D& dlg, Host::ScriptedHost&) {
        auto* lower = findControl<QTreeWidget>(&dlg, Ids::CatalogTree);
        dlg.OnItemDropped(rowAt(lower, "Low voltage/Cable 4x25"), rowAt(lower, "Low voltage"));
    });
}

void TestEditorUndoDialog::editChangingNothingKeepsRedo()
{
    QFETCH(Action, action);
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    dlg->OnBnClickedBtnUp();
    const QStringList after = state(*dlg);
    dlg->OnUndo();
    const QString xml = dlg->GetCatalog(1)->GetXML();

    action(*dlg, m_host);
    QCoreApplication::processEvents();
    QCOMPARE(dlg->GetCatalog(1)->GetXML(), xml);
    QVERIFY(dlg->UndoStack()->canRedo());
    dlg->OnRedo();
    QCOMPARE(firstDifference(state(*dlg), after), QString());
}

void TestEditorUndoDialog::catalogSwitchAndCancelDropTheStack()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, Ids::CatalogTree, "Medium voltage");
    dlg->OnBnClickedBtnSort();
    QCOMPARE(dlg->UndoStack()->count(), 1);
    auto* combo = findControl<QComboBox>(dlg.get(), Ids::CatalogCombo);
    combo->setCurrentIndex(combo->findText("Poles"));
    QCOMPARE(dlg->UndoStack()->count(), 0);
    focusAndSelect(*dlg, Ids::CatalogTree, "Wood");
    m_host.queueAnswer(true);
    dlg->OnBnClickedBtnDel();
    QCOMPARE(dlg->UndoStack()->count(), 1);
    dlg->OnBnClickedCancel();
    QCOMPARE(dlg->UndoStack()->count(), 0);
    QVERIFY(CCatalogManager::Instance()->GetCatalog("POLES", 1)->GetItembyGuid("{G-POLES}"));
}

void TestEditorUndoDialog::filterShowsMatchesWithTheirGroups()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    auto* upper = findControl<QTreeWidget>(dlg.get(), Ids::DrawingTree);
    const QString shownBefore = dumpTree(lower);
    dlg->SetFilterText(QString::fromUtf8("CU 9"));
    QStringList shown = pathsOf(rowAt(lower, ""), "");
    for (const QString& path : pathsOf(rowAt(lower, ""), ""))
        if (rowAt(lower, path)->isHidden() || (rowAt(lower, path)->parent() &&
                                                rowAt(lower, path)->parent()->isHidden()))
            shown.removeAll(path);
    QCOMPARE(shown.join(", "), QString("Medium voltage, Medium voltage/Copper, "
                                       "Medium voltage/Copper/Cu 95"));
    // The drawing copy is filtered the same way.
    QVERIFY(rowAt(upper, "Low voltage")->isHidden());
    QVERIFY(!rowAt(upper, "Medium voltage")->isHidden());
    // An empty filter shows everything again.
    dlg->SetFilterText("");
    QVERIFY(!dumpTree(lower).contains("hidden"));
    QCOMPARE(dumpTree(lower).count('\n'), shownBefore.count('\n'));
}

void TestEditorUndoDialog::filterKeys()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    QLineEdit* field = filterField(*dlg);
    QVERIFY(field);
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage");
    QTest::keyClick(lower, Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), field);
    QTest::keyClicks(field, "4x2");
    QVERIFY(rowAt(lower, "Low voltage/Cable 4x16")->isHidden());
    QVERIFY(!rowAt(lower, "Low voltage/Cable 4x25")->isHidden());
    // Enter goes on to the tree instead of closing the dialog.
    QTest::keyClick(field, Qt::Key_Return);
    QVERIFY(dlg->isVisible());
    QCOMPARE(QApplication::focusWidget(), lower);
    // Escape in a filled field clears it; in an empty one it cancels the dialog.
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(field->text().isEmpty());
    QVERIFY(!rowAt(lower, "Low voltage/Cable 4x16")->isHidden());
    QVERIFY(dlg->isVisible());
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(!dlg->isVisible());
    QCOMPARE(dlg->result(), int(QDialog::Rejected));
}

void TestEditorUndoDialog::filterFollowsChangedRows_data()
{
    // A tree "Cable 4x16", "Cable 4x25", "Cu" holding "Cu 95" and "Cable Cu"; filtered by
    // `first`, changed, then filtered by `second` (often typed on from `first`).
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("shown");

    QTest::newRow("typed on") << "cab" << "" << "cable 4" << "Cable 4x16, Cable 4x25";
    QTest::newRow("taken back") << "cable 4x1" << "" << "cable" << "Cable 4x16, Cable 4x25, Cu, Cable Cu";
    QTest::newRow("renamed into a match") << "cab" << "rename Cu 95>Cable 95" << "cable" << "Cable 4x16, Cable 4x25, Cu, Cable 95, Cable Cu";
    QTest::newRow("renamed out of one") << "cab" << "rename Cable 4x16>Wire 4x16" << "cable" << "Cable 4x25, Cu, Cable Cu";
    QTest::newRow("row added") << "cab" << "add" << "cable" << "Cable 4x16, Cable 4x25, Cu, Cable Cu, Cable 50";
    QTest::newRow("row removed") << "cab" << "remove Cable 4x25" << "cable" << "Cable 4x16, Cu, Cable Cu";
}

void TestEditorUndoDialog::filterFollowsChangedRows()
{
    QFETCH(QString, first);
    QFETCH(QString, change);
    QFETCH(QString, second);
    QFETCH(QString, shown);

    QTreeWidget tree;
    auto* root = new QTreeWidgetItem(&tree, {"Catalog"});
    auto row = [](QTreeWidgetItem* parent, const char* name) {
        return new QTreeWidgetItem(parent, {QString::fromLatin1(name)});
    };
    row(root, "Cable 4x16");
    row(root, "Cable 4x25");
    QTreeWidgetItem* cu = row(root, "Cu");
    row(cu, "Cu 95");
    row(cu, "Cable Cu");
    tree.expandAll();
    auto find = [&](const QString& name) {
        return tree.findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
    };

    Editor::TreeRowFilter filter;
    filter.setFilter(Editor::NameFilter(first));
    filter.apply(tree);
    if (change.startsWith("rename "))
        find(change.mid(7).section('>', 0, 0))->setText(0, change.section('>', 1));
    else if (change == "add")
        row(cu, "Cable 50");
    else if (change.startsWith("remove "))
    {
        filter.forget(find(change.mid(7)));
        delete find(change.mid(7));
    }
    filter.setFilter(Editor::NameFilter(second));
    filter.apply(tree);

    QStringList names;
    for (QTreeWidgetItemIterator it(&tree); *it; ++it)
        if (*it != root && Editor::TreeRowFilter::shownRowFor(*it) == *it)
            names << (*it)->text(0);
    QCOMPARE(names.join(", "), shown);
}

void TestEditorUndoDialog::rowsMadeOrRenamedWhileFilteredStayShown()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    dlg->SetFilterText("4x16");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x16");
    // A new item with a name the filter does not match.
    dlg->OnBnClickedBtnNew();
    QTreeWidgetItem* made = lower->currentItem();
    QVERIFY(made && made != rowAt(lower, "Low voltage/Cable 4x16"));
    QVERIFY(!made->isHidden());
    // Renamed to something else: still shown, also after a refill (a drop that does nothing).
    QTest::keyClick(lower, Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), "Other");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    dlg->OnItemDropped(rowAt(lower, "Low voltage/Cable 4x16"), rowAt(lower, "Low voltage"));
    QVERIFY(rowAt(lower, "Low voltage/Other"));
    QVERIFY(!rowAt(lower, "Low voltage/Other")->isHidden());
    QVERIFY(rowAt(lower, "Low voltage/Cable 4x25")->isHidden());
    // Undone while filtered: the row is gone, the filter stays.
    dlg->OnUndo();
    dlg->OnUndo();
    QVERIFY(!rowAt(lower, "Low voltage/Other"));
    QVERIFY(rowAt(lower, "Low voltage/Cable 4x25")->isHidden());
    // Once the filter changes, only matches count.
    dlg->OnRedo();
    dlg->SetFilterText("4x1");
    QVERIFY(rowAt(lower, "Low voltage/Cable 4x25")->isHidden());
    QVERIFY(pathsOf(rowAt(lower, ""), "").size() >= 3);
}

void TestEditorUndoDialog::commandsWorkOnWhatIsShown()
{
    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    const auto catalog = dlg->GetCatalog(1);

    // The current row hidden by the filter gives way to its group.
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x25");
    dlg->SetFilterText("16");
    QCOMPARE(pathOf(lower->currentItem()), QString("/Low voltage"));
    QCOMPARE(dlg->CurrentItem()->GetName(), QString("Low voltage"));

    // Deleting the root level takes only what is shown.
    dlg->SetFilterText("voltage");
    focusAndSelect(*dlg, Ids::CatalogTree, "");
    m_host.queueAnswer(true);
    dlg->OnBnClickedBtnDel();
    QVERIFY(!catalog->GetItembyGuid("{A-LV}"));
    QVERIFY(!catalog->GetItembyGuid("{B-MV}"));
    QVERIFY(catalog->GetItembyGuid("{C-LOOSE}"));
    dlg->OnUndo();
    QVERIFY(catalog->GetItembyGuid("{B-95}"));

    // "Down" passes over the hidden neighbour: Copper (0) and Aluminium (1) with a third
    // between them.
    dlg->SetFilterText("");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x16");
    dlg->OnBnClickedBtnNew();
    lower->currentItem()->setText(0, "Other");
    auto made = catalog->GetItembyGuid(
        static_cast<Editor::CatalogTreeRowItem*>(lower->currentItem())->catalogItem()->GetGUID());
    made->SetOrd(1);
    catalog->GetItembyGuid("{A-25}")->SetOrd(2);
    dlg->SetFilterText("Cable 4x");
    focusAndSelect(*dlg, Ids::CatalogTree, "Low voltage/Cable 4x16");
    dlg->OnBnClickedBtnDown();
    QCOMPARE(catalog->GetItembyGuid("{A-16}")->GetOrd(), 2);
    QCOMPARE(catalog->GetItembyGuid("{A-25}")->GetOrd(), 0);
    QCOMPARE(made->GetOrd(), 1);
}

QTEST_MAIN(TestEditorUndoDialog)
#include "tst_EditorUndoDialog.moc"
