// Undo and redo of every kind of catalog edit, checked on the catalog's XML, and the trees'
// name filter.
#include "catalog/CatalogItemTemplate.h"
#include "editor/EditCommands.h"
#include "editor/NameFilter.h"
#include "tests/editor/CatalogBuilder.h"

#include <QRandomGenerator>
#include <QUndoStack>
#include <QtTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;
using namespace ZEVGis::Editor;

namespace
{

// A catalog with groups, a nested group, a root-level item, equipment types and a default,
// and a drawing copy that holds entries the catalog lacks.
struct Catalogs
{
    CatalogBuilder catalog;
    CatalogBuilder drawing;
    TemplatePtr tmpl;
    CatalogBuilder::Item cables, poles, wood, looseItem, a, b, c, d, e;
    CatalogBuilder::Item dwgGroup, dwgItem, dwgKnownGroup, dwgNewItem;

    Catalogs()
    {
        cables = catalog.group("Cables", {}, 0);
        poles = catalog.group("Poles", {}, 1);
        wood = catalog.group("Wood", poles, 0);
        looseItem = catalog.item("Loose", {}, 2);
        a = catalog.item("A 10", cables, 0);
        b = catalog.item("B 20", cables, 1);
        c = catalog.item("C 1", cables, 2);
        d = catalog.item("D", wood, 0);
        e = catalog.item("E", wood, 1);
        CatalogBuilder::setProperties(a, {{"CATALOGITEM_NAME", "A 10"}, {"LSEQUIP_TYPE", "T1"}});
        CatalogBuilder::setProperties(b, {{"CATALOGITEM_NAME", "B 20"}, {"LSEQUIP_TYPE", "T1"}});
        CatalogBuilder::setProperties(d, {{"MAKER", "Končar"}});
        a->SetIsDefault(1);

        dwgKnownGroup = drawing.group("Cables", {}, 0, cables->GetGUID());
        dwgNewItem = drawing.item("New cable", dwgKnownGroup, 5);
        dwgGroup = drawing.group("Switchgear", {}, 3);
        dwgItem = drawing.item("Breaker", dwgGroup, 0);
        CatalogBuilder::setProperties(dwgItem, {{"RATING", "630"}});

        auto definition = boost::make_shared<CCatalogItem>();
        CatalogBuilder::setProperties(definition, {{"CATALOGITEM_NAME", ""}, {"MAKER", "x"}});
        tmpl = boost::make_shared<CCatalogItemTemplate>(QStringLiteral("Cable"), 1, definition);
    }

    boost::shared_ptr<CCatalog> shared() { return catalog.shared(); }
    QString xml() { return catalog.catalog().GetXML(); }

    std::vector<ItemPtr> sorted(const ItemPtr& parent)
    {
        std::vector<ItemPtr> list;
        parent->GetSortedSubItems(list);
        return list;
    }
    std::vector<ItemPtr> entries(const CCatalog::ItemMap& map)
    {
        std::vector<ItemPtr> list;
        for (const auto& [guid, item] : map)
            list.push_back(item);
        return list;
    }
};

using MakeEdit = std::function<QUndoCommand*(Catalogs&)>;

// The grid writes a value, then the editor records the edit with the value before it.
QUndoCommand* propertyEdit(Catalogs& c, const ItemPtr& item, const QString& tag,
                           const QString& value)
{
    const auto property = item->GetProperty(tag);
    const PropertyEditCommand::State before{property->GetValue(), item->GetName()};
    property->SetValue(CDataBox::fromString(value));
    if (tag == QString::fromUtf16(CatalogItemNameTag))
        item->SetName(value);
    const PropertyEditCommand::State after{property->GetValue(), item->GetName()};
    return new PropertyEditCommand(c.shared(), item.get(), property.get(), before, after);
}

AddToApplicationResult g_result;

} // namespace

Q_DECLARE_METATYPE(MakeEdit)

class TestEditorUndo : public QObject
{
    Q_OBJECT

private slots:
    void editUndoRedo_data();
    void editUndoRedo();
    void editThatChangesNothingIsNotKept_data();
    void editThatChangesNothingIsNotKept();
    void deletedGroupComesBackWhole();
    void randomEditsUndoneEntirely_data();
    void randomEditsUndoneEntirely();

    void filterMatches_data();
    void filterMatches();
    void filterNarrows_data();
    void filterNarrows();
    void shownRows_data();
    void shownRows();
};

