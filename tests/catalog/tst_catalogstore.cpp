// The catalog store behind CCatalogManager: registry, lazy catalogs and drawing copies,
// saving, extending and upgrading items, and what broken stores do.

#include "CatalogBuilders.h"
#include "catalog/CatalogManager.h"
#include "catalog/CatalogStore.h"

#include <QtTest>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace ZEVGis::Data;
using namespace CatalogTest;

namespace
{

QStringList g_warnings;

void captureWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtWarningMsg && QByteArray(context.category) == "zevx.catalog")
        g_warnings << message;
}

CCatalogManager* manager()
{
    return CCatalogManager::Instance();
}

// A store in a temporary folder: one catalog TEST with templates, made by the registry
// writer.
struct SmallStore
{
    QTemporaryDir dir;
    boost::shared_ptr<CCatalogItem> definition;

    SmallStore()
    {
        definition = boost::make_shared<CCatalogItem>();
        definition->SetGUID(QStringLiteral("{DEF}"));
        definition->SetName(QStringLiteral("Novi kabel"));
        CPropertyEx section(QStringLiteral("CROSS_SECTION"), CDataBox::fromDouble(150));
        section.SetCaption(QStringLiteral("Presjek"));
        definition->SetProperties(properties({
            {QStringLiteral("Općenito"), {prop(QString::fromUtf16(CatalogItemNameTag), CDataBox::fromString(QStringLiteral("Novi kabel"))), prop(QStringLiteral("MAKER"), CDataBox::fromString(QStringLiteral("Sava")))}},
            {QStringLiteral("Električki"), {section, prop(QStringLiteral("CORES"), CDataBox::fromInt(4))}},
        }));
        auto groupDefinition = boost::make_shared<CCatalogItem>();
        groupDefinition->SetGUID(QStringLiteral("{GDEF}"));
        groupDefinition->SetIsGroup(1);
        groupDefinition->SetProperties(properties({{QStringLiteral("Grupa"), {prop(QStringLiteral("GROUP_CODE"), CDataBox::fromString(QStringLiteral("G")))}}}));

        RegistryEntry test;
        test.metadata.reference = QStringLiteral("TEST");
        test.metadata.nameUI = QStringLiteral("Testni katalog");
        test.metadata.fileName = QStringLiteral("sub/test.xml");
        test.metadata.maintainDocumentSpecificVersion = 1;
        test.metadata.maxDepthLevel = 5;
        test.templates.push_back(boost::make_shared<CCatalogItemTemplate>(QStringLiteral("Grupa"), 1, groupDefinition));
        test.templates.push_back(boost::make_shared<CCatalogItemTemplate>(QStringLiteral("Kabel"), 2, definition));
        test.templates.push_back(boost::make_shared<CCatalogItemTemplate>(QStringLiteral("Stari"), -1, definition));
        RegistryEntry other;
        other.metadata.reference = QStringLiteral("OTHER");
        other.metadata.nameUI = QStringLiteral("Drugi");
        other.metadata.fileName = QStringLiteral("other.xml");
        other.metadata.hidden = 1;
        other.metadata.allowDefaultSelection = 1;
        other.metadata.disableNewItems = 1;
        other.metadata.maxDepthLevel = 1;
        writeAll(dir.filePath(QStringLiteral("registry.xml")), writeRegistry({test, other}));

        CCatalog catalog;
        catalog.SetReference(QStringLiteral("TEST"));
        auto group = add(catalog, QStringLiteral("{G1}"), QStringLiteral("Grupa"), true);
        add(catalog, QStringLiteral("{I1}"), QStringLiteral("Kabel 1"), false, group);
        writeAll(dir.filePath(QStringLiteral("sub/test.xml")), catalog.GetXMLBytes());
        CCatalog otherCatalog;
        otherCatalog.SetReference(QStringLiteral("OTHER"));
        add(otherCatalog, QStringLiteral("{O1}"), QStringLiteral("Jedini"), false);
        writeAll(dir.filePath(QStringLiteral("other.xml")), otherCatalog.GetXMLBytes());
        manager()->Configure(dir.path(), drawing());
    }

    QString drawing() const { return dir.filePath(QStringLiteral("crteži/Trafostanica Đakovo.dwg")); }
    QString path(const QString& name) const { return dir.filePath(name); }
};

} // namespace

