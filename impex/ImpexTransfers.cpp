#include "impex/ImpexTransfers.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "controls/ClrTreeCtrl.h"
#include "trace/FunctionTracer.h"
#include "xml/XmlDocument.h"

#include <QDir>
#include <QFileInfo>
#include <QTreeWidgetItem>
#include <boost/make_shared.hpp>

namespace ZEVGis::Impex
{

using Data::CCatalog;
using Data::CCatalogItem;
using Repository::CNetCatalogueItem;

namespace
{

std::string Narrow(const QString& text)
{
    return text.toLocal8Bit().toStdString();
}

void HangUnder(const ItemPtr& parent, const ItemPtr& item)
{
    parent->AddSubItem(item);
    item->SetParentItem(parent);
}

// Hangs `item` under `parent`; an item `local` holds already is registered again, so that it
// is no longer listed as a root element.
void HangUnderIn(CCatalog& local, const ItemPtr& parent, const ItemPtr& item)
{
    HangUnder(parent, item);
    if (local.GetItembyGuid(item->GetGUID()) == item)
        local.AddItem(item);
}

// The copy of `source` that `target`'s factory makes, with the source's GUID.
ItemPtr CopyFor(CCatalog& target, CCatalogItem& source)
{
    const auto factory = target.GetFactory();
    ItemPtr copy = factory ? factory->CreateItemFrom(&source) : ItemPtr();
    if (copy)
        copy->SetGUID(source.GetGUID());
    return copy;
}

// A top-level copy of `source` in `target`, when `target` does not hold it yet.
void AddTopLevelCopy(CCatalog& target, CCatalogItem& source, std::vector<FileCopy>& copies)
{
    if (target.GetItembyGuid(source.GetGUID()))
        return;
    ItemPtr copy = CopyFor(target, source);
    if (copy && target.AddItem(copy))
        copies.push_back({copy, &source, QString(), ImageGroup, false});
}

// A copy of `source` under `parentCopy`, when `target` does not hold it yet.
void AddSubCopy(CCatalog& target, const ItemPtr& parentCopy, CCatalogItem& source,
                std::vector<FileCopy>& copies)
{
    if (!parentCopy || target.GetItembyGuid(source.GetGUID()))
        return;
    ItemPtr copy = CopyFor(target, source);
    if (!copy)
        return;
    copy->SetParentItem(parentCopy);
    parentCopy->AddSubItem(copy);
    if (target.AddItem(copy))
        copies.push_back({copy, &source, parentCopy->GetGUID(), ImageItem, true});
}

// The record content of `fetched` in the item `local` holds under its GUID, keeping that
// item's place and sub-items; `fetched` itself when the GUID is new.
ItemPtr AdoptInto(CCatalog& local, const ItemPtr& fetched)
{
    ItemPtr existing = local.GetItembyGuid(fetched->GetGUID());
    if (!existing || existing == fetched)
        return fetched;
    const ItemPtr parent = existing->GetParentItem();
    const QString parentGuid = existing->GetParentItemGuid();
    const CCatalogItem::ItemMap subItems = *existing->GetSubItems();
    *existing = *fetched;
    *existing->GetSubItems() = subItems;
    if (parent)
        existing->SetParentItem(parent);
    else
        existing->SetParentItemGuid(parentGuid);
    return existing;
}

} // namespace

// ---- "->" in repository mode

bool SendEntryToRepository(const RepositoryTarget& target, CCatalog& local,
                           const CCatalogItem& entry, const FunctionTracer& tracer)
{
    // Bottom-up: the item, its parent, ... its top-level ancestor, each alone. A broken
    // catalog whose parents form a cycle ends after as many steps as it has items.
    size_t steps = local.GetAllElementsMap()->size();
    for (ItemPtr current = local.GetItembyGuid(entry.GetGUID()); current && steps > 0; --steps)
    {
        const int added = target.repository.AddCatalogItem(target.reference, target.catalogName,
                                                           current, 0);
        tracer.Log(3, added ? "U network repository dodan katalog item!"
                            : "Greška u dodavanju na server!");
        if (!target.repository.IsRepositoryAccessible())
            return false;
        current = local.GetItembyGuid(current->GetParentItemGuid());
    }
    if (entry.IsGroup())
    {
        AddCatalogItemToNetrepo(target, local.GetItembyGuid(entry.GetGUID()));
        if (!target.repository.IsRepositoryAccessible())
            return false;
    }
    return true;
}

void AddCatalogItemToNetrepo(const RepositoryTarget& target, ItemPtr item)
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::AddCatalogItemToNetrepo", "DlgCatalogImpex", 781);
    if (!item)
        return;
    const std::string name = Narrow(item->GetName());
    if (target.repository.AddCatalogItem(target.reference, target.catalogName, item, 1))
        ZEVX_TRACE_LOG(3, "Dodan item: %s", name.c_str());
    else
        ZEVX_TRACE_LOG(3, "Nije dodan item: %s", name.c_str());
    std::vector<ItemPtr> subItems;
    item->GetSortedSubItems(subItems);
    for (const ItemPtr& sub : subItems)
    {
        AddCatalogItemToNetrepo(target, sub);
        if (!target.repository.IsRepositoryAccessible())
            break;
    }
}

