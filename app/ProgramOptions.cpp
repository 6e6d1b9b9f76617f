#include "app/ProgramOptions.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

namespace ZEVGis::Program
{

namespace
{

const QString programName = QStringLiteral("zevxcatalogeditor");

struct Parser
{
    QCommandLineParser parser;
    QCommandLineOption showHidden{QStringLiteral("show-hidden"),
                                  QStringLiteral("Also list the hidden catalogs.")};
    QCommandLineOption catalogs{QStringLiteral("catalogs"),
                                QStringLiteral("Catalog store folder (else ZEVX_CATALOG_ROOT, "
                                               "else the user's data folder)."),
                                QStringLiteral("DIR")};
    QCommandLineOption drawing{QStringLiteral("drawing"),
                               QStringLiteral("Drawing whose catalog copies the upper tree "
                                              "shows (else ZEVX_DRAWING)."),
                               QStringLiteral("FILE")};
    QCommandLineOption repository{QStringLiteral("repository"),
                                  QStringLiteral("Network repository: sqlite:PATH, "
                                                 "postgresql://[user[:password]@]host[:port]/"
                                                 "dbname or none (else ZEVX_REPOSITORY, else "
                                                 "the default SQLite file)."),
                                  QStringLiteral("URL")};
    QCommandLineOption language{QStringLiteral("lang"),
                                QStringLiteral("Language of the texts: en or hr."),
                                QStringLiteral("en|hr")};
    QCommandLineOption screenshot{QStringLiteral("screenshot"),
                                  QStringLiteral("Render the editor to a PNG file and exit "
                                                 "(works without a display)."),
                                  QStringLiteral("FILE.png")};
    QCommandLineOption select{QStringLiteral("select"),
                              QStringLiteral("Select this entry of the catalog (its GUID, or "
                                             "its name) when the editor opens."),
                              QStringLiteral("GUID|NAME")};
    // Our own help option: the built-in one also offers the Qt options, which this program,
    // parsing before the application object exists, does not take.
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")},
                            QStringLiteral("Displays this help.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")},
                               QStringLiteral("Displays the version.")};

    Parser()
    {
        parser.setApplicationDescription(
            QStringLiteral("Catalog editor: browse and edit the catalogs of the catalog "
                           "registry."));
        parser.addOptions({help, version});
        parser.addOptions({showHidden, catalogs, drawing, repository, language, screenshot, select});
        parser.addPositionalArgument(QStringLiteral("REFERENCE"),
                                     QStringLiteral("Catalog to select first (ignoring case)."),
                                     QStringLiteral("[REFERENCE]"));
    }

    QString helpText() const
    {
        // The parser names the program after argv[0] or the application object, neither of
        // which is ours to rely on here.
        QString text = parser.helpText();
        const QString usage = QStringLiteral("Usage: ");
        const qsizetype start = text.indexOf(usage);
        const qsizetype end = text.indexOf(QStringLiteral(" [options]"), start);
        if (start >= 0 && end > start)
            text.replace(start + usage.size(), end - start - usage.size(), programName);
        return text;
    }
};

QString checkOptions(const ProgramOptions& options)
{
    if (!options.language.isEmpty() && options.language != QLatin1String("en") &&
        options.language != QLatin1String("hr"))
        return QStringLiteral("Unknown language '%1': use en or hr.").arg(options.language);
    if (!options.catalogsFolder.isEmpty() && !QFileInfo(options.catalogsFolder).isDir())
        return QStringLiteral("Catalog folder not found: %1").arg(options.catalogsFolder);
    if (!options.screenshot.isEmpty())
    {
        const QString problem = screenshotPathProblem(options.screenshot);
        if (!problem.isEmpty())
            return QStringLiteral("Cannot write the screenshot %1: %2")
                .arg(options.screenshot, problem);
    }
    return QString();
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments)
{
    Parser p;
    CommandLine result;
    if (!p.parser.parse(arguments))
    {
        result.text = p.parser.errorText();
        return result;
    }
    if (p.parser.isSet(p.help))
    {
        result.action = CommandLine::Action::ShowHelp;
        result.text = p.helpText();
        return result;
    }
    if (p.parser.isSet(p.version))
    {
        result.action = CommandLine::Action::ShowVersion;
        result.text = programName + QLatin1Char(' ') + QStringLiteral(ZEVX_VERSION);
        return result;
    }
    const QStringList positional = p.parser.positionalArguments();
    if (positional.size() > 1)
    {
        result.text = QStringLiteral("Only one catalog reference can be given, not %1.")
                          .arg(positional.size());
        return result;
    }

    ProgramOptions& options = result.options;
    options.catalogReference = positional.value(0);
    options.showHiddenCatalogs = p.parser.isSet(p.showHidden);
    options.catalogsFolder = p.parser.value(p.catalogs);
    options.drawing = p.parser.value(p.drawing);
    options.repository = p.parser.value(p.repository);
    options.language = p.parser.value(p.language).toLower();
    options.screenshot = p.parser.value(p.screenshot);
    options.select = p.parser.value(p.select);

    result.text = checkOptions(options);
    result.action = result.text.isEmpty() ? CommandLine::Action::Run : CommandLine::Action::Error;
    return result;
}

QString screenshotPathProblem(const QString& path)
{
    const QFileInfo file(path);
    if (file.isDir())
        return QStringLiteral("it is a folder");
    if (file.exists() && !file.isWritable())
        return QStringLiteral("the file is read-only");
    const QFileInfo folder(file.absolutePath());
    if (!folder.isDir())
        return QStringLiteral("folder %1 does not exist")
            .arg(QDir::toNativeSeparators(folder.filePath()));
    if (!folder.isWritable())
        return QStringLiteral("folder %1 is not writable")
            .arg(QDir::toNativeSeparators(folder.filePath()));
    return QString();
}

QString screenshotPlatform()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return QString();
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    // A stale DISPLAY (an old remote session) would otherwise abort the program.
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        return QStringLiteral("xcb;offscreen");
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return QStringLiteral("wayland;offscreen");
    return QStringLiteral("offscreen");
#else
    // Windows and macOS always have their window system.
    return QString();
#endif
}

} // namespace ZEVGis::Program
