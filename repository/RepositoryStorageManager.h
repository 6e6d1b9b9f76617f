#pragma once

#include "catalog/CatalogItem.h"
#include "repository/NetCatalogueItem.h"
#include "repository/RepositoryRecords.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <functional>
#include <memory>
#include <vector>

namespace Repository
{

class RepositoryStore;
enum class Unit : int;

// The client of the network catalog repository that a team shares: SQLite as the embedded
// default, PostgreSQL for a shared server, one QtSql code path for both (README,
// "Network repository").
//
// URL forms: "sqlite:PATH", "postgresql://[user[:password]@]host[:port]/dbname[?...]",
// "none". Without Configure the client configures itself on first use from
// ZEVX_REPOSITORY, else the default SQLite file in the user's data folder.
//
// A failure is one line, "Repository URL: what failed: why", with the URL never showing
// its password: written to the log, given as a warning of the logging category
// "zevx.repository" (standard error unless a program filters it) and kept in LastError().
class CRepositoryStorageManager
{
public:
    static CRepositoryStorageManager* Instance();

    // Connects to the repository at `url`, dropping any earlier connection. Non-zero when
    // the repository is ready; otherwise 0 and one line (URL without its password, what
    // failed) in the log and on standard error.
    int Configure(const QString& url);
    // The URL in use, without its password.
    QString DisplayUrl() const;
    // Why the last call failed, empty after a success (never holds a password). A
    // GetCatalogItemById that found no record succeeded: empty pointer, empty LastError.
    QString LastError() const;
    // Forgets the configuration and the connection; the next call configures itself again
    // from ZEVX_REPOSITORY (else the default file), as on first use.
    void Reset();
    // Called after each batch of records an AddCatalogItem sends (records sent, records in
    // the transfer); empty to stop. For progress displays.
    void SetProgressCallback(std::function<void(int sent, int total)> callback);
    // The record's revision: 1 after its first push, one more with every push that changed
    // it; 0
    // when the record is not there or the repository cannot be read.
    int GetRevision(const QString& catalogReference, const QString& catalogueId);

    // Non-zero when the client is set up and connected once.
    int IsInitialized();
    // Non-zero while the connection is good. Costs no round trip: it turns 0 when a
    // statement fails with a connection error and stays 0 until a reconnection succeeds.
    int IsRepositoryAccessible();

    // Records under `parentId` (empty: the top-level records) of the catalog, in
    // order-number order, then name. Non-zero on success.
    int GetChildCatalogItems(const QString& catalogReference, const QString& parentId,
                             std::vector<boost::shared_ptr<CNetCatalogueItem>>& out, int);
    // The record as a full catalog item (properties, picture, flags, order number, parent
    // GUID); empty when the record is not there.
    boost::shared_ptr<ZEVGis::Data::CCatalogItem> GetCatalogItemById(const QString& catalogReference,
                                                                      const QString& catalogueId, int);
    // Adds the record, or replaces it when it differs (its revision goes up); an unchanged
    // record is left alone. flag 0: the item alone; 1: the item and all its descendants, in
    // one transaction. Non-zero when everything arrived.
    int AddCatalogItem(const QString& catalogReference, const QString& catalogName,
                       boost::shared_ptr<ZEVGis::Data::CCatalogItem> item, int flag);
    // Deletes the record; 0 while it still has child records. A record that is not there
    // counts as deleted.
    int DeleteCatalogItem(const QString& catalogReference, const QString& catalogueId);

    // One user action that may send the same records more than once ("->" of the
    // import/export dialog sends a group with its descendants, then every descendant again).
    // Between Begin and End a send whose records this client already wrote in the action,
    // unchanged, returns non-zero without a trip to the server. Nests; End of the outermost
    // forgets what was written.
    void BeginAction();
    void EndAction();

    ~CRepositoryStorageManager();

private:
    CRepositoryStorageManager();
    void configureOnFirstUse();
    // Configures on first use; false (LastError set) when there is no usable repository.
    bool ready();
    bool fail(const QString& line);
    // Runs one call's work on the store; false, with LastError set, when it failed.
    bool call(const QString& what, Unit unit, const std::function<bool()>& work);
    // Within an action: whether these records were written in it already, unchanged, with
    // the catalog's row standing, so that the send needs no trip to the server.
    bool sparedInAction(const QString& catalogReference, const QString& catalogName,
                        const std::vector<RecordRow>& records) const;

    std::unique_ptr<RepositoryStore> m_store;
    bool m_configured = false;
    bool m_initialized = false;
    QString m_displayUrl;
    QString m_lastError;
    std::function<void(int, int)> m_progress;
    int m_actionDepth = 0;
    WrittenRecords m_writtenInAction;
};

} // namespace Repository
