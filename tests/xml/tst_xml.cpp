#include "tests/xml/XmlIndexCheck.h"
#include "xml/XmlDocument.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>

namespace
{
// One record as a line: start, length, start-tag/end-tag length, level, flags, links.
QString dumpRecord(const CXmlDocument& doc, int i)
{
    const ElementPos& e = doc.Record(i);
    QString flags;
    if (e.Has(ElementPos::FirstSibling))
        flags += u'F';
    if (e.Has(ElementPos::Unended))
        flags += u'U';
    if (e.Has(ElementPos::HasError))
        flags += u'E';
    if (e.Has(ElementPos::IllFormed))
        flags += u'I';
    return QStringLiteral("%1 %2 %3/%4 L%5 %6 p%7 c%8 n%9 v%10")
        .arg(e.start)
        .arg(e.length)
        .arg(e.StartTagLength())
        .arg(e.EndTagLength())
        .arg(e.Level())
        .arg(flags.isEmpty() ? QStringLiteral("-") : flags)
        .arg(e.parent)
        .arg(e.firstChild)
        .arg(e.nextSibling)
        .arg(e.prevSibling);
}

QStringList dumpIndex(const CXmlDocument& doc)
{
    QStringList lines;
    for (int i = 0; i < doc.RecordCount(); ++i)
        lines << dumpRecord(doc, i);
    return lines;
}

QString tooLongStartTag()
{
    // 0x100000 characters of attributes: bit 20 of the length is not kept.
    return QStringLiteral("<a x=\"") + QString(0x100000 - 9, u'v') + QStringLiteral("\"/>");
}
} // namespace

class TestXmlDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void verdicts_data();
    void verdicts();
    void index_data();
    void index();
    void startTagLengthMask();
    void reparseResetsIndex();
    void segmentGrowth();
    void reserveStopsAtNextSegment();
    void loadFile_data();
    void loadFile();
    void loadFileFailureKeepsText_data();
    void loadFileFailureKeepsText();
    void parseKeepsLoadReport();
    void deepNesting_data();
    void deepNesting();
    void millionSiblings();
};

