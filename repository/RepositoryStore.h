#pragma once

#include "repository/RepositoryUrl.h"

#include <QLoggingCategory>
#include <QSqlDatabase>
#include <QString>
#include <QVariantList>
#include <functional>
#include <memory>
#include <unordered_map>

Q_DECLARE_LOGGING_CATEGORY(lcRepository)

class QSqlError;
class QSqlQuery;

namespace Repository
{

// What a failed statement means for the call that ran it.
enum class FailureKind
{
    None,
    Connection, // the server or file is gone: the repository is not accessible any more
    Conflict,   // deadlock, serialisation failure, lock timeout: worth another try
    Permission, // the user may not do this
    Other
};

// How RepositoryStore::run wraps a unit of work.
enum class Unit : int
{
    Read,        // statements that only read
    Statement,   // one writing statement: atomic on its own, so no BEGIN and COMMIT round trips
    Transaction  // several writes that stand or fall together
};

// One failure line to the log and standard error (lcRepository's warning).
void ReportRepositoryFailure(const QString& line);

// One connection to a repository database through QtSql (QSQLITE or QPSQL): opening it,
// the schema, prepared statements, and running units of work with the retries that two
// editors at once need. Used by CRepositoryStorageManager only.
class RepositoryStore
{
public:
    // The schema version this program creates and reads.
    static constexpr int SchemaVersion = 1;

    RepositoryStore(const RepositoryUrl& url, const QString& displayUrl);
    ~RepositoryStore();
    RepositoryStore(const RepositoryStore&) = delete;
    RepositoryStore& operator=(const RepositoryStore&) = delete;

    // Connects and brings the schema up to date. False, with lastError() set and reported,
    // when that fails.
    bool open();
    bool accessible() const { return m_accessible; }
    // The last reported failure: "Repository URL: what failed: why".
    const QString& lastError() const { return m_lastError; }
    FailureKind lastFailure() const { return m_reportedFailure; }
    bool isPostgres() const { return m_url.kind == RepositoryUrl::Kind::Postgres; }
    // Who is named as the last changer of a record: the database user, else the login.
    QString changedBy() const;

    // Runs `work` as one unit, in one transaction when `unit` asks for it. A deadlock or
    // serialisation failure starts it again (a bounded number of times); a connection
    // that turns out dead at the first statement is reopened once. A connection lost
    // later fails the call: the server rolls the transaction back. `what` names the work
    // in the failure line.
    bool run(const QString& what, Unit unit, const std::function<bool()>& work);

    // Executes a statement (prepared once per connection) with `values` bound in order.
    // Null when it failed; the failure is noted for run().
    QSqlQuery* exec(const QString& sql, const QVariantList& values = {});
    // Ends the unit of work with `why` (a refusal, not a database error).
    bool refuse(const QString& why);

    // Whether this connection has written the catalogs row of `reference` (with the display
    // name `name`, unless `name` is empty). Rows of that table are never deleted, so while
    // the connection lasts a single record can go without writing it again.
    bool catalogRowWritten(const QString& reference, const QString& name) const;
    void noteCatalogRowWritten(const QString& reference, const QString& name);

    // Hook for tests and progress displays: called by the records' code between batches.
    std::function<void(int done, int total)> progress;

private:
    bool connect(QString& why);
    void close();
    bool reconnect();
    bool ensureSchema(QString& why);
    int readSchemaVersion(QString& why);
    bool migrate(int from, QString& why);
    bool execAll(const QStringList& statements);
    bool begin();
    bool commit();
    void rollback();
    void finishQueries();
    void noteFailure(const QSqlError& error);
    void report(const QString& what);

    RepositoryUrl m_url;
    QString m_displayUrl;
    QString m_connectionName;
    QSqlDatabase m_db;
    std::unordered_map<QString, std::unique_ptr<QSqlQuery>> m_queries;
    std::unordered_map<QString, QString> m_catalogRows; // reference -> display name written
    bool m_accessible = false;
    int m_statementsRun = 0;
    FailureKind m_failure = FailureKind::None;
    QString m_failureText;
    FailureKind m_reportedFailure = FailureKind::None;
    QString m_lastError;
};

// The text of a database error on one line: libpq's messages come in several.
QString FoldedError(const QSqlError& error);
// What an error of the given driver means (QPSQL: its SQLSTATE; QSQLITE: its result code).
FailureKind ClassifyError(const QSqlError& error, bool postgres);

} // namespace Repository
