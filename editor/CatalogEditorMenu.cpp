// The trees' context menu, copying a group, and copying entries of the drawing's copy into
// the catalog ("Add to application").
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogMetadata.h"
#include "catalog/ModuleConfiguration.h"
#include "editor/AddToApplication.h"
#include "editor/CatalogEdits.h"
#include "editor/EditCommands.h"
#include "host/HostServices.h"

#include <QMenu>
#include <climits>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::TreeMenuCommand;

namespace
{
constexpr unsigned MsgGroupPresent = 9490;
constexpr unsigned MsgItemPresent = 9491;
} // namespace

void CCatalogEditorDlg::OnTreeContextMenu(bool upper, const QPoint& pos)
{
    Editor::CatalogTreeWidget* tree = upper ? m_drawingTree : m_catalogTree;
    // The clicked tree is the one the menu's commands act on.
    tree->setFocus(Qt::MouseFocusReason);
    m_activeTree = upper ? 1 : 2;
    QTreeWidgetItem* row = tree->itemAt(pos);
    if (row)
        tree->setCurrentItem(row);
    const auto metadata = SelectedMetadata();
    if ((metadata && metadata->GetDisableNewItems()) || !row)
        return;

    CCatalogItem* item = Editor::CatalogItemOfRow(row);
    const bool mayHoldGroups =
        Editor::MayHoldGroups(item, metadata ? metadata->GetMaxDepthlevel() : INT_MAX);
    const auto entries =
        Editor::TreeMenuEntries(Editor::RowKindOf(item, upper), upper, mayHoldGroups);
    QMenu menu(this);
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    for (const Editor::TreeMenuEntry& entry : entries)
    {
        if (entry.id < 0)
        {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(configuration->GetMsg(entry.message));
        action->setData(entry.id);
        action->setEnabled(entry.enabled);
    }
    // The entry is taken from the menu's own signal: it is set however the entry was chosen.
    QAction* chosen = nullptr;
    connect(&menu, &QMenu::triggered, &menu, [&chosen](QAction* action) { chosen = action; });
    menu.exec(tree->viewport()->mapToGlobal(pos));
    if (!chosen || !chosen->data().isValid())
        return;
    RunMenuCommand(Editor::TreeMenuCommandOf(entries, chosen->data().toInt()), upper,
                   tree->currentItem());
}

void CCatalogEditorDlg::RunMenuCommand(TreeMenuCommand command, bool upper, QTreeWidgetItem* row)
{
    const int which = upper ? 0 : 1;
    switch (command)
    {
    case TreeMenuCommand::None:
        break;
    case TreeMenuCommand::NewGroup:
        OnBnClickedBtnAddGroup();
        break;
    case TreeMenuCommand::NewItem:
        NewItemFromTemplate();
        break;
    case TreeMenuCommand::NewItemFromSelected:
        OnBnClickedBtnNewFromItem();
        break;
    case TreeMenuCommand::AddToApplication:
        OnBnClickedBtnAddToApp();
        break;
    case TreeMenuCommand::DeleteSelected:
        OnBnClickedBtnDel();
        break;
    case TreeMenuCommand::DeleteGroupContents:
        DeleteGroupContents(Editor::CatalogItemOfRow(row), which);
        break;
    case TreeMenuCommand::DeleteRootLevel:
        DeleteRootLevel(which);
        break;
    case TreeMenuCommand::CopyGroup:
        CopyGroup(Editor::CatalogItemOfRow(row));
        break;
    }
}

boost::shared_ptr<CCatalogItem> CCatalogEditorDlg::CopyGroup(CCatalogItem* source)
{
    const auto catalog = GetCatalog(1);
    if (!source || !m_lowerRoot || !catalog)
        return {};
    const auto* command = static_cast<Editor::CopyGroupCommand*>(
        RunEdit(new Editor::CopyGroupCommand(catalog, source)));
    if (!command)
        return {};
    const auto group = command->made().front();
    m_rowFilter.pin(group.get());
    auto* groupRow = new Editor::CatalogTreeRowItem(group.get(), group->GetName(),
                                                    Editor::ImageGroup, &m_images);
    m_lowerRoot->addChild(groupRow);
    for (const auto& child : command->children())
    {
        m_rowFilter.pin(child.get());
        groupRow->addChild(new Editor::CatalogTreeRowItem(child.get(), child->GetName(),
                                                          Editor::ImageItem, &m_images));
        m_itemRows[child.get()] = groupRow->child(groupRow->childCount() - 1);
    }
    m_lowerRoot->setExpanded(true);
    return group;
}

void CCatalogEditorDlg::OnBnClickedBtnAddToApp()
{
    QTreeWidgetItem* row = m_drawingTree->currentItem();
    const auto target = GetCatalog(1);
    const auto source = GetCatalog(0);
    if (!row || !target || !source)
        return;
    Editor::AddToApplicationResult result;
    RunEdit(new Editor::AddToApplicationCommand(source, target, Editor::CatalogItemOfRow(row),
                                                result));
    if (result.outcome != Editor::AddToApplicationResult::Added)
    {
        const unsigned message = result.outcome == Editor::AddToApplicationResult::GroupPresent
                                     ? MsgGroupPresent
                                     : MsgItemPresent;
        Host::HostServices::current().alert(
            CModuleConfiguration::Instance()->GetMsg(message).arg(result.name), this);
        return;
    }
    RefillTree(1);
}
