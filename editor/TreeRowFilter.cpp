#include "editor/TreeRowFilter.h"

#include "editor/CatalogTreeWidget.h"

#include <QApplication>
#include <QPainter>
#include <QTreeWidget>

namespace ZEVGis::Editor
{

namespace
{
constexpr size_t MaxMatchesOpened = 50;
} // namespace

void TreeRowFilter::setFilter(const NameFilter& filter)
{
    m_filter = filter;
    m_pinned.clear();
}

void TreeRowFilter::pin(const Data::CCatalogItem* item)
{
    if (item && !m_filter.isEmpty())
        m_pinned.insert(item);
}

bool TreeRowFilter::keeps(QTreeWidgetItem* row) const
{
    return m_filter.matches(row->text(0)) || m_pinned.count(CatalogItemOfRow(row)) != 0;
}

bool TreeRowFilter::keepsBelow(QTreeWidgetItem* row) const
{
    std::vector<QTreeWidgetItem*> pending{row};
    while (!pending.empty())
    {
        QTreeWidgetItem* next = pending.back();
        pending.pop_back();
        if (keeps(next))
            return true;
        for (int i = 0; i < next->childCount(); ++i)
            pending.push_back(next->child(i));
    }
    return false;
}

void TreeRowFilter::setHidden(QTreeWidget& tree, QTreeWidgetItem* row, bool hide)
{
    auto& hidden = m_hidden[&tree];
    if ((hidden.count(row) != 0) == hide)
        return;
    row->setHidden(hide);
    if (hide)
        hidden.insert(row);
    else
        hidden.erase(row);
}

void TreeRowFilter::forget(QTreeWidgetItem* row)
{
    for (auto& [tree, hidden] : m_hidden)
        hidden.erase(row);
}

void TreeRowFilter::apply(QTreeWidget& tree, bool freshRows)
{
    auto& hidden = m_hidden[&tree];
    if (freshRows)
        hidden.clear();
    QTreeWidgetItem* root = tree.topLevelItem(0);
    if (!root || (m_filter.isEmpty() && hidden.empty()))
        return;
    const bool updates = tree.updatesEnabled();
    tree.setUpdatesEnabled(false);
    if (m_filter.isEmpty())
    {
        for (QTreeWidgetItem* row : hidden)
            row->setHidden(false);
        hidden.clear();
        tree.setUpdatesEnabled(updates);
        return;
    }

    // Rows breadth first, so that a parent comes before its children.
    std::vector<QTreeWidgetItem*> rows;
    std::vector<int> parents;
    for (int i = 0; i < root->childCount(); ++i)
    {
        rows.push_back(root->child(i));
        parents.push_back(-1);
    }
    for (size_t next = 0; next < rows.size(); ++next)
    {
        QTreeWidgetItem* row = rows[next];
        for (int i = 0; i < row->childCount(); ++i)
        {
            rows.push_back(row->child(i));
            parents.push_back(int(next));
        }
    }
    std::vector<size_t> matches;
    const std::vector<char> shown = ShownRows(parents, [&](size_t i) {
        const bool match = m_filter.matches(rows[i]->text(0));
        if (match)
            matches.push_back(i);
        return match || m_pinned.count(CatalogItemOfRow(rows[i])) != 0;
    });

    std::vector<signed char> open(rows.size(), -1); // asked once per parent
    for (size_t i = 0; i < rows.size(); ++i)
    {
        const int parent = parents[i];
        if (parent >= 0)
        {
            if (!shown[size_t(parent)])
                continue;
            signed char& isOpen = open[size_t(parent)];
            if (isOpen < 0)
                isOpen = rows[size_t(parent)]->isExpanded() ? 1 : 0;
            if (!isOpen)
                continue;
        }
        setHidden(tree, rows[i], !shown[i]);
    }
    // A few matches are opened up to (applyBelow shows their rows); for many the user types on.
    if (!matches.empty() && matches.size() <= MaxMatchesOpened)
    {
        root->setExpanded(true);
        for (size_t match : matches)
        {
            std::vector<QTreeWidgetItem*> path;
            for (int up = parents[match]; up >= 0; up = parents[size_t(up)])
                path.push_back(rows[size_t(up)]);
            for (auto it = path.rbegin(); it != path.rend(); ++it)
                if (!(*it)->isExpanded())
                    (*it)->setExpanded(true);
        }
    }
    if (QTreeWidgetItem* current = tree.currentItem())
        if (QTreeWidgetItem* shownRow = shownRowFor(current); shownRow != current)
            tree.setCurrentItem(shownRow);
    tree.setUpdatesEnabled(updates);
    tree.viewport()->update();
}

void TreeRowFilter::applyBelow(QTreeWidget& tree, QTreeWidgetItem* row)
{
    if (!row || (m_filter.isEmpty() && m_hidden[&tree].empty()))
        return;
    for (int i = 0; i < row->childCount(); ++i)
        setHidden(tree, row->child(i), !m_filter.isEmpty() && !keepsBelow(row->child(i)));
}

QTreeWidgetItem* TreeRowFilter::shownRowFor(QTreeWidgetItem* row)
{
    QTreeWidgetItem* shownRow = row;
    for (QTreeWidgetItem* above = row; above; above = above->parent())
        if (above->isHidden())
            shownRow = above->parent();
    return shownRow;
}

FilterMarkDelegate::FilterMarkDelegate(const TreeRowFilter* filter, QObject* parent)
    : QStyledItemDelegate(parent), m_filter(filter)
{
}

void FilterMarkDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    if (!m_filter || m_filter->filter().isEmpty())
        return;
    const QString text = index.data(Qt::DisplayRole).toString();
    const auto ranges = m_filter->filter().matchRanges(text);
    if (ranges.empty())
        return;
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QWidget* widget = option.widget;
    const QStyle* style = widget ? widget->style() : QApplication::style();
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &item, widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
    const QFontMetrics metrics(item.font);
    // A translucent mark over the letters keeps them readable on any row colour.
    QColor mark(255, 190, 0, 110);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(mark);
    for (const NameFilter::Range& range : ranges)
    {
        const int left = textRect.left() + margin + metrics.horizontalAdvance(text.left(range.start));
        const int width = metrics.horizontalAdvance(text.mid(range.start, range.length));
        const int height = std::min(textRect.height(), metrics.height() + 2);
        const QRect box(left, textRect.center().y() - height / 2, width, height);
        painter->drawRoundedRect(box.intersected(textRect), 2, 2);
    }
    painter->restore();
}

} // namespace ZEVGis::Editor
