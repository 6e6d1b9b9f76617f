#pragma once

#include "editor/NameFilter.h"

#include <QStyledItemDelegate>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

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
    TreeRowFilter();
    ~TreeRowFilter();

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
    // Reads `tree`'s rows ahead of the first keystroke (as when the field gets the focus), so
    // that the first one costs no more than the others.
    void prepare(QTreeWidget& tree) { rowsOf(tree); }
    // `row` was opened: its children are shown or hidden for the filter.
    void applyBelow(QTreeWidget& tree, QTreeWidgetItem* row);
    // `row` is about to be deleted.
    void forget(QTreeWidgetItem* row);
    // `row`, or its nearest ancestor when `row` or one above it is hidden.
    static QTreeWidgetItem* shownRowFor(QTreeWidgetItem* row);

private:
    // A tree's rows below its root row, parents before children, with their names folded
    // once into one buffer, and the rows whose names matched the last filter: typing on only
    // asks those again. A change of the tree's rows or names (heard from its model) drops it.
    struct TreeRows
    {
        bool valid = false;
        std::vector<QTreeWidgetItem*> rows;
        std::vector<int> parents;
        QString folded;
        // Row i's folded name begins at starts[i]; one more entry marks the end.
        std::vector<qsizetype> starts;
        bool matchesValid = false;
        NameFilter matched;
        std::vector<size_t> matches;
    };

    bool matches(QTreeWidgetItem* row) const;
    bool matches(const TreeRows& rows, size_t i) const;
    bool keeps(QTreeWidgetItem* row) const;
    // Whether `row` or a row below it is kept.
    bool keepsBelow(QTreeWidgetItem* row) const;
    void setHidden(QTreeWidget& tree, QTreeWidgetItem* row, bool hide);
    TreeRows& rowsOf(QTreeWidget& tree);
    // The rows of `rows` that match the filter now.
    std::vector<size_t> findMatches(TreeRows& rows) const;
    void openUpTo(QTreeWidgetItem* root, const TreeRows& rows, const std::vector<size_t>& matches);

    NameFilter m_filter;
    std::unordered_set<const Data::CCatalogItem*> m_pinned;
    // The rows this filter hid, by tree: asking a row itself is slow in a big tree.
    std::unordered_map<const QTreeWidget*, std::unordered_set<QTreeWidgetItem*>> m_hidden;
    std::unordered_map<const QTreeWidget*, TreeRows> m_rows;
    // Owns the connections to the trees' models, which end with the filter.
    std::unique_ptr<QObject> m_listener;
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
