#include "catalog/Catalog.h"
#include "catalog/CatalogXml.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>
#include <boost/make_shared.hpp>

namespace ZEVGis::Data
{

CCatalog::CCatalog() : m_factory(boost::make_shared<CDefaultCatalogItemFactory>())
{
}

void CCatalog::SetReference(const QString& reference)
{
    m_reference = reference;
    if (m_factory)
        m_factory->SetCatalogReference(reference);
}

void CCatalog::SetFactory(boost::shared_ptr<ICatalogItemFactory> factory)
{
    m_factory = factory;
}

void CCatalog::GetSortedRootElements(std::vector<boost::shared_ptr<CCatalogItem>>& out)
{
    out.clear();
    out.reserve(m_rootElements.size());
    for (const auto& entry : m_rootElements)
        if (entry.second)
            out.push_back(entry.second);
    std::stable_sort(out.begin(), out.end(), [](const auto& a, const auto& b) {
        return a->GetOrd() < b->GetOrd();
    });
}

boost::shared_ptr<CCatalogItem> CCatalog::GetItembyGuid(const QString& guid) const
{
    auto it = m_allElements.find(guid);
    return it == m_allElements.end() ? boost::shared_ptr<CCatalogItem>() : it->second;
}

int CCatalog::AddItem(boost::shared_ptr<CCatalogItem> item)
{
    if (!item)
        return 0;
    const QString guid = item->GetGUID();
    if (guid.isEmpty())
        return 0;
    auto it = m_allElements.find(guid);
    if (it != m_allElements.end() && it->second != item)
        return 0;
    m_allElements[guid] = item;
    if (!item->GetParentItem())
        m_rootElements[guid] = item;
    else
        m_rootElements.erase(guid); // re-added after it got a parent
    return 1;
}

void CCatalog::DeleteItem(boost::shared_ptr<CCatalogItem> item)
{
    if (!item)
        return;
    // Detach from the parent first (by pointer, else by the parent GUID it names).
    boost::shared_ptr<CCatalogItem> parent = item->GetParentItem();
    if (!parent && !item->GetParentItemGuid().isEmpty())
        parent = GetItembyGuid(item->GetParentItemGuid());
    if (parent) {
        auto* siblings = parent->GetSubItems();
        auto it = siblings->find(item->GetGUID());
        if (it != siblings->end() && it->second == item)
            siblings->erase(it);
    }

    // Then unregister the item and everything below it (iteratively: trees may be deep).
    std::vector<boost::shared_ptr<CCatalogItem>> pending{item};
    std::unordered_set<const CCatalogItem*> seen; // a broken tree may hold a cycle
    while (!pending.empty()) {
        boost::shared_ptr<CCatalogItem> current = pending.back();
        pending.pop_back();
        if (!seen.insert(current.get()).second)
            continue;
        const QString guid = current->GetGUID();
        auto all = m_allElements.find(guid);
        if (all != m_allElements.end() && all->second == current)
            m_allElements.erase(all);
        auto root = m_rootElements.find(guid);
        if (root != m_rootElements.end() && root->second == current)
            m_rootElements.erase(root);
        for (const auto& entry : *current->GetSubItems())
            if (entry.second && entry.second != current)
                pending.push_back(entry.second);
    }
}

void CCatalog::DeleteItem(const QString& guid)
{
    DeleteItem(GetItembyGuid(guid));
}

void CCatalog::Clear()
{
    m_rootElements.clear();
    m_allElements.clear();
}

} // namespace ZEVGis::Data

// ---- XML ------------------------------------------------------------------------------

namespace ZEVGis::Data
{

namespace
{

// Parses a catalog document into fresh maps; the catalog is only touched on success.
int parseCatalog(CCatalog& catalog, const char* data, size_t size, bool forceUtf8,
                 QString& error, CCatalog::ItemMap& all, CCatalog::ItemMap& roots,
                 QString& reference)
{
    pugi::xml_document doc;
    if (!CatalogXml::parseDocument(doc, data, size, forceUtf8, error))
        return 0;
    pugi::xml_node root = doc.document_element();
    if (!root) {
        error = QStringLiteral("the text holds no XML element, so it is not a catalog");
        return 0;
    }
    if (std::strcmp(root.name(), CatalogXml::Names::catalog) != 0) {
        error = QStringLiteral("the root element is <%1>, not <catalog> (at %2): not a catalog file")
                    .arg(QString::fromUtf8(root.name()),
                         CatalogXml::positionIn(data, size, root.offset_debug() > 0 ? root.offset_debug() - 1 : 0));
        return 0;
    }
    QString why;
    if (!CatalogXml::readableFormat(root, why)) {
        error = QStringLiteral("catalog %1").arg(why);
        return 0;
    }
    CatalogXml::ItemReader reader;
    reader.setText(data, size);
    if (!reader.readItems(root, all, roots)) {
        error = reader.error();
        return 0;
    }
    reference = QString::fromUtf8(root.attribute("ref").value());
    Q_UNUSED(catalog);
    return 1;
}

} // namespace

int CCatalog::parseUtf8(const QByteArray& utf8, bool forceUtf8)
{
    ItemMap all;
    ItemMap roots;
    QString reference;
    QString error;
    if (!parseCatalog(*this, utf8.constData(), size_t(utf8.size()), forceUtf8, error, all, roots,
                      reference)) {
        m_parseError = error;
        return 0;
    }
    m_allElements.swap(all);
    m_rootElements.swap(roots);
    if (!reference.isEmpty())
        SetReference(reference);
    m_parseError.clear();
    return 1;
}

int CCatalog::ParseXMLBytes(const QByteArray& utf8)
{
    return parseUtf8(utf8, false);
}

int CCatalog::ParseXML(const QString& xml)
{
    return parseUtf8(xml.toUtf8(), true);
}

QString CCatalog::GetXML() const
{
    return QString::fromUtf8(CatalogXml::writeCatalog(*this));
}

QByteArray CCatalog::GetXMLBytes() const
{
    return CatalogXml::writeCatalog(*this);
}

} // namespace ZEVGis::Data
