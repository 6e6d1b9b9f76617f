#pragma once

#include "editor/CatalogTreeFill.h"

#include <QCursor>
#include <QIcon>
#include <QTreeWidget>
#include <array>
#include <unordered_map>

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// The icons both catalog trees draw from, by TreeImage index.
using TreeImageList = std::array<QIcon, TreeImageCount>;

// Tree row for a catalog item (or, without an item, a tree's root row). It holds a
// non-owning pointer to the item and an index into the shared image list, so replacing an
// icon in the list changes every row that uses it.
class CatalogTreeRowItem : public QTreeWidgetItem
{
public:
    enum
    {
        RowType = QTreeWidgetItem::UserType + 1
    };

    CatalogTreeRowItem(Data::CCatalogItem* item, const QString& text, int image,
                       const TreeImageList* images);

    Data::CCatalogItem* catalogItem() const { return m_item; }
    int imageIndex() const { return m_image; }
    void setImageIndex(int image);
    // The row's text without a detour through QVariant.
    const QString& label() const { return m_text; }

    QVariant data(int column, int role) const override;
    void setData(int column, int role, const QVariant& value) override;
    // Rows order by their items' order numbers; a row without an item ties with any row.
    bool operator<(const QTreeWidgetItem& other) const override;

private:
    QString m_text;
    Data::CCatalogItem* m_item;
    const TreeImageList* m_images;
    int m_image;
};

// The catalog item a row shows; null for a root row or a foreign row.
Data::CCatalogItem* CatalogItemOfRow(const QTreeWidgetItem* row);

using ItemRowMap = std::unordered_map<Data::CCatalogItem*, QTreeWidgetItem*>;

// One of the editor's two catalog trees: fills itself from a catalog in one batch and reports
// the end of label editing.
class CatalogTreeWidget : public QTreeWidget
{
    Q_OBJECT
public:
    explicit CatalogTreeWidget(QWidget* parent = nullptr);

    void setImageList(const TreeImageList* images) { m_images = images; }

    // Replaces every row: a root row with `rootText` and `rootImage`, below it the catalog's
    // rows. Rows below the top level are entered in `rowMap` (when given; emptied first).
    // Then the root's children of `sortTarget` (the tree that gets the sort request, which
    // need not be this one) are ordered by order number. Returns the root row.
    QTreeWidgetItem* fill(Data::CCatalog* catalog, const QString& rootText, int rootImage,
                          ItemRowMap* rowMap, CatalogTreeWidget* sortTarget);
    // Orders the root row's children by order number (stable).
    void sortRootChildrenByOrder();

    // Opens the label editor on `row` when it shows an item; false otherwise.
    bool beginLabelEdit(QTreeWidgetItem* row);
    bool isEditingLabel() const { return state() == QAbstractItemView::EditingState; }
    // The text the row had when its label editor opened.
    QString textBeforeEdit() const { return m_textBeforeEdit; }

    // Item rows (not groups, not the root) can be dragged with the left button; over the tree
    // the pointer shows `cursor`, elsewhere that no drop is possible there.
    void setItemDragEnabled(bool enabled, const QCursor& cursor);
    // A tree the dialog's buttons and grid do not work on shows its selection in a pale
    // colour, so the user sees which tree is meant.
    void setSelectionDimmed(bool dimmed);
    bool isSelectionDimmed() const { return m_selectionDimmed; }
    bool isDraggingItem() const { return m_dragRow != nullptr; }
    // The row a drop would go to now (highlighted, with the insert mark below it).
    QTreeWidgetItem* dropRow() const { return m_dropRow; }

    // Widens the column to the longest name shown (at least the view's width), so that long
    // names scroll sideways instead of being cut short.
    void fitColumnToNames();

signals:
    // The label editor of `row` closed, with the new text accepted (the row's text) or
    // cancelled (the old text is back).
    void labelEditEnded(QTreeWidgetItem* row);
    // The left button was released while `dragged` was dragged. `target` is the row under the
    // pointer, or the last row it crossed when released outside the tree; null for none.
    void itemDropped(QTreeWidgetItem* dragged, QTreeWidgetItem* target);

protected:
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;

private:
    void trackDrop(const QPoint& pos);
    void endItemDrag();

    bool m_itemDrag = false;
    QCursor m_dragCursor;
    QTreeWidgetItem* m_pressRow = nullptr;
    QPoint m_pressPos;
    QTreeWidgetItem* m_dragRow = nullptr;
    QTreeWidgetItem* m_dropRow = nullptr;

    const TreeImageList* m_images = nullptr;
    bool m_selectionDimmed = false;
    QTreeWidgetItem* m_editRow = nullptr;
    QString m_textBeforeEdit;
};

} // namespace ZEVGis::Editor
