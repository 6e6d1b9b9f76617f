#include "tools/CommandSupport.h"

#include "catalog/CatalogManager.h"

using namespace ZEVGis::Data;

namespace ZevxTool
{

int fail(QTextStream& err, const QString& line)
{
    err << "zevxcatalog: " << line.simplified() << '\n' << Qt::flush;
    return 1;
}

boost::shared_ptr<CCatalogMetadata> findCatalog(const QString& reference, QTextStream& err)
{
    auto* manager = CCatalogManager::Instance();
    auto metadata = manager->GetMetadata(reference);
    if (!metadata) {
        manager->TakeErrors(); // one line says it: the catalog is not there
        fail(err, "no catalog \"" + reference + "\" in the registry of " + manager->RootFolder());
    }
    return metadata;
}

boost::shared_ptr<CCatalog> loadCatalog(const CCatalogMetadata& metadata, QTextStream& err)
{
    auto* manager = CCatalogManager::Instance();
    auto catalog = manager->GetCatalog(metadata.GetCatalogReference(), 1);
    if (!catalog) {
        const QStringList errors = manager->TakeErrors();
        fail(err, errors.isEmpty() ? "catalog " + metadata.GetCatalogReference() + " cannot be loaded"
                                   : errors.last());
    }
    return catalog;
}

bool saveCatalog(const QString& reference, QTextStream& err)
{
    auto* manager = CCatalogManager::Instance();
    if (manager->Save(reference, 1, 0))
        return true;
    const QStringList errors = manager->TakeErrors();
    manager->ReloadCatalog(reference);
    fail(err, errors.isEmpty() ? "catalog " + reference + " could not be saved" : errors.last());
    return false;
}

} // namespace ZevxTool
