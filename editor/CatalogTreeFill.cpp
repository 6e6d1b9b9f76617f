#include "editor/CatalogTreeFill.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"

#include <boost/shared_ptr.hpp>
#include <unordered_set>

namespace ZEVGis::Editor
{

using Data::CCatalogItem;

int ImageForSubItem(const CCatalogItem& item)
{
    if (item.IsGroup())
        return ImageGroup;
    return item.GetIsDefault() ? ImageDefaultItem : ImageItem;
}

namespace
{

struct Pending
{
    CCatalogItem* item;
    int row;
};

// Appends the sub-items of the row `parentRow` (showing `parent`), depth first, without
// recursion so that a deep catalog cannot exhaust the stack.
void AppendSubItems(CCatalogItem* parent, int parentRow, std::vector<CatalogTreeRow>& rows)
{
    std::vector<Pending> stack{{parent, parentRow}};
    std::vector<boost::shared_ptr<CCatalogItem>> sorted;
    std::vector<Pending> groups;
    std::unordered_set<const CCatalogItem*> entered{parent}; // a broken catalog may hold a cycle
    while (!stack.empty())
    {
        const Pending next = stack.back();
        stack.pop_back();
        sorted.clear();
        next.item->GetSortedSubItems(sorted);
        groups.clear();
        for (const auto& sub : sorted)
        {
            if (!sub)
                continue;
            rows.push_back({sub.get(), next.row, ImageForSubItem(*sub), true});
            if (sub->IsGroup() && entered.insert(sub.get()).second)
                groups.push_back({sub.get(), int(rows.size()) - 1});
        }
        // Children are handled in list order: push them reversed.
        stack.insert(stack.end(), groups.rbegin(), groups.rend());
    }
}

} // namespace

std::vector<CatalogTreeRow> CatalogTreeRows(Data::CCatalog* catalog)
{
    std::vector<CatalogTreeRow> rows;
    if (!catalog)
        return rows;
    rows.reserve(catalog->GetAllElementsMap()->size());
    for (const auto& [guid, element] : *catalog->GetRootElementsMap())
    {
        if (!element)
            continue;
        rows.push_back({element.get(), -1, ImageGroup, false});
        AppendSubItems(element.get(), int(rows.size()) - 1, rows);
    }
    return rows;
}

} // namespace ZEVGis::Editor