void TestXmlDocument::initTestCase()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void TestXmlDocument::verdicts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<unsigned>("flags");
    QTest::addColumn<bool>("wellFormed");
    QTest::addColumn<QString>("result");
    const unsigned ic = CXmlDocument::IgnoreCase;
    auto row =
        [](const char* name, const QString& text, unsigned flags, bool ok, const char* result)
    { QTest::newRow(name) << text << flags << ok << QString::fromUtf8(result); };

    // Document level
    row("empty", QString(), 0, false, "Empty document");
    row("whitespace only", " \r\n\t", 0, false, "No root element");
    row("comment only", "<!-- c -->", 0, false, "No root element");
    row("pi only", "<?xml version=\"1.0\"?>", 0, false, "No root element");
    row("end tag only", "</a>", 0, false, "No root element");
    row("bad tag only", "<1a/>", 0, false, "No root element");
    // With one root, errors outside it still decide the verdict and the message.
    row("error before root", "<!x><r/>", 0, false, "Incorrect ! tag at offset 0");
    row("stray end tag after root", "<r/></x>", 0, false,
        "No start tag for end tag 'x' at offset 4");
    row("empty element", "<a/>", 0, true, "");
    row("full document",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- c -->\n"
        "<a x=\"1\" y='2'>\n  <b>t&amp;t</b><c/><![CDATA[<d>]]><?p <e>?>\n</a>\n",
        0, true, "");
    row("byte-order mark", QStringLiteral("\uFEFF<a/>"), 0, true, "");
    row("root sibling", "<a/><b/>", 0, false, "Root element has sibling");
    row("root sibling after end", "<a></a ><b/>", 0, false, "Root element has sibling");
    row("sibling replaces error", "<a></b></a><c/>", 0, false, "Root element has sibling");
    row("text is ignored", "x<a>y > z</a>w", 0, true, "");
    row("0 ends the text", QString::fromUtf16(u"<a/>\0<b", 7), 0, true, "");

    // End tags
    row("unended inner", "<a><b></a>", 0, false,
        "End tag 'a' at offset 7 does not match start tag 'b' at offset 3");
    row("innermost unended reported", "<a><b><c></a>", 0, false,
        "End tag 'a' at offset 10 does not match start tag 'c' at offset 6");
    row("no start tag", "<a></b>", 0, false, "No start tag for end tag 'b' at offset 3");
    row("end name is prefix", "<ab></a>", 0, false, "No start tag for end tag 'a' at offset 4");
    row("end name is longer", "<a></ab>", 0, false, "No start tag for end tag 'ab' at offset 3");
    row("empty end name", "<a></>", 0, false, "No start tag for end tag '' at offset 3");
    row("name goes on with =", "<a=b></a>", 0, true, "");
    row("name goes on with [", "<a[1]></a>", 0, true, "");
    row("end tag with space", "<a></a \n>", 0, true, "");
    row("case differs", "<A></a>", 0, false, "No start tag for end tag 'a' at offset 3");
    row("case ignored", "<A></a>", ic, true, "");
    row("case ignored non-ASCII", QStringLiteral("<Čvor></čVOR>"), ic, true, "");
    row("case ignored mismatch", "<a><b></A>", ic, false,
        "End tag 'A' at offset 7 does not match start tag 'b' at offset 3");
    row("not ended", "<a>", 0, false, "Element 'a' at offset 0 not ended");
    row("unended lifted to root level", "<a><b><c>", 0, false, "Root element has sibling");
    row("first error kept", "<r><!x><!-x></r>", 0, false, "Incorrect ! tag at offset 3");
    row("non-BMP offsets", QStringLiteral("<r>\U0001D11E<b></r>"), 0, false,
        "End tag 'r' at offset 9 does not match start tag 'b' at offset 5");

    // Start tags and names
    row("name start :", "<:a/>", 0, true, "");
    row("name start _", "<_a/>", 0, true, "");
    row("name start {", "<{a}/>", 0, true, "");
    row("name start non-ASCII", QStringLiteral("<\u0161/>"), 0, true, "");
    row("name start digit", "<r><1a/></r>", 0, false, "Incorrect tag name character at offset 3");
    row("name start -", "<r><-></r>", 0, false, "Incorrect tag name character at offset 3");
    row("name start @", "<r><@/></r>", 0, false, "Incorrect tag name character at offset 3");
    row("name start ^", "<r><^/></r>", 0, false, "Incorrect tag name character at offset 3");
    row("name start backquote", "<r><`/></r>", 0, false,
        "Incorrect tag name character at offset 3");
    row("name start <", "<r><<b/></r>", 0, false, "Incorrect tag name character at offset 3");
    row("quoted >", "<a x='>' y=\">\"/>", 0, true, "");
    row("other quote is plain", "<a x=\"'>\" y='\">'></a>", 0, true, "");
    row("empty with space", "<a />", 0, true, "");
    row("empty after quote", "<a x='1'/>", 0, true, "");
    row("unquoted value before /", "<a x=1/>", 0, false, "Element 'a' at offset 0 not ended");
    row("tab, line feed and carriage return end names",
        "<Property\ttag=\"R20\"\nvalue=\"1\"><b\r/></Property\r\n>", 0, true, "");

    // Tags longer than the scanner's 16-character blocks
    row("long tag, > in values",
        "<r><Item guid=\"{8F2A6C1E-0000-1111}\" name=\"a>b c>d\" note='x\">'"
        " flag=\"1\"/></r>",
        0, true, "");
    row("long tag, quote ends in next block",
        "<r><Property tag=\"R20\" type=\"double\" "
        "value=\"0.206\" note=\"a > b\"/><Property tag=\"X\" value=\"1\"></r>",
        0, false, "End tag 'r' at offset 94 does not match start tag 'Property' at offset 65");
    row("long name", "<r><ElementNameLongerThanSixteen x=\"1\"/></r>", 0, true, "");
    row("long tag, unquoted value before /", "<r><Property tag=\"R20\" value=12/></r>", 0, false,
        "End tag 'r' at offset 34 does not match start tag 'Property' at offset 3");
    row("long tag, open quote", "<r><Item guid=\"{8F2A6C1E-0000}\" name=\"abc></r>      ", 0, false,
        "Element tag at offset 3 unterminated");
    row("long tag, 0 inside",
        QString::fromUtf16(u"<r><Item guid=\"{8F2A6C1E-0000}\"\0 n=\"x\"/></r>", 44), 0, false,
        "Element tag at offset 3 unterminated");
    row("long end tag name", "<ElementNameLongerThanSixteen></ElementNameLongerThanSixteen   >", 0,
        true, "");

    // Other markup
    row("cdata hides tags", "<r><![CDATA[<b>]]></r>", 0, true, "");
    row("comment hides tags", "<r><!-- <b> --></r>", 0, true, "");
    row("pi hides tags", "<r><?p <b> ?></r>", 0, true, "");
    row("shortest comment", "<!--><r/>", 0, true, "");
    row("shortest pi", "<r><?></r>", 0, true, "");
    row("doctype with subset", "<!DOCTYPE r [<!ENTITY e \"x>y\"><!ELEMENT r ANY>]><r/>", 0, true,
        "");
    row("declaration", "<r><!ATTLIST r a CDATA '>'></r>", 0, true, "");
    row("bad comment", "<r><!-x></r>", 0, false, "Incorrect comment tag at offset 3");
    row("bad cdata", "<r><![x]></r>", 0, false, "Incorrect tag at offset 3");
    row("bad bang", "<r><!x></r>", 0, false, "Incorrect ! tag at offset 3");

    // Unterminated tokens
    row("unterminated start tag", "<r><b x='1", 0, false, "Element tag at offset 3 unterminated");
    row("unterminated end tag", "<r></r", 0, false, "Element end tag at offset 3 unterminated");
    row("unterminated cdata", "<r><![CDATA[x]>", 0, false,
        "CDATA Section at offset 3 unterminated");
    row("unterminated pi", "<r><?p", 0, false, "Processing instruction at offset 3 unterminated");
    row("unterminated comment", "<r><!-- x ->", 0, false, "Comment at offset 3 unterminated");
    row("unterminated doctype", "<r><!DOCTYPE x [<!ENTITY e 'v'>]", 0, false,
        "Doctype at offset 3 unterminated");
    row("unterminated declaration", "<r><!ENTITY e '>", 0, false,
        "Doctype at offset 3 unterminated");
    row("lone <", "<r><", 0, false, "tag at offset 3 unterminated");
    row("bad bang at end", "<r><!", 0, false, "tag at offset 3 unterminated");
}

