#include "tools/RepositoryCommands.h"
#include "tools/CommandSupport.h"

#include "catalog/CatalogManager.h"
#include "repository/RepositoryStorageManager.h"
#include "repository/RepositoryTransfers.h"

#include <QElapsedTimer>
#include <unistd.h>

using namespace ZEVGis::Data;
using Repository::CRepositoryStorageManager;

namespace ZevxTool
{

namespace
{

// A counter on the terminal while many records move; nothing when standard error is a file
// or a pipe, so scripts see only the outcome.
class TerminalProgress
{
public:
    TerminalProgress(QTextStream& err, QString verb)
        : m_err(err), m_verb(std::move(verb)), m_enabled(::isatty(STDERR_FILENO))
    {
        m_timer.start();
    }
    ~TerminalProgress()
    {
        if (m_shown)
            m_err << "\r\033[K" << Qt::flush;
    }
    void operator()(int done, int total)
    {
        // Only after a moment, and at most ten times a second.
        if (!m_enabled || m_timer.elapsed() < m_next)
            return;
        m_next = m_timer.elapsed() + 100;
        m_err << '\r' << m_verb << ' ' << done;
        if (total > 0)
            m_err << '/' << total;
        m_err << " records" << Qt::flush;
        m_shown = true;
    }
    Repository::TransferProgress callback()
    {
        return [this](int done, int total) { (*this)(done, total); };
    }

private:
    QTextStream& m_err;
    QString m_verb;
    bool m_enabled;
    bool m_shown = false;
    qint64 m_next = 300;
    QElapsedTimer m_timer;
};

// The repository named on the command line or by the environment, connected; null after
// writing why not.
CRepositoryStorageManager* connectRepository(const QString& url, QTextStream& err)
{
    auto* repository = CRepositoryStorageManager::Instance();
    const bool ready = url.isEmpty() ? repository->IsInitialized() != 0 : repository->Configure(url) != 0;
    if (ready)
        return repository;
    QString why = repository->LastError();
    if (!why.contains(repository->DisplayUrl()))
        why = "repository " + repository->DisplayUrl() + ": " + why;
    fail(err, why);
    return nullptr;
}

void printRecord(QTextStream& out, const Repository::RepositoryTreeEntry& entry)
{
    // The layout of "show": the repository keeps no default mark or template in its tree.
    const auto& record = *entry.record;
    out << QString(entry.depth * 2, u' ') << (record.GetIsGroup() ? "[G]" : "[ ]") << ' '
        << QString::number(record.GetOrd()).rightJustified(3) << "  "
        << QString::fromStdWString(record.GetName()) << '\n';
}

int listRecords(CRepositoryStorageManager& repository, const CCatalogMetadata& metadata,
                QTextStream& out, QTextStream& err)
{
    std::vector<Repository::RepositoryTreeEntry> tree;
    const auto outcome = Repository::ReadRepositoryTree(repository, metadata.GetCatalogReference(), tree);
    if (!outcome.ok)
        return fail(err, outcome.error);
    out << metadata.GetCatalogReference() << " \"" << metadata.GetCatalogNameUI() << "\": repository "
        << repository.DisplayUrl() << ", " << tree.size() << " records\n";
    for (const auto& entry : tree)
        printRecord(out, entry);
    out.flush();
    return 0;
}

int pushEntries(CRepositoryStorageManager& repository, const CCatalogMetadata& metadata,
                CCatalog& catalog, const QStringList& guids, QTextStream& out, QTextStream& err)
{
    TerminalProgress progress(err, QStringLiteral("sent"));
    const auto outcome = Repository::PushEntries(repository, metadata.GetCatalogReference(),
                                                 metadata.GetCatalogNameUI(), catalog, guids,
                                                 progress.callback());
    if (!outcome.ok)
        return fail(err, outcome.error);
    out << "sent " << outcome.records << " records of " << metadata.GetCatalogReference() << " to "
        << repository.DisplayUrl() << '\n' << Qt::flush;
    return 0;
}

int pullEntries(CRepositoryStorageManager& repository, const CCatalogMetadata& metadata,
                CCatalog& catalog, const QStringList& guids, QTextStream& out, QTextStream& err)
{
    const QString reference = metadata.GetCatalogReference();
    std::vector<boost::shared_ptr<CCatalogItem>> items;
    {
        TerminalProgress progress(err, QStringLiteral("fetched"));
        const auto outcome = Repository::FetchForPull(repository, reference, catalog, guids, items,
                                                      progress.callback());
        if (!outcome.ok)
            return fail(err, outcome.error);
    }
    Repository::ApplyPull(catalog, items);
    if (!saveCatalog(reference, err))
        return 1;
    out << "brought " << items.size() << " records into " << reference << " ("
        << CCatalogManager::Instance()->CatalogFilePath(metadata) << ")\n" << Qt::flush;
    return 0;
}

int deleteRecords(CRepositoryStorageManager& repository, const CCatalogMetadata& metadata,
                  const QString& guid, QTextStream& out, QTextStream& err)
{
    TerminalProgress progress(err, QStringLiteral("deleted"));
    const auto outcome = Repository::DeleteRecordTree(repository, metadata.GetCatalogReference(), guid,
                                                      progress.callback());
    if (!outcome.ok)
        return fail(err, outcome.error);
    out << "deleted " << outcome.records << " records of " << metadata.GetCatalogReference() << " from "
        << repository.DisplayUrl() << '\n' << Qt::flush;
    return 0;
}

} // namespace

QString repositoryUsageError(const QStringList& words)
{
    if (words.isEmpty())
        return QStringLiteral("repo needs a command: list, push, pull or delete");
    const QString& command = words[0];
    const qsizetype arguments = words.size() - 1;
    if (command != u"list" && command != u"push" && command != u"pull" && command != u"delete")
        return "unknown repo command " + command;
    if (arguments < 1)
        return "repo " + command + " needs a catalog reference";
    if (command == u"list" && arguments > 1)
        return QStringLiteral("repo list takes one catalog reference");
    if (command == u"pull" && arguments < 2)
        return QStringLiteral("repo pull needs the GUIDs of the records to bring");
    if (command == u"delete" && arguments != 2)
        return QStringLiteral("repo delete needs one GUID");
    return QString();
}

int repositoryCommand(const QStringList& words, const QString& url, QTextStream& out, QTextStream& err)
{
    const QString command = words[0];
    const QString reference = words[1];
    const QStringList guids = words.mid(2);

    const auto metadata = findCatalog(reference, err);
    if (!metadata)
        return 1;
    boost::shared_ptr<CCatalog> catalog;
    if (command == u"push" || command == u"pull") {
        catalog = loadCatalog(*metadata, err);
        if (!catalog)
            return 1;
    }
    auto* repository = connectRepository(url, err);
    if (!repository)
        return 1;
    if (command == u"list")
        return listRecords(*repository, *metadata, out, err);
    if (command == u"push")
        return pushEntries(*repository, *metadata, *catalog, guids, out, err);
    if (command == u"pull")
        return pullEntries(*repository, *metadata, *catalog, guids, out, err);
    return deleteRecords(*repository, *metadata, guids[0], out, err);
}

} // namespace ZevxTool
