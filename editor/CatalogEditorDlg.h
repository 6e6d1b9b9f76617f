#pragma once

// The grid control's inline accessors need the grid widget's full type.
#include "controls/PropertyGridWidget.h"

#include "catalog/DataBox.h"
#include "controls/PropertyExGridCtrl.h"
#include "editor/ButtonStates.h"
#include "editor/CatalogTreeWidget.h"
#include "editor/EditorViewState.h"
#include "editor/TreeContextMenu.h"
#include "editor/TreeRowFilter.h"

#include <QDialog>
#include <QString>
#include <boost/shared_ptr.hpp>
#include <map>
#include <vector>

class QAbstractButton;
class QComboBox;
class QLabel;
class QLineEdit;
class QUndoStack;
class QTreeWidgetItem;
class CPictureBox;
class CResizeAnchors;
class CSplitterControl;

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
class CCatalogItemTemplate;
class CCatalogMetadata;
class CPropertyEx;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{
class CatalogEditCommand;
} // namespace ZEVGis::Editor

// The catalog editor: a catalog of the registry chosen in a combo box, its drawing copy in the
// upper tree and the catalog itself in the lower tree, the selected entry's properties in the
// grid and its picture beside them. All edits are made on the catalogs held by the catalog
// manager; OK saves the catalog shown, Cancel (and the close box) reloads it.
//
// The start-up runs when the dialog is first shown or executed; a registry that offers no
// catalog alerts "Catalog error!" and ends the dialog as cancelled.
class CCatalogEditorDlg : public QDialog,
                          public CCallbackItemUpdated,
                          public CCallbackItemSelChanged
{
    Q_OBJECT
public:
    explicit CCatalogEditorDlg(QWidget* parent = nullptr);
    ~CCatalogEditorDlg() override;

    // Catalog to preselect (matched ignoring case); empty: the first listed.
    void SetCatalogReference(const QString& reference);
    // 0: hidden catalogs are not offered; non-zero: offered, marked "*** HIDDEN ***".
    void SetShowHiddenCatalogs(int show);
    // The standalone program's editor comes back with the size, place and splitter it was
    // closed with; elsewhere it opens at its minimum size.
    void SetRememberPlacement(bool remember);
    // The entry of the catalog (GUID, else the first of that name) selected in the catalog
    // tree at start-up, as if the user had clicked it; empty: none.
    void SetInitialSelection(const QString& guidOrName);

    int exec() override;
    // Runs the start-up once. False when no catalog can be offered: the alert has been shown
    // and the dialog is to end as cancelled.
    bool OnInitDialog();

    // Property grid callbacks.
    void OnItemUpdated(ZEVGis::Data::CPropertyEx* property) override;
    void OnItemSelChanged(ZEVGis::Data::CPropertyEx* property) override;

    // Commands, as the buttons and keys run them.
    void OnBnClickedOk();
    void OnBnClickedCancel();
    void OnBnClickedBtnNew();
    void OnBnClickedBtnNewFromItem();
    void OnBnClickedBtnAddGroup();
    void OnBnClickedBtnDel();
    void OnBnClickedBtnUp();
    void OnBnClickedBtnDown();
    void OnBnClickedBtnSort();
    void OnBnClickedBtnAddToApp();
    void OnBnClickedBtnSetDefault();
    void OnBnClickedBtnInfo();
    void OnBnClickedBtnTest();
    void OnBnClickedBtnImport();
    void OnBnClickedBtnExport();
    void OnCbnSelchangeComboCatalog();

    // The catalog shown by a tree: which 0 the drawing copy (upper tree), 1 the catalog.
    boost::shared_ptr<ZEVGis::Data::CCatalog> GetCatalog(int which);
    // The metadata of the catalog combo's selection (empty when nothing is selected).
    boost::shared_ptr<ZEVGis::Data::CCatalogMetadata> SelectedMetadata() const;
    // The template chosen in the template combo (empty when none).
    boost::shared_ptr<ZEVGis::Data::CCatalogItemTemplate> SelectedTemplate() const;
    // The item whose properties the grid shows (null when none).
    ZEVGis::Data::CCatalogItem* CurrentItem() const { return m_currentItem; }
    // 0 before either tree had the focus, 1 the upper tree, 2 the lower tree.
    int ActiveTree() const { return m_activeTree; }
    int PictureDrawMode() const { return m_pictureDrawMode; }
    // The lower tree's row of an item below its top level, or null.
    QTreeWidgetItem* RowOfItem(ZEVGis::Data::CCatalogItem* item) const;

    // Operations the trees' context menu starts; `which` as for GetCatalog.
    void DeleteRootLevel(int which);
    void DeleteGroupContents(ZEVGis::Data::CCatalogItem* group, int which);
    // Copies a group of the catalog tree with its direct children to the root level; the new
    // group (empty on failure).
    boost::shared_ptr<ZEVGis::Data::CCatalogItem> CopyGroup(ZEVGis::Data::CCatalogItem* source);
    // A drop of the catalog tree's row `dragged` on `target` (null: the root row): moves the
    // item there, or copies it with Ctrl held, then shows the catalog again.
    void OnItemDropped(QTreeWidgetItem* dragged, QTreeWidgetItem* target);

    // The direction of the next "SORT", shared by every editor of the module.
    static bool NextSortAscending();

    // Undo and redo of the edits made since the dialog opened or the catalog was switched.
    QUndoStack* UndoStack() const { return m_undoStack; }
    void OnUndo();
    void OnRedo();
    // The trees' name filter (the filter field's text).
    void SetFilterText(const QString& text);

public slots:
    void accept() override;
    void reject() override;
    void done(int result) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    // Undo and redo (CatalogEditorUndo.cpp)
    void CreateUndo();
    // Makes the edit through the undo stack; the command when it changed something, else
    // null (then it is gone).
    ZEVGis::Editor::CatalogEditCommand* RunEdit(ZEVGis::Editor::CatalogEditCommand* command);
    ZEVGis::Editor::EditorViewState CaptureView() const;
    void RestoreView(const ZEVGis::Editor::EditorViewState& view);
    void ShowUndoneOrRedone(const ZEVGis::Editor::CatalogEditCommand& command,
                            const ZEVGis::Editor::EditorViewState& view);
    void ShowProperties(ZEVGis::Data::CCatalogItem* item, bool upper);
    void RecordPropertyEdit(ZEVGis::Data::CPropertyEx* property);

    // The trees' name filter (CatalogEditorFilter.cpp)
    void CreateFilterField();
    void PlaceFilterField();
    bool HandleFilterKey(QKeyEvent* key);
    // The entries of `entries` whose rows below `parentRow` the filter shows (all without one).
    std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItem>>
    ShownEntries(QTreeWidgetItem* parentRow,
                 const std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItem>>& entries) const;

    // Layout (CatalogEditorLayout.cpp)
    void CreateControls();
    void ConnectControls();
    void PlaceControls();
    void CreateSplitter();
    void SetUpResizing();
    void LoadIcons();
    void LoadTexts();
    void SetTabOrder();
    void OnSplitterMoved(int delta);
    void KeepSplitterRangeWithBar();

    // The bar that says why a catalog was not loaded (CatalogEditorNotice.cpp)
    void CreateLoadNotice();
    void ShowLoadNotice(const ZEVGis::Data::CCatalogMetadata& metadata);
    void PlaceLoadNotice();

    // Placement between runs (CatalogEditorPlacement.cpp)
    void RestorePlacement();
    void SavePlacement();
    void MoveSplitterBy(int delta);

    // Start-up and catalog choice (CatalogEditorDlg.cpp)
    void FillCatalogCombo();
    void SaveCatalogShownBefore();
    void FillTemplateCombo(const QString& reference);
    void SelectInitialEntry();
    void ApplyCatalogIcons(ZEVGis::Data::CCatalog* catalog,
                           const ZEVGis::Data::CCatalogMetadata& metadata);

    // Trees (CatalogEditorTree.cpp)
    void FillTree(bool upper, ZEVGis::Data::CCatalog* catalog);
    void OnTreeSelChanged(bool upper);
    void OnTreeFocus(bool upper);
    void UpdateButtons(ZEVGis::Data::CCatalogItem* item, bool upper);
    void SetButtonStates(const ZEVGis::Editor::EditorButtonStates& states);
    void EnableButton(int id, bool enable);
    ZEVGis::Editor::CatalogTreeWidget* ActiveTreeWidget() const;
    bool IsEditingLabel() const;
    void BeginLabelEdit();
    void OnLabelEditEnded(bool upper, QTreeWidgetItem* row);
    void ForgetRows(QTreeWidgetItem* row);
    void DropTreeRows();

    // Grid and picture (CatalogEditorGrid.cpp)
    void ShowSelection(bool upper);
    void ClearPicture();
    void ShowPicture(const QImage& picture, int drawMode);
    void UpgradeCurrentItem();

    // Commands (CatalogEditorCommands.cpp)
    bool HandleTreeKey(QObject* tree, QKeyEvent* key);
    bool ConfirmDelete();
    void RefillTree(int which);

    // New entries (CatalogEditorNewItems.cpp)
    void NewItemFromTemplate();
    void AddNewItemRow(QTreeWidgetItem* parentRow, QTreeWidgetItem* expandRow,
                       const boost::shared_ptr<ZEVGis::Data::CCatalogItem>& item);

    // Order and drag and drop (CatalogEditorOrdering.cpp)
    void MoveSelected(bool down);
    void SetSortDirection(bool ascending);
    void RefillCatalogTreeKeepingExpansion();

    // Context menu and the copy to the application catalog (CatalogEditorMenu.cpp)
    void OnTreeContextMenu(bool upper, const QPoint& pos);
    void RunMenuCommand(ZEVGis::Editor::TreeMenuCommand command, bool upper, QTreeWidgetItem* row);

    // Import/export (CatalogEditorImpex.cpp)
    void OpenImpexDialog(int direction);

    QAbstractButton* Button(int id) const;

    QString m_catalogReference;
    int m_showHiddenCatalogs = 0;
    bool m_rememberPlacement = false;
    QString m_initialSelection;
    bool m_initDone = false;
    bool m_initOk = false;

    CPropertyExGridCtrl m_grid;
    bool m_gridCreated = false;
    CPictureBox* m_pictureBox = nullptr;
    int m_pictureDrawMode = 2;
    CSplitterControl* m_splitter = nullptr;
    // Where the bar was last placed by the layout or a drag; a move the anchors made since
    // shifts its range with it.
    int m_splitterTop = 0;
    CResizeAnchors* m_anchors = nullptr;
    ZEVGis::Editor::TreeImageList m_images;

    QComboBox* m_catalogCombo = nullptr;
    QLabel* m_loadNotice = nullptr;
    int m_loadNoticeShift = 0; // how far the bar pushed the upper tree down
    QComboBox* m_templateCombo = nullptr;
    ZEVGis::Editor::CatalogTreeWidget* m_drawingTree = nullptr; // 103
    ZEVGis::Editor::CatalogTreeWidget* m_catalogTree = nullptr; // 114
    std::map<int, QAbstractButton*> m_buttons;

    std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItemTemplate>> m_templates;
    int m_selectedCatalogIndex = -1;
    QString m_groupIconName;
    QString m_itemIconName;

    QTreeWidgetItem* m_lowerRoot = nullptr;
    ZEVGis::Editor::ItemRowMap m_itemRows; // lower tree, below its top level
    int m_activeTree = 0;
    ZEVGis::Data::CCatalogItem* m_currentItem = nullptr;
    int m_readOnly = 0;

    QUndoStack* m_undoStack = nullptr;
    // The row of a new group whose label editor opened with it: its name is part of "AG".
    QTreeWidgetItem* m_namingRow = nullptr;
    // The values the grid shows, as they were before the grid writes an edit into them.
    struct ShownProperties
    {
        ZEVGis::Data::CCatalogItem* item = nullptr;
        bool upper = false;
        QString name;
        std::map<ZEVGis::Data::CPropertyEx*, ZEVGis::Data::CDataBox> values;
    };
    ShownProperties m_shownProperties;

    QLineEdit* m_filterEdit = nullptr;
    ZEVGis::Editor::TreeRowFilter m_rowFilter;
};
