#include "controls/StateImages.h"

#include <QApplication>
#include <QCommonStyle>
#include <QPainter>
#include <QPointer>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QWidget>
#include <climits>

namespace
{

enum : unsigned
{
    ClassicButtonCheck = 0x0000, // the check-box kind of frame control
    ClassicChecked = 0x0400,
    ClassicThreeState = 0x0008,
    ClassicInactive = 0x0100,
    ClassicFlat = 0x4000,
};

struct StateImageRow
{
    const char* label;
    int themeState;        // check-box part states: 1/5/9 normal, 2/6/10 hot, 4/8/12 disabled
    unsigned classicFlags; // 0 for the unused cells
};

constexpr StateImageRow kRows[16] = {
    {"unused", 0, 0},
    {"unchecked normal", 1, ClassicFlat | ClassicButtonCheck},
    {"checked normal", 5, ClassicFlat | ClassicChecked},
    {"tri-state normal", 9, ClassicFlat | ClassicChecked | ClassicThreeState},
    {"unused", 0, 0},
    {"unchecked disabled", 4, ClassicFlat | ClassicInactive},
    {"checked disabled", 8, ClassicFlat | ClassicChecked | ClassicInactive},
    {"tri-state disabled", 12, ClassicFlat | ClassicChecked | ClassicThreeState | ClassicInactive},
    {"unused", 0, 0},
    {"unchecked normal", 2, ClassicFlat | ClassicButtonCheck},
    {"checked normal", 6, ClassicFlat | ClassicChecked},
    {"tri-state normal", 10, ClassicFlat | ClassicChecked | ClassicThreeState},
    {"unused", 0, 0},
    {"unchecked disabled", 4, ClassicFlat | ClassicInactive},
    {"checked disabled", 8, ClassicFlat | ClassicChecked | ClassicInactive},
    {"tri-state disabled", 12, ClassicFlat | ClassicChecked | ClassicThreeState | ClassicInactive},
};

constexpr QRgb kMagenta = 0xFFFF00FF;

bool g_themesEnabled = true;

QStyle* classicStyle()
{
    static QPointer<QStyle> style;
    if (!style)
    {
        QStyle* made = QStyleFactory::create(QStringLiteral("Windows"));
        if (!made)
            made = QStyleFactory::create(QStringLiteral("Fusion"));
        if (!made)
            made = new QCommonStyle;
        // Dies with the application, not after it.
        made->setParent(qApp);
        style = made;
    }
    return style;
}

QStyle::State themedState(int themeState)
{
    const int check = (themeState - 1) / 4; // 0 unchecked, 1 checked, 2 tri-state
    const int look = (themeState - 1) % 4;  // 0 normal, 1 hot, 2 pressed, 3 disabled
    QStyle::State state = check == 0   ? QStyle::State_Off
                          : check == 1 ? QStyle::State_On
                                       : QStyle::State_NoChange;
    if (look != 3)
        state |= QStyle::State_Enabled;
    if (look == 1)
        state |= QStyle::State_MouseOver;
    if (look == 2)
        state |= QStyle::State_Sunken;
    return state;
}

QStyle::State classicState(unsigned flags)
{
    QStyle::State state = QStyle::State_Off;
    if (flags & ClassicChecked)
        state = (flags & ClassicThreeState) ? QStyle::State_NoChange : QStyle::State_On;
    if (!(flags & ClassicInactive))
        state |= QStyle::State_Enabled;
    return state;
}

void drawCheckBox(QPainter& painter, const QWidget* widget, QStyle* style, const QRect& rect,
                  QStyle::State state)
{
    QStyleOptionButton option;
    option.initFrom(widget);
    option.rect = rect;
    option.state = state;
    option.palette.setCurrentColorGroup((state & QStyle::State_Enabled) ? QPalette::Active
                                                                        : QPalette::Disabled);
    style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, widget);
}

} // namespace

void SetStateImageThemesEnabled(bool enabled)
{
    g_themesEnabled = enabled;
}

bool StateImageThemesEnabled()
{
    return g_themesEnabled;
}

bool CreateStateImages(const QWidget* widget, CStateImageList& images, int size,
                       const QColor& background)
{
    if (!widget || size < 1 || size > INT_MAX / CStateImageList::kCount)
        return false;
    QImage strip(CStateImageList::kCount * size, size, QImage::Format_ARGB32_Premultiplied);
    if (strip.isNull())
        return false;
    strip.fill(background);

    const bool themed = g_themesEnabled;
    QStyle* style = themed ? widget->style() : classicStyle();
    {
        QPainter painter(&strip);
        QRect cell(1, 1, size - 2, size - 2);
        for (const StateImageRow& row : kRows)
        {
            if (qstrcmp(row.label, "unused") != 0)
            {
                const QStyle::State state =
                    themed ? themedState(row.themeState) : classicState(row.classicFlags);
                drawCheckBox(painter, widget, style, cell, state);
            }
            cell.translate(size, 0);
        }
    }

    CStateImageList made;
    made.size = size;
    made.strip = strip;
    const QImage argb = strip.convertToFormat(QImage::Format_ARGB32);
    for (int n = 0; n < CStateImageList::kCount; ++n)
    {
        QImage cell = argb.copy(n * size, 0, size, size);
        for (int y = 0; y < size; ++y)
        {
            auto* line = reinterpret_cast<QRgb*>(cell.scanLine(y));
            for (int x = 0; x < size; ++x)
                if (line[x] == kMagenta)
                    line[x] = 0;
        }
        made.images.append(QPixmap::fromImage(cell));
    }
    images = std::move(made);
    return true;
}
