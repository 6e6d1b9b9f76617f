#pragma once

#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

namespace ZEVGis::Data
{
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

using ItemList = std::vector<boost::shared_ptr<Data::CCatalogItem>>;

// Swaps the order number of the entry with `guid` with that of its neighbour in `siblings`
// (a list in order-number order): the next one for `towardsEnd`, else the previous one.
// The numbers are exchanged as they are, so gaps and duplicates stay. A single entry, or
// the last (first) one moved further, changes nothing.
void SwapWithNeighbour(const ItemList& siblings, const QString& guid, bool towardsEnd);

// The sort key of a name in numeric order: the trailing digits, never the first character
// ("A10" 10, "123" 23, "7" 0); -1 for an empty name. Far too many digits saturate.
long long NumericNameKey(const QString& name);

// Gives the entries the order numbers 0, 1, 2, ... by name. When every name is empty or ends
// with a digit they are ordered by NumericNameKey, otherwise by the names' character codes.
// Equal keys keep their list order; descending is the exact reverse of ascending.
void RenumberByName(const ItemList& siblings, bool ascending);

} // namespace ZEVGis::Editor
