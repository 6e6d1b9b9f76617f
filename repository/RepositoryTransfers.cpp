#include "repository/RepositoryTransfers.h"

#include <set>

using ZEVGis::Data::CCatalog;
using ZEVGis::Data::CCatalogItem;

namespace Repository
{

namespace
{

using ItemPtr = boost::shared_ptr<CCatalogItem>;

// The client's reason on one line (server messages may span several).
TransferOutcome failed(CRepositoryStorageManager& repository, const QString& what, int records)
{
    QString why = repository.LastError().simplified();
    if (why.isEmpty())
        why = repository.IsRepositoryAccessible() ? QStringLiteral("the repository refused it")
                                                  : QStringLiteral("the repository cannot be reached");
    return {false, records, what + ": " + why};
}

int countTree(CCatalogItem& item)
{
    int count = 1;
    for (const auto& [guid, sub] : *item.GetSubItems())
        if (sub)
            count += countTree(*sub);
    return count;
}

// Fetches one record; `missing` tells a record that is not there from a failed read.
ItemPtr fetch(CRepositoryStorageManager& repository, const QString& reference, const QString& guid,
              bool& failedRead)
{
    ItemPtr item = repository.GetCatalogItemById(reference, guid, 1);
    failedRead = !item && !repository.LastError().isEmpty();
    return item;
}

} // namespace

TransferOutcome ReadRepositoryTree(CRepositoryStorageManager& repository, const QString& reference,
                                   std::vector<RepositoryTreeEntry>& out)
{
    out.clear();
    // Depth first with an explicit stack: children are pushed in reverse to come out in order.
    std::vector<RepositoryTreeEntry> pending;
    std::vector<boost::shared_ptr<CNetCatalogueItem>> children;
    auto pushChildren = [&](const QString& parent, int depth) {
        children.clear();
        if (!repository.GetChildCatalogItems(reference, parent, children, 1))
            return false;
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            pending.push_back({*it, depth});
        return true;
    };
    if (!pushChildren(QString(), 0))
        return failed(repository, "reading the repository's catalog " + reference, 0);
    std::set<std::wstring> seen; // a repository edited by hand may hold a cycle
    while (!pending.empty()) {
        RepositoryTreeEntry entry = pending.back();
        pending.pop_back();
        if (!seen.insert(entry.record->GetCatalogueId()).second)
            continue;
        out.push_back(entry);
        if (!pushChildren(QString::fromStdWString(entry.record->GetCatalogueId()), entry.depth + 1))
            return failed(repository, "reading the repository's catalog " + reference, int(out.size()));
    }
    return {true, int(out.size()), QString()};
}

TransferOutcome PushEntries(CRepositoryStorageManager& repository, const QString& reference,
                            const QString& catalogName, CCatalog& catalog, const QStringList& guids,
                            const TransferProgress& progress)
{
    // Every entry is found before anything is sent.
    std::vector<ItemPtr> entries;
    if (guids.isEmpty()) {
        catalog.GetSortedRootElements(entries);
    } else {
        for (const QString& guid : guids) {
            ItemPtr item = catalog.GetItembyGuid(guid);
            if (!item)
                return {false, 0, "catalog " + reference + " has no entry " + guid + ": nothing was sent"};
            entries.push_back(item);
        }
    }
    int total = 0;
    for (const ItemPtr& entry : entries)
        total += countTree(*entry);

    TransferOutcome outcome;
    for (const ItemPtr& entry : entries) {
        // Ancestors the repository lacks go first, alone, top-most last as the dialog sends them.
        for (ItemPtr up = catalog.GetItembyGuid(entry->GetParentItemGuid()); up;
             up = catalog.GetItembyGuid(up->GetParentItemGuid())) {
            bool failedRead = false;
            if (fetch(repository, reference, up->GetGUID(), failedRead))
                break;
            if (failedRead || !repository.AddCatalogItem(reference, catalogName, up, 0))
                return failed(repository, "sending " + up->GetGUID() + " \"" + up->GetName() + "\"",
                              outcome.records);
        }
        if (!repository.AddCatalogItem(reference, catalogName, entry, 1))
            return failed(repository, "sending " + entry->GetGUID() + " \"" + entry->GetName() + "\"",
                          outcome.records);
        outcome.records += countTree(*entry);
        if (progress)
            progress(outcome.records, total);
    }
    return outcome;
}

TransferOutcome FetchForPull(CRepositoryStorageManager& repository, const QString& reference,
                             const CCatalog& local, const QStringList& guids,
                             std::vector<ItemPtr>& items, const TransferProgress& progress)
{
    items.clear();
    std::set<QString> taken;
    auto take = [&](const ItemPtr& item) {
        items.push_back(item);
        if (progress)
            progress(int(items.size()), 0);
    };
    auto readFailed = [&](const QString& guid) {
        items.clear();
        return failed(repository, "fetching " + guid + " from the repository's catalog " + reference, 0);
    };
    std::vector<boost::shared_ptr<CNetCatalogueItem>> children;
    for (const QString& guid : guids) {
        if (taken.count(guid))
            continue;
        bool failedRead = false;
        ItemPtr entry = fetch(repository, reference, guid, failedRead);
        if (!entry) {
            if (failedRead)
                return readFailed(guid);
            items.clear();
            return {false, 0, "the repository's catalog " + reference + " has no record " + guid
                                  + ": the local catalog is unchanged"};
        }
        // Missing ancestors, nearest first, until one the catalog (or this pull) has.
        std::vector<ItemPtr> ancestors;
        for (QString up = entry->GetParentItemGuid(); !up.isEmpty() && !local.GetItembyGuid(up) && !taken.count(up);) {
            ItemPtr parent = fetch(repository, reference, up, failedRead);
            if (failedRead)
                return readFailed(up);
            if (!parent)
                break; // an orphan record: it arrives at the top level
            ancestors.push_back(parent);
            up = parent->GetParentItemGuid();
        }
        for (auto it = ancestors.rbegin(); it != ancestors.rend(); ++it) {
            taken.insert((*it)->GetGUID());
            take(*it);
        }
        // The entry and its descendants, parents first.
        std::vector<ItemPtr> pending{entry};
        while (!pending.empty()) {
            ItemPtr item = pending.back();
            pending.pop_back();
            if (!taken.insert(item->GetGUID()).second)
                continue;
            take(item);
            children.clear();
            if (!repository.GetChildCatalogItems(reference, item->GetGUID(), children, 1))
                return readFailed(item->GetGUID());
            for (auto it = children.rbegin(); it != children.rend(); ++it) {
                const QString childGuid = QString::fromStdWString((*it)->GetCatalogueId());
                ItemPtr child = fetch(repository, reference, childGuid, failedRead);
                if (failedRead)
                    return readFailed(childGuid);
                if (child)
                    pending.push_back(child);
            }
        }
    }
    return {true, int(items.size()), QString()};
}

void ApplyPull(CCatalog& local, const std::vector<ItemPtr>& items)
{
    for (const ItemPtr& item : items) {
        const QString guid = item->GetGUID();
        if (ItemPtr old = local.GetItembyGuid(guid); old && old != item) {
            // The repository's version takes the old one's place; local children stay.
            if (ItemPtr oldParent = local.GetItembyGuid(old->GetParentItemGuid()))
                oldParent->RemoveSubItem(guid);
            for (const auto& [childGuid, child] : *old->GetSubItems()) {
                if (!child)
                    continue;
                child->SetParentItem(item);
                item->AddSubItem(child);
            }
            local.GetAllElementsMap()->erase(guid);
            local.GetRootElementsMap()->erase(guid);
        }
        if (ItemPtr parent = local.GetItembyGuid(item->GetParentItemGuid())) {
            item->SetParentItem(parent);
            parent->AddSubItem(item);
        } else {
            item->SetParentItem(ItemPtr()); // its parent is nowhere: a top-level entry
        }
        local.AddItem(item);
    }
}

TransferOutcome DeleteRecordTree(CRepositoryStorageManager& repository, const QString& reference,
                                 const QString& guid, const TransferProgress& progress)
{
    bool failedRead = false;
    if (!fetch(repository, reference, guid, failedRead)) {
        if (failedRead)
            return failed(repository, "reading " + guid + " in the repository's catalog " + reference, 0);
        return {false, 0, "the repository's catalog " + reference + " has no record " + guid};
    }
    // Post-order: every record comes after all records below it.
    std::vector<QString> order;
    std::vector<QString> pending{guid};
    std::set<QString> seen;
    std::vector<boost::shared_ptr<CNetCatalogueItem>> children;
    while (!pending.empty()) {
        const QString current = pending.back();
        pending.pop_back();
        if (!seen.insert(current).second)
            continue;
        order.push_back(current);
        children.clear();
        if (!repository.GetChildCatalogItems(reference, current, children, 1))
            return failed(repository, "reading the records below " + current, 0);
        for (const auto& child : children)
            pending.push_back(QString::fromStdWString(child->GetCatalogueId()));
    }
    TransferOutcome outcome;
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        if (!repository.DeleteCatalogItem(reference, *it))
            return failed(repository, "deleting " + *it, outcome.records);
        ++outcome.records;
        if (progress)
            progress(outcome.records, int(order.size()));
    }
    return outcome;
}

} // namespace Repository
