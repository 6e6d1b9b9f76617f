#pragma once

#include "editor/ButtonStates.h"

#include <vector>

namespace ZEVGis::Editor
{

// What a context-menu entry of a catalog tree starts.
enum class TreeMenuCommand
{
    None,
    NewGroup,
    NewItem,
    NewItemFromSelected,
    AddToApplication,
    DeleteSelected,
    DeleteGroupContents,
    DeleteRootLevel,
    CopyGroup
};

struct TreeMenuEntry
{
    int id = -1;          // command id; -1 for a separator
    unsigned message = 0; // text of the entry
    TreeMenuCommand command = TreeMenuCommand::None;
    bool enabled = true;
};

// The entries of a context menu for a row of `kind`, in menu order. `upperTree`: the row is
// in the drawing tree (root rows say so by their kind). `mayHoldGroups` enables "new group"
// on a group of the catalog tree.
std::vector<TreeMenuEntry> TreeMenuEntries(TreeRowKind kind, bool upperTree, bool mayHoldGroups);

// What the entry `id` of that menu starts; None for an id the menu does not offer.
TreeMenuCommand TreeMenuCommandOf(const std::vector<TreeMenuEntry>& entries, int id);

} // namespace ZEVGis::Editor
