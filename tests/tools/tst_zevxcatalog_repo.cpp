// zevxcatalog's repo commands, run as a user runs them, on copies of the sample store against
// a SQLite file and a PostgreSQL server of the test's own.

#include "tests/support/PostgresServer.h"

#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
const QString topGroup = "{2A7E10A6-FC8E-517C-A005-E63B78757115}"; // Srednji napon, 7 entries
const QString middleGroup = "{DBCDD91C-07FE-51D7-98AC-41097224A80C}";
const QString deepItem = "{D814E5C2-6D65-568A-8EF6-EA3906301093}";
const QString lowGroup = "{C6715747-684F-536F-B180-94789BB86CB6}"; // Niski napon, 7 entries
const QString unknownGuid = "{00000000-0000-0000-0000-000000000000}";

struct Result
{
    int code = -1;
    QString out;
    QString err;
};

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The `show` listing as `repo list` prints it: the repository's tree keeps no default mark or
// template, and the header differs.
QString asRepositoryTree(const QString& show)
{
    QStringList lines = show.split('\n', Qt::SkipEmptyParts).mid(1);
    for (QString& line : lines) {
        line.replace("[*]", "[ ]");
        line.remove(QRegularExpression("  <[^>]*>$"));
    }
    return lines.join('\n');
}
} // namespace

class TestZevxCatalogRepo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void commandLine_data();
    void commandLine();
    void pushListPull_data() { backends(); }
    void pushListPull();
    void failures_data();
    void failures();
    void deleteGroup_data() { backends(); }
    void deleteGroup();
    void repositoryOptionWins_data() { backends(); }
    void repositoryOptionWins();
    void concurrentPushes_data() { backends(); }
    void concurrentPushes();

private:
    void backends();
    // A new empty repository of the row's back end; "" when the back end cannot be had.
    QString freshRepository(const QString& backend);
    QString copySamples();
    Result run(const QString& root, const QString& url, const QStringList& words,
               const QString& environmentUrl = QString());
    QProcess* start(const QString& root, const QString& url, const QStringList& words);

    QTemporaryDir m_temp;
    PostgresServer m_server;
    bool m_serverUp = false;
    int m_made = 0;
};

#define FRESH_REPOSITORY(backend, url)                                                             \
    if (backend == "postgresql")                                                                   \
        ZEVX_SKIP_WITHOUT_POSTGRES();                                                              \
    const QString url = freshRepository(backend);                                                  \
    QVERIFY2(!url.isEmpty(), qPrintable(m_server.error()))

void TestZevxCatalogRepo::initTestCase()
{
    QVERIFY(m_temp.isValid());
    if (PostgresServer::unavailableReason().isEmpty()) {
        m_serverUp = m_server.start();
        QVERIFY2(m_serverUp, qPrintable(m_server.error()));
    }
}

void TestZevxCatalogRepo::backends()
{
    QTest::addColumn<QString>("backend");
    QTest::newRow("sqlite") << "sqlite";
    QTest::newRow("postgresql") << "postgresql";
}

QString TestZevxCatalogRepo::freshRepository(const QString& backend)
{
    const QString name = QString("repo%1").arg(++m_made);
    if (backend == "sqlite")
        return "sqlite:" + m_temp.filePath(name + ".sqlite");
    if (!m_serverUp || !m_server.psql(QString("CREATE DATABASE %1 OWNER %2;").arg(name, PostgresServer::writer)))
        return QString();
    return m_server.url(PostgresServer::writer, PostgresServer::writerPassword, name);
}

QString TestZevxCatalogRepo::copySamples()
{
    const QString root = m_temp.filePath(QString("store%1").arg(++m_made));
    const QString samples = QStringLiteral(ZEVX_SAMPLES_DIR);
    for (QDirIterator it(samples, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString file = it.next();
        const QString to = root + file.mid(samples.size());
        QDir().mkpath(QFileInfo(to).absolutePath());
        QFile::copy(file, to);
        QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner);
    }
    return root;
}

QProcess* TestZevxCatalogRepo::start(const QString& root, const QString& url, const QStringList& words)
{
    auto* process = new QProcess(this);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("ZEVX_CATALOG_ROOT");
    environment.remove("ZEVX_REPOSITORY");
    process->setProcessEnvironment(environment);
    QStringList arguments{"--catalogs", root};
    if (!url.isEmpty())
        arguments << "--repository" << url;
    process->start(QStringLiteral(ZEVXCATALOG_BINARY), arguments + words);
    return process;
}

Result TestZevxCatalogRepo::run(const QString& root, const QString& url, const QStringList& words,
                                const QString& environmentUrl)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("ZEVX_CATALOG_ROOT");
    environment.insert("ZEVX_REPOSITORY", environmentUrl.isEmpty() ? "none" : environmentUrl);
    process.setProcessEnvironment(environment);
    QStringList arguments{"--catalogs", root};
    if (!url.isEmpty())
        arguments << "--repository" << url;
    process.start(QStringLiteral(ZEVXCATALOG_BINARY), arguments + words);
    Result result;
    if (!process.waitForFinished(60000))
        return result;
    result.code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

