#pragma once

// Placeholder of the editor dialog's public face, relied on by the launch paths in app/.
// The editor's engineer replaces this file with the full dialog; these members stay.

#include "controls/PropertyExGridCtrl.h"

#include <QDialog>

class CCatalogEditorDlg : public QDialog, public CCallbackItemUpdated, public CCallbackItemSelChanged
{
    Q_OBJECT
public:
    explicit CCatalogEditorDlg(QWidget* parent = nullptr);
    ~CCatalogEditorDlg() override;

    // Catalog to preselect (matched ignoring case); empty: the first listed.
    void SetCatalogReference(const QString& reference);
    // 0: hidden catalogs are not offered; non-zero: offered, marked "*** HIDDEN ***".
    void SetShowHiddenCatalogs(int show);
};
