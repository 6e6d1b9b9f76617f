#include "catalog/LogEngine.h"
#include "catalog/ModuleConfiguration.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QLocale>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <array>

using ZEVGis::CModuleConfiguration;

namespace
{

// Every message number the editor and the import/export dialog ask for.
const QList<unsigned> kUsedMessages = {60,   67,   214,  250,  350,  362,   536,   1620,  4054,
                                       4880, 6534, 6535, 6536, 6537, 6538,  6539,  6540,  6541,
                                       6542, 7282, 7283, 7284, 7446, 7447,  7661,  8080,  8530,
                                       8531, 8803, 9079, 9490, 9491, 10276, 10769, 50005, 61057, 70000};

// Every icon and bitmap name the dialogs load.
// clang-format off
const QStringList kUsedImages = {
    "IDI_INDEX", "IDI_ADD_GROUP", "IDI_DELETE_GROUP", "IDI_NEW_GROUP", "IDI_BOX_CLOSED",
    "IDI_BOX_OPEN", "IDI_DOC_PLAIN", "IDI_DISKDATA", "IDI_DWG", "IDI_DOC_STARRED",
    "IDI_DOC_PLAIN_NEW", "IDI_DOCS_PLAIN_NEW", "IDI_DELETE", "IDI_INFO", "IDI_PICKER_UP",
    "IDI_PICKER_DOWN", "IDI_SORT_ASC", "IDI_SORT_DESC", "IDI_STAR", "IDI_FILE_TO_CATALOG",
    "IDI_CATALOG_TO_FILE", "IDI_DATA_ADDD", "IDI_NAV_LEFT", "IDI_NAV_RIGHT", "IDI_OPEN",
    "IDB_DRAG"};
// clang-format on

int opaquePixels(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    return count;
}

} // namespace

class TestServices : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void languageFollowsLocaleWithoutACall();
    void everyUsedMessageTranslated();
    void languageSwitching();
    void everyUsedImageLoads_data();
    void everyUsedImageLoads();
    void embeddedImagesAreTheUsedOnes();
    void logging();

private:
    CModuleConfiguration* config() const { return CModuleConfiguration::Instance(); }
};

// Runs first: the configuration is built on first use and takes the locale then.
void TestServices::languageFollowsLocaleWithoutACall()
{
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::Croatian, QLocale::Croatia));
    QCOMPARE(config()->Language(), QStringLiteral("hr"));
    QCOMPARE(config()->GetMsg(67), QStringLiteral("Odustani"));
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Odustani"));
    QLocale::setDefault(previous);
}

// A number missing from the Croatian table would silently show its English text.
void TestServices::everyUsedMessageTranslated()
{
    QHash<unsigned, QString> english;
    QStringList faults;
    for (const QString& language : {QStringLiteral("en"), QStringLiteral("hr")})
    {
        config()->SetLanguage(language);
        for (unsigned id : kUsedMessages)
        {
            const QString text = config()->GetMsg(id);
            const bool formatted = (id != 9490 && id != 9491) || text.contains(u"%1");
            if (!config()->HasMsg(id) || text.trimmed().isEmpty() || !formatted ||
                text.contains(QChar::ReplacementCharacter) || english.value(id) == text)
                faults << QStringLiteral("%1 %2: \"%3\"").arg(language).arg(id).arg(text);
            english.insert(id, text);
        }
    }
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
    QCOMPARE(config()->GetMsg(6534), QStringLiteral("Uređivač kataloga"));
}

