#include "catalog/CatalogItem.h"

#include <algorithm>
#include <boost/make_shared.hpp>

namespace ZEVGis::Data
{

CCatalogItem::CCatalogItem() : m_properties(boost::make_shared<CPropertiesEx>())
{
}

boost::shared_ptr<CPropertyEx> CCatalogItem::GetProperty(const QString& tag)
{
    return m_properties ? m_properties->FindProperty(tag) : boost::shared_ptr<CPropertyEx>();
}

void CCatalogItem::GetSortedSubItems(std::vector<boost::shared_ptr<CCatalogItem>>& out)
{
    out.clear();
    out.reserve(m_subItems.size());
    for (const auto& entry : m_subItems)
        if (entry.second)
            out.push_back(entry.second);
    // The map is in GUID order, so a stable sort by order number breaks ties by GUID.
    std::stable_sort(out.begin(), out.end(), [](const auto& a, const auto& b) {
        return a->GetOrd() < b->GetOrd();
    });
}

void CCatalogItem::SetName(const QString& name)
{
    m_name = name;
    if (CPropertyEx* property = m_properties ? m_properties->NameProperty() : nullptr)
        property->SetValue(CDataBox(property->GetValue().GetType(), name));
}

void CCatalogItem::SetParentItem(boost::shared_ptr<CCatalogItem> parent)
{
    m_parent = parent;
    m_parentGuid = parent ? parent->GetGUID() : QString();
}

void CCatalogItem::SetProperties(boost::shared_ptr<CPropertiesEx> properties)
{
    m_properties = std::move(properties);
    CPropertyEx* property = m_properties ? m_properties->NameProperty() : nullptr;
    if (!property)
        return;
    // Files written while the two could differ hold the user's last edit in the property;
    // a definition written by hand may leave the property empty.
    const CDataBox value = property->GetValue();
    if (value.ToString().isEmpty())
        property->SetValue(CDataBox(value.GetType(), m_name));
    else
        m_name = value.ToString();
}

void CCatalogItem::AddSubItem(boost::shared_ptr<CCatalogItem> item)
{
    if (!item || item.get() == this)
        return;
    m_subItems[item->GetGUID()] = item;
}

void CCatalogItem::RemoveSubItem(const QString& guid)
{
    m_subItems.erase(guid);
}

} // namespace ZEVGis::Data
