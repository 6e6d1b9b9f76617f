// The zevxcatalog program, run as a user runs it: on a copy of the sample store, whole or
// broken. "ROOT" in a row stands for that copy.

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class TestZevxCatalog : public QObject
{
    Q_OBJECT

private slots:
    void runs_data();
    void runs();
};

void TestZevxCatalog::runs_data()
{
    QTest::addColumn<QString>("breakFile"); // file of the store to overwrite, or ""
    QTest::addColumn<QByteArray>("content"); // `folder`: the file becomes a folder
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("out"); // pieces of standard output
    QTest::addColumn<QString>("err");     // a piece of standard error

    const QByteArray none;
    const QByteArray folder("<folder>");
    // clang-format off
    QTest::newRow("list") << "" << none << QStringList{"--catalogs", "ROOT", "list"} << 0
        << QStringList{"CABLES        Kabeli", "drawing-version, max-depth=3",
                       "hidden, max-depth=2", "no-new-items", "default-selection, max-depth=4"}
        << "";
    QTest::newRow("show in the editor's order") << "" << none
        << QStringList{"--catalogs", "ROOT", "show", "CABLES"} << 0
        << QStringList{"CABLES \"Kabeli\": catalog, 16 entries",
                       "[G]   0  Srednji napon 10(20) kV\n  [G]   0  NA2XS(F)2Y\n"
                       "    [ ]   0  NA2XS(F)2Y 1x150/25 12/20 kV  <Kabel SN>"} << "";
    QTest::newRow("hidden catalog, reference in another case") << "" << none
        << QStringList{"show", "switchgear", "--catalogs=ROOT"} << 0
        << QStringList{"RMU 24 kV 2K+1T, SF6"} << "";
    QTest::newRow("default items marked") << "" << none
        << QStringList{"--catalogs", "ROOT", "show", "TRANSFORMERS"} << 0
        << QStringList{"[*]   1  Transformator 10/0,4 kV 400 kVA – Čakovec"} << "";
    QTest::newRow("drawing copy") << "" << none
        << QStringList{"--catalogs", "ROOT", "show", "CABLES", "--drawing"} << 0
        << QStringList{"drawing copy for ROOT/drawings/Sample.dwg, 10 entries",
                       "NAYY 4x240 SE 0,6/1 kV (iz crteža)"} << "";
    QTest::newRow("other catalogs load when one is broken") << "cables.xml" << QByteArray("junk")
        << QStringList{"--catalogs", "ROOT", "show", "POLES"} << 0
        << QStringList{"ČRS 15/2000 – kutni, Đakovo"} << "";

    QTest::newRow("unknown reference") << "" << none
        << QStringList{"--catalogs", "ROOT", "show", "NOPE"} << 1 << QStringList{}
        << "no catalog \"NOPE\"";
    QTest::newRow("no drawing version") << "" << none
        << QStringList{"--catalogs", "ROOT", "show", "POLES", "--drawing"} << 1 << QStringList{}
        << "POLES keeps no drawing version";
    QTest::newRow("store folder missing") << "" << none
        << QStringList{"--catalogs", "ROOT/nowhere", "list"} << 1 << QStringList{}
        << "ROOT/nowhere: the folder does not exist";
    QTest::newRow("broken registry") << "registry.xml" << QByteArray("<registry><catalog")
        << QStringList{"--catalogs", "ROOT", "list"} << 1 << QStringList{}
        << "ROOT/registry.xml is broken: not well-formed XML at line 1";
    QTest::newRow("broken catalog") << "cables.xml"
        << QByteArray("<catalog ref=\"CABLES\"><i n=\"x\"/></catalog>")
        << QStringList{"--catalogs", "ROOT", "show", "CABLES"} << 1 << QStringList{}
        << "ROOT/cables.xml is not a catalog file: item without a GUID";
    QTest::newRow("validate reports each file") << "junk.xml" << QByteArray("<a><b></a>")
        << QStringList{"validate", "ROOT/junk.xml", "ROOT/registry.xml", "ROOT/poles.xml",
                       "ROOT/missing.xml"} << 1
        << QStringList{"ROOT/junk.xml: not well formed\n  result: ",
                       "ROOT/registry.xml: well formed",
                       "not a catalog: the root element is <registry>",
                       "catalog: POLES, 10 entries"}
        << "ROOT/missing.xml cannot be read: the file does not exist";
    QTest::newRow("registry entry without its file") << "registry.xml"
        << QByteArray("<registry><catalog reference=\"GONE\" file=\"gone.xml\"/>"
                      "<catalog reference=\"POLES\" file=\"poles.xml\"/></registry>")
        << QStringList{"--catalogs", "ROOT", "list"} << 1 << QStringList{"GONE", "POLES"}
        << "catalog GONE: its file ROOT/gone.xml cannot be read: the file does not exist";
    QTest::newRow("two registry entries on one file") << "registry.xml"
        << QByteArray("<registry><catalog reference=\"CABLES\" file=\"cables.xml\"/>"
                      "<catalog reference=\"CONDUCTORS\" file=\"./sub/../cables.xml\"/></registry>")
        << QStringList{"--catalogs", "ROOT", "list"} << 1 << QStringList{"CABLES"}
        << "entries CABLES and CONDUCTORS (at line 1, column 58) both name the file ROOT/cables.xml";
    QTest::newRow("registry entry naming a folder") << "poles.xml" << folder
        << QStringList{"--catalogs", "ROOT", "list"} << 1 << QStringList{"POLES"}
        << "catalog POLES: its file ROOT/poles.xml cannot be read: it is a folder, not a file";
    QTest::newRow("show a catalog whose file is a folder") << "poles.xml" << folder
        << QStringList{"--catalogs", "ROOT", "show", "POLES"} << 1 << QStringList{}
        << "Catalog POLES: ROOT/poles.xml cannot be read";
    QTest::newRow("no command") << "" << none << QStringList{"--catalogs", "ROOT"} << 2
        << QStringList{} << "Usage:";
    QTest::newRow("unknown option") << "" << none << QStringList{"--colour", "list"} << 2
        << QStringList{} << "unknown option --colour";
    // clang-format on
}

