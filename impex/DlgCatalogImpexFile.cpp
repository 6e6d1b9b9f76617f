// File mode: choosing, reading and writing the external file, and the transfers between the
// local catalog and the file's catalog.
#include "impex/DlgCatalogImpex.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/ModuleConfiguration.h"
#include "catalog/SafeFileWrite.h"
#include "host/HostServices.h"
#include "impex/ImpexTransfers.h"

#include <QLineEdit>

using namespace ZEVGis;
using ZEVGis::Data::CCatalog;
using ZEVGis::Data::CCatalogItem;

namespace
{

constexpr unsigned MsgOtherCatalog = 9079;
constexpr unsigned MsgInvalidPath = 61057;
constexpr unsigned MsgWriteFailed = 70200;
constexpr unsigned MsgReadFailed = 70201;

const QString XmlFilter = QStringLiteral("Xml files (*.xml);;All Files (*.*)");

void Alert(const QString& text, QWidget* parent)
{
    Host::HostServices::current().alert(text, parent);
}

QString Msg(unsigned id)
{
    return CModuleConfiguration::Instance()->GetMsg(id);
}

QTreeWidgetItem* RowOf(const std::map<QString, QTreeWidgetItem*>& rows, const QString& guid)
{
    const auto it = rows.find(guid);
    return it == rows.end() ? nullptr : it->second;
}

CCatalogItem* ItemOfRow(const QTreeWidgetItem* row)
{
    return static_cast<CCatalogItem*>(const_cast<void*>(CClrTreeCtrl::GetItemData(row)));
}

} // namespace

void CDlgCatalogImpex::OnBnClickedBtnBrowse()
{
    UpdateData(true);
    Host::HostServices& host = Host::HostServices::current();
    if (m_nDirection == Export)
    {
        const QString path = host.getSaveFileName(windowTitle(), XmlFilter, this);
        if (!path.isEmpty())
            m_strPath = Impex::WithXmlExtension(path);
        m_editPath->setText(m_strPath);
        return;
    }
    const QString path = host.getOpenFileName(windowTitle(), XmlFilter, this);
    if (!path.isEmpty())
    {
        m_strPath = path;
        m_editPath->setText(m_strPath);
    }
    if (!m_strPath.isEmpty())
    {
        Host::WaitCursor wait;
        LoadFileCatalog();
        if (m_fileCatalog->GetReference() != m_strCatalogReference)
        {
            Alert(Msg(MsgOtherCatalog), this);
            return;
        }
    }
    Host::WaitCursor wait;
    FillCatalogTree(*m_treeTarget, m_fileCatalog.get());
}

// Reads the file of m_strPath into the file's catalog. A file that does not read or is not a
// catalog leaves the catalog as it was, and the user is told why.
void CDlgCatalogImpex::LoadFileCatalog()
{
    QString why;
    // A fresh catalog: the rows the right tree shows until its next fill point into the old
    // one, which is kept until then.
    auto parsed = Impex::ReadCatalogFile(m_strPath, why);
    if (!parsed)
    {
        Alert(Msg(MsgReadFailed).arg(m_strPath, why), this);
        return;
    }
    m_shownFileCatalog = m_fileCatalog;
    m_fileCatalog = parsed;
}

void CDlgCatalogImpex::OnOK()
{
    UpdateData(true);
    if (m_nMode == 0)
    {
        if ((m_nDirection == Export && m_strPath.isEmpty()) ||
            !Impex::FolderOfPathExists(m_strPath))
        {
            Alert(Msg(MsgInvalidPath), this);
            return;
        }
        if (!WriteFileCatalog())
            return;
    }
    QDialog::accept();
}

bool CDlgCatalogImpex::WriteFileCatalog()
{
    Host::WaitCursor wait;
    QString why;
    if (Data::WriteFileSafely(m_strPath, m_fileCatalog->GetXMLBytes(), why))
        return true;
    Alert(Msg(MsgWriteFailed).arg(why), this);
    return false;
}

