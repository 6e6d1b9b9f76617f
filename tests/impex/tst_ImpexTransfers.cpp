// The transfers of the import/export dialog without the dialog: which copies a file transfer
// makes, what a take-back removes, which items a walk sends in which order, the order of
// deletes, and the small rules around them.
#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "controls/ClrTreeCtrl.h"
#include "impex/ImpexTransfers.h"
#include "repository/RepositoryStorageManager.h"
#include "tests/editor/CatalogBuilder.h"
#include "tests/impex/RecordingRepository.h"
#include "trace/FunctionTracer.h"
#include "trace/FunctionTracerInternal.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <boost/make_shared.hpp>
#include <memory>

using namespace ZEVGis;
using Data::CCatalog;
using Data::CCatalogItem;
using Impex::ItemPtr;

namespace
{

// T (group, ord 0) { G (group, ord 1) { I2 (ord 2), I1 (ord 1), SG (group, ord 3) { D } } },
// U (group, ord 5), L (a top-level item)
boost::shared_ptr<CCatalog> WalkCatalog()
{
    CatalogBuilder b;
    b.catalog().SetReference(QStringLiteral("WALK"));
    auto t = b.group("T", {}, 0);
    auto g = b.group("G", t, 1);
    b.item("I2", g, 2);
    b.item("I1", g, 1);
    auto sg = b.group("SG", g, 3);
    b.item("D", sg, 0);
    b.group("U", {}, 5);
    b.item("L", {}, 4);
    return b.shared();
}

// "name<parent:image" for each copy, "*" after the ones to select.
QStringList Describe(const std::vector<Impex::FileCopy>& copies)
{
    QStringList out;
    for (const auto& c : copies)
        out << QStringLiteral("%1<%2:%3%4")
                   .arg(c.copy->GetName(), c.parentGuid)
                   .arg(c.image)
                   .arg(c.select ? "*" : "");
    return out;
}

// The catalog's tree as "name(sub, sub)" in GUID order.
QString Shape(CCatalogItem& item)
{
    QStringList subs;
    for (const auto& [guid, sub] : *item.GetSubItems())
        subs << Shape(*sub);
    return subs.isEmpty() ? item.GetName() : item.GetName() + "(" + subs.join(", ") + ")";
}

QString Shape(CCatalog& catalog)
{
    QStringList roots;
    for (const auto& [guid, item] : *catalog.GetRootElementsMap())
        roots << Shape(*item);
    return roots.join("; ");
}

} // namespace

class TestImpexTransfers : public QObject
{
    Q_OBJECT

private slots:
    // Each test talks to a fresh SQLite repository.
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        auto* client = Repository::CRepositoryStorageManager::Instance();
        QVERIFY2(client->Configure("sqlite:" + m_folder->filePath("repository.sqlite")),
                 qPrintable(client->LastError()));
    }
    void cleanupTestCase() { Repository::CRepositoryStorageManager::Instance()->Configure("none"); }

    void colorRefIsRedInTheLowByte_data();
    void colorRefIsRedInTheLowByte();
    void xmlExtension_data();
    void xmlExtension();
    void folderOfPath();

    void copyIntoCatalog_data();
    void copyIntoCatalog();
    void copyKeepsGuidsAndContent();
    void takeBackOrder();

    void sendWalk_data();
    void sendWalk();
    void sendWalkLogLines();

    void deleteOrder_data();
    void deleteOrder();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestImpexTransfers::colorRefIsRedInTheLowByte_data()
{
    QTest::addColumn<quint32>("colorRef");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("transferred") << 0x7CFC00u << QColor(0x00, 0xFC, 0x7C);
    QTest::newRow("source grey") << 0x808080u << QColor(0x80, 0x80, 0x80);
    QTest::newRow("pure red") << 0x0000FFu << QColor(255, 0, 0);
    QTest::newRow("pure blue") << 0xFF0000u << QColor(0, 0, 255);
}

void TestImpexTransfers::colorRefIsRedInTheLowByte()
{
    QFETCH(quint32, colorRef);
    QFETCH(QColor, expected);
    QCOMPARE(ColorFromColorRef(colorRef), expected);

    // A row shows its own colour; 0 gives the row back the tree's default colour.
    CClrTreeItem row(QStringLiteral("row"), 0, nullptr);
    row.setTextColor(colorRef);
    QCOMPARE(row.data(0, Qt::ForegroundRole).value<QBrush>().color(), expected);
    row.setTextColor(0);
    QVERIFY(!row.data(0, Qt::ForegroundRole).isValid());
}

