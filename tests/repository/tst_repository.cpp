// The repository client's records on every back end: what is sent comes back whole, flag 0
// against 1, replacement and revision, the catalog's name, what one action spares, children
// order, deletion rules, a walk of the tree.

#include "tests/repository/RepositoryTestSupport.h"

#include "catalog/CatalogItemXml.h"

#include <QLoggingCategory>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QtTest>
#include <functional>

using namespace RepositoryTest;
using Repository::CRepositoryStorageManager;

class TestRepository : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { stopSharedServer(); }
    void cleanup();

    void itemXmlRoundTrip();
    void roundTripKeepsEverything_data() { addBackendRows(); }
    void roundTripKeepsEverything();
    void flagZeroSendsTheItemAlone_data() { addBackendRows(); }
    void flagZeroSendsTheItemAlone();
    void replacingBumpsTheRevision_data() { addBackendRows(); }
    void replacingBumpsTheRevision();
    void catalogNameFollowsTheLastNamedSend_data() { addBackendRows(); }
    void catalogNameFollowsTheLastNamedSend();
    void actionSparesWhatItWroteUnchanged_data() { addBackendRows(); }
    void actionSparesWhatItWroteUnchanged();
    void childrenComeInOrderThenName_data() { addBackendRows(); }
    void childrenComeInOrderThenName();
    void deleteRefusedWhileChildrenRemain_data() { addBackendRows(); }
    void deleteRefusedWhileChildrenRemain();
    void recordBeforeItsParent_data() { addBackendRows(); }
    void recordBeforeItsParent();
    void threeLevelWalkAndTwoCatalogs_data() { addBackendRows(); }
    void threeLevelWalkAndTwoCatalogs();
    void defaultIsSqliteInTheDataFolder();
};

void TestRepository::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    // Failures are expected here; their lines are checked through LastError().
    QLoggingCategory::setFilterRules(QStringLiteral("zevx.repository.warning=false"));
}

void TestRepository::cleanup()
{
    CRepositoryStorageManager::Instance()->Reset();
}

void TestRepository::itemXmlRoundTrip()
{
    Item item = makeFullItem(QStringLiteral("Kabel <&\"'> ČĆŽŠĐ čćžšđ 日本 😀"));
    QString why;
    Item back = ZEVGis::Data::CatalogItemFromXml(ZEVGis::Data::CatalogItemToXml(*item), &why);
    QVERIFY2(back, qPrintable(why));
    QCOMPARE(differences(*item, *back), QString());

    QVERIFY(!ZEVGis::Data::CatalogItemFromXml("<c n=\"x\"/>", &why));
    QVERIFY2(why.contains(u"not a catalog item"), qPrintable(why));
    QVERIFY(!ZEVGis::Data::CatalogItemFromXml("<i id=\"{a}\" o=\"x\"/>", &why));
    QVERIFY2(why.contains(u"order number"), qPrintable(why));
    QVERIFY(!ZEVGis::Data::CatalogItemFromXml("<i id=", &why));
}

void TestRepository::roundTripKeepsEverything()
{
    REPOSITORY_SETUP(folder);
    const QStringList names = {QStringLiteral("Kabel <&\"'> ČĆŽŠĐ čćžšđ 日本 😀"),
                               QStringLiteral("x'); DROP TABLE items; --"),
                               QStringLiteral("  spaces around  "), QStringLiteral("%s %n \\ ?")};
    for (const QString& name : names)
    {
        Item item = makeFullItem(name);
        item->SetGUID(QStringLiteral("{%1}").arg(qHash(name)));
        QVERIFY2(
            repository->AddCatalogItem(QStringLiteral("REF"), QStringLiteral("Kabeli"), item, 0),
            qPrintable(repository->LastError()));
        Item back = repository->GetCatalogItemById(QStringLiteral("REF"), item->GetGUID(), 1);
        QVERIFY2(back, qPrintable(repository->LastError()));
        QCOMPARE(differences(*item, *back), QString());
    }
    // The names are records under the parent they named, the tables still there.
    Records records;
    QVERIFY(repository->GetChildCatalogItems(QStringLiteral("REF"),
                                             QStringLiteral("{parent-not-sent}"), records, 0));
    QStringList expected = names;
    QCOMPARE(RepositoryTest::names(records).size(), expected.size());
    for (const QString& name : expected)
        QVERIFY2(RepositoryTest::names(records).contains(name), qPrintable(name));
    QCOMPARE(QString::fromStdWString(records.front()->GetParentId()),
             QStringLiteral("{parent-not-sent}"));
    QVERIFY(!records.front()->GetIsGroup());
    QCOMPARE(records.front()->GetOrd(), -7);
    QVERIFY(repository->IsRepositoryAccessible());
}

