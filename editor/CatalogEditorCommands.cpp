// Dialog commands: OK and Cancel, the keys of the trees and the label editor, new item and
// delete.
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "editor/CatalogEditorIds.h"
#include "editor/UniqueChildName.h"
#include "host/HostServices.h"
#include "trace/FunctionTracer.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QKeyEvent>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
constexpr unsigned MsgConfirmDelete = 50005;
constexpr unsigned MsgItemIntoGroupOfGroups = 6538;
} // namespace

void CCatalogEditorDlg::ConnectControls()
{
    const std::pair<int, void (CCatalogEditorDlg::*)()> commands[] = {
        {Ids::Ok, &CCatalogEditorDlg::OnBnClickedOk},
        {Ids::Cancel, &CCatalogEditorDlg::OnBnClickedCancel},
        {Ids::BtnNew, &CCatalogEditorDlg::OnBnClickedBtnNew},
        {Ids::BtnDelete, &CCatalogEditorDlg::OnBnClickedBtnDel},
        {Ids::BtnSetDefault, &CCatalogEditorDlg::OnBnClickedBtnSetDefault},
        {Ids::BtnInfo, &CCatalogEditorDlg::OnBnClickedBtnInfo},
        {Ids::BtnTest, &CCatalogEditorDlg::OnBnClickedBtnTest},
    };
    for (const auto& [id, handler] : commands)
        connect(Button(id), &QAbstractButton::clicked, this, handler);
    connect(m_catalogCombo, &QComboBox::currentIndexChanged, this,
            &CCatalogEditorDlg::OnCbnSelchangeComboCatalog);

    for (CatalogTreeWidget* tree : {m_drawingTree, m_catalogTree})
    {
        const bool upper = tree == m_drawingTree;
        connect(tree, &QTreeWidget::currentItemChanged, this,
                [this, upper] { OnTreeSelChanged(upper); });
        connect(tree, &CatalogTreeWidget::labelEditEnded, this,
                [this, upper](QTreeWidgetItem* row) { OnLabelEditEnded(upper, row); });
        tree->installEventFilter(this);
    }
}

void CCatalogEditorDlg::OnBnClickedOk()
{
    ZEVX_TRACE_FUNCTION("CCatalogEditorDlg::OnBnClickedOk", "CatalogEditorDlg", 414);
    if (const auto catalog = GetCatalog(1))
        CCatalogManager::Instance()->Save(catalog->GetReference(), 1, 1);
    QDialog::accept();
}

void CCatalogEditorDlg::OnBnClickedCancel()
{
    if (const auto catalog = GetCatalog(1))
    {
        const QString reference = catalog->GetReference();
        DropTreeRows();
        CCatalogManager::Instance()->ReloadCatalog(reference);
    }
    QDialog::reject();
}

void CCatalogEditorDlg::accept()
{
    OnBnClickedOk();
}

// Escape and the close box end the dialog the way Cancel does.
void CCatalogEditorDlg::reject()
{
    OnBnClickedCancel();
}

bool CCatalogEditorDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_drawingTree || watched == m_catalogTree)
    {
        const bool upper = watched == m_drawingTree;
        if (event->type() == QEvent::FocusIn)
            OnTreeFocus(upper);
        else if (event->type() == QEvent::KeyPress &&
                 HandleTreeKey(watched, static_cast<QKeyEvent*>(event)))
            return true;
    }
    return QDialog::eventFilter(watched, event);
}

bool CCatalogEditorDlg::HandleTreeKey(QObject*, QKeyEvent* key)
{
    if (IsEditingLabel())
        return false;
    switch (key->key())
    {
    case Qt::Key_F2:
        BeginLabelEdit();
        return true;
    case Qt::Key_Insert:
        OnBnClickedBtnNew();
        return true;
    case Qt::Key_Delete:
        OnBnClickedBtnDel();
        return true;
    default:
        return false;
    }
}

void CCatalogEditorDlg::keyPressEvent(QKeyEvent* event)
{
    // While a label is edited these keys belong to the label editor: they must neither close
    // the dialog nor delete entries.
    if (IsEditingLabel())
    {
        const int key = event->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape ||
            key == Qt::Key_Delete || (event->modifiers() & Qt::ControlModifier))
        {
            event->accept();
            return;
        }
    }
    QDialog::keyPressEvent(event);
}

