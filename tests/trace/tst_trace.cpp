#include "trace/FunctionTracer.h"
#include "trace/FunctionTracerInternal.h"

#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <iostream>
#include <memory>
#include <sstream>

namespace
{

// Swaps std::cout for a string buffer while it lives.
class CapturedStdout
{
public:
    CapturedStdout() : m_previous(std::cout.rdbuf(m_buffer.rdbuf())) {}
    ~CapturedStdout() { std::cout.rdbuf(m_previous); }
    QString text() const { return QString::fromStdString(m_buffer.str()); }

private:
    std::ostringstream m_buffer;
    std::streambuf* m_previous;
};

QString padded(const QString& text, int width)
{
    return text.leftJustified(width, u' ', false);
}

// "[HH:MM:SS] " with a valid time of day; the rest of the line is returned for exact checks.
QString withoutTimeStamp(const QString& line)
{
    static const QRegularExpression stamp(QStringLiteral("^\\[([01]\\d|2[0-3]):[0-5]\\d:[0-5]\\d\\] "));
    const QRegularExpressionMatch match = stamp.match(line);
    if (!match.hasMatch())
        return QStringLiteral("<no time stamp> ") + line;
    return line.mid(match.capturedLength());
}

} // namespace

class TestTrace : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void lineLayout_data();
    void lineLayout();
    void levelAgainstThreshold_data();
    void levelAgainstThreshold();
    void verification_data();
    void verification();
    void furtherLines();
    void loggingOffWritesNothingButKeepsStack();
    void appendsAndReadsPathOnce();
    void unopenableFileFallsBackToStdout();

private:
    QString logPath() const { return m_dir.filePath(QStringLiteral("trace.log")); }
    void useLogFile(const QString& path);
    QStringList logLines() const;

    QTemporaryDir m_dir;
};

void TestTrace::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_dir.isValid());
}

void TestTrace::init()
{
    qputenv("ZEVX_LOG", "1");
    QFile::remove(logPath());
    useLogFile(logPath());
}

void TestTrace::useLogFile(const QString& path)
{
    qputenv("ZEVX_LOG_FILE", QFile::encodeName(path));
    FunctionTracerInternal::resetForTests();
}

QStringList TestTrace::logLines() const
{
    QFile file(logPath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString text = QString::fromUtf8(file.readAll());
    QStringList lines = text.split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

void TestTrace::lineLayout_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("expectedPrefix");

    QTest::newRow("bare name as the editor passes it")
        << "CatalogEditorDlg" << 414 << "CCatalogEditorDlg::OnBnClickedOk"
        << padded("CatalogEditorDlg", 32) + "(00414): [CCatalogEditorDlg::OnBnClickedOk], ";
    QTest::newRow("windows path loses its folders")
        << "C:\\src\\impex\\DlgCatalogImpex.cpp" << 1358 << "CDlgCatalogImpex::ReloadNetworkRepoItems"
        << padded("DlgCatalogImpex.cpp", 32) + "(01358): [CDlgCatalogImpex::ReloadNetworkRepoItems], ";
    QTest::newRow("posix path loses its folders")
        << "/work/main/impex/DlgCatalogImpex.cpp" << 841 << "CDlgCatalogImpex::CreateParentItems"
        << padded("DlgCatalogImpex.cpp", 32) + "(00841): [CDlgCatalogImpex::CreateParentItems], ";
    QTest::newRow("short function name padded to 16")
        << "Short" << 7 << "Go" << padded("Short", 32) + "(00007): [" + padded("Go", 16) + "], ";
    QTest::newRow("long file name is not cut")
        << "AFileNameLongerThanThirtyTwoCharacters.cpp" << 99999 << "F"
        << "AFileNameLongerThanThirtyTwoCharacters.cpp(99999): [" + padded("F", 16) + "], ";
    QTest::newRow("line beyond five digits printed whole")
        << "X" << 123456 << "F" << padded("X", 32) + "(123456): [" + padded("F", 16) + "], ";
}

void TestTrace::lineLayout()
{
    QFETCH(QString, file);
    QFETCH(int, line);
    QFETCH(QString, function);
    QFETCH(QString, expectedPrefix);

    {
        const QByteArray fileText = file.toUtf8();
        const QByteArray functionText = function.toUtf8();
        FunctionTracer tracer(fileText.constData(), unsigned(line), functionText.constData(), 3);
    }

    const QStringList lines = logLines();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(withoutTimeStamp(lines[0]), expectedPrefix + "Entering function , " + function);
    QCOMPARE(withoutTimeStamp(lines[1]), expectedPrefix + "Exiting function , " + function);
}

void TestTrace::levelAgainstThreshold_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("expectedLines");
    QTest::newRow("below") << 1 << 2;
    QTest::newRow("at threshold") << 3 << 2;
    QTest::newRow("one above") << 4 << 0;
    QTest::newRow("far above") << 100 << 0;
}

void TestTrace::levelAgainstThreshold()
{
    QFETCH(int, level);
    QFETCH(int, expectedLines);
    {
        FunctionTracer tracer("CatalogEditorDlg", 964, "CCatalogEditorDlg::GetCatalog", level);
        QCOMPARE(FunctionTracerInternal::callStack().size(), std::size_t(1));
    }
    QCOMPARE(logLines().size(), expectedLines);
    QVERIFY(FunctionTracerInternal::callStack().empty());
}

