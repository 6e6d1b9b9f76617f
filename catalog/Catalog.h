#pragma once

#include "catalog/CatalogItemFactory.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <map>
#include <vector>

namespace ZEVGis::Data
{

// A catalog: its items by GUID, its root elements (items without a parent) and its
// factory. The XML text of a catalog is read by ParseXML and written by GetXML.
class CCatalog
{
public:
    using ItemMap = std::map<QString, boost::shared_ptr<CCatalogItem>>;

    CCatalog();

    QString GetReference() const { return m_reference; }
    void SetReference(const QString& reference);

    boost::shared_ptr<ICatalogItemFactory> GetFactory() { return m_factory; }
    void SetFactory(boost::shared_ptr<ICatalogItemFactory> factory);

    // Root elements in order-number order (equal numbers: by GUID).
    void GetSortedRootElements(std::vector<boost::shared_ptr<CCatalogItem>>& out);
    ItemMap* GetRootElementsMap() { return &m_rootElements; }
    ItemMap* GetAllElementsMap() { return &m_allElements; }
    boost::shared_ptr<CCatalogItem> GetItembyGuid(const QString& guid) const;

    // Registers an item under its GUID (and as a root element when it has no parent).
    // 0 when the item is null, has no GUID or its GUID is taken by another item.
    // The item's sub-items are not registered; add them one by one.
    int AddItem(boost::shared_ptr<CCatalogItem> item);
    // Removes the item, all its descendants, and its entry in its parent's sub-items.
    void DeleteItem(boost::shared_ptr<CCatalogItem> item);
    void DeleteItem(const QString& guid);
    void Clear();

    // Replaces the content with the catalog in `xml`. Returns 0 and leaves the catalog
    // unchanged when the text is not a well-formed catalog; ParseError() then says why.
    int ParseXML(const QString& xml);
    // Same from UTF-8 bytes (what a catalog file holds); avoids a UTF-16 copy of big files.
    int ParseXMLBytes(const QByteArray& utf8);
    QString GetXML() const;
    QByteArray GetXMLBytes() const;
    // Why the last ParseXML failed (with line and column), empty after a success.
    QString ParseError() const { return m_parseError; }

private:
    // Both parses: `forceUtf8` when the bytes come from text already decoded, whatever
    // the declaration in them says.
    int parseUtf8(const QByteArray& utf8, bool forceUtf8);

    QString m_reference;
    QString m_parseError;
    boost::shared_ptr<ICatalogItemFactory> m_factory;
    ItemMap m_rootElements;
    ItemMap m_allElements;
};

} // namespace ZEVGis::Data
