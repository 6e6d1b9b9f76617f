#pragma once

#include "catalog/PropertiesEx.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <map>
#include <vector>

namespace ZEVGis::Data
{

namespace CatalogXml
{
class ItemReader;
}

// A group or an item of a catalog. Items own their sub-items through shared pointers and
// know their parent through a weak pointer, so a tree never keeps itself alive.
//
// The template an item was made from is remembered by name (GetTemplateName); the catalog
// manager uses it to extend and upgrade the item (see README, "Catalog file").
class CCatalogItem
{
public:
    using ItemMap = std::map<QString, boost::shared_ptr<CCatalogItem>>;

    CCatalogItem();

    QString GetGUID() const { return m_guid; }
    // The name and the CATALOGITEM_NAME property are one value: with such a property the
    // name is its value, whoever set it (the grid writes the property itself).
    QString GetName() const
    {
        const CPropertyEx* property = m_properties ? m_properties->NameProperty() : nullptr;
        return property ? property->GetValue().ToString() : m_name;
    }
    int GetMsgName() const { return m_msgName; }
    int IsGroup() const { return m_isGroup; }
    int GetOrd() const { return m_ord; }
    int GetIsDefault() const { return m_isDefault; }
    QString GetPictureRef() const { return m_pictureRef; }
    QString GetParentItemGuid() const { return m_parentGuid; }
    QString GetTemplateName() const { return m_templateName; }
    boost::shared_ptr<CCatalogItem> GetParentItem() { return m_parent.lock(); }
    boost::shared_ptr<CPropertiesEx> GetProperties() { return m_properties; }
    // The property with this tag in any category, or empty.
    boost::shared_ptr<CPropertyEx> GetProperty(const QString& tag);
    // Sub-items keyed by GUID.
    ItemMap* GetSubItems() { return &m_subItems; }
    // Sub-items in order-number order (equal numbers: by GUID).
    void GetSortedSubItems(std::vector<boost::shared_ptr<CCatalogItem>>& out);

    void SetGUID(const QString& guid) { m_guid = guid; }
    // Also the value of the name property, when the item has one.
    void SetName(const QString& name);
    void SetPictureRef(const QString& ref) { m_pictureRef = ref; }
    void SetParentItemGuid(const QString& guid) { m_parentGuid = guid; }
    void SetTemplateName(const QString& name) { m_templateName = name; }
    void SetMsgName(int msgName) { m_msgName = msgName; }
    void SetIsGroup(int isGroup) { m_isGroup = isGroup != 0; }
    void SetOrd(int ord) { m_ord = ord; }
    void SetIsDefault(int isDefault) { m_isDefault = isDefault != 0; }
    // Also sets the parent GUID (empty for none).
    void SetParentItem(boost::shared_ptr<CCatalogItem> parent);
    // A name property among them that has a value names the item; one without a value
    // takes the item's name.
    void SetProperties(boost::shared_ptr<CPropertiesEx> properties);

    // Adds (or replaces) a sub-item under its GUID. The sub-item's parent is not changed.
    void AddSubItem(boost::shared_ptr<CCatalogItem> item);
    void RemoveSubItem(const QString& guid);

private:
    friend class CatalogXml::ItemReader;
    struct NoProperties
    {
    };

public:
    // For the catalog reader, which sets the properties itself: no empty set made and freed
    // for each of a hundred thousand items. Only the reader can name the tag.
    explicit CCatalogItem(NoProperties) {}

private:

    QString m_guid;
    QString m_name;
    QString m_pictureRef;
    QString m_parentGuid;
    QString m_templateName;
    boost::weak_ptr<CCatalogItem> m_parent;
    boost::shared_ptr<CPropertiesEx> m_properties;
    ItemMap m_subItems;
    int m_msgName = 0;
    int m_ord = 0;
    bool m_isGroup = false;
    bool m_isDefault = false;
};

// Tag of the property that mirrors an item's name in the property grid.
inline constexpr const char16_t* CatalogItemNameTag = u"CATALOGITEM_NAME";

} // namespace ZEVGis::Data
