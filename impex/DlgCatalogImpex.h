#pragma once

#include "controls/ClrTreeCtrl.h"
#include "impex/ImpexRepository.h"

#include <QDialog>
#include <QString>
#include <QVector>
#include <boost/shared_ptr.hpp>
#include <map>
#include <set>
#include <vector>

class FunctionTracer;
class QAbstractButton;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidgetItem;
class CResizeAnchors;

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Impex
{
struct FileCopy;
}

// "Import/export kataloga": moves groups and items of one catalog between the catalog open in
// the editor (left tree) and either an external XML file or the network repository (right
// tree). Transfers change the editor's in-memory catalog only; OK writes the file's catalog
// in file mode, nothing in repository mode.
class CDlgCatalogImpex : public QDialog
{
    Q_OBJECT
public:
    enum Direction
    {
        Import = 0,
        Export = 1
    };

    explicit CDlgCatalogImpex(QWidget* parent = nullptr);
    ~CDlgCatalogImpex() override;

    // Set by the editor before exec(): the direction (1 export, 0 import) and the catalog.
    void SetParameters(int direction, const QString& catalogReference);
    // The editor's catalog; shared, so transfers change the editor's catalog.
    void SetLocalCatalog(boost::shared_ptr<ZEVGis::Data::CCatalog> catalog);
    // The repository the dialog talks to; the module's client unless a test gives another.
    void SetRepository(ZEVGis::Impex::RepositoryAccess* repository);

    int exec() override;
    // Runs the start-up once; false when there is no local catalog (the dialog ends as
    // cancelled).
    bool OnInitDialog();

    // Button handlers.
    void OnBnClickedBtnBrowse();
    void OnBnClickedBtnAdd();
    void OnBnClickedBtnRemove();
    void OnBnClickedBtnDel();
    void OnBnClickedRadioFile();
    void OnBnClickedRadioRepository();
    void OnOK();

    void FillCatalogTree(CClrTreeCtrl& tree, ZEVGis::Data::CCatalog* catalog);
    void ReloadNetworkRepoItems();
    void UpdateModeControls();

    // What tests and the editor read back.
    int Direction() const { return m_nDirection; }
    int Mode() const { return m_nMode; }
    QString CatalogName() const { return m_strCatalogName; }
    QString Path() const { return m_strPath; }
    boost::shared_ptr<ZEVGis::Data::CCatalog> FileCatalog() const { return m_fileCatalog; }
    QTreeWidgetItem* LeftRoot() const { return m_hLeftRoot; }
    QTreeWidgetItem* RightRoot() const { return m_hRightRoot; }
    bool IsTransferred(QTreeWidgetItem* row) const { return m_transferredItems.count(row) != 0; }

    static constexpr ColorRef kTransferredColor = 0x7CFC00;
    static constexpr ColorRef kSourceColor = 0x808080;

protected:
    void showEvent(QShowEvent* event) override;

private:
    // Layout (DlgCatalogImpex.cpp)
    void CreateControls();
    void ConnectControls();
    void SetUpResizing();
    void SetTabOrder();
    void LoadImages();
    void LoadTexts();
    void ApplyRegistryEntry();
    void UpdateData(bool saveAndValidate);
    void RedrawTrees();
    void AddCatalogRows(QTreeWidgetItem* parentRow, ZEVGis::Data::CCatalogItem* item,
                        std::map<QString, QTreeWidgetItem*>& rows);
    // Drops `row` and the rows below it from the GUID maps and the transferred set, before
    // the row is deleted.
    void ForgetRows(QTreeWidgetItem* row);
    void ForgetTree(CClrTreeCtrl& tree);

    // File mode (DlgCatalogImpexFile.cpp)
    void LoadFileCatalog();
    bool WriteFileCatalog();
    void CopyToFile();
    void CopyToLocal();
    void ShowCopies(const std::vector<ZEVGis::Impex::FileCopy>& copies, bool toRight);
    void TakeBackFromLocal();
    void TakeBackFromFile();
    void TakeBack(QTreeWidgetItem* row, ZEVGis::Data::CCatalog& catalog, bool fromLeft);

    // Repository mode (DlgCatalogImpexRepository.cpp)
    void SendToRepository(const FunctionTracer& tracer);
    bool SendEntries(const FunctionTracer& tracer);
    void BringFromRepository();
    bool DeleteSelectedRecord(QTreeWidgetItem* row, const FunctionTracer& tracer);
    void AddRepositoryRows(ZEVGis::Impex::RepositoryAccess& repository, QTreeWidgetItem* parentRow,
                           const QString& parentId, bool& stopped);
    bool RepositoryUsable() const;

    // Members in the order the dialog's data model lists them.
    int m_nDirection = 0;
    QString m_strCatalogReference;
    QString m_strCatalogName;
    QString m_strGroupIconName;
    QString m_strItemIconName;
    QVector<QIcon> m_imageList;
    ColorRef m_clrTransferred = kTransferredColor;
    ColorRef m_clrSource = kSourceColor;
    boost::shared_ptr<ZEVGis::Data::CCatalog> m_fileCatalog;
    boost::shared_ptr<ZEVGis::Data::CCatalog> m_localCatalog;
    // The catalog the right tree's rows point into while a newly read file replaced
    // m_fileCatalog without being shown (a file of another catalog); dropped at the next fill.
    boost::shared_ptr<ZEVGis::Data::CCatalog> m_shownFileCatalog;
    std::vector<boost::shared_ptr<Repository::CNetCatalogueItem>> m_repositoryItems;
    std::map<QString, QTreeWidgetItem*> m_rightItemsByGuid;
    std::map<QString, QTreeWidgetItem*> m_leftItemsByGuid;
    std::set<QTreeWidgetItem*> m_transferredItems;
    QTreeWidgetItem* m_hRightRoot = nullptr;
    QTreeWidgetItem* m_hLeftRoot = nullptr;
    CClrTreeCtrl* m_treeLocal = nullptr;
    CClrTreeCtrl* m_treeTarget = nullptr;
    QPushButton* m_btnAdd = nullptr;
    QPushButton* m_btnRemove = nullptr;
    QString m_strPath;
    QPushButton* m_btnBrowse = nullptr;
    int m_nMode = 0;
    QPushButton* m_btnDel = nullptr;

    QLineEdit* m_editPath = nullptr;
    QRadioButton* m_radioFile = nullptr;
    QRadioButton* m_radioRepository = nullptr;
    QPushButton* m_btnOk = nullptr;
    QPushButton* m_btnClose = nullptr;
    CResizeAnchors* m_anchors = nullptr;
    ZEVGis::Impex::RepositoryAccess* m_repository = nullptr;
    bool m_initDone = false;
    // The right tree shows repository records (until it is filled from the file's catalog).
    bool m_rightShowsRecords = false;
};
