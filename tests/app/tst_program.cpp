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
    void initTestCase();
    void parse_data();
    void parse();
    void helpAndVersion();
    void badOptionsStopTheProgram_data();
    void badOptionsStopTheProgram();
    void screenshot_data();
    void screenshot();

private:
    QTemporaryDir m_temp;
};

void TestProgram::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_temp.isValid());
}

void TestProgram::parse_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<CommandLine::Action>("action");
    QTest::addColumn<QStringList>("fields"); // reference, hidden, catalogs, drawing, lang, shot
    QTest::addColumn<QString>("error");

    const auto run = CommandLine::Action::Run;
    const auto error = CommandLine::Action::Error;
    QTest::newRow("nothing") << QStringList{} << run << QStringList{"", "0", "", "", "", ""}
                             << QString();
    QTest::newRow("everything") << QStringList{"cables",       "--show-hidden",
                                               "--catalogs",   "@TMP",
                                               "--drawing",    "@TMP/plan.dwg",
                                               "--lang",       "HR",
                                               "--screenshot", "@TMP/shot.png"}
                                << run << QStringList{"cables",        "1",  "@TMP",
                                                      "@TMP/plan.dwg", "hr", "@TMP/shot.png"}
                                << QString();
    QTest::newRow("options before the reference, = form")
        << QStringList{"--lang=en", "--show-hidden", "POLES"} << run
        << QStringList{"POLES", "1", "", "", "en", ""} << QString();
    QTest::newRow("unknown language")
        << QStringList{"--lang", "de"} << error << QStringList{} << "Unknown language 'de'";
    QTest::newRow("language without value")
        << QStringList{"--lang"} << error << QStringList{} << "Missing value";
    QTest::newRow("unknown option")
        << QStringList{"--bogus"} << error << QStringList{} << "Unknown option";
    QTest::newRow("two references")
        << QStringList{"A", "B"} << error << QStringList{} << "Only one catalog reference";
    QTest::newRow("missing catalog folder") << QStringList{"--catalogs", "@TMP/none"} << error
                                            << QStringList{} << "Catalog folder not found";
    QTest::newRow("screenshot folder missing") << QStringList{"--screenshot", "@TMP/none/shot.png"}
                                               << error << QStringList{} << "does not exist";
    QTest::newRow("screenshot is a folder")
        << QStringList{"--screenshot", "@TMP"} << error << QStringList{} << "it is a folder";
}

void TestProgram::parse()
{
    QFETCH(QStringList, args);
    QFETCH(CommandLine::Action, action);
    QFETCH(QStringList, fields);
    QFETCH(QString, error);

    const QString temp = m_temp.path();
    const CommandLine result =
        parseCommandLine(QStringList{QStringLiteral("zevxcatalogeditor")} + withTemp(args, temp));
    QCOMPARE(result.action, action);
    if (action == CommandLine::Action::Error)
    {
        QVERIFY2(result.text.contains(error), qPrintable(result.text));
        return;
    }
    QVERIFY2(result.text.isEmpty(), qPrintable(result.text));
    const auto& options = result.options;
    fields = withTemp(fields, temp);
    QCOMPARE(options.catalogReference, fields[0]);
    QCOMPARE(options.showHiddenCatalogs, fields[1] == QLatin1String("1"));
    QCOMPARE(options.catalogsFolder, fields[2]);
    QCOMPARE(options.drawing, fields[3]);
    QCOMPARE(options.language, fields[4]);
    QCOMPARE(options.screenshot, fields[5]);
}

void TestProgram::helpAndVersion()
{
    const CommandLine help = parseCommandLine({"zevxcatalogeditor", "--catalogs", "x", "--help"});
    QCOMPARE(help.action, CommandLine::Action::ShowHelp);
    QVERIFY(help.text.contains(QLatin1String("zevxcatalogeditor [options] [REFERENCE]")));
    for (const char* option :
         {"--show-hidden", "--catalogs", "--drawing", "--lang", "--screenshot"})
        QVERIFY2(help.text.contains(QLatin1String(option)), option);

    const CommandLine version = parseCommandLine({"zevxcatalogeditor", "--version"});
    QCOMPARE(version.action, CommandLine::Action::ShowVersion);
    QVERIFY(version.text.startsWith(QLatin1String("zevxcatalogeditor ")));
}

void TestProgram::badOptionsStopTheProgram_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    QTest::newRow("language") << QStringList{"--lang", "fr"} << "Unknown language 'fr'";
    QTest::newRow("screenshot path")
        << QStringList{"--screenshot", "@TMP/missing/shot.png"} << "Cannot write the screenshot";
}

// The program must refuse before it shows anything, with a message and a non-zero status.
void TestProgram::badOptionsStopTheProgram()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);

    QProcess program;
    program.start(QStringLiteral(ZEVX_PROGRAM), withTemp(args, m_temp.path()));
    QVERIFY2(program.waitForStarted(), qPrintable(program.errorString()));
    QVERIFY(program.waitForFinished(60000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 2);
    QVERIFY(QString::fromLocal8Bit(program.readAllStandardError()).contains(message));
}

void TestProgram::screenshot_data()
{
    QTest::addColumn<bool>("samples");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");

    QTest::newRow("sample store") << true << 0 << QString();
    // The alert comes up instead of the editor: pictured, closed, and reported as a failure.
    QTest::newRow("empty store") << false << 1 << QStringLiteral("Catalog error!");
}

void TestProgram::screenshot()
{
    QFETCH(bool, samples);
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
    const QString shot = store.filePath(QStringLiteral("editor.png"));

    QProcess program;
    program.start(QStringLiteral(ZEVX_PROGRAM),
                  {QStringLiteral("poles"), QStringLiteral("--catalogs"), store.path(),
                   QStringLiteral("--lang"), QStringLiteral("en"), QStringLiteral("--screenshot"),
                   shot});
    QVERIFY2(program.waitForStarted(), qPrintable(program.errorString()));
    QVERIFY(program.waitForFinished(60000));
    const QString errors = QString::fromLocal8Bit(program.readAllStandardError());
    QVERIFY2(program.exitCode() == exitCode, qPrintable(errors));
    QVERIFY(errors.contains(error));
    QVERIFY(QString::fromLocal8Bit(program.readAllStandardOutput()).contains(shot));

    // A picture of the laid-out window, not of an empty one.
    const QImage image(shot);
    QVERIFY(!image.isNull());
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