void TestServices::languageSwitching()
{
    // From the other language each time, so that every request really switches; case and
    // blanks are ignored, an unknown language falls back to English with a warning.
    // Qt's own texts (a message box's Yes, a file dialog's label) and the decimal separator
    // follow the language too.
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("unknown language")));
    for (const auto& [from, requested, expected, okText, yes, lookIn, point] :
         QList<std::array<const char*, 7>>{
             {"hr", "en", "en", "OK", "&Yes", "Look in:", "."},
             {"en", " HR ", "hr", "U redu", "&Da", "Pogledaj u:", ","},
             {"hr", "de", "en", "OK", "&Yes", "Look in:", "."}})
    {
        config()->SetLanguage(QString::fromLatin1(from));
        config()->SetLanguage(QString::fromLatin1(requested));
        QCOMPARE(config()->Language(), QString::fromLatin1(expected));
        QCOMPARE(config()->GetMsg(60), QString::fromUtf8(okText));
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "&Yes"), QString::fromUtf8(yes));
        QCOMPARE(QCoreApplication::translate("QFileDialog", "Look in:"), QString::fromUtf8(lookIn));
        QCOMPARE(QLocale().decimalPoint(), QString::fromLatin1(point));
        // An unknown number shows a placeholder in every language, never an empty text.
        for (unsigned id : {0u, 12345u, 4294967295u})
            QCOMPARE(config()->GetMsg(id), QStringLiteral("[message %1]").arg(id));
    }
}

void TestServices::everyUsedImageLoads_data()
{
    QTest::addColumn<QString>("name");
    for (const QString& name : kUsedImages)
        QTest::newRow(qPrintable(name)) << name;
    // Unknown names give null images, never another file of the resources.
    for (const char* name : {"IDI_NO_SUCH_ICON", "", "idi_star", "../messages/en"})
        QTest::addRow("unknown '%s'", name) << QString::fromLatin1(name);
}

void TestServices::everyUsedImageLoads()
{
    QFETCH(QString, name);
    const QIcon icon = config()->GetIcon(name);
    const QPixmap small = config()->LoadImageW(name, CModuleConfiguration::ImageIcon, 16, 16, 0);
    if (!kUsedImages.contains(name))
    {
        QVERIFY(icon.isNull() && small.isNull() && config()->GetBitmap(name).isNull());
        return;
    }
    QVERIFY2(opaquePixels(icon.pixmap(24, 24).toImage()) > 24, "draws (almost) nothing at 24 px");
    QCOMPARE(config()->GetBitmap(name).size(), QSize(24, 24));
    QCOMPARE(small.size(), QSize(16, 16));
    QVERIFY(opaquePixels(small.toImage()) > 0);
}

// A drawing nobody loads usually means a misspelt name on one side or the other.
void TestServices::embeddedImagesAreTheUsedOnes()
{
    QStringList embedded =
        QDir(QStringLiteral(":/icons")).entryList({QStringLiteral("*.svg")}, QDir::Files);
    for (QString& file : embedded)
        file.chop(4);
    QStringList used = kUsedImages;
    embedded.sort();
    used.sort();
    QCOMPARE(embedded, used);
}

void TestServices::logging()
{
    const QList<QPair<QByteArray, int>> switches{{"1", 1}, {"on", 1}, {"TRUE", 1}, {" Yes ", 1},
                                                 {"0", 0}, {"2", 0},  {"", 0}};
    for (const auto& [value, expected] : switches)
    {
        qputenv("ZEVX_LOG", value);
        QVERIFY2(CLogEngine::GetLoggingOnOff() == expected, value.constData());
    }
    qunsetenv("ZEVX_LOG");
    QCOMPARE(CLogEngine::GetLoggingOnOff(), 0);

    const auto logFile = [] { return QFile::decodeName(CLogEngine::GetLogFileFullPath().c_str()); };
    const QString path = QDir::temp().filePath(QStringLiteral("Zapis dnevnika čćž.log"));
    qputenv("ZEVX_LOG_FILE", QFile::encodeName(path));
    QCOMPARE(logFile(), path);
    qunsetenv("ZEVX_LOG_FILE");
    const QString dataFolder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QCOMPARE(logFile(), dataFolder + QStringLiteral("/zevxcatalogeditor/zevxcatalogeditor.log"));
    QVERIFY(QFileInfo(logFile()).dir().exists());
}

QTEST_MAIN(TestServices)
#include "tst_services.moc"
