// zevxcatalog: lists the catalog registry, shows a catalog's tree, checks catalog files,
// moves entries between a catalog and the network repository.

#include "catalog/CatalogManager.h"
#include "tools/CatalogCommands.h"
#include "tools/ImpexCommands.h"
#include "tools/RepositoryCommands.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>
#include <cstdio>

namespace
{

const char Usage[] =
    "Usage: zevxcatalog [--catalogs DIR] [--drawing FILE] [--repository URL] COMMAND\n"
    "\n"
    "Commands:\n"
    "  list                 the catalogs of the registry with their flags\n"
    "  show REF [--drawing] the tree of catalog REF ([G] group, [*] default item, order\n"
    "                       numbers, <template>); with --drawing the drawing's copy\n"
    "  validate FILE...     whether each file is well-formed XML and a catalog\n"
    "  export REF FILE [GUID...]  writes the entries (default: every group, each with its\n"
    "                       direct items) into a new catalog file (FILE gets \".xml\")\n"
    "  import REF FILE [GUID...] [--dry-run]  brings the file's entries (default: every\n"
    "                       group) into catalog REF, entries it holds staying as they are,\n"
    "                       and saves it; --dry-run changes nothing and tells per entry\n"
    "                       whether it would be added or is there, unchanged or not\n"
    "  repo list REF        the repository's tree of catalog REF\n"
    "  repo push REF [GUID...]  sends the entries (default: every top-level entry) with\n"
    "                       their descendants to the repository\n"
    "  repo pull REF GUID...    brings the records with their descendants and missing\n"
    "                       parents into the catalog and saves it\n"
    "  repo delete REF GUID deletes the record and every record below it\n"
    "\n"
    "Options:\n"
    "  --catalogs DIR       the catalog store (else ZEVX_CATALOG_ROOT, else the user's data folder)\n"
    "  --drawing FILE       the drawing whose catalog copies are used (else ZEVX_DRAWING)\n"
    "  --repository URL     sqlite:PATH, postgresql://[user[:password]@]host[:port]/dbname\n"
    "                       or none (else ZEVX_REPOSITORY, else the default SQLite file)\n"
    "  -h, --help           this text\n";

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zevxcatalog"));
    QTextStream out(stdout);
    QTextStream err(stderr);

    QString catalogs;
    QString drawing;
    QString repository;
    bool drawingCopy = false;
    bool dryRun = false;
    QStringList words;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (arg == u"-h" || arg == u"--help") {
            out << Usage;
            return 0;
        }
        if (arg == u"--catalogs" || arg == u"--drawing") {
            // "--drawing" alone after "show REF" asks for the drawing copy; with a value it
            // names the drawing.
            const bool hasValue = i + 1 < args.size() && !args[i + 1].startsWith(u"--")
                && !(arg == u"--drawing" && words.size() >= 2 && words[0] == u"show");
            if (arg == u"--drawing" && !hasValue) {
                drawingCopy = true;
                continue;
            }
            if (!hasValue) {
                err << "zevxcatalog: " << arg << " needs a value\n\n" << Usage;
                return 2;
            }
            (arg == u"--catalogs" ? catalogs : drawing) = args[++i];
            continue;
        }
        if (arg == u"--repository") {
            if (i + 1 >= args.size() || args[i + 1].startsWith(u"--")) {
                err << "zevxcatalog: --repository needs a value\n\n" << Usage;
                return 2;
            }
            repository = args[++i];
            continue;
        }
        if (arg.startsWith(u"--repository=")) {
            repository = arg.section(u'=', 1);
            if (repository.isEmpty()) {
                err << "zevxcatalog: --repository needs a value\n\n" << Usage;
                return 2;
            }
            continue;
        }
        if (arg == u"--dry-run") {
            dryRun = true;
            continue;
        }
        if (arg.startsWith(u"--catalogs=")) {
            catalogs = arg.section(u'=', 1);
            continue;
        }
        if (arg.startsWith(u"--drawing=")) {
            drawing = arg.section(u'=', 1);
            continue;
        }
        if (arg.startsWith(u"-") && arg.size() > 1) {
            err << "zevxcatalog: unknown option " << arg << "\n\n" << Usage;
            return 2;
        }
        words << arg;
    }
    if (words.isEmpty()) {
        err << Usage;
        return 2;
    }

    // The commands print every store problem themselves; the library's warning of the
    // same problem would say it twice.
    QLoggingCategory::setFilterRules(
        QStringLiteral("zevx.catalog.warning=false\nzevx.repository.warning=false"));
    ZEVGis::Data::CCatalogManager::Instance()->Configure(catalogs, drawing);
    const QString command = words.takeFirst();
    if (dryRun && command != u"import") {
        err << "zevxcatalog: --dry-run goes with import only\n\n" << Usage;
        return 2;
    }
    if (command == u"export" && words.size() >= 2)
        return ZevxTool::exportEntries(words[0], words[1], words.mid(2), out, err);
    if (command == u"import" && words.size() >= 2)
        return ZevxTool::importEntries(words[0], words[1], words.mid(2), dryRun, out, err);
    if (command == u"repo") {
        const QString why = ZevxTool::repositoryUsageError(words);
        if (!why.isEmpty()) {
            err << "zevxcatalog: " << why << "\n\n" << Usage;
            return 2;
        }
        return ZevxTool::repositoryCommand(words, repository, out, err);
    }
    if (command == u"list" && words.isEmpty())
        return ZevxTool::listRegistry(out, err);
    if (command == u"show" && words.size() == 1)
        return ZevxTool::showCatalog(words[0], drawingCopy, out, err);
    if (command == u"validate" && !words.isEmpty())
        return ZevxTool::validateFiles(words, out, err);
    err << "zevxcatalog: bad command line\n\n" << Usage;
    return 2;
}
