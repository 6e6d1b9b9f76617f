#include "catalog/CatalogStore.h"
#include "catalog/CatalogXml.h"
#include "catalog/SafeFileWrite.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <boost/make_shared.hpp>
#include <cstring>

namespace ZEVGis::Data
{

namespace
{

// Registry attribute names (README, "File formats").
constexpr char RegistryRoot[] = "registry";
constexpr char RegistryCatalog[] = "catalog";
constexpr char RegistryTemplate[] = "template";

bool readFile(const QString& path, QByteArray& bytes, QString& why)
{
    QFile file(path);
    if (!file.exists()) {
        why = QStringLiteral("the file does not exist");
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        why = file.errorString();
        return false;
    }
    bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        why = file.errorString();
        return false;
    }
    return true;
}

int intAttribute(pugi::xml_node node, const char* name, int fallback, bool& ok)
{
    pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute)
        return fallback;
    bool good = false;
    const int value = QByteArray(attribute.value()).trimmed().toInt(&good);
    if (!good)
        ok = false;
    return good ? value : fallback;
}

} // namespace

QByteArray writeRegistry(const std::vector<RegistryEntry>& entries)
{
    CatalogXml::XmlOut out;
    out.declaration();
    out.start(RegistryRoot);
    out.attribute("format", CatalogXml::FormatVersion);
    for (const RegistryEntry& entry : entries) {
        const CCatalogMetadata& m = entry.metadata;
        out.start(RegistryCatalog);
        out.attribute("reference", m.reference);
        out.attribute("name", m.nameUI);
        out.attribute("file", m.fileName);
        out.attribute("hidden", m.hidden ? 1 : 0);
        out.attribute("drawingVersion", m.maintainDocumentSpecificVersion ? 1 : 0);
        out.attribute("maxDepth", m.maxDepthLevel);
        out.attribute("allowDefault", m.allowDefaultSelection ? 1 : 0);
        out.attribute("disableNewItems", m.disableNewItems ? 1 : 0);
        for (const auto& tmpl : entry.templates) {
            if (!tmpl)
                continue;
            out.start(RegistryTemplate);
            out.attribute("name", tmpl->GetName());
            out.attribute("version", tmpl->GetVersion());
            if (auto definition = tmpl->GetCatalogItemDefinition())
                CatalogXml::writeItem(out, *definition, false, false);
            out.end();
        }
        out.end();
    }
    out.end();
    return out.take();
}

CatalogStore::CatalogStore(const QString& root, const QString& drawingPath)
    : m_root(QDir::cleanPath(root)), m_drawingPath(drawingPath)
{
}

QString CatalogStore::pictureFolder() const
{
    return m_root + QStringLiteral("/pictures");
}

QString CatalogStore::registryPath() const
{
    return m_root + QStringLiteral("/registry.xml");
}

QString CatalogStore::catalogPath(const CCatalogMetadata& metadata) const
{
    return QDir(m_root).filePath(metadata.fileName);
}

QString CatalogStore::drawingCopyName(const CCatalogMetadata& metadata) const
{
    // The catalog file's path within the store, so that "lv/cables.xml" and "mv/cables.xml"
    // get copies of their own; a file outside the store goes by its name alone.
    QString relative = QDir(m_root).relativeFilePath(catalogPath(metadata));
    if (relative == u".." || relative.startsWith(QStringLiteral("../")) || QDir::isAbsolutePath(relative))
        relative = QFileInfo(metadata.fileName).fileName();
    return relative;
}

QString CatalogStore::drawingCopyPath(const CCatalogMetadata& metadata) const
{
    return m_drawingPath + QStringLiteral(".catalogs/") + drawingCopyName(metadata);
}

void CatalogStore::error(const QString& message)
{
    qCWarning(lcCatalog).noquote() << message;
    m_errors << message;
}

QStringList CatalogStore::takeErrors()
{
    QStringList errors;
    errors.swap(m_errors);
    return errors;
}

bool CatalogStore::seedFromSamples(const QString& folder, QString& why)
{
    const QString samples = QStringLiteral(":/samples");
    if (!QFileInfo(samples + QStringLiteral("/registry.xml")).exists()) {
        why = QStringLiteral("the program carries no sample catalogs");
        return false;
    }
    QDirIterator it(samples, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = folder + source.mid(samples.size());
        if (QFileInfo::exists(target))
            continue;
        if (!QDir().mkpath(QFileInfo(target).absolutePath())) {
            why = QStringLiteral("cannot create the folder %1").arg(QFileInfo(target).absolutePath());
            return false;
        }
        QByteArray bytes;
        if (!readFile(source, bytes, why) || !WriteFileSafely(target, bytes, why))
            return false;
    }
    return true;
}

