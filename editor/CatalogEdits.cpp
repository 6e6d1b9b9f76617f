#include "editor/CatalogEdits.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/Utility.h"
#include "editor/UniqueChildName.h"

#include <boost/make_shared.hpp>

namespace ZEVGis::Editor
{

using Data::CCatalog;
using Data::CCatalogItem;

namespace
{
constexpr int MaxParentChain = 1 << 16;
} // namespace

bool AttachNewChild(CCatalog& catalog, const ItemPtr& parent, const ItemPtr& child,
                    const QString& base)
{
    child->SetName(UniqueChildName(nullptr, parent.get(), &base));
    child->SetParentItem(parent);
    parent->AddSubItem(child);
    return catalog.AddItem(child) != 0;
}

ItemPtr NewItemInGroup(CCatalog& catalog, const ItemPtr& group, Data::CCatalogItemTemplate* tmpl)
{
    const auto factory = catalog.GetFactory();
    if (!factory || !group || !tmpl)
        return {};
    const ItemPtr made = factory->CreateItemFromTemplate(tmpl);
    if (!made)
        return {};
    QString base = factory->GetNewItemName(tmpl);
    if (base.isEmpty())
        base = group->GetName();
    return AttachNewChild(catalog, group, made, base) ? made : ItemPtr();
}

ItemPtr CopyItemIntoGroup(CCatalog& catalog, CCatalogItem& source, const ItemPtr& group,
                          Data::CCatalogItemTemplate* tmpl)
{
    const auto factory = catalog.GetFactory();
    if (!factory || !group)
        return {};
    const ItemPtr made = factory->CreateItemFrom(&source);
    if (!made)
        return {};
    QString base = factory->GetNewItemName(tmpl);
    if (base.isEmpty())
        base = source.GetName() + QLatin1Char('_');
    return AttachNewChild(catalog, group, made, base) ? made : ItemPtr();
}

NewGroupResult NewGroup(CCatalog& catalog, CCatalogItem* parent, int depth,
                        Data::CCatalogItemTemplate* tmpl, const QString& fallbackName)
{
    NewGroupResult result;
    result.group = boost::make_shared<CCatalogItem>();
    result.group->SetGUID(Utility::CUtility::CreateGUID());
    result.group->SetIsGroup(1);
    if (parent)
    {
        if (const ItemPtr held = catalog.GetItembyGuid(parent->GetGUID()))
        {
            result.group->SetParentItem(held);
            held->AddSubItem(result.group);
        }
    }
    const auto factory = catalog.GetFactory();
    QString base = factory ? factory->GetNewGroupName(depth, tmpl) : QString();
    if (base.isEmpty())
        base = fallbackName;
    result.group->SetName(UniqueChildName(&catalog, nullptr, &base));
    result.registered = catalog.AddItem(result.group) != 0;
    return result;
}

GroupCopy CopyGroup(CCatalog& catalog, CCatalogItem& source)
{
    GroupCopy copy;
    copy.group = boost::make_shared<CCatalogItem>();
    copy.group->SetGUID(Utility::CUtility::CreateGUID());
    copy.group->SetIsGroup(1);
    copy.group->SetName(source.GetName() + QStringLiteral("_copy"));
    copy.registered = catalog.AddItem(copy.group) != 0;
    const auto factory = catalog.GetFactory();
    if (!copy.registered || !factory)
        return copy;
    for (const auto& [guid, sub] : *source.GetSubItems())
    {
        const ItemPtr child = sub ? factory->CreateItemFrom(sub.get()) : ItemPtr();
        if (!child)
            continue;
        QString base = sub->GetName();
        if (base.isEmpty())
            base = sub->GetName() + QLatin1Char('_');
        if (AttachNewChild(catalog, copy.group, child, base))
            copy.children.push_back(child);
    }
    return copy;
}

bool MoveIntoGroup(CCatalog& catalog, CCatalogItem& source, CCatalogItem& target)
{
    const ItemPtr moved = catalog.GetItembyGuid(source.GetGUID());
    ItemPtr group = catalog.GetItembyGuid(target.GetGUID());
    if (group && !group->IsGroup())
        group = group->GetParentItem();
    if (!moved || !group)
        return false;
    // Never into itself or below itself (the walk is bounded: a broken catalog may loop).
    int steps = 0;
    for (ItemPtr above = group; above && steps < MaxParentChain; above = above->GetParentItem())
    {
        if (above == moved)
            return false;
        ++steps;
    }
    if (const ItemPtr parent = moved->GetParentItem())
        parent->RemoveSubItem(moved->GetGUID());
    else
        catalog.GetRootElementsMap()->erase(moved->GetGUID());
    group->AddSubItem(moved);
    moved->SetParentItemGuid(group->GetGUID());
    moved->SetParentItem(group);
    return true;
}

namespace
{
std::vector<ItemPtr> Entries(const CCatalogItem::ItemMap& map)
{
    std::vector<ItemPtr> entries;
    entries.reserve(map.size());
    for (const auto& [guid, item] : map)
        entries.push_back(item);
    return entries;
}
} // namespace

void DeleteRootElements(CCatalog& catalog)
{
    // Copied first: deleting changes the map under the loop.
    for (const ItemPtr& element : Entries(*catalog.GetRootElementsMap()))
        if (element)
            catalog.DeleteItem(element);
}

void DeleteSubItems(CCatalog& catalog, CCatalogItem& group)
{
    for (const ItemPtr& sub : Entries(*group.GetSubItems()))
        if (sub)
            catalog.DeleteItem(sub->GetGUID());
}

} // namespace ZEVGis::Editor
