// Order of the catalog tree's entries: "Up", "Down", "SORT", and dragging an item to another
// group (a move, or a copy with Ctrl held).
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ZEVBitmapButton.h"
#include "editor/CatalogEditorIds.h"
#include "editor/CatalogEdits.h"
#include "editor/EditCommands.h"
#include "editor/SiblingOrder.h"
#include "host/HostServices.h"

#include <QSet>
#include <QTreeWidgetItemIterator>

using namespace ZEVGis;
using namespace ZEVGis::Data;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
// Direction of the next "SORT" for the whole module, so that it alternates across editors.
bool g_sortAscending = true;
} // namespace

bool CCatalogEditorDlg::NextSortAscending()
{
    return g_sortAscending;
}

void CCatalogEditorDlg::OnBnClickedBtnUp()
{
    MoveSelected(false);
}

void CCatalogEditorDlg::OnBnClickedBtnDown()
{
    MoveSelected(true);
}

// Swaps the selected item with its neighbour; groups and items right under the root row stay.
void CCatalogEditorDlg::MoveSelected(bool down)
{
    QTreeWidgetItem* row = m_catalogTree->currentItem();
    CCatalogItem* item = Editor::CatalogItemOfRow(row);
    if (!item || item->IsGroup())
        return;
    QTreeWidgetItem* parentRow = row->parent();
    CCatalogItem* parent = Editor::CatalogItemOfRow(parentRow);
    if (!parent)
        return;
    Editor::ItemList siblings;
    parent->GetSortedSubItems(siblings);
    // Under a filter the neighbour is the next one shown.
    RunEdit(new Editor::MoveCommand(GetCatalog(1), ShownEntries(parentRow, siblings),
                                    item->GetGUID(), down));
    parentRow->sortChildren(0, Qt::AscendingOrder);
}

// Renumbers the selected row's siblings (a group's: its children; the root row's: the root
// level) by name, alternately ascending and descending.
void CCatalogEditorDlg::OnBnClickedBtnSort()
{
    QTreeWidgetItem* row = m_catalogTree->currentItem();
    Editor::ItemList siblings;
    QTreeWidgetItem* sortRow = row;
    CCatalogItem* item = Editor::CatalogItemOfRow(row);
    if (!row)
        sortRow = nullptr;
    else if (item && item->IsGroup())
        item->GetSortedSubItems(siblings);
    else if (item)
    {
        sortRow = row->parent();
        if (CCatalogItem* parent = Editor::CatalogItemOfRow(sortRow))
            parent->GetSortedSubItems(siblings);
        else
            sortRow = nullptr;
    }
    else if (const auto catalog = GetCatalog(1))
        catalog->GetSortedRootElements(siblings);

    if (sortRow)
    {
        RunEdit(new Editor::SortCommand(GetCatalog(1), siblings, g_sortAscending));
        g_sortAscending = !g_sortAscending;
        sortRow->sortChildren(0, Qt::AscendingOrder);
    }
    SetSortDirection(g_sortAscending);
}

void CCatalogEditorDlg::SetSortDirection(bool ascending)
{
    g_sortAscending = ascending;
    const QString icon =
        g_sortAscending ? QStringLiteral("IDI_SORT_ASC") : QStringLiteral("IDI_SORT_DESC");
    if (auto* button = qobject_cast<Utility::CZEVBitmapButton*>(Button(Ids::BtnSort)))
        button->SetIcon(QIcon(CModuleConfiguration::Instance()->LoadImageW(
            icon, CModuleConfiguration::ImageIcon, 24, 24, 0)));
}

void CCatalogEditorDlg::OnItemDropped(QTreeWidgetItem* dragged, QTreeWidgetItem* target)
{
    const auto catalog = GetCatalog(1);
    if (!target)
        target = m_lowerRoot;
    CCatalogItem* draggedItem = Editor::CatalogItemOfRow(dragged);
    const auto source = catalog && draggedItem ? catalog->GetItembyGuid(draggedItem->GetGUID())
                                               : boost::shared_ptr<CCatalogItem>();
    if (source && target)
    {
        const bool copy = Host::HostServices::current().isCtrlPressed();
        if (const auto* command = static_cast<Editor::DropCommand*>(
                RunEdit(new Editor::DropCommand(catalog, source, Editor::CatalogItemOfRow(target),
                                                copy, SelectedTemplate()))))
            for (const auto& made : command->made())
                m_rowFilter.pin(made.get());
    }
    m_catalogTree->setCurrentItem(nullptr);
    RefillCatalogTreeKeepingExpansion();
}

// Fills the catalog tree again with the rows that were open opened again.
void CCatalogEditorDlg::RefillCatalogTreeKeepingExpansion()
{
    QSet<QString> expanded;
    for (QTreeWidgetItemIterator it(m_catalogTree); *it; ++it)
        if (CCatalogItem* item = Editor::CatalogItemOfRow(*it); item && (*it)->isExpanded())
            expanded.insert(item->GetGUID());
    RefillTree(1);
    for (QTreeWidgetItemIterator it(m_catalogTree); *it; ++it)
        if (CCatalogItem* item = Editor::CatalogItemOfRow(*it);
            item && expanded.contains(item->GetGUID()))
            (*it)->setExpanded(true);
}
