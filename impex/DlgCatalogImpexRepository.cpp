// The transfer buttons, and repository mode: the right tree from the repository, sending,
// bringing back and deleting records.
#include "impex/DlgCatalogImpex.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/ModuleConfiguration.h"
#include "host/HostServices.h"
#include "impex/ImpexProgress.h"
#include "impex/ImpexTransfers.h"
#include "trace/FunctionTracer.h"

using namespace ZEVGis;
using ZEVGis::Data::CCatalogItem;
using Repository::CNetCatalogueItem;

namespace
{

constexpr unsigned MsgSending = 70250;
constexpr unsigned MsgReading = 70251;
constexpr unsigned MsgBringing = 70252;
constexpr unsigned MsgDeleting = 70253;

const CCatalogItem* ItemOfRow(const QTreeWidgetItem* row)
{
    return static_cast<const CCatalogItem*>(CClrTreeCtrl::GetItemData(row));
}

// The entries a button works on: the root's children when the root is selected.
std::vector<QTreeWidgetItem*> EntriesOf(QTreeWidgetItem* selected, QTreeWidgetItem* root)
{
    if (!selected)
        return {};
    if (selected == root)
        return CClrTreeCtrl::Children(root);
    return {selected};
}

} // namespace

void CDlgCatalogImpex::OnBnClickedBtnAdd()
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::OnBnClickedBtnAdd", "DlgCatalogImpex", 700);
    Host::WaitCursor wait;
    UpdateData(true);
    if (m_nMode == 1)
        SendToRepository(zevxTracer);
    else if (m_nDirection == Export)
        CopyToFile();
    else
        TakeBackFromLocal();
}

void CDlgCatalogImpex::OnBnClickedBtnRemove()
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::OnBnClickedBtnRemove", "DlgCatalogImpex", 925);
    Host::WaitCursor wait;
    UpdateData(true);
    if (m_nMode == 1)
        BringFromRepository();
    else if (m_nDirection == Import)
        CopyToLocal();
    else
        TakeBackFromFile();
}

void CDlgCatalogImpex::SendToRepository(const FunctionTracer& tracer)
{
    if (!RepositoryUsable() || !m_localCatalog || !SendEntries(tracer))
        return;
    ReloadNetworkRepoItems();
    RedrawTrees();
}

// The sends of "->" under their own progress window, closed before the reload shows its own.
// False when the repository became unreachable: the handler ends there, without a reload.
bool CDlgCatalogImpex::SendEntries(const FunctionTracer& tracer)
{
    const std::vector<QTreeWidgetItem*> entries = EntriesOf(m_treeLocal->currentItem(), m_hLeftRoot);
    int sends = 0;
    for (QTreeWidgetItem* entry : entries)
        if (const CCatalogItem* item = ItemOfRow(entry))
            sends += Impex::SendsFor(*item);
    Impex::TransferProgress progress(*m_repository, this, MsgSending, sends);
    // The walk sends every descendant of a group once more after the group: one action.
    const Impex::RepositoryAction action(progress);
    const Impex::RepositoryTarget target{progress, m_strCatalogReference, m_strCatalogName};
    for (QTreeWidgetItem* entry : entries)
        if (const CCatalogItem* item = ItemOfRow(entry);
            item && !Impex::SendEntryToRepository(target, *m_localCatalog, *item, tracer))
            return false;
    return true;
}

void CDlgCatalogImpex::BringFromRepository()
{
    if (!RepositoryUsable() || !m_localCatalog || !m_rightShowsRecords)
        return;
    QTreeWidgetItem* selected = m_treeTarget->currentItem();
    if (!selected)
        return;
    Impex::TransferProgress progress(*m_repository, this, MsgBringing, Impex::RowsIn(selected));
    const Impex::RepositoryTarget target{progress, m_strCatalogReference, m_strCatalogName};
    for (QTreeWidgetItem* entry : EntriesOf(selected, m_hRightRoot))
        if (!Impex::BringRecordToLocal(target, *m_localCatalog, entry))
            break;
    // The local catalog changed in any case: its tree is rebuilt even after a lost repository.
    FillCatalogTree(*m_treeLocal, m_localCatalog.get());
    RedrawTrees();
    if (selected->isExpanded())
        selected->setExpanded(false);
}

