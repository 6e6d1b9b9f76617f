// "IMP" and "EXP": the import/export dialog on the catalog chosen in the combo.
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogManager.h"
#include "catalog/CatalogMetadata.h"
#include "editor/EditCommands.h"
#include "impex/DlgCatalogImpex.h"

#include <QUndoStack>

using ZEVGis::Data::CCatalogManager;

void CCatalogEditorDlg::OnBnClickedBtnImport()
{
    OpenImpexDialog(CDlgCatalogImpex::Import);
}

void CCatalogEditorDlg::OnBnClickedBtnExport()
{
    OpenImpexDialog(CDlgCatalogImpex::Export);
}

// The dialog works on the catalog the editor holds; only an import that ends with OK changes
// what the catalog tree shows, and only that is recorded for undo. Transfers of a run that
// ends otherwise stay in the catalog unseen (the editor's OK saves them), so the edits
// recorded before, which undo onto the catalog as it was, are dropped. Nothing is saved here.
void CCatalogEditorDlg::OpenImpexDialog(int direction)
{
    const auto metadata = SelectedMetadata();
    if (!metadata)
        return;
    const QString reference = metadata->GetCatalogReference();
    const auto catalog = GetCatalog(1);
    // The entries before the transfers: what they add and take out can then be undone.
    const auto before = catalog ? *catalog->GetAllElementsMap() : ZEVGis::Data::CCatalog::ItemMap();
    CDlgCatalogImpex dialog(this);
    dialog.SetParameters(direction, reference);
    dialog.SetLocalCatalog(catalog);
    const bool shown = dialog.exec() == QDialog::Accepted && direction == CDlgCatalogImpex::Import;
    if (!catalog || GetCatalog(1) != catalog)
        m_undoStack->clear(); // another catalog object: the edits recorded were on the old one
    else if (shown)
        RunEdit(new ZEVGis::Editor::ImportCommand(catalog, before));
    else if (*catalog->GetAllElementsMap() != before)
        m_undoStack->clear();
    if (shown)
        FillTree(false, CCatalogManager::Instance()->GetCatalog(reference, 1).get());
}