void TestEditorUndo::editUndoRedo_data()
{
    QTest::addColumn<MakeEdit>("edit");
    auto row = [](const char* name, MakeEdit edit) { QTest::newRow(name) << edit; };

    row("new item in a group", [](Catalogs& c) {
        return new NewItemCommand(c.shared(), c.cables, c.tmpl, [](const ItemPtr& item) {
            item->GetProperty(QStringLiteral("MAKER"))->SetValue(CDataBox::fromString("ext"));
        });
    });
    row("new item from an item",
        [](Catalogs& c) { return new NewFromItemCommand(c.shared(), c.a, c.cables, c.tmpl); });
    row("new group at the root", [](Catalogs& c) {
        return new NewGroupCommand(c.shared(), nullptr, 0, c.tmpl, QStringLiteral("Group"));
    });
    row("new group in a group", [](Catalogs& c) {
        return new NewGroupCommand(c.shared(), c.poles.get(), 1, c.tmpl, QStringLiteral("Group"));
    });
    row("copy group", [](Catalogs& c) { return new CopyGroupCommand(c.shared(), c.cables.get()); });
    row("delete item", [](Catalogs& c) { return new DeleteCommand(c.shared(), {c.a}); });
    row("delete nested group", [](Catalogs& c) { return new DeleteCommand(c.shared(), {c.poles}); });
    row("delete root level", [](Catalogs& c) {
        return new DeleteCommand(c.shared(), c.entries(*c.catalog.catalog().GetRootElementsMap()));
    });
    row("delete group contents", [](Catalogs& c) {
        return new DeleteCommand(c.shared(), c.entries(*c.cables->GetSubItems()));
    });
    row("rename", [](Catalogs& c) {
        return new RenameCommand(c.shared(), c.a.get(), QStringLiteral("Kabel č"));
    });
    row("rename to an empty name",
        [](Catalogs& c) { return new RenameCommand(c.shared(), c.b.get(), QString()); });
    row("move down", [](Catalogs& c) {
        return new MoveCommand(c.shared(), c.sorted(c.cables), c.a->GetGUID(), true);
    });
    row("move up", [](Catalogs& c) {
        return new MoveCommand(c.shared(), c.sorted(c.cables), c.c->GetGUID(), false);
    });
    row("sort ascending",
        [](Catalogs& c) { return new SortCommand(c.shared(), c.sorted(c.cables), true); });
    row("sort descending",
        [](Catalogs& c) { return new SortCommand(c.shared(), c.sorted(c.cables), false); });
    row("drop moves an item into a group", [](Catalogs& c) {
        return new DropCommand(c.shared(), c.a, c.wood.get(), false, c.tmpl);
    });
    row("drop moves a root-level item", [](Catalogs& c) {
        return new DropCommand(c.shared(), c.looseItem, c.d.get(), false, c.tmpl);
    });
    row("drop with Ctrl copies", [](Catalogs& c) {
        return new DropCommand(c.shared(), c.a, c.d.get(), true, c.tmpl);
    });
    row("default marking clears the type's default",
        [](Catalogs& c) { return new DefaultMarkCommand(c.shared(), c.b.get()); });
    row("default marking without a type",
        [](Catalogs& c) { return new DefaultMarkCommand(c.shared(), c.d.get()); });
    row("add a group to the application", [](Catalogs& c) {
        return new AddToApplicationCommand(c.drawing.shared(), c.shared(), c.dwgGroup.get(),
                                           g_result);
    });
    row("add an item whose group is missing", [](Catalogs& c) {
        return new AddToApplicationCommand(c.drawing.shared(), c.shared(), c.dwgItem.get(),
                                           g_result);
    });
    row("add the whole drawing copy", [](Catalogs& c) {
        return new AddToApplicationCommand(c.drawing.shared(), c.shared(), nullptr, g_result);
    });
    row("property edit",
        [](Catalogs& c) { return propertyEdit(c, c.d, QStringLiteral("MAKER"), "Elka"); });
    row("name property edit", [](Catalogs& c) {
        return propertyEdit(c, c.a, QString::fromUtf16(CatalogItemNameTag), "Renamed");
    });
    row("import that adds, takes out and replaces entries", [](Catalogs& c) {
        CCatalog& catalog = c.catalog.catalog();
        const CCatalog::ItemMap before = *catalog.GetAllElementsMap();
        catalog.DeleteItem(c.c);
        catalog.DeleteItem(c.poles->GetGUID());
        // The same GUID, another object (as a transfer from a file brings it).
        auto replaced = catalog.GetFactory()->CreateItemFrom(c.b.get());
        replaced->SetGUID(c.b->GetGUID());
        replaced->SetName("B from the file");
        catalog.DeleteItem(c.b);
        replaced->SetParentItem(c.cables);
        c.cables->AddSubItem(replaced);
        catalog.AddItem(replaced);
        auto group = boost::make_shared<CCatalogItem>();
        group->SetGUID("{IMPORTED}");
        group->SetIsGroup(1);
        group->SetName("Imported");
        catalog.AddItem(group);
        auto item = boost::make_shared<CCatalogItem>();
        item->SetGUID("{IMPORTED-1}");
        item->SetName("Imported item");
        item->SetParentItem(group);
        group->AddSubItem(item);
        catalog.AddItem(item);
        return new ImportCommand(c.shared(), before);
    });
    row("upgrade", [](Catalogs& c) {
        return new UpgradeItemCommand(c.shared(), c.d.get(), [](CCatalogItem* item) {
            auto category = boost::make_shared<CCategory>(QStringLiteral("Added"));
            category->AddPropertyEx(
                boost::make_shared<CPropertyEx>(QStringLiteral("NEW"), CDataBox::fromString("1")));
            item->GetProperties()->AddCategory(category);
            item->GetProperty(QStringLiteral("MAKER"))->SetValue(CDataBox::fromString("y"));
            return 1;
        });
    });
}

