#include "app/EditorLaunch.h"

#include "catalog/CatalogManager.h"
#include "catalog/CatalogMetadata.h"
#include "editor/CatalogComboLines.h"
#include "editor/CatalogEditorDlg.h"
#include "host/HostServices.h"

#include <QPointer>
#include <QWindow>

namespace ZEVGis::Launch
{

namespace
{

DialogRunner& installedRunner()
{
    static DialogRunner runner;
    return runner;
}

QPointer<QWindow>& hostWindow()
{
    static QPointer<QWindow> window;
    return window;
}

StandaloneOptions& standaloneOptions()
{
    static StandaloneOptions options;
    return options;
}

} // namespace

void setStandaloneOptions(const StandaloneOptions& options)
{
    standaloneOptions() = options;
}

void setHostWindow(QWindow* window)
{
    hostWindow() = window;
}

void runEditorDialog(const QString& catalogReference, int showHiddenCatalogs)
{
    CCatalogEditorDlg dialog;
    if (QWindow* owner = hostWindow())
    {
        dialog.winId(); // creates the native window, so it can be given its owner
        dialog.windowHandle()->setTransientParent(owner);
    }
    dialog.SetRememberPlacement(standaloneOptions().rememberPlacement);
    dialog.SetInitialSelection(standaloneOptions().select);
    dialog.SetShowHiddenCatalogs(showHiddenCatalogs);
    dialog.SetCatalogReference(catalogReference);
    dialog.exec();
}

DialogRunner setDialogRunner(DialogRunner runner)
{
    DialogRunner previous = std::move(installedRunner());
    installedRunner() = std::move(runner);
    return previous ? previous : DialogRunner(&runEditorDialog);
}

void runDialog(const QString& catalogReference, int showHiddenCatalogs)
{
    const DialogRunner& runner = installedRunner();
    if (runner)
        runner(catalogReference, showHiddenCatalogs);
    else
        runEditorDialog(catalogReference, showHiddenCatalogs);
}

QString catalogOpenedInstead(const QString& catalogReference, int showHiddenCatalogs)
{
    if (catalogReference.isEmpty())
        return {};
    std::vector<boost::shared_ptr<Data::CCatalogMetadata>> registry;
    Data::CCatalogManager::Instance()->GetCatalogRegistry(registry);
    // The dialog chooses from the same lines, so what it opens is the line chosen here.
    const Editor::CatalogComboContent content =
        Editor::BuildCatalogComboLines(registry, showHiddenCatalogs != 0, catalogReference);
    if (content.lines.empty())
        return {};
    const auto& opened = content.lines[size_t(content.selected)].metadata;
    if (opened->GetCatalogReference().compare(catalogReference, Qt::CaseInsensitive) == 0)
        return {};
    return QStringLiteral("%1 (%2)").arg(opened->GetCatalogReference(), opened->GetCatalogNameUI());
}

void runCatalogEditor(const QString& catalogReference, int showHiddenCatalogs)
{
    Host::ResourceScope resources;
    runDialog(catalogReference, showHiddenCatalogs);
}

} // namespace ZEVGis::Launch
