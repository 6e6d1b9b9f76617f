#include "controls/PictureBox.h"

#include <QImageReader>
#include <QPainter>

CPictureBox::CPictureBox(QWidget* parent) : QWidget(parent) {}

CPictureBox::~CPictureBox() = default;

void CPictureBox::SetBitmap(const QImage& bitmap)
{
    m_image = bitmap;
    setTransparent(m_image.isNull());
    update();
}

int CPictureBox::LoadFromFile(const QString& path)
{
    // Pixels as stored: painting does no colour-space conversion.
    QImageReader reader(path);
    m_image = reader.read();
    setTransparent(m_image.isNull());
    update();
    return m_image.isNull() ? 0 : 1;
}

void CPictureBox::SetDrawMode(unsigned mode)
{
    if (m_drawMode == mode)
        return;
    m_drawMode = mode;
    update();
}

// Qt composes overlapping siblings itself, so the flag changes nothing in the painting: the
// box always fills itself with the button colour. It is kept so that owners can tell an
// empty box from one that shows a picture.
void CPictureBox::setTransparent(bool transparent)
{
    m_transparent = transparent;
}

QRect CPictureBox::pictureRect(unsigned mode, const QSize& boxSize, const QSize& imageSize)
{
    switch (mode)
    {
    case PictureDrawTopLeft:
        return QRect(QPoint(0, 0), imageSize);
    case PictureDrawCentered:
        // Each size halved on its own before the subtraction.
        return QRect(QPoint(boxSize.width() / 2 - imageSize.width() / 2,
                            boxSize.height() / 2 - imageSize.height() / 2),
                     imageSize);
    case PictureDrawStretched:
        return QRect(QPoint(0, 0), boxSize);
    default:
        return QRect();
    }
}

void CPictureBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    if (m_image.isNull())
        return;
    const QRect target = pictureRect(m_drawMode, size(), m_image.size());
    if (target.isEmpty())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_drawMode == PictureDrawStretched);
    painter.drawImage(target, m_image);
}