void TestRepository::flagZeroSendsTheItemAlone()
{
    REPOSITORY_SETUP(folder);
    Item group = makeItem(QStringLiteral("G"), true);
    Item sub = makeItem(QStringLiteral("S"), true, group, 1);
    makeItem(QStringLiteral("I1"), false, group, 2);
    makeItem(QStringLiteral("I2"), false, sub, 1);

    QVERIFY(repository->AddCatalogItem(QStringLiteral("REF"), QStringLiteral("Name"), group, 0));
    QCOMPARE(tree(QStringLiteral("REF")), QStringList({QStringLiteral("G")}));
    QVERIFY(repository->AddCatalogItem(QStringLiteral("REF"), QStringLiteral("Name"), group, 1));
    QCOMPARE(tree(QStringLiteral("REF")),
             QStringList({QStringLiteral("G"), QStringLiteral("  S"), QStringLiteral("    I2"),
                          QStringLiteral("  I1")}));
    Item back = repository->GetCatalogItemById(QStringLiteral("REF"), QStringLiteral("{I2}"), 1);
    QVERIFY(back);
    QCOMPARE(back->GetParentItemGuid(), QStringLiteral("{S}"));
    QVERIFY(back->GetSubItems()->empty());
}

void TestRepository::replacingBumpsTheRevision()
{
    REPOSITORY_SETUP(folder);
    Item group = makeItem(QStringLiteral("G"), true);
    Item child = makeItem(QStringLiteral("C"), false, group);
    const auto revisions = [&]
    {
        return QStringLiteral("G%1 C%2")
            .arg(repository->GetRevision(QStringLiteral("REF"), QStringLiteral("{G}")))
            .arg(repository->GetRevision(QStringLiteral("REF"), QStringLiteral("{C}")));
    };
    // Each step changes the items (or not), sends one of them, and names the revisions after.
    const struct
    {
        std::function<void()> change;
        Item sent;
        int flag;
        QString expected;
    } steps[] = {
        {[] {}, group, 1, QStringLiteral("G1 C1")},
        {[] {}, group, 1, QStringLiteral("G1 C1")}, // unchanged: nothing replaced
        {[&] { child->SetName(QStringLiteral("C renamed")); }, child, 0, QStringLiteral("G1 C2")},
        {[&] { child->SetOrd(5); }, group, 1, QStringLiteral("G1 C3")},
        {[&] { group->SetPictureRef(QStringLiteral("g.png")); }, group, 0, QStringLiteral("G2 C3")},
        {[] {}, child, 0, QStringLiteral("G2 C3")},
        {[&] { child->SetIsDefault(1); }, group, 1, QStringLiteral("G2 C4")},
    };
    for (const auto& step : steps)
    {
        step.change();
        QVERIFY2(repository->AddCatalogItem(QStringLiteral("REF"), QString(), step.sent, step.flag),
                 qPrintable(repository->LastError()));
        QCOMPARE(revisions(), step.expected);
    }
    QCOMPARE(repository->GetRevision(QStringLiteral("REF"), QStringLiteral("{absent}")), 0);

    Item back = repository->GetCatalogItemById(QStringLiteral("REF"), QStringLiteral("{C}"), 1);
    QVERIFY(back);
    QCOMPARE(back->GetName(), QStringLiteral("C renamed"));
    QCOMPARE(back->GetOrd(), 5);
    QCOMPARE(tree(QStringLiteral("REF")),
             QStringList({QStringLiteral("G"), QStringLiteral("  C renamed")}));
}

void TestRepository::catalogNameFollowsTheLastNamedSend()
{
    REPOSITORY_SETUP(folder);
    const QString target = sqlTarget(backend, folder, url);
    const auto displayName = [&]
    { return sql(backend, target, QStringLiteral("SELECT display_name FROM catalogs")); };
    Item group = makeItem(QStringLiteral("G"), true);
    Item child = makeItem(QStringLiteral("C"), false, group);
    // One record after a send that wrote the catalog's row takes a shorter way: the name
    // must still be kept, or replaced when it changes.
    const struct
    {
        Item item;
        int flag;
        QString name;
        QString expected;
    } sends[] = {
        {child, 0, QString(), QStringLiteral("REF")},
        {group, 1, QStringLiteral("Kabeli"), QStringLiteral("Kabeli")},
        {child, 0, QString(), QStringLiteral("Kabeli")},
        {child, 0, QStringLiteral("Kabeli"), QStringLiteral("Kabeli")},
        {child, 0, QStringLiteral("Kabeli 1 kV"), QStringLiteral("Kabeli 1 kV")},
        {group, 0, QString(), QStringLiteral("Kabeli 1 kV")},
    };
    for (const auto& send : sends)
    {
        QVERIFY2(repository->AddCatalogItem(QStringLiteral("REF"), send.name, send.item, send.flag),
                 qPrintable(repository->LastError()));
        QCOMPARE(displayName(), send.expected);
    }
    // Sent five times, never changed: written once.
    QCOMPARE(repository->GetRevision(QStringLiteral("REF"), QStringLiteral("{C}")), 1);
}

