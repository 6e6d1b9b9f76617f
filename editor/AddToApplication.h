#pragma once

#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// Copies entries of a drawing's copy of a catalog into the catalog itself. Entries are
// matched by GUID: a copy keeps its source's GUID.
struct AddToApplicationResult
{
    enum Outcome
    {
        Added,        // whatever was missing has been copied (maybe nothing)
        ItemPresent,  // the chosen item is in the catalog already: nothing copied
        GroupPresent, // the chosen group is in the catalog already: nothing copied
    };
    Outcome outcome = Added;
    QString name; // the refused entry's name
};

// A copy of `entry` for `target`: GUID, group flag, message name, picture, order number, name
// and a deep copy of the properties; linked under `parent` (when given) and registered.
boost::shared_ptr<Data::CCatalogItem>
CopyEntryInto(Data::CCatalog& target, Data::CCatalogItem& entry,
              const boost::shared_ptr<Data::CCatalogItem>& parent);

// `entry` null: every root element of `source` that `target` lacks, each with those of its
// direct sub-items that `target` lacks. A group: the group with its direct sub-items. An
// item: the item, under a copy of its group when the catalog lacks that group. Only one level
// below the copied entry is taken. `made` (when given) receives the copies in the order made.
AddToApplicationResult AddToApplication(Data::CCatalog& source, Data::CCatalog& target,
                                        Data::CCatalogItem* entry,
                                        std::vector<boost::shared_ptr<Data::CCatalogItem>>* made = nullptr);

} // namespace ZEVGis::Editor