void CCatalogEditorDlg::OnBnClickedBtnNew()
{
    ZEVX_TRACE_FUNCTION("CCatalogEditorDlg::OnBnClickedBtnNew", "CatalogEditorDlg", 741);
    if (Host::HostServices::current().isCtrlPressed())
    {
        UpgradeCurrentItem();
        return;
    }
    NewItemFromTemplate();
}

// A new item from the chosen template: inside the selected group, or beside the selected item.
void CCatalogEditorDlg::NewItemFromTemplate()
{
    QTreeWidgetItem* row = m_catalogTree->currentItem();
    const auto tmpl = SelectedTemplate();
    CCatalogItem* selected = Editor::CatalogItemOfRow(row);
    const auto catalog = GetCatalog(1);
    if (!row || !tmpl || !selected || !catalog || !catalog->GetFactory())
        return;

    // The new item goes into `holder`; its parent link is the catalog's own item.
    CCatalogItem* holder = nullptr;
    boost::shared_ptr<CCatalogItem> parent;
    QTreeWidgetItem* parentRow = nullptr;
    if (selected->IsGroup())
    {
        for (const auto& [guid, sub] : *selected->GetSubItems())
        {
            if (sub && sub->IsGroup())
            {
                Host::HostServices::current().alert(
                    CModuleConfiguration::Instance()->GetMsg(MsgItemIntoGroupOfGroups), this);
                return;
            }
        }
        holder = selected;
        parent = catalog->GetItembyGuid(selected->GetGUID());
        parentRow = row;
    }
    else
    {
        parent = selected->GetParentItem();
        holder = parent.get();
        parentRow = row->parent();
        if (!parent || !parent->IsGroup() || !parentRow)
            return;
    }

    const auto factory = catalog->GetFactory();
    const auto made = factory->CreateItemFromTemplate(tmpl.get());
    if (!made)
        return;
    QString base = factory->GetNewItemName(tmpl.get());
    if (base.isEmpty())
        base = holder->GetName();
    made->SetName(Editor::UniqueChildName(nullptr, holder, &base));
    made->SetParentItem(parent);
    holder->AddSubItem(made);
    if (!catalog->AddItem(made))
        return;
    CCatalogManager::Instance()->ExtendCatalogItem(catalog->GetReference(), made);
    AddNewItemRow(parentRow, row, made);
}

void CCatalogEditorDlg::AddNewItemRow(QTreeWidgetItem* parentRow, QTreeWidgetItem* expandRow,
                                      const boost::shared_ptr<CCatalogItem>& item)
{
    auto* newRow =
        new Editor::CatalogTreeRowItem(item.get(), item->GetName(), Editor::ImageItem, &m_images);
    parentRow->addChild(newRow);
    expandRow->setExpanded(true);
    m_catalogTree->setCurrentItem(newRow);
    m_catalogTree->scrollToItem(newRow);
    m_itemRows[item.get()] = newRow;
}

void CCatalogEditorDlg::OnBnClickedBtnDel()
{
    const QString question = CModuleConfiguration::Instance()->GetMsg(MsgConfirmDelete);
    const bool upper = m_activeTree == 1;
    CatalogTreeWidget* tree = upper ? m_drawingTree : m_catalogTree;
    QTreeWidgetItem* row = tree->currentItem();
    if (!row)
        return;
    CCatalogItem* item = Editor::CatalogItemOfRow(row);
    const auto catalog = GetCatalog(upper ? 0 : 1);
    if (!catalog)
        return;
    if (!item)
    {
        DeleteRootLevel(upper ? 0 : 1);
        return;
    }
    if (!Host::HostServices::current().askYesNo(question, windowTitle(), this))
        return;
    const QString guid = item->GetGUID();
    ForgetRows(row);
    if (m_currentItem == item)
        m_currentItem = nullptr;
    catalog->DeleteItem(guid);
    delete row;
}

void CCatalogEditorDlg::DeleteRootLevel(int which)
{
    const QString question = CModuleConfiguration::Instance()->GetMsg(MsgConfirmDelete);
    if (!Host::HostServices::current().askYesNo(question, windowTitle(), this))
        return;
    const auto catalog = GetCatalog(which);
    if (!catalog)
        return;
    // Copied first: deleting changes the map under the loop.
    std::vector<boost::shared_ptr<CCatalogItem>> rootElements;
    for (const auto& [guid, element] : *catalog->GetRootElementsMap())
        rootElements.push_back(element);
    m_currentItem = nullptr;
    for (const auto& element : rootElements)
        catalog->DeleteItem(element);
    FillTree(which == 0, catalog.get());
}