void TestRepository::actionSparesWhatItWroteUnchanged()
{
    REPOSITORY_SETUP(folder);
    const QString target = sqlTarget(backend, folder, url);
    Item group = makeItem(QStringLiteral("G"), true);
    Item child = makeItem(QStringLiteral("C"), false, group);
    const auto send = [&](const Item& item, int flag)
    { return repository->AddCatalogItem(QStringLiteral("REF"), QString(), item, flag); };
    // Another editor renames the record meanwhile: only a send that writes puts "C" back.
    const auto renameElsewhere = [&]
    { sql(backend, target, QStringLiteral("UPDATE items SET name = 'elsewhere' WHERE id = '{C}'")); };
    const auto heldName = [&]
    { return sql(backend, target, QStringLiteral("SELECT name FROM items WHERE id = '{C}'")); };

    repository->BeginAction();
    QVERIFY2(send(group, 1), qPrintable(repository->LastError()));
    renameElsewhere();
    QVERIFY(send(child, 1)); // written in this action and unchanged: spared
    QCOMPARE(heldName(), QStringLiteral("elsewhere"));
    child->SetPictureRef(QStringLiteral("c.png"));
    QVERIFY(send(child, 0)); // changed here: written
    QCOMPARE(heldName(), QStringLiteral("C"));
    QVERIFY(repository->DeleteCatalogItem(QStringLiteral("REF"), QStringLiteral("{C}")));
    QVERIFY(send(child, 0)); // deleted meanwhile: written again
    QCOMPARE(heldName(), QStringLiteral("C"));
    repository->BeginAction(); // nested: the outer action goes on
    repository->EndAction();
    renameElsewhere();
    QVERIFY(send(child, 0));
    QCOMPARE(heldName(), QStringLiteral("elsewhere"));
    repository->EndAction();

    QVERIFY(send(child, 0)); // the action is over: every send writes what differs
    QCOMPARE(heldName(), QStringLiteral("C"));
}

