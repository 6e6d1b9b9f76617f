// New entries in the catalog tree: an item from the chosen template ("NEW"), an item from the
// selected item (the second "NEW") and a group ("AG").
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogManager.h"
#include "catalog/CatalogMetadata.h"
#include "catalog/ModuleConfiguration.h"
#include "editor/CatalogEdits.h"
#include "editor/EditCommands.h"
#include "host/HostServices.h"
#include "trace/FunctionTracer.h"


using namespace ZEVGis;
using namespace ZEVGis::Data;

namespace
{
constexpr unsigned MsgGroupIntoGroupOfItems = 6536;
constexpr unsigned MsgItemIntoGroupOfGroups = 6538;
constexpr unsigned MsgNewGroupName = 4054;

bool HoldsAny(CCatalogItem& group, bool groups)
{
    for (const auto& [guid, sub] : *group.GetSubItems())
        if (sub && (sub->IsGroup() != 0) == groups)
            return true;
    return false;
}

void Alert(unsigned message, QWidget* parent)
{
    Host::HostServices::current().alert(CModuleConfiguration::Instance()->GetMsg(message), parent);
}
} // namespace

void CCatalogEditorDlg::OnBnClickedBtnNew()
{
    ZEVX_TRACE_FUNCTION("CCatalogEditorDlg::OnBnClickedBtnNew", "CatalogEditorDlg", 741);
    if (Host::HostServices::current().isCtrlPressed())
    {
        UpgradeCurrentItem();
        return;
    }
    NewItemFromTemplate();
}

// A new item from the chosen template: inside the selected group, or beside the selected item.
void CCatalogEditorDlg::NewItemFromTemplate()
{
    QTreeWidgetItem* row = m_catalogTree->currentItem();
    const auto tmpl = SelectedTemplate();
    CCatalogItem* selected = Editor::CatalogItemOfRow(row);
    if (!row || !tmpl || !selected)
        return;
    const auto catalog = GetCatalog(1);
    if (!catalog)
        return;

    boost::shared_ptr<CCatalogItem> group;
    QTreeWidgetItem* groupRow = nullptr;
    if (selected->IsGroup())
    {
        if (HoldsAny(*selected, true))
        {
            Alert(MsgItemIntoGroupOfGroups, this);
            return;
        }
        group = catalog->GetItembyGuid(selected->GetGUID());
        groupRow = row;
    }
    else
    {
        group = selected->GetParentItem();
        groupRow = row->parent();
        if (!group || !group->IsGroup() || !groupRow)
            return;
    }
    const QString reference = catalog->GetReference();
    const auto* command = static_cast<Editor::NewItemCommand*>(RunEdit(new Editor::NewItemCommand(
        catalog, group, tmpl, [reference](const boost::shared_ptr<CCatalogItem>& made) {
            CCatalogManager::Instance()->ExtendCatalogItem(reference, made);
        })));
    if (command)
        AddNewItemRow(groupRow, row, command->made().front());
}

void CCatalogEditorDlg::AddNewItemRow(QTreeWidgetItem* parentRow, QTreeWidgetItem* expandRow,
                                      const boost::shared_ptr<CCatalogItem>& item)
{
    auto* newRow =
        new Editor::CatalogTreeRowItem(item.get(), item->GetName(), Editor::ImageItem, &m_images);
    parentRow->addChild(newRow);
    expandRow->setExpanded(true);
    m_rowFilter.pin(item.get());
    m_catalogTree->setCurrentItem(newRow);
    m_catalogTree->scrollToItem(newRow);
    m_itemRows[item.get()] = newRow;
}

// A copy of the selected item beside it, named by the template or after the item.
void CCatalogEditorDlg::OnBnClickedBtnNewFromItem()
{
    QTreeWidgetItem* row = m_catalogTree->currentItem();
    const auto tmpl = SelectedTemplate();
    CCatalogItem* selected = Editor::CatalogItemOfRow(row);
    if (!row || !tmpl || !selected || selected->IsGroup())
        return;
    const auto group = selected->GetParentItem();
    QTreeWidgetItem* groupRow = row->parent();
    const auto catalog = GetCatalog(1);
    if (!group || !group->IsGroup() || !groupRow || !catalog)
        return;
    const auto source = catalog->GetItembyGuid(selected->GetGUID());
    if (const auto* command = static_cast<Editor::AddingCommand*>(
            RunEdit(new Editor::NewFromItemCommand(catalog, source, group, tmpl))))
        AddNewItemRow(groupRow, row, command->made().front());
}

// A new group inside the selected group, or at the root level; its label opens for a name.
void CCatalogEditorDlg::OnBnClickedBtnAddGroup()
{
    QTreeWidgetItem* row = m_catalogTree->currentItem();
    if (!row)
        row = m_lowerRoot;
    const auto tmpl = SelectedTemplate();
    const auto catalog = GetCatalog(1);
    if (!row || !tmpl || !catalog)
        return;
    CCatalogItem* selected = Editor::CatalogItemOfRow(row);
    if (selected && !selected->IsGroup())
        return;
    const int depth = selected ? Editor::ItemDepth(*selected) : 0;
    const auto metadata = SelectedMetadata();
    if (selected && metadata && depth >= metadata->GetMaxDepthlevel() - 1)
        return;
    if (selected && HoldsAny(*selected, false))
    {
        Alert(MsgGroupIntoGroupOfItems, this);
        return;
    }

    const auto* command = static_cast<Editor::AddingCommand*>(RunEdit(new Editor::NewGroupCommand(
        catalog, selected, depth, tmpl, CModuleConfiguration::Instance()->GetMsg(MsgNewGroupName))));
    if (!command)
        return;
    const auto group = command->made().front();
    m_rowFilter.pin(group.get());
    auto* newRow = new Editor::CatalogTreeRowItem(group.get(), group->GetName(), Editor::ImageGroup,
                                                  &m_images);
    row->addChild(newRow);
    row->setExpanded(true);
    m_namingRow = newRow;
    m_catalogTree->beginLabelEdit(newRow);
}
