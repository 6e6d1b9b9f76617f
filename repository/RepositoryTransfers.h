#pragma once

#include "catalog/Catalog.h"
#include "repository/RepositoryStorageManager.h"

#include <QStringList>
#include <functional>
#include <vector>

namespace Repository
{

// Walks over whole trees between a local catalog and the repository, for the command-line
// tool and the transfer dialog alike. None of them prints or asks: each reports what it did.

// Called after each record moved: records done so far and the total (0 when not known yet).
using TransferProgress = std::function<void(int done, int total)>;

struct TransferOutcome
{
    bool ok = true;
    int records = 0; // records sent, fetched or deleted
    QString error;   // one line, empty when ok
};

// Every record of the repository's catalog that hangs from the top level, depth first, each
// with its depth (0 = top level) and in the repository's order. False (error set) when the
// repository could not be read.
struct RepositoryTreeEntry
{
    boost::shared_ptr<CNetCatalogueItem> record;
    int depth = 0;
};
TransferOutcome ReadRepositoryTree(CRepositoryStorageManager& repository, const QString& reference,
                                   std::vector<RepositoryTreeEntry>& out);

// Sends each named entry of `catalog` with all its descendants (flag 1); its ancestors that
// the repository lacks are sent alone first, so the entry shows in the repository's tree.
// An empty list means every top-level entry. A GUID the catalog lacks: nothing is sent.
TransferOutcome PushEntries(CRepositoryStorageManager& repository, const QString& reference,
                            const QString& catalogName, ZEVGis::Data::CCatalog& catalog,
                            const QStringList& guids, const TransferProgress& progress = {});

// The records a pull of `guids` brings into `local`: the named records, their descendants
// and the ancestors `local` lacks, parents before children. Nothing of `local` changes;
// a GUID the repository lacks fails the whole fetch.
TransferOutcome FetchForPull(CRepositoryStorageManager& repository, const QString& reference,
                             const ZEVGis::Data::CCatalog& local, const QStringList& guids,
                             std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItem>>& items,
                             const TransferProgress& progress = {});
// Puts fetched records (parents first) into `local`: an entry of the same GUID is replaced,
// keeping the local children the repository does not have; other entries stay as they are.
void ApplyPull(ZEVGis::Data::CCatalog& local,
               const std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItem>>& items);

// Deletes the record and, for a group, every record below it, deepest first; a failure
// stops the walk, so a group never loses its record while one below it remains.
TransferOutcome DeleteRecordTree(CRepositoryStorageManager& repository, const QString& reference,
                                 const QString& guid, const TransferProgress& progress = {});

} // namespace Repository
