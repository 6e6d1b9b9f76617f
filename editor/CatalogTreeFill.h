#pragma once

#include <vector>

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// Indices into the trees' image list.
enum TreeImage : int
{
    ImageGroup = 0, // replaced by the catalog's group icon
    ImageItem = 6,  // replaced by the catalog's item icon
    ImageLowerRoot = 7,
    ImageUpperRoot = 8,
    ImageDefaultItem = 9,
    TreeImageCount = 10
};

// One row below a tree's root row, in the order the rows are inserted.
struct CatalogTreeRow
{
    Data::CCatalogItem* item = nullptr;
    int parent = -1;     // index of the parent row; -1 = the root row
    int image = ImageGroup;
    bool mapped = false; // entered in the item-to-row map (everything below the top level)
};

// Image of a row below the top level: groups 0, default items 9, other items 6.
int ImageForSubItem(const Data::CCatalogItem& item);

// The rows of a catalog tree in insertion order: the root elements in the root map's order,
// the sub-items of every row in order-number order (a parent's row always comes before its
// children's). Top-level rows always get the group image; below them only groups are
// descended into. A null catalog has none.
std::vector<CatalogTreeRow> CatalogTreeRows(Data::CCatalog* catalog);

} // namespace ZEVGis::Editor