void TestZevxCatalogRepo::commandLine_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("error");
    QTest::newRow("no repo command") << QStringList{"repo"} << "repo needs a command";
    QTest::newRow("unknown repo command") << QStringList{"repo", "copy", "CABLES"} << "unknown repo command copy";
    QTest::newRow("list without a reference") << QStringList{"repo", "list"} << "needs a catalog reference";
    QTest::newRow("pull without a GUID") << QStringList{"repo", "pull", "CABLES"} << "needs the GUIDs";
    QTest::newRow("delete without a GUID") << QStringList{"repo", "delete", "CABLES"} << "needs one GUID";
    QTest::newRow("--repository without a value") << QStringList{"repo", "list", "CABLES", "--repository"}
                                                   << "--repository needs a value";
}

void TestZevxCatalogRepo::commandLine()
{
    QFETCH(QStringList, words);
    QFETCH(QString, error);
    const Result result = run(copySamples(), QString(), words);
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(error) && result.err.contains("Usage:"), qPrintable(result.err));
}

void TestZevxCatalogRepo::pushListPull()
{
    QFETCH(QString, backend);
    FRESH_REPOSITORY(backend, url);
    const QString source = copySamples();
    Result result = run(source, url, {"repo", "push", "CABLES"});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    QVERIFY2(result.out.contains("sent 16 records of CABLES"), qPrintable(result.out));
    QVERIFY(!result.out.contains(PostgresServer::writerPassword));

    // The repository's tree is the catalog's.
    const Result shown = run(source, QString(), {"show", "CABLES"});
    result = run(source, url, {"repo", "list", "cables"});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    QVERIFY2(result.out.startsWith("CABLES \"Kabeli\": repository "), qPrintable(result.out));
    QVERIFY(result.out.contains(", 16 records\n"));
    QVERIFY(!result.out.contains(PostgresServer::writerPassword));
    QCOMPARE(asRepositoryTree(result.out), asRepositoryTree(shown.out));

    // An empty catalog elsewhere: an item three levels deep brings its two missing parents,
    // then its top group brings the rest and replaces those three.
    const QString target = copySamples();
    const QString file = target + "/cables.xml";
    QFile empty(file);
    QVERIFY(empty.open(QIODevice::WriteOnly | QIODevice::Truncate));
    empty.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog ref=\"CABLES\" format=\"1\"/>\n");
    empty.close();
    result = run(target, url, {"repo", "pull", "CABLES", deepItem});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    QVERIFY2(result.out.contains("brought 3 records into CABLES"), qPrintable(result.out));
    const Result partial = run(target, QString(), {"show", "CABLES"});
    QVERIFY2(partial.out.contains("3 entries") &&
                 partial.out.contains("    [ ]   0  NA2XS(F)2Y 1x150/25 12/20 kV  <Kabel SN>"),
             qPrintable(partial.out));

    result = run(target, url, {"repo", "pull", "CABLES", topGroup, lowGroup,
                               "{57FA1534-F934-5B57-A34D-5D8E712190A2}"});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    // Every record carries the whole item: the catalog file comes back as it was.
    QCOMPARE(QString::fromUtf8(readAll(file)), QString::fromUtf8(readAll(source + "/cables.xml")));
}

void TestZevxCatalogRepo::failures_data()
{
    QTest::addColumn<QString>("backend");
    // How the URL is spoiled: "" good, "down" no server, "password", "user", "database",
    // "reader" the read-only role.
    QTest::addColumn<QString>("spoil");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("error");

    for (const QString backend : {"sqlite", "postgresql"}) {
        const auto row = [&](const char* name) -> QTestData& {
            return QTest::newRow(qPrintable(backend + ": " + name)) << backend;
        };
        row("unknown catalog") << "" << QStringList{"repo", "list", "NOPE"} << "no catalog \"NOPE\"";
        row("GUID not in the catalog") << "" << QStringList{"repo", "push", "CABLES", topGroup, unknownGuid}
                                        << "has no entry " + unknownGuid + ": nothing was sent";
        row("GUID not in the repository") << "" << QStringList{"repo", "pull", "CABLES", lowGroup, unknownGuid}
                                           << "has no record " + unknownGuid + ": the local catalog is unchanged";
        row("delete of a record not there") << "" << QStringList{"repo", "delete", "CABLES", unknownGuid}
                                             << "has no record " + unknownGuid;
        row("no server") << "down" << QStringList{"repo", "list", "CABLES"} << "Repository ";
    }
    const QString pg = "postgresql";
    const QStringList list{"repo", "list", "CABLES"};
    QTest::newRow("postgresql: wrong password") << pg << "password" << list << "password authentication failed";
    QTest::newRow("postgresql: unknown user") << pg << "user" << list << "password authentication failed";
    QTest::newRow("postgresql: unknown database") << pg << "database" << list << "does not exist";
    QTest::newRow("postgresql: read-only role pushes") << pg << "reader" << QStringList{"repo", "push", "CABLES"}
                                                       << "permission denied";
    QTest::newRow("postgresql: read-only role deletes") << pg << "reader"
                                                        << QStringList{"repo", "delete", "CABLES", lowGroup}
                                                        << "permission denied";
}

