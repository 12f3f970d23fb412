#include <ovelin/throbberrenderer.h>

#include <QColor>
#include <QEasingCurve>
#include <QPainter>
#include <QPen>
#include <QRect>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ovelin {

namespace {

// Angles are in the unit of QPainter's arc functions, 1/16 degree.
constexpr int arcUnitBits = 4;
constexpr double fullTurn = 360 << arcUnitBits;
constexpr double shortestSpan = 5 << arcUnitBits;
constexpr double longestSpan = 280 << arcUnitBits;

constexpr int defaultPenWidth = 10;
constexpr int trackAlpha = 30;
constexpr std::chrono::milliseconds defaultInterval{17};

constexpr double fullTurnDegrees = 360;
constexpr double rotationPeriod = 2000; // milliseconds that a full turn takes
constexpr double spanPeriod = 1000;     // milliseconds in which the arc would grow by a full turn

double eased(double span)
{
    constexpr double range = longestSpan - shortestSpan;
    const double progress = (span - shortestSpan) / range;
    return QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(progress) * range + shortestSpan;
}

int saturatedSum(int a, int b)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<qint64>(qint64(a) + b, Limits::min(), Limits::max()));
}

// Shrinks the rectangle by half the pen, so that the line stays inside; an odd width loses its half
// pixel, and a negative one lets the rectangle grow.
QRect insetByPen(const QRect &rect, int penWidth)
{
    const auto topLeft = static_cast<int>(penWidth * 0.5);
    const auto bottomRight = static_cast<int>(penWidth * -0.5);
    QRect inset;
    inset.setCoords(saturatedSum(rect.left(), topLeft), saturatedSum(rect.top(), topLeft),
                    saturatedSum(rect.right(), bottomRight),
                    saturatedSum(rect.bottom(), bottomRight));
    return inset;
}

// As QRectF's own conversion, for rectangles wider than an int too.
QRectF toRectF(const QRect &rect)
{
    return {double(rect.left()), double(rect.top()), double(rect.right()) - rect.left() + 1,
            double(rect.bottom()) - rect.top() + 1};
}

} // namespace

struct ThrobberRendererPrivate
{
    enum Phase : qint32 { Growing = 0, Shrinking = 1 };

    explicit ThrobberRendererPrivate(ThrobberRenderer *renderer);

    void tick();
    void grow(double step);
    void shrink(double step);

    ThrobberRenderer *q;
    QPen backgroundPen;
    QPen foregroundPen;
    QRect renderRect;
    QRect arcRect;
    QTimer timer;
    Phase phase = Growing;
    double rotation = 0;
    double tailOffset = 0;
    double span = shortestSpan;
};

ThrobberRendererPrivate::ThrobberRendererPrivate(ThrobberRenderer *renderer)
    : q(renderer)
    , backgroundPen(QColor(255, 255, 255, trackAlpha), defaultPenWidth)
    , foregroundPen(QColor(255, 255, 255), defaultPenWidth, Qt::SolidLine, Qt::RoundCap)
{
    timer.setInterval(defaultInterval);
}

void ThrobberRendererPrivate::tick()
{
    const int interval = timer.interval();
    q->addAngles(static_cast<int>(interval / rotationPeriod * fullTurnDegrees),
                 static_cast<int>(interval / spanPeriod * fullTurnDegrees));
}

void ThrobberRendererPrivate::grow(double step)
{
    span += step;
    if (longestSpan <= span) {
        span = longestSpan;
        phase = Shrinking;
    }
}

// The arc shortens at its tail; when it is shortest, the way that the tail went becomes rotation.
void ThrobberRendererPrivate::shrink(double step)
{
    span -= step;
    tailOffset += step;
    if (span <= shortestSpan) {
        rotation += tailOffset;
        span = shortestSpan;
        tailOffset = 0;
        phase = Growing;
    }
}

/*!
    \class ovelin::ThrobberRenderer
    \inmodule Ovelin
    \inheaderfile ovelin/throbberrenderer.h
    \brief An animated busy indicator: a faint circle with a bright arc that turns clockwise while it
    grows and shrinks.

    The renderer paints nothing by itself. While it runs, a timer advances the animation and updated()
    is emitted; the item that owns the renderer then repaints and calls draw() with its own painter.

    With the default interval of 17 ms the arc turns by 3 degrees a tick and grows by 6, from 5
    degrees to 280 in 46 ticks; then it shrinks at its tail for 46 ticks.

    The renderer and its timer belong to the thread that created it.

    \since Ovelin 1.0
*/

/*!
    \fn void ovelin::ThrobberRenderer::updated()

    Emitted once at the end of each addAngles(), which the timer calls too: the picture has changed. A
    slot may call every function of the throbber, and may destroy it.
*/

