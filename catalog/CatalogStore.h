#pragma once

// The catalog store behind CCatalogManager: a folder with registry.xml, one file per
// catalog, a picture folder, and the drawing copies beside the drawing (README,
// "File formats"). Internal to the catalog library; the tools and tests use the registry
// writer.

#include "catalog/Catalog.h"
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogMetadata.h"

#include <QString>
#include <QStringList>
#include <boost/shared_ptr.hpp>
#include <future>
#include <vector>

namespace ZEVGis::Data
{

// One catalog of the registry with its templates.
struct RegistryEntry
{
    CCatalogMetadata metadata;
    std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
};

// registry.xml for these entries, in this order.
QByteArray writeRegistry(const std::vector<RegistryEntry>& entries);

class CatalogStore
{
public:
    // `root`: the store folder; `drawingPath`: the drawing whose copies are used.
    CatalogStore(const QString& root, const QString& drawingPath);

    QString root() const { return m_root; }
    QString drawingPath() const { return m_drawingPath; }
    QString pictureFolder() const;
    QString registryPath() const;
    QString catalogPath(const CCatalogMetadata& metadata) const;
    QString drawingCopyPath(const CCatalogMetadata& metadata) const;
    // The drawing copy's path within "<drawing>.catalogs/".
    QString drawingCopyName(const CCatalogMetadata& metadata) const;

    // The registry in file order; empty (with an error) when it cannot be read.
    const std::vector<boost::shared_ptr<CCatalogMetadata>>& registry();
    boost::shared_ptr<CCatalogMetadata> metadata(const QString& reference);
    std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates(const QString& reference);
    // which: non-zero the catalog, 0 the drawing copy.
    boost::shared_ptr<CCatalog> catalog(const QString& reference, int which);
    int save(const QString& reference, bool saveCatalog, bool saveDrawingCopy);
    void reload(const QString& reference);
    // The template an item was made from: by its template name, else the first whose
    // definition has the item's group flag. Null when there is none.
    boost::shared_ptr<CCatalogItemTemplate> templateFor(const QString& reference,
                                                        const CCatalogItem& item);

    // Why the catalog (which non-zero) or the drawing copy (0) was not loaded when last asked
    // for: its file and the reason. False when it was loaded or not asked for yet.
    bool loadError(const QString& reference, int which, QString& file, QString& reason);

    QStringList takeErrors();
    void error(const QString& message);

    // Copies the bundled samples (":/samples") into `folder` when it holds no registry yet.
    static bool seedFromSamples(const QString& folder, QString& why);

private:
    // A catalog read from its file, with the problems met (reported when it is taken).
    struct Loaded
    {
        boost::shared_ptr<CCatalog> catalog;
        QStringList errors;
        // When no catalog: its file and why, for the user.
        QString file;
        QString reason;
    };

    // A load that failed, kept for the user until the next load.
    struct Failure
    {
        QString file;
        QString reason;
    };

    struct Entry
    {
        boost::shared_ptr<CCatalogMetadata> metadata;
        // Its catalog file and drawing copy, as compared with the other entries' (one file,
        // one entry).
        QString fileKey;
        QString copyKey;
        std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
        boost::shared_ptr<CCatalog> catalog;
        boost::shared_ptr<CCatalog> drawingCopy;
        bool catalogTried = false;
        bool drawingCopyTried = false;
        Failure catalogFailure;
        Failure drawingCopyFailure;
        // The catalog being read on another thread while the drawing copy is read here.
        std::future<Loaded> catalogAhead;
    };

    void loadRegistry();
    Entry* find(const QString& reference);
    boost::shared_ptr<CCatalog> take(Loaded loaded, Failure& failure);
    // Reads a catalog file; touches nothing of the store, so it may run on any thread.
    static Loaded load(const QString& reference, const QString& pictureFolder,
                       const QString& path, bool missingIsEmpty);

    QString m_root;
    QString m_drawingPath;
    bool m_registryTried = false;
    std::vector<Entry> m_entries;
    std::vector<boost::shared_ptr<CCatalogMetadata>> m_registry;
    QStringList m_errors;
};

} // namespace ZEVGis::Data
