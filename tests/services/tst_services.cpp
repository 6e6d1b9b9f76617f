#include "catalog/LogEngine.h"
#include "catalog/ModuleConfiguration.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QLocale>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using ZEVGis::CModuleConfiguration;

namespace
{

// Every message number the editor and the import/export dialog ask for.
const QList<unsigned> kUsedMessages = {60,   67,   214,  250,  350,  362,  536,   1620,  4054,  4880,  6534, 6535,
                                       6536, 6537, 6538, 6539, 6540, 6541, 6542,  7282,  7283,  7284,  7446, 7447,
                                       7661, 8080, 8530, 8531, 8803, 9079, 9490,  9491,  10276, 10769, 50005, 61057};

// Every icon and bitmap name the dialogs load.
const QStringList kUsedImages = {
    "IDI_INDEX",         "IDI_ADD_GROUP",   "IDI_DELETE_GROUP",    "IDI_NEW_GROUP",       "IDI_BOX_CLOSED",
    "IDI_BOX_OPEN",      "IDI_DOC_PLAIN",   "IDI_DISKDATA",        "IDI_DWG",             "IDI_DOC_STARRED",
    "IDI_DOC_PLAIN_NEW", "IDI_DOCS_PLAIN_NEW", "IDI_DELETE",       "IDI_INFO",            "IDI_PICKER_UP",
    "IDI_PICKER_DOWN",   "IDI_SORT_ASC",    "IDI_SORT_DESC",       "IDI_STAR",            "IDI_FILE_TO_CATALOG",
    "IDI_CATALOG_TO_FILE", "IDI_DATA_ADDD", "IDI_NAV_LEFT",        "IDI_NAV_RIGHT",       "IDI_OPEN",
    "IDB_DRAG"};

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
    void initTestCase();
    void init();
    void languageFollowsLocaleWithoutACall();
    void everyUsedMessageHasAText_data();
    void everyUsedMessageHasAText();
    void croatianTextsAreTranslations();
    void unknownMessageGivesPlaceholder_data();
    void unknownMessageGivesPlaceholder();
    void languageSwitching_data();
    void languageSwitching();
    void everyUsedImageLoads_data();
    void everyUsedImageLoads();
    void noImageWithoutAUse();
    void unknownImageIsNull_data();
    void unknownImageIsNull();
    void loggingSwitch_data();
    void loggingSwitch();
    void logFileFromEnvironment();
    void defaultLogFileInUserDataFolder();

private:
    CModuleConfiguration* config() const { return CModuleConfiguration::Instance(); }
};

void TestServices::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void TestServices::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

// Runs first: the configuration is built on first use and takes the locale then.
void TestServices::languageFollowsLocaleWithoutACall()
{
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::Croatian, QLocale::Croatia));
    QCOMPARE(config()->Language(), QStringLiteral("hr"));
    QCOMPARE(config()->GetMsg(67), QStringLiteral("Odustani"));
    QLocale::setDefault(previous);
}

void TestServices::everyUsedMessageHasAText_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<unsigned>("id");
    for (const char* language : {"en", "hr"})
        for (unsigned id : kUsedMessages)
            QTest::addRow("%s %u", language, id) << QString::fromLatin1(language) << id;
}

void TestServices::everyUsedMessageHasAText()
{
    QFETCH(QString, language);
    QFETCH(unsigned, id);
    config()->SetLanguage(language);
    QVERIFY(config()->HasMsg(id));
    const QString text = config()->GetMsg(id);
    QVERIFY(!text.trimmed().isEmpty());
    QVERIFY2(!text.startsWith(QStringLiteral("[message")), qPrintable(text));
    QVERIFY2(!text.contains(QChar::ReplacementCharacter), qPrintable(text));
    // The add-to-application refusals are formatted with the entry's name.
    if (id == 9490 || id == 9491)
        QVERIFY2(text.contains(QStringLiteral("%1")), qPrintable(text));
}

// A number missing from the Croatian table would silently show its English text.
void TestServices::croatianTextsAreTranslations()
{
    QHash<unsigned, QString> english;
    config()->SetLanguage(QStringLiteral("en"));
    for (unsigned id : kUsedMessages)
        english.insert(id, config()->GetMsg(id));
    config()->SetLanguage(QStringLiteral("hr"));
    QStringList untranslated;
    for (unsigned id : kUsedMessages)
    {
        if (config()->GetMsg(id) == english.value(id))
            untranslated << QString::number(id);
    }
    QVERIFY2(untranslated.isEmpty(), qPrintable(untranslated.join(u',')));
    QCOMPARE(config()->GetMsg(6534), QStringLiteral("Uređivač kataloga"));
}

void TestServices::unknownMessageGivesPlaceholder_data()
{
    QTest::addColumn<unsigned>("id");
    QTest::newRow("zero") << 0u;
    QTest::newRow("unused") << 12345u;
    QTest::newRow("largest") << 4294967295u;
}