class TestCatalogStore : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qInstallMessageHandler(captureWarnings);
    }

    void init()
    {
        g_warnings.clear();
        qunsetenv("ZEVX_CATALOG_ROOT");
        qunsetenv("ZEVX_DRAWING");
    }

    void cleanup()
    {
        manager()->TakeErrors();
    }

    void registryKeepsEveryField()
    {
        SmallStore store;
        std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
        manager()->GetCatalogRegistry(registry);
        QCOMPARE(registry.size(), size_t(2));
        const CCatalogMetadata& test = *registry[0];
        QCOMPARE(test.GetCatalogReference(), QStringLiteral("TEST"));
        QCOMPARE(test.GetCatalogNameUI(), QStringLiteral("Testni katalog"));
        QCOMPARE(test.GetFileName(), QStringLiteral("sub/test.xml"));
        QCOMPARE(test.GetMaintainDocumentSpecificVersion(), 1);
        QCOMPARE(test.GetMaxDepthlevel(), 5);
        QCOMPARE(test.GetHidden() + test.GetAllowDefaultSelection() + test.GetDisableNewItems(), 0);
        const CCatalogMetadata& other = *registry[1];
        QCOMPARE(other.GetHidden(), 1);
        QCOMPARE(other.GetAllowDefaultSelection(), 1);
        QCOMPARE(other.GetDisableNewItems(), 1);
        QCOMPARE(other.GetMaxDepthlevel(), 1);
        QCOMPARE(other.GetMaintainDocumentSpecificVersion(), 0);

        std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
        manager()->GetCatalogItemTemplates(QStringLiteral("test"), templates);
        QCOMPARE(templates.size(), size_t(3));
        QCOMPARE(templates[1]->GetName(), QStringLiteral("Kabel"));
        QCOMPARE(templates[1]->GetVersion(), 2);
        QCOMPARE(templates[2]->GetVersion(), -1);
        QCOMPARE(templates[1]->GetCatalogItemDefinition()->GetProperty(QStringLiteral("CROSS_SECTION"))->GetCaption(), QStringLiteral("Presjek"));
        QCOMPARE(manager()->GetMetadata(QStringLiteral("oThEr")), registry[1]);
        QVERIFY(manager()->TakeErrors().isEmpty());
    }

    void catalogsLoadLazilyAndStayCached()
    {
        SmallStore store;
        auto catalog = manager()->GetCatalog(QStringLiteral("test"), 1);
        QVERIFY(catalog);
        QCOMPARE(catalog->GetReference(), QStringLiteral("TEST"));
        QCOMPARE(manager()->GetCatalog(QStringLiteral("TEST"), 1), catalog);
        QCOMPARE(catalog->GetAllElementsMap()->size(), size_t(2));
        auto factory = boost::dynamic_pointer_cast<CDefaultCatalogItemFactory>(catalog->GetFactory());
        QVERIFY(factory);
        QCOMPARE(factory->pictureFolder(), store.path(QStringLiteral("pictures")));
        QCOMPARE(factory->GetCatalogReference(), QStringLiteral("TEST"));
        // The file changes on disk: the cache keeps what was loaded until a reload.
        QFile::remove(store.path(QStringLiteral("sub/test.xml")));
        QCOMPARE(manager()->GetCatalog(QStringLiteral("TEST"), 1), catalog);
        QVERIFY(!manager()->GetCatalog(QStringLiteral("NOPE"), 1));
        QVERIFY(manager()->TakeErrors().join(u'\n').contains(QStringLiteral("NOPE")));
    }

    void drawingCopies()
    {
        SmallStore store;
        // No copy yet: an empty catalog with the right reference.
        auto copy = manager()->GetCatalog(QStringLiteral("TEST"), 0);
        QVERIFY(copy);
        QCOMPARE(copy->GetReference(), QStringLiteral("TEST"));
        QVERIFY(copy->GetAllElementsMap()->empty());
        QVERIFY(copy != manager()->GetCatalog(QStringLiteral("TEST"), 1));
        // A catalog that keeps no drawing version has none.
        QVERIFY(!manager()->GetCatalog(QStringLiteral("OTHER"), 0));
        QVERIFY(manager()->TakeErrors().isEmpty());

        add(*copy, QStringLiteral("{D1}"), QStringLiteral("Samo u crtežu"), false);
        QVERIFY(manager()->Save(QStringLiteral("TEST"), 1, 1));
        const QString copyPath = store.drawing() + QStringLiteral(".catalogs/sub/test.xml");
        QVERIFY(QFileInfo::exists(copyPath));
        manager()->ReloadCatalog(QStringLiteral("test"));
        auto again = manager()->GetCatalog(QStringLiteral("TEST"), 0);
        QVERIFY(again != copy);
        QVERIFY(again->GetItembyGuid(QStringLiteral("{D1}")));
        QVERIFY(!manager()->GetCatalog(QStringLiteral("TEST"), 1)->GetItembyGuid(QStringLiteral("{D1}")));

        // Another drawing has its own copies.
        manager()->Configure(store.dir.path(), store.path(QStringLiteral("drugi.dwg")));
        QVERIFY(manager()->GetCatalog(QStringLiteral("TEST"), 0)->GetAllElementsMap()->empty());
        QCOMPARE(manager()->DrawingPath(), store.path(QStringLiteral("drugi.dwg")));
    }

    void drawingCopiesOfEqualFileNamesKeepApart()
    {
        QTemporaryDir dir;
        QTemporaryDir outside;
        std::vector<RegistryEntry> entries(3);
        const QStringList files{QStringLiteral("nn/kabeli.xml"), QStringLiteral("sn/kabeli.xml"),
                                outside.filePath(QStringLiteral("kabeli.xml"))};
        for (int i = 0; i < 3; ++i) {
            entries[i].metadata.reference = QStringLiteral("K%1").arg(i);
            entries[i].metadata.fileName = files[i];
            entries[i].metadata.maintainDocumentSpecificVersion = 1;
            CCatalog catalog;
            QVERIFY(writeAll(QDir(dir.path()).filePath(files[i]), catalog.GetXMLBytes()));
        }
        QVERIFY(writeAll(dir.filePath(QStringLiteral("registry.xml")), writeRegistry(entries)));
        const QString drawing = dir.filePath(QStringLiteral("crtež.dwg"));
        manager()->Configure(dir.path(), drawing);
        for (int i = 0; i < 3; ++i) {
            add(*manager()->GetCatalog(entries[i].metadata.reference, 0), QStringLiteral("{%1}").arg(i), QStringLiteral("x"), false);
            QVERIFY(manager()->Save(entries[i].metadata.reference, 1, 1));
        }
        QVERIFY(QFileInfo::exists(drawing + QStringLiteral(".catalogs/sn/kabeli.xml")));
        QVERIFY(QFileInfo::exists(drawing + QStringLiteral(".catalogs/kabeli.xml"))); // outside the store
        manager()->Configure(dir.path(), drawing);
        for (int i = 0; i < 3; ++i) {
            auto copy = manager()->GetCatalog(entries[i].metadata.reference, 0);
            QCOMPARE(copy->GetAllElementsMap()->size(), size_t(1));
            QVERIFY(copy->GetItembyGuid(QStringLiteral("{%1}").arg(i)));
        }
        QVERIFY(manager()->TakeErrors().isEmpty());
    }

    void catalogReadAheadReportsWhenAskedFor()
    {
        // The catalog is read beside the drawing copy; its problems still come with it.
        SmallStore store;
        QVERIFY(writeAll(store.path(QStringLiteral("sub/test.xml")), "<catalog><i id=\"{1}\">"));
        QVERIFY(manager()->GetCatalog(QStringLiteral("TEST"), 0));
        QVERIFY(manager()->TakeErrors().isEmpty());
        QVERIFY(!manager()->GetCatalog(QStringLiteral("TEST"), 1));
        const QString errors = manager()->TakeErrors().join(u'\n');
        QVERIFY2(errors.contains(store.path(QStringLiteral("sub/test.xml"))), qPrintable(errors));
        // A reload reads the mended file, whether the read ahead was taken or not.
        QVERIFY(writeAll(store.path(QStringLiteral("sub/test.xml")), "<catalog><i id=\"{2}\"/></catalog>"));
        for (int taken : {1, 0}) {
            manager()->ReloadCatalog(QStringLiteral("TEST"));
            QVERIFY(manager()->GetCatalog(QStringLiteral("TEST"), 0));
            if (taken)
                QVERIFY(manager()->GetCatalog(QStringLiteral("TEST"), 1)->GetItembyGuid(QStringLiteral("{2}")));
        }
        QVERIFY(writeAll(store.path(QStringLiteral("sub/test.xml")), "<catalog><i id=\"{3}\"/></catalog>"));
        manager()->ReloadCatalog(QStringLiteral("TEST"));
        QVERIFY(manager()->GetCatalog(QStringLiteral("TEST"), 1)->GetItembyGuid(QStringLiteral("{3}")));
        QVERIFY(manager()->TakeErrors().isEmpty());
    }

    void saveWritesAndReloadDrops()
    {
        SmallStore store;
        auto catalog = manager()->GetCatalog(QStringLiteral("TEST"), 1);
        catalog->GetItembyGuid(QStringLiteral("{I1}"))->SetName(QStringLiteral("Preimenovan čćžšđ"));
        QVERIFY(manager()->Save(QStringLiteral("test"), 1, 0));
        // An unsaved change is dropped by a reload.
        manager()->GetCatalog(QStringLiteral("TEST"), 1)->GetItembyGuid(QStringLiteral("{I1}"))->SetName(QStringLiteral("nespremljeno"));
        manager()->ReloadCatalog(QStringLiteral("TEST"));
        auto reloaded = manager()->GetCatalog(QStringLiteral("TEST"), 1);
        QVERIFY(reloaded != catalog);
        QCOMPARE(reloaded->GetItembyGuid(QStringLiteral("{I1}"))->GetName(), QStringLiteral("Preimenovan čćžšđ"));
        // Saving what was never loaded writes nothing and succeeds.
        const QByteArray before = readAll(store.path(QStringLiteral("other.xml")));
        QVERIFY(manager()->Save(QStringLiteral("OTHER"), 1, 1));
        QCOMPARE(readAll(store.path(QStringLiteral("other.xml"))), before);
        QCOMPARE(manager()->Save(QStringLiteral("NOPE"), 1, 1), 0);
        QVERIFY(!QDir(store.dir.path()).entryList({QStringLiteral("*.tmp"), QStringLiteral("*~")}).size());
    }

    void brokenStores_data()
    {
        QTest::addColumn<QString>("file");      // what is broken
        QTest::addColumn<QByteArray>("content"); // its new content; "-" removes it
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("registryReadable");
        QTest::newRow("catalog not well formed") << "other.xml" << QByteArray("<catalog><i id=\"{1}\">") << "not well-formed XML at line 1" << true;
        QTest::newRow("catalog not a catalog") << "other.xml" << QByteArray("<?xml version=\"1.0\"?><registry/>") << "root element is <registry>" << true;
        QTest::newRow("catalog file missing") << "other.xml" << QByteArray("-") << "does not exist" << true;
        QTest::newRow("catalog file unreadable") << "other.xml" << QByteArray("dir") << "cannot be read" << true;
        QTest::newRow("registry missing") << "registry.xml" << QByteArray("-") << "registry.xml cannot be read: the file does not exist" << false;
        QTest::newRow("registry garbage") << "registry.xml" << QByteArray("\x01\x02 garbage") << "registry.xml is broken" << false;
        QTest::newRow("registry of a later format") << "registry.xml" << QByteArray("<registry format=\"2\"><catalog reference=\"TEST\" file=\"sub/test.xml\"/></registry>") << "registry.xml cannot be used: registry format 2 is newer" << false;
        QTest::newRow("registry not a registry") << "registry.xml" << QByteArray("<catalog ref=\"X\"/>") << "is not a registry" << false;
        QTest::newRow("store folder missing") << "" << QByteArray("nowhere") << "nowhere: the folder does not exist" << false;
        QTest::newRow("store is a file") << "" << QByteArray("other.xml") << "other.xml: it is a file, not a folder" << false;
        QTest::newRow("store folder unreadable") << "" << QByteArray("<unreadable>") << "the folder cannot be read" << false;
    }

    void brokenStores()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(QString, message);
        QFETCH(bool, registryReadable);
        SmallStore store;
        const QString path = store.path(file);
        const auto permissions = QFile::permissions(store.dir.path());
        const auto restore = qScopeGuard([&] { QFile::setPermissions(store.dir.path(), permissions); });
        if (content == "<unreadable>") {
            QFile::setPermissions(store.dir.path(), QFileDevice::Permissions());
            if (QFileInfo(store.dir.path()).isReadable())
                QSKIP("running with rights that ignore folder permissions");
        } else if (file.isEmpty()) { // the store itself is `content`
            manager()->Configure(store.path(QString::fromUtf8(content)), store.drawing());
        } else if (content == "-") {
            QVERIFY(QFile::remove(path));
        } else if (content == "dir") {
            QVERIFY(QFile::remove(path));
            QVERIFY(QDir().mkpath(path));
        } else {
            QVERIFY(writeAll(path, content));
        }
        std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
        manager()->GetCatalogRegistry(registry);
        if (registryReadable) {
            QCOMPARE(registry.size(), size_t(2));
            QVERIFY(!manager()->GetCatalog(QStringLiteral("OTHER"), 1));
            // The other catalogs still load.
            QVERIFY(manager()->GetCatalog(QStringLiteral("TEST"), 1));
        } else {
            QVERIFY(registry.empty());
            QVERIFY(!manager()->GetCatalog(QStringLiteral("TEST"), 1));
        }
        const QString errors = manager()->TakeErrors().join(u'\n');
        QVERIFY2(errors.contains(message), qPrintable(errors));
        if (!file.isEmpty())
            QVERIFY2(errors.contains(path), qPrintable(errors)); // which file
        QVERIFY(!g_warnings.isEmpty()); // and on the zevx.catalog logging category
        // A failed load is not retried (nor reported) on every call.
        manager()->GetCatalog(QStringLiteral("OTHER"), 1);
        QVERIFY(manager()->TakeErrors().isEmpty() || !registryReadable);
        // Nothing to save: nothing overwritten.
        if (registryReadable && content != "-" && content != "dir") {
            manager()->Save(QStringLiteral("OTHER"), 1, 1);
            QCOMPARE(readAll(path), content);
        }
    }

    void registryEntryProblems()
    {
        QTemporaryDir dir;
        writeAll(dir.filePath(QStringLiteral("registry.xml")),
                 "<registry>\n"
                 " <catalog name=\"no reference\"/>\n"
                 " <catalog reference=\"A\" file=\"a.xml\" maxDepth=\"x\">\n"
                 "  <template name=\"ok\" version=\"1\"><i id=\"{T}\" n=\"t\"/></template>\n"
                 "  <template name=\"broken\" version=\"1\"><i n=\"no id\"/></template>\n"
                 " </catalog>\n"
                 " <catalog reference=\"a\" file=\"dup.xml\"/>\n"
                 " <catalog reference=\"B\"/>\n"
                 "</registry>\n");
        manager()->Configure(dir.path(), QString());
        std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
        manager()->GetCatalogRegistry(registry);
        QCOMPARE(registry.size(), size_t(2));
        QCOMPARE(registry[0]->GetMaxDepthlevel(), 3);
        QCOMPARE(registry[1]->GetFileName(), QStringLiteral("b.xml"));
        std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
        manager()->GetCatalogItemTemplates(QStringLiteral("A"), templates);
        QCOMPARE(templates.size(), size_t(1));
        const QString errors = manager()->TakeErrors().join(u'\n');
        QVERIFY2(errors.contains(QStringLiteral("line 2, column 2 has no reference")), qPrintable(errors));
        QVERIFY2(errors.contains(QStringLiteral("not a number")), qPrintable(errors));
        QVERIFY2(errors.contains(QStringLiteral("\"broken\" of A has a broken definition")), qPrintable(errors));
        QVERIFY2(errors.contains(QStringLiteral("registered twice")), qPrintable(errors));
    }

    void failedSaveKeepsFiles_data()
    {
        QTest::addColumn<QString>("cause");
        QTest::addColumn<QString>("named"); // the file the message names
        QTest::newRow("read-only store folder") << "read-only" << "sub/test.xml";
        QTest::newRow("drawing copy folder cannot be made") << "drawing under a file" << "plain";
        // Deeper than the reader takes: written, the catalog would no longer load.
        QTest::newRow("tree too deep to read back") << "deep" << "sub/test.xml";
        // Written without it, {C} and {C}+U+0001 would be one GUID twice.
        QTest::newRow("GUID a file cannot hold") << "control character" << "sub/test.xml";
    }

    void failedSaveKeepsFiles()
    {
        QFETCH(QString, cause);
        QFETCH(QString, named);
        SmallStore store;
        const QString catalogPath = store.path(QStringLiteral("sub/test.xml"));
        const QByteArray before = readAll(catalogPath);
        if (cause == u"drawing under a file") {
            writeAll(store.path(QStringLiteral("plain")), "a file, not a folder");
            manager()->Configure(store.dir.path(), store.path(QStringLiteral("plain/crtež.dwg")));
        }
        auto catalog = manager()->GetCatalog(QStringLiteral("TEST"), 1);
        auto copy = manager()->GetCatalog(QStringLiteral("TEST"), 0);
        QVERIFY(catalog && copy);
        catalog->DeleteItem(QStringLiteral("{G1}"));
        add(*copy, QStringLiteral("{X}"), QStringLiteral("x"), false);
        if (cause == u"control character") {
            add(*catalog, QStringLiteral("{C}"), QStringLiteral("c"), false);
            add(*catalog, QStringLiteral("{C}\u0001"), QStringLiteral("c"), false);
        }
        if (cause == u"deep") {
            auto parent = add(*catalog, QStringLiteral("{D0}"), QStringLiteral("d"), true);
            for (int level = 1; level <= 300; ++level)
                parent = add(*catalog, QStringLiteral("{D%1}").arg(level), QStringLiteral("d"), true, parent);
        }

        const QString folder = store.path(QStringLiteral("sub"));
        if (cause == u"read-only") {
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
            if (writesIgnorePermissions(folder)) {
                QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
                QSKIP("running with rights that ignore folder permissions; the other rows cover the failure");
            }
        }
        const int saved = manager()->Save(QStringLiteral("TEST"), 1, 1);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(saved, 0);
        const QString errors = manager()->TakeErrors().join(u'\n');
        QVERIFY2(errors.contains(QStringLiteral("Catalog TEST not saved")), qPrintable(errors));
        QVERIFY2(errors.contains(store.path(named)), qPrintable(errors));
        // What was saved before is whole, and no half-written file is left beside it.
        QCOMPARE(readAll(catalogPath), before);
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{QStringLiteral("test.xml")});
        QVERIFY(!g_warnings.isEmpty());
        // The edits are still in memory: a later save may succeed.
        QVERIFY(!catalog->GetItembyGuid(QStringLiteral("{G1}")));
    }

    void extendAndUpgrade_data()
    {
        QTest::addColumn<QString>("templateName");
        QTest::addColumn<bool>("group");
        QTest::addColumn<int>("found");
        QTest::newRow("by template name") << "Kabel" << false << 1;
        QTest::newRow("by name ignoring case") << "KABEL" << false << 1;
        QTest::newRow("template kept for upgrades only") << "Stari" << false << 1;
        QTest::newRow("no name: first template of the kind") << "" << false << 1;
        QTest::newRow("template that is gone") << "Nestao" << false << 0;
    }

    void extendAndUpgrade()
    {
        QFETCH(QString, templateName);
        QFETCH(bool, group);
        QFETCH(int, found);
        SmallStore store;
        CCatalogItem item;
        item.SetGUID(QStringLiteral("{N}"));
        item.SetName(QStringLiteral("Moj kabel"));
        item.SetIsGroup(group);
        item.SetTemplateName(templateName);
        item.SetProperties(properties({
            {QStringLiteral("Električki"), {prop(QStringLiteral("CORES"), CDataBox::fromInt(3)), prop(QStringLiteral("OBSOLETE"), CDataBox::fromInt(1))}},
            {QStringLiteral("Stara kategorija"), {prop(QStringLiteral("OLD_CODE"), CDataBox::fromString(QStringLiteral("x")))}},
            {QStringLiteral("Ostalo"), {prop(QStringLiteral("MAKER"), CDataBox::fromString(QStringLiteral("Moj proizvođač")))}},
        }));
        QCOMPARE(manager()->UpgradeCatalogItem(QStringLiteral("TEST"), &item), found);
        QCOMPARE(manager()->ExtendCatalogItem(QStringLiteral("TEST"), &item), found);
        auto props = item.GetProperties();
        if (!found) {
            QVERIFY(item.GetProperty(QStringLiteral("OBSOLETE")));
            QVERIFY(!item.GetProperty(QStringLiteral("CROSS_SECTION")));
            return;
        }
        // Upgrade: gone are the properties the definition lacks, and the emptied category.
        QVERIFY(!item.GetProperty(QStringLiteral("OBSOLETE")));
        QVERIFY(!props->GetCategory(QStringLiteral("Stara kategorija")));
        // Extend: what was missing comes from the definition, what was there keeps its value
        // and its place.
        QCOMPARE(item.GetProperty(QStringLiteral("CORES"))->GetValue().ToInt(), 3);
        QCOMPARE(item.GetProperty(QStringLiteral("CROSS_SECTION"))->GetValue().ToDouble(), 150.0);
        QCOMPARE(item.GetProperty(QStringLiteral("CROSS_SECTION"))->GetCaption(), QStringLiteral("Presjek"));
        QCOMPARE(item.GetProperty(QStringLiteral("MAKER"))->GetValue().ToString(), QStringLiteral("Moj proizvođač"));
        QCOMPARE(props->GetCategory(QStringLiteral("Ostalo"))->GetPropertyExVector().size(), size_t(1));
        QCOMPARE(item.GetProperty(QString::fromUtf16(CatalogItemNameTag))->GetValue().ToString(), QStringLiteral("Moj kabel"));
        QCOMPARE(props->categories().size(), size_t(3)); // Električki, Ostalo, Općenito
        // Extending twice adds nothing, and the definition itself is never touched.
        manager()->ExtendCatalogItem(QStringLiteral("TEST"), &item);
        QCOMPARE(props->categories().size(), size_t(3));
        item.GetProperty(QStringLiteral("CROSS_SECTION"))->SetValue(CDataBox::fromDouble(240));
        QCOMPARE(store.definition->GetProperty(QStringLiteral("CROSS_SECTION"))->GetValue().ToDouble(), 150.0);
        QCOMPARE(manager()->ExtendCatalogItem(QStringLiteral("NOPE"), &item), 0);
        QCOMPARE(manager()->ExtendCatalogItem(QStringLiteral("TEST"), static_cast<CCatalogItem*>(nullptr)), 0);
    }

    void groupsExtendFromGroupTemplates()
    {
        SmallStore store;
        auto group = boost::make_shared<CCatalogItem>();
        group->SetIsGroup(1);
        QCOMPARE(manager()->ExtendCatalogItem(QStringLiteral("TEST"), group), 1);
        QVERIFY(group->GetProperty(QStringLiteral("GROUP_CODE")));
        QVERIFY(!group->GetProperty(QStringLiteral("CROSS_SECTION")));
    }

    void newItemFromTemplateRoundTrip()
    {
        SmallStore store;
        std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
        manager()->GetCatalogItemTemplates(QStringLiteral("TEST"), templates);
        auto catalog = manager()->GetCatalog(QStringLiteral("TEST"), 1);
        auto item = catalog->GetFactory()->CreateItemFromTemplate(templates[1].get());
        auto group = catalog->GetItembyGuid(QStringLiteral("{G1}"));
        item->SetName(QStringLiteral("Novi"));
        item->SetParentItem(group);
        group->AddSubItem(item);
        QVERIFY(catalog->AddItem(item));
        QVERIFY(manager()->Save(QStringLiteral("TEST"), 1, 1));
        manager()->ReloadCatalog(QStringLiteral("TEST"));
        auto loaded = manager()->GetCatalog(QStringLiteral("TEST"), 1)->GetItembyGuid(item->GetGUID());
        QVERIFY(loaded);
        QCOMPARE(loaded->GetTemplateName(), QStringLiteral("Kabel"));
        QCOMPARE(loaded->GetParentItemGuid(), QStringLiteral("{G1}"));
        QCOMPARE(loaded->GetProperty(QString::fromUtf16(CatalogItemNameTag))->GetValue().ToString(), QStringLiteral("Novi"));
    }

    void rootFromEnvironmentAndSeededDefault()
    {
        SmallStore store;
        qputenv("ZEVX_CATALOG_ROOT", store.dir.path().toUtf8());
        qputenv("ZEVX_DRAWING", store.drawing().toUtf8());
        manager()->Configure(QString());
        QCOMPARE(manager()->RootFolder(), store.dir.path());
        QCOMPARE(manager()->DrawingPath(), store.drawing());
        qunsetenv("ZEVX_CATALOG_ROOT");
        qunsetenv("ZEVX_DRAWING");

        // Without any: the user's data folder, seeded from the bundled samples.
        const QString root = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
            + QStringLiteral("/zevxcatalogeditor/catalogs");
        QDir(root).removeRecursively();
        manager()->Configure(QString());
        QCOMPARE(manager()->RootFolder(), root);
        QCOMPARE(manager()->DrawingPath(), root + QStringLiteral("/drawings/Sample.dwg"));
        std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
        manager()->GetCatalogRegistry(registry);
        QCOMPARE(registry.size(), size_t(5));
        QVERIFY(QFileInfo(root + QStringLiteral("/cables.xml")).isWritable());
        QVERIFY(QFileInfo::exists(root + QStringLiteral("/pictures/transformator.svg")));
        auto cables = manager()->GetCatalog(QStringLiteral("CABLES"), 1);
        auto drawingCables = manager()->GetCatalog(QStringLiteral("CABLES"), 0);
        QVERIFY(cables && drawingCables);
        QVERIFY(cables->GetAllElementsMap()->size() != drawingCables->GetAllElementsMap()->size());
        QVERIFY(manager()->Save(QStringLiteral("CABLES"), 1, 1));
        QVERIFY2(manager()->TakeErrors().isEmpty(), "the samples load without complaint");
        QDir(root).removeRecursively();
    }

    void samplesExerciseEveryFlag()
    {
        QTemporaryDir dir;
        QString why;
        QVERIFY2(CatalogStore::seedFromSamples(dir.path(), why), qPrintable(why));
        manager()->Configure(dir.path(), QString());
        std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
        manager()->GetCatalogRegistry(registry);
        int hidden = 0, drawing = 0, noNew = 0, allowDefault = 0, depthOne = 0, deep = 0, oldTemplates = 0;
        for (const auto& m : registry) {
            hidden += m->GetHidden();
            drawing += m->GetMaintainDocumentSpecificVersion();
            noNew += m->GetDisableNewItems();
            allowDefault += m->GetAllowDefaultSelection();
            depthOne += m->GetMaxDepthlevel() == 1;
            deep += m->GetMaxDepthlevel() >= 3;
            std::vector<boost::shared_ptr<CCatalogItemTemplate>> templates;
            manager()->GetCatalogItemTemplates(m->GetCatalogReference(), templates);
            QVERIFY(!templates.empty());
            for (const auto& t : templates)
                oldTemplates += t->GetVersion() == -1;
            auto catalog = manager()->GetCatalog(m->GetCatalogReference(), 1);
            QVERIFY2(catalog && !catalog->GetAllElementsMap()->empty(), qPrintable(m->GetCatalogReference()));
            // Every picture an item names is there and renders.
            for (const auto& [guid, item] : *catalog->GetAllElementsMap()) {
                if (item->GetPictureRef().isEmpty())
                    continue;
                int mode = 0;
                QVERIFY2(!catalog->GetFactory()->CreatePictureBitmap(item->GetPictureRef(), item.get(), QRect(0, 0, 64, 64), &mode).isNull(),
                         qPrintable(item->GetPictureRef()));
            }
        }
        QVERIFY(hidden && drawing && noNew && allowDefault && depthOne && deep && oldTemplates);
        // Transformers: two default candidates share an equipment type.
        auto transformers = manager()->GetCatalog(QStringLiteral("TRANSFORMERS"), 1);
        QMap<QString, int> types;
        for (const auto& [guid, item] : *transformers->GetAllElementsMap())
            if (auto type = item->GetProperty(QStringLiteral("LSEQUIP_TYPE")))
                ++types[type->GetValue().ToString()];
        QVERIFY(std::any_of(types.begin(), types.end(), [](int n) { return n >= 2; }));
        QVERIFY(manager()->TakeErrors().isEmpty());
    }
};

QTEST_MAIN(TestCatalogStore)
#include "tst_catalogstore.moc"
