#include "editor/AddToApplication.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"

#include <boost/make_shared.hpp>

namespace ZEVGis::Editor
{

using Data::CCatalog;
using Data::CCatalogItem;
using ItemPtr = boost::shared_ptr<CCatalogItem>;

ItemPtr CopyEntryInto(CCatalog& target, CCatalogItem& entry, const ItemPtr& parent)
{
    auto copy = boost::make_shared<CCatalogItem>();
    copy->SetGUID(entry.GetGUID());
    copy->SetIsGroup(entry.IsGroup());
    copy->SetMsgName(entry.GetMsgName());
    copy->SetPictureRef(entry.GetPictureRef());
    copy->SetOrd(entry.GetOrd());
    auto properties = boost::make_shared<Data::CPropertiesEx>();
    if (const auto own = entry.GetProperties())
        properties->MakeDeepCopy(*own);
    copy->SetProperties(properties);
    // The catalog keeps names apart from the properties: without it the copy would be nameless.
    copy->SetName(entry.GetName());
    if (parent)
    {
        copy->SetParentItem(parent);
        parent->AddSubItem(copy);
    }
    target.AddItem(copy);
    return copy;
}

namespace
{

bool Holds(const CCatalog& catalog, const CCatalogItem& entry)
{
    return catalog.GetItembyGuid(entry.GetGUID()) != nullptr;
}

// Copies those direct sub-items of `entry` that `target` lacks under `parent`.
void CopyMissingSubItems(CCatalog& target, CCatalogItem& entry, const ItemPtr& parent)
{
    for (const auto& [guid, sub] : *entry.GetSubItems())
        if (sub && !Holds(target, *sub))
            CopyEntryInto(target, *sub, parent);
}

} // namespace

AddToApplicationResult AddToApplication(CCatalog& source, CCatalog& target, CCatalogItem* entry)
{
    if (!entry)
    {
        for (const auto& [guid, element] : *source.GetRootElementsMap())
        {
            if (!element)
                continue;
            ItemPtr held = target.GetItembyGuid(element->GetGUID());
            if (!held)
                held = CopyEntryInto(target, *element, {});
            CopyMissingSubItems(target, *element, held);
        }
        return {};
    }
    if (Holds(target, *entry))
        return {entry->IsGroup() ? AddToApplicationResult::GroupPresent
                                 : AddToApplicationResult::ItemPresent,
                entry->GetName()};
    if (entry->IsGroup())
    {
        const ItemPtr group = CopyEntryInto(target, *entry, {});
        CopyMissingSubItems(target, *entry, group);
        return {};
    }
    ItemPtr parent;
    if (const ItemPtr sourceParent = entry->GetParentItem())
    {
        parent = target.GetItembyGuid(sourceParent->GetGUID());
        if (!parent)
            parent = CopyEntryInto(target, *sourceParent, {});
    }
    CopyEntryInto(target, *entry, parent);
    return {};
}

} // namespace ZEVGis::Editor
