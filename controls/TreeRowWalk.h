#pragma once

#include <QTreeWidgetItem>
#include <vector>

namespace ZEVGis::Utility
{

// Visits `row` and the rows below it, each before its children, without recursion (catalogs
// nest deep enough to matter). `visit(row)` returns whether to go below that row.
template <typename Visit>
void WalkRows(QTreeWidgetItem* row, Visit&& visit)
{
    if (!row)
        return;
    std::vector<QTreeWidgetItem*> pending{row};
    while (!pending.empty())
    {
        QTreeWidgetItem* next = pending.back();
        pending.pop_back();
        if (!visit(next))
            continue;
        for (int i = 0; i < next->childCount(); ++i)
            pending.push_back(next->child(i));
    }
}

} // namespace ZEVGis::Utility