void TestTrace::verification_data()
{
    QTest::addColumn<bool>("condition");
    QTest::addColumn<int>("level");
    QTest::addColumn<QStringList>("expectedLines");

    const QString prefix = padded("CatalogEditorDlg", 32) + "(00977): [CCatalogEditorDlg::GetCatalog], ";
    QTest::newRow("false is reported") << false << 3
                                       << QStringList{prefix + "Failed verification:  'ptrCatalog.get() != 0'"};
    QTest::newRow("true says nothing") << true << 3 << QStringList();
    QTest::newRow("false above the threshold says nothing") << false << 4 << QStringList();
}

void TestTrace::verification()
{
    QFETCH(bool, condition);
    QFETCH(int, level);
    QFETCH(QStringList, expectedLines);

    const std::shared_ptr<int> ptrCatalog = condition ? std::make_shared<int>(1) : nullptr;
    bool result = !condition;
    {
        ZEVX_TRACE_FUNCTION_LEVEL("CCatalogEditorDlg::GetCatalog", "CatalogEditorDlg", 964, level);
        result = ZEVX_TRACE_VERIFY(ptrCatalog.get() != 0, 977);
    }
    QCOMPARE(result, condition);

    QStringList lines = logLines();
    if (level <= 3) // drop the entry and exit lines
        lines = lines.mid(1, lines.size() - 2);
    for (QString& line : lines)
        line = withoutTimeStamp(line);
    QCOMPARE(lines, expectedLines);
}

void TestTrace::furtherLines()
{
    {
        ZEVX_TRACE_FUNCTION("CDlgCatalogImpex::OnBnClickedBtnRemove", "DlgCatalogImpex", 925);
        ZEVX_TRACE_LOG(3, "Dodan item u lokalni katalog: %d ", 1);
        ZEVX_TRACE_LOG(4, "Dodan item: %s", "never written");
        zevxTracer.LogAt(1000, 3, "Greška u dodavanju na server!");
    }
    const QStringList lines = logLines();
    QCOMPARE(lines.size(), 4);
    const QString function = QStringLiteral("CDlgCatalogImpex::OnBnClickedBtnRemove");
    QCOMPARE(withoutTimeStamp(lines[1]),
             padded("DlgCatalogImpex", 32) + "(00925): [" + function + "], Dodan item u lokalni katalog: 1 ");
    QCOMPARE(withoutTimeStamp(lines[2]),
             padded("DlgCatalogImpex", 32) + "(01000): [" + function + "], Greška u dodavanju na server!");
}

void TestTrace::loggingOffWritesNothingButKeepsStack()
{
    qputenv("ZEVX_LOG", "0");
    {
        FunctionTracer outer("CatalogEditorDlg", 414, "CCatalogEditorDlg::OnBnClickedOk");
        FunctionTracer inner("CatalogEditorDlg", 964, "CCatalogEditorDlg::GetCatalog");
        QVERIFY(!FunctionTracer::Verify(inner, false, "never written", 977));
        const std::list<std::string> expected{"CCatalogEditorDlg::OnBnClickedOk", "CCatalogEditorDlg::GetCatalog"};
        QCOMPARE(FunctionTracerInternal::callStack(), expected);
    }
    QVERIFY(FunctionTracerInternal::callStack().empty());
    QVERIFY(!QFile::exists(logPath()));
}

void TestTrace::appendsAndReadsPathOnce()
{
    {
        QFile file(logPath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("earlier session\n");
    }
    {
        FunctionTracer first("A", 1, "First");
    }
    // The path is taken once per process: a later change of the variable is not followed.
    qputenv("ZEVX_LOG_FILE", QFile::encodeName(m_dir.filePath(QStringLiteral("other.log"))));
    {
        FunctionTracer second("A", 2, "Second");
    }
    const QStringList lines = logLines();
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], QStringLiteral("earlier session"));
    QVERIFY(lines[3].endsWith(QStringLiteral("Entering function , Second")));
    QVERIFY(!QFile::exists(m_dir.filePath(QStringLiteral("other.log"))));
}

void TestTrace::unopenableFileFallsBackToStdout()
{
    // A folder cannot be opened as a file; neither can a file in a missing folder.
    for (const QString& path : {m_dir.path(), m_dir.filePath(QStringLiteral("missing/sub/trace.log"))})
    {
        useLogFile(path);
        CapturedStdout captured;
        {
            FunctionTracer tracer("CatalogEditorDlg", 741, "CCatalogEditorDlg::OnBnClickedBtnNew");
        }
        const QStringList lines = captured.text().split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(withoutTimeStamp(lines[0]), padded("CatalogEditorDlg", 32)
                     + "(00741): [CCatalogEditorDlg::OnBnClickedBtnNew], Entering function , "
                       "CCatalogEditorDlg::OnBnClickedBtnNew");
    }
}

QTEST_GUILESS_MAIN(TestTrace)
#include "tst_trace.moc"