namespace
{

// The registry's document, or the reason it cannot be used.
pugi::xml_node openRegistry(pugi::xml_document& doc, const QString& path, QByteArray& bytes, QString& problem)
{
    QString why;
    if (!readFile(path, bytes, why)) {
        problem = QStringLiteral("Catalog registry %1 cannot be read: %2").arg(path, why);
        return {};
    }
    if (!CatalogXml::parseDocument(doc, bytes.constData(), size_t(bytes.size()), false, why)) {
        problem = QStringLiteral("Catalog registry %1 is broken: %2").arg(path, why);
        return {};
    }
    pugi::xml_node root = doc.document_element();
    if (!root || std::strcmp(root.name(), RegistryRoot) != 0) {
        problem = QStringLiteral("Catalog registry %1 is not a registry: its root element is <%2>, not <registry>")
                      .arg(path, QString::fromUtf8(root ? root.name() : ""));
        return {};
    }
    if (!CatalogXml::readableFormat(root, why)) {
        problem = QStringLiteral("Catalog registry %1 cannot be used: registry %2").arg(path, why);
        return {};
    }
    return root;
}

// The fields of one registry entry; flags that are not numbers take their defaults.
boost::shared_ptr<CCatalogMetadata> readMetadata(pugi::xml_node node, bool& numbersOk)
{
    auto metadata = boost::make_shared<CCatalogMetadata>();
    metadata->reference = QString::fromUtf8(node.attribute("reference").value()).trimmed();
    metadata->nameUI = QString::fromUtf8(node.attribute("name").value());
    if (metadata->nameUI.isEmpty())
        metadata->nameUI = metadata->reference;
    metadata->fileName = QString::fromUtf8(node.attribute("file").value()).trimmed();
    if (metadata->fileName.isEmpty())
        metadata->fileName = metadata->reference.toLower() + QStringLiteral(".xml");
    numbersOk = true;
    metadata->hidden = intAttribute(node, "hidden", 0, numbersOk) != 0;
    metadata->maintainDocumentSpecificVersion = intAttribute(node, "drawingVersion", 0, numbersOk) != 0;
    metadata->maxDepthLevel = intAttribute(node, "maxDepth", 3, numbersOk);
    metadata->allowDefaultSelection = intAttribute(node, "allowDefault", 0, numbersOk) != 0;
    metadata->disableNewItems = intAttribute(node, "disableNewItems", 0, numbersOk) != 0;
    return metadata;
}

// The templates of one registry entry; a broken one is left out with the reason.
std::vector<boost::shared_ptr<CCatalogItemTemplate>> readTemplates(pugi::xml_node node, CatalogXml::ItemReader& reader,
                                                                   const QString& registry, const QString& reference,
                                                                   QStringList& problems)
{
    std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
    for (pugi::xml_node t = node.child(RegistryTemplate); t; t = t.next_sibling(RegistryTemplate)) {
        const QString name = QString::fromUtf8(t.attribute("name").value());
        bool versionOk = true;
        const int version = intAttribute(t, "version", 0, versionOk);
        boost::shared_ptr<CCatalogItem> definition;
        if (pugi::xml_node item = t.child(CatalogXml::Names::item)) {
            definition = reader.readItem(item, false);
            if (!definition) {
                problems << QStringLiteral("Catalog registry %1: template \"%2\" of %3 has a broken definition: %4; the template is left out")
                                .arg(registry, name, reference, reader.error());
                reader.clearError();
                continue;
            }
        }
        if (name.isEmpty() || !versionOk) {
            problems << QStringLiteral("Catalog registry %1: a template of %2 at %3 has no name or a bad version; it is left out")
                            .arg(registry, reference, reader.position(t.offset_debug() - 1));
            continue;
        }
        templates.push_back(boost::make_shared<CCatalogItemTemplate>(name, version, definition));
    }
    return templates;
}

// What two registry entries naming one file have in common: the cleaned absolute path
// ("cables.xml", "./cables.xml" and "sub/../cables.xml" are one file), links resolved when
// the file exists, case-folded where the file system ignores case.
QString sameFileKey(const QString& path, bool ignoreCase)
{
    const QFileInfo info(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    const QString key = info.exists() ? info.canonicalFilePath() : info.filePath();
    return ignoreCase ? key.toCaseFolded() : key;
}

// The registry's name in capitals finds it only where the file system ignores case.
bool ignoresCase(const QString& folder)
{
    return QFileInfo::exists(folder + QStringLiteral("/registry.xml"))
           && QFileInfo::exists(folder + QStringLiteral("/REGISTRY.XML"));
}

} // namespace

void CatalogStore::loadRegistry()
{
    if (m_registryTried)
        return;
    m_registryTried = true;

    const QFileInfo rootInfo(m_root);
    if (!rootInfo.isDir()) {
        error(rootInfo.exists() ? QStringLiteral("Catalog store %1: it is a file, not a folder").arg(m_root)
                                : QStringLiteral("Catalog store %1: the folder does not exist").arg(m_root));
        return;
    }
    if (!rootInfo.isReadable() || !rootInfo.isExecutable()) {
        // Else the registry inside would be reported as missing.
        error(QStringLiteral("Catalog store %1: the folder cannot be read (permission denied)").arg(m_root));
        return;
    }
    QByteArray bytes;
    QString problem;
    pugi::xml_document doc;
    const pugi::xml_node root = openRegistry(doc, registryPath(), bytes, problem);
    if (!root) {
        error(problem);
        return;
    }

    CatalogXml::ItemReader reader;
    reader.setText(bytes.constData(), size_t(bytes.size()));
    const bool ignoreCase = ignoresCase(m_root);
    const QString registryKey = sameFileKey(registryPath(), ignoreCase);
    for (pugi::xml_node node = root.child(RegistryCatalog); node; node = node.next_sibling(RegistryCatalog)) {
        const QString where = reader.position(node.offset_debug() - 1);
        bool numbersOk = true;
        auto metadata = readMetadata(node, numbersOk);
        if (metadata->reference.isEmpty()) {
            error(QStringLiteral("Catalog registry %1: the entry at %2 has no reference; it is left out")
                      .arg(registryPath(), where));
            continue;
        }
        if (find(metadata->reference)) {
            error(QStringLiteral("Catalog registry %1: reference %2 at %3 is registered twice; the second entry is left out")
                      .arg(registryPath(), metadata->reference, where));
            continue;
        }
        // Saving one of two entries on one file would overwrite the other's catalog.
        const QString fileKey = sameFileKey(catalogPath(*metadata), ignoreCase);
        if (fileKey == registryKey) {
            error(QStringLiteral("Catalog registry %1: entry %2 at %3 names the registry itself as its file; it is left out")
                      .arg(registryPath(), metadata->reference, where));
            continue;
        }
        // Files outside the store keep drawing copies by their name alone: two such files of
        // one name would share a copy.
        QString copyKey;
        if (metadata->maintainDocumentSpecificVersion)
            copyKey = ignoreCase ? drawingCopyName(*metadata).toCaseFolded() : drawingCopyName(*metadata);
        const auto sameFile = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& other) {
            return other.fileKey == fileKey || (!copyKey.isEmpty() && other.copyKey == copyKey);
        });
        if (sameFile != m_entries.end()) {
            const bool catalogFile = sameFile->fileKey == fileKey;
            error(QStringLiteral("Catalog registry %1: entries %2 and %3 (at %4) both name the file %5; %3 is left out, "
                                 "so that saving one cannot overwrite the other")
                      .arg(registryPath(), sameFile->metadata->reference, metadata->reference, where,
                           catalogFile ? QDir::toNativeSeparators(QDir::cleanPath(catalogPath(*metadata)))
                                       : QStringLiteral("<drawing>.catalogs/") + drawingCopyName(*metadata)));
            continue;
        }
        if (!numbersOk)
            error(QStringLiteral("Catalog registry %1: entry %2 at %3 has a flag that is not a number; the default is used")
                      .arg(registryPath(), metadata->reference, where));
        QStringList problems;
        Entry entry;
        entry.metadata = metadata;
        entry.fileKey = fileKey;
        entry.copyKey = copyKey;
        entry.templates = readTemplates(node, reader, registryPath(), metadata->reference, problems);
        for (const QString& message : problems)
            error(message);
        m_registry.push_back(metadata);
        m_entries.push_back(std::move(entry));
    }
}

