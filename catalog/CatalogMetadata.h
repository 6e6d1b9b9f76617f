#pragma once

#include <QString>

namespace ZEVGis::Data
{

// One registry entry: how a catalog is named, where its file is and how the editor
// treats it.
class CCatalogMetadata
{
public:
    int GetHidden() const { return hidden; }
    QString GetCatalogNameUI() const { return nameUI; }
    QString GetCatalogReference() const { return reference; }
    int GetMaintainDocumentSpecificVersion() const { return maintainDocumentSpecificVersion; }
    int GetMaxDepthlevel() const { return maxDepthLevel; }
    int GetAllowDefaultSelection() const { return allowDefaultSelection; }
    int GetDisableNewItems() const { return disableNewItems; }
    // The catalog file, relative to the catalog store's root.
    QString GetFileName() const { return fileName; }

    QString reference;
    QString nameUI;
    QString fileName;
    int hidden = 0;
    int maintainDocumentSpecificVersion = 0;
    int maxDepthLevel = 3;
    int allowDefaultSelection = 0;
    int disableNewItems = 0;
};

} // namespace ZEVGis::Data
