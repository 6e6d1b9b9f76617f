#include "editor/ButtonStates.h"

#include "catalog/CatalogItem.h"
#include "catalog/CatalogMetadata.h"

#include <climits>

namespace ZEVGis::Editor
{

using Data::CCatalogItem;

namespace
{
// A parent chain longer than this can only be a cycle in a broken catalog.
constexpr int MaxParentChain = 1 << 16;
} // namespace

int ItemDepth(CCatalogItem& item)
{
    int depth = 0;
    auto parent = item.GetParentItem();
    while (parent && depth < MaxParentChain)
    {
        ++depth;
        parent = parent->GetParentItem();
    }
    return depth;
}

bool MayHoldGroups(CCatalogItem* group, int maxDepthLevel)
{
    if (!group)
        return true;
    if (!group->IsGroup())
        return false;
    if (ItemDepth(*group) >= maxDepthLevel - 1)
        return false;
    for (const auto& [guid, sub] : *group->GetSubItems())
    {
        if (sub && !sub->IsGroup())
            return false;
    }
    return true;
}

TreeRowKind RowKindOf(CCatalogItem* item, bool upperTree)
{
    if (!item)
        return upperTree ? TreeRowKind::UpperRoot : TreeRowKind::LowerRoot;
    return item->IsGroup() ? TreeRowKind::Group : TreeRowKind::Item;
}

std::optional<EditorButtonStates> ButtonStatesForSelection(TreeRowKind kind, CCatalogItem* item,
                                                           const Data::CCatalogMetadata* metadata)
{
    const int maxDepth = metadata ? metadata->GetMaxDepthlevel() : INT_MAX;
    const bool disableNew = metadata && metadata->GetDisableNewItems();
    EditorButtonStates s;
    switch (kind)
    {
    case TreeRowKind::UpperRoot:
        return std::nullopt;
    case TreeRowKind::Group:
        s = {MayHoldGroups(item, maxDepth), true, true, false, true, true, false};
        break;
    case TreeRowKind::Item:
        s = {false, true, true, true, true, true,
             metadata != nullptr && metadata->GetAllowDefaultSelection() != 0};
        break;
    case TreeRowKind::LowerRoot:
        s = {true, true, false, false, false, true, false};
        break;
    }
    if (disableNew)
    {
        s.newGroup = false;
        s.remove = false;
        if (kind != TreeRowKind::LowerRoot)
        {
            s.newItem = false;
            s.newItems = false;
        }
    }
    return s;
}

} // namespace ZEVGis::Editor
