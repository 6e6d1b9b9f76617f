// The zevxcatalog program, run as a user runs it: on the sample store and on broken input.

#include <QtTest>
#include <QProcess>
#include <QTemporaryDir>

namespace
{

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

Run run(const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("ZEVX_CATALOG_ROOT"));
    environment.remove(QStringLiteral("ZEVX_DRAWING"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ZEVXCATALOG_BINARY), arguments);
    Run result;
    if (!process.waitForFinished(30000)) {
        process.kill();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

// A copy of the sample store the test may break.
bool copySamples(const QString& target)
{
    const QString source = QStringLiteral(ZEVX_SAMPLES_DIR);
    QDirIterator it(source, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString to = target + file.mid(source.size());
        QDir().mkpath(QFileInfo(to).absolutePath());
        if (!QFile::copy(file, to))
            return false;
        QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner);
    }
    return true;
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class TestZevxCatalog : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_store;

private slots:
    void initTestCase()
    {
        QVERIFY(copySamples(m_store.path()));
    }

    void succeeds_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("expected"); // lines or fragments of standard output
        const QString root = m_store.path();
        QTest::newRow("list") << QStringList{"--catalogs", root, "list"}
                              << QStringList{"CABLES        Kabeli", "drawing-version, max-depth=3", "SWITCHGEAR", "hidden, max-depth=2",
                                             "no-new-items", "default-selection, max-depth=4", "Nadzemni vodiči", "max-depth=1"};
        QTest::newRow("show in the editor's order") << QStringList{"--catalogs", root, "show", "CABLES"}
                                                    << QStringList{"CABLES \"Kabeli\": catalog, 16 entries",
                                                                   "[G]   0  Srednji napon 10(20) kV\n  [G]   0  NA2XS(F)2Y\n    [ ]   0  NA2XS(F)2Y 1x150/25 12/20 kV  <Kabel SN>",
                                                                   "[G]   2  Signalni i upravljački kabeli\n  [ ]   0  J-H(St)H 4x2x0,8 – spojni kabel za čvorište"};
        QTest::newRow("reference ignores case") << QStringList{"show", "transformers", "--catalogs=" + root}
                                                << QStringList{"TRANSFORMERS \"Transformatori\"", "[*]   1  Transformator 10/0,4 kV 400 kVA – Čakovec",
                                                               "[ ]   2  Transformator 10/0,4 kV 400 kVA – Đurđevac"};
        QTest::newRow("drawing copy") << QStringList{"--catalogs", root, "show", "CABLES", "--drawing"}
                                      << QStringList{"drawing copy for " + root + "/drawings/Sample.dwg, 10 entries", "NAYY 4x240 SE 0,6/1 kV (iz crteža)"};
        QTest::newRow("hidden catalog") << QStringList{"--catalogs", root, "show", "SWITCHGEAR"} << QStringList{"RMU 24 kV 2K+1T, SF6"};
        QTest::newRow("validate a catalog") << QStringList{"validate", root + "/poles.xml"}
                                            << QStringList{root + "/poles.xml: well formed", "catalog: POLES, 10 entries"};
        QTest::newRow("help") << QStringList{"--help"} << QStringList{"Usage: zevxcatalog", "validate FILE..."};
    }

