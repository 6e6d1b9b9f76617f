#include "catalog/Category.h"

#include <boost/make_shared.hpp>

namespace ZEVGis::Data
{

CCategory::CCategory(const CCategory& other) : m_name(other.m_name)
{
    m_properties.reserve(other.m_properties.size());
    for (const auto& property : other.m_properties)
        if (property)
            m_properties.push_back(boost::make_shared<CPropertyEx>(*property));
}

CCategory& CCategory::operator=(const CCategory& other)
{
    if (this == &other)
        return *this;
    std::vector<boost::shared_ptr<CPropertyEx>> copies;
    copies.reserve(other.m_properties.size());
    for (const auto& property : other.m_properties)
        if (property)
            copies.push_back(boost::make_shared<CPropertyEx>(*property));
    m_name = other.m_name;
    m_properties.swap(copies);
    m_byTag.reset();
    return *this;
}

void CCategory::AddPropertyEx(boost::shared_ptr<CPropertyEx> property)
{
    if (!property)
        return;
    const QString tag = property->GetTag();
    for (auto& existing : m_properties) {
        if (existing && existing->GetTag() == tag) {
            existing = property;
            if (m_byTag)
                (*m_byTag)[tag] = property;
            return;
        }
    }
    m_properties.push_back(property);
    if (m_byTag)
        (*m_byTag)[tag] = property;
}

void CCategory::RemovePropertyEx(const QString& tag)
{
    for (auto it = m_properties.begin(); it != m_properties.end(); ++it) {
        if (*it && (*it)->GetTag() == tag) {
            m_properties.erase(it);
            m_byTag.reset();
            return;
        }
    }
}

boost::shared_ptr<CPropertyEx> CCategory::GetPropertyEx(const QString& tag) const
{
    for (const auto& property : m_properties)
        if (property && property->GetTag() == tag)
            return property;
    return {};
}

std::map<QString, boost::shared_ptr<CPropertyEx>>* CCategory::GetPropertyExMapByTag()
{
    // A caller may have renamed a property through its pointer (SetTag); rebuild when the
    // cached keys no longer match the properties.
    bool stale = !m_byTag || m_byTag->size() != m_properties.size();
    if (!stale) {
        for (const auto& property : m_properties) {
            auto it = m_byTag->find(property->GetTag());
            if (it == m_byTag->end() || it->second != property) {
                stale = true;
                break;
            }
        }
    }
    if (stale) {
        auto map = std::make_unique<std::map<QString, boost::shared_ptr<CPropertyEx>>>();
        for (const auto& property : m_properties)
            if (property)
                map->emplace(property->GetTag(), property); // first of equal tags wins
        m_byTag = std::move(map);
    }
    return m_byTag.get();
}

} // namespace ZEVGis::Data
