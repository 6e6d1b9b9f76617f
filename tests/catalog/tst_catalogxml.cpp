// The catalog file format: round trips, the flat form, and text that is not a catalog.

#include "CatalogBuilders.h"
#include "CatalogRoundTrip.h"
#include "catalog/Catalog.h"

#include <QDirIterator>
#include <QtTest>

using namespace ZEVGis::Data;
using namespace CatalogTest;

namespace
{

void fillSample(CCatalog& catalog)
{
    catalog.SetReference(QStringLiteral("CABLES"));
    auto group = add(catalog, QStringLiteral("{A0000000-0000-0000-0000-000000000001}"), QStringLiteral("Kabeli 1 kV"), true, {}, 2);
    group->SetPictureRef(QStringLiteral("cables.svg"));
    group->SetMsgName(4711);
    auto sub = add(catalog, QStringLiteral("{A0000000-0000-0000-0000-000000000002}"), QStringLiteral("NAYY"), true, group, 1);
    auto item = add(catalog, QStringLiteral("{A0000000-0000-0000-0000-000000000003}"), QStringLiteral("NAYY 4x150 SE"), false, sub, 0);
    item->SetIsDefault(1);
    item->SetTemplateName(QStringLiteral("Kabel NN"));
    CPropertyEx choice(QStringLiteral("CONDUCTOR"), CDataBox(DataType::Choice, QStringLiteral("Al")));
    choice.SetChoices({QStringLiteral("Al"), QStringLiteral("Cu"), QStringLiteral(" spaced ")});
    CPropertyEx caption(QStringLiteral("CROSS_SECTION"), CDataBox::fromDouble(150));
    caption.SetCaption(QStringLiteral("Presjek [mm²]"));
    caption.SetPictureRef(QStringLiteral("props/section.svg"));
    caption.SetReadOnly(1);
    item->SetProperties(properties({{QStringLiteral("Općenito"), {prop(QString::fromUtf16(CatalogItemNameTag), CDataBox::fromString(QStringLiteral("NAYY 4x150 SE"))), choice}},
                                    {QStringLiteral("Električki"), {caption, prop(QStringLiteral("CORES"), CDataBox::fromInt(4)), prop(QStringLiteral("ARMOURED"), CDataBox::fromBool(false))}},
                                    {QStringLiteral("Prazna"), {}}}));
    add(catalog, QStringLiteral("{A0000000-0000-0000-0000-000000000004}"), QStringLiteral("NAYY 4x95 SE"), false, sub, -3);
    add(catalog, QStringLiteral("{A0000000-0000-0000-0000-000000000005}"), QStringLiteral("Stupovi"), true, {}, 1);
}

// Items {0}..{last}, each naming the one before as its parent, written flat and deepest
// first; with `loop` the first names the last.
QString flatChain(int last, bool loop)
{
    QString xml = QStringLiteral("<catalog ref=\"CHAIN\">");
    for (int k = last; k >= 0; --k) {
        xml += QStringLiteral("<i id=\"{%1}\"").arg(k);
        if (k > 0 || loop)
            xml += QStringLiteral(" p=\"{%1}\"").arg(k > 0 ? k - 1 : last);
        xml += QStringLiteral("/>");
    }
    return xml + QStringLiteral("</catalog>");
}

} // namespace

class TestCatalogXml : public QObject
{
    Q_OBJECT

private slots:
    void roundTripKeepsEverything()
    {
        CCatalog catalog;
        fillSample(catalog);
        const QString xml = catalog.GetXML();
        CCatalog loaded;
        QVERIFY2(loaded.ParseXML(xml), qPrintable(loaded.ParseError()));
        QCOMPARE(dump(loaded), dump(catalog));
        QCOMPARE(loaded.GetXML(), xml); // writing is deterministic
        QVERIFY(loaded.ParseError().isEmpty());

        CCatalog fromBytes;
        QVERIFY(fromBytes.ParseXMLBytes(catalog.GetXMLBytes()));
        QCOMPARE(dump(fromBytes), dump(catalog));
        // Tree links are rebuilt: parents, sub-items, root elements.
        auto item = fromBytes.GetItembyGuid(QStringLiteral("{A0000000-0000-0000-0000-000000000003}"));
        QVERIFY(item);
        QCOMPARE(item->GetParentItem()->GetGUID(), QStringLiteral("{A0000000-0000-0000-0000-000000000002}"));
        QCOMPARE(fromBytes.GetRootElementsMap()->size(), size_t(2));
        QCOMPARE(fromBytes.GetReference(), QStringLiteral("CABLES"));
        QCOMPARE(fromBytes.GetFactory()->GetCatalogReference(), QStringLiteral("CABLES"));
    }

