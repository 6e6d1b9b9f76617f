#pragma once

#include "editor/EditorViewState.h"

#include <QUndoCommand>
#include <boost/shared_ptr.hpp>
#include <vector>

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

using ItemPtr = boost::shared_ptr<Data::CCatalogItem>;

// An edit of one catalog, done by redo() and taken back by undo(). The first redo() makes
// the edit and remembers the objects it made or changed; a later redo() puts those same
// objects back, so GUIDs, order numbers and properties are exactly those of the first time.
// An edit that changed nothing makes itself obsolete and is not kept.
class CatalogEditCommand : public QUndoCommand
{
public:
    // Ids of commands that merge: a new entry and the name given to it in the label editor
    // that opened with it are one edit.
    enum MergeId
    {
        NamingMerge = 1
    };

    explicit CatalogEditCommand(boost::shared_ptr<Data::CCatalog> catalog);

    Data::CCatalog* catalog() const { return m_catalog.get(); }

    // Makes the edit before the command goes on a stack, whose push then does not make it
    // again. The stack drops what there is to redo on every push, also of an edit that
    // changed nothing: run ahead, such an edit is seen obsolete and never pushed.
    void runAhead();
    void redo() final;

    // The editor's view before the edit and after it (set by the dialog).
    EditorViewState viewBefore;
    EditorViewState viewAfter;

protected:
    // The edit itself: made on the first call, put back on the later ones.
    virtual void redoEdit() = 0;

    boost::shared_ptr<Data::CCatalog> m_catalog;

private:
    bool m_ranAhead = false;
};

// Where an entry sits in a catalog: under its parent (or at the root level), with the
// entries of its subtree that the catalog had registered.
struct EntryPlacement
{
    ItemPtr entry;
    ItemPtr parent;           // null: a root element
    bool inParent = false;    // listed among the parent's sub-items
    std::vector<ItemPtr> registered; // the entry and its descendants known to the catalog
};

// Records where `entry` sits now (before it is taken out of `catalog`).
EntryPlacement PlacementOf(Data::CCatalog& catalog, const ItemPtr& entry);
// Takes the entry with its subtree out of the catalog and out of its parent.
void TakeOut(Data::CCatalog& catalog, const EntryPlacement& placement);
// Puts it back as recorded.
void PutBack(Data::CCatalog& catalog, const EntryPlacement& placement);

} // namespace ZEVGis::Editor
