#pragma once

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <initializer_list>
#include <utility>

// Builds small catalogs in memory for the editor's tests. GUIDs are derived from the names
// given, so a test can state the map order it relies on.
class CatalogBuilder
{
public:
    using Item = boost::shared_ptr<ZEVGis::Data::CCatalogItem>;

    CatalogBuilder();

    ZEVGis::Data::CCatalog& catalog() { return *m_catalog; }
    boost::shared_ptr<ZEVGis::Data::CCatalog> shared() { return m_catalog; }

    // A group or an item under `parent` (none: a root element), registered in the catalog.
    Item group(const QString& name, const Item& parent = {}, int ord = 0,
               const QString& guid = QString());
    Item item(const QString& name, const Item& parent = {}, int ord = 0,
              const QString& guid = QString());
    // Adds properties (tag, value) in one category "General"; the name property included.
    static void setProperties(const Item& item,
                              std::initializer_list<std::pair<QString, QString>> properties);

private:
    Item add(const QString& name, bool isGroup, const Item& parent, int ord, const QString& guid);

    boost::shared_ptr<ZEVGis::Data::CCatalog> m_catalog;
};