// "->" in export direction: the selected left entry into the file's catalog.
void CDlgCatalogImpex::CopyToFile()
{
    if (m_rightShowsRecords)
        FillCatalogTree(*m_treeTarget, m_fileCatalog.get());
    QTreeWidgetItem* row = m_treeLocal->currentItem();
    CCatalogItem* item = ItemOfRow(row);
    if (!item)
        return;
    ShowCopies(Impex::CopyIntoCatalog(*m_fileCatalog, *item, row->parent() != nullptr), true);
}

// "<-" in import direction: the selected entry of the file into the local catalog.
void CDlgCatalogImpex::CopyToLocal()
{
    QTreeWidgetItem* row = m_treeTarget->currentItem();
    CCatalogItem* item = m_rightShowsRecords ? nullptr : ItemOfRow(row);
    if (!item || !m_localCatalog)
        return;
    ShowCopies(Impex::CopyIntoCatalog(*m_localCatalog, *item, row->parent() != nullptr), false);
}

void CDlgCatalogImpex::ShowCopies(const std::vector<Impex::FileCopy>& copies, bool toRight)
{
    CClrTreeCtrl& tree = toRight ? *m_treeTarget : *m_treeLocal;
    auto& rows = toRight ? m_rightItemsByGuid : m_leftItemsByGuid;
    const auto& sourceRows = toRight ? m_leftItemsByGuid : m_rightItemsByGuid;
    QTreeWidgetItem* root = toRight ? m_hRightRoot : m_hLeftRoot;
    QTreeWidgetItem* selectRow = nullptr;
    for (const Impex::FileCopy& copy : copies)
    {
        QTreeWidgetItem* parentRow = copy.parentGuid.isEmpty() ? root : RowOf(rows, copy.parentGuid);
        if (!parentRow)
            continue;
        const QString guid = copy.copy->GetGUID();
        CClrTreeItem* row = tree.InsertItem(copy.copy->GetName(), copy.image, copy.copy.get(), parentRow);
        row->setTextColor(m_clrTransferred);
        CClrTreeCtrl::SetItemColor(RowOf(sourceRows, guid), m_clrSource);
        m_transferredItems.insert(row);
        rows[guid] = row;
        if (copy.select)
            selectRow = row;
    }
    if (selectRow)
    {
        tree.setCurrentItem(selectRow);
        tree.scrollToItem(selectRow);
    }
    RedrawTrees();
}

// "->" in import direction: takes back an entry "<-" brought in while the dialog is open.
void CDlgCatalogImpex::TakeBackFromLocal()
{
    QTreeWidgetItem* row = m_treeLocal->currentItem();
    if (!row || !m_localCatalog || !m_transferredItems.count(row))
        return;
    TakeBack(row, *m_localCatalog, true);
}

// "<-" in export direction: takes any entry out of the file's catalog.
void CDlgCatalogImpex::TakeBackFromFile()
{
    if (m_rightShowsRecords)
        return;
    TakeBack(m_treeTarget->currentItem(), *m_fileCatalog, false);
}

void CDlgCatalogImpex::TakeBack(QTreeWidgetItem* row, CCatalog& catalog, bool fromLeft)
{
    CCatalogItem* item = ItemOfRow(row);
    if (!item)
        return;
    const auto& counterparts = fromLeft ? m_rightItemsByGuid : m_leftItemsByGuid;
    QTreeWidgetItem* counterpart = RowOf(counterparts, item->GetGUID());
    const std::vector<QString> guids = Impex::TakeBackGuids(*item);
    ForgetRows(row);
    for (const QString& guid : guids)
    {
        CClrTreeCtrl::SetItemColor(RowOf(counterparts, guid), 0);
        catalog.DeleteItem(guid);
    }
    delete row;
    RedrawTrees();
    if (fromLeft && counterpart)
        counterpart->setExpanded(false);
}
