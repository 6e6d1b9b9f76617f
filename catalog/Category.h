#pragma once

#include "catalog/PropertyEx.h"

#include <boost/shared_ptr.hpp>
#include <map>
#include <memory>
#include <vector>

namespace ZEVGis::Data
{

// A named group of properties, in the order they were added.
class CCategory
{
public:
    explicit CCategory(const QString& name = QString()) : m_name(name) {}
    // Copies the properties themselves, not the pointers.
    CCategory(const CCategory& other);
    CCategory& operator=(const CCategory& other);

    QString GetName() const { return m_name; }
    void SetName(const QString& name) { m_name = name; }

    // Adds or, when a property with the same tag exists, replaces it in place.
    void AddPropertyEx(boost::shared_ptr<CPropertyEx> property);
    void RemovePropertyEx(const QString& tag);
    // Room for `count` properties without reallocation (the catalog reader knows the count).
    void Reserve(size_t count) { m_properties.reserve(count); }
    boost::shared_ptr<CPropertyEx> GetPropertyEx(const QString& tag) const;

    // The properties in display order.
    const std::vector<boost::shared_ptr<CPropertyEx>>& GetPropertyExVector() const
    {
        return m_properties;
    }
    // The properties by tag. Built on demand and kept until the category changes, so that
    // a loaded catalog does not pay for one map per category.
    std::map<QString, boost::shared_ptr<CPropertyEx>>* GetPropertyExMapByTag();

private:
    QString m_name;
    std::vector<boost::shared_ptr<CPropertyEx>> m_properties;
    std::unique_ptr<std::map<QString, boost::shared_ptr<CPropertyEx>>> m_byTag;
};

} // namespace ZEVGis::Data
