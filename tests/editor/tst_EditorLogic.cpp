// The editor's widget-free logic: button states, tree rows, combo lines, default marking,
// unique names, sibling order, catalog edits and the copy to the application catalog,
// checked on small catalogs built in memory.
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogMetadata.h"
#include "editor/AddToApplication.h"
#include "editor/ButtonStates.h"
#include "editor/CatalogComboLines.h"
#include "editor/CatalogEdits.h"
#include "editor/CatalogTreeFill.h"
#include "editor/DefaultItemMarking.h"
#include "editor/SiblingOrder.h"
#include "editor/UniqueChildName.h"
#include "tests/editor/CatalogBuilder.h"

#include <QtTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;
using namespace ZEVGis::Editor;

namespace
{

// The enabled buttons by id, in a fixed order, or "unchanged".
QString describe(const std::optional<EditorButtonStates>& states)
{
    if (!states)
        return QStringLiteral("unchanged");
    QStringList on;
    const std::pair<bool, const char*> buttons[] = {
        {states->newGroup, "107"},  {states->remove, "108"},     {states->newItem, "105"},
        {states->newItems, "110"},  {states->moveUpDown, "119"}, {states->sort, "120"},
        {states->setDefault, "123"}};
    for (const auto& [enabled, id] : buttons)
        if (enabled)
            on << QString::fromLatin1(id);
    return on.join(QLatin1Char(' '));
}

boost::shared_ptr<CCatalogMetadata> metadataWith(const QString& reference, const QString& name,
                                                 int hidden)
{
    auto metadata = boost::make_shared<CCatalogMetadata>();
    metadata->reference = reference;
    metadata->nameUI = name;
    metadata->hidden = hidden;
    return metadata;
}

// The entries of `list` by order number (ties: list order), as "name" or "name:ord".
QString byOrder(ItemList list, bool withOrd = false)
{
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a->GetOrd() < b->GetOrd(); });
    QStringList names;
    for (const auto& item : list)
        names << (withOrd ? QStringLiteral("%1:%2").arg(item->GetName()).arg(item->GetOrd())
                          : item->GetName());
    return names.join(QLatin1Char(' '));
}

// Every entry of a catalog as "name<parent name", sorted.
QString entries(CCatalog& catalog)
{
    QStringList seen;
    for (const auto& [guid, item] : *catalog.GetAllElementsMap())
    {
        const auto parent = item->GetParentItem();
        seen << item->GetName() + "<" + (parent ? parent->GetName() : QString());
    }
    seen.sort();
    return seen.join(QLatin1Char(' '));
}

} // namespace

class TestEditorLogic : public QObject
{
    Q_OBJECT

private slots:
    void buttonStates_data();
    void buttonStates();
    void treeRowsFollowMapAndOrderNumbers();
    void treeRowsOfNothing();
    void comboLines_data();
    void comboLines();
    void defaultMarking_data();
    void defaultMarking();
    void uniqueChildName_data();
    void uniqueChildName();
    void renumberByName_data();
    void renumberByName();
    void swapWithNeighbour_data();
    void swapWithNeighbour();
    void copyGroupTakesOneLevel();
    void moveIntoGroup_data();
    void moveIntoGroup();
    void addToApplication_data();
    void addToApplication();
};

void TestEditorLogic::buttonStates_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<int>("maxDepth");
    QTest::addColumn<int>("allowDefault");
    QTest::addColumn<int>("disableNewItems");
    QTest::addColumn<QString>("enabled");

    // Catalog: Top { Middle { Bottom {} }, Holder { Part }, Mixed { Part2, Sub {} }, Empty {} }
    QTest::newRow("empty group at depth 1") << "Empty" << 3 << 0 << 0 << "107 108 105 119 120";
    QTest::newRow("group of groups") << "Top" << 3 << 0 << 0 << "107 108 105 119 120";
    QTest::newRow("group at depth max-1") << "Bottom" << 3 << 0 << 0 << "108 105 119 120";
    QTest::newRow("group at depth max-2") << "Middle" << 3 << 0 << 0 << "107 108 105 119 120";
    QTest::newRow("max depth 1: no sub-groups") << "Top" << 1 << 0 << 0 << "108 105 119 120";
    QTest::newRow("group holding items") << "Holder" << 5 << 0 << 0 << "108 105 119 120";
    QTest::newRow("group holding item and group") << "Mixed" << 5 << 0 << 0 << "108 105 119 120";
    QTest::newRow("item") << "Part" << 3 << 0 << 0 << "108 105 110 119 120";
    QTest::newRow("item, default allowed") << "Part" << 3 << 1 << 0 << "108 105 110 119 120 123";
    QTest::newRow("lower root") << "lower root" << 3 << 1 << 0 << "107 108 120";
    QTest::newRow("upper root") << "upper root" << 3 << 1 << 0 << "unchanged";
    QTest::newRow("upper root, new items disabled") << "upper root" << 3 << 1 << 1 << "unchanged";
    QTest::newRow("group, new items disabled") << "Empty" << 3 << 0 << 1 << "119 120";
    QTest::newRow("item, new items disabled") << "Part" << 3 << 1 << 1 << "119 120 123";
    QTest::newRow("lower root, new items disabled") << "lower root" << 3 << 0 << 1 << "120";
}

