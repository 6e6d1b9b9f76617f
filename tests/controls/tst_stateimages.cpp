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
    void initTestCase() { m_widget.setStyle(QStyleFactory::create("Fusion")); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*"));
        SetStateImageThemesEnabled(true);
    }

    void refusedCallsLeaveListAlone()
    {
        CStateImageList list;
        QVERIFY(CreateStateImages(&m_widget, list, 8, Qt::white));
        const QImage before = list.strip;
        QVERIFY(!CreateStateImages(&m_widget, list, 0, Qt::magenta));
        QVERIFY(!CreateStateImages(&m_widget, list, -3, Qt::magenta));
        QVERIFY(!CreateStateImages(nullptr, list, 16, Qt::magenta));
        QCOMPARE(list.size, 8);
        QCOMPARE(list.strip, before);
        QCOMPARE(list.images.size(), 17);
    }

    void cellsHoldTheStates()
    {
        const QColor background(10, 200, 30);
        CStateImageList themed, classic;
        QVERIFY(CreateStateImages(&m_widget, themed, 16, background));
        SetStateImageThemesEnabled(false);
        QVERIFY(CreateStateImages(&m_widget, classic, 16, background));
        QVERIFY(cell(themed, 2) != cell(classic, 2));
        for (const CStateImageList* list : {&themed, &classic})
        {
            QCOMPARE(list->strip.size(), QSize(17 * 16, 16));
            QCOMPARE(list->images.size(), 17);
            for (int n = 0; n < 17; ++n)
            {
                const QImage c = cell(*list, n);
                // Cells 0, 4, 8, 12 and 16 are unused; the others keep a 1-pixel margin.
                QVERIFY2(isUniform(c, background) == (n % 4 == 0), qPrintable(QString::number(n)));
                QCOMPARE(c.pixelColor(0, 0), background);
                QCOMPARE(c.pixelColor(15, 15), background);
            }
            // Unchecked, checked and tri-state differ, and so do normal and disabled; the
            // second group repeats the disabled pictures.
            QVERIFY(cell(*list, 1) != cell(*list, 2));
            QVERIFY(cell(*list, 2) != cell(*list, 3));
            QVERIFY(cell(*list, 1) != cell(*list, 5));
            QVERIFY(cell(*list, 3) != cell(*list, 7));
            QCOMPARE(cell(*list, 13), cell(*list, 5));
            QCOMPARE(cell(*list, 15), cell(*list, 7));
            // A background other than magenta stays visible in the images.
            QCOMPARE(list->images[1].toImage().pixelColor(0, 0), background);
        }
    }

    void magentaBecomesTransparent()
    {
        CStateImageList list;
        QVERIFY(CreateStateImages(&m_widget, list, 13, QColor(255, 0, 255)));
        QVERIFY(isUniform(list.images[0].toImage(), QColor(0, 0, 0, 0)));
        const QImage checked = list.images[2].toImage();
        QCOMPARE(checked.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(checked.pixelColor(6, 6).alpha(), 255);
    }
};

QTEST_MAIN(TestStateImages)
#include "tst_stateimages.moc"