    void succeeds()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, expected);
        const Run result = run(arguments);
        QVERIFY2(result.exitCode == 0, qPrintable(result.err));
        for (const QString& fragment : expected)
            QVERIFY2(result.out.contains(fragment), qPrintable(QStringLiteral("missing \"%1\" in:\n%2").arg(fragment, result.out)));
    }

    void fails_data()
    {
        QTest::addColumn<QString>("breakFile");    // file of the store copy to overwrite, or ""
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("arguments"); // "ROOT" stands for the broken store
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        QTest::newRow("unknown reference") << "" << QByteArray() << QStringList{"--catalogs", "ROOT", "show", "NOPE"} << 1 << "no catalog \"NOPE\"";
        QTest::newRow("no drawing version") << "" << QByteArray() << QStringList{"--catalogs", "ROOT", "show", "POLES", "--drawing"} << 1 << "POLES keeps no drawing version";
        QTest::newRow("store folder missing") << "" << QByteArray() << QStringList{"--catalogs", "ROOT/nowhere", "list"} << 1 << "ROOT/nowhere: the folder does not exist";
        QTest::newRow("broken registry") << "registry.xml" << QByteArray("<registry><catalog") << QStringList{"--catalogs", "ROOT", "list"} << 1 << "ROOT/registry.xml is broken: not well-formed XML at line 1";
        QTest::newRow("broken catalog") << "cables.xml" << QByteArray("<catalog ref=\"CABLES\"><i n=\"x\"/></catalog>") << QStringList{"--catalogs", "ROOT", "show", "CABLES"} << 1 << "ROOT/cables.xml is not a catalog file: item without a GUID";
        QTest::newRow("not well formed file") << "junk.xml" << QByteArray("<a><b></a>") << QStringList{"validate", "ROOT/junk.xml", "ROOT/poles.xml"} << 1 << "";
        QTest::newRow("no command") << "" << QByteArray() << QStringList{"--catalogs", "ROOT"} << 2 << "Usage:";
        QTest::newRow("unknown option") << "" << QByteArray() << QStringList{"--colour", "list"} << 2 << "unknown option --colour";
    }

    void fails()
    {
        QFETCH(QString, breakFile);
        QFETCH(QByteArray, content);
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        QTemporaryDir dir;
        QVERIFY(copySamples(dir.path()));
        if (!breakFile.isEmpty())
            write(dir.filePath(breakFile), content);
        for (QString& argument : arguments)
            argument.replace(QStringLiteral("ROOT"), dir.path());
        message.replace(QStringLiteral("ROOT"), dir.path());
        const Run result = run(arguments);
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
    }

    void otherCatalogsStillShowWhenOneIsBroken()
    {
        QTemporaryDir dir;
        QVERIFY(copySamples(dir.path()));
        write(dir.filePath(QStringLiteral("cables.xml")), "garbage");
        QCOMPARE(run({"--catalogs", dir.path(), "show", "CABLES"}).exitCode, 1);
        const Run poles = run({"--catalogs", dir.path(), "show", "POLES"});
        QCOMPARE(poles.exitCode, 0);
        QVERIFY(poles.out.contains(QStringLiteral("ČRS 15/2000 – kutni, Đakovo")));
    }

    void validateReportsEachFile()
    {
        QTemporaryDir dir;
        QVERIFY(copySamples(dir.path()));
        write(dir.filePath(QStringLiteral("junk.xml")), "<a><b></a>");
        const Run result = run({"validate", dir.filePath(QStringLiteral("junk.xml")), dir.filePath(QStringLiteral("registry.xml")),
                                dir.filePath(QStringLiteral("cables.xml")), dir.filePath(QStringLiteral("missing.xml"))});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.out.contains(dir.filePath(QStringLiteral("junk.xml")) + QStringLiteral(": not well formed\n  result: ")), qPrintable(result.out));
        QVERIFY2(result.out.contains(dir.filePath(QStringLiteral("registry.xml")) + QStringLiteral(": well formed")), qPrintable(result.out));
        QVERIFY2(result.out.contains(QStringLiteral("not a catalog: the root element is <registry>")), qPrintable(result.out));
        QVERIFY2(result.out.contains(QStringLiteral("catalog: CABLES, 16 entries")), qPrintable(result.out));
        QVERIFY2(result.out.contains(dir.filePath(QStringLiteral("missing.xml")) + QStringLiteral(": not well formed")), qPrintable(result.out));
    }
};

QTEST_GUILESS_MAIN(TestZevxCatalog)
#include "tst_zevxcatalog.moc"
