// The in-memory catalog model, the default item factory, CNameSet and CUtility.
#include "CatalogBuilders.h"
#include "catalog/Catalog.h"
#include "catalog/NameSet.h"
#include "catalog/Utility.h"

#include <QtTest>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace ZEVGis::Data;
using namespace CatalogTest;

namespace
{

// The vtable slot of a virtual operation, or -1 where the compiler's ABI is not known here.
// In the Itanium C++ ABI a pointer to a virtual member holds 1 + its byte offset.
template <typename Member>
int vtableSlot(Member member)
{
#if defined(__GNUC__) && !defined(_WIN32)
    struct
    {
        std::ptrdiff_t pointer;
        std::ptrdiff_t adjustment;
    } raw;
    static_assert(sizeof(member) == sizeof(raw));
    std::memcpy(&raw, &member, sizeof raw);
    return (raw.pointer & 1) ? int((raw.pointer - 1) / std::ptrdiff_t(sizeof(void*))) : -1;
#else
    Q_UNUSED(member);
    return -1;
#endif
}

} // namespace

class TestCatalogModel : public QObject
{
    Q_OBJECT

private slots:
    void dataBox_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("typeName");
        QTest::addColumn<double>("number");
        QTest::addColumn<bool>("flag");
        QTest::newRow("int") << "int" << "-42" << "int" << -42.0 << true;
        QTest::newRow("double shortest") << "double" << "0.1" << "double" << 0.1 << true;
        QTest::newRow("double big") << "double" << "123456789012345670000" << "double" << 1.2345678901234567e20 << true;
        QTest::newRow("double tiny") << "double" << "1.5e-09" << "double" << 1.5e-9 << true;
        QTest::newRow("bool true") << "bool1" << "1" << "bool" << 1.0 << true;
        QTest::newRow("bool false") << "bool0" << "0" << "bool" << 0.0 << false;
        QTest::newRow("string") << "string" << "NA2XS(F)2Y" << "string" << 0.0 << false;
    }

    void dataBox()
    {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(QString, typeName);
        QFETCH(double, number);
        QFETCH(bool, flag);
        CDataBox box;
        if (kind == u"int")
            box = CDataBox::fromInt(qint64(number));
        else if (kind == u"double")
            box = CDataBox::fromDouble(number);
        else if (kind.startsWith(u"bool"))
            box = CDataBox::fromBool(flag);
        else
            box = CDataBox::fromString(text);
        QCOMPARE(box.ToString(), text);
        QCOMPARE(QString(box), text);
        QCOMPARE(dataTypeName(box.GetType()), typeName);
        DataType back = DataType::String;
        QVERIFY(dataTypeFromName(typeName, back));
        QCOMPARE(back, box.GetType());
        if (kind != u"string")
            QCOMPARE(box.ToDouble(), number);
        QCOMPARE(box.ToBool(), flag || (kind == u"int" || kind == u"double"));
    }

    void dataBoxConversions()
    {
        bool ok = true;
        QCOMPARE(CDataBox(DataType::Double, QStringLiteral("2,5")).ToDouble(&ok), 2.5);
        QVERIFY(ok);
        CDataBox(DataType::Integer, QStringLiteral("abc")).ToInt(&ok);
        QVERIFY(!ok);
        QCOMPARE(CDataBox(DataType::Boolean, QStringLiteral("true")).ToBool(), true);
        DataType type = DataType::Integer;
        QVERIFY(!dataTypeFromName(u"money", type));
        QCOMPARE(type, DataType::Integer);
    }

    void categoryAddReplaceRemove()
    {
        CCategory category(QStringLiteral("Općenito"));
        auto a = boost::make_shared<CPropertyEx>(QStringLiteral("A"), CDataBox::fromInt(1));
        auto b = boost::make_shared<CPropertyEx>(QStringLiteral("B"), CDataBox::fromInt(2));
        category.AddPropertyEx(a);
        category.AddPropertyEx(b);
        auto* map = category.GetPropertyExMapByTag();
        QCOMPARE(map->size(), size_t(2));
        auto a2 = boost::make_shared<CPropertyEx>(QStringLiteral("A"), CDataBox::fromInt(3));
        category.AddPropertyEx(a2); // replaces in place, keeps the order
        QCOMPARE(category.GetPropertyExVector().size(), size_t(2));
        QCOMPARE(category.GetPropertyExVector()[0], a2);
        QCOMPARE(category.GetPropertyExMapByTag()->at(QStringLiteral("A")), a2);
        category.RemovePropertyEx(QStringLiteral("B"));
        QCOMPARE(category.GetPropertyExMapByTag()->size(), size_t(1));
        QVERIFY(!category.GetPropertyEx(QStringLiteral("B")));
        // A property renamed through its pointer is found under its new tag.
        a2->SetTag(QStringLiteral("C"));
        QVERIFY(category.GetPropertyExMapByTag()->count(QStringLiteral("C")));
        category.AddPropertyEx({});
        QCOMPARE(category.GetPropertyExVector().size(), size_t(1));
    }

    void deepCopiesAreIndependent()
    {
        auto source = properties({{QStringLiteral("A"), {prop(QStringLiteral("X"), CDataBox::fromInt(1))}}});
        CPropertiesEx copy;
        copy.MakeDeepCopy(*source);
        copy.FindProperty(QStringLiteral("X"))->SetValue(CDataBox::fromInt(2));
        copy.GetCategoryVector()->at(0)->SetName(QStringLiteral("B"));
        QCOMPARE(source->FindProperty(QStringLiteral("X"))->GetValue().ToInt(), 1);
        QCOMPARE(source->categories()[0]->GetName(), QStringLiteral("A"));
        CCategory categoryCopy(*source->categories()[0]);
        QVERIFY(categoryCopy.GetPropertyEx(QStringLiteral("X")) != source->FindProperty(QStringLiteral("X")));
        QVERIFY(*categoryCopy.GetPropertyEx(QStringLiteral("X")) == *source->FindProperty(QStringLiteral("X")));
        source->MakeDeepCopy(*source); // onto itself: unchanged
        QCOMPARE(source->FindProperty(QStringLiteral("X"))->GetValue().ToInt(), 1);
    }

    void propertyExtrasAreCopiedOnWrite()
    {
        CPropertyEx a(QStringLiteral("T"), CDataBox::fromString(QStringLiteral("v")));
        QCOMPARE(a.GetCaption(), QStringLiteral("T"));
        a.SetCaption(QStringLiteral("Naziv"));
        a.SetChoices({QStringLiteral("x")});
        CPropertyEx b = a;
        b.SetCaption(QStringLiteral("Drugo"));
        b.SetReadOnly(1);
        QCOMPARE(a.GetCaption(), QStringLiteral("Naziv"));
        QCOMPARE(a.IsReadOnly(), 0);
        QCOMPARE(b.GetChoices(), QStringList{QStringLiteral("x")});
        QVERIFY(!(a == b));
        b.SetCaption(QStringLiteral("Naziv"));
        b.SetReadOnly(0);
        QVERIFY(a == b);
    }

    void itemNameMirrorsNameProperty()
    {
        CCatalogItem item;
        item.SetProperties(properties({{QStringLiteral("A"), {prop(QString::fromUtf16(CatalogItemNameTag), CDataBox::fromString(QStringLiteral("old")))}}}));
        item.SetName(QStringLiteral("novo ime"));
        QCOMPARE(item.GetProperty(QString::fromUtf16(CatalogItemNameTag))->GetValue().ToString(), QStringLiteral("novo ime"));
        CCatalogItem bare;
        bare.SetName(QStringLiteral("x")); // no name property: none is added
        QVERIFY(!bare.GetProperty(QString::fromUtf16(CatalogItemNameTag)));
    }

    void addItem_data()
    {
        QTest::addColumn<QString>("guid");
        QTest::addColumn<bool>("sameObject");
        QTest::addColumn<int>("result");
        QTest::newRow("new GUID") << "{NEW}" << false << 1;
        QTest::newRow("no GUID") << "" << false << 0;
        QTest::newRow("GUID of another item") << "{G1}" << false << 0;
        QTest::newRow("the same item again") << "{G1}" << true << 1;
    }

    void addItem()
    {
        QFETCH(QString, guid);
        QFETCH(bool, sameObject);
        QFETCH(int, result);
        CCatalog catalog;
        auto existing = add(catalog, QStringLiteral("{G1}"), QStringLiteral("g"), true);
        boost::shared_ptr<CCatalogItem> item = existing;
        if (!sameObject) {
            item = boost::make_shared<CCatalogItem>();
            item->SetGUID(guid);
        }
        QCOMPARE(catalog.AddItem(item), result);
        QCOMPARE(catalog.GetItembyGuid(QStringLiteral("{G1}")), existing);
        QCOMPARE(catalog.AddItem({}), 0);
    }

    void deleteItemTakesDescendants()
    {
        CCatalog catalog;
        auto top = add(catalog, QStringLiteral("{1}"), QStringLiteral("top"), true);
        auto group = add(catalog, QStringLiteral("{2}"), QStringLiteral("group"), true, top);
        add(catalog, QStringLiteral("{3}"), QStringLiteral("a"), false, group);
        add(catalog, QStringLiteral("{4}"), QStringLiteral("b"), false, group);
        add(catalog, QStringLiteral("{5}"), QStringLiteral("c"), false, top);
        catalog.DeleteItem(QStringLiteral("{2}"));
        QCOMPARE(catalog.GetAllElementsMap()->size(), size_t(2));
        QVERIFY(!catalog.GetItembyGuid(QStringLiteral("{3}")));
        QCOMPARE(top->GetSubItems()->size(), size_t(1));
        catalog.DeleteItem(top);
        QVERIFY(catalog.GetAllElementsMap()->empty());
        QVERIFY(catalog.GetRootElementsMap()->empty());
        catalog.DeleteItem(QStringLiteral("{unknown}"));
    }

    void sortedByOrderThenGuid()
    {
        CCatalog catalog;
        add(catalog, QStringLiteral("{C}"), QStringLiteral("c"), true, {}, 1);
        add(catalog, QStringLiteral("{A}"), QStringLiteral("a"), true, {}, 2);
        add(catalog, QStringLiteral("{B}"), QStringLiteral("b"), true, {}, 1);
        auto parent = add(catalog, QStringLiteral("{D}"), QStringLiteral("d"), true, {}, -1);
        add(catalog, QStringLiteral("{F}"), QStringLiteral("f"), false, parent, 5);
        add(catalog, QStringLiteral("{E}"), QStringLiteral("e"), false, parent, 5);
        std::vector<boost::shared_ptr<CCatalogItem>> roots;
        catalog.GetSortedRootElements(roots);
        QStringList names;
        for (const auto& r : roots)
            names << r->GetName();
        QCOMPARE(names.join(u','), QStringLiteral("d,b,c,a"));
        std::vector<boost::shared_ptr<CCatalogItem>> subs;
        parent->GetSortedSubItems(subs);
        QCOMPARE(subs[0]->GetName(), QStringLiteral("e"));
    }

    void nameSet_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("base");
        QTest::addColumn<QStringList>("taken");
        QTest::addColumn<int>("firstNumber");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("free base first") << "xx" << "Cable" << QStringList{} << 0 << QStringList{"Cable", "Cable01", "Cable02"};
        QTest::newRow("base taken") << "xx" << "Cable" << QStringList{"Cable", "Cable01", "Cable03"} << 0 << QStringList{"Cable02", "Cable04", "Cable05"};
        QTest::newRow("hash mark") << "xx" << "Group_#" << QStringList{"Group_#", "Group_01"} << 0 << QStringList{"Group_02", "Group_03", "Group_04"};
        QTest::newRow("hash mark inside") << "x" << "T#-a" << QStringList{"T1-a"} << 0 << QStringList{"T2-a", "T3-a", "T4-a"};
        QTest::newRow("empty pattern") << "" << "N" << QStringList{"N"} << 0 << QStringList{"N1", "N2", "N3"};
        QTest::newRow("first number") << "xxx" << "P" << QStringList{"P", "P010"} << 9 << QStringList{"P009", "P011", "P012"};
        QTest::newRow("beyond the pattern") << "x" << "K" << QStringList{"K", "K1", "K2", "K3", "K4", "K5", "K6", "K7", "K8", "K9"} << 0 << QStringList{"K10", "K11", "K12"};
        QTest::newRow("underscore base") << "xx" << "_" << QStringList{"_"} << 0 << QStringList{"_01", "_02", "_03"};
        QTest::newRow("empty base") << "xx" << "" << QStringList{""} << 0 << QStringList{"01", "02", "03"};
    }

    void nameSet()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, base);
        QFETCH(QStringList, taken);
        QFETCH(int, firstNumber);
        QFETCH(QStringList, expected);
        ZEVGis::Topology::CNameSet names(pattern, {{0, base}}, 0, firstNumber, {});
        for (const QString& name : taken)
            names.AddName(name);
        QCOMPARE(names.GetNextName(false), expected[0]);
        QCOMPARE(names.GetNextName(false), expected[0]); // asking does not use the name up
        QStringList got;
        for (int i = 0; i < expected.size(); ++i)
            got << names.GetNextName(true);
        QCOMPARE(got, expected);
    }

    void nameSetManyNames()
    {
        // 20,000 siblings named like the next candidates: each call stays cheap and unique.
        ZEVGis::Topology::CNameSet names(QStringLiteral("xx"), {{0, QStringLiteral("Item")}}, 0, 0, {});
        QSet<QString> seen;
        for (int i = 1; i <= 20000; ++i)
            names.AddName(QStringLiteral("Item%1").arg(i, 2, 10, QLatin1Char('0')));
        names.AddName(QStringLiteral("Item"));
        for (int i = 0; i < 1000; ++i) {
            const QString name = names.GetNextName(true);
            QVERIFY(!seen.contains(name));
            seen.insert(name);
        }
        QVERIFY(seen.contains(QStringLiteral("Item20001")));
    }

    void guids()
    {
        static const QRegularExpression form(QStringLiteral("^\\{[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\}$"));
        QSet<QString> seen;
        for (int i = 0; i < 1000; ++i) {
            const QString guid = ZEVGis::Utility::CUtility::CreateGUID();
            QVERIFY2(form.match(guid).hasMatch(), qPrintable(guid));
            seen.insert(guid);
        }
        QCOMPARE(seen.size(), 1000);
        const QStringList list{QStringLiteral("a"), QStringLiteral("B"), QStringLiteral("a")};
        QCOMPARE(ZEVGis::Utility::CUtility::GetStringIndex(list, QStringLiteral("a")), 0);
        QCOMPARE(ZEVGis::Utility::CUtility::GetStringIndex(list, QStringLiteral("b")), -1);
        QCOMPARE(ZEVGis::Utility::CUtility::GetStringIndex({}, QString()), -1);
    }

    void factoryCopies()
    {
        CCatalog catalog;
        auto group = add(catalog, QStringLiteral("{G}"), QStringLiteral("group"), true);
        auto source = add(catalog, QStringLiteral("{S}"), QStringLiteral("NAYY 4x150"), false, group, 7);
        add(catalog, QStringLiteral("{SUB}"), QStringLiteral("sub"), false, source);
        source->SetIsDefault(1);
        source->SetMsgName(12);
        source->SetPictureRef(QStringLiteral("nayy.svg"));
        source->SetTemplateName(QStringLiteral("Kabel"));
        source->SetProperties(properties({{QStringLiteral("A"), {prop(QStringLiteral("X"), CDataBox::fromInt(1))}}}));
        auto factory = catalog.GetFactory();
        auto copy = factory->CreateItemFrom(source.get());
        QVERIFY(copy);
        QVERIFY(copy->GetGUID() != source->GetGUID());
        QVERIFY(!copy->GetParentItem());
        QVERIFY(copy->GetParentItemGuid().isEmpty());
        QVERIFY(copy->GetSubItems()->empty());
        QCOMPARE(copy->GetName(), source->GetName());
        QCOMPARE(copy->GetOrd(), 7);
        QCOMPARE(copy->GetIsDefault(), 0); // never a second default of its type
        QCOMPARE(copy->GetMsgName(), 12);
        QCOMPARE(copy->GetPictureRef(), QStringLiteral("nayy.svg"));
        QCOMPARE(copy->GetTemplateName(), QStringLiteral("Kabel"));
        copy->GetProperty(QStringLiteral("X"))->SetValue(CDataBox::fromInt(9));
        QCOMPARE(source->GetProperty(QStringLiteral("X"))->GetValue().ToInt(), 1);
        QVERIFY(!factory->CreateItemFrom(nullptr));

        CCatalogItemTemplate tmpl(QStringLiteral("Kabel NN"), 1, source);
        auto fromTemplate = factory->CreateItemFromTemplate(&tmpl);
        QCOMPARE(fromTemplate->GetTemplateName(), QStringLiteral("Kabel NN"));
        QCOMPARE(fromTemplate->IsGroup(), 0);
        QCOMPARE(fromTemplate->GetIsDefault(), 0);
        QVERIFY(fromTemplate->GetGUID() != source->GetGUID());
        QCOMPARE(fromTemplate->GetProperty(QStringLiteral("X"))->GetValue().ToInt(), 1);
        QCOMPARE(factory->GetNewItemName(&tmpl), QStringLiteral("NAYY 4x150"));
        QCOMPARE(factory->GetNewGroupName(1, &tmpl), QString());
        CCatalogItemTemplate empty;
        QVERIFY(!factory->CreateItemFromTemplate(&empty));
        QVERIFY(!factory->CreateItemFromTemplate(nullptr));
        QCOMPARE(factory->GetNewItemName(nullptr), QString());
        QCOMPARE(factory->GetGroupIconName(3, 0), QStringLiteral("IDI_BOX_CLOSED"));
        QCOMPARE(factory->GetGroupIconName(3, 1), QStringLiteral("IDI_BOX_OPEN"));
        QCOMPARE(factory->GetItemIconName(0), QStringLiteral("IDI_DOC_PLAIN"));
        QCOMPARE(factory->GetItemIconName(1), QStringLiteral("IDI_DOC_STARRED"));
        catalog.SetReference(QStringLiteral("CABLES"));
        QCOMPARE(factory->GetCatalogReference(), QStringLiteral("CABLES"));
    }

    // Other modules reach the factory's operations by their place in the vtable.
    void factorySlots_data()
    {
        QTest::addColumn<int>("slot");
        QTest::addColumn<int>("expected");
        using F = ICatalogItemFactory;
        QTest::newRow("first: CreateItemFrom") << vtableSlot(&F::CreateItemFrom) << 0;
        QTest::newRow("second: CreateItemFromTemplate") << vtableSlot(&F::CreateItemFromTemplate) << 1;
        QTest::newRow("fifth: CreatePictureBitmap") << vtableSlot(&F::CreatePictureBitmap) << 4;
        QTest::newRow("sixth: GetNewGroupName") << vtableSlot(&F::GetNewGroupName) << 5;
        QTest::newRow("seventh: GetNewItemName") << vtableSlot(&F::GetNewItemName) << 6;
        QTest::newRow("eighth: GetGroupIconName") << vtableSlot(&F::GetGroupIconName) << 7;
        QTest::newRow("ninth: GetItemIconName") << vtableSlot(&F::GetItemIconName) << 8;
    }

    void factorySlots()
    {
        QFETCH(int, slot);
        QFETCH(int, expected);
        if (slot < 0)
            QSKIP("vtable layout unknown for this compiler");
        QCOMPARE(slot, expected);
    }

    void pictures_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QSize>("box");
        QTest::addColumn<QSize>("expected");
        QTest::newRow("svg wide into square") << "wide.svg" << QSize(100, 100) << QSize(100, 50);
        QTest::newRow("svg into tall box") << "wide.svg" << QSize(40, 200) << QSize(40, 20);
        QTest::newRow("png tall into square") << "tall.png" << QSize(60, 60) << QSize(30, 60);
        QTest::newRow("png without box") << "tall.png" << QSize() << QSize(20, 40);
        QTest::newRow("missing") << "none.svg" << QSize(50, 50) << QSize();
        QTest::newRow("broken svg") << "broken.svg" << QSize(50, 50) << QSize();
        QTest::newRow("no reference") << "" << QSize(50, 50) << QSize();
    }

    void pictures()
    {
        QFETCH(QString, file);
        QFETCH(QSize, box);
        QFETCH(QSize, expected);
        QTemporaryDir dir;
        auto write = [&](const QString& name, const QByteArray& bytes) {
            QVERIFY(writeAll(dir.filePath(name), bytes));
        };
        write(QStringLiteral("wide.svg"), "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"200\" height=\"100\"><rect width=\"200\" height=\"100\" fill=\"red\"/></svg>");
        write(QStringLiteral("broken.svg"), "<svg><rect");
        QImage tall(20, 40, QImage::Format_ARGB32);
        tall.fill(Qt::blue);
        QVERIFY(tall.save(dir.filePath(QStringLiteral("tall.png"))));

        CDefaultCatalogItemFactory factory(dir.path());
        int mode = 2;
        const QImage image = factory.CreatePictureBitmap(file, nullptr, QRect(QPoint(10, 10), box), &mode);
        QCOMPARE(image.isNull(), !expected.isValid());
        if (expected.isValid())
            QCOMPARE(image.size(), expected);
        QCOMPARE(mode, expected.isValid() ? 1 : 2); // untouched when there is no picture
        if (!image.isNull())
            QVERIFY(image.pixelColor(image.width() / 2, image.height() / 2).alpha() > 0);
    }
};

QTEST_MAIN(TestCatalogModel)
#include "tst_catalogmodel.moc"
