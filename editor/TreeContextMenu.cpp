#include "editor/TreeContextMenu.h"

namespace ZEVGis::Editor
{

std::vector<TreeMenuEntry> TreeMenuEntries(TreeRowKind kind, bool upperTree, bool mayHoldGroups)
{
    using C = TreeMenuCommand;
    const TreeMenuEntry separator;
    switch (kind)
    {
    case TreeRowKind::LowerRoot:
        return {{0, 6540, C::NewGroup}, separator, {1, 6539, C::DeleteRootLevel}};
    case TreeRowKind::UpperRoot:
        return {{0, 7446, C::AddToApplication}, separator, {1, 6539, C::DeleteRootLevel}};
    case TreeRowKind::Group:
        if (upperTree)
            return {{0, 362, C::DeleteSelected}, separator, {1, 7447, C::AddToApplication}};
        return {{0, 6540, C::NewGroup, mayHoldGroups},
                {1, 6535, C::NewItem},
                separator,
                {2, 6541, C::DeleteGroupContents},
                {3, 362, C::DeleteSelected},
                separator,
                {4, 10769, C::CopyGroup}};
    case TreeRowKind::Item:
        if (upperTree)
            return {{0, 7447, C::AddToApplication}, separator, {2, 6542, C::DeleteSelected}};
        return {{0, 6535, C::NewItem},
                {1, 6537, C::NewItemFromSelected},
                separator,
                {2, 6542, C::DeleteSelected}};
    }
    return {};
}

TreeMenuCommand TreeMenuCommandOf(const std::vector<TreeMenuEntry>& entries, int id)
{
    for (const TreeMenuEntry& entry : entries)
        if (entry.id >= 0 && entry.id == id)
            return entry.command;
    return TreeMenuCommand::None;
}

} // namespace ZEVGis::Editor
