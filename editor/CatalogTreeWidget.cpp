#include "editor/CatalogTreeWidget.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "host/HostServices.h"

namespace ZEVGis::Editor
{

using Data::CCatalogItem;

CatalogTreeRowItem::CatalogTreeRowItem(CCatalogItem* item, const QString& text, int image,
                                       const TreeImageList* images)
    : QTreeWidgetItem(RowType), m_text(text), m_item(item), m_images(images), m_image(image)
{
    if (item)
        setFlags(flags() | Qt::ItemIsEditable);
}

void CatalogTreeRowItem::setImageIndex(int image)
{
    if (image == m_image)
        return;
    m_image = image;
    emitDataChanged();
}

QVariant CatalogTreeRowItem::data(int column, int role) const
{
    if (column == 0)
    {
        switch (role)
        {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return m_text;
        case Qt::DecorationRole:
            if (m_images && m_image >= 0 && m_image < int(m_images->size()))
                return (*m_images)[m_image];
            return {};
        default:
            break;
        }
    }
    return QTreeWidgetItem::data(column, role);
}

void CatalogTreeRowItem::setData(int column, int role, const QVariant& value)
{
    if (column == 0 && (role == Qt::DisplayRole || role == Qt::EditRole))
    {
        const QString text = value.toString();
        if (text != m_text)
        {
            m_text = text;
            emitDataChanged();
        }
        return;
    }
    QTreeWidgetItem::setData(column, role, value);
}

bool CatalogTreeRowItem::operator<(const QTreeWidgetItem& other) const
{
    const CCatalogItem* otherItem = CatalogItemOfRow(&other);
    if (!m_item || !otherItem)
        return false;
    return m_item->GetOrd() < otherItem->GetOrd();
}

CCatalogItem* CatalogItemOfRow(const QTreeWidgetItem* row)
{
    if (!row || row->type() != CatalogTreeRowItem::RowType)
        return nullptr;
    return static_cast<const CatalogTreeRowItem*>(row)->catalogItem();
}

CatalogTreeWidget::CatalogTreeWidget(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(1);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setIconSize(QSize(24, 24));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
}

QTreeWidgetItem* CatalogTreeWidget::fill(Data::CCatalog* catalog, const QString& rootText,
                                         int rootImage, ItemRowMap* rowMap,
                                         CatalogTreeWidget* sortTarget)
{
    Host::WaitCursor wait;
    setUpdatesEnabled(false);
    m_editRow = nullptr;
    if (rowMap)
        rowMap->clear();
    clear();

    // The rows are built detached from the view, so no insertion is announced to the view
    // until the whole tree goes in at once.
    auto* root = new CatalogTreeRowItem(nullptr, rootText, rootImage, m_images);
    const std::vector<CatalogTreeRow> rows = CatalogTreeRows(catalog);
    std::vector<QTreeWidgetItem*> made(rows.size());
    if (rowMap)
        rowMap->reserve(rows.size());
    for (size_t i = 0; i < rows.size(); ++i)
    {
        const CatalogTreeRow& row = rows[i];
        auto* item = new CatalogTreeRowItem(row.item, row.item->GetName(), row.image, m_images);
        made[i] = item;
        (row.parent < 0 ? root : made[size_t(row.parent)])->addChild(item);
        if (row.mapped && rowMap)
            (*rowMap)[row.item] = item;
    }
    insertTopLevelItem(0, root);

    if (sortTarget)
        sortTarget->sortRootChildrenByOrder();
    root->setExpanded(true);
    setUpdatesEnabled(true);
    return root;
}

void CatalogTreeWidget::sortRootChildrenByOrder()
{
    if (QTreeWidgetItem* root = topLevelItem(0))
        root->sortChildren(0, Qt::AscendingOrder);
}

bool CatalogTreeWidget::beginLabelEdit(QTreeWidgetItem* row)
{
    if (!row || !CatalogItemOfRow(row))
        return false;
    setCurrentItem(row);
    m_editRow = row;
    m_textBeforeEdit = row->text(0);
    editItem(row, 0);
    return isEditingLabel();
}

void CatalogTreeWidget::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    QTreeWidget::closeEditor(editor, hint);
    QTreeWidgetItem* row = m_editRow;
    m_editRow = nullptr;
    if (row)
        emit labelEditEnded(row);
}

} // namespace ZEVGis::Editor
