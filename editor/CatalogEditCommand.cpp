#include "editor/CatalogEditCommand.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"

#include <unordered_set>

namespace ZEVGis::Editor
{

using Data::CCatalog;
using Data::CCatalogItem;

CatalogEditCommand::CatalogEditCommand(boost::shared_ptr<CCatalog> catalog)
    : m_catalog(std::move(catalog))
{
}

void CatalogEditCommand::runAhead()
{
    redoEdit();
    m_ranAhead = true;
}

void CatalogEditCommand::redo()
{
    if (m_ranAhead)
    {
        m_ranAhead = false;
        return;
    }
    redoEdit();
}

EntryPlacement PlacementOf(CCatalog& catalog, const ItemPtr& entry)
{
    EntryPlacement placement;
    placement.entry = entry;
    if (!entry)
        return placement;
    // The parent as the catalog's deletion finds it: by pointer, else by the GUID it names.
    placement.parent = entry->GetParentItem();
    if (!placement.parent && !entry->GetParentItemGuid().isEmpty())
        placement.parent = catalog.GetItembyGuid(entry->GetParentItemGuid());
    if (placement.parent)
    {
        const auto* siblings = placement.parent->GetSubItems();
        const auto it = siblings->find(entry->GetGUID());
        placement.inParent = it != siblings->end() && it->second == entry;
    }
    // Iteratively, and each entry once: trees may be deep, a broken one may hold a cycle.
    std::vector<ItemPtr> pending{entry};
    std::unordered_set<const CCatalogItem*> seen;
    while (!pending.empty())
    {
        ItemPtr current = pending.back();
        pending.pop_back();
        if (!seen.insert(current.get()).second)
            continue;
        if (catalog.GetItembyGuid(current->GetGUID()) == current)
            placement.registered.push_back(current);
        for (const auto& [guid, sub] : *current->GetSubItems())
            if (sub)
                pending.push_back(sub);
    }
    return placement;
}

void TakeOut(CCatalog& catalog, const EntryPlacement& placement)
{
    if (placement.entry)
        catalog.DeleteItem(placement.entry);
}

void PutBack(CCatalog& catalog, const EntryPlacement& placement)
{
    if (!placement.entry)
        return;
    if (placement.parent && placement.inParent)
        placement.parent->AddSubItem(placement.entry);
    for (const ItemPtr& entry : placement.registered)
        catalog.AddItem(entry);
}

} // namespace ZEVGis::Editor
