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

QString padded(const QString& text, int width)
{
    return text.leftJustified(width, u' ', false);
}

// The lines of a log text, each with its "[HH:MM:SS] " stamp checked and taken off.
QStringList linesOf(const QString& text)
{
    static const QRegularExpression stamp(
        QStringLiteral("^\\[([01]\\d|2[0-3]):[0-5]\\d:[0-5]\\d\\] "));
    QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    for (QString& line : lines)
        line = stamp.match(line).hasMatch() ? line.mid(11) : "<no time stamp> " + line;
    return lines;
}

} // namespace

class TestTrace : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(m_dir.isValid());
    }
    void init()
    {
        qputenv("ZEVX_LOG", "1");
        QFile::remove(logPath());
        useLogFile(logPath());
    }

    void lineLayout_data();
    void lineLayout();
    void levelAndVerification_data();
    void levelAndVerification();
    void logFile();

private:
    QString logPath() const { return m_dir.filePath(QStringLiteral("trace.log")); }
    static void useLogFile(const QString& path)
    {
        qputenv("ZEVX_LOG_FILE", QFile::encodeName(path));
        FunctionTracerInternal::resetForTests();
    }
    QStringList logLines() const
    {
        QFile file(logPath());
        return file.open(QIODevice::ReadOnly) ? linesOf(QString::fromUtf8(file.readAll()))
                                              : QStringList();
    }

    QTemporaryDir m_dir;
};

void TestTrace::lineLayout_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("prefix");

    // clang-format off
    QTest::newRow("bare name") << "CatalogEditorDlg" << 414 << "CCatalogEditorDlg::OnBnClickedOk"
        << padded("CatalogEditorDlg", 32) + "(00414): [CCatalogEditorDlg::OnBnClickedOk], ";
    QTest::newRow("windows path loses its folders") << "C:\\src\\impex\\DlgCatalogImpex.cpp"
        << 1358 << "CDlgCatalogImpex::ReloadNetworkRepoItems"
        << padded("DlgCatalogImpex.cpp", 32) +
           "(01358): [CDlgCatalogImpex::ReloadNetworkRepoItems], ";
    QTest::newRow("path without a backslash printed whole") << "/work/impex/DlgCatalogImpex.cpp"
        << 841 << "CDlgCatalogImpex::CreateParentItems"
        << "/work/impex/DlgCatalogImpex.cpp (00841): [CDlgCatalogImpex::CreateParentItems], ";
    QTest::newRow("nothing cut, short function padded")
        << "AFileNameLongerThanThirtyTwoCharacters.cpp" << 123456 << "Go"
        << "AFileNameLongerThanThirtyTwoCharacters.cpp(123456): [Go              ], ";
    // clang-format on
}

void TestTrace::lineLayout()
{
    QFETCH(QString, file);
    QFETCH(int, line);
    QFETCH(QString, function);
    QFETCH(QString, prefix);
    {
        const QByteArray fileText = file.toUtf8();
        const QByteArray functionText = function.toUtf8();
        FunctionTracer tracer(fileText.constData(), unsigned(line), functionText.constData(), 3);
    }
    // The trailing blank of "Entering function " and "Exiting function " stays.
    QCOMPARE(logLines(), (QStringList{prefix + "Entering function , " + function,
                                      prefix + "Exiting function , " + function}));
}

void TestTrace::levelAndVerification_data()
{
    QTest::addColumn<QByteArray>("logging");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("condition");
    QTest::addColumn<QStringList>("lines"); // without the time stamp

    const QString at = padded("CatalogEditorDlg", 32) + "(%1): [CCatalogEditorDlg::GetCatalog], ";
    const QString entering = at.arg("00964") + "Entering function , CCatalogEditorDlg::GetCatalog";
    const QString exiting = at.arg("00964") + "Exiting function , CCatalogEditorDlg::GetCatalog";
    const QString logged = at.arg("00964") + "Dodan item u lokalni katalog: 1 ";
    const QString loggedAt = at.arg("01000") + "Greška u dodavanju na server!";

    QTest::newRow("below the threshold, holds")
        << QByteArray("1") << 1 << true << QStringList{entering, logged, loggedAt, exiting};
    QTest::newRow("at the threshold, fails")
        << QByteArray("1") << 3 << false
        << QStringList{entering, at.arg("00977") + "Failed verification:  'ptrCatalog.get() != 0'",
                       logged, loggedAt, exiting};
    // A further line carries its own level: it is written even where the tracer's is not.
    QTest::newRow("level 4") << QByteArray("1") << 4 << false << QStringList{logged, loggedAt};
    QTest::newRow("logging off") << QByteArray("0") << 3 << false << QStringList{};
}

void TestTrace::levelAndVerification()
{
    QFETCH(QByteArray, logging);
    QFETCH(int, level);
    QFETCH(bool, condition);
    QFETCH(QStringList, lines);

    qputenv("ZEVX_LOG", logging);
    const std::shared_ptr<int> ptrCatalog = condition ? std::make_shared<int>(1) : nullptr;
    {
        ZEVX_TRACE_FUNCTION_LEVEL("CCatalogEditorDlg::GetCatalog", "CatalogEditorDlg", 964, level);
        QCOMPARE(ZEVX_TRACE_VERIFY(ptrCatalog.get() != 0, 977), condition);
        ZEVX_TRACE_LOG(3, "Dodan item u lokalni katalog: %d ", 1);
        ZEVX_TRACE_LOG(4, "Dodan item: %s", "never written");
        zevxTracer.LogAt(1000, 3, "Greška u dodavanju na server!");
        // The call stack is kept whether or not anything is written.
        QCOMPARE(FunctionTracerInternal::callStack(),
                 std::list<std::string>{"CCatalogEditorDlg::GetCatalog"});
    }
    QVERIFY(FunctionTracerInternal::callStack().empty());
    QCOMPARE(logLines(), lines);
}

void TestTrace::logFile()
{
    // Appended to and opened once: a later change of the variable is not followed.
    QFile file(logPath());
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("[00:00:00] earlier session\n") > 0);
    file.close();
    FunctionTracer("A", 1, "First");
    const QString other = m_dir.filePath(QStringLiteral("other.log"));
    qputenv("ZEVX_LOG_FILE", QFile::encodeName(other));
    FunctionTracer("A", 2, "Second");
    const QStringList lines = logLines();
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], QStringLiteral("earlier session"));
    QVERIFY(lines[4].endsWith(QStringLiteral("Exiting function , Second")));
    QVERIFY(!QFile::exists(other));

    // A file that cannot be opened (here a folder): standard output instead.
    useLogFile(m_dir.path());
    std::ostringstream captured;
    std::streambuf* previous = std::cout.rdbuf(captured.rdbuf());
    FunctionTracer("CatalogEditorDlg", 741, "CCatalogEditorDlg::OnBnClickedBtnNew");
    std::cout.rdbuf(previous);
    QCOMPARE(linesOf(QString::fromStdString(captured.str())).value(1),
             padded("CatalogEditorDlg", 32) +
                 "(00741): [CCatalogEditorDlg::OnBnClickedBtnNew], "
                 "Exiting function , CCatalogEditorDlg::OnBnClickedBtnNew");
}

QTEST_GUILESS_MAIN(TestTrace)
#include "tst_trace.moc"