void TestXmlDocument::verdicts()
{
    QFETCH(QString, text);
    QFETCH(unsigned, flags);
    QFETCH(bool, wellFormed);
    QFETCH(QString, result);

    CXmlDocument doc;
    doc.SetDocFlags(flags);
    QCOMPARE(doc.SetDocumentText(text), wellFormed);
    QCOMPARE(doc.GetResult(), result);
    QCOMPARE(doc.GetDocumentText(), text);
    QCOMPARE(XmlIndexProblem(doc), QString());
}

void TestXmlDocument::index_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("records");

    QTest::newRow("nested") << QStringLiteral("<a><b/><c></c></a>")
                            << QStringList{"0 18 0/0 L0 - p0 c1 n0 v0", "0 18 3/4 L0 F p0 c2 n0 v1",
                                           "3 4 4/0 L1 F p1 c0 n3 v3", "7 7 3/4 L1 - p1 c0 n0 v2"};
    // b and c are handed up from the unended a and follow it under r.
    QTest::newRow("lifted on mismatch")
        << QStringLiteral("<r><a><b/><c/></r>")
        << QStringList{"0 18 0/0 L0 I p0 c1 n0 v0", "0 18 3/4 L0 F p0 c2 n0 v1",
                       "3 3 3/0 L1 FU p1 c0 n3 v4", "6 4 4/0 L2 - p1 c0 n4 v2",
                       "10 4 4/0 L2 - p1 c0 n0 v3"};
    // At the end of the text every open element is unended; all end up flat under the document.
    QTest::newRow("lifted at end")
        << QStringLiteral("<a><b><c/><d><e/>")
        << QStringList{"0 17 0/0 L0 I p0 c1 n0 v0", "0 3 3/0 L0 FU p0 c0 n2 v5",
                       "3 3 3/0 L1 U p0 c0 n3 v1",  "6 4 4/0 L2 - p0 c0 n4 v2",
                       "10 3 3/0 L2 U p0 c0 n5 v3", "13 4 4/0 L3 - p0 c0 n0 v4"};
    QTest::newRow("error marks element")
        << QStringLiteral("<r><b><!x></b></r>")
        << QStringList{"0 18 0/0 L0 I p0 c1 n0 v0", "0 18 3/4 L0 F p0 c2 n0 v1",
                       "3 11 3/4 L1 FE p1 c0 n0 v2"};
    QTest::newRow("error moves up from unended")
        << QStringLiteral("<r><b><!x></r>")
        << QStringList{"0 14 0/0 L0 I p0 c1 n0 v0", "0 14 3/4 L0 FE p0 c2 n0 v1",
                       "3 3 3/0 L1 FU p1 c0 n0 v2"};
    QTest::newRow("error at document level")
        << QStringLiteral("<!x><r/>")
        << QStringList{"0 8 0/0 L0 EI p0 c1 n0 v0", "4 4 4/0 L0 F p0 c0 n0 v1"};
    QTest::newRow("stray end tag marks parent")
        << QStringLiteral("<r></x></r>")
        << QStringList{"0 11 0/0 L0 I p0 c1 n0 v0", "0 11 3/4 L0 FE p0 c0 n0 v1"};
    QTest::newRow("long end tag") << QStringLiteral("<a></a%1>").arg(QString(600, u' '))
                                  << QStringList{"0 607 0/0 L0 - p0 c1 n0 v0",
                                                 "0 607 3/604 L0 F p0 c0 n0 v1"};
    // A sibling of the root makes the verdict false without marking the document ill formed.
    QTest::newRow("root sibling") << QStringLiteral("<a/><b/>")
                                  << QStringList{"0 8 0/0 L0 - p0 c1 n0 v0",
                                                 "0 4 4/0 L0 F p0 c0 n2 v2",
                                                 "4 4 4/0 L0 - p0 c0 n0 v1"};
}

