#include "app/ProgramOptions.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using ZEVGis::Program::CommandLine;
using ZEVGis::Program::parseCommandLine;

Q_DECLARE_METATYPE(CommandLine::Action)

namespace
{

// "@TMP" in a test row stands for the test's temporary folder.
QStringList withTemp(QStringList args, const QString& temp)
{
    for (QString& arg : args)
        arg.replace(QStringLiteral("@TMP"), temp);
    return args;
}

} // namespace

class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(m_temp.isValid());
    }
    void parse_data();
    void parse();
    void runs_data();
    void runs();

private:
    QTemporaryDir m_temp;
};

void TestProgram::parse_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<CommandLine::Action>("action");
    // Run: reference|hidden|catalogs|drawing|lang|screenshot|repository|select; else a piece
    // of the text.
    QTest::addColumn<QString>("expected");

    const auto run = CommandLine::Action::Run;
    const auto error = CommandLine::Action::Error;
    // clang-format off
    QTest::newRow("nothing") << QStringList{} << run << "|0||||||";
    QTest::newRow("everything")
        << QStringList{"--lang=HR", "cables", "--show-hidden", "--catalogs", "@TMP", "--drawing",
                       "@TMP/p.dwg", "--screenshot", "@TMP/shot.png", "--repository", "sqlite:@TMP/r",
                       "--select", "NA2XS(F)2Y 1x150/25 12/20 kV"}
        << run << "cables|1|@TMP|@TMP/p.dwg|hr|@TMP/shot.png|sqlite:@TMP/r|NA2XS(F)2Y 1x150/25 12/20 kV";
    QTest::newRow("repository without a value") << QStringList{"--repository"} << error
        << "Missing value after '--repository'";
    QTest::newRow("help") << QStringList{"--catalogs", "x", "--help"}
        << CommandLine::Action::ShowHelp << "zevxcatalogeditor [options] [REFERENCE]";
    QTest::newRow("unknown language") << QStringList{"--lang", "de"} << error
        << "Unknown language 'de'";
    QTest::newRow("two references") << QStringList{"A", "B"} << error
        << "Only one catalog reference";
    QTest::newRow("missing catalog folder") << QStringList{"--catalogs", "@TMP/none"} << error
        << "Catalog folder not found";
    QTest::newRow("screenshot folder missing") << QStringList{"--screenshot", "@TMP/no/s.png"}
        << error << "does not exist";
    QTest::newRow("screenshot is a folder") << QStringList{"--screenshot", "@TMP"} << error
        << "it is a folder";
    // clang-format on
}

void TestProgram::parse()
{
    QFETCH(QStringList, args);
    QFETCH(CommandLine::Action, action);
    QFETCH(QString, expected);

    const QString temp = m_temp.path();
    const CommandLine result =
        parseCommandLine(QStringList{"zevxcatalogeditor"} + withTemp(args, temp));
    QCOMPARE(result.action, action);
    expected.replace(QStringLiteral("@TMP"), temp);
    const auto& o = result.options;
    const QString fields = QStringList{o.catalogReference, QString::number(o.showHiddenCatalogs),
                                       o.catalogsFolder,   o.drawing,
                                       o.language,         o.screenshot,
                                       o.repository,       o.select}
                               .join(u'|');
    if (action == CommandLine::Action::Run)
        QCOMPARE(fields, expected);
    else
        QVERIFY2(result.text.contains(expected), qPrintable(result.text));
}

void TestProgram::runs_data()
{
    QTest::addColumn<bool>("samples");
    QTest::addColumn<QStringList>("args"); // "@TMP" is the store
    // "-": the test's own (offscreen) platform; else the DISPLAY of a run whose environment
    // names no platform ("" for none at all).
    QTest::addColumn<QString>("display");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");

    const QStringList shot{"poles", "--catalogs",   "@TMP",           "--lang",
                           "en",    "--screenshot", "@TMP/editor.png"};
    // clang-format off
    QTest::newRow("screenshot of the sample store") << true << shot << "-" << 0 << QString();
    QTest::newRow("screenshot without a display") << true << shot << "" << 0 << QString();
    QTest::newRow("screenshot, display unreachable") << true << shot << ":9999" << 0 << QString();
    // A reference that names no catalog (a hidden one is not offered) opens the first one.
    QStringList other = shot;
    other[0] = "NoSuchCatalog";
    QTest::newRow("unknown reference") << true << other << "-" << 0
        << "no catalog 'NoSuchCatalog'; opening CABLES (Kabeli)";
    QTest::newRow("known reference, any case") << true << shot << "-" << 0 << "!no catalog";
    // The alert comes up instead of the editor: pictured, closed, and reported as a failure.
    QTest::newRow("screenshot of an empty store") << false << shot << "-" << 1 << "Catalog error!";
    // Refused before anything is shown.
    QTest::newRow("bad option") << false << QStringList{"--lang", "fr", "--screenshot", "@TMP/x.png"}
        << "-" << 2 << "Unknown language 'fr'";
    // clang-format on
}

void TestProgram::runs()
{
    QFETCH(bool, samples);
    QFETCH(QStringList, args);
    QFETCH(QString, display);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    QTemporaryDir store;
    QVERIFY(store.isValid());
    const QString samplesDir = QStringLiteral(ZEVX_SAMPLES_DIR);
    QDirIterator it(samplesDir, QDir::Files, QDirIterator::Subdirectories);
    while (samples && it.hasNext())
    {
        const QString source = it.next();
        const QString target = store.path() + source.mid(samplesDir.size());
        QVERIFY(QDir().mkpath(QFileInfo(target).absolutePath()));
        QVERIFY(QFile::copy(source, target));
    }
    QProcess program;
    if (display != u"-")
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"})
            environment.remove(QString::fromLatin1(name));
        if (!display.isEmpty())
            environment.insert(QStringLiteral("DISPLAY"), display);
        program.setProcessEnvironment(environment);
    }
    program.start(QStringLiteral(ZEVX_PROGRAM), withTemp(args, store.path()));
    QVERIFY2(program.waitForStarted(), qPrintable(program.errorString()));
    QVERIFY(program.waitForFinished(60000));
    const QString errors = QString::fromLocal8Bit(program.readAllStandardError());
    QVERIFY2(program.exitStatus() == QProcess::NormalExit && program.exitCode() == exitCode,
             qPrintable(errors));
    if (error.startsWith(u'!'))
        QVERIFY2(!errors.contains(error.mid(1)), qPrintable(errors));
    else
        QVERIFY2(errors.contains(error), qPrintable(errors));
    if (exitCode == 2)
        return;

    // Where the picture went is said, and it shows a laid-out window, not an empty one.
    const QString shot = store.filePath(QStringLiteral("editor.png"));
    QVERIFY(QString::fromLocal8Bit(program.readAllStandardOutput()).contains(shot));
    const QImage image(shot);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    QVERIFY2(colours.size() > 20, qPrintable(QString::number(colours.size())));
    if (samples)
        QVERIFY(image.width() >= 640 && image.height() >= 480);
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
