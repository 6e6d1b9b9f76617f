#include "controls/SplitterControl.h"

#include "controls/ControlId.h"

#include <QMouseEvent>
#include <QPainter>

namespace
{
const QColor kLineColour(200, 200, 200);
const QColor kFillColour(200, 220, 220);
} // namespace

// The tracking line: two 1-pixel lines either side of the tracking point, drawn above
// everything else in the window. A child of the top-level window stands in for drawing on
// the screen: it takes no mouse input and paints nothing between its two lines.
class SplitterTrackingLine : public QWidget
{
public:
    explicit SplitterTrackingLine(QWidget* parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("splitterTrackingLine"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
        setFocusPolicy(Qt::NoFocus);
    }

    QPoint point;
    bool horizontal = true;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setPen(QPen(kLineColour, 1));
        if (horizontal)
        {
            painter.drawLine(0, 0, width() - 1, 0);
            painter.drawLine(0, height() - 1, width() - 1, height() - 1);
        }
        else
        {
            painter.drawLine(0, 0, 0, height() - 1);
            painter.drawLine(width() - 1, 0, width() - 1, height() - 1);
        }
    }
};

CSplitterControl::CSplitterControl(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_MouseNoMask);
}

CSplitterControl::~CSplitterControl()
{
    delete m_line.data();
}

int CSplitterControl::Create(unsigned style, const QRect& rect, QWidget* parent, int id)
{
    if (!parent)
        return 0;
    QRect bar = rect.normalized();
    if (bar.width() >= bar.height())
    {
        m_type = SplitterHorizontal;
        bar.setHeight(kThickness);
    }
    else
    {
        m_type = SplitterVertical;
        bar.setWidth(kThickness);
    }
    setParent(parent);
    setGeometry(bar);
    setControlId(this, id);
    applyCursor();
    setVisible((style & kStyleVisible) != 0);
    // Without a range the bar cannot move.
    m_minimum = m_maximum = screenCentre();
    return 1;
}

int CSplitterControl::SetType(int type)
{
    const int former = m_type;
    m_type = type;
    applyCursor();
    return former;
}

void CSplitterControl::SetRange(int minimum, int maximum)
{
    m_minimum = minimum;
    m_maximum = maximum;
}

void CSplitterControl::SetRange(int subtraction, int addition, int root)
{
    if (root < 0)
        root = screenCentre();
    m_minimum = root - subtraction;
    m_maximum = root + addition;
}

QRect CSplitterControl::screenRect() const
{
    return QRect(mapToGlobal(QPoint(0, 0)), size());
}

// The centre on the bar's axis of its window rectangle, in screen coordinates; the far
// edge is exclusive, as the rectangle's right and bottom are.
int CSplitterControl::screenCentre() const
{
    const QRect r = screenRect();
    if (m_type == SplitterVertical)
        return r.width() / 2 + r.left();
    return r.height() / 2 + r.top();
}

void CSplitterControl::applyCursor()
{
    if (m_type == SplitterVertical)
        setCursor(Qt::SizeHorCursor);
    else if (m_type == SplitterHorizontal)
        setCursor(Qt::SizeVerCursor);
    else
        unsetCursor();
}

void CSplitterControl::MoveWindowTo(const QPoint& point)
{
    const QRect g = geometry();
    if (m_type == SplitterVertical)
    {
        const int centre = (g.left() + g.left() + g.width()) / 2;
        move(g.x() + point.x() - centre, g.y());
    }
    else
    {
        const int centre = (g.top() + g.top() + g.height()) / 2;
        move(g.x(), g.y() + point.y() - centre);
    }
    update();
}

void CSplitterControl::ChangeWidth(QWidget* window, int dx, int edge)
{
    if (!window || !window->parentWidget())
        return;
    QRect g = window->geometry();
    if (edge == RightEdge)
        g.setRight(g.right() + dx);
    else if (edge == LeftEdge)
        g.setLeft(g.left() - dx);
    window->setGeometry(g);
    window->update();
}

