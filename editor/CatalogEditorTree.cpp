// The two catalog trees: filling, selection, focus, button states and label editing.
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogMetadata.h"
#include "catalog/ModuleConfiguration.h"
#include "catalog/Utility.h"
#include "controls/TreeRowWalk.h"
#include "editor/CatalogEditorIds.h"
#include "editor/EditCommands.h"
#include "host/HostServices.h"

#include <QAbstractButton>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
// Message numbers.
constexpr unsigned MsgCatalogRoot = 350;
constexpr unsigned MsgNameRejected = 1620;
} // namespace

void CCatalogEditorDlg::FillTree(bool upper, CCatalog* catalog)
{
    QString rootText = CModuleConfiguration::Instance()->GetMsg(MsgCatalogRoot);
    if (!upper)
        rootText += QStringLiteral(" - Disk");
    CatalogTreeWidget* tree = upper ? m_drawingTree : m_catalogTree;
    if (!upper)
        m_lowerRoot = nullptr;
    // The ordinal sort always goes to the catalog tree, also while the drawing tree is being
    // filled; the drawing tree's top level therefore keeps the catalog's map order.
    QTreeWidgetItem* root =
        tree->fill(catalog, rootText, upper ? Editor::ImageUpperRoot : Editor::ImageLowerRoot,
                   upper ? nullptr : &m_itemRows, m_catalogTree);
    if (!upper)
        m_lowerRoot = root;
    m_rowFilter.apply(*tree, true);
}

void CCatalogEditorDlg::OnTreeSelChanged(bool upper)
{
    ShowSelection(upper);
}

void CCatalogEditorDlg::OnTreeFocus(bool upper)
{
    m_activeTree = upper ? 1 : 2;
    m_drawingTree->setSelectionDimmed(!upper);
    m_catalogTree->setSelectionDimmed(upper);
    ShowSelection(upper);
}

void CCatalogEditorDlg::UpdateButtons(CCatalogItem* item, bool upper)
{
    const auto metadata = SelectedMetadata();
    const auto states = Editor::ButtonStatesForSelection(Editor::RowKindOf(item, upper), item,
                                                         metadata.get());
    if (states)
        SetButtonStates(*states);
}

void CCatalogEditorDlg::SetButtonStates(const Editor::EditorButtonStates& states)
{
    EnableButton(Ids::BtnAddGroup, states.newGroup);
    EnableButton(Ids::BtnDelete, states.remove);
    EnableButton(Ids::BtnNew, states.newItem);
    EnableButton(Ids::BtnNewItems, states.newItems);
    EnableButton(Ids::BtnUp, states.moveUpDown);
    EnableButton(Ids::BtnDown, states.moveUpDown);
    EnableButton(Ids::BtnSort, states.sort);
    EnableButton(Ids::BtnSetDefault, states.setDefault);
}

void CCatalogEditorDlg::EnableButton(int id, bool enable)
{
    if (QAbstractButton* button = Button(id))
        button->setEnabled(enable);
}

QAbstractButton* CCatalogEditorDlg::Button(int id) const
{
    const auto it = m_buttons.find(id);
    return it == m_buttons.end() ? nullptr : it->second;
}

CatalogTreeWidget* CCatalogEditorDlg::ActiveTreeWidget() const
{
    return m_activeTree == 1 ? m_drawingTree : m_catalogTree;
}

QTreeWidgetItem* CCatalogEditorDlg::RowOfItem(CCatalogItem* item) const
{
    const auto it = m_itemRows.find(item);
    return it == m_itemRows.end() ? nullptr : it->second;
}

bool CCatalogEditorDlg::IsEditingLabel() const
{
    return m_drawingTree->isEditingLabel() || m_catalogTree->isEditingLabel();
}

void CCatalogEditorDlg::BeginLabelEdit()
{
    CatalogTreeWidget* tree = ActiveTreeWidget();
    tree->beginLabelEdit(tree->currentItem());
}

void CCatalogEditorDlg::OnLabelEditEnded(bool upper, QTreeWidgetItem* row)
{
    const bool naming = row == m_namingRow;
    m_namingRow = nullptr;
    if (upper)
    {
        // The drawing copy is not renamed here: its label goes back to what it was.
        row->setText(0, m_drawingTree->textBeforeEdit());
        return;
    }
    const QString text = row->text(0);
    // Names refused for an entry; none at present, so any text is taken.
    const QStringList refusedNames;
    if (Utility::CUtility::GetStringIndex(refusedNames, text) >= 0)
    {
        Host::HostServices::current().alert(
            CModuleConfiguration::Instance()->GetMsg(MsgNameRejected), this);
        m_namingRow = naming ? row : nullptr;
        m_catalogTree->beginLabelEdit(row);
        return;
    }
    if (CCatalogItem* item = Editor::CatalogItemOfRow(row))
    {
        RunEdit(new Editor::RenameCommand(GetCatalog(1), item, text, naming));
        m_rowFilter.pin(item);
        ShowProperties(item, false);
    }
}

void CCatalogEditorDlg::ForgetRows(QTreeWidgetItem* row)
{
    Utility::WalkRows(row,
                      [this](QTreeWidgetItem* next)
                      {
                          m_rowFilter.forget(next);
                          if (CCatalogItem* item = Editor::CatalogItemOfRow(next))
                          {
                              const auto it = m_itemRows.find(item);
                              if (it != m_itemRows.end() && it->second == next)
                                  m_itemRows.erase(it);
                          }
                          return true;
                      });
}

void CCatalogEditorDlg::DropTreeRows()
{
    // Rows point at catalog items; once a catalog is reloaded they must go before anything
    // can reach them through a late signal.
    for (CatalogTreeWidget* tree : {m_drawingTree, m_catalogTree})
    {
        if (!tree)
            continue;
        const QSignalBlocker blocker(tree);
        tree->clear();
        m_rowFilter.apply(*tree, true);
    }
    m_itemRows.clear();
    m_lowerRoot = nullptr;
    m_currentItem = nullptr;
}
