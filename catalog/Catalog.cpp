#include "catalog/Catalog.h"

#include <algorithm>
#include <unordered_set>
#include <boost/make_shared.hpp>

namespace ZEVGis::Data
{

CCatalog::CCatalog() : m_factory(boost::make_shared<CDefaultCatalogItemFactory>())
{
}

void CCatalog::SetReference(const QString& reference)
{
    m_reference = reference;
    if (m_factory)
        m_factory->SetCatalogReference(reference);
}

void CCatalog::SetFactory(boost::shared_ptr<ICatalogItemFactory> factory)
{
    m_factory = factory;
}

void CCatalog::GetSortedRootElements(std::vector<boost::shared_ptr<CCatalogItem>>& out)
{
    out.clear();
    out.reserve(m_rootElements.size());
    for (const auto& entry : m_rootElements)
        if (entry.second)
            out.push_back(entry.second);
    std::stable_sort(out.begin(), out.end(), [](const auto& a, const auto& b) {
        return a->GetOrd() < b->GetOrd();
    });
}

boost::shared_ptr<CCatalogItem> CCatalog::GetItembyGuid(const QString& guid) const
{
    auto it = m_allElements.find(guid);
    return it == m_allElements.end() ? boost::shared_ptr<CCatalogItem>() : it->second;
}

int CCatalog::AddItem(boost::shared_ptr<CCatalogItem> item)
{
    if (!item)
        return 0;
    const QString guid = item->GetGUID();
    if (guid.isEmpty())
        return 0;
    auto it = m_allElements.find(guid);
    if (it != m_allElements.end() && it->second != item)
        return 0;
    m_allElements[guid] = item;
    if (!item->GetParentItem())
        m_rootElements[guid] = item;
    else
        m_rootElements.erase(guid); // re-added after it got a parent
    return 1;
}

void CCatalog::DeleteItem(boost::shared_ptr<CCatalogItem> item)
{
    if (!item)
        return;
    // Detach from the parent first (by pointer, else by the parent GUID it names).
    boost::shared_ptr<CCatalogItem> parent = item->GetParentItem();
    if (!parent && !item->GetParentItemGuid().isEmpty())
        parent = GetItembyGuid(item->GetParentItemGuid());
    if (parent) {
        auto* siblings = parent->GetSubItems();
        auto it = siblings->find(item->GetGUID());
        if (it != siblings->end() && it->second == item)
            siblings->erase(it);
    }

    // Then unregister the item and everything below it (iteratively: trees may be deep).
    std::vector<boost::shared_ptr<CCatalogItem>> pending{item};
    std::unordered_set<const CCatalogItem*> seen; // a broken tree may hold a cycle
    while (!pending.empty()) {
        boost::shared_ptr<CCatalogItem> current = pending.back();
        pending.pop_back();
        if (!seen.insert(current.get()).second)
            continue;
        const QString guid = current->GetGUID();
        auto all = m_allElements.find(guid);
        if (all != m_allElements.end() && all->second == current)
            m_allElements.erase(all);
        auto root = m_rootElements.find(guid);
        if (root != m_rootElements.end() && root->second == current)
            m_rootElements.erase(root);
        for (const auto& entry : *current->GetSubItems())
            if (entry.second && entry.second != current)
                pending.push_back(entry.second);
    }
}

void CCatalog::DeleteItem(const QString& guid)
{
    DeleteItem(GetItembyGuid(guid));
}

void CCatalog::Clear()
{
    m_rootElements.clear();
    m_allElements.clear();
}

} // namespace ZEVGis::Data
