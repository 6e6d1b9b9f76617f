#pragma once

#include "catalog/Catalog.h"
#include "catalog/CatalogMetadata.h"

#include <QString>
#include <QTextStream>
#include <boost/shared_ptr.hpp>

namespace ZevxTool
{

// Writes "zevxcatalog: LINE" on `err`; returns the exit code 1.
int fail(QTextStream& err, const QString& line);
// The registry's entry for catalog `reference` (ignoring case), or null after saying so.
boost::shared_ptr<ZEVGis::Data::CCatalogMetadata> findCatalog(const QString& reference,
                                                              QTextStream& err);
// The catalog itself, loaded from the store, or null after saying why not.
boost::shared_ptr<ZEVGis::Data::CCatalog>
loadCatalog(const ZEVGis::Data::CCatalogMetadata& metadata, QTextStream& err);

// Saves catalog `reference` of the store. When that fails the catalog is read back from its
// file, as it was, and false comes after saying why.
bool saveCatalog(const QString& reference, QTextStream& err);

} // namespace ZevxTool