// ---- "<-" in repository mode

const CNetCatalogueItem* RecordOfRow(const QTreeWidgetItem* row)
{
    return static_cast<const CNetCatalogueItem*>(CClrTreeCtrl::GetItemData(row));
}

bool BringRecordToLocal(const RepositoryTarget& target, CCatalog& local, QTreeWidgetItem* row)
{
    if (const CNetCatalogueItem* record = RecordOfRow(row))
    {
        ItemPtr item = target.repository.GetCatalogItemById(
            target.reference, QString::fromStdWString(record->GetCatalogueId()));
        if (item)
        {
            item = AdoptInto(local, item);
            CreateParentItems(target, local, item);
            AddCatalogItemToLocalCatalog(target, local, item, row);
        }
    }
    return target.repository.IsRepositoryAccessible() != 0;
}

void CreateParentItems(const RepositoryTarget& target, CCatalog& local, ItemPtr item)
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::CreateParentItems", "DlgCatalogImpex", 841);
    // Iterative, from the item upwards; a repository whose parents form a cycle stops once
    // every record of the chain was fetched.
    for (int steps = 0; item && steps < 100000; ++steps)
    {
        if (!target.repository.IsRepositoryAccessible())
            return;
        const QString parentGuid = item->GetParentItemGuid();
        if (parentGuid.isEmpty())
            return;
        if (const ItemPtr parent = local.GetItembyGuid(parentGuid))
        {
            HangUnderIn(local, parent, item);
            return;
        }
        const ItemPtr parent = target.repository.GetCatalogItemById(target.reference, parentGuid);
        if (!parent)
            return;
        local.AddItem(parent);
        HangUnderIn(local, parent, item);
        item = parent;
    }
}

void AddCatalogItemToLocalCatalog(const RepositoryTarget& target, CCatalog& local, ItemPtr item,
                                  QTreeWidgetItem* row)
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::AddCatalogItemToLocalCatalog", "DlgCatalogImpex", 883);
    if (!item)
        return;
    item = AdoptInto(local, item);
    const int added = local.AddItem(item);
    if (const CNetCatalogueItem* record = RecordOfRow(row))
    {
        if (const ItemPtr parent =
                local.GetItembyGuid(QString::fromStdWString(record->GetParentId())))
            HangUnderIn(local, parent, item);
    }
    ZEVX_TRACE_LOG(3, "Dodan item u lokalni katalog: %d ", added);
    for (QTreeWidgetItem* childRow : CClrTreeCtrl::Children(row))
    {
        if (!target.repository.IsRepositoryAccessible())
            return;
        const CNetCatalogueItem* record = RecordOfRow(childRow);
        if (!record)
            continue;
        const ItemPtr child = target.repository.GetCatalogItemById(
            target.reference, QString::fromStdWString(record->GetCatalogueId()));
        if (child)
            HangUnder(item, child);
        AddCatalogItemToLocalCatalog(target, local, child, childRow);
    }
}

// ---- "Del" in repository mode

namespace
{

// Deletes the record `id` and, on success, `row` (when given). False when the record stays.
bool DeleteRecord(const RepositoryTarget& target, const QString& id, QTreeWidgetItem* row,
                  const RowCallback& beforeRowDeleted, const FunctionTracer& tracer)
{
    if (!target.repository.DeleteCatalogItem(target.reference, id))
        return false;
    if (row)
    {
        if (beforeRowDeleted)
            beforeRowDeleted(row);
        delete row;
    }
    tracer.Log(3, FunctionTracer::Format("Catalog item deleted:%s", Narrow(id).c_str()));
    return true;
}

QString IdOfRow(const QTreeWidgetItem* row)
{
    const CNetCatalogueItem* record = RecordOfRow(row);
    return record ? QString::fromStdWString(record->GetCatalogueId()) : QString();
}

} // namespace

