#include "editor/TreeRowFilter.h"

#include "controls/TreeRowWalk.h"
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

TreeRowFilter::TreeRowFilter() : m_listener(std::make_unique<QObject>())
{
}

TreeRowFilter::~TreeRowFilter() = default;

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

namespace
{
QString RowText(const QTreeWidgetItem* row)
{
    if (row->type() == CatalogTreeRowItem::RowType)
        return static_cast<const CatalogTreeRowItem*>(row)->label();
    return row->text(0);
}
} // namespace

bool TreeRowFilter::matches(QTreeWidgetItem* row) const
{
    return m_filter.matches(RowText(row));
}

bool TreeRowFilter::matches(const TreeRows& cache, size_t i) const
{
    if (!m_filter.matchesByFold())
        return matches(cache.rows[i]);
    const qsizetype start = cache.starts[i];
    return m_filter.matchesFolded(
        QStringView(cache.folded).sliced(start, cache.starts[i + 1] - start));
}

bool TreeRowFilter::keeps(QTreeWidgetItem* row) const
{
    return matches(row) || m_pinned.count(CatalogItemOfRow(row)) != 0;
}

bool TreeRowFilter::keepsBelow(QTreeWidgetItem* row) const
{
    bool kept = false;
    Utility::WalkRows(row,
                      [&](QTreeWidgetItem* next)
                      {
                          kept = kept || keeps(next);
                          return !kept; // once one is kept nothing more is looked at
                      });
    return kept;
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

TreeRowFilter::TreeRows& TreeRowFilter::rowsOf(QTreeWidget& tree)
{
    const auto [it, added] = m_rows.try_emplace(&tree);
    TreeRows& cache = it->second;
    if (added)
    {
        QAbstractItemModel* model = tree.model();
        auto dropRows = [&cache] { cache.valid = cache.matchesValid = false; };
        QObject* listener = m_listener.get();
        QObject::connect(model, &QAbstractItemModel::rowsInserted, listener, dropRows);
        QObject::connect(model, &QAbstractItemModel::rowsRemoved, listener, dropRows);
        QObject::connect(model, &QAbstractItemModel::rowsMoved, listener, dropRows);
        QObject::connect(model, &QAbstractItemModel::layoutChanged, listener, dropRows);
        QObject::connect(model, &QAbstractItemModel::modelReset, listener, dropRows);
        QObject::connect(model, &QAbstractItemModel::dataChanged, listener, dropRows);
    }
    if (cache.valid)
        return cache;
    cache.rows.clear();
    cache.parents.clear();
    // Breadth first, so that a parent comes before its children.
    if (QTreeWidgetItem* root = tree.topLevelItem(0))
        for (int i = 0; i < root->childCount(); ++i)
        {
            cache.rows.push_back(root->child(i));
            cache.parents.push_back(-1);
        }
    for (size_t next = 0; next < cache.rows.size(); ++next)
    {
        QTreeWidgetItem* row = cache.rows[next];
        for (int i = 0; i < row->childCount(); ++i)
        {
            cache.rows.push_back(row->child(i));
            cache.parents.push_back(int(next));
        }
    }
    cache.folded.clear();
    cache.starts.clear();
    cache.starts.reserve(cache.rows.size() + 1);
    for (QTreeWidgetItem* row : cache.rows)
    {
        cache.starts.push_back(cache.folded.size());
        cache.folded += NameFilter::fold(RowText(row));
    }
    cache.starts.push_back(cache.folded.size());
    cache.valid = true;
    return cache;
}

std::vector<size_t> TreeRowFilter::findMatches(TreeRows& cache) const
{
    std::vector<size_t> found;
    if (cache.matchesValid && m_filter.narrows(cache.matched))
    {
        for (size_t i : cache.matches)
            if (matches(cache, i))
                found.push_back(i);
    }
    else
    {
        for (size_t i = 0; i < cache.rows.size(); ++i)
            if (matches(cache, i))
                found.push_back(i);
    }
    cache.matched = m_filter;
    cache.matches = found;
    cache.matchesValid = true;
    return found;
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

    TreeRows& cache = rowsOf(tree);
    const std::vector<size_t> found = findMatches(cache);
    std::vector<char> kept(cache.rows.size(), 0);
    for (size_t i : found)
        kept[i] = 1;
    if (!m_pinned.empty())
        for (size_t i = 0; i < cache.rows.size(); ++i)
            if (m_pinned.count(CatalogItemOfRow(cache.rows[i])) != 0)
                kept[i] = 1;
    const std::vector<char> shown =
        ShownRows(cache.parents, [&](size_t i) { return kept[i] != 0; });

    std::vector<signed char> open(cache.rows.size(), -1); // asked once per parent
    for (size_t i = 0; i < cache.rows.size(); ++i)
    {
        const int parent = cache.parents[i];
        if (parent >= 0)
        {
            if (!shown[size_t(parent)])
                continue;
            signed char& isOpen = open[size_t(parent)];
            if (isOpen < 0)
                isOpen = cache.rows[size_t(parent)]->isExpanded() ? 1 : 0;
            if (!isOpen)
                continue;
        }
        setHidden(tree, cache.rows[i], !shown[i]);
    }
    // A few matches are opened up to (applyBelow shows their rows); for many the user types on.
    if (!found.empty() && found.size() <= MaxMatchesOpened)
        openUpTo(root, cache, found);
    if (QTreeWidgetItem* current = tree.currentItem())
        if (QTreeWidgetItem* shownRow = shownRowFor(current); shownRow != current)
            tree.setCurrentItem(shownRow);
    tree.setUpdatesEnabled(updates);
    tree.viewport()->update();
}

void TreeRowFilter::openUpTo(QTreeWidgetItem* root, const TreeRows& cache,
                             const std::vector<size_t>& found)
{
    root->setExpanded(true);
    for (size_t match : found)
    {
        std::vector<QTreeWidgetItem*> path;
        for (int up = cache.parents[match]; up >= 0; up = cache.parents[size_t(up)])
            path.push_back(cache.rows[size_t(up)]);
        for (auto it = path.rbegin(); it != path.rend(); ++it)
            if (!(*it)->isExpanded())
                (*it)->setExpanded(true);
    }
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
