#pragma once

#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

namespace ZEVGis::Data
{
class CCatalogMetadata;
class CCatalogItemTemplate;
} // namespace ZEVGis::Data

namespace ZEVGis::Editor
{

// Appended to the name of a hidden catalog when hidden catalogs are offered.
inline constexpr const char16_t* HiddenCatalogMarker = u"*** HIDDEN ***";

struct CatalogComboLine
{
    QString text;
    boost::shared_ptr<Data::CCatalogMetadata> metadata;
};

struct CatalogComboContent
{
    std::vector<CatalogComboLine> lines;
    int selected = 0; // line to select; meaningless when there are no lines
};

// The catalog combo's lines in registry order. Hidden catalogs are left out unless
// `showHidden`, and then marked. The line to select is the last one whose reference equals
// `reference` ignoring case, else the first.
CatalogComboContent BuildCatalogComboLines(
    const std::vector<boost::shared_ptr<Data::CCatalogMetadata>>& registry, bool showHidden,
    const QString& reference);

// The templates offered for new items, in the given order: all but version -1.
std::vector<boost::shared_ptr<Data::CCatalogItemTemplate>> OfferedTemplates(
    const std::vector<boost::shared_ptr<Data::CCatalogItemTemplate>>& templates);

} // namespace ZEVGis::Editor
