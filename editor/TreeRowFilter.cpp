#include "editor/TreeRowFilter.h"

#include "editor/CatalogTreeWidget.h"

#include <QApplication>
#include <QPainter>
#include <QTreeWidget>

namespace ZEVGis::Editor
{

namespace
{
constexpr size_t MaxMatchesOpened = 500;
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

void TreeRowFilter::apply(QTreeWidget& tree) const
{
    QTreeWidgetItem* root = tree.topLevelItem(0);
    if (!root)
        return;
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
    const bool all = m_filter.isEmpty();
    std::vector<size_t> matches;
    const std::vector<char> shown = ShownRows(parents, [&](size_t i) {
        if (all)
            return true;
        const bool match = m_filter.matches(rows[i]->text(0));
        if (match)
            matches.push_back(i);
        return match || m_pinned.count(CatalogItemOfRow(rows[i])) != 0;
    });

    const bool updates = tree.updatesEnabled();
    tree.setUpdatesEnabled(false);
    for (size_t i = 0; i < rows.size(); ++i)
    {
        if (parents[i] >= 0 && !shown[size_t(parents[i])])
            continue;
        if (rows[i]->isHidden() == !shown[i])
            continue;
        rows[i]->setHidden(!shown[i]);
    }
    // A few matches are opened up to; for many the user types on.
    if (!matches.empty() && matches.size() <= MaxMatchesOpened)
    {
        root->setExpanded(true);
        for (size_t match : matches)
            for (int up = parents[match]; up >= 0 && !rows[size_t(up)]->isExpanded(); up = parents[size_t(up)])
                rows[size_t(up)]->setExpanded(true);
    }
    if (QTreeWidgetItem* current = tree.currentItem())
        if (QTreeWidgetItem* shownRow = shownRowFor(current); shownRow != current)
            tree.setCurrentItem(shownRow);
    tree.setUpdatesEnabled(updates);
    tree.viewport()->update();
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
