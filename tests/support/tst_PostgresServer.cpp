// The test server fixture itself: logins as the repository tests make them, the read-only
// role, and a crash-stop followed by a restart.

#include "tests/support/PostgresServer.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

class TestPostgresServer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void logins_data();
    void logins();
    void readOnlyRole();
    void immediateStopKeepsCommittedRows();
    void url();

private:
    // Opens a QPSQL connection to the fixture's socket; the error text when it fails.
    QString connect(const QString& user, const QString& password, const QString& dbname);

    PostgresServer m_server;
};

void TestPostgresServer::initTestCase()
{
    ZEVX_SKIP_WITHOUT_POSTGRES();
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

QString TestPostgresServer::connect(const QString& user, const QString& password,
                                    const QString& dbname)
{
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QPSQL", "probe");
        db.setHostName(m_server.socketDir());
        db.setPort(m_server.port());
        db.setUserName(user);
        db.setPassword(password);
        db.setDatabaseName(dbname);
        if (!db.open())
            error = db.lastError().text();
        else if (QSqlQuery query(db); !query.exec("SELECT 1"))
            error = query.lastError().text();
    }
    QSqlDatabase::removeDatabase("probe");
    return error;
}

void TestPostgresServer::logins_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("dbname");
    QTest::addColumn<QString>("error"); // a piece of the error, "" for a good login

    const QString db = PostgresServer::database;
    QTest::newRow("read-write role") << PostgresServer::writer << PostgresServer::writerPassword << db << "";
    QTest::newRow("read-only role") << PostgresServer::reader << PostgresServer::readerPassword << db << "";
    QTest::newRow("wrong password") << PostgresServer::writer << "nope" << db << "password authentication failed";
    QTest::newRow("no password") << PostgresServer::writer << "" << db << "password";
    QTest::newRow("unknown user") << "ghost" << "x" << db << "password authentication failed";
    QTest::newRow("unknown database") << PostgresServer::writer << PostgresServer::writerPassword
                                      << "nowhere" << "does not exist";
}

void TestPostgresServer::logins()
{
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(QString, dbname);
    QFETCH(QString, error);
    const QString got = connect(user, password, dbname);
    if (error.isEmpty())
        QVERIFY2(got.isEmpty(), qPrintable(got));
    else
        QVERIFY2(got.contains(error), qPrintable(got));
}

void TestPostgresServer::readOnlyRole()
{
    QVERIFY2(m_server.psql("CREATE TABLE ro (v int); INSERT INTO ro VALUES (7);", nullptr,
                           PostgresServer::ReadWrite),
             qPrintable(m_server.error()));
    QString out;
    QVERIFY(!m_server.psql("SELECT v FROM ro;", &out, PostgresServer::ReadOnly));
    QVERIFY2(m_server.error().contains("permission denied"), qPrintable(m_server.error()));

    QVERIFY2(m_server.grantReadOnly(), qPrintable(m_server.error()));
    QVERIFY2(m_server.psql("SELECT v FROM ro;", &out, PostgresServer::ReadOnly),
             qPrintable(m_server.error()));
    QCOMPARE(out, QString("7"));
    QVERIFY(!m_server.psql("INSERT INTO ro VALUES (8);", nullptr, PostgresServer::ReadOnly));
    QVERIFY2(m_server.error().contains("permission denied"), qPrintable(m_server.error()));
}

void TestPostgresServer::immediateStopKeepsCommittedRows()
{
    QVERIFY(m_server.psql("CREATE TABLE kept (v text); INSERT INTO kept VALUES ('before');",
                          nullptr, PostgresServer::ReadWrite));
    QVERIFY2(m_server.stop(true), qPrintable(m_server.error()));
    QVERIFY(!m_server.isRunning());
    QVERIFY(!connect(PostgresServer::writer, PostgresServer::writerPassword, PostgresServer::database)
                 .isEmpty());

    QVERIFY2(m_server.restart(), qPrintable(m_server.error()));
    QString out;
    QVERIFY2(m_server.psql("SELECT v FROM kept;", &out), qPrintable(m_server.error()));
    QCOMPARE(out, QString("before"));
}

void TestPostgresServer::url()
{
    const QString url = m_server.url(PostgresServer::ReadOnly);
    // The socket folder's slashes are encoded: the only plain ones are the scheme's and the
    // database's.
    QVERIFY2(url.startsWith("postgresql://reader:r-secret@%2F"), qPrintable(url));
    QVERIFY2(url.endsWith(":5432/catalogs") && url.count('/') == 3, qPrintable(url));
    QCOMPARE(m_server.url("a b", "p@ss", "db"),
             "postgresql://a%20b:p%40ss@" +
                 QString::fromLatin1(QUrl::toPercentEncoding(m_server.socketDir())) + ":5432/db");
}

QTEST_GUILESS_MAIN(TestPostgresServer)
#include "tst_PostgresServer.moc"