void TestXmlDocument::index()
{
    QFETCH(QString, text);
    QFETCH(QStringList, records);
    CXmlDocument doc;
    doc.SetDocumentText(text);
    QCOMPARE(dumpIndex(doc), records);
    QCOMPARE(XmlIndexProblem(doc), QString());
}

void TestXmlDocument::startTagLengthMask()
{
    CXmlDocument doc;
    const QString text = tooLongStartTag();
    QVERIFY(doc.SetDocumentText(text));
    QCOMPARE(text.size(), 0x100000);
    QCOMPARE(doc.Record(1).StartTagLength(), 0);
    QCOMPARE(doc.Record(1).length, 0x100000);
}

void TestXmlDocument::reparseResetsIndex()
{
    CXmlDocument doc;
    QVERIFY(!doc.SetDocumentText(QStringLiteral("<a><b><c></a>")));
    QVERIFY(doc.SetDocumentText(QStringLiteral("<x><y/></x>")));
    QCOMPARE(doc.GetResult(), QString());
    QCOMPARE(dumpIndex(doc), (QStringList{"0 11 0/0 L0 - p0 c1 n0 v0", "0 11 3/4 L0 F p0 c2 n0 v1",
                                          "3 4 4/0 L1 F p1 c0 n0 v2"}));
}

