#include "tests/support/PostgresServer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QUrl>

#include <pwd.h>
#include <unistd.h>

namespace
{
constexpr const char* superuserPassword = "su-secret";
constexpr const char* serverUser = "postgres"; // Debian's package creates it

bool runningAsRoot() { return ::geteuid() == 0; }

QString versionedBinDir()
{
    QDir base("/usr/lib/postgresql");
    // Newest version first ("15" before "9.6").
    QFileInfoList versions = base.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    std::sort(versions.begin(), versions.end(), [](const QFileInfo& a, const QFileInfo& b) {
        return a.fileName().toDouble() > b.fileName().toDouble();
    });
    for (const QFileInfo& version : versions) {
        const QString bin = version.filePath() + "/bin";
        if (QFileInfo(bin + "/initdb").isExecutable() && QFileInfo(bin + "/pg_ctl").isExecutable())
            return bin;
    }
    return QString();
}

QString roleUser(PostgresServer::Role role)
{
    switch (role) {
    case PostgresServer::ReadWrite: return PostgresServer::writer;
    case PostgresServer::ReadOnly: return PostgresServer::reader;
    case PostgresServer::Superuser: break;
    }
    return "postgres";
}

QString rolePassword(PostgresServer::Role role)
{
    switch (role) {
    case PostgresServer::ReadWrite: return PostgresServer::writerPassword;
    case PostgresServer::ReadOnly: return PostgresServer::readerPassword;
    case PostgresServer::Superuser: break;
    }
    return superuserPassword;
}
} // namespace

QString PostgresServer::binDir()
{
    static const QString dir = versionedBinDir();
    return dir;
}

QString PostgresServer::unavailableReason()
{
    if (binDir().isEmpty() || !QFileInfo(binDir() + "/psql").isExecutable())
        return "PostgreSQL not found (no initdb, pg_ctl and psql under /usr/lib/postgresql/*/bin; "
               "scripts/deps installs it): PostgreSQL cases skipped";
    if (runningAsRoot()) {
        if (!::getpwnam(serverUser))
            return "PostgreSQL refuses to run as root and there is no \"postgres\" user to run "
                   "it: PostgreSQL cases skipped";
        if (QStandardPaths::findExecutable("runuser", {"/usr/sbin", "/sbin", "/usr/bin"}).isEmpty())
            return "PostgreSQL refuses to run as root and runuser is missing: PostgreSQL cases "
                   "skipped";
    }
    return QString();
}

PostgresServer::PostgresServer(bool syncToDisk) : m_syncToDisk(syncToDisk) {}

PostgresServer::~PostgresServer()
{
    if (m_running)
        stop();
}

bool PostgresServer::run(const QString& program, const QStringList& args, bool asServerUser,
                         QString* out, const QByteArray& input)
{
    QProcess process;
    QStringList all = args;
    QString exe = program;
    if (asServerUser && runningAsRoot()) {
        all = QStringList{"-u", serverUser, "--", program} + args;
        exe = QStandardPaths::findExecutable("runuser", {"/usr/sbin", "/sbin", "/usr/bin"});
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("PGPASSFILE");
    env.remove("PGSERVICE");
    env.insert("LC_ALL", "C");
    process.setProcessEnvironment(env);
    // The server user may not be allowed into the caller's working folder.
    process.setWorkingDirectory(socketDir());
    process.start(exe, all);
    if (!process.waitForStarted(10000)) {
        m_error = exe + ": " + process.errorString();
        return false;
    }
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        m_error = QFileInfo(program).fileName() + ": timed out";
        return false;
    }
    const QString stdOut = QString::fromLocal8Bit(process.readAllStandardOutput());
    if (out)
        *out = stdOut.trimmed();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        m_error = QFileInfo(program).fileName() + " failed: " +
                  QString::fromLocal8Bit(process.readAllStandardError()).trimmed() + " " +
                  stdOut.trimmed();
        return false;
    }
    return true;
}