void TestRepository::childrenComeInOrderThenName()
{
    REPOSITORY_SETUP(folder);
    Item group = makeItem(QStringLiteral("G"), true);
    makeItem(QStringLiteral("b"), false, group, 2);
    makeItem(QStringLiteral("a"), false, group, 2);
    makeItem(QStringLiteral("Z"), false, group, 1);
    makeItem(QStringLiteral("c"), false, group, -3);
    makeItem(QStringLiteral("B"), false, group, 2);
    QVERIFY(repository->AddCatalogItem(QStringLiteral("REF"), QString(), group, 1));
    Records records;
    QVERIFY(
        repository->GetChildCatalogItems(QStringLiteral("REF"), QStringLiteral("{G}"), records, 0));
    QCOMPARE(names(records),
             QStringList({QStringLiteral("c"), QStringLiteral("Z"), QStringLiteral("B"),
                          QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(records[1]->GetOrd(), 1);
    QCOMPARE(QString::fromStdWString(records[1]->GetParentId()), QStringLiteral("{G}"));
    QVERIFY(repository->GetChildCatalogItems(QStringLiteral("REF"), QStringLiteral("{none}"),
                                             records, 0));
    QVERIFY(records.empty());
}

void TestRepository::deleteRefusedWhileChildrenRemain()
{
    REPOSITORY_SETUP(folder);
    Item group = makeItem(QStringLiteral("G"), true);
    Item sub = makeItem(QStringLiteral("S"), true, group);
    makeItem(QStringLiteral("I"), false, sub);
    QVERIFY(repository->AddCatalogItem(QStringLiteral("REF"), QString(), group, 1));

    QCOMPARE(repository->DeleteCatalogItem(QStringLiteral("REF"), QStringLiteral("{G}")), 0);
    QVERIFY2(repository->LastError().contains(u"child record"),
             qPrintable(repository->LastError()));
    QCOMPARE(repository->DeleteCatalogItem(QStringLiteral("REF"), QStringLiteral("{S}")), 0);
    QVERIFY(repository->IsRepositoryAccessible());
    QCOMPARE(tree(QStringLiteral("REF")).size(), 3);

    // Bottom-up, as the dialog deletes a group; a record asked for twice is still gone.
    for (const char* id : {"{I}", "{S}", "{S}", "{G}", "{never-sent}"})
    {
        QVERIFY2(repository->DeleteCatalogItem(QStringLiteral("REF"), QString::fromLatin1(id)), id);
        QCOMPARE(repository->LastError(), QString());
    }
    QCOMPARE(tree(QStringLiteral("REF")), QStringList());
    QVERIFY(!repository->GetCatalogItemById(QStringLiteral("REF"), QStringLiteral("{G}"), 1));
    QCOMPARE(repository->LastError(), QString());
}

void TestRepository::recordBeforeItsParent()
{
    REPOSITORY_SETUP(folder);
    // The dialog's walk sends the item first, its ancestors after it, each alone.
    Item top = makeItem(QStringLiteral("Top"), true);
    Item middle = makeItem(QStringLiteral("Middle"), true, top);
    Item leaf = makeItem(QStringLiteral("Leaf"), false, middle);
    QVERIFY(repository->AddCatalogItem(QStringLiteral("REF"), QString(), leaf, 0));
    QCOMPARE(tree(QStringLiteral("REF")), QStringList());
    QVERIFY(repository->AddCatalogItem(QStringLiteral("REF"), QString(), middle, 0));
    QVERIFY(repository->AddCatalogItem(QStringLiteral("REF"), QString(), top, 0));
    QCOMPARE(tree(QStringLiteral("REF")),
             QStringList(
                 {QStringLiteral("Top"), QStringLiteral("  Middle"), QStringLiteral("    Leaf")}));
}

void TestRepository::threeLevelWalkAndTwoCatalogs()
{
    REPOSITORY_SETUP(folder);
    Item first = makeItem(QStringLiteral("A"), true, {}, 2);
    Item second = makeItem(QStringLiteral("B"), true, {}, 1);
    for (int i = 0; i < 3; ++i)
    {
        Item group = makeItem(QStringLiteral("B%1").arg(i), true, second, 3 - i);
        for (int k = 0; k < 2; ++k)
            makeItem(QStringLiteral("B%1-%2").arg(i).arg(k), false, group, k);
    }
    QVERIFY(repository->AddCatalogItem(QStringLiteral("ONE"), QStringLiteral("One"), first, 1));
    QVERIFY(repository->AddCatalogItem(QStringLiteral("ONE"), QStringLiteral("One"), second, 1));
    QCOMPARE(
        tree(QStringLiteral("ONE")).join(u'|'),
        QStringLiteral("B|  B2|    B2-0|    B2-1|  B1|    B1-0|    B1-1|  B0|    B0-0|    B0-1|A"));

    // The same GUID in another catalog is another record.
    first->SetName(QStringLiteral("A in two"));
    QVERIFY(repository->AddCatalogItem(QStringLiteral("TWO"), QStringLiteral("Two"), first, 1));
    QCOMPARE(tree(QStringLiteral("TWO")), QStringList({QStringLiteral("A in two")}));
    QCOMPARE(
        repository->GetCatalogItemById(QStringLiteral("ONE"), QStringLiteral("{A}"), 1)->GetName(),
        QStringLiteral("A"));
    QCOMPARE(repository->GetRevision(QStringLiteral("TWO"), QStringLiteral("{A}")), 1);
    QVERIFY(repository->DeleteCatalogItem(QStringLiteral("TWO"), QStringLiteral("{A}")));
    QVERIFY(repository->GetCatalogItemById(QStringLiteral("ONE"), QStringLiteral("{A}"), 1));
}

void TestRepository::defaultIsSqliteInTheDataFolder()
{
    qunsetenv("ZEVX_REPOSITORY");
    auto* repository = CRepositoryStorageManager::Instance();
    repository->Reset();
    QVERIFY2(repository->IsInitialized(), qPrintable(repository->LastError()));
    const QString file = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                         QStringLiteral("/zevxcatalogeditor/repository.sqlite");
    QCOMPARE(repository->DisplayUrl(), QStringLiteral("sqlite:") + file);
    QVERIFY(QFile::exists(file));
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("probe"));
        db.setDatabaseName(file);
        QVERIFY(db.open());
        QSqlQuery query(db);
        QVERIFY(query.exec(QStringLiteral("PRAGMA journal_mode")) && query.next());
        QCOMPARE(query.value(0).toString(), QStringLiteral("wal"));
        QVERIFY(query.exec(QStringLiteral("SELECT version FROM schema_version")) && query.next());
        QCOMPARE(query.value(0).toInt(), 1);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("probe"));
    repository->Reset();
    QFile::remove(file);

    qputenv("ZEVX_REPOSITORY", "none");
    QVERIFY(!repository->IsInitialized());
    QVERIFY(!repository->IsRepositoryAccessible());
    Records records;
    QVERIFY(!repository->GetChildCatalogItems(QStringLiteral("REF"), QString(), records, 0));
    qunsetenv("ZEVX_REPOSITORY");
}

QTEST_GUILESS_MAIN(TestRepository)
#include "tst_repository.moc"
