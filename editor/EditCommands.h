#pragma once

#include "catalog/DataBox.h"
#include "editor/AddToApplication.h"
#include "editor/CatalogEditCommand.h"

#include <QString>
#include <functional>
#include <map>
#include <utility>

namespace ZEVGis::Data
{
class CCatalogItemTemplate;
class CPropertiesEx;
class CPropertyEx;
} // namespace ZEVGis::Data

// Undoable edits of a catalog, one class per kind of edit the editor offers. Each runs the
// editor's own edit logic (CatalogEdits, SiblingOrder, DefaultItemMarking, AddToApplication)
// on its first redo().
namespace ZEVGis::Editor
{

using TemplatePtr = boost::shared_ptr<Data::CCatalogItemTemplate>;

// Edits that add entries: undo takes out what the first redo made, redo puts it back.
class AddingCommand : public CatalogEditCommand
{
public:
    using CatalogEditCommand::CatalogEditCommand;
    void redoEdit() override;
    void undo() override;
    // The entries made, in the order made (empty when nothing was).
    std::vector<ItemPtr> made() const;

protected:
    // Makes the entries; those the catalog took are listed in `made`.
    virtual void make(std::vector<ItemPtr>& made) = 0;

private:
    bool m_done = false;
    std::vector<EntryPlacement> m_placements;
};

// "NEW": an item from a template inside `group`, extended by `extend` (the catalog manager's
// extension with the catalog's definitions).
class NewItemCommand : public AddingCommand
{
public:
    NewItemCommand(boost::shared_ptr<Data::CCatalog> catalog, ItemPtr group, TemplatePtr tmpl,
                   std::function<void(const ItemPtr&)> extend);

protected:
    void make(std::vector<ItemPtr>& made) override;

private:
    ItemPtr m_group;
    TemplatePtr m_template;
    std::function<void(const ItemPtr&)> m_extend;
};

// The second "NEW": a copy of `source` inside `group`.
class NewFromItemCommand : public AddingCommand
{
public:
    NewFromItemCommand(boost::shared_ptr<Data::CCatalog> catalog, ItemPtr source, ItemPtr group,
                       TemplatePtr tmpl);

protected:
    void make(std::vector<ItemPtr>& made) override;

private:
    ItemPtr m_source;
    ItemPtr m_group;
    TemplatePtr m_template;
};

// "AG": a group inside `parent`, or at the root level. The name then given to it (a
// RenameCommand made as its naming) merges into it: undo takes the named group out, redo
// puts it back with its name.
class NewGroupCommand : public AddingCommand
{
public:
    NewGroupCommand(boost::shared_ptr<Data::CCatalog> catalog, Data::CCatalogItem* parent,
                    int depth, TemplatePtr tmpl, QString fallbackName);
    int id() const override { return NamingMerge; }
    bool mergeWith(const QUndoCommand* other) override;

protected:
    void make(std::vector<ItemPtr>& made) override;

private:
    Data::CCatalogItem* m_parent;
    int m_depth;
    TemplatePtr m_template;
    QString m_fallbackName;
};

// Copy of a group with its direct children at the root level; made() is the group.
class CopyGroupCommand : public AddingCommand
{
public:
    CopyGroupCommand(boost::shared_ptr<Data::CCatalog> catalog, Data::CCatalogItem* source);
    // The copied children the catalog took, in the order made.
    const std::vector<ItemPtr>& children() const { return m_children; }

protected:
    void make(std::vector<ItemPtr>& made) override;

private:
    Data::CCatalogItem* m_source;
    std::vector<ItemPtr> m_children;
};

// Entries of the drawing's copy into the catalog; `result` hears why nothing was copied.
class AddToApplicationCommand : public AddingCommand
{
public:
    AddToApplicationCommand(boost::shared_ptr<Data::CCatalog> source,
                            boost::shared_ptr<Data::CCatalog> target, Data::CCatalogItem* entry,
                            AddToApplicationResult& result);

protected:
    void make(std::vector<ItemPtr>& made) override;

private:
    boost::shared_ptr<Data::CCatalog> m_source;
    Data::CCatalogItem* m_entry;
    AddToApplicationResult* m_result;
};

// Deletes entries with everything below them; undo brings each back whole, with its GUIDs,
// order numbers and properties (the same objects).
class DeleteCommand : public CatalogEditCommand
{
public:
    DeleteCommand(boost::shared_ptr<Data::CCatalog> catalog, std::vector<ItemPtr> entries);
    void redoEdit() override;
    void undo() override;

private:
    std::vector<ItemPtr> m_entries;
    std::vector<EntryPlacement> m_placements;
    bool m_done = false;
};

// A dragged item moved into the group of the drop target, or with `copy` a copy made there.
class DropCommand : public AddingCommand
{
public:
    DropCommand(boost::shared_ptr<Data::CCatalog> catalog, ItemPtr source,
                Data::CCatalogItem* target, bool copy, TemplatePtr tmpl);
    void redoEdit() override;
    void undo() override;

protected:
    void make(std::vector<ItemPtr>& made) override;

private:
    void moveBack();

