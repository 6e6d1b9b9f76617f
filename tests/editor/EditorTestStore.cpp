#include "tests/editor/EditorTestStore.h"

#include "catalog/CatalogManager.h"
#include "catalog/CatalogStore.h"
#include "catalog/SafeFileWrite.h"

#include <QDir>
#include <QFile>
#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;

namespace
{

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QString why;
    if (WriteFileSafely(path, bytes, why))
        return true;
    qWarning().noquote() << why;
    return false;
}

} // namespace

EditorTestStore::EditorTestStore(const QString& root) : m_root(root)
{
}

QString EditorTestStore::fileNameOf(const Entry& entry) const
{
    return entry.reference.toLower() + QStringLiteral(".xml");
}

QString EditorTestStore::drawingPath() const
{
    return m_root + QStringLiteral("/drawing/plan.dwg");
}

QByteArray EditorTestStore::catalogFileBytes(const QString& reference) const
{
    for (const Entry& entry : m_entries)
    {
        if (entry.reference == reference)
        {
            QFile file(m_root + QLatin1Char('/') + fileNameOf(entry));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
    }
    return {};
}

bool EditorTestStore::write()
{
    std::vector<RegistryEntry> registry;
    const CatalogStore paths(m_root, drawingPath());
    for (const Entry& entry : m_entries)
    {
        RegistryEntry written;
        CCatalogMetadata& metadata = written.metadata;
        metadata.reference = entry.reference;
        metadata.nameUI = entry.nameUI;
        metadata.fileName = fileNameOf(entry);
        metadata.hidden = entry.hidden;
        metadata.maintainDocumentSpecificVersion = entry.drawingVersion;
        metadata.maxDepthLevel = entry.maxDepth;
        metadata.allowDefaultSelection = entry.allowDefault;
        metadata.disableNewItems = entry.disableNewItems;
        written.templates = entry.templates;
        registry.push_back(written);

        auto catalog = entry.catalog ? entry.catalog : boost::make_shared<CCatalog>();
        catalog->SetReference(entry.reference);
        const QByteArray bytes = catalog->GetXMLBytes();
        if (!writeFile(paths.catalogPath(metadata), bytes))
            return false;
        // The drawing starts with a copy of the catalog as it is.
        if (entry.drawingVersion && !writeFile(paths.drawingCopyPath(metadata), bytes))
            return false;
    }
    if (!writeFile(paths.registryPath(), writeRegistry(registry)))
        return false;
    reopen();
    return true;
}

void EditorTestStore::reopen() const
{
    CCatalogManager::Instance()->Configure(m_root, drawingPath());
}
