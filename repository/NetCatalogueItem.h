#pragma once

#include <string>

namespace Repository
{

// One record of the network repository as the trees show it: identity, parent, name and
// group flag. The item's full content is fetched with GetCatalogItemById.
class CNetCatalogueItem
{
public:
    CNetCatalogueItem() = default;
    CNetCatalogueItem(std::wstring catalogueId, std::wstring parentId, std::wstring name,
                      int isGroup, int ord = 0)
        : m_catalogueId(std::move(catalogueId)), m_parentId(std::move(parentId)),
          m_name(std::move(name)), m_isGroup(isGroup != 0), m_ord(ord)
    {
    }

    // The item's GUID.
    std::wstring GetCatalogueId() const { return m_catalogueId; }
    // The parent item's GUID, empty for a top-level record.
    std::wstring GetParentId() const { return m_parentId; }
    std::wstring GetName() const { return m_name; }
    int GetIsGroup() const { return m_isGroup; }
    // The item's order number among its siblings, as it was sent.
    int GetOrd() const { return m_ord; }

private:
    std::wstring m_catalogueId;
    std::wstring m_parentId;
    std::wstring m_name;
    bool m_isGroup = false;
    int m_ord = 0;
};

} // namespace Repository
