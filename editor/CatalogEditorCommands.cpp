// Dialog commands: OK and Cancel, the keys of the trees and the label editor, and the
// deletions.
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ZEVBitmapButton.h"
#include "editor/CatalogEditorIds.h"
#include "editor/CatalogEdits.h"
#include "editor/EditCommands.h"
#include "host/HostServices.h"
#include "trace/FunctionTracer.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QUndoStack>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
constexpr unsigned MsgConfirmDelete = 50005;

bool IsEnterKey(const QKeyEvent& event)
{
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    return modifiers == Qt::NoModifier &&
           (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter);
}
} // namespace

void CCatalogEditorDlg::ConnectControls()
{
    const std::pair<int, void (CCatalogEditorDlg::*)()> commands[] = {
        {Ids::Ok, &CCatalogEditorDlg::OnBnClickedOk},
        {Ids::Cancel, &CCatalogEditorDlg::OnBnClickedCancel},
        {Ids::BtnNew, &CCatalogEditorDlg::OnBnClickedBtnNew},
        {Ids::BtnNewItems, &CCatalogEditorDlg::OnBnClickedBtnNewFromItem},
        {Ids::BtnAddGroup, &CCatalogEditorDlg::OnBnClickedBtnAddGroup},
        {Ids::BtnDelete, &CCatalogEditorDlg::OnBnClickedBtnDel},
        {Ids::BtnUp, &CCatalogEditorDlg::OnBnClickedBtnUp},
        {Ids::BtnDown, &CCatalogEditorDlg::OnBnClickedBtnDown},
        {Ids::BtnSort, &CCatalogEditorDlg::OnBnClickedBtnSort},
        {Ids::BtnAddToApp, &CCatalogEditorDlg::OnBnClickedBtnAddToApp},
        {Ids::BtnSetDefault, &CCatalogEditorDlg::OnBnClickedBtnSetDefault},
        {Ids::BtnInfo, &CCatalogEditorDlg::OnBnClickedBtnInfo},
        {Ids::BtnTest, &CCatalogEditorDlg::OnBnClickedBtnTest},
        {Ids::BtnImport, &CCatalogEditorDlg::OnBnClickedBtnImport},
        {Ids::BtnExport, &CCatalogEditorDlg::OnBnClickedBtnExport},
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
        tree->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(tree, &QWidget::customContextMenuRequested, this,
                [this, upper](const QPoint& pos) { OnTreeContextMenu(upper, pos); });
        tree->installEventFilter(this);
    }
    connect(m_catalogTree, &CatalogTreeWidget::itemDropped, this,
            &CCatalogEditorDlg::OnItemDropped);
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
        m_undoStack->clear();
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
    if (watched == m_filterEdit && event->type() == QEvent::KeyPress &&
        HandleFilterKey(static_cast<QKeyEvent*>(event)))
        return true;
    if (watched == m_filterEdit && event->type() == QEvent::FocusIn)
        for (Editor::CatalogTreeWidget* tree : {m_drawingTree, m_catalogTree})
            m_rowFilter.prepare(*tree);
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
    // A focused bitmap button takes Enter as a click, as the dialog's other buttons do; the
    // key must not fall through to the default button and close the dialog.
    if (IsEnterKey(*event))
    {
        if (auto* button = qobject_cast<Utility::CZEVBitmapButton*>(focusWidget()))
        {
            button->click();
            event->accept();
            return;
        }
    }
    QDialog::keyPressEvent(event);
}

void CCatalogEditorDlg::OnBnClickedBtnDel()
{
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
    if (!ConfirmDelete())
        return;
    const auto entry = catalog->GetItembyGuid(item->GetGUID());
    RunEdit(new Editor::DeleteCommand(catalog, {entry}));
    ForgetRows(row);
    if (m_currentItem == item)
        m_currentItem = nullptr;
    delete row;
}

bool CCatalogEditorDlg::ConfirmDelete()
{
    return Host::HostServices::current().askYesNo(
        CModuleConfiguration::Instance()->GetMsg(MsgConfirmDelete), windowTitle(), this);
}

void CCatalogEditorDlg::DeleteRootLevel(int which)
{
    if (!ConfirmDelete())
        return;
    if (const auto catalog = GetCatalog(which))
    {
        Editor::CatalogTreeWidget* tree = which == 0 ? m_drawingTree : m_catalogTree;
        std::vector<boost::shared_ptr<CCatalogItem>> entries;
        for (const auto& [guid, element] : *catalog->GetRootElementsMap())
            entries.push_back(element);
        // Under a filter only what is shown goes.
        RunEdit(new Editor::DeleteCommand(catalog, ShownEntries(tree->topLevelItem(0), entries)));
        m_currentItem = nullptr;
        RefillTree(which);
    }
}

void CCatalogEditorDlg::DeleteGroupContents(CCatalogItem* group, int which)
{
    if (!group || !ConfirmDelete())
        return;
    if (const auto catalog = GetCatalog(which))
    {
        Editor::CatalogTreeWidget* tree = which == 0 ? m_drawingTree : m_catalogTree;
        QTreeWidgetItem* groupRow = tree->currentItem();
        if (Editor::CatalogItemOfRow(groupRow) != group)
            groupRow = nullptr;
        std::vector<boost::shared_ptr<CCatalogItem>> entries;
        for (const auto& [guid, sub] : *group->GetSubItems())
            if (sub)
                entries.push_back(catalog->GetItembyGuid(sub->GetGUID()));
        RunEdit(new Editor::DeleteCommand(catalog, ShownEntries(groupRow, entries)));
        m_currentItem = nullptr;
        RefillTree(which);
    }
}

void CCatalogEditorDlg::RefillTree(int which)
{
    FillTree(which == 0, GetCatalog(which).get());
}
