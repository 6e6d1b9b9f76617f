#pragma once

#include <QString>

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// A name built from `base` that none of the siblings has. The siblings are the parent's
// sub-items when a parent is given, else the catalog's root elements. A null base means the
// parent's name followed by "_#" (the "#" takes the number).
QString UniqueChildName(Data::CCatalog* catalog, Data::CCatalogItem* parent, const QString* base);

} // namespace ZEVGis::Editor
