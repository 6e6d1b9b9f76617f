#pragma once

#include "catalog/Catalog.h"
#include "catalog/CatalogMetadata.h"

#include <QStringList>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <vector>

namespace ZEVGis::Data
{

class CatalogStore;

// The catalog store: the registry, the catalogs and their drawing-specific copies.
//
// The store is a folder (ZEVX_CATALOG_ROOT, else the user's data folder seeded from the
// bundled samples on first use) holding registry.xml and one XML file per catalog.
// A drawing's copies live beside the drawing (ZEVX_DRAWING) in "<drawing>.catalogs/".
// Catalogs load lazily and stay cached until reloaded; every write is atomic.
class CCatalogManager
{
public:
    static CCatalogManager* Instance();

    // Points the manager at a store and a drawing, dropping everything cached. An empty
    // root means the environment's choice (see above). Tests and the programs call this.
    void Configure(const QString& rootFolder, const QString& drawingPath = QString());
    QString RootFolder() const;
    QString DrawingPath() const;
    // The file of a registered catalog, as the store reads and writes it.
    QString CatalogFilePath(const CCatalogMetadata& metadata) const;

    void InitGdiPlus();
    void KillGdiPlus();

    void GetCatalogRegistry(std::vector<boost::shared_ptr<CCatalogMetadata>>& out);
    boost::shared_ptr<CCatalogMetadata> GetMetadata(const QString& reference);
    // which: 1 the catalog itself, 0 the current drawing's copy (empty when the catalog
    // keeps no drawing version). Empty pointer when the catalog cannot be loaded.
    boost::shared_ptr<CCatalog> GetCatalog(const QString& reference, int which);
    // Writes the catalog (saveCatalog) and the drawing copy (saveDrawingCopy) when loaded.
    // 0 when a write failed; what was on disk before stays intact.
    int Save(const QString& reference, int saveCatalog, int saveDrawingCopy);
    // Drops the cached catalog and drawing copy; the next GetCatalog reads them again.
    void ReloadCatalog(const QString& reference);
    void GetCatalogItemTemplates(const QString& reference,
                                 std::vector<boost::shared_ptr<CCatalogItemTemplate>>& out);
    // Gives the item every category and property of its template's definition that it
    // lacks, keeping the values it has. Non-zero when the item's template was found.
    int ExtendCatalogItem(const QString& reference, boost::shared_ptr<CCatalogItem> item);
    int ExtendCatalogItem(const QString& reference, CCatalogItem* item);
    // Removes the properties (and emptied categories) its template's definition no longer
    // has. Non-zero when the item's template was found.
    int UpgradeCatalogItem(const QString& reference, CCatalogItem* item);

    // Why the catalog (which 1) or its drawing copy (which 0) could not be loaded when last
    // asked for: the file and the reason, which names the line and column where the file has
    // one. False when it was loaded.
    bool GetLoadError(const QString& reference, int which, QString& file, QString& reason);

    // Problems met since the last call (which file, what is wrong), oldest first.
    QStringList TakeErrors();

private:
    CCatalogManager();
    ~CCatalogManager();
    CatalogStore& store();

    std::unique_ptr<CatalogStore> m_store;
    QString m_root;
    QString m_drawing;
    bool m_configured = false;
};

} // namespace ZEVGis::Data
