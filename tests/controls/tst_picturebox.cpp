#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ControlId.h"
#include "controls/PictureBox.h"
#include "controls/PicturePreviewDlg.h"
#include "host/ScriptedHost.h"

#include <QApplication>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;

namespace
{

// Left half red, right half blue.
QImage twoColourImage(const QSize& size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::red);
    for (int y = 0; y < size.height(); ++y)
        for (int x = size.width() / 2; x < size.width(); ++x)
            image.setPixelColor(x, y, Qt::blue);
    return image;
}

// A factory that hands out a fixed picture with draw mode 0 and notes what it was asked.
class FakeFactory : public CDefaultCatalogItemFactory
{
public:
    QImage CreatePictureBitmap(const QString& ref, CCatalogItem* item, const QRect& rect,
                               int* drawMode) override
    {
        asked << QString("%1 %2 %3x%4 mode %5")
                     .arg(ref, item->GetName())
                     .arg(rect.width())
                     .arg(rect.height())
                     .arg(*drawMode);
        *drawMode = 0;
        return picture;
    }
    QImage picture;
    QStringList asked;
};

} // namespace

class TestPictureBox : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*")); }

    void drawsByMode_data()
    {
        QTest::addColumn<unsigned>("mode");
        QTest::addColumn<QSize>("imageSize");
        QTest::addColumn<QList<QPoint>>("red");
        QTest::addColumn<QList<QPoint>>("blue");
        QTest::addColumn<QList<QPoint>>("background");
        using Points = QList<QPoint>;
        // The box is 100 x 80; the picture's left half is red, its right half blue.
        // clang-format off
        QTest::newRow("top left")  << 0u << QSize(40, 20) << Points{{0, 0}, {19, 19}} << Points{{20, 0}, {39, 19}}
                                   << Points{{40, 0}, {0, 20}, {99, 79}};
        // 100 / 2 - 41 / 2 = 30 (not 29), 80 / 2 - 21 / 2 = 30.
        QTest::newRow("centred, halves each") << 1u << QSize(41, 21) << Points{{30, 30}, {49, 50}} << Points{{50, 30}, {70, 50}}
                                   << Points{{29, 30}, {30, 29}, {71, 30}, {30, 51}};
        // Larger than the box: drawn from (-25, -10), clipped.
        QTest::newRow("centred, larger") << 1u << QSize(150, 100) << Points{{0, 0}, {49, 79}} << Points{{50, 0}, {99, 79}} << Points{};
        QTest::newRow("stretched")  << 2u << QSize(10, 10) << Points{{0, 0}, {40, 79}} << Points{{60, 0}, {99, 79}} << Points{};
        QTest::newRow("mode 3")     << 3u << QSize(10, 10) << Points{} << Points{} << Points{{0, 0}, {50, 40}};
        QTest::newRow("no picture") << 0u << QSize()       << Points{} << Points{} << Points{{0, 0}, {50, 40}};
        // clang-format on
    }
    void drawsByMode()
    {
        QFETCH(unsigned, mode);
        QFETCH(QSize, imageSize);
        QFETCH(QList<QPoint>, red);
        QFETCH(QList<QPoint>, blue);
        QFETCH(QList<QPoint>, background);
        CPictureBox box;
        QCOMPARE(box.GetDrawMode(), 1u);
        box.resize(100, 80);
        box.SetDrawMode(mode);
        box.SetBitmap(imageSize.isValid() ? twoColourImage(imageSize) : QImage());
        QCOMPARE(box.isTransparent(), !imageSize.isValid());
        const QImage shot = box.grab().toImage();
        const QColor face = box.palette().color(QPalette::Button);
        for (const auto& [points, colour] :
             {std::pair{red, QColor(Qt::red)}, {blue, QColor(Qt::blue)}, {background, face}})
            for (const QPoint& p : points)
                QVERIFY2(
                    shot.pixelColor(p) == colour,
                    qPrintable(QString("%1 at %2,%3").arg(colour.name()).arg(p.x()).arg(p.y())));
    }

    void loadsFromFile()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString good = dir.filePath("picture.png");
        QVERIFY(twoColourImage(QSize(8, 6)).save(good));
        QFile bad(dir.filePath("broken.png"));
        QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("not a picture") > 0);
        bad.close();
        CPictureBox box;
        QCOMPARE(box.LoadFromFile(good), 1);
        QCOMPARE(box.image().size(), QSize(8, 6));
        QVERIFY(!box.isTransparent());
        for (const QString& path : {bad.fileName(), dir.filePath("missing.png")})
        {
            QCOMPARE(box.LoadFromFile(path), 0);
            QVERIFY(!box.hasImage());
            QVERIFY(box.isTransparent());
        }
    }

    // The Close button is Qt's own, in the user's language.
    void previewCloseButtonTranslated()
    {
        const QString before = ZEVGis::CModuleConfiguration::Instance()->Language();
        QStringList texts;
        for (const char* language : {"hr", "en"})
        {
            ZEVGis::CModuleConfiguration::Instance()->SetLanguage(QString::fromLatin1(language));
            CPicturePreviewDlg dialog;
            auto* close = qobject_cast<QPushButton*>(findControlById(&dialog, 2));
            texts << (close ? close->text() : QString());
        }
        ZEVGis::CModuleConfiguration::Instance()->SetLanguage(before);
        QCOMPARE(texts, QStringList({"Zatvori", "Close"}));
    }

    void previewDialog_data()
    {
        QTest::addColumn<bool>("withCatalog");
        QTest::addColumn<bool>("withItem");
        QTest::addColumn<bool>("withPicture");
        QTest::newRow("picture") << true << true << true;
        QTest::newRow("no picture") << true << true << false;
        QTest::newRow("no catalog") << false << true << true;
        QTest::newRow("no item") << true << false << true;
    }
    void previewDialog()
    {
        QFETCH(bool, withCatalog);
        QFETCH(bool, withItem);
        QFETCH(bool, withPicture);
        ZEVGis::Host::ScriptedHost host;
        ZEVGis::Host::ScopedHostServices scope(host);
        auto factory = boost::make_shared<FakeFactory>();
        if (withPicture)
            factory->picture = twoColourImage(QSize(30, 20));
        auto catalog = boost::make_shared<CCatalog>();
        catalog->SetFactory(factory);
        auto item = boost::make_shared<CCatalogItem>();
        item->SetName(QStringLiteral("Valve"));

        CPicturePreviewDlg dialog;
        dialog.SetPictureRef(QStringLiteral("valve.svg"));
        if (withCatalog)
            dialog.SetCatalog(catalog);
        if (withItem)
            dialog.SetItem(item);
        dialog.SetPosition(300, 500);

        // Once shown, note where and how, and close with the button of id 2. A timer of this
        // scope never fires into a later test.
        QPoint shownAt;
        unsigned shownMode = 99;
        QTimer closer;
        connect(&closer, &QTimer::timeout, this,
                [&]
                {
                    auto* modal =
                        qobject_cast<CPicturePreviewDlg*>(QApplication::activeModalWidget());
                    if (auto* close =
                            modal ? qobject_cast<QPushButton*>(findControlById(modal, 2)) : nullptr)
                    {
                        shownAt = modal->frameGeometry().bottomLeft() + QPoint(0, 1);
                        shownMode = modal->pictureBox()->GetDrawMode();
                        close->click();
                    }
                });
        closer.start(0);
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));

        const bool asked = withCatalog && withItem;
        const QSize box = dialog.pictureBox()->size();
        QCOMPARE(factory->asked, asked ? QStringList{QString("valve.svg Valve %1x%2 mode 2")
                                                         .arg(box.width())
                                                         .arg(box.height())}
                                       : QStringList{});
        QCOMPARE(dialog.windowTitle() == "Valve", asked);
        if (asked && withPicture)
        {
            QCOMPARE(shownAt, QPoint(300, 500));
            QCOMPARE(shownMode, 0u);
            QCOMPARE(dialog.pictureBox()->image(), factory->picture);
            QVERIFY(host.alerts().isEmpty());
        }
        else
        {
            QCOMPARE(shownAt, QPoint()); // never shown
            QVERIFY(!dialog.pictureBox()->hasImage());
            QVERIFY(dialog.pictureBox()->isTransparent());
            QCOMPARE(host.alerts(),
                     QStringList{ZEVGis::CModuleConfiguration::Instance()->GetMsg(7282)});
        }
    }
};

QTEST_MAIN(TestPictureBox)
#include "tst_picturebox.moc"
