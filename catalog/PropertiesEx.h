#pragma once

#include "catalog/Category.h"

#include <boost/shared_ptr.hpp>
#include <vector>

namespace ZEVGis::Data
{

// The categories of one catalog item.
class CPropertiesEx
{
public:
    CPropertiesEx() = default;

    // Makes this a deep copy of `source` (new categories, new properties).
    void MakeDeepCopy(CPropertiesEx& source);

    std::vector<boost::shared_ptr<CCategory>>* GetCategoryVector() { return &m_categories; }
    const std::vector<boost::shared_ptr<CCategory>>& categories() const { return m_categories; }
    void AddCategory(boost::shared_ptr<CCategory> category);
    // Room for `count` categories without reallocation.
    void Reserve(size_t count) { m_categories.reserve(count); }
    boost::shared_ptr<CCategory> GetCategory(const QString& name) const;

    // The first property with this tag in any category, or empty.
    boost::shared_ptr<CPropertyEx> FindProperty(const QString& tag) const;
    // The first CATALOGITEM_NAME property, or null. Looked up on each call, as the item
    // asks for its name: no copies of pointers, so a tree fill stays as fast as before.
    CPropertyEx* NameProperty() const;

private:
    std::vector<boost::shared_ptr<CCategory>> m_categories;
};

} // namespace ZEVGis::Data
