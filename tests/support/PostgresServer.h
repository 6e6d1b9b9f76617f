#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

// A throw-away PostgreSQL server for tests and benchmarks: initdb into a temporary folder,
// listening only on a Unix socket in that folder, fsync off unless asked for. It holds one database and two
// login roles with passwords (password auth on the socket, so a wrong password is refused
// for real): a read-write role owning the database and a read-only role that gets SELECT
// and USAGE through grantReadOnly() once the schema is there. As root (CI) the server runs
// as the `postgres` user, since it refuses to run as root.
class PostgresServer
{
public:
    enum Role { ReadWrite, ReadOnly, Superuser };

    static constexpr const char* database = "catalogs";
    static constexpr const char* writer = "editor";
    static constexpr const char* writerPassword = "w-secret";
    static constexpr const char* reader = "reader";
    static constexpr const char* readerPassword = "r-secret";

    // Empty when a server can be made here; otherwise why not (no binaries, no user to run it).
    static QString unavailableReason();
    // The folder holding initdb and pg_ctl (newest version under /usr/lib/postgresql), or "".
    static QString binDir();

    // `syncToDisk`: commits wait for the disk, as on a real server (benchmarks).
    explicit PostgresServer(bool syncToDisk = false);
    ~PostgresServer(); // stops the server (fast) and removes its folder

    // initdb, start, database and roles. False with error() on failure.
    bool start();
    bool stop(bool immediate = false);
    // Starts again (after a stop, or stopping fast first); the data stays.
    bool restart() { return stop() && startServer(); }
    bool isRunning() const { return m_running; }

    // SELECT and USAGE on everything now in the public schema of `dbname` for the read-only
    // role.
    bool grantReadOnly(const QString& dbname = database);
    // Runs SQL through psql as `role` on `dbname`; output in `out` (unaligned, tuples only).
    bool psql(const QString& sql, QString* out = nullptr, Role role = Superuser,
              const QString& dbname = database);

    // Statements the server has run in `dbname` (each one a round trip for a client that
    // does not pipeline); -1 when the server does not count them.
    qint64 statementsRun(const QString& dbname);

    // The repository URL: socket folder percent-encoded as host, user and password of `role`.
    QString url(Role role = ReadWrite) const;
    QString url(const QString& user, const QString& password, const QString& dbname) const;
    QString socketDir() const { return m_dir ? m_dir->path() : QString(); }
    int port() const { return 5432; }
    QString error() const { return m_error; }
    // The server's log, for a failure message.
    QString log() const;

private:
    bool startServer();
    bool runPsql(const QString& sql, const QString& dbname, Role role, QString* out);
    bool run(const QString& program, const QStringList& args, bool asServerUser,
             QString* out = nullptr, const QByteArray& input = QByteArray());
    QString dataDir() const { return socketDir() + "/data"; }

    std::unique_ptr<QTemporaryDir> m_dir;
    bool m_syncToDisk = false;
    bool m_running = false;
    QString m_error;
};

// Skips the calling test function, saying why, when no PostgreSQL server can be made.
#define ZEVX_SKIP_WITHOUT_POSTGRES()                                                               \
    do {                                                                                           \
        const QString zevxPgWhy = PostgresServer::unavailableReason();                             \
        if (!zevxPgWhy.isEmpty())                                                                  \
            QSKIP(qPrintable(zevxPgWhy));                                                          \
    } while (0)
