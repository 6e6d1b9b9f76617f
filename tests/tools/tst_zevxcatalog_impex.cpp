// zevxcatalog export and import, run as a user runs them: each row is a few commands on two
// copies of the sample store (ROOT and OTHER, whose CABLES catalog starts empty) and a
// folder for the files (FILES).

#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const char NA2XS[] = "{DBCDD91C-07FE-51D7-98AC-41097224A80C}";
const char NA2XS_150[] = "{D814E5C2-6D65-568A-8EF6-EA3906301093}";
const char NAYY_150[] = "{D423B9CB-ED42-5716-90C1-E4938FC164A1}";

bool copySamples(const QString& root)
{
    const QString samples = QStringLiteral(ZEVX_SAMPLES_DIR);
    for (QDirIterator it(samples, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
    {
        const QString file = it.next();
        const QString to = root + file.mid(samples.size());
        QDir().mkpath(QFileInfo(to).absolutePath());
        if (!QFile::copy(file, to))
            return false;
        QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner);
    }
    return true;
}

} // namespace

class TestZevxCatalogImpex : public QObject
{
    Q_OBJECT

private slots:
    void commands_data();
    void commands();
};

void TestZevxCatalogImpex::commands_data()
{
    // One step a line of each list: the arguments (split at spaces), its exit code, and the
    // pieces ("|" between them) its standard output and error hold together.
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QList<int>>("exitCodes");
    QTest::addColumn<QStringList>("expected");

    const QString a = QStringLiteral("--catalogs ROOT ");
    const QString b = QStringLiteral("--catalogs OTHER ");
    // clang-format off
    QTest::newRow("every group exported reads back as the catalog")
        << QStringList{a + "export CABLES FILES/all.xml", "validate FILES/all.xml",
                       a + "import CABLES FILES/all.xml --dry-run"}
        << QList<int>{0, 0, 0}
        << QStringList{"exported 16 entries of CABLES to FILES/all.xml", "catalog: CABLES, 16 entries",
                       "already there unchanged: NA2XS(F)2Y {DBCDD|"
                       "0 would be added, 16 already there unchanged, 0 already there with different content"};
    QTest::newRow("one group into another store: its direct items, then nothing twice")
        << QStringList{a + "export CABLES FILES/na2xs " + NA2XS,
                       b + "import CABLES FILES/na2xs.xml --dry-run",
                       b + "import CABLES FILES/na2xs.xml", b + "show CABLES",
                       b + "import CABLES FILES/na2xs.xml --dry-run"}
        << QList<int>{0, 0, 0, 0, 0}
        << QStringList{"exported 4 entries of CABLES to FILES/na2xs.xml",
                       "would be added: NA2XS(F)2Y {DBCDD|4 would be added, 0 already",
                       "imported 4 entries into CABLES",
                       "4 entries|[G]   0  NA2XS(F)2Y\n  [ ]   0  NA2XS(F)2Y 1x150/25",
                       "0 would be added, 4 already there unchanged"};
    QTest::newRow("an item goes under a copy of its group; a changed entry is told with its fields")
        << QStringList{b + "export CABLES FILES/empty.xml",
                       a + "export CABLES FILES/one.xml " + NA2XS_150,
                       a + "import CABLES FILES/one.xml --dry-run"}
        << QList<int>{0, 0, 0}
        << QStringList{"exported 0 entries", "exported 2 entries",
                       "already there with different content: NA2XS(F)2Y {DBCDD91C-07FE-51D7-98AC-"
                       "41097224A80C} (parent)|already there unchanged: NA2XS(F)2Y 1x150/25"};
    QTest::newRow("another catalog's file, a broken file, a missing one")
        << QStringList{a + "export POLES FILES/poles.xml", a + "import CABLES FILES/poles.xml",
                       a + "import CABLES ROOT/registry.xml", a + "import CABLES FILES/none.xml"}
        << QList<int>{0, 1, 1, 1}
        << QStringList{"exported", "holds catalog \"POLES\", not \"CABLES\"",
                       "ROOT/registry.xml: not read as a catalog", "FILES/none.xml: not read as a catalog"};
    QTest::newRow("unknown entries, folders and catalogs")
        << QStringList{a + "export CABLES FILES/x.xml {NOPE}", a + "export CABLES FILES/no/x.xml",
                       a + "export NOPE FILES/x.xml", a + "import CABLES FILES/x.xml " + NAYY_150}
        << QList<int>{1, 1, 1, 1}
        << QStringList{"no entry {NOPE} in catalog CABLES", "FILES/no/x.xml", "no catalog \"NOPE\"",
                       "FILES/x.xml: not read"};
    QTest::newRow("bad command lines")
        << QStringList{a + "export CABLES", a + "show CABLES --dry-run", a + "import"}
        << QList<int>{2, 2, 2}
        << QStringList{"Usage:", "--dry-run goes with import only", "Usage:"};
    // clang-format on
}

void TestZevxCatalogImpex::commands()
{
    QFETCH(QStringList, steps);
    QFETCH(QList<int>, exitCodes);
    QFETCH(QStringList, expected);

    QTemporaryDir root, other, files;
    QVERIFY(copySamples(root.path()) && copySamples(other.path()));
    {
        QFile empty(other.filePath("cables.xml"));
        QVERIFY(empty.open(QIODevice::WriteOnly | QIODevice::Truncate));
        empty.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog ref=\"CABLES\" format=\"1\"/>\n");
    }
    const auto expand = [&](QString text)
    {
        return text.replace("ROOT", root.path()).replace("OTHER", other.path()).replace("FILES", files.path());
    };
    for (int i = 0; i < steps.size(); ++i)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("ZEVX_CATALOG_ROOT"));
        environment.remove(QStringLiteral("ZEVX_DRAWING"));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(ZEVXCATALOG_BINARY), expand(steps[i]).split(' '));
        QVERIFY(process.waitForFinished(30000));
        const QString output = QString::fromUtf8(process.readAllStandardOutput()) +
                               QString::fromUtf8(process.readAllStandardError());
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == exitCodes[i],
                 qPrintable(steps[i] + "\n" + output));
        for (const QString& piece : expected[i].split('|'))
            QVERIFY2(output.contains(expand(piece)),
                     qPrintable(QStringLiteral("%1: no \"%2\" in:\n%3").arg(steps[i], piece, output)));
        // Problems take one line.
        if (exitCodes[i] == 1)
            QCOMPARE(output.count('\n'), 1);
    }
}

QTEST_GUILESS_MAIN(TestZevxCatalogImpex)
#include "tst_zevxcatalog_impex.moc"
