#pragma once

#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
class CCatalogItemTemplate;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

using ItemPtr = boost::shared_ptr<Data::CCatalogItem>;

// Names `child` uniquely among `parent`'s sub-items (from `base`), links the two both ways
// and registers the child in the catalog. The links stay when the catalog refuses the child
// (its GUID is taken); the result says whether it was registered.
bool AttachNewChild(Data::CCatalog& catalog, const ItemPtr& parent, const ItemPtr& child,
                    const QString& base);

// A new item made by the catalog's factory from the template, placed in `group`, named by
// the factory or after the group. Empty when the factory makes none or the catalog refuses
// it (then it stays linked under the group).
ItemPtr NewItemInGroup(Data::CCatalog& catalog, const ItemPtr& group,
                       Data::CCatalogItemTemplate* tmpl);

// A copy of `source` made by the catalog's factory, placed in `group`, named by the factory
// for `tmpl` or after the source with "_" appended. Empty as above.
ItemPtr CopyItemIntoGroup(Data::CCatalog& catalog, Data::CCatalogItem& source, const ItemPtr& group,
                          Data::CCatalogItemTemplate* tmpl);

// A new group inside `parent` (none: at the root level) named by the factory for its depth
// and the template, else by `fallbackName`, made unique among the catalog's root elements
// (also for a group that goes into a group). `registered` says whether the catalog took it.
struct NewGroupResult
{
    ItemPtr group;
    bool registered = false;
};
NewGroupResult NewGroup(Data::CCatalog& catalog, Data::CCatalogItem* parent, int depth,
                        Data::CCatalogItemTemplate* tmpl, const QString& fallbackName);

// A new root-level group "<source name>_copy" (not made unique) with a factory copy of each
// direct sub-item of `source`, uniquely named. `children` lists the copies the catalog took.
struct GroupCopy
{
    ItemPtr group;
    bool registered = false;
    std::vector<ItemPtr> children;
};
GroupCopy CopyGroup(Data::CCatalog& catalog, Data::CCatalogItem& source);

// Moves the catalog's entry `source` into the group `target` or, when `target` is an item,
// into that item's group. The order number stays. False when there is no such group or the
// move would put an entry inside itself.
bool MoveIntoGroup(Data::CCatalog& catalog, Data::CCatalogItem& source, Data::CCatalogItem& target);

// Deletes every root element (and so everything), or every sub-item of `group`.
void DeleteRootElements(Data::CCatalog& catalog);
void DeleteSubItems(Data::CCatalog& catalog, Data::CCatalogItem& group);

} // namespace ZEVGis::Editor
