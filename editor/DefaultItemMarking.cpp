#include "editor/DefaultItemMarking.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"

namespace ZEVGis::Editor
{

std::vector<Data::CCatalogItem*> ItemsOfSameType(Data::CCatalog& catalog, Data::CCatalogItem& item)
{
    std::vector<Data::CCatalogItem*> same;
    if (item.IsGroup())
        return same;
    const QString tag = QString::fromUtf16(EquipmentTypeTag);
    if (const auto typeProperty = item.GetProperty(tag))
    {
        const QString type = typeProperty->GetValue().ToString();
        for (const auto& [guid, element] : *catalog.GetAllElementsMap())
        {
            if (!element)
                continue;
            const auto property = element->GetProperty(tag);
            if (property && property->GetValue().ToString() == type)
                same.push_back(element.get());
        }
    }
    return same;
}

std::vector<Data::CCatalogItem*> MarkDefaultItem(Data::CCatalog& catalog, Data::CCatalogItem& item)
{
    if (item.IsGroup())
        return {};
    std::vector<Data::CCatalogItem*> cleared = ItemsOfSameType(catalog, item);
    for (Data::CCatalogItem* element : cleared)
        element->SetIsDefault(0);
    item.SetIsDefault(1);
    return cleared;
}

} // namespace ZEVGis::Editor