void TestZevxCatalog::runs()
{
    QFETCH(QString, breakFile);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QStringList, out);
    QFETCH(QString, err);

    QTemporaryDir store;
    const QString root = store.path();
    const QString samples = QStringLiteral(ZEVX_SAMPLES_DIR);
    for (QDirIterator it(samples, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
    {
        const QString file = it.next();
        const QString to = root + file.mid(samples.size());
        QDir().mkpath(QFileInfo(to).absolutePath());
        QVERIFY(QFile::copy(file, to));
        QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner);
    }
    if (content == "<folder>")
    {
        QVERIFY(QFile::remove(store.filePath(breakFile)));
        QVERIFY(QDir().mkpath(store.filePath(breakFile)));
    }
    else if (!breakFile.isEmpty())
    {
        QFile file(store.filePath(breakFile));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    for (QString& argument : arguments)
        argument.replace(QStringLiteral("ROOT"), root);

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("ZEVX_CATALOG_ROOT"));
    environment.remove(QStringLiteral("ZEVX_DRAWING"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ZEVXCATALOG_BINARY), arguments);
    QVERIFY(process.waitForFinished(30000));
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == exitCode,
             qPrintable(errors));
    for (QString piece : out)
    {
        piece.replace(QStringLiteral("ROOT"), root);
        QVERIFY2(output.contains(piece),
                 qPrintable(QStringLiteral("no \"%1\" in:\n%2").arg(piece, output)));
    }
    // Each problem is told once, not again by the library's own warning.
    err.replace(QStringLiteral("ROOT"), root);
    QVERIFY2(err.isEmpty() || errors.count(err) == 1, qPrintable(errors));
}

QTEST_GUILESS_MAIN(TestZevxCatalog)
#include "tst_zevxcatalog.moc"
