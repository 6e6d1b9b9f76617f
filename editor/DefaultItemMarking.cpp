#include "editor/DefaultItemMarking.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"

namespace ZEVGis::Editor
{

std::vector<Data::CCatalogItem*> MarkDefaultItem(Data::CCatalog& catalog, Data::CCatalogItem& item)
{
    std::vector<Data::CCatalogItem*> cleared;
    if (item.IsGroup())
        return cleared;
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
            {
                element->SetIsDefault(0);
                cleared.push_back(element.get());
            }
        }
    }
    item.SetIsDefault(1);
    return cleared;
}

} // namespace ZEVGis::Editor
