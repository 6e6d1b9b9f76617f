#pragma once

#include "impex/ImpexRepository.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <functional>
#include <vector>

class FunctionTracer;
class QTreeWidgetItem;

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

// What the import/export dialog's buttons do to the catalogs and the repository, without
// the dialog: which items a walk sends and in which order, which copies a file transfer makes,
// what a take-back removes, in which order records are deleted.
namespace ZEVGis::Impex
{

using ItemPtr = boost::shared_ptr<Data::CCatalogItem>;

// Images of the dialog's trees.
enum ImpexImage : int
{
    ImageGroup = 0, // replaced by the catalog's group icon
    ImageItem = 6,  // replaced by the catalog's item icon
    ImageLeftRoot = 7,
    ImageRightRoot = 8,
    ImpexImageCount = 9
};

// The repository and the catalog a transfer works on.
struct RepositoryTarget
{
    RepositoryAccess& repository;
    QString reference;
    QString catalogName;
};

// ---- "->" in repository mode

// Sends one entry of the left tree: the item as `local` holds it, then each ancestor, each
// alone (flag 0); for a group then the group again with all its descendants
// (AddCatalogItemToNetrepo). Each send of the walk is logged through `tracer`. False when the
// repository became unreachable: the caller stops at once.
bool SendEntryToRepository(const RepositoryTarget& target, Data::CCatalog& local,
                           const Data::CCatalogItem& entry, const FunctionTracer& tracer);
// Sends `item` with flag 1, then each of its sorted sub-items the same way, depth first;
// the remaining sub-items are skipped once the repository is unreachable.
void AddCatalogItemToNetrepo(const RepositoryTarget& target, ItemPtr item);

// ---- "<-" in repository mode

// The record a row of the right tree shows in repository mode (null for the root row).
const Repository::CNetCatalogueItem* RecordOfRow(const QTreeWidgetItem* row);

// Brings the record of `row` (a row below the right root) into `local`: the item with the
// parents it needs, then its descendants as the right tree shows them. False when the
// repository became unreachable.
bool BringRecordToLocal(const RepositoryTarget& target, Data::CCatalog& local,
                        QTreeWidgetItem* row);
// Hangs `item` under its parent in `local`, fetching missing ancestors from the repository
// until one the catalog holds, or a top-level one, is reached.
void CreateParentItems(const RepositoryTarget& target, Data::CCatalog& local, ItemPtr item);
// Adds `item` to `local` under the parent its row's record names, then the records the right
// tree shows below `row`, depth first. An item the catalog already holds takes the
// repository's content and keeps its place and its local sub-items.
void AddCatalogItemToLocalCatalog(const RepositoryTarget& target, Data::CCatalog& local,
                                  ItemPtr item, QTreeWidgetItem* row);

// ---- "Del" in repository mode

// Deletes the records below `row` (groups depth first, children before their parent), then
// the record of `row`; a row goes with its record. Stops that branch at the first record that
// is not deleted or when the repository becomes unreachable. True when `row` was deleted.
// `beforeRowDeleted` hears of each row just before it goes.
using RowCallback = std::function<void(QTreeWidgetItem*)>;
bool DeleteCatalogItems(const RepositoryTarget& target, QTreeWidgetItem* row,
                        const RowCallback& beforeRowDeleted = {});

// ---- file transfers

// One copy a file transfer made and registered in the target catalog.
struct FileCopy
{
    ItemPtr copy;
    Data::CCatalogItem* source = nullptr;
    QString parentGuid; // empty: shown under the target tree's root row
    int image = ImageGroup;
    bool select = false; // selected in the target tree once shown
};

// The copies that bring `selected` into `target` ("->" in export, "<-" in import): a group
// as a top-level element with its direct sub-items; an item under a copy of its direct
// parent group, that parent made top-level when missing. Nothing `target` holds by GUID is
// copied again; copies keep their source's GUID. `hasTreeParent`: the selected row is not a
// root row. In the order they are to be shown.
std::vector<FileCopy> CopyIntoCatalog(Data::CCatalog& target, Data::CCatalogItem& selected,
                                      bool hasTreeParent);

// The catalog in the file at `path`, read and checked as the dialog reads an external file;
// null with the reason in `why` when the file does not read or is not a catalog.
boost::shared_ptr<Data::CCatalog> ReadCatalogFile(const QString& path, QString& why);

// What a take-back removes, in order: the item's sorted sub-items, then the item.
std::vector<QString> TakeBackGuids(Data::CCatalogItem& item);

// The order of two rows' items for the root's children: order number difference; 0 when
// either is missing.
int CompareCatalogItems(const void* a, const void* b);
int CompareRecords(const void* a, const void* b);

// ".xml" appended to a path that does not end in it (any case); an empty path stays empty.
QString WithXmlExtension(const QString& path);
// True when the folder of `path` (everything before its last separator) exists.
bool FolderOfPathExists(const QString& path);

} // namespace ZEVGis::Impex
