#pragma once

#include <optional>

namespace ZEVGis::Data
{
class CCatalogItem;
class CCatalogMetadata;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// What kind of tree row is selected.
enum class TreeRowKind
{
    LowerRoot, // the root row of the catalog tree
    UpperRoot, // the root row of the drawing tree
    Group,
    Item
};

// Enabled state of the editing buttons for one selection.
struct EditorButtonStates
{
    bool newGroup = false;   // 107
    bool remove = false;     // 108
    bool newItem = false;    // 105
    bool newItems = false;   // 110
    bool moveUpDown = false; // 119, 118
    bool sort = false;       // 120
    bool setDefault = false; // 123

    bool operator==(const EditorButtonStates&) const = default;
};

// Number of ancestors above the item (0 for a root element).
int ItemDepth(Data::CCatalogItem& item);

// Whether a new sub-group may go into `group`: its depth is below maxDepthLevel - 1 and
// it holds nothing or only groups. Null stands for the root row, which always may.
bool MayHoldGroups(Data::CCatalogItem* group, int maxDepthLevel);

// The row kind of a row showing `item` (null: a root row of the given tree).
TreeRowKind RowKindOf(Data::CCatalogItem* item, bool upperTree);

// Button states for a selection; empty when the buttons are to stay as they are (the
// drawing tree's root). `metadata` may be null (no catalog chosen).
std::optional<EditorButtonStates> ButtonStatesForSelection(TreeRowKind kind,
                                                           Data::CCatalogItem* item,
                                                           const Data::CCatalogMetadata* metadata);

} // namespace ZEVGis::Editor
