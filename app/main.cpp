// zevxcatalogeditor: the catalog editor as a program of its own, on any desktop.

#include "app/EditorLaunch.h"
#include "app/ProgramOptions.h"
#include "app/ScreenshotSession.h"
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "editor/CatalogEditorDlg.h"
#include "host/HostServices.h"
#include "host/QtHostServices.h"
#include "repository/RepositoryStorageManager.h"

#include <QApplication>
#include <QDir>

#include <cstdio>

using namespace ZEVGis;

namespace
{

void print(FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fputs(bytes.constData(), stream);
    if (!text.endsWith(QLatin1Char('\n')))
        std::fputc('\n', stream);
    std::fflush(stream);
}

// Empty options leave the choice to the catalog manager: ZEVX_CATALOG_ROOT and ZEVX_DRAWING,
// else the user's store seeded from the samples; and to the repository client:
// ZEVX_REPOSITORY, else the default file. A repository that cannot be used is said on one
// line by the client; the editor still opens, with file transfers only.
void configure(const Program::ProgramOptions& options)
{
    Data::CCatalogManager::Instance()->Configure(options.catalogsFolder, options.drawing);
    if (!options.repository.isEmpty())
        Repository::CRepositoryStorageManager::Instance()->Configure(options.repository);
    if (!options.language.isEmpty())
        CModuleConfiguration::Instance()->SetLanguage(options.language);
}

int takeScreenshot(const Program::ProgramOptions& options)
{
    Program::ScreenshotSession session(options.screenshot);
    session.start();
    Launch::runCatalogEditor(options.catalogReference, options.showHiddenCatalogs ? 1 : 0);
    session.finish();
    if (!session.saved())
    {
        print(stderr, QStringLiteral("zevxcatalogeditor: no screenshot written to %1: %2")
                          .arg(QDir::toNativeSeparators(options.screenshot), session.report()));
        return 1;
    }
    print(stdout, QStringLiteral("Screenshot of %1 written to %2")
                      .arg(session.report(), QDir::toNativeSeparators(options.screenshot)));
    // An alert instead of the editor (no catalog to offer, say) is pictured but is a failure.
    if (session.capturedClass() != QLatin1String(CCatalogEditorDlg::staticMetaObject.className()))
    {
        print(stderr, QStringLiteral("zevxcatalogeditor: the editor did not open: %1")
                          .arg(session.capturedText().isEmpty() ? session.capturedClass()
                                                                : session.capturedText()));
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    const Program::CommandLine commandLine = Program::parseCommandLine(arguments);
    switch (commandLine.action)
    {
    case Program::CommandLine::Action::ShowHelp:
    case Program::CommandLine::Action::ShowVersion:
        print(stdout, commandLine.text);
        return 0;
    case Program::CommandLine::Action::Error:
        print(stderr, QStringLiteral("zevxcatalogeditor: %1\nTry 'zevxcatalogeditor --help'.")
                          .arg(commandLine.text));
        return 2;
    case Program::CommandLine::Action::Run:
        break;
    }
    const Program::ProgramOptions& options = commandLine.options;

    // The platform is chosen when the application object is built.
    if (!options.screenshot.isEmpty())
    {
        const QString platform = Program::screenshotPlatform();
        if (!platform.isEmpty())
            qputenv("QT_QPA_PLATFORM", platform.toLatin1());
    }

    QApplication::setApplicationName(QStringLiteral("zevxcatalogeditor"));
    QApplication::setApplicationVersion(QStringLiteral(ZEVX_VERSION));
    QApplication application(argc, argv);

    configure(options);
    Host::QtHostServices hostServices;
    Host::ScopedHostServices useHost(hostServices);

    // A screenshot shows the editor as it first opens, whatever the user did before.
    Launch::StandaloneOptions standalone;
    standalone.rememberPlacement = options.screenshot.isEmpty();
    standalone.select = options.select;
    Launch::setStandaloneOptions(standalone);

    const QString instead =
        Launch::catalogOpenedInstead(options.catalogReference, options.showHiddenCatalogs ? 1 : 0);
    if (!instead.isEmpty())
        print(stderr, QStringLiteral("zevxcatalogeditor: no catalog '%1'; opening %2")
                          .arg(options.catalogReference, instead));

    if (!options.screenshot.isEmpty())
        return takeScreenshot(options);
    Launch::runCatalogEditor(options.catalogReference, options.showHiddenCatalogs ? 1 : 0);
    return 0;
}
