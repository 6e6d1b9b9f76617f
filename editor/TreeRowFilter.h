#pragma once

#include "editor/NameFilter.h"

#include <QStyledItemDelegate>
#include <unordered_map>
#include <unordered_set>

class QTreeWidget;
class QTreeWidgetItem;

namespace ZEVGis::Data
{
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// The name filter as the catalog trees apply it. Rows below a tree's root row are shown when
// their name matches, when they are pinned (made or renamed since the filter last changed)
// or when a row below them is shown; the root row always is.
class TreeRowFilter
{
public:
    const NameFilter& filter() const { return m_filter; }
    // A new text; the pins go.
    void setFilter(const NameFilter& filter);
    // Keeps the item's row visible until the filter changes.
    void pin(const Data::CCatalogItem* item);

    // Hides and shows `tree`'s rows for the filter. Only rows under open rows are touched (a
    // row opened later gets its children's state from applyBelow), so a keystroke costs what
    // can be seen, not the whole catalog. When there are few matches, the rows above them are
    // opened. A current row that ends up hidden gives way to its nearest shown ancestor.
    // `freshRows`: the tree has just been filled, so no row is hidden yet.
    void apply(QTreeWidget& tree, bool freshRows = false);
    // `row` was opened: its children are shown or hidden for the filter.
    void applyBelow(QTreeWidget& tree, QTreeWidgetItem* row);
    // `row` is about to be deleted.
    void forget(QTreeWidgetItem* row);
    // `row`, or its nearest ancestor when `row` or one above it is hidden.
    static QTreeWidgetItem* shownRowFor(QTreeWidgetItem* row);

private:
    bool keeps(QTreeWidgetItem* row) const;
    // Whether `row` or a row below it is kept.
    bool keepsBelow(QTreeWidgetItem* row) const;
    void setHidden(QTreeWidget& tree, QTreeWidgetItem* row, bool hide);

    NameFilter m_filter;
    std::unordered_set<const Data::CCatalogItem*> m_pinned;
    // The rows this filter hid, by tree: asking a row itself is slow in a big tree.
    std::unordered_map<const QTreeWidget*, std::unordered_set<QTreeWidgetItem*>> m_hidden;
};

// Draws a tree's rows with the parts of their names that the filter matches marked.
class FilterMarkDelegate : public QStyledItemDelegate
{
public:
    FilterMarkDelegate(const TreeRowFilter* filter, QObject* parent);
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    const TreeRowFilter* m_filter;
};

} // namespace ZEVGis::Editor