void CDlgCatalogImpex::OnBnClickedBtnDel()
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::OnBnClickedBtnDel", "DlgCatalogImpex", 1060);
    Host::WaitCursor wait;
    UpdateData(true);
    QTreeWidgetItem* selected = m_rightShowsRecords ? m_treeTarget->currentItem() : nullptr;
    if (!selected || m_nMode != 1 || !RepositoryUsable())
    {
        RedrawTrees();
        return;
    }
    Impex::TransferProgress progress(*m_repository, this, MsgDeleting, Impex::RowsIn(selected));
    const Impex::RepositoryTarget target{progress, m_strCatalogReference, m_strCatalogName};
    const auto forget = [this](QTreeWidgetItem* row) { ForgetRows(row); };
    bool selectedGone = false;
    if (selected == m_hRightRoot)
    {
        for (QTreeWidgetItem* entry : CClrTreeCtrl::Children(m_hRightRoot))
        {
            Impex::DeleteCatalogItems(target, entry, forget);
            if (!progress.IsRepositoryAccessible())
                return;
        }
    }
    else if (const CNetCatalogueItem* record = Impex::RecordOfRow(selected);
             record && record->GetIsGroup())
        selectedGone = Impex::DeleteCatalogItems(target, selected, forget);
    else if (record)
        selectedGone = DeleteSelectedRecord(selected, zevxTracer);
    RedrawTrees();
    if (!selectedGone && selected->isExpanded())
        selected->setExpanded(false);
}

// A record that is not a group: deleted with its row, or kept with its row. True when gone.
bool CDlgCatalogImpex::DeleteSelectedRecord(QTreeWidgetItem* row, const FunctionTracer& tracer)
{
    const QString id = QString::fromStdWString(Impex::RecordOfRow(row)->GetCatalogueId());
    const std::string narrowId = id.toLocal8Bit().toStdString();
    if (!m_repository->DeleteCatalogItem(m_strCatalogReference, id))
    {
        tracer.Log(3, FunctionTracer::Format("Error deleting catalog item :%s", narrowId.c_str()));
        return false;
    }
    ForgetRows(row);
    delete row;
    tracer.Log(3, FunctionTracer::Format("Catalog item deleted:%s", narrowId.c_str()));
    return true;
}

void CDlgCatalogImpex::ReloadNetworkRepoItems()
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::ReloadNetworkRepoItems", "DlgCatalogImpex", 1358);
    Host::WaitCursor wait;
    ForgetTree(*m_treeTarget);
    m_treeTarget->DeleteAllItems();
    m_rightItemsByGuid.clear();
    m_repositoryItems.clear();
    m_shownFileCatalog.reset();
    m_rightShowsRecords = true;
    // Rows are built detached from the view and shown in one insertion.
    auto* root = new CClrTreeItem(CModuleConfiguration::Instance()->GetMsg(350) +
                                      QStringLiteral(" - network"),
                                  Impex::ImageRightRoot, nullptr);
    m_hRightRoot = root;
    bool stopped = !RepositoryUsable();
    if (!stopped)
    {
        Impex::TransferProgress progress(*m_repository, this, MsgReading);
        AddRepositoryRows(progress, root, QString(), stopped);
    }
    m_treeTarget->addTopLevelItem(root);
    if (stopped)
        return;
    m_treeTarget->SortChildrenCB(root, &Impex::CompareRecords);
    root->setExpanded(true);
}

// The records below `parentId` as rows under `parentRow`, groups descended into; `stopped`
// turns true, and the fill ends where it is, once the repository is unreachable.
void CDlgCatalogImpex::AddRepositoryRows(Impex::RepositoryAccess& repository,
                                         QTreeWidgetItem* parentRow, const QString& parentId,
                                         bool& stopped)
{
    Impex::RepositoryAccess::Records records;
    repository.GetChildCatalogItems(m_strCatalogReference, parentId, records);
    const bool topLevel = parentId.isEmpty();
    for (const auto& record : records)
    {
        if (!repository.IsRepositoryAccessible())
        {
            stopped = true;
            return;
        }
        if (!record)
            continue;
        m_repositoryItems.push_back(record);
        const bool group = record->GetIsGroup() != 0;
        auto* row = new CClrTreeItem(QString::fromStdWString(record->GetName()),
                                     group || topLevel ? Impex::ImageGroup : Impex::ImageItem,
                                     record.get());
        parentRow->addChild(row);
        const QString id = QString::fromStdWString(record->GetCatalogueId());
        m_rightItemsByGuid[id] = row;
        if (group)
            AddRepositoryRows(repository, row, id, stopped);
        if (stopped)
            return;
    }
}
