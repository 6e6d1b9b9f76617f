// Undo and redo: every edit goes through the undo stack as a command of its own kind; after
// an undo or redo the trees, the selection, the grid and the buttons are shown as they were.
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "controls/TreeRowWalk.h"
#include "editor/EditCommands.h"

#include <QAction>
#include <QScrollBar>
#include <QUndoStack>
#include <climits>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogEditCommand;
using ZEVGis::Editor::CatalogTreeWidget;
using ZEVGis::Editor::EditorViewState;
using ZEVGis::Editor::TreeViewState;

namespace
{

QString KeyOf(QTreeWidgetItem* row)
{
    const CCatalogItem* item = Editor::CatalogItemOfRow(row);
    return item ? item->GetGUID() : QString();
}

TreeViewState CaptureTree(CatalogTreeWidget& tree)
{
    TreeViewState state;
    if (QTreeWidgetItem* current = tree.currentItem())
    {
        state.hasCurrent = true;
        state.current = KeyOf(current);
    }
    // Only open rows are walked: what lies under a closed row is not seen.
    Utility::WalkRows(tree.topLevelItem(0),
                      [&](QTreeWidgetItem* row)
                      {
                          if (!row->isExpanded())
                              return false;
                          const QString key = KeyOf(row);
                          state.expanded.insert(key);
                          QStringList& order = state.childOrder[key];
                          for (int i = 0; i < row->childCount(); ++i)
                              order << KeyOf(row->child(i));
                          return true;
                      });
    state.scroll = tree.verticalScrollBar()->value();
    return state;
}

// Puts the children of `row` in the recorded order; rows not recorded keep theirs, after them.
void RestoreChildOrder(QTreeWidgetItem* row, const QStringList& order)
{
    bool same = order.size() == row->childCount();
    for (int i = 0; same && i < row->childCount(); ++i)
        same = KeyOf(row->child(i)) == order[i];
    if (same)
        return;
    QHash<QString, int> rank;
    for (int i = 0; i < order.size(); ++i)
        rank.insert(order[i], i);
    QList<QTreeWidgetItem*> children = row->takeChildren();
    std::stable_sort(children.begin(), children.end(), [&](QTreeWidgetItem* a, QTreeWidgetItem* b) {
        return rank.value(KeyOf(a), INT_MAX) < rank.value(KeyOf(b), INT_MAX);
    });
    row->addChildren(children);
}

void RestoreTree(CatalogTreeWidget& tree, const TreeViewState& state)
{
    QTreeWidgetItem* current = nullptr;
    Utility::WalkRows(tree.topLevelItem(0),
                      [&](QTreeWidgetItem* row)
                      {
                          const QString key = KeyOf(row);
                          if (state.hasCurrent && !current && key == state.current)
                              current = row;
                          const bool open = state.expanded.contains(key);
                          if (row->isExpanded() != open)
                              row->setExpanded(open);
                          if (const auto order = state.childOrder.constFind(key);
                              open && order != state.childOrder.cend())
                              RestoreChildOrder(row, *order);
                          return open;
                      });
    // A current row under a closed one is not reached above.
    if (state.hasCurrent && !current && !state.current.isEmpty())
    {
        for (QTreeWidgetItemIterator it(&tree); *it && !current; ++it)
            if (KeyOf(*it) == state.current)
                current = *it;
    }
    if (current)
        current = Editor::TreeRowFilter::shownRowFor(current);
    tree.setCurrentItem(current);
    tree.doItemsLayout();
    tree.verticalScrollBar()->setValue(state.scroll);
}

} // namespace

void CCatalogEditorDlg::CreateUndo()
{
    m_undoStack = new QUndoStack(this);
    auto* undo = new QAction(this);
    undo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    connect(undo, &QAction::triggered, this, &CCatalogEditorDlg::OnUndo);
    auto* redo = new QAction(this);
    redo->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y),
                        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    connect(redo, &QAction::triggered, this, &CCatalogEditorDlg::OnRedo);
    addActions({undo, redo});
}