void TestServices::unknownMessageGivesPlaceholder()
{
    QFETCH(unsigned, id);
    for (const QString& language : {QStringLiteral("en"), QStringLiteral("hr")})
    {
        config()->SetLanguage(language);
        QVERIFY(!config()->HasMsg(id));
        QCOMPARE(config()->GetMsg(id), QStringLiteral("[message %1]").arg(id));
    }
}

void TestServices::languageSwitching_data()
{
    QTest::addColumn<QString>("requested");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("okText");
    QTest::newRow("english") << "en" << "en" << "OK";
    QTest::newRow("croatian") << "hr" << "hr" << "U redu";
    QTest::newRow("case and blanks ignored") << " HR " << "hr" << "U redu";
    QTest::newRow("unknown falls back to english") << "de" << "en" << "OK";
}

void TestServices::languageSwitching()
{
    QFETCH(QString, requested);
    QFETCH(QString, expected);
    QFETCH(QString, okText);
    // Start from the other language so every row really switches.
    config()->SetLanguage(expected == QStringLiteral("en") ? QStringLiteral("hr") : QStringLiteral("en"));
    if (requested == QStringLiteral("de"))
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("unknown language")));
    config()->SetLanguage(requested);
    QCOMPARE(config()->Language(), expected);
    QCOMPARE(config()->GetMsg(60), okText);
}

void TestServices::everyUsedImageLoads_data()
{
    QTest::addColumn<QString>("name");
    for (const QString& name : kUsedImages)
        QTest::newRow(qPrintable(name)) << name;
}

void TestServices::everyUsedImageLoads()
{
    QFETCH(QString, name);
    const QIcon icon = config()->GetIcon(name);
    QVERIFY(!icon.isNull());
    const QImage at24 = icon.pixmap(24, 24).toImage();
    QCOMPARE(at24.size(), QSize(24, 24));
    QVERIFY2(opaquePixels(at24) > 24, "the icon draws (almost) nothing at 24 px");

    const QPixmap bitmap = config()->GetBitmap(name);
    QCOMPARE(bitmap.size(), QSize(24, 24));

    const QPixmap small = config()->LoadImageW(name, CModuleConfiguration::ImageIcon, 16, 16, 0);
    QCOMPARE(small.size(), QSize(16, 16));
    QVERIFY(opaquePixels(small.toImage()) > 0);
}

// A drawing nobody loads usually means a misspelt name on one side or the other.
void TestServices::noImageWithoutAUse()
{
    QStringList embedded = QDir(QStringLiteral(":/icons")).entryList({QStringLiteral("*.svg")}, QDir::Files);
    for (QString& file : embedded)
        file.chop(4);
    QStringList used = kUsedImages;
    embedded.sort();
    used.sort();
    QCOMPARE(embedded, used);
}

void TestServices::unknownImageIsNull_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("unknown") << "IDI_NO_SUCH_ICON";
    QTest::newRow("empty") << "";
    QTest::newRow("case differs") << "idi_star";
    QTest::newRow("path out of the icon folder") << "../messages/en";
}

void TestServices::unknownImageIsNull()
{
    QFETCH(QString, name);
    QVERIFY(config()->GetIcon(name).isNull());
    QVERIFY(config()->GetBitmap(name).isNull());
    QVERIFY(config()->LoadImageW(name, CModuleConfiguration::ImageIcon, 24, 24, 0).isNull());
}

void TestServices::loggingSwitch_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("1") << QByteArray("1") << 1;
    QTest::newRow("on") << QByteArray("on") << 1;
    QTest::newRow("TRUE") << QByteArray("TRUE") << 1;
    QTest::newRow("Yes with blanks") << QByteArray(" Yes ") << 1;
    QTest::newRow("0") << QByteArray("0") << 0;
    QTest::newRow("2") << QByteArray("2") << 0;
    QTest::newRow("empty") << QByteArray("") << 0;
    QTest::newRow("unset") << QByteArray() << 0;
}

void TestServices::loggingSwitch()
{
    QFETCH(QByteArray, value);
    QFETCH(int, expected);
    if (value.isNull())
        qunsetenv("ZEVX_LOG");
    else
        qputenv("ZEVX_LOG", value);
    QCOMPARE(CLogEngine::GetLoggingOnOff(), expected);
}

void TestServices::logFileFromEnvironment()
{
    const QString path = QDir::temp().filePath(QStringLiteral("Zapis dnevnika čćž.log"));
    qputenv("ZEVX_LOG_FILE", QFile::encodeName(path));
    QCOMPARE(QFile::decodeName(QByteArray::fromStdString(CLogEngine::GetLogFileFullPath())), path);
    qunsetenv("ZEVX_LOG_FILE");
}

void TestServices::defaultLogFileInUserDataFolder()
{
    qunsetenv("ZEVX_LOG_FILE");
    const QString path = QFile::decodeName(QByteArray::fromStdString(CLogEngine::GetLogFileFullPath()));
    const QString dataFolder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QCOMPARE(path, dataFolder + QStringLiteral("/zevxcatalogeditor/zevxcatalogeditor.log"));
    QVERIFY(QFileInfo(path).dir().exists());
}

QTEST_MAIN(TestServices)
#include "tst_services.moc"
