#pragma once

#include "catalog/CatalogItem.h"

namespace ZEVGis::Data
{

// A kind of item a catalog offers for new entries: its name, its version (-1 = kept for
// upgrades of existing items but not offered for new ones) and the item that defines the
// categories, properties and default values of new items.
class CCatalogItemTemplate
{
public:
    CCatalogItemTemplate() = default;
    CCatalogItemTemplate(const QString& name, int version,
                         boost::shared_ptr<CCatalogItem> definition)
        : m_name(name), m_version(version), m_definition(definition)
    {
    }

    QString GetName() const { return m_name; }
    int GetVersion() const { return m_version; }
    boost::shared_ptr<CCatalogItem> GetCatalogItemDefinition() { return m_definition; }

    void SetName(const QString& name) { m_name = name; }
    void SetVersion(int version) { m_version = version; }
    void SetCatalogItemDefinition(boost::shared_ptr<CCatalogItem> item) { m_definition = item; }

private:
    QString m_name;
    int m_version = 0;
    boost::shared_ptr<CCatalogItem> m_definition;
};

} // namespace ZEVGis::Data