void TestEditorUndo::editUndoRedo()
{
    QFETCH(MakeEdit, edit);
    Catalogs c;
    QUndoStack stack;
    const QString drawingBefore = c.drawing.catalog().GetXML();
    const QString before = c.xml();
    // Property edits and imports are made before their command exists.
    stack.push(edit(c));
    QCOMPARE(stack.count(), 1);
    const QString after = c.xml();
    QVERIFY(after != before);

    stack.undo();
    QCOMPARE(c.xml(), before);
    stack.redo();
    QCOMPARE(c.xml(), after);
    // Twice over: the objects put back are those taken out.
    stack.undo();
    const QString undone = c.xml();
    stack.redo();
    QCOMPARE(c.xml(), after);
    stack.undo();
    QCOMPARE(c.xml(), undone);
    QCOMPARE(c.drawing.catalog().GetXML(), drawingBefore);
}

void TestEditorUndo::editThatChangesNothingIsNotKept_data()
{
    QTest::addColumn<MakeEdit>("edit");
    auto row = [](const char* name, MakeEdit edit) { QTest::newRow(name) << edit; };
    row("move down the last", [](Catalogs& c) {
        return new MoveCommand(c.shared(), c.sorted(c.cables), c.c->GetGUID(), true);
    });
    row("rename to the same name", [](Catalogs& c) {
        return new RenameCommand(c.shared(), c.a.get(), QStringLiteral("A 10"));
    });
    row("mark the default again", [](Catalogs& c) { return new DefaultMarkCommand(c.shared(), c.a.get()); });
    row("mark a group", [](Catalogs& c) { return new DefaultMarkCommand(c.shared(), c.wood.get()); });
    row("drop into its own group", [](Catalogs& c) {
        return new DropCommand(c.shared(), c.a, c.b.get(), false, c.tmpl);
    });
    row("drop on the root row",
        [](Catalogs& c) { return new DropCommand(c.shared(), c.a, nullptr, false, c.tmpl); });
    row("add an entry the catalog holds", [](Catalogs& c) {
        return new AddToApplicationCommand(c.drawing.shared(), c.shared(), c.dwgKnownGroup.get(),
                                           g_result);
    });
    row("delete nothing", [](Catalogs& c) { return new DeleteCommand(c.shared(), {}); });
    row("import that changed nothing", [](Catalogs& c) {
        return new ImportCommand(c.shared(), *c.catalog.catalog().GetAllElementsMap());
    });
    row("upgrade without a template", [](Catalogs& c) {
        return new UpgradeItemCommand(c.shared(), c.d.get(), [](CCatalogItem*) { return 0; });
    });
}

void TestEditorUndo::editThatChangesNothingIsNotKept()
{
    QFETCH(MakeEdit, edit);
    Catalogs c;
    const auto properties = c.d->GetProperties();
    const QString before = c.xml();
    QUndoStack stack;
    stack.push(edit(c));
    QCOMPARE(stack.count(), 0);
    QCOMPARE(c.xml(), before);
    QCOMPARE(c.d->GetProperties(), properties);
}