// 200,000 children cross three segment boundaries; records copied while a partial segment grows
// or is completed must keep their values.
void TestXmlDocument::segmentGrowth()
{
    const int children = 200000;
    CXmlDocument doc;
    QVERIFY(doc.SetDocumentText(QStringLiteral("<r>") + QStringLiteral("<a/>").repeated(children) +
                                QStringLiteral("</r>")));
    QCOMPARE(doc.RecordCount(), children + 2);
    // 800,007 characters reserve 12,508 records; then n + n/2 six times.
    QCOMPARE(doc.RecordCapacity(), 213706);
    int count = 0;
    for (int c = doc.Record(1).firstChild; c; c = doc.Record(c).nextSibling, ++count)
    {
        const ElementPos& e = doc.Record(c);
        if (e.start != 3 + 4 * count || e.length != 4 || e.parent != 1 || e.Level() != 1)
            QFAIL(qPrintable(QStringLiteral("record %1: %2").arg(c).arg(dumpRecord(doc, c))));
    }
    QCOMPARE(count, children);
    QCOMPARE(XmlIndexProblem(doc), QString());
}

void TestXmlDocument::reserveStopsAtNextSegment()
{
    CXmlDocument doc;
    // 9,000,000 characters ask for 140,633 records, two segments past the 8 records reserved
    // for the empty document: the request stops at the end of segment 1.
    QVERIFY(doc.SetDocumentText(QStringLiteral("<r>") + QString(9000000 - 7, u' ') +
                                QStringLiteral("</r>")));
    QCOMPARE(doc.RecordCapacity(), 131072);
    QCOMPARE(doc.RecordCount(), 2);
}

void TestXmlDocument::loadFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<unsigned>("flags");
    QTest::addColumn<bool>("wellFormed");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("text");
    auto row = [](const char* name, const QByteArray& bytes, unsigned flags, bool ok,
                  const char* result, const QString& text)
    { QTest::newRow(name) << bytes << flags << ok << QString::fromUtf8(result) << text; };

    row("empty", QByteArray(), 0, false, "0 bytes to 0 wide chars, Empty document", QString());
    row("byte-order mark kept", "\xEF\xBB\xBF<r>\xC3\xA9</r>", 0, true, "12 bytes to 9 wide chars",
        QStringLiteral("\uFEFF<r>\u00E9</r>"));
    row("non-BMP", "<r a=\"\xF0\x9D\x84\x9E\">\xF0\x9D\x84\x9E</r>", 0, true,
        "20 bytes to 16 wide chars", QStringLiteral("<r a=\"\U0001D11E\">\U0001D11E</r>"));
    row("non-BMP offsets", "<r>\xF0\x9D\x84\x9E<b></r>", 0, false,
        "14 bytes to 12 wide chars, End tag 'r' at offset 9 does not match start tag 'b' at "
        "offset 5",
        QStringLiteral("<r>\U0001D11E<b></r>"));
    // The file is read in blocks; 600 KB of 10-byte groups cut 2-, 3- and 4-byte sequences.
    const QByteArray group("\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E\x61");
    row("sequences across read blocks", "<r>" + group.repeated(60000) + "</r>", 0, true,
        "600007 bytes to 300007 wide chars",
        "<r>" + QStringLiteral("\u00E9\u20AC\U0001D11Ea").repeated(60000) + "</r>");
    row("invalid UTF-8", "<r>\xFF</r>", 0, true, "8 bytes to 8 wide chars",
        QStringLiteral("<r>\uFFFD</r>"));
    row("truncated sequence at end", "<r/>\xC3", 0, true, "5 bytes to 5 wide chars",
        QStringLiteral("<r/>\uFFFD"));
    row("no root", "<!-- -->", 0, false, "8 bytes to 8 wide chars, No root element",
        QStringLiteral("<!-- -->"));
    row("parse flags kept", "<A></a>", CXmlDocument::IgnoreCase, true, "7 bytes to 7 wide chars",
        QStringLiteral("<A></a>"));
}

