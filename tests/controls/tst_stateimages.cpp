#include "controls/StateImages.h"

#include <QStyleFactory>
#include <QTest>

namespace
{

bool isUniform(const QImage& image, const QColor& colour)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) != colour)
                return false;
    return true;
}

QImage cell(const CStateImageList& list, int n)
{
    return list.strip.copy(n * list.size, 0, list.size, list.size);
}

} // namespace

class TestStateImages : public QObject
{
    Q_OBJECT

private:
    QWidget m_widget;

private slots:
    void init()
    {
        QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*"));
        SetStateImageThemesEnabled(true);
    }
    void initTestCase() { m_widget.setStyle(QStyleFactory::create("Fusion")); }

    void refusesWithoutSizeOrWidget_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("withWidget");
        QTest::newRow("size 0") << 0 << true;
        QTest::newRow("negative size") << -3 << true;
        QTest::newRow("no widget") << 16 << false;
    }
    void refusesWithoutSizeOrWidget()
    {
        QFETCH(int, size);
        QFETCH(bool, withWidget);
        CStateImageList list;
        QVERIFY(CreateStateImages(&m_widget, list, 8, Qt::white));
        const QImage before = list.strip;
        QVERIFY(!CreateStateImages(withWidget ? &m_widget : nullptr, list, size, Qt::magenta));
        QCOMPARE(list.size, 8);
        QCOMPARE(list.strip, before);
        QCOMPARE(list.images.size(), 17);
    }

    void cellsHoldTheStates_data()
    {
        QTest::addColumn<bool>("themed");
        QTest::newRow("themed") << true;
        QTest::newRow("classic") << false;
    }
    void cellsHoldTheStates()
    {
        QFETCH(bool, themed);
        SetStateImageThemesEnabled(themed);
        CStateImageList list;
        const QColor background(10, 200, 30);
        QVERIFY(CreateStateImages(&m_widget, list, 16, background));
        QCOMPARE(list.strip.size(), QSize(17 * 16, 16));
        QCOMPARE(list.images.size(), 17);
        for (int n : {0, 4, 8, 12, 16})
            QVERIFY2(isUniform(cell(list, n), background), qPrintable(QString::number(n)));
        for (int n : {1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15})
            QVERIFY2(!isUniform(cell(list, n), background), qPrintable(QString::number(n)));
        // The one-pixel margin round every check box stays background.
        for (int n = 0; n < 17; ++n)
        {
            const QImage c = cell(list, n);
            QCOMPARE(c.pixelColor(0, 0), background);
            QCOMPARE(c.pixelColor(15, 15), background);
        }
        // Unchecked, checked and tri-state differ, and so do normal and disabled.
        QVERIFY(cell(list, 1) != cell(list, 2));
        QVERIFY(cell(list, 2) != cell(list, 3));
        QVERIFY(cell(list, 1) != cell(list, 5));
        QVERIFY(cell(list, 2) != cell(list, 6));
        // The second group repeats the disabled pictures.
        QCOMPARE(cell(list, 13), cell(list, 5));
        QCOMPARE(cell(list, 15), cell(list, 7));
        // A background other than magenta stays visible in the images.
        QCOMPARE(list.images[1].toImage().pixelColor(0, 0), background);
    }

    void themesOffDrawsClassicLook()
    {
        CStateImageList themed, classic;
        QVERIFY(CreateStateImages(&m_widget, themed, 16, Qt::white));
        SetStateImageThemesEnabled(false);
        QVERIFY(CreateStateImages(&m_widget, classic, 16, Qt::white));
        QVERIFY(cell(themed, 2) != cell(classic, 2));
    }

    void magentaBecomesTransparent()
    {
        CStateImageList list;
        QVERIFY(CreateStateImages(&m_widget, list, 13, QColor(255, 0, 255)));
        QCOMPARE(list.strip.pixelColor(0, 0), QColor(255, 0, 255));
        const QImage unused = list.images[0].toImage();
        QVERIFY(isUniform(unused, QColor(0, 0, 0, 0)));
        const QImage checked = list.images[2].toImage();
        QCOMPARE(checked.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(checked.pixelColor(6, 6).alpha(), 255);
    }
};

QTEST_MAIN(TestStateImages)
#include "tst_stateimages.moc"
