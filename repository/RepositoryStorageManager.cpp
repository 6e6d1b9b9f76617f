#include "repository/RepositoryStorageManager.h"

#include "repository/RepositoryRecords.h"
#include "repository/RepositoryStore.h"
#include "repository/RepositoryUrl.h"

#include <QCoreApplication>

namespace Repository
{

using ZEVGis::Data::CCatalogItem;

CRepositoryStorageManager* CRepositoryStorageManager::Instance()
{
    static CRepositoryStorageManager manager;
    return &manager;
}

CRepositoryStorageManager::CRepositoryStorageManager()
{
    // The connection is closed while the application object goes, when Qt's registry of
    // database connections still exists: this static manager outlives that registry.
    qAddPostRoutine([] { Instance()->Reset(); });
}

CRepositoryStorageManager::~CRepositoryStorageManager()
{
    // Still connected at exit (no application object ever went): the registry may be gone
    // already, and the system closes the connection anyway.
    (void)m_store.release();
}

int CRepositoryStorageManager::Configure(const QString& url)
{
    m_store.reset();
    m_writtenInAction.clear();
    m_configured = true;
    m_initialized = false;
    m_lastError.clear();
    m_displayUrl = UrlWithoutPassword(url);
    RepositoryUrl parsed;
    QString why;
    if (!ParseRepositoryUrl(url, parsed, why))
        return fail(
            QStringLiteral("Repository %1: the URL cannot be used: %2").arg(m_displayUrl, why));
    if (parsed.kind == RepositoryUrl::Kind::None)
    {
        // Chosen, not failed: nothing to report.
        m_lastError = QStringLiteral("Repository none: no repository is configured");
        return 0;
    }
    m_store = std::make_unique<RepositoryStore>(parsed, m_displayUrl);
    m_store->progress = m_progress;
    m_initialized = m_store->open();
    if (!m_initialized)
    {
        m_lastError = m_store->lastError();
        m_store.reset();
    }
    return m_initialized ? 1 : 0;
}

void CRepositoryStorageManager::Reset()
{
    m_store.reset();
    m_writtenInAction.clear();
    m_configured = false;
    m_initialized = false;
    m_displayUrl.clear();
    m_lastError.clear();
}

void CRepositoryStorageManager::SetProgressCallback(std::function<void(int, int)> callback)
{
    m_progress = std::move(callback);
    if (m_store)
        m_store->progress = m_progress;
}

QString CRepositoryStorageManager::DisplayUrl() const
{
    return m_displayUrl;
}

QString CRepositoryStorageManager::LastError() const
{
    return m_lastError;
}

void CRepositoryStorageManager::configureOnFirstUse()
{
    if (m_configured)
        return;
    const QString fromEnvironment = qEnvironmentVariable("ZEVX_REPOSITORY").trimmed();
    Configure(fromEnvironment.isEmpty() ? QStringLiteral("sqlite:") + DefaultRepositoryPath()
                                        : fromEnvironment);
}

bool CRepositoryStorageManager::fail(const QString& line)
{
    m_lastError = line;
    ReportRepositoryFailure(line);
    return false;
}

bool CRepositoryStorageManager::ready()
{
    configureOnFirstUse();
    if (m_store)
        return true;
    if (m_lastError.isEmpty())
        m_lastError = QStringLiteral("Repository %1: not connected").arg(m_displayUrl);
    return false;
}

int CRepositoryStorageManager::IsInitialized()
{
    configureOnFirstUse();
    return m_initialized ? 1 : 0;
}

int CRepositoryStorageManager::IsRepositoryAccessible()
{
    configureOnFirstUse();
    return m_store && m_store->accessible() ? 1 : 0;
}

bool CRepositoryStorageManager::call(const QString& what, Unit unit,
                                     const std::function<bool()>& work)
{
    if (!ready())
        return false;
    m_lastError.clear();
    if (m_store->run(what, unit, work))
        return true;
    m_lastError = m_store->lastError();
    return false;
}

int CRepositoryStorageManager::GetChildCatalogItems(
    const QString& catalogReference, const QString& parentId,
    std::vector<boost::shared_ptr<CNetCatalogueItem>>& out, int)
{
    const QString what =
        parentId.isEmpty()
            ? QStringLiteral("reading the top-level records of catalog %1").arg(catalogReference)
            : QStringLiteral("reading the records under %1 in catalog %2")
                  .arg(parentId, catalogReference);
    return call(what, Unit::Read,
                [&] { return ReadChildren(*m_store, catalogReference, parentId, out); })
               ? 1
               : 0;
}

boost::shared_ptr<CCatalogItem>
CRepositoryStorageManager::GetCatalogItemById(const QString& catalogReference,
                                              const QString& catalogueId, int)
{
    boost::shared_ptr<CCatalogItem> item;
    const QString what =
        QStringLiteral("reading record %1 of catalog %2").arg(catalogueId, catalogReference);
    if (!call(what, Unit::Read, [&] { return ReadItem(*m_store, catalogReference, catalogueId, item); }))
        item.reset();
    return item;
}

namespace
{
// The failure line's account of a send: "sending "NAME" GUID [with N descendant(s)] to ...".
QString SendDescription(CCatalogItem& item, size_t records, const QString& catalogReference)
{
    QString what = QStringLiteral("sending \"%1\" %2").arg(item.GetName(), item.GetGUID());
    if (records > 1)
        what += QStringLiteral(" with %1 descendant(s)").arg(records - 1);
    return what + QStringLiteral(" to catalog %1").arg(catalogReference);
}
} // namespace

bool CRepositoryStorageManager::sparedInAction(const QString& catalogReference,
                                               const QString& catalogName,
                                               const std::vector<RecordRow>& records) const
{
    return m_actionDepth > 0 && m_store && m_store->accessible() &&
           m_store->catalogRowWritten(catalogReference, catalogName) &&
           m_writtenInAction.holdAll(catalogReference, records);
}

int CRepositoryStorageManager::AddCatalogItem(const QString& catalogReference,
                                              const QString& catalogName,
                                              boost::shared_ptr<CCatalogItem> item, int flag)
{
    if (!item || item->GetGUID().isEmpty())
    {
        if (ready())
            fail(QStringLiteral("Repository %1: sending to catalog %2 failed: the item has no GUID")
                     .arg(m_displayUrl, catalogReference));
        return 0;
    }
    if (!ready())
        return 0;
    const std::vector<RecordRow> records = RecordsOf(*item, flag != 0);
    if (sparedInAction(catalogReference, catalogName, records))
    {
        m_lastError.clear();
        return 1;
    }
    // The catalog's row is the turn every multi-record send takes, so that two editors
    // sending overlapping trees wait for each other instead of deadlocking. One record
    // needs no turn: once the row stands it goes as a single statement, which matters
    // when the dialog sends ten thousand items one by one.
    const auto catalogRowStands = [&]
    { return records.size() == 1 && m_store->catalogRowWritten(catalogReference, catalogName); };
    // Asked again inside: a reconnection forgets which rows stand, and the catalog's row
    // on its own does no harm.
    const bool sent = call(SendDescription(*item, records.size(), catalogReference),
                           catalogRowStands() ? Unit::Statement : Unit::Transaction,
                           [&]
                           {
                               return (catalogRowStands() ||
                                       WriteCatalogRow(*m_store, catalogReference, catalogName)) &&
                                      WriteRecords(*m_store, catalogReference, records);
                           });
    if (sent)
    {
        m_store->noteCatalogRowWritten(catalogReference, catalogName);
        if (m_actionDepth > 0)
            m_writtenInAction.remember(catalogReference, records);
    }
    return sent ? 1 : 0;
}

void CRepositoryStorageManager::BeginAction()
{
    ++m_actionDepth;
}

void CRepositoryStorageManager::EndAction()
{
    if (m_actionDepth > 0 && --m_actionDepth == 0)
        m_writtenInAction.clear();
}

int CRepositoryStorageManager::DeleteCatalogItem(const QString& catalogReference,
                                                 const QString& catalogueId)
{
    m_writtenInAction.forget(catalogReference, catalogueId);
    const QString what =
        QStringLiteral("deleting record %1 of catalog %2").arg(catalogueId, catalogReference);
    return call(what, Unit::Statement,
                [&] { return DeleteRecord(*m_store, catalogReference, catalogueId); })
               ? 1
               : 0;
}

int CRepositoryStorageManager::GetRevision(const QString& catalogReference,
                                           const QString& catalogueId)
{
    int revision = 0;
    const QString what = QStringLiteral("reading the revision of record %1 of catalog %2")
                             .arg(catalogueId, catalogReference);
    return call(what, Unit::Read,
                [&] { return ReadRevision(*m_store, catalogReference, catalogueId, revision); })
               ? revision
               : 0;
}

} // namespace Repository