void TestEditorUndo::deletedGroupComesBackWhole()
{
    Catalogs c;
    QUndoStack stack;
    const auto propertiesOfD = c.d->GetProperties();
    stack.push(new DeleteCommand(c.shared(), {c.poles}));
    QVERIFY(!c.catalog.catalog().GetItembyGuid(c.d->GetGUID()));
    stack.undo();
    // The same objects: rows and later edits that point at them stay right.
    QCOMPARE(c.catalog.catalog().GetItembyGuid(c.d->GetGUID()), c.d);
    QCOMPARE(c.catalog.catalog().GetItembyGuid(c.wood->GetGUID()), c.wood);
    QCOMPARE(c.catalog.catalog().GetRootElementsMap()->count(c.poles->GetGUID()), size_t(1));
    QCOMPARE(c.d->GetProperties(), propertiesOfD);
    QCOMPARE(c.e->GetOrd(), 1);
}

void TestEditorUndo::randomEditsUndoneEntirely_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed : {1u, 7u, 42u, 2024u})
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << seed;
}

void TestEditorUndo::randomEditsUndoneEntirely()
{
    QFETCH(quint32, seed);
    Catalogs c;
    QRandomGenerator random(seed);
    CCatalog& catalog = c.catalog.catalog();
    auto anyEntry = [&]() -> ItemPtr {
        const auto* all = catalog.GetAllElementsMap();
        if (all->empty())
            return {};
        auto it = all->begin();
        std::advance(it, random.bounded(int(all->size())));
        return it->second;
    };
    auto anyGroup = [&]() -> ItemPtr {
        for (int tries = 0; tries < 20; ++tries)
            if (ItemPtr entry = anyEntry(); entry && entry->IsGroup())
                return entry;
        return {};
    };
    QUndoStack stack;
    const QString start = c.xml();
    int pushed = 0;
    for (int step = 0; step < 50; ++step)
    {
        const ItemPtr entry = anyEntry();
        const ItemPtr group = anyGroup();
        if (!entry)
            break;
        QUndoCommand* command = nullptr;
        switch (random.bounded(9))
        {
        case 0:
            command = group ? static_cast<QUndoCommand*>(
                                  new NewItemCommand(c.shared(), group, c.tmpl, nullptr))
                            : new NewGroupCommand(c.shared(), nullptr, 0, c.tmpl, "G");
            break;
        case 1:
            command = new NewGroupCommand(c.shared(), group.get(), 1, c.tmpl, "G");
            break;
        case 2:
            command = new DeleteCommand(c.shared(), {entry});
            break;
        case 3:
            command = new RenameCommand(c.shared(), entry.get(), QStringLiteral("N%1").arg(step));
            break;
        case 4:
            command = group ? new SortCommand(c.shared(), c.sorted(group), random.bounded(2))
                            : nullptr;
            break;
        case 5:
            command = entry->GetParentItem()
                          ? new MoveCommand(c.shared(), c.sorted(entry->GetParentItem()),
                                            entry->GetGUID(), random.bounded(2))
                          : nullptr;
            break;
        case 6:
            command = new DropCommand(c.shared(), entry, group.get(), random.bounded(2), c.tmpl);
            break;
        case 7:
            command = new DefaultMarkCommand(c.shared(), entry.get());
            break;
        default:
            command = group ? static_cast<QUndoCommand*>(new CopyGroupCommand(c.shared(), group.get()))
                            : new AddToApplicationCommand(c.drawing.shared(), c.shared(), nullptr,
                                                          g_result);
            break;
        }
        if (command)
        {
            stack.push(command);
            ++pushed;
        }
    }
    QVERIFY(stack.count() > 25);
    const QString end = c.xml();
    while (stack.canUndo())
        stack.undo();
    QCOMPARE(c.xml(), start);
    while (stack.canRedo())
        stack.redo();
    QCOMPARE(c.xml(), end);
}

