// The trees' name filter: a field above the catalog tree (Ctrl+F), both trees filtered as
// the user types, the matched parts of the names marked.
#include "editor/CatalogEditorDlg.h"

#include "catalog/CatalogItem.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ControlId.h"
#include "editor/CatalogEditorIds.h"

#include <QAction>
#include <QKeyEvent>
#include <QLineEdit>
#include <unordered_set>

using namespace ZEVGis;
using namespace ZEVGis::Data;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
constexpr unsigned MsgFilterPlaceholder = 70300;
constexpr unsigned MsgFilterToolTip = 70301;
} // namespace

void CCatalogEditorDlg::CreateFilterField()
{
    m_filterEdit = new QLineEdit(this);
    setControlId(m_filterEdit, Ids::FilterEdit);
    m_filterEdit->setClearButtonEnabled(true);
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    m_filterEdit->setPlaceholderText(configuration->GetMsg(MsgFilterPlaceholder));
    m_filterEdit->setToolTip(configuration->GetMsg(MsgFilterToolTip));
    m_filterEdit->installEventFilter(this);
    connect(m_filterEdit, &QLineEdit::textChanged, this, &CCatalogEditorDlg::SetFilterText);
    for (Editor::CatalogTreeWidget* tree : {m_drawingTree, m_catalogTree})
    {
        tree->setItemDelegate(new Editor::FilterMarkDelegate(&m_rowFilter, tree));
        connect(tree, &QTreeWidget::itemExpanded, this,
                [this, tree](QTreeWidgetItem* row) { m_rowFilter.applyBelow(*tree, row); });
    }

    auto* find = new QAction(this);
    find->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    connect(find, &QAction::triggered, this, [this] {
        m_filterEdit->setFocus(Qt::ShortcutFocusReason);
        m_filterEdit->selectAll();
    });
    addAction(find);
}

// The field takes the top of the catalog tree's place; the tree starts below it.
void CCatalogEditorDlg::PlaceFilterField()
{
    const QRect tree = m_catalogTree->geometry();
    const int height = m_filterEdit->sizeHint().height();
    m_filterEdit->setGeometry(tree.left(), tree.top(), tree.width(), height);
    m_catalogTree->setGeometry(tree.adjusted(0, height + 2, 0, 0));
}

void CCatalogEditorDlg::SetFilterText(const QString& text)
{
    if (m_filterEdit->text() != text)
        m_filterEdit->setText(text); // comes back here through textChanged
    if (m_rowFilter.filter().text() == text)
        return;
    m_rowFilter.setFilter(Editor::NameFilter(text));
    for (Editor::CatalogTreeWidget* tree : {m_drawingTree, m_catalogTree})
        m_rowFilter.apply(*tree);
}

// Escape in a filled field empties it (elsewhere it still cancels the dialog); Enter and
// Down go on to the catalog tree instead of closing the dialog.
bool CCatalogEditorDlg::HandleFilterKey(QKeyEvent* key)
{
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return false;
    switch (key->key())
    {
    case Qt::Key_Escape:
        if (m_filterEdit->text().isEmpty())
            return false;
        m_filterEdit->clear();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        m_catalogTree->setFocus(Qt::TabFocusReason);
        return true;
    default:
        return false;
    }
}

std::vector<boost::shared_ptr<CCatalogItem>>
CCatalogEditorDlg::ShownEntries(QTreeWidgetItem* parentRow,
                                const std::vector<boost::shared_ptr<CCatalogItem>>& entries) const
{
    if (m_rowFilter.filter().isEmpty() || !parentRow)
        return entries;
    std::unordered_set<const CCatalogItem*> hidden;
    for (int i = 0; i < parentRow->childCount(); ++i)
        if (parentRow->child(i)->isHidden())
            hidden.insert(Editor::CatalogItemOfRow(parentRow->child(i)));
    std::vector<boost::shared_ptr<CCatalogItem>> shown;
    for (const auto& entry : entries)
        if (entry && !hidden.count(entry.get()))
            shown.push_back(entry);
    return shown;
}
