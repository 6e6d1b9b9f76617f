#pragma once

#include <QString>
#include <functional>

class QWindow;

namespace ZEVGis::Launch
{

// Runs the catalog editor modally for one catalog reference and show-hidden setting.
using DialogRunner = std::function<void(const QString& catalogReference, int showHiddenCatalogs)>;

// The real run: CCatalogEditorDlg on the stack, its show-hidden flag and catalog reference
// set (in this order), exec(); the dialog's result is of no interest to the caller.
void runEditorDialog(const QString& catalogReference, int showHiddenCatalogs);

// How the standalone program opens the editor; inside the host none of this applies.
struct StandaloneOptions
{
    // The editor comes back where it was closed (size, place, splitter).
    bool rememberPlacement = false;
    // The catalog entry (GUID or name) selected when the editor opens; empty: none.
    QString select;
};
void setStandaloneOptions(const StandaloneOptions& options);

// The window the editor is modal to when there is no Qt parent (the host's main window
// inside the host); null: none.
void setHostWindow(QWindow* window);

// Replaces what the launch paths run (tests); an empty runner restores the editor dialog.
// Returns the runner that was in place.
DialogRunner setDialogRunner(DialogRunner runner);

// Runs the installed runner. The caller holds the module's resources.
void runDialog(const QString& catalogReference, int showHiddenCatalogs);

// The catalog the editor opens instead when `catalogReference` is not empty and matches no
// catalog it offers (the first offered one, as "reference (name)"); empty when it matches
// or nothing is offered.
QString catalogOpenedInstead(const QString& catalogReference, int showHiddenCatalogs);

// A complete launch: the module's resource handle pushed around runDialog(), popped also
// when the dialog throws (the exception goes on to the caller).
void runCatalogEditor(const QString& catalogReference, int showHiddenCatalogs);

} // namespace ZEVGis::Launch