void TestImpexTransfers::xmlExtension_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << "/tmp/out" << "/tmp/out.xml";
    QTest::newRow("lower") << "/tmp/out.xml" << "/tmp/out.xml";
    QTest::newRow("capitals kept") << "/tmp/out.XML" << "/tmp/out.XML";
    QTest::newRow("mixed kept") << "/tmp/out.Xml" << "/tmp/out.Xml";
    QTest::newRow("other extension") << "/tmp/out.txt" << "/tmp/out.txt.xml";
    QTest::newRow("xml inside") << "/tmp/out.xmlx" << "/tmp/out.xmlx.xml";
    QTest::newRow("empty") << "" << "";
}

void TestImpexTransfers::xmlExtension()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QCOMPARE(Impex::WithXmlExtension(path), expected);
}

void TestImpexTransfers::folderOfPath()
{
    QTemporaryDir dir;
    QVERIFY(Impex::FolderOfPathExists(dir.filePath("new.xml")));
    QVERIFY(Impex::FolderOfPathExists(QStringLiteral("/x.xml")));
    QVERIFY(!Impex::FolderOfPathExists(dir.filePath("missing/new.xml")));
    QVERIFY(!Impex::FolderOfPathExists(QStringLiteral("new.xml")));
    QVERIFY(!Impex::FolderOfPathExists(QString()));
}

void TestImpexTransfers::copyIntoCatalog_data()
{
    QTest::addColumn<QStringList>("already"); // entries copied before, in order
    QTest::addColumn<QString>("selected");
    QTest::addColumn<bool>("hasTreeParent");
    QTest::addColumn<QStringList>("copies");
    QTest::addColumn<QString>("shape");

    QTest::newRow("group: top-level, direct sub-items with the item image")
        << QStringList() << "{G}" << true
        << QStringList{"G<:0", "I1<{G}:6*", "I2<{G}:6*", "SG<{G}:6*"} << "G(I1, I2, SG)";
    QTest::newRow("item three levels deep: under a top-level copy of its parent")
        << QStringList() << "{D}" << true << QStringList{"SG<:0", "D<{SG}:6*"} << "SG(D)";
    QTest::newRow("item twice: no second copy")
        << QStringList{"{I1}"} << "{I1}" << true << QStringList() << "G(I1)";
    QTest::newRow("item whose sibling group was copied: its own parent made top-level")
        << QStringList{"{SG}"} << "{I1}" << true << QStringList{"G<:0", "I1<{G}:6*"}
        << "G(I1); SG(D)";
    QTest::newRow("group already there: only the sub-items it lacks")
        << QStringList{"{I2}"} << "{G}" << true << QStringList{"I1<{G}:6*", "SG<{G}:6*"}
        << "G(I1, I2, SG)";
    QTest::newRow("group whose sub-group was copied before")
        << QStringList{"{G}"} << "{T}" << true << QStringList{"T<:0"} << "G(I1, I2, SG); T";
    QTest::newRow("top-level item: not copied") << QStringList() << "{L}" << true
                                                 << QStringList() << "";
    QTest::newRow("row without a parent row: not copied")
        << QStringList() << "{I1}" << false << QStringList() << "";
}

void TestImpexTransfers::copyIntoCatalog()
{
    QFETCH(QStringList, already);
    QFETCH(QString, selected);
    QFETCH(bool, hasTreeParent);
    QFETCH(QStringList, copies);
    QFETCH(QString, shape);

    const auto source = WalkCatalog();
    CCatalog target;
    for (const QString& guid : already)
        Impex::CopyIntoCatalog(target, *source->GetItembyGuid(guid), true);
    QCOMPARE(Describe(Impex::CopyIntoCatalog(target, *source->GetItembyGuid(selected), hasTreeParent)),
             copies);
    QCOMPARE(Shape(target), shape);
}