    ItemPtr m_source;
    Data::CCatalogItem* m_target;
    bool m_copy;
    TemplatePtr m_template;
    bool m_moved = false;
    ItemPtr m_oldParent;
    QString m_oldParentGuid;
    bool m_wasInOldParent = false;
    bool m_wasRootElement = false;
    ItemPtr m_newParent;
};

// The name given in the tree's label editor (the name property follows the name).
// `naming`: the label editor opened with a new entry, whose command takes this one in.
class RenameCommand : public CatalogEditCommand
{
public:
    RenameCommand(boost::shared_ptr<Data::CCatalog> catalog, Data::CCatalogItem* item,
                  QString name, bool naming = false);
    int id() const override { return m_naming ? NamingMerge : -1; }
    Data::CCatalogItem* item() const { return m_item; }
    void redoEdit() override;
    void undo() override;

private:
    Data::CCatalogItem* m_item;
    QString m_oldName;
    QString m_newName;
    boost::shared_ptr<Data::CPropertyEx> m_nameProperty;
    Data::CDataBox m_oldNameValue;
    bool m_naming;
    bool m_done = false;
};

// Edits that change order numbers: the numbers before and after of the entries changed.
class OrderCommand : public CatalogEditCommand
{
public:
    OrderCommand(boost::shared_ptr<Data::CCatalog> catalog, std::vector<ItemPtr> siblings);
    void redoEdit() override;
    void undo() override;

protected:
    virtual void reorder(const std::vector<ItemPtr>& siblings) = 0;

private:
    std::vector<ItemPtr> m_siblings;
    struct Change
    {
        ItemPtr item;
        int before;
        int after;
    };
    std::vector<Change> m_changes;
    bool m_done = false;
};

// "Up" / "Down": the item with `guid` swapped with its neighbour in `siblings`.
class MoveCommand : public OrderCommand
{
public:
    MoveCommand(boost::shared_ptr<Data::CCatalog> catalog, std::vector<ItemPtr> siblings,
                QString guid, bool down);

protected:
    void reorder(const std::vector<ItemPtr>& siblings) override;

private:
    QString m_guid;
    bool m_down;
};

// "SORT": the siblings renumbered by name.
class SortCommand : public OrderCommand
{
public:
    SortCommand(boost::shared_ptr<Data::CCatalog> catalog, std::vector<ItemPtr> siblings,
                bool ascending);

protected:
    void reorder(const std::vector<ItemPtr>& siblings) override;

private:
    bool m_ascending;
};

// "*": the item made the default of its equipment type.
class DefaultMarkCommand : public CatalogEditCommand
{
public:
    DefaultMarkCommand(boost::shared_ptr<Data::CCatalog> catalog, Data::CCatalogItem* item);
    void redoEdit() override;
    void undo() override;
    // The items whose mark changed, with the mark they have now.
    std::vector<std::pair<Data::CCatalogItem*, bool>> marks() const;

private:
    Data::CCatalogItem* m_item;
    struct Change
    {
        Data::CCatalogItem* item;
        bool before;
        bool after;
    };
    std::vector<Change> m_changes;
    bool m_done = false;
    bool m_undone = false;
};

// A value changed in the property grid. The grid has written it already: the command is made
// with the value (and the item's name) from before and after.
class PropertyEditCommand : public CatalogEditCommand
{
public:
    struct State
    {
        Data::CDataBox value;
        QString name;
    };
    PropertyEditCommand(boost::shared_ptr<Data::CCatalog> catalog, Data::CCatalogItem* item,
                        Data::CPropertyEx* property, State before, State after);
    void redoEdit() override;
    void undo() override;

private:
    void apply(const State& state);

    Data::CCatalogItem* m_item;
    Data::CPropertyEx* m_property;
    State m_before;
    State m_after;
};

// Ctrl+"NEW": the item brought up to its template's definition. The upgrade works on a copy
// of the item's properties, so undo gives back the very set the item had.
class UpgradeItemCommand : public CatalogEditCommand
{
public:
    // `upgrade` runs the catalog manager's upgrade and extension; it returns the extension's
    // result.
    UpgradeItemCommand(boost::shared_ptr<Data::CCatalog> catalog, Data::CCatalogItem* item,
                       std::function<int(Data::CCatalogItem*)> upgrade);
    void redoEdit() override;
    void undo() override;
    int extended() const { return m_extended; }

private:
    Data::CCatalogItem* m_item;
    std::function<int(Data::CCatalogItem*)> m_upgrade;
    boost::shared_ptr<Data::CPropertiesEx> m_before;
    boost::shared_ptr<Data::CPropertiesEx> m_after;
    int m_extended = 0;
    bool m_done = false;
};

// What the import/export dialog did to the catalog: the entries it added and those it took
// out, found by comparing the catalog's entries with `before` (its entries when the dialog
// opened). Made after the fact; the first redo changes nothing.
class ImportCommand : public CatalogEditCommand
{
public:
    ImportCommand(boost::shared_ptr<Data::CCatalog> catalog,
                  const std::map<QString, ItemPtr>& before);
    void redoEdit() override;
    void undo() override;

private:
    std::vector<EntryPlacement> m_added;
    std::vector<ItemPtr> m_removed;
    bool m_done = false;
};

} // namespace ZEVGis::Editor