const std::vector<boost::shared_ptr<CCatalogMetadata>>& CatalogStore::registry()
{
    loadRegistry();
    return m_registry;
}

CatalogStore::Entry* CatalogStore::find(const QString& reference)
{
    for (Entry& entry : m_entries)
        if (entry.metadata->reference.compare(reference, Qt::CaseInsensitive) == 0)
            return &entry;
    return nullptr;
}

boost::shared_ptr<CCatalogMetadata> CatalogStore::metadata(const QString& reference)
{
    loadRegistry();
    Entry* entry = find(reference);
    return entry ? entry->metadata : boost::shared_ptr<CCatalogMetadata>();
}

std::vector<boost::shared_ptr<CCatalogItemTemplate>> CatalogStore::templates(const QString& reference)
{
    loadRegistry();
    Entry* entry = find(reference);
    return entry ? entry->templates : std::vector<boost::shared_ptr<CCatalogItemTemplate>>();
}

CatalogStore::Loaded CatalogStore::load(const QString& reference, const QString& pictureFolder,
                                        const QString& path, bool missingIsEmpty)
{
    Loaded loaded;
    auto catalog = boost::make_shared<CCatalog>();
    catalog->SetFactory(boost::make_shared<CDefaultCatalogItemFactory>(pictureFolder));

    if (missingIsEmpty && !QFileInfo::exists(path)) {
        catalog->SetReference(reference);
        loaded.catalog = catalog;
        return loaded;
    }
    QByteArray bytes;
    QString why;
    if (!readFile(path, bytes, why)) {
        loaded.errors << QStringLiteral("Catalog %1: %2 cannot be read: %3").arg(reference, path, why);
        loaded.file = path;
        loaded.reason = why;
        return loaded;
    }
    if (!catalog->ParseXMLBytes(bytes)) {
        loaded.errors << QStringLiteral("Catalog %1: %2 is not a catalog file: %3")
                             .arg(reference, path, catalog->ParseError());
        loaded.file = path;
        loaded.reason = catalog->ParseError();
        return loaded;
    }
    if (catalog->GetReference().compare(reference, Qt::CaseInsensitive) != 0
        && !catalog->GetReference().isEmpty())
        qCInfo(lcCatalog).noquote() << QStringLiteral("Catalog %1: %2 names itself %3; the registry's reference is used")
                                           .arg(reference, path, catalog->GetReference());
    // The registry's spelling of the reference wins.
    catalog->SetReference(reference);
    loaded.catalog = catalog;
    return loaded;
}

