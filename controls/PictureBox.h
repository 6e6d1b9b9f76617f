#pragma once

#include <QImage>
#include <QWidget>

// Shows one picture, at its own size in the top-left corner, centred, or stretched over the
// whole box, on the button-face colour. The box keeps its own copy of the picture.
class CPictureBox : public QWidget
{
    Q_OBJECT
public:
    enum DrawMode : unsigned
    {
        PictureDrawTopLeft = 0,
        PictureDrawCentered = 1,
        PictureDrawStretched = 2
    };

    explicit CPictureBox(QWidget* parent = nullptr);
    ~CPictureBox() override;

    // Takes a copy of `bitmap`. A null image leaves the box without a picture and makes it
    // transparent; a picture makes it opaque again.
    void SetBitmap(const QImage& bitmap);
    // Loads a picture file. Non-zero on success; on failure the box has no picture and is
    // transparent.
    int LoadFromFile(const QString& path);

    // Any other value than the three modes draws no picture, only the background.
    void SetDrawMode(unsigned mode);
    unsigned GetDrawMode() const { return m_drawMode; }

    const QImage& image() const { return m_image; }
    bool hasImage() const { return !m_image.isNull(); }
    // True while the box has no usable picture.
    bool isTransparent() const { return m_transparent; }

    // Where a picture of `imageSize` is drawn in a box of `boxSize` in `mode`; an empty
    // rectangle when nothing is drawn.
    static QRect pictureRect(unsigned mode, const QSize& boxSize, const QSize& imageSize);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void setTransparent(bool transparent);

    QImage m_image;
    unsigned m_drawMode = PictureDrawCentered;
    bool m_transparent = false;
};