void CSplitterControl::ChangeHeight(QWidget* window, int dy, int edge)
{
    if (!window || !window->parentWidget())
        return;
    QRect g = window->geometry();
    if (edge == BottomEdge)
        g.setBottom(g.bottom() + dy);
    else if (edge == TopEdge)
        g.setTop(g.top() - dy);
    window->setGeometry(g);
    window->update();
}

void CSplitterControl::ChangePos(QWidget* window, int dx, int dy)
{
    if (!window || !window->parentWidget())
        return;
    // The horizontal sign is inverted on purpose; callers rely on it.
    window->move(window->pos() + QPoint(-dx, dy));
}

void CSplitterControl::DrawLine(int x, int y)
{
    QWidget* top = window();
    if (!m_line)
    {
        m_line = new SplitterTrackingLine(top);
        m_line->hide();
    }
    if (m_line->isVisible() && m_line->point == QPoint(x, y))
    {
        m_line->hide();
        return;
    }
    const QRect bar = screenRect();
    const bool horizontal = m_type != SplitterVertical;
    const QRect lines = horizontal ? QRect(bar.left(), y - 1, bar.width(), 3)
                                   : QRect(x - 1, bar.top(), 3, bar.height());
    m_line->point = QPoint(x, y);
    m_line->horizontal = horizontal;
    m_line->setGeometry(QRect(top->mapFromGlobal(lines.topLeft()), lines.size()));
    m_line->raise();
    m_line->show();
}

void CSplitterControl::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int w = width();
    const int h = height();
    // 3-D frame: highlight on the top and left, shadow on the bottom and right.
    const QColor light = palette().color(QPalette::Light);
    const QColor shadow = palette().color(QPalette::Dark);
    painter.fillRect(0, 0, w - 1, 1, light);
    painter.fillRect(0, 0, 1, h - 1, light);
    painter.fillRect(w - 1, 0, 1, h, shadow);
    painter.fillRect(0, h - 1, w, 1, shadow);
    if (w > 2 && h > 2)
    {
        painter.setPen(QPen(kLineColour, 1));
        painter.setBrush(kFillColour);
        painter.drawRect(1, 1, w - 3, h - 3);
    }
}

void CSplitterControl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
    {
        event->ignore();
        return;
    }
    m_pressed = true;
    m_start = screenCentre();
    if (m_type == SplitterVertical)
        m_tracking.setX(m_start);
    else
        m_tracking.setY(m_start);
    DrawLine(m_tracking.x(), m_tracking.y());
    event->accept();
}

void CSplitterControl::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_pressed)
    {
        event->ignore();
        return;
    }
    DrawLine(m_tracking.x(), m_tracking.y());
    // The range is kept as given and applied in the parent's coordinates, to both x and y.
    QWidget* parent = parentWidget();
    const QPoint global = event->globalPosition().toPoint();
    QPoint p = parent ? parent->mapFromGlobal(global) : global;
    auto clamp = [this](int v)
    {
        if (v < m_minimum)
            v = m_minimum;
        if (v > m_maximum)
            v = m_maximum;
        return v;
    };
    p = QPoint(clamp(p.x()), clamp(p.y()));
    m_tracking = parent ? parent->mapToGlobal(p) : p;
    DrawLine(m_tracking.x(), m_tracking.y());
    event->accept();
}

void CSplitterControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_pressed)
    {
        event->ignore();
        return;
    }
    DrawLine(m_tracking.x(), m_tracking.y());
    m_pressed = false;
    event->accept();
    QWidget* target = parentWidget();
    if (!target)
        return;
    MoveWindowTo(target->mapFromGlobal(m_tracking));
    const int delta = (m_type == SplitterVertical ? m_tracking.x() : m_tracking.y()) - m_start;
    emit splitterMoved(controlId(this), delta);
}