boost::shared_ptr<CCatalog> CatalogStore::take(Loaded loaded, Failure& failure)
{
    for (const QString& message : std::as_const(loaded.errors))
        error(message);
    failure = Failure{loaded.file, loaded.reason};
    return loaded.catalog;
}

bool CatalogStore::loadError(const QString& reference, int which, QString& file, QString& reason)
{
    loadRegistry();
    const Entry* entry = find(reference);
    if (!entry)
        return false;
    const Failure& failure = which != 0 ? entry->catalogFailure : entry->drawingCopyFailure;
    if (failure.reason.isEmpty())
        return false;
    file = failure.file;
    reason = failure.reason;
    return true;
}

boost::shared_ptr<CCatalog> CatalogStore::catalog(const QString& reference, int which)
{
    loadRegistry();
    Entry* entry = find(reference);
    if (!entry) {
        error(QStringLiteral("Catalog %1 is not in the registry %2").arg(reference, registryPath()));
        return {};
    }
    const QString& name = entry->metadata->reference;
    if (which != 0) {
        if (!entry->catalogTried) {
            entry->catalogTried = true;
            entry->catalog = take(entry->catalogAhead.valid()
                                      ? entry->catalogAhead.get()
                                      : load(name, pictureFolder(), catalogPath(*entry->metadata), false),
                                  entry->catalogFailure);
        }
        return entry->catalog;
    }
    if (!entry->metadata->maintainDocumentSpecificVersion)
        return {};
    if (!entry->drawingCopyTried) {
        entry->drawingCopyTried = true;
        // Whoever shows a drawing copy shows its catalog beside it: read that file on the
        // other core meanwhile. Its errors are reported when it is asked for, as before.
        if (!entry->catalogTried && !entry->catalogAhead.valid()) {
            try {
                entry->catalogAhead = std::async(std::launch::async, &CatalogStore::load, name,
                                                 pictureFolder(), catalogPath(*entry->metadata), false);
            } catch (const std::system_error&) {
                // No thread to be had: the catalog is read when it is asked for.
            }
        }
        entry->drawingCopy = take(load(name, pictureFolder(), drawingCopyPath(*entry->metadata), true),
                                  entry->drawingCopyFailure);
    }
    return entry->drawingCopy;
}