void TestImpexTransfers::copyKeepsGuidsAndContent()
{
    const auto source = WalkCatalog();
    CatalogBuilder::setProperties(source->GetItembyGuid("{I1}"), {{"CATALOGITEM_NAME", "I1"},
                                                                  {"CROSS_SECTION", "95"}});
    CCatalog target;
    const auto copies = Impex::CopyIntoCatalog(target, *source->GetItembyGuid("{G}"), true);
    QCOMPARE(copies.size(), size_t(4));
    for (const auto& copy : copies)
    {
        QCOMPARE(copy.copy->GetGUID(), copy.source->GetGUID());
        QVERIFY(copy.copy.get() != copy.source);
        QCOMPARE(target.GetItembyGuid(copy.copy->GetGUID()), copy.copy);
    }
    const auto i1 = target.GetItembyGuid("{I1}");
    QCOMPARE(i1->GetProperty("CROSS_SECTION")->GetValue().ToString(), QStringLiteral("95"));
    QCOMPARE(i1->GetParentItemGuid(), QStringLiteral("{G}"));
    // The source is not touched.
    QCOMPARE(source->GetItembyGuid("{G}")->GetParentItemGuid(), QStringLiteral("{T}"));
}

void TestImpexTransfers::takeBackOrder()
{
    const auto catalog = WalkCatalog();
    const std::vector<QString> group = Impex::TakeBackGuids(*catalog->GetItembyGuid("{G}"));
    QCOMPARE(QStringList(group.begin(), group.end()), (QStringList{"{I1}", "{I2}", "{SG}", "{G}"}));
    const std::vector<QString> item = Impex::TakeBackGuids(*catalog->GetItembyGuid("{D}"));
    QCOMPARE(QStringList(item.begin(), item.end()), QStringList{"{D}"});
}

void TestImpexTransfers::sendWalk_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<int>("loseAfter");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<bool>("finished");

    QTest::newRow("item three levels deep: bottom-up, flag 0")
        << "{I1}" << 0 << QStringList{"add I1 0", "add G 0", "add T 0"} << true;
    QTest::newRow("group: the walk, then the group with its descendants in order")
        << "{G}" << 0
        << QStringList{"add G 0", "add T 0", "add G 1", "add I1 1", "add I2 1", "add SG 1",
                       "add D 1"}
        << true;
    QTest::newRow("top-level item alone") << "{L}" << 0 << QStringList{"add L 0"} << true;
    QTest::newRow("lost in the walk: nothing more is sent")
        << "{G}" << 1 << QStringList{"add G 0"} << false;
    QTest::newRow("lost on the group's own send: its first sub-item still goes, then no more")
        << "{G}" << 3 << QStringList{"add G 0", "add T 0", "add G 1", "add I1 1"} << false;
    QTest::newRow("lost on a sub-group: its first sub-item still goes, then no more")
        << "{G}" << 6
        << QStringList{"add G 0", "add T 0", "add G 1", "add I1 1", "add I2 1", "add SG 1",
                       "add D 1"}
        << false;
}

void TestImpexTransfers::sendWalk()
{
    QFETCH(QString, entry);
    QFETCH(int, loseAfter);
    QFETCH(QStringList, calls);
    QFETCH(bool, finished);

    const auto catalog = WalkCatalog();
    RecordingRepository repository;
    repository.loseAfter(loseAfter);
    const Impex::RepositoryTarget target{repository, "WALK", "Walk"};
    FunctionTracer tracer("DlgCatalogImpex", 700, "CDlgCatalogImpex::OnBnClickedBtnAdd");
    QCOMPARE(Impex::SendEntryToRepository(target, *catalog, *catalog->GetItembyGuid(entry), tracer),
             finished);
    QCOMPARE(repository.calls(), calls);
}

