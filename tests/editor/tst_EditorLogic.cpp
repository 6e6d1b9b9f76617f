// The editor's widget-free logic: button states, tree rows, combo lines, default marking and
// unique names, checked on small catalogs built in memory.
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogMetadata.h"
#include "editor/ButtonStates.h"
#include "editor/CatalogComboLines.h"
#include "editor/CatalogTreeFill.h"
#include "editor/DefaultItemMarking.h"
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
        {states->newGroup, "107"}, {states->remove, "108"},     {states->newItem, "105"},
        {states->newItems, "110"}, {states->moveUpDown, "119"}, {states->sort, "120"},
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
    void templatesOfVersionMinusOneAreNotOffered();
    void defaultMarking_data();
    void defaultMarking();
    void uniqueChildName_data();
    void uniqueChildName();
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

void TestEditorLogic::templatesOfVersionMinusOneAreNotOffered()
{
    auto make = [](const QString& name, int version) {
        return boost::make_shared<CCatalogItemTemplate>(name, version, nullptr);
    };
    const auto offered = OfferedTemplates({make("Old", -1), make("Cable", 0), nullptr,
                                           make("Pole", 3), make("Retired", -1)});
    QCOMPARE(offered.size(), size_t(2));
    QCOMPARE(offered[0]->GetName(), QString("Cable"));
    QCOMPARE(offered[1]->GetName(), QString("Pole"));
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

QTEST_GUILESS_MAIN(TestEditorLogic)
#include "tst_EditorLogic.moc"
