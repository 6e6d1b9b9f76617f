#include "editor/EditCommands.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogXml.h"
#include "editor/CatalogEdits.h"
#include "editor/DefaultItemMarking.h"
#include "editor/SiblingOrder.h"

#include <boost/make_shared.hpp>

namespace ZEVGis::Editor
{

using Data::CCatalog;
using Data::CCatalogItem;

// ---- Adding ---------------------------------------------------------------------------

void AddingCommand::redoEdit()
{
    if (m_done)
    {
        for (const EntryPlacement& placement : m_placements)
            PutBack(*m_catalog, placement);
        return;
    }
    m_done = true;
    std::vector<ItemPtr> made;
    make(made);
    for (const ItemPtr& entry : made)
        m_placements.push_back(PlacementOf(*m_catalog, entry));
    if (m_placements.empty())
        setObsolete(true);
}

void AddingCommand::undo()
{
    for (auto it = m_placements.rbegin(); it != m_placements.rend(); ++it)
        TakeOut(*m_catalog, *it);
}

std::vector<ItemPtr> AddingCommand::made() const
{
    std::vector<ItemPtr> entries;
    for (const EntryPlacement& placement : m_placements)
        entries.push_back(placement.entry);
    return entries;
}

NewItemCommand::NewItemCommand(boost::shared_ptr<CCatalog> catalog, ItemPtr group,
                               TemplatePtr tmpl, std::function<void(const ItemPtr&)> extend)
    : AddingCommand(std::move(catalog)), m_group(std::move(group)), m_template(std::move(tmpl)),
      m_extend(std::move(extend))
{
}

void NewItemCommand::make(std::vector<ItemPtr>& made)
{
    const ItemPtr item = NewItemInGroup(*m_catalog, m_group, m_template.get());
    if (!item)
        return;
    if (m_extend)
        m_extend(item);
    made.push_back(item);
}

NewFromItemCommand::NewFromItemCommand(boost::shared_ptr<CCatalog> catalog, ItemPtr source,
                                       ItemPtr group, TemplatePtr tmpl)
    : AddingCommand(std::move(catalog)), m_source(std::move(source)), m_group(std::move(group)),
      m_template(std::move(tmpl))
{
}

void NewFromItemCommand::make(std::vector<ItemPtr>& made)
{
    if (m_source)
        if (ItemPtr item = CopyItemIntoGroup(*m_catalog, *m_source, m_group, m_template.get()))
            made.push_back(item);
}

NewGroupCommand::NewGroupCommand(boost::shared_ptr<CCatalog> catalog, CCatalogItem* parent,
                                 int depth, TemplatePtr tmpl, QString fallbackName)
    : AddingCommand(std::move(catalog)), m_parent(parent), m_depth(depth),
      m_template(std::move(tmpl)), m_fallbackName(std::move(fallbackName))
{
}

void NewGroupCommand::make(std::vector<ItemPtr>& made)
{
    const NewGroupResult result =
        NewGroup(*m_catalog, m_parent, m_depth, m_template.get(), m_fallbackName);
    if (result.registered)
        made.push_back(result.group);
}

bool NewGroupCommand::mergeWith(const QUndoCommand* other)
{
    // The group object keeps the name: putting it back on redo brings the name with it.
    const auto* naming = dynamic_cast<const RenameCommand*>(other);
    const std::vector<ItemPtr> group = made();
    return naming && naming->id() == NamingMerge && group.size() == 1 &&
           naming->item() == group.front().get();
}

CopyGroupCommand::CopyGroupCommand(boost::shared_ptr<CCatalog> catalog, CCatalogItem* source)
    : AddingCommand(std::move(catalog)), m_source(source)
{
}

void CopyGroupCommand::make(std::vector<ItemPtr>& made)
{
    if (!m_source)
        return;
    // The children are below the group: taking the group out takes them with it.
    const GroupCopy copy = CopyGroup(*m_catalog, *m_source);
    if (copy.registered)
        made.push_back(copy.group);
    m_children = copy.children;
}

AddToApplicationCommand::AddToApplicationCommand(boost::shared_ptr<CCatalog> source,
                                                 boost::shared_ptr<CCatalog> target,
                                                 CCatalogItem* entry,
                                                 AddToApplicationResult& result)
    : AddingCommand(std::move(target)), m_source(std::move(source)), m_entry(entry),
      m_result(&result)
{
}

void AddToApplicationCommand::make(std::vector<ItemPtr>& made)
{
    *m_result = AddToApplication(*m_source, *m_catalog, m_entry, &made);
    m_result = nullptr;
}

// ---- Deleting -------------------------------------------------------------------------

DeleteCommand::DeleteCommand(boost::shared_ptr<CCatalog> catalog, std::vector<ItemPtr> entries)
    : CatalogEditCommand(std::move(catalog)), m_entries(std::move(entries))
{
}

void DeleteCommand::redoEdit()
{
    if (m_done)
    {
        for (const EntryPlacement& placement : m_placements)
            TakeOut(*m_catalog, placement);
        return;
    }
    m_done = true;
    // Each is recorded just before it goes: where it sits then is where undo puts it.
    for (const ItemPtr& entry : m_entries)
    {
        if (!entry)
            continue;
        m_placements.push_back(PlacementOf(*m_catalog, entry));
        TakeOut(*m_catalog, m_placements.back());
    }
    m_entries.clear();
    if (m_placements.empty())
        setObsolete(true);
}

void DeleteCommand::undo()
{
    for (auto it = m_placements.rbegin(); it != m_placements.rend(); ++it)
        PutBack(*m_catalog, *it);
}

// ---- Drag and drop --------------------------------------------------------------------

DropCommand::DropCommand(boost::shared_ptr<CCatalog> catalog, ItemPtr source,
                         CCatalogItem* target, bool copy, TemplatePtr tmpl)
    : AddingCommand(std::move(catalog)), m_source(std::move(source)), m_target(target),
      m_copy(copy), m_template(std::move(tmpl))
{
}

void DropCommand::make(std::vector<ItemPtr>& made)
{
    // A copy goes into the target group, or beside the item dropped on.
    ItemPtr group = m_target ? m_catalog->GetItembyGuid(m_target->GetGUID()) : ItemPtr();
    if (group && !m_source->IsGroup() && !group->IsGroup())
        group = group->GetParentItem();
    if (group)
        if (ItemPtr item = CopyItemIntoGroup(*m_catalog, *m_source, group, m_template.get()))
            made.push_back(item);
}

void DropCommand::redoEdit()
{
    if (m_copy || !m_source)
    {
        AddingCommand::redoEdit();
        return;
    }
    if (m_moved)
    {
        MoveIntoGroup(*m_catalog, *m_source, *m_newParent);
        return;
    }
    m_oldParent = m_source->GetParentItem();
    m_oldParentGuid = m_source->GetParentItemGuid();
    m_wasInOldParent =
        m_oldParent && m_oldParent->GetSubItems()->count(m_source->GetGUID()) != 0;
    m_wasRootElement = m_catalog->GetRootElementsMap()->count(m_source->GetGUID()) != 0;
    if (!m_target || m_source->IsGroup() || !MoveIntoGroup(*m_catalog, *m_source, *m_target))
    {
        setObsolete(true);
        return;
    }
    m_moved = true;
    m_newParent = m_source->GetParentItem();
    if (m_newParent == m_oldParent && m_wasInOldParent &&
        m_oldParentGuid == m_newParent->GetGUID())
        setObsolete(true);
}

void DropCommand::undo()
{
    if (m_copy || !m_source)
        AddingCommand::undo();
    else if (m_moved)
        moveBack();
}

void DropCommand::moveBack()
{
    const QString guid = m_source->GetGUID();
    if (m_newParent)
        m_newParent->RemoveSubItem(guid);
    if (m_oldParent && m_wasInOldParent)
        m_oldParent->AddSubItem(m_source);
    if (m_wasRootElement)
        (*m_catalog->GetRootElementsMap())[guid] = m_source;
    m_source->SetParentItem(m_oldParent);
    m_source->SetParentItemGuid(m_oldParentGuid);
}

// ---- Values ---------------------------------------------------------------------------

RenameCommand::RenameCommand(boost::shared_ptr<CCatalog> catalog, CCatalogItem* item,
                             QString name, bool naming)
    : CatalogEditCommand(std::move(catalog)), m_item(item), m_newName(std::move(name)),
      m_naming(naming)
{
}

void RenameCommand::redoEdit()
{
    if (!m_item)
    {
        setObsolete(true);
        return;
    }
    if (!m_done)
    {
        m_done = true;
        m_oldName = m_item->GetName();
        m_nameProperty = m_item->GetProperty(QString::fromUtf16(Data::CatalogItemNameTag));
        if (m_nameProperty)
            m_oldNameValue = m_nameProperty->GetValue();
        m_item->SetName(m_newName);
        if (m_oldName == m_newName && (!m_nameProperty || m_nameProperty->GetValue() == m_oldNameValue))
            setObsolete(true);
        return;
    }
    m_item->SetName(m_newName);
}

void RenameCommand::undo()
{
    m_item->SetName(m_oldName);
    if (m_nameProperty)
        m_nameProperty->SetValue(m_oldNameValue);
}

OrderCommand::OrderCommand(boost::shared_ptr<CCatalog> catalog, std::vector<ItemPtr> siblings)
    : CatalogEditCommand(std::move(catalog)), m_siblings(std::move(siblings))
{
}

void OrderCommand::redoEdit()
{
    if (m_done)
    {
        for (const Change& change : m_changes)
            change.item->SetOrd(change.after);
        return;
    }
    m_done = true;
    std::vector<int> before;
    before.reserve(m_siblings.size());
    for (const ItemPtr& sibling : m_siblings)
        before.push_back(sibling ? sibling->GetOrd() : 0);
    reorder(m_siblings);
    for (size_t i = 0; i < m_siblings.size(); ++i)
        if (m_siblings[i] && m_siblings[i]->GetOrd() != before[i])
            m_changes.push_back({m_siblings[i], before[i], m_siblings[i]->GetOrd()});
    m_siblings.clear();
    if (m_changes.empty())
        setObsolete(true);
}

void OrderCommand::undo()
{
    for (auto it = m_changes.rbegin(); it != m_changes.rend(); ++it)
        it->item->SetOrd(it->before);
}

MoveCommand::MoveCommand(boost::shared_ptr<CCatalog> catalog, std::vector<ItemPtr> siblings,
                         QString guid, bool down)
    : OrderCommand(std::move(catalog), std::move(siblings)), m_guid(std::move(guid)), m_down(down)
{
}

void MoveCommand::reorder(const std::vector<ItemPtr>& siblings)
{
    SwapWithNeighbour(siblings, m_guid, m_down);
}

SortCommand::SortCommand(boost::shared_ptr<CCatalog> catalog, std::vector<ItemPtr> siblings,
                         bool ascending)
    : OrderCommand(std::move(catalog), std::move(siblings)), m_ascending(ascending)
{
}

void SortCommand::reorder(const std::vector<ItemPtr>& siblings)
{
    RenumberByName(siblings, m_ascending);
}

DefaultMarkCommand::DefaultMarkCommand(boost::shared_ptr<CCatalog> catalog, CCatalogItem* item)
    : CatalogEditCommand(std::move(catalog)), m_item(item)
{
}

void DefaultMarkCommand::redoEdit()
{
    m_undone = false;
    if (m_done)
    {
        for (const Change& change : m_changes)
            change.item->SetIsDefault(change.after);
        return;
    }
    m_done = true;
    if (!m_item || m_item->IsGroup())
    {
        setObsolete(true);
        return;
    }
    std::vector<CCatalogItem*> touched = ItemsOfSameType(*m_catalog, *m_item);
    touched.push_back(m_item);
    std::vector<bool> before;
    for (CCatalogItem* item : touched)
        before.push_back(item->GetIsDefault() != 0);
    MarkDefaultItem(*m_catalog, *m_item);
    for (size_t i = 0; i < touched.size(); ++i)
        if ((touched[i]->GetIsDefault() != 0) != before[i])
            m_changes.push_back({touched[i], before[i], touched[i]->GetIsDefault() != 0});
    if (m_changes.empty())
        setObsolete(true);
}

void DefaultMarkCommand::undo()
{
    m_undone = true;
    for (auto it = m_changes.rbegin(); it != m_changes.rend(); ++it)
        it->item->SetIsDefault(it->before);
}

std::vector<std::pair<CCatalogItem*, bool>> DefaultMarkCommand::marks() const
{
    std::vector<std::pair<CCatalogItem*, bool>> marks;
    for (const Change& change : m_changes)
        marks.emplace_back(change.item, m_undone ? change.before : change.after);
    return marks;
}

PropertyEditCommand::PropertyEditCommand(boost::shared_ptr<CCatalog> catalog, CCatalogItem* item,
                                         Data::CPropertyEx* property, State before, State after)
    : CatalogEditCommand(std::move(catalog)), m_item(item), m_property(property),
      m_before(std::move(before)), m_after(std::move(after))
{
}

void PropertyEditCommand::apply(const State& state)
{
    // The name first: renaming writes the name property, which then gets its exact value.
    if (m_item && m_item->GetName() != state.name)
        m_item->SetName(state.name);
    if (m_property)
        m_property->SetValue(state.value);
}

void PropertyEditCommand::redoEdit()
{
    if (!m_property || (m_before.value == m_after.value && m_before.name == m_after.name))
    {
        setObsolete(true);
        return;
    }
    apply(m_after);
}

void PropertyEditCommand::undo()
{
    apply(m_before);
}

UpgradeItemCommand::UpgradeItemCommand(boost::shared_ptr<CCatalog> catalog, CCatalogItem* item,
                                       std::function<int(CCatalogItem*)> upgrade)
    : CatalogEditCommand(std::move(catalog)), m_item(item), m_upgrade(std::move(upgrade))
{
}

namespace
{
// The item as the catalog file holds it, without its sub-items.
QByteArray ItemText(CCatalogItem& item)
{
    Data::CatalogXml::XmlOut out;
    Data::CatalogXml::writeItem(out, item, false, true);
    return out.take();
}
} // namespace

void UpgradeItemCommand::redoEdit()
{
    if (m_done)
    {
        m_item->SetProperties(m_after);
        return;
    }
    m_done = true;
    if (!m_item || !m_upgrade)
    {
        setObsolete(true);
        return;
    }
    const QByteArray before = ItemText(*m_item);
    m_before = m_item->GetProperties();
    auto working = boost::make_shared<Data::CPropertiesEx>();
    if (m_before)
        working->MakeDeepCopy(*m_before);
    m_item->SetProperties(working);
    m_extended = m_upgrade(m_item);
    m_after = m_item->GetProperties();
    if (ItemText(*m_item) == before)
    {
        // Nothing came of it: the item keeps the very set it had.
        m_item->SetProperties(m_before);
        setObsolete(true);
    }
}

void UpgradeItemCommand::undo()
{
    m_item->SetProperties(m_before);
}

// ---- Import ---------------------------------------------------------------------------

ImportCommand::ImportCommand(boost::shared_ptr<CCatalog> catalog,
                             const std::map<QString, ItemPtr>& before)
    : CatalogEditCommand(std::move(catalog))
{
    const auto* after = m_catalog->GetAllElementsMap();
    for (const auto& [guid, item] : *after)
        if (const auto was = before.find(guid); item && (was == before.end() || was->second != item))
            m_added.push_back(PlacementOf(*m_catalog, item));
    for (const auto& [guid, item] : before)
        if (const auto is = after->find(guid); item && (is == after->end() || is->second != item))
            m_removed.push_back(item);
}

void ImportCommand::redoEdit()
{
    if (!m_done)
    {
        m_done = true;
        if (m_added.empty() && m_removed.empty())
            setObsolete(true);
        return;
    }
    for (const ItemPtr& item : m_removed)
        m_catalog->DeleteItem(item);
    for (const EntryPlacement& placement : m_added)
        PutBack(*m_catalog, placement);
}

void ImportCommand::undo()
{
    // What came in goes first: an entry taken out may come back under the same GUID.
    for (auto it = m_added.rbegin(); it != m_added.rend(); ++it)
        TakeOut(*m_catalog, *it);
    for (const ItemPtr& item : m_removed)
    {
        if (const ItemPtr parent = item->GetParentItem())
            parent->AddSubItem(item);
        m_catalog->AddItem(item);
    }
}

} // namespace ZEVGis::Editor
