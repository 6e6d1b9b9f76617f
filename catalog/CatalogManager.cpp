#include "catalog/CatalogManager.h"
#include "catalog/CatalogStore.h"
#include "catalog/CatalogXml.h"

#include <QDir>
#include <QStandardPaths>
#include <boost/make_shared.hpp>
#include <set>

namespace ZEVGis::Data
{

namespace
{

QString defaultRoot()
{
    // The generic data folder, so the editor, the tool and the module share one store.
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/zevxcatalogeditor/catalogs");
}

} // namespace

CCatalogManager* CCatalogManager::Instance()
{
    static CCatalogManager manager;
    return &manager;
}

CCatalogManager::CCatalogManager() = default;
CCatalogManager::~CCatalogManager() = default;

void CCatalogManager::Configure(const QString& rootFolder, const QString& drawingPath)
{
    m_store.reset();
    m_root = rootFolder;
    m_drawing = drawingPath;
    m_configured = true;
}

CatalogStore& CCatalogManager::store()
{
    if (m_store)
        return *m_store;
    QString root = m_root;
    QStringList seedErrors;
    if (root.isEmpty())
        root = qEnvironmentVariable("ZEVX_CATALOG_ROOT");
    if (root.isEmpty()) {
        root = defaultRoot();
        if (!QFileInfo::exists(root + QStringLiteral("/registry.xml"))) {
            QString why;
            if (CatalogStore::seedFromSamples(root, why))
                qCInfo(lcCatalog).noquote() << QStringLiteral("Catalog store %1 made from the sample catalogs").arg(root);
            else
                seedErrors << QStringLiteral("Catalog store %1 cannot be made from the sample catalogs: %2").arg(root, why);
        }
    }
    root = QDir(root).absolutePath();
    QString drawing = m_drawing;
    if (drawing.isEmpty())
        drawing = qEnvironmentVariable("ZEVX_DRAWING");
    if (drawing.isEmpty())
        drawing = root + QStringLiteral("/drawings/Sample.dwg");
    m_store = std::make_unique<CatalogStore>(root, QDir(drawing).absolutePath());
    for (const QString& message : seedErrors)
        m_store->error(message);
    return *m_store;
}

QString CCatalogManager::RootFolder() const
{
    return const_cast<CCatalogManager*>(this)->store().root();
}

QString CCatalogManager::DrawingPath() const
{
    return const_cast<CCatalogManager*>(this)->store().drawingPath();
}

QString CCatalogManager::CatalogFilePath(const CCatalogMetadata& metadata) const
{
    return const_cast<CCatalogManager*>(this)->store().catalogPath(metadata);
}

void CCatalogManager::InitGdiPlus()
{
    // Pictures are drawn with Qt, which needs no start-up.
}

void CCatalogManager::KillGdiPlus()
{
}

void CCatalogManager::GetCatalogRegistry(std::vector<boost::shared_ptr<CCatalogMetadata>>& out)
{
    out = store().registry();
}

boost::shared_ptr<CCatalogMetadata> CCatalogManager::GetMetadata(const QString& reference)
{
    return store().metadata(reference);
}

boost::shared_ptr<CCatalog> CCatalogManager::GetCatalog(const QString& reference, int which)
{
    return store().catalog(reference, which);
}

int CCatalogManager::Save(const QString& reference, int saveCatalog, int saveDrawingCopy)
{
    return store().save(reference, saveCatalog != 0, saveDrawingCopy != 0);
}

void CCatalogManager::ReloadCatalog(const QString& reference)
{
    store().reload(reference);
}

void CCatalogManager::GetCatalogItemTemplates(const QString& reference,
                                              std::vector<boost::shared_ptr<CCatalogItemTemplate>>& out)
{
    out = store().templates(reference);
}

int CCatalogManager::ExtendCatalogItem(const QString& reference, boost::shared_ptr<CCatalogItem> item)
{
    return ExtendCatalogItem(reference, item.get());
}

int CCatalogManager::ExtendCatalogItem(const QString& reference, CCatalogItem* item)
{
    if (!item)
        return 0;
    auto tmpl = store().templateFor(reference, *item);
    if (!tmpl)
        return 0;
    auto definition = tmpl->GetCatalogItemDefinition();
    const QString nameTag = QString::fromUtf16(CatalogItemNameTag);
    auto target = item->GetProperties();
    if (!target) {
        target = boost::make_shared<CPropertiesEx>();
        item->SetProperties(target);
    }
    for (const auto& category : definition->GetProperties()->categories()) {
        if (!category)
            continue;
        auto own = target->GetCategory(category->GetName());
        for (const auto& property : category->GetPropertyExVector()) {
            // A property the item has in another category counts as had: it keeps its place.
            if (!property || target->FindProperty(property->GetTag()))
                continue;
            auto added = boost::make_shared<CPropertyEx>(*property);
            // A name property that comes new shows the item's name, not the definition's.
            if (added->GetTag() == nameTag)
                added->SetValue(CDataBox(added->GetValue().GetType(), item->GetName()));
            if (!own) {
                own = boost::make_shared<CCategory>(category->GetName());
                target->AddCategory(own);
            }
            own->AddPropertyEx(added);
        }
    }
    return 1;
}

int CCatalogManager::UpgradeCatalogItem(const QString& reference, CCatalogItem* item)
{
    if (!item)
        return 0;
    auto tmpl = store().templateFor(reference, *item);
    if (!tmpl)
        return 0;
    auto definition = tmpl->GetCatalogItemDefinition();
    std::set<QString> tags;
    for (const auto& category : definition->GetProperties()->categories())
        for (const auto& property : category->GetPropertyExVector())
            if (property)
                tags.insert(property->GetTag());
    tags.insert(QString::fromUtf16(CatalogItemNameTag)); // the name always stays
    auto target = item->GetProperties();
    if (!target)
        return 1;
    auto* categories = target->GetCategoryVector();
    for (auto it = categories->begin(); it != categories->end();) {
        auto category = *it;
        if (!category) {
            it = categories->erase(it);
            continue;
        }
        QStringList gone;
        for (const auto& property : category->GetPropertyExVector())
            if (property && !tags.count(property->GetTag()))
                gone << property->GetTag();
        for (const QString& tag : gone)
            category->RemovePropertyEx(tag);
        if (!gone.isEmpty() && category->GetPropertyExVector().empty())
            it = categories->erase(it);
        else
            ++it;
    }
    return 1;
}

bool CCatalogManager::GetLoadError(const QString& reference, int which, QString& file,
                                   QString& reason)
{
    return store().loadError(reference, which, file, reason);
}

QStringList CCatalogManager::TakeErrors()
{
    return store().takeErrors();
}

} // namespace ZEVGis::Data
