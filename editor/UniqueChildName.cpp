#include "editor/UniqueChildName.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/NameSet.h"

#include <map>

namespace ZEVGis::Editor
{

QString UniqueChildName(Data::CCatalog* catalog, Data::CCatalogItem* parent, const QString* base)
{
    std::map<int, QString> bases;
    if (base)
        bases[0] = *base;
    else
        bases[0] = (parent ? parent->GetName() : QString()) + QStringLiteral("_#");
    Topology::CNameSet names(QStringLiteral("xx"), bases, 0, 0, {});

    const Data::CCatalogItem::ItemMap* siblings = nullptr;
    if (parent)
        siblings = parent->GetSubItems();
    else if (catalog)
        siblings = catalog->GetRootElementsMap();
    if (siblings)
    {
        for (const auto& [guid, sibling] : *siblings)
        {
            if (sibling)
                names.AddName(sibling->GetName());
        }
    }
    return names.GetNextName(false);
}

} // namespace ZEVGis::Editor