bool DeleteCatalogItems(const RepositoryTarget& target, QTreeWidgetItem* row,
                        const RowCallback& beforeRowDeleted)
{
    ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::DeleteCatalogItems", "DlgCatalogImpex", 1010);
    if (!RecordOfRow(row))
        return false;
    const QString ownId = IdOfRow(row);
    for (QTreeWidgetItem* child : CClrTreeCtrl::Children(row))
    {
        const CNetCatalogueItem* record = RecordOfRow(child);
        if (!record)
            continue;
        const QString id = IdOfRow(child);
        // A sub-group deletes its own record last; its record is asked for once more here,
        // and its row is gone by then when that succeeded.
        const bool rowGone = record->GetIsGroup() && DeleteCatalogItems(target, child, beforeRowDeleted);
        if (!DeleteRecord(target, id, rowGone ? nullptr : child, beforeRowDeleted, zevxTracer))
            return false;
        if (!target.repository.IsRepositoryAccessible())
            return false;
    }
    return DeleteRecord(target, ownId, row, beforeRowDeleted, zevxTracer);
}

// ---- file transfers

std::vector<FileCopy> CopyIntoCatalog(CCatalog& target, CCatalogItem& selected, bool hasTreeParent)
{
    std::vector<FileCopy> copies;
    if (selected.IsGroup())
    {
        AddTopLevelCopy(target, selected, copies);
        const ItemPtr groupCopy = target.GetItembyGuid(selected.GetGUID());
        std::vector<ItemPtr> subItems;
        selected.GetSortedSubItems(subItems);
        for (const ItemPtr& sub : subItems)
            if (sub)
                AddSubCopy(target, groupCopy, *sub, copies);
        return copies;
    }
    const ItemPtr parent = selected.GetParentItem();
    if (!parent || !parent->IsGroup() || !hasTreeParent)
        return copies;
    AddTopLevelCopy(target, *parent, copies);
    AddSubCopy(target, target.GetItembyGuid(parent->GetGUID()), selected, copies);
    return copies;
}

boost::shared_ptr<CCatalog> ReadCatalogFile(const QString& path, QString& why)
{
    CXmlDocument document;
    if (!document.LoadFile(path))
    {
        why = document.GetResult();
        return {};
    }
    auto catalog = boost::make_shared<CCatalog>();
    if (!catalog->ParseXML(document.GetDocumentText()))
    {
        why = catalog->ParseError();
        return {};
    }
    return catalog;
}

std::vector<QString> TakeBackGuids(CCatalogItem& item)
{
    std::vector<ItemPtr> subItems;
    item.GetSortedSubItems(subItems);
    std::vector<QString> guids;
    guids.reserve(subItems.size() + 1);
    for (const ItemPtr& sub : subItems)
        if (sub)
            guids.push_back(sub->GetGUID());
    guids.push_back(item.GetGUID());
    return guids;
}

int CompareCatalogItems(const void* a, const void* b)
{
    if (!a || !b)
        return 0;
    return static_cast<const CCatalogItem*>(a)->GetOrd() -
           static_cast<const CCatalogItem*>(b)->GetOrd();
}

int CompareRecords(const void* a, const void* b)
{
    if (!a || !b)
        return 0;
    return static_cast<const CNetCatalogueItem*>(a)->GetOrd() -
           static_cast<const CNetCatalogueItem*>(b)->GetOrd();
}

QString WithXmlExtension(const QString& path)
{
    if (path.isEmpty() || path.right(4).compare(QLatin1String(".xml"), Qt::CaseInsensitive) == 0)
        return path;
    return path + QLatin1String(".xml");
}

bool FolderOfPathExists(const QString& path)
{
    const int separator = std::max(path.lastIndexOf(QLatin1Char('\\')),
                                   path.lastIndexOf(QLatin1Char('/')));
    if (separator < 0)
        return false;
    // "/file.xml": the folder is the file system's root.
    const QString folder = separator == 0 ? path.left(1) : path.left(separator);
    return QFileInfo::exists(folder);
}

} // namespace ZEVGis::Impex