void TestEditorLogic::buttonStates()
{
    QFETCH(QString, row);
    QFETCH(int, maxDepth);
    QFETCH(int, allowDefault);
    QFETCH(int, disableNewItems);
    QFETCH(QString, enabled);

    CatalogBuilder b;
    auto top = b.group("Top");
    auto middle = b.group("Middle", top);
    b.group("Bottom", middle);
    auto holder = b.group("Holder", top);
    b.item("Part", holder);
    auto mixed = b.group("Mixed", top);
    b.item("Part2", mixed);
    b.group("Sub", mixed);
    b.group("Empty", top);

    CCatalogMetadata metadata;
    metadata.maxDepthLevel = maxDepth;
    metadata.allowDefaultSelection = allowDefault;
    metadata.disableNewItems = disableNewItems;

    CCatalogItem* item = nullptr;
    TreeRowKind kind = TreeRowKind::LowerRoot;
    if (row == "upper root")
        kind = TreeRowKind::UpperRoot;
    else if (row != "lower root")
    {
        item = b.catalog().GetItembyGuid("{" + row + "}").get();
        QVERIFY(item);
        kind = RowKindOf(item, false);
    }
    QCOMPARE(describe(ButtonStatesForSelection(kind, item, &metadata)), enabled);
}

void TestEditorLogic::treeRowsFollowMapAndOrderNumbers()
{
    CatalogBuilder b;
    // Root map order is by GUID: "{A...}" before "{B...}" whatever the order numbers say.
    auto second = b.group("Second", {}, 0, "{B}");
    auto first = b.item("First", {}, 5, "{A}");
    b.item("Late", second, 2, "{1}");
    auto early = b.group("Early", second, 1, "{2}");
    b.item("Deep", early, 0, "{3}");
    auto def = b.item("Default", second, 3, "{4}");
    def->SetIsDefault(1);
    b.item("Hidden below an item", first, 0, "{5}");

    const auto rows = CatalogTreeRows(&b.catalog());
    QStringList seen;
    for (const auto& row : rows)
    {
        const QString parent = row.parent < 0 ? "root" : rows[size_t(row.parent)].item->GetName();
        seen << QStringLiteral("%1<%2:%3%4")
                    .arg(row.item->GetName(), parent)
                    .arg(row.image)
                    .arg(row.mapped ? "m" : "");
    }
    // A top-level item still gets the group image and its sub-items are listed; below the
    // top level only groups are descended into.
    QCOMPARE(seen, QStringList({"First<root:0", "Hidden below an item<First:6m", "Second<root:0",
                                "Early<Second:0m", "Late<Second:6m", "Default<Second:9m",
                                "Deep<Early:6m"}));
}

void TestEditorLogic::treeRowsOfNothing()
{
    QVERIFY(CatalogTreeRows(nullptr).empty());
    CatalogBuilder b;
    QVERIFY(CatalogTreeRows(&b.catalog()).empty());
}

void TestEditorLogic::comboLines_data()
{
    QTest::addColumn<bool>("showHidden");
    QTest::addColumn<QString>("reference");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("selected");

    const QStringList all{"Cables", "Poles*** HIDDEN ***", "Cables again"};
    QTest::newRow("hidden left out, first selected") << false << "" << QStringList{"Cables", "Cables again"} << 0;
    QTest::newRow("hidden shown with marker") << true << "" << all << 0;
    QTest::newRow("reference ignoring case") << true << "POLES" << all << 1;
    QTest::newRow("hidden reference not offered") << false << "poles" << QStringList{"Cables", "Cables again"} << 0;
    QTest::newRow("last match wins") << false << "cab" << QStringList{"Cables", "Cables again"} << 1;
    QTest::newRow("unknown reference") << true << "nothing" << all << 0;
}