void TestImpexTransfers::sendWalkLogLines()
{
    QTemporaryDir dir;
    const QString log = dir.filePath("impex.log");
    qputenv("ZEVX_LOG", "1");
    qputenv("ZEVX_LOG_FILE", log.toLocal8Bit());
    FunctionTracerInternal::resetForTests();
    {
        const auto catalog = WalkCatalog();
        RecordingRepository repository;
        repository.failOn("{T}");
        repository.failOn("{SG}");
        const Impex::RepositoryTarget target{repository, "WALK", "Walk"};
        FunctionTracer tracer("DlgCatalogImpex", 700, "CDlgCatalogImpex::OnBnClickedBtnAdd");
        QVERIFY(Impex::SendEntryToRepository(target, *catalog, *catalog->GetItembyGuid("{G}"), tracer));
    }
    qputenv("ZEVX_LOG", "0");
    FunctionTracerInternal::resetForTests();

    QFile file(log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList bodies;
    for (const QByteArray& line : file.readAll().split('\n'))
    {
        const int at = line.indexOf("], ");
        if (at >= 0 && !line.contains("Entering function") && !line.contains("Exiting function"))
            bodies << QString::fromUtf8(line.mid(at + 3));
    }
    QCOMPARE(bodies, (QStringList{"U network repository dodan katalog item!",
                                  QString::fromUtf8("Greška u dodavanju na server!"),
                                  "Dodan item: G", "Dodan item: I1", "Dodan item: I2",
                                  "Nije dodan item: SG", "Dodan item: D"}));
}

void TestImpexTransfers::deleteOrder_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<int>("loseAfter");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QString>("rowsLeft");

    QTest::newRow("deepest first, a sub-group asked twice, the group last")
        << "" << 0
        << QStringList{"delete {D}", "delete {SG}", "delete {SG}", "delete {I1}", "delete {G}"}
        << "";
    QTest::newRow("a failed record keeps its row and every row above it")
        << "{D},{SG}" << 0 << QStringList{"delete {D}", "delete {SG}"} << "G(SG(D), I1)";
    QTest::newRow("a failed sibling keeps the group")
        << "{I1}" << 0
        << QStringList{"delete {D}", "delete {SG}", "delete {SG}", "delete {I1}"} << "G(I1)";
    QTest::newRow("lost after the first delete: the sub-group is asked once more, then no more")
        << "" << 1 << QStringList{"delete {D}", "delete {SG}"} << "G(SG, I1)";
}

void TestImpexTransfers::deleteOrder()
{
    QFETCH(QString, failing);
    QFETCH(int, loseAfter);
    QFETCH(QStringList, calls);
    QFETCH(QString, rowsLeft);

    using Repository::CNetCatalogueItem;
    std::vector<boost::shared_ptr<CNetCatalogueItem>> records;
    QTreeWidget tree;
    auto row = [&](const QString& id, const QString& parent, bool group, QTreeWidgetItem* under)
    {
        records.push_back(boost::make_shared<CNetCatalogueItem>(
            ("{" + id + "}").toStdWString(), parent.toStdWString(), id.toStdWString(), group));
        auto* item = new CClrTreeItem(id, 0, records.back().get());
        under ? under->addChild(item) : tree.addTopLevelItem(item);
        return item;
    };
    auto* g = row("G", "", true, nullptr);
    auto* sg = row("SG", "{G}", true, g);
    row("D", "{SG}", false, sg);
    row("I1", "{G}", false, g);
    const auto catalog = WalkCatalog();
    for (const char* id : {"{G}", "{SG}", "{D}", "{I1}"})
        QVERIFY(Impex::ClientRepository()->AddCatalogItem("WALK", "Walk", catalog->GetItembyGuid(id), 0));

    RecordingRepository repository;
    for (const QString& id : failing.split(',', Qt::SkipEmptyParts))
        repository.failOn(id);
    repository.loseAfter(loseAfter);
    const Impex::RepositoryTarget target{repository, "WALK", "Walk"};
    QStringList forgotten;
    const bool gone = Impex::DeleteCatalogItems(target, g, [&](QTreeWidgetItem* r)
                                                { forgotten << r->text(0); });
    QCOMPARE(repository.calls(), calls);
    QCOMPARE(gone, rowsLeft.isEmpty());
    // The dialog hears of every row before it goes, the group's own row last.
    QCOMPARE(forgotten.contains("G"), rowsLeft.isEmpty());
    QVERIFY(!forgotten.contains("G") || forgotten.last() == "G");
    std::function<QString(QTreeWidgetItem*)> shape = [&](QTreeWidgetItem* r)
    {
        QStringList subs;
        for (int i = 0; i < r->childCount(); ++i)
            subs << shape(r->child(i));
        return subs.isEmpty() ? r->text(0) : r->text(0) + "(" + subs.join(", ") + ")";
    };
    QCOMPARE(tree.topLevelItemCount() ? shape(tree.topLevelItem(0)) : QString(), rowsLeft);
}

QTEST_MAIN(TestImpexTransfers)
#include "tst_ImpexTransfers.moc"
