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
// what the catalog tree shows. Nothing is saved here: the editor's OK does that.
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
    const bool accepted = dialog.exec() == QDialog::Accepted;
    if (catalog && GetCatalog(1) == catalog)
        RunEdit(new ZEVGis::Editor::ImportCommand(catalog, before));
    else
        m_undoStack->clear(); // another catalog object: the edits recorded were on the old one
    if (!accepted || direction != CDlgCatalogImpex::Import)
        return;
    FillTree(false, CCatalogManager::Instance()->GetCatalog(reference, 1).get());
}
