#include "repository/RepositoryStore.h"

#include "trace/FunctionTracer.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <atomic>

#ifdef ZEVX_HAVE_LIBPQ
#include <QSqlDriver>
#include <libpq-fe.h>
#endif

Q_LOGGING_CATEGORY(lcRepository, "zevx.repository")

namespace Repository
{

namespace
{

// Tries of one unit of work that deadlocks or fails to serialise against another editor.
constexpr int MaxConflictRetries = 8;
// How long SQLite waits for another program's write lock before it reports "busy".
constexpr int SqliteBusyTimeoutMs = 10000;
// libpq waits for ever by default; a dialog should not.
constexpr int DefaultConnectTimeoutSeconds = 10;

std::atomic<int> connectionCounter{0};

QtMessageHandler previousHandler = nullptr;

// Qt's PostgreSQL driver frees each prepared statement on the server when its query is
// destroyed and warns when the server is gone; after a lost connection that is expected.
void withoutFreeStatementWarnings(QtMsgType type, const QMessageLogContext& context,
                                  const QString& message)
{
    if (type == QtWarningMsg && message.startsWith(QLatin1String("Unable to free statement")))
        return;
    previousHandler(type, context, message);
}

#ifdef ZEVX_HAVE_LIBPQ
void noticeToLog(void*, const char* message)
{
    FunctionTracer tracer("RepositoryStore", __LINE__, "CRepositoryStorageManager", 4, false);
    tracer.Log(3, QStringLiteral("Repository server: %1")
                      .arg(QString::fromUtf8(message).simplified())
                      .toLocal8Bit()
                      .toStdString());
}
#endif

// libpq prints the server's notices on standard error, where a program's user would see
// "WARNING: terminating connection" beside the client's own line.
void sendNoticesToLog(const QSqlDatabase& db)
{
#ifdef ZEVX_HAVE_LIBPQ
    const QVariant handle = db.driver()->handle();
    // The type is named after libpq's struct behind the PGconn typedef.
    if (handle.isValid() &&
        (qstrcmp(handle.typeName(), "PGconn*") == 0 || qstrcmp(handle.typeName(), "pg_conn*") == 0))
        if (PGconn* connection = *static_cast<PGconn* const*>(handle.constData()))
            PQsetNoticeProcessor(connection, noticeToLog, nullptr);
#else
    Q_UNUSED(db);
#endif
}

} // namespace

void ReportRepositoryFailure(const QString& line)
{
    qCWarning(lcRepository).noquote() << line;
    // Level 4 keeps the tracer's own entry and exit lines out; the line itself is level 1.
    FunctionTracer tracer("RepositoryStore", __LINE__, "CRepositoryStorageManager", 4, false);
    tracer.Log(1, line.toLocal8Bit().toStdString());
}

QString FoldedError(const QSqlError& error)
{
    // The statement's text that PostgreSQL quotes ("LINE 1: CREATE ... ^") says nothing to
    // a user and would make the line long.
    static const QRegularExpression quotedStatement(
        QStringLiteral("\\n?LINE \\d+:[^\\n]*\\n[ \\t]*\\^"));
    QString text = error.databaseText().remove(quotedStatement).simplified();
    if (text.endsWith(QLatin1String(" ()")))
        text.chop(3); // Qt's place for the SQLSTATE, empty when the connection broke
    const QString driver = error.driverText().simplified();
    if (text.isEmpty())
        text = driver;
    return text.isEmpty() ? QStringLiteral("unknown error") : text;
}

FailureKind ClassifyError(const QSqlError& error, bool postgres)
{
    const QString code = error.nativeErrorCode();
    if (error.type() == QSqlError::ConnectionError)
        return FailureKind::Connection;
    if (postgres)
    {
        // SQLSTATE; libpq gives none when the connection itself broke.
        if (code.isEmpty() || code.startsWith(u"08") || code.startsWith(u"57P"))
            return FailureKind::Connection;
        if (code == u"40P01" || code == u"40001" || code == u"55P03")
            return FailureKind::Conflict;
        if (code == u"42501")
            return FailureKind::Permission;
        return FailureKind::Other;
    }
    switch (code.toInt() & 0xff)
    {
    case 5: // SQLITE_BUSY
    case 6: // SQLITE_LOCKED
        return FailureKind::Conflict;
    case 3:  // SQLITE_PERM
    case 8:  // SQLITE_READONLY
    case 23: // SQLITE_AUTH
        return FailureKind::Permission;
    case 10: // SQLITE_IOERR
    case 11: // SQLITE_CORRUPT
    case 14: // SQLITE_CANTOPEN
    case 26: // SQLITE_NOTADB
        return FailureKind::Connection;
    default:
        return FailureKind::Other;
    }
}

RepositoryStore::RepositoryStore(const RepositoryUrl& url, const QString& displayUrl)
    : m_url(url), m_displayUrl(displayUrl),
      m_connectionName(QStringLiteral("zevx_repository_%1").arg(++connectionCounter))
{
}

RepositoryStore::~RepositoryStore()
{
    close();
    m_db = QSqlDatabase();
    if (QSqlDatabase::contains(m_connectionName))
        QSqlDatabase::removeDatabase(m_connectionName);
}

QString RepositoryStore::changedBy() const
{
    if (!m_url.user.isEmpty())
        return m_url.user;
    const QString login = qEnvironmentVariable("USER", qEnvironmentVariable("USERNAME"));
    return login.isEmpty() ? QStringLiteral("unknown") : login;
}

bool RepositoryStore::connect(QString& why)
{
    const bool postgres = isPostgres();
    const QString driver = postgres ? QStringLiteral("QPSQL") : QStringLiteral("QSQLITE");
    if (!QSqlDatabase::isDriverAvailable(driver))
    {
        why = QStringLiteral("Qt's %1 database driver is not installed").arg(driver);
        return false;
    }
    if (!m_db.isValid())
        m_db = QSqlDatabase::addDatabase(driver, m_connectionName);
    QStringList options;
    if (postgres)
    {
        m_db.setHostName(m_url.host);
        m_db.setPort(m_url.port);
        m_db.setDatabaseName(m_url.database);
        m_db.setUserName(m_url.user);
        // No password given: libpq's password file, peer or trust authentication decide.
        m_db.setPassword(m_url.password);
        options << QStringLiteral("connect_timeout=%1")
                       .arg(m_url.connectTimeout >= 0 ? m_url.connectTimeout
                                                      : DefaultConnectTimeoutSeconds);
        if (!m_url.sslmode.isEmpty())
            options << QStringLiteral("sslmode=") + m_url.sslmode;
    }
    else
    {
        const QFileInfo file(m_url.path);
        if (file.isDir())
        {
            why = QStringLiteral("%1 is a folder, not a database file").arg(m_url.path);
            return false;
        }
        QDir().mkpath(file.absolutePath());
        m_db.setDatabaseName(m_url.path);
        options << QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(SqliteBusyTimeoutMs);
    }
    m_db.setConnectOptions(options.join(u';'));
    if (!m_db.open())
    {
        why = FoldedError(m_db.lastError());
        return false;
    }
    if (postgres)
        sendNoticesToLog(m_db);
    if (!postgres)
    {
        // WAL lets readers go on while another program writes; the pragma also proves the
        // file is a database at all. With WAL, synchronous=NORMAL syncs at checkpoints
        // instead of at every commit and still never leaves a broken file: a push of ten
        // thousand records no longer waits on the disk for each of its transactions.
        QSqlQuery pragma(m_db);
        if (!pragma.exec(QStringLiteral("PRAGMA journal_mode=WAL")) ||
            !pragma.exec(QStringLiteral("PRAGMA synchronous=NORMAL")) ||
            !pragma.exec(QStringLiteral("PRAGMA foreign_keys=ON")))
        {
            why = FoldedError(pragma.lastError());
            return false;
        }
    }
    return true;
}

void RepositoryStore::close()
{
    if (!m_queries.empty() && (!m_accessible || !m_db.isOpen()))
    {
        previousHandler = qInstallMessageHandler(withoutFreeStatementWarnings);
        m_queries.clear();
        qInstallMessageHandler(previousHandler);
    }
    m_queries.clear();
    m_catalogRows.clear(); // the next connection may meet a database made anew
    if (m_db.isValid())
        m_db.close();
    m_accessible = false;
}

bool RepositoryStore::open()
{
    QString why;
    m_failure = FailureKind::Connection;
    m_accessible = connect(why) && ensureSchema(why);
    if (!m_accessible)
    {
        m_failureText = why;
        report(QStringLiteral("connecting"));
        close();
    }
    return m_accessible;
}

bool RepositoryStore::reconnect()
{
    close();
    return open();
}

void RepositoryStore::noteFailure(const QSqlError& error)
{
    m_failure = ClassifyError(error, isPostgres());
    m_failureText = FoldedError(error);
}

bool RepositoryStore::refuse(const QString& why)
{
    m_failure = FailureKind::Other;
    m_failureText = why;
    return false;
}

void RepositoryStore::report(const QString& what)
{
    m_reportedFailure = m_failure == FailureKind::None ? FailureKind::Other : m_failure;
    m_lastError =
        QStringLiteral("Repository %1: %2 failed: %3").arg(m_displayUrl, what, m_failureText);
    ReportRepositoryFailure(m_lastError);
}

QSqlQuery* RepositoryStore::exec(const QString& sql, const QVariantList& values)
{
    ++m_statementsRun;
    auto found = m_queries.find(sql);
    if (found == m_queries.end())
    {
        auto query = std::make_unique<QSqlQuery>(m_db);
        query->setForwardOnly(true);
        if (!query->prepare(sql))
        {
            noteFailure(query->lastError());
            return nullptr;
        }
        found = m_queries.emplace(sql, std::move(query)).first;
    }
    QSqlQuery* query = found->second.get();
    for (qsizetype i = 0; i < values.size(); ++i)
        query->bindValue(int(i), values[i]);
    if (!query->exec())
    {
        noteFailure(query->lastError());
        return nullptr;
    }
    return query;
}

bool RepositoryStore::execAll(const QStringList& statements)
{
    for (const QString& sql : statements)
    {
        QSqlQuery query(m_db);
        ++m_statementsRun;
        if (!query.exec(sql))
        {
            noteFailure(query.lastError());
            return false;
        }
    }
    return true;
}

bool RepositoryStore::begin()
{
    // SQLite: take the write lock now, so a second writer waits at the start instead of
    // failing with "busy" halfway through.
    return execAll({isPostgres() ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE")});
}

void RepositoryStore::finishQueries()
{
    // SQLite refuses to commit while a SELECT is still open.
    for (auto& entry : m_queries)
        entry.second->finish();
}

bool RepositoryStore::commit()
{
    finishQueries();
    return execAll({QStringLiteral("COMMIT")});
}

void RepositoryStore::rollback()
{
    finishQueries();
    if (!m_db.isOpen() || m_failure == FailureKind::Connection)
        return; // the server has rolled back what it had
    QSqlQuery query(m_db);
    query.exec(QStringLiteral("ROLLBACK")); // on a lost connection the server has done it
}

bool RepositoryStore::catalogRowWritten(const QString& reference, const QString& name) const
{
    const auto found = m_catalogRows.find(reference);
    return found != m_catalogRows.end() && (name.isEmpty() || found->second == name);
}

void RepositoryStore::noteCatalogRowWritten(const QString& reference, const QString& name)
{
    QString& known = m_catalogRows[reference];
    if (!name.isEmpty())
        known = name;
}

bool RepositoryStore::run(const QString& what, Unit unit, const std::function<bool()>& work)
{
    if (!m_accessible && !reconnect())
        return false;
    bool reopened = false;
    for (int attempt = 0;; ++attempt)
    {
        m_failure = FailureKind::None;
        m_failureText.clear();
        m_statementsRun = 0;
        const bool transaction = unit == Unit::Transaction;
        const bool ok = transaction ? begin() && work() && commit() : work();
        if (ok)
        {
            if (!transaction)
                finishQueries();
            return true;
        }
        const bool atFirstStatement = m_statementsRun <= 1;
        if (transaction)
            rollback();
        else
            finishQueries();
        if (m_failure == FailureKind::Conflict && attempt < MaxConflictRetries)
        {
            QThread::msleep(unsigned(10 << std::min(attempt, 5)));
            continue;
        }
        if (m_failure == FailureKind::Connection)
        {
            // A connection that died while idle (a restarted server) fails at its first
            // statement, before anything was sent: open it again and start over once.
            const FailureKind failure = m_failure;
            const QString text = m_failureText;
            m_accessible = false;
            if (atFirstStatement && !reopened)
            {
                reopened = true;
                if (reconnect())
                    continue;
                return false; // reconnect() reported why
            }
            m_failure = failure;
            m_failureText = text;
        }
        report(what);
        return false;
    }
}

} // namespace Repository