void TestEditorUndo::filterMatches_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("ranges"); // "start:length ...", "-" for no match

    auto row = [](const char* tag, const char* name, const char* filter, const char* ranges) {
        QTest::newRow(tag) << QString::fromUtf8(name) << QString::fromUtf8(filter)
                           << QString::fromLatin1(ranges);
    };
    row("substring", "Kabel NA2XS", "a2x", "7:3");
    row("case ignored both ways", "kabel", "KAB", "0:3");
    row("no match", "Stup", "x", "-");
    row("every occurrence", "aXaXa", "a", "0:1 2:1 4:1");
    row("occurrences do not overlap", "aaaa", "aa", "0:2 2:2");
    row("č typed as c", "Čvor", "cv", "0:2");
    row("ć typed as c", "Ćuprija", "cu", "0:2");
    row("đ typed as d", "Međa", "eda", "1:3");
    row("š typed as s", "Šipka", "sip", "0:3");
    row("ž typed as z", "Dalekovod Žuti", "zut", "10:3");
    row("dž typed as dz", "DŽEP", "dze", "0:3");
    row("č typed as č", "Končar", "nča", "2:3");
    row("č typed does not match c", "Koncar", "nč", "-");
    row("č does not match ć", "Ćuprija", "ču", "-");
    row("upper case Croatian letters typed", "žica", "ŽI", "0:2");
    row("filter longer than the name", "ab", "abc", "-");
    row("empty filter marks nothing", "Kabel", "", "-");
}

void TestEditorUndo::filterMatches()
{
    QFETCH(QString, name);
    QFETCH(QString, filter);
    QFETCH(QString, ranges);
    const NameFilter nameFilter(filter);
    QStringList found;
    for (const NameFilter::Range& range : nameFilter.matchRanges(name))
        found << QStringLiteral("%1:%2").arg(range.start).arg(range.length);
    QCOMPARE(found.isEmpty() ? QStringLiteral("-") : found.join(QLatin1Char(' ')), ranges);
    QCOMPARE(nameFilter.matches(name), filter.isEmpty() || ranges != QLatin1String("-"));
    // The trees ask the name folded once, whenever the text typed allows it.
    if (nameFilter.matchesByFold())
        QCOMPARE(nameFilter.matchesFolded(NameFilter::fold(name)), nameFilter.matches(name));
    QCOMPARE(NameFilter::fold(name).size(), name.size());
}

void TestEditorUndo::filterNarrows_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<bool>("narrows");

    QTest::newRow("a letter typed on") << "ka" << "kab" << true;
    QTest::newRow("a letter typed in front") << "ab" << "kab" << true;
    QTest::newRow("a case change") << "KA" << "kab" << true;
    QTest::newRow("a marked letter typed on") << "ko" << "koč" << true;
    QTest::newRow("a letter taken back") << "kab" << "ka" << false;
    QTest::newRow("a letter replaced") << "kab" << "kac" << false;
    QTest::newRow("from an empty filter") << "" << "k" << false;
}

void TestEditorUndo::filterNarrows()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(bool, narrows);
    QCOMPARE(NameFilter(after).narrows(NameFilter(before)), narrows);
}

void TestEditorUndo::shownRows_data()
{
    // Rows as "name/parent index", in tree order.
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("pinned"); // row indices kept whatever the filter says
    QTest::addColumn<QString>("shown");

    const QStringList tree = {"Cables/-1", "Copper/0",  "NA2XS/1",  "NYY/1", "Aluminium/0",
                              "NA2XS/4",   "Poles/-1",  "Wood/6",   "Oak/7", "Steel/6"};
    QTest::newRow("empty shows all") << tree << "" << "" << "1111111111";
    QTest::newRow("ancestors of a match") << tree << "oak" << "" << "0000001110";
    QTest::newRow("matches in two branches") << tree << "na2" << "" << "1110110000";
    QTest::newRow("a matching group alone") << tree << "wood" << "" << "0000001100";
    QTest::newRow("nothing matches") << tree << "zzz" << "" << "0000000000";
    QTest::newRow("a pinned row and its path") << tree << "oak" << "3" << "1101001110";
}

void TestEditorUndo::shownRows()
{
    QFETCH(QStringList, rows);
    QFETCH(QString, filter);
    QFETCH(QString, pinned);
    QFETCH(QString, shown);
    std::vector<int> parents;
    QStringList names;
    for (const QString& row : rows)
    {
        names << row.section(QLatin1Char('/'), 0, 0);
        parents.push_back(row.section(QLatin1Char('/'), 1).toInt());
    }
    const NameFilter nameFilter(filter);
    const auto result = ShownRows(parents, [&](size_t i) {
        return nameFilter.matches(names[int(i)]) || pinned.contains(QString::number(i));
    });
    QString got;
    for (char on : result)
        got += on ? QLatin1Char('1') : QLatin1Char('0');
    QCOMPARE(got, shown);
}

QTEST_GUILESS_MAIN(TestEditorUndo)
#include "tst_EditorUndo.moc"