bool PostgresServer::start()
{
    m_error = unavailableReason();
    if (!m_error.isEmpty())
        return false;
    // As root the folder must be reachable by the server user: /tmp is, a private TMPDIR may
    // not be. The socket path must also stay under the 107-byte limit.
    const QString base = runningAsRoot() ? QString("/tmp") : QDir::tempPath();
    m_dir = std::make_unique<QTemporaryDir>(base + "/zevx-pg-XXXXXX");
    if (!m_dir->isValid()) {
        m_error = "cannot create a temporary folder in " + base;
        return false;
    }
    if (runningAsRoot()) {
        const passwd* user = ::getpwnam(serverUser);
        if (::chown(QFile::encodeName(socketDir()).constData(), user->pw_uid, user->pw_gid) != 0) {
            m_error = "cannot hand " + socketDir() + " to the postgres user";
            return false;
        }
    }
    // The superuser's password comes through a pipe the server user's own shell makes (it may
    // not open ours), so no file holds it.
    const QStringList initdb{"-c",
                             QString("exec \"$0\" \"$@\" --pwfile=<(echo %1)").arg(superuserPassword),
                             binDir() + "/initdb", "-D", dataDir(), "-U", "postgres", "-E", "UTF8",
                             "--no-locale", "--no-sync", "--auth=scram-sha-256"};
    if (!run("/bin/bash", initdb, true))
        return false;
    if (!startServer())
        return false;
    const QString setup = QString("CREATE ROLE %1 LOGIN PASSWORD '%2';\n"
                                  "CREATE ROLE %3 LOGIN PASSWORD '%4';\n"
                                  "CREATE DATABASE %5 OWNER %1;\n")
                              .arg(writer, writerPassword, reader, readerPassword, database);
    return runPsql(setup, "postgres", Superuser, nullptr);
}

bool PostgresServer::startServer()
{
    // Only the socket in our folder. fsync off only risks data when the machine crashes; a
    // committed row must survive "stop -m immediate", so commits stay synchronous.
    const QString options = QString("-k %1 -p %2 -c listen_addresses= %3"
                                    "-c shared_buffers=32MB -c max_connections=40")
                                .arg(socketDir())
                                .arg(port())
                                .arg(m_syncToDisk ? "" : "-c fsync=off -c full_page_writes=off ") +
                            // Counts statements for the benchmarks' round trips, when shipped.
                            (QFileInfo::exists(binDir() + "/../lib/pg_stat_statements.so")
                                 ? " -c shared_preload_libraries=pg_stat_statements"
                                 : "");
    if (!run(binDir() + "/pg_ctl",
             {"-D", dataDir(), "-l", socketDir() + "/server.log", "-w", "-t", "60", "-o", options,
              "start"},
             true)) {
        m_error += "\n" + log();
        return false;
    }
    m_running = true;
    return true;
}

bool PostgresServer::stop(bool immediate)
{
    if (!m_running)
        return true;
    const bool ok = run(binDir() + "/pg_ctl",
                        {"-D", dataDir(), "-m", immediate ? "immediate" : "fast", "-w", "stop"}, true);
    m_running = !ok;
    return ok;
}

bool PostgresServer::runPsql(const QString& sql, const QString& dbname, Role role, QString* out)
{
    const QStringList args{"-X", "-q", "-A", "-t", "-v", "ON_ERROR_STOP=1", "-h", socketDir(),
                           "-p", QString::number(port()), "-U", roleUser(role), "-d", dbname,
                           "-f", "-"};
    qputenv("PGPASSWORD", rolePassword(role).toUtf8());
    const bool ok = run(binDir() + "/psql", args, false, out, sql.toUtf8());
    qunsetenv("PGPASSWORD");
    return ok;
}

bool PostgresServer::psql(const QString& sql, QString* out, Role role, const QString& dbname)
{
    return runPsql(sql, dbname, role, out);
}

bool PostgresServer::grantReadOnly(const QString& dbname)
{
    return psql(QString("GRANT USAGE ON SCHEMA public TO %1;\n"
                        "GRANT SELECT ON ALL TABLES IN SCHEMA public TO %1;\n")
                    .arg(reader),
                nullptr, Superuser, dbname);
}

QString PostgresServer::url(Role role) const
{
    return url(roleUser(role), rolePassword(role), database);
}

QString PostgresServer::url(const QString& user, const QString& password,
                            const QString& dbname) const
{
    QString credentials = QString::fromLatin1(QUrl::toPercentEncoding(user));
    if (!password.isEmpty())
        credentials += ":" + QString::fromLatin1(QUrl::toPercentEncoding(password));
    // Concatenated: the encoded host's "%2F" would be taken for an arg() marker.
    return "postgresql://" + credentials + "@" +
           QString::fromLatin1(QUrl::toPercentEncoding(socketDir())) + ":" +
           QString::number(port()) + "/" + dbname;
}

QString PostgresServer::log() const
{
    QFile file(socketDir() + "/server.log");
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
}

qint64 PostgresServer::statementsRun(const QString& dbname)
{
    QString out;
    const QString sql = QString("CREATE EXTENSION IF NOT EXISTS pg_stat_statements;\n"
                                "SELECT coalesce(sum(s.calls), 0) FROM pg_stat_statements s "
                                "JOIN pg_database d ON d.oid = s.dbid WHERE d.datname = '%1';\n")
                            .arg(dbname);
    if (!runPsql(sql, "postgres", Superuser, &out))
        return -1;
    return out.section('\n', -1).toLongLong();
}