void TestZevxCatalogRepo::failures()
{
    QFETCH(QString, backend);
    QFETCH(QString, spoil);
    QFETCH(QStringList, words);
    QFETCH(QString, error);
    FRESH_REPOSITORY(backend, good);
    const QString root = copySamples();
    // Something in the repository (and the schema there) before the failing call.
    Result result = run(root, good, {"repo", "push", "CABLES", lowGroup});
    QVERIFY2(result.code == 0, qPrintable(result.err));

    QString url = good;
    const QString database = good.section('/', -1);
    if (spoil == "down")
        url = backend == "sqlite" ? "sqlite:/proc/no/such/folder/r.sqlite"
                                  : "postgresql://editor:w-secret@%2Ftmp%2Fzevx-no-server:5432/catalogs";
    else if (spoil == "password")
        url = m_server.url(PostgresServer::writer, "wrong-secret", database);
    else if (spoil == "user")
        url = m_server.url("ghost", "w-secret", database);
    else if (spoil == "database")
        url = m_server.url(PostgresServer::writer, PostgresServer::writerPassword, "nowhere");
    else if (spoil == "reader") {
        QVERIFY2(m_server.grantReadOnly(database), qPrintable(m_server.error()));
        url = m_server.url(PostgresServer::reader, PostgresServer::readerPassword, database);
    }
    const QByteArray catalogBefore = readAll(root + "/cables.xml");
    const Result before = run(root, good, {"repo", "list", "CABLES"});

    result = run(root, url, words);
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.count('\n') == 1 && result.err.contains(error), qPrintable(result.err));
    for (const char* secret : {"w-secret", "r-secret", "wrong-secret"})
        QVERIFY2(!(result.out + result.err).contains(secret), qPrintable(result.err));
    // Nothing changed on either side.
    QCOMPARE(readAll(root + "/cables.xml"), catalogBefore);
    QCOMPARE(run(root, good, {"repo", "list", "CABLES"}).out, before.out);
}

void TestZevxCatalogRepo::deleteGroup()
{
    QFETCH(QString, backend);
    FRESH_REPOSITORY(backend, url);
    const QString root = copySamples();
    QCOMPARE(run(root, url, {"repo", "push", "CABLES"}).code, 0);
    Result result = run(root, url, {"repo", "delete", "CABLES", topGroup});
    QVERIFY2(result.code == 0, qPrintable(result.err));
    QVERIFY2(result.out.contains("deleted 7 records of CABLES"), qPrintable(result.out));
    result = run(root, url, {"repo", "list", "CABLES"});
    QVERIFY(result.out.contains(", 9 records\n"));
    QVERIFY(!result.out.contains("Srednji napon") && result.out.contains("[G]   1  Niski napon 0,4 kV"));
    // Its records are gone, not only hidden: pulling one fails.
    QCOMPARE(run(root, url, {"repo", "pull", "CABLES", deepItem}).code, 1);
}

void TestZevxCatalogRepo::repositoryOptionWins()
{
    QFETCH(QString, backend);
    FRESH_REPOSITORY(backend, url);
    const QString root = copySamples();
    const QString broken = "postgresql://ghost:env-secret@%2Ftmp%2Fzevx-no-server/db";
    QCOMPARE(run(root, url, {"repo", "list", "CABLES"}, broken).code, 0);
    // The environment alone: its failure on one line, without its password.
    const Result result = run(root, QString(), {"repo", "list", "CABLES"}, broken);
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.count('\n') == 1 && result.err.contains("postgresql://ghost@"), qPrintable(result.err));
    QVERIFY(!result.err.contains("env-secret"));
    // list and show take the option and stay as they were.
    QCOMPARE(run(root, url, {"show", "POLES"}).out, run(root, QString(), {"show", "POLES"}).out);
}

void TestZevxCatalogRepo::concurrentPushes()
{
    QFETCH(QString, backend);
    FRESH_REPOSITORY(backend, url);
    const QString root = copySamples();
    QCOMPARE(run(root, url, {"repo", "list", "CABLES"}).code, 0); // the tables made
    // Overlapping trees at the same moment, twice over to make the overlap likely.
    for (int round = 0; round < 2; ++round) {
        QProcess* all = start(root, url, {"repo", "push", "CABLES"});
        QProcess* some = start(root, url, {"repo", "push", "CABLES", lowGroup, topGroup});
        for (QProcess* process : {all, some}) {
            QVERIFY(process->waitForFinished(60000));
            QVERIFY2(process->exitCode() == 0, process->readAllStandardError().constData());
        }
    }
    const Result result = run(root, url, {"repo", "list", "CABLES"});
    QVERIFY2(result.out.contains(", 16 records\n"), qPrintable(result.out));
}

QTEST_GUILESS_MAIN(TestZevxCatalogRepo)
#include "tst_zevxcatalog_repo.moc"