void TestEditorLogic::comboLines()
{
    QFETCH(bool, showHidden);
    QFETCH(QString, reference);
    QFETCH(QStringList, lines);
    QFETCH(int, selected);

    const std::vector<boost::shared_ptr<CCatalogMetadata>> registry{
        metadataWith("CAB", "Cables", 0), nullptr, metadataWith("poles", "Poles", 1),
        metadataWith("cab", "Cables again", 0)};
    const CatalogComboContent content = BuildCatalogComboLines(registry, showHidden, reference);
    QStringList texts;
    for (const auto& line : content.lines)
    {
        texts << line.text;
        QVERIFY(line.metadata);
    }
    QCOMPARE(texts, lines);
    QCOMPARE(content.selected, selected);
}

void TestEditorLogic::defaultMarking_data()
{
    QTest::addColumn<QString>("marked");
    QTest::addColumn<QString>("defaultsAfter");
    QTest::addColumn<QString>("clearedRows");

    // Before: A1 (type A) and B1 (type B) and N1 (no type) are defaults.
    QTest::newRow("same type cleared") << "A2" << "A2 B1 N1" << "A1 A2";
    QTest::newRow("exact type comparison") << "a" << "A1 B1 N1 a" << "a";
    QTest::newRow("without type nothing cleared") << "N2" << "A1 B1 N1 N2" << "";
    QTest::newRow("group is never marked") << "Group" << "A1 B1 N1" << "";
}

void TestEditorLogic::defaultMarking()
{
    QFETCH(QString, marked);
    QFETCH(QString, defaultsAfter);
    QFETCH(QString, clearedRows);

    CatalogBuilder b;
    auto group = b.group("Group");
    CatalogBuilder::setProperties(group, {{"LSEQUIP_TYPE", "A"}});
    const std::pair<const char*, const char*> items[] = {
        {"A1", "A"}, {"A2", "A"}, {"a", "a"}, {"B1", "B"}, {"N1", nullptr}, {"N2", nullptr}};
    for (const auto& [name, type] : items)
    {
        auto made = b.item(name, group);
        if (type)
            CatalogBuilder::setProperties(made, {{"LSEQUIP_TYPE", type}});
        made->SetIsDefault(QString(name).endsWith('1'));
    }
    group->SetIsDefault(1); // a group of the same type loses a mark it should never have had

    auto* target = b.catalog().GetItembyGuid("{" + marked + "}").get();
    QStringList cleared;
    for (auto* item : MarkDefaultItem(b.catalog(), *target))
        if (!item->IsGroup())
            cleared << item->GetName();
    cleared.sort();
    QCOMPARE(cleared.join(' '), clearedRows);

    QStringList defaults;
    for (const auto& [guid, item] : *b.catalog().GetAllElementsMap())
        if (item->GetIsDefault() && !item->IsGroup())
            defaults << item->GetName();
    defaults.sort();
    QCOMPARE(defaults.join(' '), defaultsAfter);
}

void TestEditorLogic::uniqueChildName_data()
{
    QTest::addColumn<QString>("base"); // "<null>" for none
    QTest::addColumn<bool>("withParent");
    QTest::addColumn<QString>("expected");

    // Siblings under "Cables": "Cable", "Cable01"; root elements: "Cables", "Poles".
    QTest::newRow("free base kept") << "Wire" << true << "Wire";
    QTest::newRow("taken base numbered") << "Cable" << true << "Cable02";
    QTest::newRow("no base: parent name with number") << "<null>" << true << "Cables_01";
    QTest::newRow("root elements are the siblings") << "Poles" << false << "Poles01";
    QTest::newRow("root: name of a child is free") << "Cable" << false << "Cable";
}

void TestEditorLogic::uniqueChildName()
{
    QFETCH(QString, base);
    QFETCH(bool, withParent);
    QFETCH(QString, expected);

    CatalogBuilder b;
    auto cables = b.group("Cables");
    b.group("Poles");
    b.item("Cable", cables);
    b.item("Cable01", cables);
    const QString* basePtr = base == "<null>" ? nullptr : &base;
    QCOMPARE(UniqueChildName(&b.catalog(), withParent ? cables.get() : nullptr, basePtr), expected);
}

