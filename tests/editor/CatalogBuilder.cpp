#include "tests/editor/CatalogBuilder.h"

#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;

CatalogBuilder::CatalogBuilder() : m_catalog(boost::make_shared<CCatalog>())
{
}

CatalogBuilder::Item CatalogBuilder::group(const QString& name, const Item& parent, int ord,
                                           const QString& guid)
{
    return add(name, true, parent, ord, guid);
}

CatalogBuilder::Item CatalogBuilder::item(const QString& name, const Item& parent, int ord,
                                          const QString& guid)
{
    return add(name, false, parent, ord, guid);
}

CatalogBuilder::Item CatalogBuilder::add(const QString& name, bool isGroup, const Item& parent,
                                         int ord, const QString& guid)
{
    auto made = boost::make_shared<CCatalogItem>();
    made->SetGUID(guid.isEmpty() ? QStringLiteral("{%1}").arg(name) : guid);
    made->SetName(name);
    made->SetIsGroup(isGroup);
    made->SetOrd(ord);
    if (parent)
    {
        made->SetParentItem(parent);
        parent->AddSubItem(made);
    }
    m_catalog->AddItem(made);
    return made;
}

void CatalogBuilder::setProperties(const Item& item,
                                   std::initializer_list<std::pair<QString, QString>> properties)
{
    auto set = boost::make_shared<CPropertiesEx>();
    auto category = boost::make_shared<CCategory>(QStringLiteral("General"));
    for (const auto& [tag, value] : properties)
        category->AddPropertyEx(boost::make_shared<CPropertyEx>(tag, CDataBox::fromString(value)));
    set->AddCategory(category);
    item->SetProperties(set);
}
