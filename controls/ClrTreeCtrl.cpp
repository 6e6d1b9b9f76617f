#include "controls/ClrTreeCtrl.h"

#include <QBrush>
#include <algorithm>

QColor ColorFromColorRef(ColorRef color)
{
    return QColor(int(color & 0xFF), int((color >> 8) & 0xFF), int((color >> 16) & 0xFF));
}

CClrTreeItem::CClrTreeItem(const QString& text, int image, const void* data)
    : QTreeWidgetItem(RowType), m_text(text), m_data(data), m_image(image)
{
}

void CClrTreeItem::setImage(int image)
{
    if (image == m_image)
        return;
    m_image = image;
    emitDataChanged();
}

void CClrTreeItem::setTextColor(ColorRef color)
{
    if (color == m_color)
        return;
    m_color = color;
    emitDataChanged();
}

QVariant CClrTreeItem::data(int column, int role) const
{
    if (column != 0)
        return QTreeWidgetItem::data(column, role);
    switch (role)
    {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return m_text;
    case Qt::DecorationRole:
        if (const auto* tree = qobject_cast<const CClrTreeCtrl*>(treeWidget()))
            return tree->Image(m_image);
        return {};
    case Qt::ForegroundRole:
        if (m_color != 0)
            return QBrush(ColorFromColorRef(m_color));
        return {};
    default:
        return QTreeWidgetItem::data(column, role);
    }
}

void CClrTreeItem::setData(int column, int role, const QVariant& value)
{
    if (column == 0 && (role == Qt::DisplayRole || role == Qt::EditRole))
    {
        if (value.toString() != m_text)
        {
            m_text = value.toString();
            emitDataChanged();
        }
        return;
    }
    QTreeWidgetItem::setData(column, role, value);
}

CClrTreeCtrl::CClrTreeCtrl(QWidget* parent) : QTreeWidget(parent)
{
    setHeaderHidden(true);
    setColumnCount(1);
    setRootIsDecorated(true);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setIconSize(QSize(24, 24));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

void CClrTreeCtrl::SetImageList(const QVector<QIcon>& images)
{
    m_images = images;
    viewport()->update();
}

QIcon CClrTreeCtrl::Image(int index) const
{
    return index >= 0 && index < m_images.size() ? m_images[index] : QIcon();
}

CClrTreeItem* CClrTreeCtrl::InsertItem(const QString& text, int image, const void* data,
                                       QTreeWidgetItem* parent)
{
    auto* row = new CClrTreeItem(text, image, data);
    if (parent)
        parent->addChild(row);
    else
        addTopLevelItem(row);
    return row;
}

CClrTreeItem* CClrTreeCtrl::Row(QTreeWidgetItem* row)
{
    return row && row->type() == CClrTreeItem::RowType ? static_cast<CClrTreeItem*>(row) : nullptr;
}

const void* CClrTreeCtrl::GetItemData(const QTreeWidgetItem* row)
{
    return row && row->type() == CClrTreeItem::RowType
               ? static_cast<const CClrTreeItem*>(row)->itemData()
               : nullptr;
}

void CClrTreeCtrl::SetItemColor(QTreeWidgetItem* row, ColorRef color)
{
    if (CClrTreeItem* item = Row(row))
        item->setTextColor(color);
}

ColorRef CClrTreeCtrl::GetItemColor(const QTreeWidgetItem* row)
{
    return row && row->type() == CClrTreeItem::RowType
               ? static_cast<const CClrTreeItem*>(row)->textColor()
               : 0;
}

std::vector<QTreeWidgetItem*> CClrTreeCtrl::Children(const QTreeWidgetItem* row)
{
    std::vector<QTreeWidgetItem*> children;
    if (!row)
        return children;
    children.reserve(size_t(row->childCount()));
    for (int i = 0; i < row->childCount(); ++i)
        children.push_back(row->child(i));
    return children;
}

void CClrTreeCtrl::SortChildrenCB(QTreeWidgetItem* parent, const Compare& compare)
{
    if (!parent || parent->treeWidget() != this || !compare || parent->childCount() < 2)
        return;
    const bool expanded = parent->isExpanded();
    QList<QTreeWidgetItem*> children = parent->takeChildren();
    std::stable_sort(children.begin(), children.end(),
                     [&compare](QTreeWidgetItem* a, QTreeWidgetItem* b)
                     { return compare(GetItemData(a), GetItemData(b)) < 0; });
    parent->addChildren(children);
    parent->setExpanded(expanded);
}
