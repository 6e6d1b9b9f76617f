#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QString>

namespace ZEVGis::Editor
{

// What the editor showed around an edit, kept with the edit so that undo and redo can show
// it again: the current row and the open rows of each tree (by GUID; the root row is ""),
// the order of the rows under each open row (new rows go last, where a refill would put them
// by order number), how far each tree was scrolled, which tree was active and the direction of the next sort,
// and the grid's current row (by tag) and scroll position.
struct TreeViewState
{
    bool hasCurrent = false;
    QString current;
    QSet<QString> expanded;
    QHash<QString, QStringList> childOrder;
    int scroll = 0;
};

struct EditorViewState
{
    bool captured = false;
    int activeTree = 0;
    TreeViewState upper;
    TreeViewState lower;
    bool sortAscending = true;
    QString gridTag;
    int gridScroll = 0;
};

} // namespace ZEVGis::Editor