/*!
    Creates a throbber that stands still, as a child of \a parent, which may be null. Call
    setRenderRect() to give it a place: the initial one is empty.
*/
ThrobberRenderer::ThrobberRenderer(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<ThrobberRendererPrivate>(this))
{
    connect(&d->timer, &QTimer::timeout, this, [this] { d->tick(); });
}

/*!
    Stops the animation and destroys the throbber.
*/
ThrobberRenderer::~ThrobberRenderer() = default;

/*!
    Returns the width of circle and arc in pixels, initially 10.
*/
int ThrobberRenderer::penWidth() const
{
    return d->backgroundPen.width();
}

/*!
    Sets the width of circle and arc to \a width pixels and fits them into the render rectangle.

    QPen refuses a negative width, and one above 32767, with a warning: the pens stay as they are then,
    while the circle grows out of the rectangle, or shrinks in it, by half of \a width all the same.
    Emits nothing.
*/
void ThrobberRenderer::setPenWidth(int width)
{
    d->backgroundPen.setWidth(width);
    d->foregroundPen.setWidth(width);
    d->arcRect = insetByPen(d->renderRect, width);
}

/*!
    Sets the colour of the circle to \a color; initially white with an alpha of 30. Emits nothing.
*/
void ThrobberRenderer::setBackgroundColor(const QColor &color)
{
    d->backgroundPen.setColor(color);
}

/*!
    Sets the colour of the arc, which has round ends, to \a color; initially white. Emits nothing.
    Callers are built against this name, unusual as it is spelt.
*/
void ThrobberRenderer::setForegcoundColor(const QColor &color)
{
    d->foregroundPen.setColor(color);
}

/*!
    Sets the rectangle that the throbber fills to \a rect, in the coordinates of the painter that
    draw() gets. Circle and arc are drawn inside it, their outer edge on its border; with an odd pen
    width, half a pixel beyond. Before this is called the rectangle is empty. Emits nothing.
*/
void ThrobberRenderer::setRenderRect(const QRect &rect)
{
    d->renderRect = rect;
    d->arcRect = insetByPen(rect, penWidth());
}

/*!
    Returns the time between two ticks, initially 17 ms.
*/
std::chrono::milliseconds ThrobberRenderer::updateInterval() const
{
    return d->timer.intervalAsDuration();
}

/*!
    Sets the time between two ticks to \a interval, as QTimer::setInterval() does.

    The steps follow the interval: a full turn takes two seconds, and the arc grows by 360 degrees a
    second, both in whole degrees a tick. Below 6 ms the arc does not turn, and below 3 ms it does not
    grow either; updated() is emitted all the same.
*/
void ThrobberRenderer::setUpdateInterval(std::chrono::milliseconds interval)
{
    d->timer.setInterval(interval);
}

/*!
    Returns whether the timer runs.
*/
bool ThrobberRenderer::isRunning() const
{
    return d->timer.isActive();
}

/*!
    Starts the animation if \a running is true, and stops it otherwise. The animation goes on from
    where it stopped; nothing is reset. Starting a running one begins a new interval.
*/
void ThrobberRenderer::setRunning(bool running)
{
    if (running)
        d->timer.start();
    else
        d->timer.stop();
}

/*!
    Turns the arc by \a rotationDegrees and lets it grow, or shrink while it does so, by
    \a spanDegrees, both in whole degrees, and emits updated().

    The timer calls this; call it to drive the animation by hand. Negative steps go backwards. Steps
    beyond what fits 32 bits in 1/16 degree wrap.
*/
void ThrobberRenderer::addAngles(int rotationDegrees, int spanDegrees)
{
    const int rotationStep = rotationDegrees << arcUnitBits;
    const int spanStep = spanDegrees << arcUnitBits;

    switch (d->phase) {
    case ThrobberRendererPrivate::Growing:
        d->grow(spanStep);
        break;
    case ThrobberRendererPrivate::Shrinking:
        d->shrink(spanStep);
        break;
    }
    d->rotation = std::fmod(d->rotation + rotationStep, fullTurn);

    Q_EMIT updated();
}

/*!
    Draws the circle and the arc with \a painter, at the place of setRenderRect(). Leaves the arc's
    pen set; brush, transform and render hints are the caller's. A brush that is set fills the circle.
*/
void ThrobberRenderer::draw(QPainter &painter)
{
    painter.setPen(d->backgroundPen);
    painter.drawEllipse(d->arcRect);

    painter.setPen(d->foregroundPen);
    // Negative angles run clockwise from three o'clock.
    const auto start = static_cast<int>(-(d->rotation + eased(d->tailOffset)));
    const auto length = static_cast<int>(-eased(d->span));
    painter.drawArc(toRectF(d->arcRect), start, length);
}

} // namespace ovelin
