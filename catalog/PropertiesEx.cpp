#include "catalog/PropertiesEx.h"

#include "catalog/CatalogItem.h"

#include <boost/make_shared.hpp>

namespace ZEVGis::Data
{

void CPropertiesEx::MakeDeepCopy(CPropertiesEx& source)
{
    std::vector<boost::shared_ptr<CCategory>> copies;
    copies.reserve(source.m_categories.size());
    for (const auto& category : source.m_categories)
        if (category)
            copies.push_back(boost::make_shared<CCategory>(*category));
    m_categories.swap(copies); // also right when source is *this
}

void CPropertiesEx::AddCategory(boost::shared_ptr<CCategory> category)
{
    if (category)
        m_categories.push_back(category);
}

boost::shared_ptr<CCategory> CPropertiesEx::GetCategory(const QString& name) const
{
    for (const auto& category : m_categories)
        if (category && category->GetName() == name)
            return category;
    return {};
}

boost::shared_ptr<CPropertyEx> CPropertiesEx::FindProperty(const QString& tag) const
{
    for (const auto& category : m_categories) {
        if (!category)
            continue;
        if (auto property = category->GetPropertyEx(tag))
            return property;
    }
    return {};
}

CPropertyEx* CPropertiesEx::NameProperty() const
{
    static const QString nameTag = QString::fromUtf16(CatalogItemNameTag);
    for (const auto& category : m_categories) {
        if (!category)
            continue;
        for (const auto& property : category->GetPropertyExVector())
            if (property && property->HasTag(nameTag))
                return property.get();
    }
    return nullptr;
}

} // namespace ZEVGis::Data