CatalogEditCommand* CCatalogEditorDlg::RunEdit(CatalogEditCommand* command)
{
    command->viewBefore = CaptureView();
    command->runAhead();
    // An edit that changed nothing is not pushed: the stack would drop what there is to redo.
    if (command->isObsolete())
    {
        delete command;
        return nullptr;
    }
    m_undoStack->push(command);
    // A command merged into the one before it is gone.
    const int top = m_undoStack->index() - 1;
    return top >= 0 && m_undoStack->command(top) == command ? command : nullptr;
}

void CCatalogEditorDlg::OnUndo()
{
    if (IsEditingLabel() || !m_undoStack->canUndo())
        return;
    auto* command = static_cast<CatalogEditCommand*>(
        const_cast<QUndoCommand*>(m_undoStack->command(m_undoStack->index() - 1)));
    command->viewAfter = CaptureView();
    m_undoStack->undo();
    ShowUndoneOrRedone(*command, command->viewBefore);
}

void CCatalogEditorDlg::OnRedo()
{
    if (IsEditingLabel() || !m_undoStack->canRedo())
        return;
    auto* command = static_cast<CatalogEditCommand*>(
        const_cast<QUndoCommand*>(m_undoStack->command(m_undoStack->index())));
    m_undoStack->redo();
    ShowUndoneOrRedone(*command, command->viewAfter);
}

void CCatalogEditorDlg::ShowUndoneOrRedone(const CatalogEditCommand& command,
                                           const EditorViewState& view)
{
    m_currentItem = nullptr;
    std::vector<CatalogTreeWidget*> refilled;
    for (int which : {0, 1})
        if (const auto catalog = GetCatalog(which); catalog && catalog.get() == command.catalog())
        {
            RefillTree(which);
            refilled.push_back(which == 0 ? m_drawingTree : m_catalogTree);
        }
    RestoreView(view);
    // Putting rows back in their order takes their hidden state with them.
    for (CatalogTreeWidget* tree : refilled)
        m_rowFilter.apply(*tree, true);
}

EditorViewState CCatalogEditorDlg::CaptureView() const
{
    EditorViewState view;
    view.captured = true;
    view.activeTree = m_activeTree;
    view.upper = CaptureTree(*m_drawingTree);
    view.lower = CaptureTree(*m_catalogTree);
    view.sortAscending = NextSortAscending();
    if (const PropertyGridWidget* grid = m_grid.gridWidget())
    {
        if (const CPropertyEx* property = grid->currentProperty())
            view.gridTag = property->GetTag();
        view.gridScroll = grid->view()->verticalScrollBar()->value();
    }
    return view;
}

void CCatalogEditorDlg::RestoreView(const EditorViewState& view)
{
    if (!view.captured)
        return;
    for (CatalogTreeWidget* tree : {m_drawingTree, m_catalogTree})
    {
        const QSignalBlocker blocker(tree);
        RestoreTree(*tree, tree == m_drawingTree ? view.upper : view.lower);
    }
    SetSortDirection(view.sortAscending);
    m_activeTree = view.activeTree;
    ShowSelection(m_activeTree == 1);
    if (PropertyGridWidget* grid = m_grid.gridWidget())
    {
        if (const QModelIndex row =
                view.gridTag.isEmpty() ? QModelIndex() : grid->model()->indexOfTag(view.gridTag);
            row.isValid())
            grid->view()->setCurrentIndex(row);
        grid->view()->verticalScrollBar()->setValue(view.gridScroll);
    }
}

void CCatalogEditorDlg::ShowProperties(CCatalogItem* item, bool upper)
{
    m_shownProperties = {};
    if (!item)
        return;
    const auto properties = item->GetProperties();
    m_grid.SetDataToShow(properties, 1, 0);
    m_shownProperties.item = item;
    m_shownProperties.upper = upper;
    m_shownProperties.name = item->GetName();
    if (properties)
        for (const auto& category : properties->categories())
            if (category)
                for (const auto& property : category->GetPropertyExVector())
                    if (property)
                        m_shownProperties.values[property.get()] = property->GetValue();
}
