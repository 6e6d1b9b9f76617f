#pragma once

#include <QString>
#include <QStringList>

namespace ZEVGis::Program
{

// What the standalone program was asked to do.
struct ProgramOptions
{
    QString catalogReference;
    bool showHiddenCatalogs = false;
    QString catalogsFolder; // empty: ZEVX_CATALOG_ROOT or the user's data folder
    QString drawing;        // empty: ZEVX_DRAWING or none
    QString repository;     // empty: ZEVX_REPOSITORY or the default SQLite file
    QString language;       // "en", "hr" or empty (the locale decides)
    QString screenshot;     // PNG to write instead of running the editor interactively
    QString select;         // GUID or name of the catalog entry to select at the start
};

struct CommandLine
{
    enum class Action
    {
        Run,
        ShowHelp,
        ShowVersion,
        Error
    };
    Action action = Action::Error;
    ProgramOptions options;
    // The help or version text, or what is wrong with the command line.
    QString text;
};

// Parses the program's arguments (the first one is the program itself) and checks what can
// be checked before anything is shown: the language, that the catalogs folder exists and
// that the screenshot can be written.
CommandLine parseCommandLine(const QStringList& arguments);

// Empty when a file can be written at `path`, else why not.
QString screenshotPathProblem(const QString& path);

// The platform list (QT_QPA_PLATFORM) a screenshot run starts with: empty when the user
// chose a platform; otherwise the window system named by the environment, with the
// offscreen platform after it for a display that cannot be reached, or the offscreen
// platform alone when nothing names a display.
QString screenshotPlatform();

} // namespace ZEVGis::Program
