#include "editor/CatalogTreeWidget.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "host/HostServices.h"

#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>

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
    header()->setStretchLastSection(false);
    for (auto shown : {&QTreeView::expanded, &QTreeView::collapsed})
        connect(this, shown, this, &CatalogTreeWidget::fitColumnToNames);
    // Only a changed name can change the width; icons (default marks) come by the thousand.
    connect(model(), &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex&, const QModelIndex&, const QList<int>& roles) {
                if (roles.isEmpty() || roles.contains(Qt::DisplayRole))
                    fitColumnToNames();
            });
    connect(model(), &QAbstractItemModel::rowsInserted, this, &CatalogTreeWidget::fitColumnToNames);
    // A drag holds rows; whatever removes rows ends it first.
    connect(model(), &QAbstractItemModel::rowsAboutToBeRemoved, this, [this] { endItemDrag(); });
    connect(model(), &QAbstractItemModel::modelAboutToBeReset, this, [this] { endItemDrag(); });
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
    fitColumnToNames();
    setUpdatesEnabled(true);
    return root;
}

void CatalogTreeWidget::fitColumnToNames()
{
    header()->resizeSection(0, std::max(sizeHintForColumn(0), viewport()->width()));
}

void CatalogTreeWidget::resizeEvent(QResizeEvent* event)
{
    QTreeWidget::resizeEvent(event);
    fitColumnToNames();
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

void CatalogTreeWidget::setItemDragEnabled(bool enabled, const QCursor& cursor)
{
    m_itemDrag = enabled;
    m_dragCursor = cursor;
}

void CatalogTreeWidget::mousePressEvent(QMouseEvent* event)
{
    m_pressRow = nullptr;
    if (m_itemDrag && event->button() == Qt::LeftButton)
    {
        m_pressPos = event->position().toPoint();
        m_pressRow = itemAt(m_pressPos);
    }
    QTreeWidget::mousePressEvent(event);
}

void CatalogTreeWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    if (!m_dragRow && m_pressRow && (event->buttons() & Qt::LeftButton) &&
        (pos - m_pressPos).manhattanLength() >= QApplication::startDragDistance())
    {
        // Groups stay where they are: only items are dragged.
        const Data::CCatalogItem* item = CatalogItemOfRow(m_pressRow);
        if (item && !item->IsGroup())
            m_dragRow = m_pressRow;
        m_pressRow = nullptr;
    }
    if (!m_dragRow)
    {
        QTreeWidget::mouseMoveEvent(event);
        return;
    }
    trackDrop(pos);
}

void CatalogTreeWidget::trackDrop(const QPoint& pos)
{
    if (!viewport()->rect().contains(pos))
    {
        viewport()->setCursor(Qt::ForbiddenCursor);
        return;
    }
    viewport()->setCursor(m_dragCursor);
    QTreeWidgetItem* row = itemAt(pos);
    if (row != m_dropRow)
    {
        m_dropRow = row;
        viewport()->update();
    }
}

void CatalogTreeWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_dragRow)
    {
        m_pressRow = nullptr;
        QTreeWidget::mouseReleaseEvent(event);
        return;
    }
    trackDrop(event->position().toPoint());
    QTreeWidgetItem* dragged = m_dragRow;
    QTreeWidgetItem* target = m_dropRow;
    // The receiver may refill the tree: the drag is over before it hears of the drop.
    endItemDrag();
    emit itemDropped(dragged, target);
}

void CatalogTreeWidget::endItemDrag()
{
    const bool wasDragging = m_dragRow != nullptr;
    m_pressRow = nullptr;
    m_dragRow = nullptr;
    m_dropRow = nullptr;
    if (wasDragging)
    {
        viewport()->unsetCursor();
        viewport()->update();
    }
}

void CatalogTreeWidget::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const
{
    QTreeWidget::drawRow(painter, option, index);
    if (!m_dropRow || itemFromIndex(index) != m_dropRow)
        return;
    QColor highlight = palette().color(QPalette::Highlight);
    highlight.setAlpha(80);
    painter->fillRect(option.rect, highlight);
    // The insert mark below the drop row.
    painter->fillRect(QRect(option.rect.left(), option.rect.bottom() - 1, option.rect.width(), 2),
                      palette().color(QPalette::Highlight));
}

void CatalogTreeWidget::setSelectionDimmed(bool dimmed)
{
    if (dimmed == m_selectionDimmed)
        return;
    m_selectionDimmed = dimmed;
    if (!dimmed)
    {
        setPalette(QPalette());
        return;
    }
    // A third of the highlight over the base, with the rows' own text colour on it.
    QPalette pale = palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive})
    {
        const QColor highlight = pale.color(group, QPalette::Highlight);
        const QColor base = pale.color(group, QPalette::Base);
        const QColor mixed = QColor::fromRgbF(
            float(base.redF() * 2 + highlight.redF()) / 3,
            float(base.greenF() * 2 + highlight.greenF()) / 3,
            float(base.blueF() * 2 + highlight.blueF()) / 3);
        pale.setColor(group, QPalette::Highlight, mixed);
        pale.setColor(group, QPalette::HighlightedText, pale.color(group, QPalette::Text));
    }
    setPalette(pale);
}

} // namespace ZEVGis::Editor
