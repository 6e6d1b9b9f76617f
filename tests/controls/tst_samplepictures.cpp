// The bundled sample pictures are drawn within their own canvas: nothing a user would miss is
// cut off at an edge.
#include <QDirIterator>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTest>

class TestSamplePictures : public QObject
{
    Q_OBJECT

private slots:
    void drawnWithinTheirCanvas_data()
    {
        QTest::addColumn<QString>("path");
        QDirIterator it(QStringLiteral(ZEVX_SAMPLES_DIR "/pictures"), {"*.svg"}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
        {
            const QString path = it.next();
            QTest::newRow(qPrintable(path.mid(path.indexOf("pictures/") + 9))) << path;
        }
    }

    // Rendered onto a canvas twice as large, a drawing leaves everything beyond its own
    // canvas empty.
    void drawnWithinTheirCanvas()
    {
        QFETCH(QString, path);
        QSvgRenderer renderer(path);
        QVERIFY(renderer.isValid());
        const QRectF box = renderer.viewBoxF();
        QVERIFY(!box.isEmpty());
        renderer.setViewBox(QRectF(box.x() - box.width() / 2, box.y() - box.height() / 2,
                                   box.width() * 2, box.height() * 2));
        const int scale = 4; // pixels per unit, so that thin strokes show
        QImage canvas(QSize(int(box.width() * 2 * scale), int(box.height() * 2 * scale)),
                      QImage::Format_ARGB32_Premultiplied);
        canvas.fill(Qt::transparent);
        QPainter painter(&canvas);
        renderer.render(&painter);
        painter.end();
        const QRect inside(int(box.width() / 2 * scale), int(box.height() / 2 * scale),
                           int(box.width() * scale), int(box.height() * scale));
        for (int y = 0; y < canvas.height(); ++y)
            for (int x = 0; x < canvas.width(); ++x)
                if (!inside.contains(x, y) && qAlpha(canvas.pixel(x, y)) > 0)
                    QFAIL(qPrintable(QStringLiteral("drawn at (%1, %2) outside its %3 x %4 canvas")
                                         .arg(box.x() + x / double(scale) - box.width() / 2)
                                         .arg(box.y() + y / double(scale) - box.height() / 2)
                                         .arg(box.width())
                                         .arg(box.height())));
    }
};

QTEST_MAIN(TestSamplePictures)
#include "tst_samplepictures.moc"
