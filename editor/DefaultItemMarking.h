#pragma once

#include <vector>

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// Property tag naming an item's equipment type; one item per type is the default.
inline constexpr const char16_t* EquipmentTypeTag = u"LSEQUIP_TYPE";

// Makes `item` the default of its equipment type: every element of the catalog with the same
// "LSEQUIP_TYPE" value (exact comparison) loses its default mark, then `item` gets it. An item
// without that property is marked without clearing any other, so several defaults can result.
// Returns the elements whose mark was cleared, `item` included when it had the same type.
// Groups are not marked: nothing happens and nothing is returned.
std::vector<Data::CCatalogItem*> MarkDefaultItem(Data::CCatalog& catalog, Data::CCatalogItem& item);

// The elements whose mark MarkDefaultItem(catalog, item) clears.
std::vector<Data::CCatalogItem*> ItemsOfSameType(Data::CCatalog& catalog,
                                                 Data::CCatalogItem& item);

} // namespace ZEVGis::Editor
