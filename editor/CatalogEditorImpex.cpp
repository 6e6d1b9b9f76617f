// "IMP" and "EXP": the import/export dialog on the catalog chosen in the combo.
#include "editor/CatalogEditorDlg.h"

#include "catalog/CatalogManager.h"
#include "catalog/CatalogMetadata.h"
#include "impex/DlgCatalogImpex.h"

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
    CDlgCatalogImpex dialog(this);
    dialog.SetParameters(direction, reference);
    dialog.SetLocalCatalog(GetCatalog(1));
    if (dialog.exec() != QDialog::Accepted || direction != CDlgCatalogImpex::Import)
        return;
    FillTree(false, CCatalogManager::Instance()->GetCatalog(reference, 1).get());
}