void TestEditorLogic::renumberByName_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QString>("order");

    QTest::newRow("numeric by trailing digits") << QStringList{"A10", "A2", "A1"} << true << "A1 A2 A10";
    QTest::newRow("one other name: text order") << QStringList{"A10", "A2", "A1", "B"} << true << "A1 A10 A2 B";
    QTest::newRow("text order by character code") << QStringList{"b", "B", "a"} << true << "B a b";
    QTest::newRow("first character never in the key") << QStringList{"123", "9", "A7"} << true << "9 A7 123";
    QTest::newRow("empty name first") << QStringList{"X3", ""} << true << " X3";
    QTest::newRow("descending reverses equal keys too") << QStringList{"X1", "Y1", "Z2"} << false << "Z2 Y1 X1";
    QTest::newRow("endless digits saturate") << QStringList{"N" + QString(40, '9'), "N" + QString(30, '9'), "N5"} << true << "N5 N" + QString(40, '9') + " N" + QString(30, '9');
}

void TestEditorLogic::renumberByName()
{
    QFETCH(QStringList, names);
    QFETCH(bool, ascending);
    QFETCH(QString, order);

    CatalogBuilder b;
    ItemList list;
    for (int i = 0; i < names.size(); ++i)
        list.push_back(b.item(names[i], {}, 7, QString::number(i)));
    RenumberByName(list, ascending);
    QCOMPARE(byOrder(list), order);
    std::vector<int> ords;
    for (const auto& item : list)
        ords.push_back(item->GetOrd());
    std::sort(ords.begin(), ords.end());
    for (size_t i = 0; i < ords.size(); ++i)
        QCOMPARE(ords[i], int(i));
}

void TestEditorLogic::swapWithNeighbour_data()
{
    QTest::addColumn<QList<int>>("ords");
    QTest::addColumn<int>("moved");
    QTest::addColumn<bool>("down");
    QTest::addColumn<QString>("after");

    QTest::newRow("down") << QList<int>{0, 1, 2} << 1 << true << "A:0 C:1 B:2";
    QTest::newRow("up keeps the gap") << QList<int>{0, 5, 9} << 1 << false << "B:0 A:5 C:9";
    QTest::newRow("last down") << QList<int>{0, 1, 2} << 2 << true << "A:0 B:1 C:2";
    QTest::newRow("first up") << QList<int>{0, 1, 2} << 0 << false << "A:0 B:1 C:2";
    QTest::newRow("equal numbers stay equal") << QList<int>{4, 4, 6} << 0 << true << "A:4 B:4 C:6";
    QTest::newRow("alone") << QList<int>{3} << 0 << true << "A:3";
}

void TestEditorLogic::swapWithNeighbour()
{
    QFETCH(QList<int>, ords);
    QFETCH(int, moved);
    QFETCH(bool, down);
    QFETCH(QString, after);

    CatalogBuilder b;
    ItemList list;
    for (int i = 0; i < ords.size(); ++i)
        list.push_back(b.item(QString(QChar('A' + i)), {}, ords[i]));
    SwapWithNeighbour(list, list[size_t(moved)]->GetGUID(), down);
    QCOMPARE(byOrder(list, true), after);
}

void TestEditorLogic::copyGroupTakesOneLevel()
{
    CatalogBuilder b;
    b.group("Poles_copy");
    auto poles = b.group("Poles");
    b.item("", poles, 0, "{e1}");
    b.item("", poles, 1, "{e2}");
    auto sub = b.group("Wood", poles);
    b.item("Oak", sub);

    const GroupCopy copy = CopyGroup(b.catalog(), *poles);
    QVERIFY(copy.registered);
    QCOMPARE(copy.children.size(), size_t(3));
    // The copy's own name is not made unique; its children's are, and only they come along.
    QCOMPARE(copy.group->GetName(), QString("Poles_copy"));
    QStringList children;
    for (const auto& child : copy.children)
    {
        children << child->GetName();
        QVERIFY(child->GetSubItems()->empty());
        QCOMPARE(child->GetParentItem(), copy.group);
    }
    children.sort();
    QCOMPARE(children, QStringList({"Wood", "_", "_01"}));
    QVERIFY(copy.group->GetGUID() != poles->GetGUID());
}