int CatalogStore::save(const QString& reference, bool saveCatalog, bool saveDrawingCopy)
{
    loadRegistry();
    Entry* entry = find(reference);
    if (!entry) {
        error(QStringLiteral("Catalog %1 is not in the registry %2; nothing saved").arg(reference, registryPath()));
        return 0;
    }
    std::vector<std::pair<QString, boost::shared_ptr<CCatalog>>> targets;
    if (saveCatalog && entry->catalog)
        targets.emplace_back(catalogPath(*entry->metadata), entry->catalog);
    if (saveDrawingCopy && entry->drawingCopy && entry->metadata->maintainDocumentSpecificVersion)
        targets.emplace_back(drawingCopyPath(*entry->metadata), entry->drawingCopy);

    // Write every file beside its target first; only when all are written are they put in
    // place, so a failure leaves both files as they were.
    std::vector<std::unique_ptr<SafeFileWrite>> pending;
    for (const auto& [path, catalog] : targets) {
        const QString folder = QFileInfo(path).absolutePath();
        if (!QDir().mkpath(folder)) {
            error(QStringLiteral("Catalog %1 not saved: the folder %2 cannot be created; %3 is unchanged")
                      .arg(entry->metadata->reference, folder, path));
            return 0;
        }
        // A catalog the reader would refuse is not written: the file would no longer load.
        QString why;
        if (!CatalogXml::checkWritable(*catalog->GetAllElementsMap(), why)) {
            error(QStringLiteral("Catalog %1 not saved to %2: %3; the file on disk is unchanged")
                      .arg(entry->metadata->reference, path, why));
            return 0;
        }
        auto file = std::make_unique<SafeFileWrite>(path);
        if (!file->write(catalog->GetXMLBytes())) {
            error(QStringLiteral("Catalog %1 not saved: %2; the file on disk is unchanged")
                      .arg(entry->metadata->reference, file->error()));
            return 0;
        }
        pending.push_back(std::move(file));
    }
    int result = 1;
    for (auto& file : pending) {
        if (!file->commit()) {
            error(QStringLiteral("Catalog %1 not saved: %2; the file on disk is unchanged")
                      .arg(entry->metadata->reference, file->error()));
            result = 0;
        }
    }
    return result;
}

void CatalogStore::reload(const QString& reference)
{
    loadRegistry();
    if (Entry* entry = find(reference)) {
        if (entry->catalogAhead.valid())
            entry->catalogAhead.get(); // read before the reload: dropped with its errors
        entry->catalog.reset();
        entry->drawingCopy.reset();
        entry->catalogTried = false;
        entry->drawingCopyTried = false;
    }
}

boost::shared_ptr<CCatalogItemTemplate> CatalogStore::templateFor(const QString& reference,
                                                                  const CCatalogItem& item)
{
    loadRegistry();
    Entry* entry = find(reference);
    if (!entry)
        return {};
    const QString name = item.GetTemplateName();
    if (!name.isEmpty()) {
        for (const auto& tmpl : entry->templates)
            if (tmpl->GetName() == name && tmpl->GetCatalogItemDefinition())
                return tmpl;
        for (const auto& tmpl : entry->templates)
            if (tmpl->GetName().compare(name, Qt::CaseInsensitive) == 0 && tmpl->GetCatalogItemDefinition())
                return tmpl;
        // A template that is gone is not replaced by a guess: upgrading an item by the
        // wrong definition would take its properties away.
        return {};
    }
    // Items from before templates were remembered: the first template of the same kind.
    for (const auto& tmpl : entry->templates) {
        auto definition = tmpl->GetCatalogItemDefinition();
        if (definition && (definition->IsGroup() != 0) == (item.IsGroup() != 0))
            return tmpl;
    }
    return {};
}

} // namespace ZEVGis::Data