void TestXmlDocument::loadFile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(unsigned, flags);
    QFETCH(bool, wellFormed);
    QFETCH(QString, result);
    QFETCH(QString, text);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("catalog.xml"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();

    CXmlDocument doc;
    doc.SetDocFlags(flags);
    QCOMPARE(doc.LoadFile(path), wellFormed);
    QCOMPARE(doc.GetResult(), result);
    QCOMPARE(doc.GetDocumentText(), text);
    QCOMPARE(doc.GetDocFlags(), flags);
}

void TestXmlDocument::loadFileFailureKeepsText_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("error");
    QTest::newRow("missing") << QStringLiteral("missing/catalog.xml") << ENOENT;
    QTest::newRow("directory") << QString() << EISDIR;
}

void TestXmlDocument::loadFileFailureKeepsText()
{
    QFETCH(QString, name);
    QFETCH(int, error);
    QTemporaryDir dir;
    CXmlDocument doc;
    QVERIFY(doc.SetDocumentText(QStringLiteral("<keep/>")));
    QVERIFY(!doc.LoadFile(dir.filePath(name)));
    QCOMPARE(doc.GetResult(), QString::fromLocal8Bit(std::strerror(error)));
    QCOMPARE(doc.GetDocumentText(), QStringLiteral("<keep/>"));
}

// A second Parse after a load keeps the whole earlier result in front of its own message.
void TestXmlDocument::parseKeepsLoadReport()
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("a.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<a/><b/>");
    file.close();
    CXmlDocument doc;
    QVERIFY(!doc.LoadFile(file.fileName()));
    QVERIFY(!doc.Parse());
    QCOMPARE(doc.GetResult(),
             "8 bytes to 8 wide chars, Root element has sibling, Root element has sibling");
}

void TestXmlDocument::deepNesting_data()
{
    QTest::addColumn<bool>("ended");
    QTest::addColumn<QString>("between");
    QTest::addColumn<QString>("result");
    const int depth = 100000;
    QTest::newRow("ended") << true << QString() << QString();
    QTest::newRow("never ended") << false << QString() << "Root element has sibling";
    QTest::newRow("stray end tags") << false << QStringLiteral("</x>").repeated(depth)
                                    << "No start tag for end tag 'x' at offset 300000";
}

void TestXmlDocument::deepNesting()
{
    QFETCH(bool, ended);
    QFETCH(QString, between);
    QFETCH(QString, result);
    const int depth = 100000;
    CXmlDocument doc;
    const QString text =
        QStringLiteral("<a>").repeated(depth) + between +
        (ended || !between.isEmpty() ? QStringLiteral("</a>").repeated(depth) : QString());
    QCOMPARE(doc.SetDocumentText(text), ended);
    QCOMPARE(doc.GetResult(), result);
    QCOMPARE(doc.RecordCount(), depth + 1);
    const ElementPos& deepest = doc.Record(depth);
    QCOMPARE(deepest.Level(), (depth - 1) & 0xFFFF);
    if (ended || !between.isEmpty())
    {
        QCOMPARE(deepest.parent, depth - 1);
        QCOMPARE(doc.Record(1).length, text.size());
    }
    else
    {
        QCOMPARE(deepest.parent, 0);
        QCOMPARE(doc.Record(1).prevSibling, depth);
    }
    QCOMPARE(XmlIndexProblem(doc), QString());
}

void TestXmlDocument::millionSiblings()
{
    const int siblings = 1000000;
    CXmlDocument doc;
    QVERIFY(doc.SetDocumentText(QStringLiteral("<r>") + QStringLiteral("<i/>").repeated(siblings) +
                                QStringLiteral("</r>")));
    QCOMPARE(doc.RecordCount(), siblings + 2);
    QCOMPARE(doc.Record(doc.Record(1).firstChild).prevSibling, siblings + 1);
    QCOMPARE(doc.Record(siblings + 1).start, 3 + 4 * (siblings - 1));
}

QTEST_GUILESS_MAIN(TestXmlDocument)
#include "tst_xml.moc"