void TestEditorLogic::moveIntoGroup_data()
{
    QTest::addColumn<QString>("moved");
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("done");
    QTest::addColumn<QString>("parentAfter");

    QTest::newRow("onto a group") << "Cable" << "Empty" << true << "Empty";
    QTest::newRow("onto an item: into its group") << "Cable" << "Pole" << true << "Poles";
    QTest::newRow("root element leaves the root level") << "Loose" << "Empty" << true << "Empty";
    QTest::newRow("onto itself: stays") << "Cable" << "Cable" << true << "Cables";
    QTest::newRow("onto a root item: nowhere") << "Cable" << "Loose" << false << "Cables";
    QTest::newRow("a group never below itself") << "Cables" << "Inner" << false << "";
}

void TestEditorLogic::moveIntoGroup()
{
    QFETCH(QString, moved);
    QFETCH(QString, target);
    QFETCH(bool, done);
    QFETCH(QString, parentAfter);

    CatalogBuilder b;
    auto cables = b.group("Cables");
    b.item("Cable", cables, 4);
    b.group("Inner", cables);
    b.item("Pole", b.group("Poles"));
    b.group("Empty");
    b.item("Loose");
    auto item = [&](const QString& name) { return b.catalog().GetItembyGuid("{" + name + "}"); };

    QCOMPARE(MoveIntoGroup(b.catalog(), *item(moved), *item(target)), done);
    const auto parent = item(moved)->GetParentItem();
    QCOMPARE(parent ? parent->GetName() : QString(), parentAfter);
    QCOMPARE(item(moved)->GetParentItemGuid(), parent ? parent->GetGUID() : QString());
    QCOMPARE(b.catalog().GetRootElementsMap()->count(item(moved)->GetGUID()) == 1, !parent);
    if (parent)
        QCOMPARE(parent->GetSubItems()->count(item(moved)->GetGUID()), size_t(1));
    QCOMPARE(item("Cable")->GetOrd(), 4);
}

void TestEditorLogic::addToApplication_data()
{
    QTest::addColumn<QString>("chosen"); // empty: the root row
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QString>("added"); // entries of the catalog that were not there before

    // Drawing: G1 { I1, Sub { Deep } }, G2 { I3 }; catalog: G2 {}, Old.
    using R = AddToApplicationResult;
    QTest::newRow("whole catalog, one level down") << "" << int(R::Added) << "G1< I1<G1 I3<G2 Sub<G1";
    QTest::newRow("group with its direct sub-items") << "G1" << int(R::Added) << "G1< I1<G1 Sub<G1";
    QTest::newRow("item into its present group") << "I3" << int(R::Added) << "I3<G2";
    QTest::newRow("item whose group is missing") << "I1" << int(R::Added) << "G1< I1<G1";
    QTest::newRow("group present") << "G2" << int(R::GroupPresent) << "";
    QTest::newRow("item present") << "Old" << int(R::ItemPresent) << "";
}

void TestEditorLogic::addToApplication()
{
    QFETCH(QString, chosen);
    QFETCH(int, outcome);
    QFETCH(QString, added);

    CatalogBuilder drawing;
    auto g1 = drawing.group("G1", {}, 3);
    CatalogBuilder::setProperties(g1, {{"VOLTAGE", "20"}});
    drawing.item("I1", g1);
    drawing.item("Deep", drawing.group("Sub", g1));
    drawing.item("I3", drawing.group("G2"));
    drawing.item("Old");
    CatalogBuilder catalog;
    catalog.group("G2");
    catalog.item("Old");
    const QString before = entries(catalog.catalog());

    CCatalogItem* entry =
        chosen.isEmpty() ? nullptr : drawing.catalog().GetItembyGuid("{" + chosen + "}").get();
    const auto result = AddToApplication(drawing.catalog(), catalog.catalog(), entry);
    QCOMPARE(int(result.outcome), outcome);
    QCOMPARE(result.name, outcome == int(AddToApplicationResult::Added) ? QString() : chosen);
    QStringList now = entries(catalog.catalog()).split(' ');
    for (const QString& old : before.split(' '))
        now.removeOne(old);
    QCOMPARE(now.join(' '), added);
    // A copy keeps GUID, order number and properties, and owns its properties.
    if (const auto copy = catalog.catalog().GetItembyGuid("{G1}"))
    {
        QCOMPARE(copy->GetOrd(), 3);
        QCOMPARE(copy->GetProperty("VOLTAGE")->GetValue().ToString(), QString("20"));
        QVERIFY(copy->GetProperty("VOLTAGE") != g1->GetProperty("VOLTAGE"));
    }
}

QTEST_GUILESS_MAIN(TestEditorLogic)
#include "tst_EditorLogic.moc"