    void specialTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("markup") << QStringLiteral("a<b & c>\"d\" 'e' ]]> &amp;");
        QTest::newRow("croatian") << QStringLiteral("Čvorište Đakovo – šuma, žica, ćelija");
        QTest::newRow("outside BMP") << QStringLiteral("munja \U0001F329 utikač \U0001F50C");
        QTest::newRow("line breaks and tabs") << QStringLiteral("first\nsecond\r\nthird\tfourth");
        QTest::newRow("outer spaces") << QStringLiteral("  padded  ");
        QTest::newRow("empty") << QString();
        QTest::newRow("long") << QString(5000, u'ž');
    }

    void specialTexts()
    {
        QFETCH(QString, text);
        CCatalog catalog;
        catalog.SetReference(text.isEmpty() ? QStringLiteral("R") : text);
        auto item = add(catalog, QStringLiteral("{B0000000-0000-0000-0000-000000000001}"), text, false);
        item->SetPictureRef(text);
        item->SetTemplateName(text);
        CPropertyEx p(text.isEmpty() ? QStringLiteral("T") : text, CDataBox::fromString(text));
        p.SetCaption(text);
        p.SetChoices({text, text + text});
        item->SetProperties(properties({{text, {p}}}));

        CCatalog loaded;
        QVERIFY2(loaded.ParseXML(catalog.GetXML()), qPrintable(loaded.ParseError()));
        QCOMPARE(dump(loaded), dump(catalog));
        CCatalog fromBytes;
        QVERIFY2(fromBytes.ParseXMLBytes(catalog.GetXMLBytes()), qPrintable(fromBytes.ParseError()));
        QCOMPARE(dump(fromBytes), dump(catalog));
    }

    // The item's name and its name property are one value, whichever way it changes, and
    // stay one through a save, a reload and a copy.
    void nameIsOneValue_data()
    {
        QTest::addColumn<QString>("change"); // "SetName", "property", or "" for the file as is
        QTest::addColumn<QString>("file");   // the item as stored before the change
        QTest::addColumn<QString>("name");   // the name everywhere afterwards

        const QString fresh = QStringLiteral(
            "<i id=\"{N1}\" n=\"Staro\"><c n=\"A\"><p t=\"CATALOGITEM_NAME\" v=\"Staro\"/></c></i>");
        // clang-format off
        QTest::newRow("renamed by SetName")        << "SetName"  << fresh << "Novo ime";
        QTest::newRow("renamed in the property")   << "property" << fresh << "Novo ime";
        // Files saved while the two could differ: the property holds the user's last edit.
        QTest::newRow("file: stale n=")            << "" << QStringLiteral("<i id=\"{N1}\" n=\"Staro\"><c n=\"A\"><p t=\"CATALOGITEM_NAME\" v=\"Novo ime\"/></c></i>") << "Novo ime";
        // A name property left empty (a template written by hand) takes the item's name.
        QTest::newRow("file: empty name property") << "" << QStringLiteral("<i id=\"{N1}\" n=\"Novo ime\"><c n=\"A\"><p t=\"CATALOGITEM_NAME\"/></c></i>") << "Novo ime";
        QTest::newRow("file: no name property")    << "" << QStringLiteral("<i id=\"{N1}\" n=\"Novo ime\"/>") << "Novo ime";
        // clang-format on
    }

    void nameIsOneValue()
    {
        QFETCH(QString, change);
        QFETCH(QString, file);
        QFETCH(QString, name);
        const QString nameTag = QString::fromUtf16(CatalogItemNameTag);
        CCatalog catalog;
        QVERIFY2(catalog.ParseXML(QStringLiteral("<catalog ref=\"N\">%1</catalog>").arg(file)),
                 qPrintable(catalog.ParseError()));
        auto item = catalog.GetItembyGuid(QStringLiteral("{N1}"));
        if (change == u"SetName")
            item->SetName(name);
        else if (change == u"property")
            item->GetProperty(nameTag)->SetValue(CDataBox::fromString(name));

        // The name as every part of the library sees it.
        const auto check = [&](CCatalogItem& it, const char* where) {
            QVERIFY2(it.GetName() == name, where);
            if (auto property = it.GetProperty(nameTag))
                QVERIFY2(property->GetValue().ToString() == name, where);
        };
        check(*item, "edited");
        const QByteArray saved = catalog.GetXMLBytes();
        QVERIFY2(!saved.contains("Staro"), saved.constData());
        CCatalog reloaded;
        QVERIFY2(reloaded.ParseXMLBytes(saved), qPrintable(reloaded.ParseError()));
        check(*reloaded.GetItembyGuid(QStringLiteral("{N1}")), "reloaded");
        check(*catalog.GetFactory()->CreateItemFrom(item.get()), "copied");
    }

    void flatFormWithParentGuids()
    {
        // Items may also be listed flat, each naming its parent.
        const QString xml = QStringLiteral(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<catalog ref=\"POLES\">\n"
            " <i id=\"{C2}\" n=\"Beton 9 m\" p=\"{C1}\" o=\"2\"/>\n"
            " <i id=\"{C1}\" n=\"Betonski stupovi\" g=\"1\"/>\n"
            " <i id=\"{C3}\" n=\"Beton 12 m\" p=\"{C1}\" o=\"1\"/>\n"
            " <i id=\"{C4}\" n=\"Siroče\" p=\"{MISSING}\"/>\n"
            "</catalog>\n");
        CCatalog catalog;
        QVERIFY2(catalog.ParseXML(xml), qPrintable(catalog.ParseError()));
        QCOMPARE(catalog.GetAllElementsMap()->size(), size_t(4));
        auto group = catalog.GetItembyGuid(QStringLiteral("{C1}"));
        std::vector<boost::shared_ptr<CCatalogItem>> subs;
        group->GetSortedSubItems(subs);
        QCOMPARE(subs.size(), size_t(2));
        QCOMPARE(subs[0]->GetName(), QStringLiteral("Beton 12 m"));
        QCOMPARE(subs[0]->GetParentItem(), group);
        // A parent that is not in the file leaves the item at the root, its parent GUID kept.
        auto orphan = catalog.GetItembyGuid(QStringLiteral("{C4}"));
        QVERIFY(!orphan->GetParentItem());
        QCOMPARE(orphan->GetParentItemGuid(), QStringLiteral("{MISSING}"));
        QCOMPARE(catalog.GetRootElementsMap()->size(), size_t(2));
        CCatalog again;
        QVERIFY(again.ParseXML(catalog.GetXML()));
        QCOMPARE(dump(again), dump(catalog));
    }

    void itemsOutsideTheTreeAreKept()
    {
        CCatalog catalog;
        catalog.SetReference(QStringLiteral("X"));
        auto group = add(catalog, QStringLiteral("{D1}"), QStringLiteral("G"), true);
        // A parent the catalog does not know, and a sub-item whose GUID is another item's.
        auto foreignParent = boost::make_shared<CCatalogItem>();
        foreignParent->SetGUID(QStringLiteral("{FOREIGN}"));
        auto child = add(catalog, QStringLiteral("{D2}"), QStringLiteral("child of foreign"), false, foreignParent);
        auto clash = boost::make_shared<CCatalogItem>();
        clash->SetGUID(QStringLiteral("{D2}"));
        clash->SetName(QStringLiteral("not registered"));
        group->AddSubItem(clash);
        QCOMPARE(catalog.AddItem(clash), 0);

        CCatalog loaded;
        QVERIFY2(loaded.ParseXML(catalog.GetXML()), qPrintable(loaded.ParseError()));
        QCOMPARE(loaded.GetAllElementsMap()->size(), size_t(2));
        QCOMPARE(loaded.GetItembyGuid(QStringLiteral("{D2}"))->GetName(), QStringLiteral("child of foreign"));
        QCOMPARE(loaded.GetItembyGuid(QStringLiteral("{D2}"))->GetParentItemGuid(), QStringLiteral("{FOREIGN}"));
        QVERIFY(loaded.GetItembyGuid(QStringLiteral("{D1}"))->GetSubItems()->empty());
    }

    void notACatalog_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<QString>("message");
        QTest::newRow("empty") << QString() << "no document element";
        QTest::newRow("plain text") << QStringLiteral("cables and poles") << "not well-formed";
        QTest::newRow("unclosed") << QStringLiteral("<catalog ref=\"A\">\n <i id=\"{1}\" n=\"x\">\n</catalog>") << "line 3";
        QTest::newRow("other root") << QStringLiteral("<registry/>") << "not <catalog>";
        QTest::newRow("bad attribute quoting") << QStringLiteral("<catalog ref=A/>") << "not well-formed";
        QTest::newRow("item without GUID") << QStringLiteral("<catalog>\n<i n=\"x\"/></catalog>") << "without a GUID (attribute id) (at line 2, column 1)";
        QTest::newRow("GUID twice") << QStringLiteral("<catalog><i id=\"{1}\"/><i id=\"{2}\"><i id=\"{1}\"/></i></catalog>") << "used by two items";
        QTest::newRow("order not a number") << QStringLiteral("<catalog><i id=\"{1}\" o=\"first\"/></catalog>") << "order number";
        QTest::newRow("group flag") << QStringLiteral("<catalog><i id=\"{1}\" g=\"maybe\"/></catalog>") << "group flag";
        QTest::newRow("unknown type") << QStringLiteral("<catalog><i id=\"{1}\"><c n=\"A\"><p t=\"X\" y=\"money\"/></c></i></catalog>") << "unknown property type";
        QTest::newRow("property without tag") << QStringLiteral("<catalog><i id=\"{1}\"><c n=\"A\"><p v=\"1\"/></c></i></catalog>") << "without a tag";
        QTest::newRow("parent cycle") << QStringLiteral("<catalog><i id=\"{1}\" p=\"{2}\"/><i id=\"{2}\" p=\"{1}\"/></catalog>") << "own ancestor";
        QTest::newRow("own parent") << QStringLiteral("<catalog><i id=\"{1}\" p=\"{1}\"/></catalog>") << "{1} is its own ancestor";
        QTest::newRow("parent nested inside its child") << QStringLiteral("<catalog><i id=\"{1}\" p=\"{2}\"><i id=\"{2}\"/></i></catalog>") << "own ancestor";
        // Written flat, a chain has no nesting to limit it; it is held to the same depth.
        QTest::newRow("parent chain deeper than nesting allows") << flatChain(300, false) << "{257} lies deeper than 256 levels";
        QTest::newRow("loop at the top of a chain") << flatChain(256, true) << "own ancestor";
        QTest::newRow("long chain into a loop") << flatChain(100000, true) << "own ancestor";
        QTest::newRow("newer format") << QStringLiteral("<catalog format=\"99\"/>") << "newer";
        QTest::newRow("format not a number") << QStringLiteral("<catalog format=\"2.0b\"/>") << "format=\"2.0b\" is not a format version";
        QTest::newRow("format zero") << QStringLiteral("<catalog format=\"0\"/>") << "not a format version";
    }

    void notACatalog()
    {
        QFETCH(QString, xml);
        QFETCH(QString, message);
        CCatalog catalog;
        fillSample(catalog);
        const QString before = dump(catalog);
        QCOMPARE(catalog.ParseXML(xml), 0);
        QVERIFY2(catalog.ParseError().contains(message, Qt::CaseInsensitive), qPrintable(catalog.ParseError()));
        QCOMPARE(dump(catalog), before); // left as it was
        QCOMPARE(catalog.ParseXMLBytes(xml.toUtf8()), 0);
        QCOMPARE(dump(catalog), before);
        // A good text afterwards clears the error.
        QVERIFY(catalog.ParseXML(QStringLiteral("<catalog ref=\"CABLES\"/>")));
        QVERIFY(catalog.ParseError().isEmpty());
        QVERIFY(catalog.GetAllElementsMap()->empty());
    }

    void deepestFlatChainRoundTrip()
    {
        CCatalog catalog;
        QVERIFY2(catalog.ParseXML(flatChain(256, false)), qPrintable(catalog.ParseError()));
        int depth = 0;
        for (auto up = catalog.GetItembyGuid(QStringLiteral("{256}"))->GetParentItem(); up; up = up->GetParentItem())
            ++depth;
        QCOMPARE(depth, 256);
        CCatalog loaded;
        QVERIFY2(loaded.ParseXMLBytes(catalog.GetXMLBytes()), qPrintable(loaded.ParseError()));
        QCOMPARE(dump(loaded), dump(catalog));
    }

    void encodings_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("nameOrError"); // the item's name, or a piece of the error
        QTest::addColumn<bool>("loads");
        const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog><i id=\"{1}\" n=\"";
        const QByteArray tail = "\"/></catalog>";
        const auto utf16 = [](const QString& text, QStringConverter::Encoding encoding) -> QByteArray {
            QStringEncoder encoder(encoding, QStringEncoder::Flag::WriteBom);
            return encoder.encode(text);
        };
        const QString declared16 = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-16\"?><catalog><i id=\"{1}\" n=\"Stup Đakovo\"/></catalog>");
        QTest::newRow("UTF-8 with BOM") << "\xEF\xBB\xBF" + head + "Stup Đakovo" + tail << "Stup Đakovo" << true;
        QTest::newRow("UTF-8, four-byte letter") << head + "Stup \xF0\x9F\x97\xBC" + tail << QStringLiteral("Stup \U0001F5FC") << true;
        QTest::newRow("UTF-16LE with BOM") << utf16(declared16, QStringConverter::Utf16LE) << "Stup Đakovo" << true;
        QTest::newRow("UTF-16BE with BOM") << utf16(declared16, QStringConverter::Utf16BE) << "Stup Đakovo" << true;
        QTest::newRow("ISO-8859-1 as declared") << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><catalog><i id=\"{1}\" n=\"Caf\xE9\"/></catalog>") << "Café" << true;
        // Read as UTF-8, these would come back with their letters replaced.
        QTest::newRow("windows-1250 declared") << QByteArray("<?xml version=\"1.0\" encoding=\"windows-1250\"?>\n<catalog><i id=\"{1}\" n=\"Stup \xC8\"/></catalog>") << "not UTF-8 text at line 2, column 30 (byte 0xC8)" << false;
        QTest::newRow("8-bit letter in UTF-8") << head + "Caf\xE9" + tail << "(byte 0xE9)" << false;
        QTest::newRow("sequence cut short") << head + "Stup \xC4" + tail << "(byte 0xC4)" << false;
        QTest::newRow("overlong form") << head + "\xC0\xAF" + tail << "(byte 0xC0)" << false;
        QTest::newRow("surrogate") << head + "\xED\xA0\x80" + tail << "(byte 0xED)" << false;
        QTest::newRow("past U+10FFFF") << head + "\xF4\x90\x80\x80" + tail << "(byte 0xF4)" << false;
    }

    void encodings()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, nameOrError);
        QFETCH(bool, loads);
        CCatalog catalog;
        QCOMPARE(catalog.ParseXMLBytes(bytes), int(loads));
        if (loads)
            QCOMPARE(catalog.GetItembyGuid(QStringLiteral("{1}"))->GetName(), nameOrError);
        else
            QVERIFY2(catalog.ParseError().contains(nameOrError), qPrintable(catalog.ParseError()));
    }

    // Characters XML 1.0 cannot hold are refused when read, raw or as references, so that
    // whatever loads can be written back; the writer would have to leave them out.
    void charactersXmlCannotHold_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error"); // empty: loads and round-trips
        const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog ref=\"A\">\n";
        // Both loaded, then saved as one GUID twice: the saved file no longer loaded.
        QTest::newRow("GUIDs differing by a raw control byte")
            << head + "<i id=\"{A}\"/>\n<i id=\"{A}\x01\"/>\n</catalog>" << "U+0001 in attribute id of <i> at line 4, column 11";
        // Saved as id="": the saved file no longer loaded.
        QTest::newRow("GUID only a character reference") << head + "<i id=\"&#1;\"/></catalog>" << "U+0001 in attribute id of <i> at line 3, column 8";
        QTest::newRow("hexadecimal reference in a value")
            << head + "<i id=\"{1}\"><c n=\"A\"><p t=\"X\" v=\"a&#x1F;\"/></c></i></catalog>" << "U+001F in attribute v of <p>";
        QTest::newRow("raw control byte in a name") << head + "<i id=\"{1}\" n=\"Kabel\x07\"/></catalog>" << "U+0007 in attribute n of <i> at line 3, column 21";
        QTest::newRow("U+FFFE") << head + "<i id=\"{1}\" n=\"&#xFFFE;\"/></catalog>" << "U+FFFE";
        QTest::newRow("U+FFFF raw") << head + "<i id=\"{1}\" n=\"\xEF\xBF\xBF\"/></catalog>" << "U+FFFF";
        QTest::newRow("surrogate reference") << head + "<i id=\"{1}\" n=\"&#xD800;\"/></catalog>" << "U+D800";
        QTest::newRow("reference past U+10FFFF") << head + "<i id=\"{1}\" n=\"&#x110000;\"/></catalog>" << "U+110000";
        QTest::newRow("in a choice") << head + "<i id=\"{1}\"><c n=\"A\"><p t=\"X\" y=\"choice\"><ch v=\"&#2;\"/></p></c></i></catalog>" << "attribute v of <ch>";
        QTest::newRow("in text between elements") << head + "<i id=\"{1}\"/>\x02</catalog>" << "U+0002 in a text";
        QTest::newRow("in a file declared ISO-8859-1")
            << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><catalog><i id=\"{1}\" n=\"Caf\xE9\x03\"/></catalog>") << "U+0003";
        // What XML 1.0 does hold comes back as it was.
        QTest::newRow("tab, line feed, carriage return as references")
            << head + "<i id=\"{1}\" n=\"a&#9;b&#10;c&#13;d\"/></catalog>" << "";
        QTest::newRow("a reference in a comment is no character")
            << head + "<!-- &#1; -->\n<i id=\"{1}\"/></catalog>" << "";
        QTest::newRow("characters next to the refused ones")
            << head + "<i id=\"{1}\" n=\"&#x20;&#xD7FF;&#xE000;&#xFFFD;&#x10000;&#x10FFFF;\"/></catalog>" << "";
    }

    void charactersXmlCannotHold()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        CCatalog catalog;
        QCOMPARE(catalog.ParseXMLBytes(bytes), int(error.isEmpty()));
        QVERIFY2(catalog.ParseError().contains(error), qPrintable(catalog.ParseError()));
        QVERIFY2(roundTripProblem(bytes).isEmpty(), qPrintable(roundTripProblem(bytes)));
    }

    // The sample catalogs and every input the catalog fuzz target found come back from a
    // write as they were read.
    void filesRoundTrip_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString& folder : {QStringLiteral(ZEVX_SAMPLES_DIR), QStringLiteral(ZEVX_ROUNDTRIP_DIR)}) {
            QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QString path = it.next();
                if (folder == QStringLiteral(ZEVX_ROUNDTRIP_DIR) || path.endsWith(QStringLiteral(".xml")))
                    QTest::newRow(qPrintable(QDir(folder).relativeFilePath(path))) << path;
            }
        }
    }

    void filesRoundTrip()
    {
        QFETCH(QString, path);
        const QByteArray bytes = readAll(path);
        const QString problem = roundTripProblem(bytes);
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }

    void manyItemsRoundTrip()
    {
        // Enough items for the reader's shortcuts to set in: values that repeat and values
        // that never do, GUIDs that differ only past their first characters.
        CCatalog catalog;
        catalog.SetReference(QStringLiteral("MANY"));
        auto group = add(catalog, QStringLiteral("{G}"), QStringLiteral("Grupa"), true);
        const QString nameTag = QString::fromUtf16(CatalogItemNameTag);
        for (int n = 0; n < 3000; ++n) {
            const int k = (n * 7919) % 3000; // not in GUID order
            const QString name = QStringLiteral("Kabel %1").arg(k);
            auto item = add(catalog, QStringLiteral("{AAAAAAAA-%1}").arg(k, k % 2 ? 4 : 5, 10, QLatin1Char('0')),
                            name, false, group, k % 5);
            // Every 100th item has a name property that differs from its name.
            const QString shown = k % 100 ? name : QStringLiteral("Drugi naziv");
            item->SetProperties(properties({{QStringLiteral("A"), {prop(nameTag, CDataBox::fromString(shown)),
                                                                   prop(QStringLiteral("NO"), CDataBox::fromString(QStringLiteral("A-%1").arg(k))),
                                                                   prop(QStringLiteral("U"), CDataBox::fromString(k % 3 ? QStringLiteral("0,4 kV") : QStringLiteral("20 kV")))}}}));
        }
        const QByteArray bytes = catalog.GetXMLBytes();
        CCatalog loaded;
        QVERIFY2(loaded.ParseXMLBytes(bytes), qPrintable(loaded.ParseError()));
        QCOMPARE(dump(loaded), dump(catalog));
        QCOMPARE(loaded.GetXMLBytes(), bytes);

        // A GUID used twice far apart is found, and the later use is the one named.
        const auto guidAt = [&](qsizetype from) {
            const qsizetype start = bytes.indexOf("id=\"", from) + 4;
            return std::pair{start, bytes.mid(start, bytes.indexOf('"', start) - start)};
        };
        const QByteArray firstGuid = guidAt(bytes.indexOf("<i ")).second;
        const auto [lastAt, lastGuid] = guidAt(bytes.lastIndexOf("<i "));
        QByteArray twice = bytes;
        twice.replace(lastAt, lastGuid.size(), firstGuid);
        QCOMPARE(loaded.ParseXMLBytes(twice), 0);
        const int line = int(twice.left(lastAt).count('\n')) + 1;
        QVERIFY2(loaded.ParseError().contains(QStringLiteral("%1 is used by two items (at line %2,").arg(QString::fromLatin1(firstGuid)).arg(line)),
                 qPrintable(loaded.ParseError()));
    }

    void errorPositionIsLineAndColumn()
    {
        CCatalog catalog;
        QCOMPARE(catalog.ParseXML(QStringLiteral("<catalog>\n <i id=\"{1}\">\n  <c n=\"Ž\"><p t=\"A\" y=\"bogus\"/></c>\n </i>\n</catalog>")), 0);
        QVERIFY2(catalog.ParseError().contains(QStringLiteral("line 3, column 12")), qPrintable(catalog.ParseError()));
    }

    void bytesWithByteOrderMark()
    {
        CCatalog catalog;
        QByteArray bytes("\xEF\xBB\xBF<catalog ref=\"\xC5\xBD\"><i id=\"{1}\" n=\"\xC4\x8D\"/></catalog>");
        QVERIFY2(catalog.ParseXMLBytes(bytes), qPrintable(catalog.ParseError()));
        QCOMPARE(catalog.GetReference(), QStringLiteral("Ž"));
        QCOMPARE(catalog.GetItembyGuid(QStringLiteral("{1}"))->GetName(), QStringLiteral("č"));
    }

    void loadedPropertiesOutliveTheirCatalog()
    {
        boost::shared_ptr<CPropertyEx> kept;
        boost::shared_ptr<CCategory> category;
        {
            CCatalog source;
            fillSample(source);
            CCatalog catalog;
            QVERIFY(catalog.ParseXML(source.GetXML()));
            auto item = catalog.GetItembyGuid(QStringLiteral("{A0000000-0000-0000-0000-000000000003}"));
            kept = item->GetProperty(QStringLiteral("CORES"));
            category = item->GetProperties()->GetCategory(QStringLiteral("Općenito"));
            item->SetProperties(boost::make_shared<CPropertiesEx>());
            catalog.Clear();
        }
        QCOMPARE(kept->GetValue().ToInt(), 4);
        QCOMPARE(category->GetPropertyExVector().size(), size_t(2));
        QCOMPARE(category->GetPropertyEx(QStringLiteral("CONDUCTOR"))->GetChoices().size(), 3);
    }

    void loadedPropertiesAreIndependent()
    {
        // Shared blocks (captions, choices) must not leak an edit into other properties.
        const QString xml = QStringLiteral(
            "<catalog><i id=\"{1}\"><c n=\"A\"><p t=\"M\" y=\"choice\" v=\"Al\" cap=\"Materijal\"><ch v=\"Al\"/><ch v=\"Cu\"/></p></c></i>"
            "<i id=\"{2}\"><c n=\"A\"><p t=\"M\" y=\"choice\" v=\"Cu\" cap=\"Materijal\"><ch v=\"Al\"/><ch v=\"Cu\"/></p></c></i></catalog>");
        CCatalog catalog;
        QVERIFY(catalog.ParseXML(xml));
        auto first = catalog.GetItembyGuid(QStringLiteral("{1}"))->GetProperty(QStringLiteral("M"));
        auto second = catalog.GetItembyGuid(QStringLiteral("{2}"))->GetProperty(QStringLiteral("M"));
        first->SetCaption(QStringLiteral("Vodič"));
        first->SetChoices({QStringLiteral("Fe")});
        QCOMPARE(second->GetCaption(), QStringLiteral("Materijal"));
        QCOMPARE(second->GetChoices(), QStringList({QStringLiteral("Al"), QStringLiteral("Cu")}));
        QCOMPARE(first->GetCaption(), QStringLiteral("Vodič"));
    }
};

QTEST_GUILESS_MAIN(TestCatalogXml)
#include "tst_catalogxml.moc"
