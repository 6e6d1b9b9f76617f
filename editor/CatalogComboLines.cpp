#include "editor/CatalogComboLines.h"

#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogMetadata.h"

namespace ZEVGis::Editor
{

CatalogComboContent BuildCatalogComboLines(
    const std::vector<boost::shared_ptr<Data::CCatalogMetadata>>& registry, bool showHidden,
    const QString& reference)
{
    CatalogComboContent content;
    for (const auto& metadata : registry)
    {
        if (!metadata)
            continue;
        const bool hidden = metadata->GetHidden() != 0;
        if (hidden && !showHidden)
            continue;
        QString text = metadata->GetCatalogNameUI();
        if (hidden)
            text += QString::fromUtf16(HiddenCatalogMarker);
        if (metadata->GetCatalogReference().compare(reference, Qt::CaseInsensitive) == 0)
            content.selected = int(content.lines.size());
        content.lines.push_back({text, metadata});
    }
    return content;
}

std::vector<boost::shared_ptr<Data::CCatalogItemTemplate>> OfferedTemplates(
    const std::vector<boost::shared_ptr<Data::CCatalogItemTemplate>>& templates)
{
    std::vector<boost::shared_ptr<Data::CCatalogItemTemplate>> offered;
    for (const auto& tmpl : templates)
    {
        if (tmpl && tmpl->GetVersion() != -1)
            offered.push_back(tmpl);
    }
    return offered;
}

} // namespace ZEVGis::Editor
