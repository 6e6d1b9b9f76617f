#include "tools/CatalogCommands.h"

#include "catalog/CatalogManager.h"
#include "xml/XmlDocument.h"

#include <QFile>
#include <QFileInfo>

using namespace ZEVGis::Data;

namespace ZevxTool
{

namespace
{

// Everything the store complained about, on the error stream. True when there was anything.
bool reportErrors(QTextStream& err)
{
    const QStringList errors = CCatalogManager::Instance()->TakeErrors();
    for (const QString& message : errors)
        err << "zevxcatalog: " << message << '\n';
    err.flush();
    return !errors.isEmpty();
}

QString flagsOf(const CCatalogMetadata& m)
{
    QStringList flags;
    if (m.GetHidden())
        flags << QStringLiteral("hidden");
    if (m.GetMaintainDocumentSpecificVersion())
        flags << QStringLiteral("drawing-version");
    if (m.GetAllowDefaultSelection())
        flags << QStringLiteral("default-selection");
    if (m.GetDisableNewItems())
        flags << QStringLiteral("no-new-items");
    flags << QStringLiteral("max-depth=%1").arg(m.GetMaxDepthlevel());
    return flags.join(QStringLiteral(", "));
}

QString padded(const QString& text, int width)
{
    return text.leftJustified(width, u' ');
}

void printItem(QTextStream& out, CCatalogItem& item, int depth)
{
    // [G] group, [*] default item, [ ] item; then the order number and the name.
    const QString mark = item.IsGroup() ? QStringLiteral("[G]")
                         : item.GetIsDefault() ? QStringLiteral("[*]")
                                               : QStringLiteral("[ ]");
    out << QString(depth * 2, u' ') << mark << ' ' << QString::number(item.GetOrd()).rightJustified(3)
        << "  " << item.GetName();
    if (!item.GetTemplateName().isEmpty())
        out << "  <" << item.GetTemplateName() << '>';
    out << '\n';
    std::vector<boost::shared_ptr<CCatalogItem>> subItems;
    item.GetSortedSubItems(subItems);
    for (const auto& sub : subItems)
        printItem(out, *sub, depth + 1);
}

// Why the file at `path` cannot be read, or empty when it can.
QString unreadableReason(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("the file does not exist");
    if (info.isDir())
        return QStringLiteral("it is a folder, not a file");
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString() : file.errorString();
}

} // namespace

int listRegistry(QTextStream& out, QTextStream& err)
{
    auto* manager = CCatalogManager::Instance();
    std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
    manager->GetCatalogRegistry(registry);
    const bool problems = reportErrors(err);
    if (registry.empty()) {
        if (!problems)
            err << "zevxcatalog: the registry of " << manager->RootFolder() << " lists no catalogs\n";
        return 1;
    }
    out << "Catalog store: " << manager->RootFolder() << '\n';
    out << "Drawing:       " << manager->DrawingPath() << "\n\n";
    int refWidth = 9;
    int nameWidth = 4;
    int fileWidth = 4;
    for (const auto& m : registry) {
        refWidth = std::max(refWidth, int(m->GetCatalogReference().size()));
        nameWidth = std::max(nameWidth, int(m->GetCatalogNameUI().size()));
        fileWidth = std::max(fileWidth, int(m->GetFileName().size()));
    }
    out << padded(QStringLiteral("REFERENCE"), refWidth) << "  " << padded(QStringLiteral("NAME"), nameWidth)
        << "  " << padded(QStringLiteral("FILE"), fileWidth) << "  TEMPLATES  FLAGS\n";
    for (const auto& m : registry) {
        std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
        manager->GetCatalogItemTemplates(m->GetCatalogReference(), templates);
        out << padded(m->GetCatalogReference(), refWidth) << "  " << padded(m->GetCatalogNameUI(), nameWidth)
            << "  " << padded(m->GetFileName(), fileWidth) << "  "
            << padded(QString::number(templates.size()), 9) << "  " << flagsOf(*m) << '\n';
    }
    out.flush();
    // The catalogs are not loaded here, but an entry whose file cannot be read is a broken store.
    bool missing = false;
    for (const auto& m : registry) {
        const QString path = manager->CatalogFilePath(*m);
        const QString why = unreadableReason(path);
        if (!why.isEmpty()) {
            err << "zevxcatalog: catalog " << m->GetCatalogReference() << ": its file " << path
                << " cannot be read: " << why << '\n';
            missing = true;
        }
    }
    err.flush();
    return problems || missing ? 1 : 0;
}

int showCatalog(const QString& reference, bool drawingCopy, QTextStream& out, QTextStream& err)
{
    auto* manager = CCatalogManager::Instance();
    auto metadata = manager->GetMetadata(reference);
    if (!metadata) {
        if (!reportErrors(err))
            err << "zevxcatalog: no catalog \"" << reference << "\" in the registry of "
                << manager->RootFolder() << " (see: zevxcatalog list)\n";
        else
            err << "zevxcatalog: no catalog \"" << reference << "\"\n";
        return 1;
    }
    if (drawingCopy && !metadata->GetMaintainDocumentSpecificVersion()) {
        err << "zevxcatalog: catalog " << metadata->GetCatalogReference()
            << " keeps no drawing version\n";
        return 1;
    }
    auto catalog = manager->GetCatalog(metadata->GetCatalogReference(), drawingCopy ? 0 : 1);
    if (!catalog) {
        if (!reportErrors(err))
            err << "zevxcatalog: catalog " << metadata->GetCatalogReference() << " cannot be loaded\n";
        return 1;
    }
    reportErrors(err);
    out << metadata->GetCatalogReference() << " \"" << metadata->GetCatalogNameUI() << "\": "
        << (drawingCopy ? "drawing copy for " + manager->DrawingPath() : QStringLiteral("catalog"))
        << ", " << catalog->GetAllElementsMap()->size() << " entries (" << flagsOf(*metadata) << ")\n";

    // The editor's order: the catalog's top level by order number, the drawing copy's top
    // level as the registry map keeps it (by GUID); below that always by order number.
    std::vector<boost::shared_ptr<CCatalogItem>> roots;
    if (drawingCopy) {
        for (const auto& [guid, item] : *catalog->GetRootElementsMap())
            roots.push_back(item);
    } else {
        catalog->GetSortedRootElements(roots);
    }
    for (const auto& root : roots)
        printItem(out, *root, 0);
    out.flush();
    return 0;
}

int validateFiles(const QStringList& files, QTextStream& out, QTextStream& err)
{
    int result = 0;
    for (const QString& path : files) {
        // A file that cannot be read is not called "not well formed": say why it cannot.
        const QString why = unreadableReason(path);
        if (!why.isEmpty()) {
            err << "zevxcatalog: " << path << " cannot be read: " << why << '\n';
            result = 1;
            continue;
        }
        CXmlDocument document;
        const bool wellFormed = document.LoadFile(path);
        out << path << ": " << (wellFormed ? "well formed" : "not well formed") << '\n';
        if (!document.GetResult().isEmpty())
            out << "  result: " << document.GetResult() << '\n';
        if (!wellFormed) {
            result = 1;
            continue;
        }
        // The checked text is what is read as a catalog, as an import does.
        CCatalog catalog;
        if (catalog.ParseXML(document.GetDocumentText())) {
            out << "  catalog: " << (catalog.GetReference().isEmpty() ? QStringLiteral("(no reference)") : catalog.GetReference())
                << ", " << catalog.GetAllElementsMap()->size() << " entries\n";
        } else {
            out << "  not a catalog: " << catalog.ParseError() << '\n';
            result = 1;
        }
    }
    out.flush();
    err.flush();
    return result;
}

} // namespace ZevxTool
