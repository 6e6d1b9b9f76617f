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

ItemPtr Copy(CCatalog& target, CCatalogItem& entry, const ItemPtr& parent,
             std::vector<ItemPtr>* made)
{
    ItemPtr copy = CopyEntryInto(target, entry, parent);
    if (made)
        made->push_back(copy);
    return copy;
}

// Copies those direct sub-items of `entry` that `target` lacks under `parent`.
void CopyMissingSubItems(CCatalog& target, CCatalogItem& entry, const ItemPtr& parent,
                         std::vector<ItemPtr>* made)
{
    for (const auto& [guid, sub] : *entry.GetSubItems())
        if (sub && !Holds(target, *sub))
            Copy(target, *sub, parent, made);
}

} // namespace

AddToApplicationResult AddToApplication(CCatalog& source, CCatalog& target, CCatalogItem* entry,
                                        std::vector<ItemPtr>* made)
{
    if (!entry)
    {
        for (const auto& [guid, element] : *source.GetRootElementsMap())
        {
            if (!element)
                continue;
            ItemPtr held = target.GetItembyGuid(element->GetGUID());
            if (!held)
                held = Copy(target, *element, {}, made);
            CopyMissingSubItems(target, *element, held, made);
        }
        return {};
    }
    if (Holds(target, *entry))
        return {entry->IsGroup() ? AddToApplicationResult::GroupPresent
                                 : AddToApplicationResult::ItemPresent,
                entry->GetName()};
    if (entry->IsGroup())
    {
        const ItemPtr group = Copy(target, *entry, {}, made);
        CopyMissingSubItems(target, *entry, group, made);
        return {};
    }
    ItemPtr parent;
    if (const ItemPtr sourceParent = entry->GetParentItem())
    {
        parent = target.GetItembyGuid(sourceParent->GetGUID());
        if (!parent)
            parent = Copy(target, *sourceParent, {}, made);
    }
    Copy(target, *entry, parent, made);
    return {};
}

} // namespace ZEVGis::Editor
