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

// Angles are in 1/16 degree, the unit of QPainter's arc functions.
constexpr int arcUnitBits = 4;
constexpr double fullTurn = 360 << arcUnitBits;
constexpr double shortestSpan = 5 << arcUnitBits;
constexpr double longestSpan = 280 << arcUnitBits;

constexpr int defaultPenWidth = 10; // pixels
constexpr int trackAlpha = 30;      // 255 is opaque
constexpr std::chrono::milliseconds defaultInterval{17};

constexpr double fullTurnDegrees = 360;
constexpr double rotationPeriod = 2000; // milliseconds for a full turn of the arc
constexpr double spanPeriod = 1000;     // milliseconds in which the arc would grow by 360 degrees

double eased(double span)
{
    constexpr double range = longestSpan - shortestSpan;
    const double progress = (span - shortestSpan) / range;
    return QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(progress) * range + shortestSpan;
}

// Moves each edge inwards by half the pen width, truncated, so that the line stays inside. A negative
// width moves the edges outwards. QRect::adjusted() would overflow at the ends of int.
QRect insetByPen(const QRect &rect, int penWidth)
{
    using Limits = std::numeric_limits<int>;
    const auto moved = [](int edge, int by) {
        return int(std::clamp<qint64>(qint64(edge) + by, Limits::min(), Limits::max()));
    };
    const int half = penWidth / 2;
    return {QPoint(moved(rect.left(), half), moved(rect.top(), half)),
            QPoint(moved(rect.right(), -half), moved(rect.bottom(), -half))};
}

// Unlike QRectF(rect), does not overflow for a rectangle whose width or height exceeds an int.
QRectF toRectF(const QRect &rect)
{
    return {rect.topLeft(), QPointF(rect.bottomRight()) + QPointF(1, 1)};
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

// Shortens the arc at its tail. When the arc is shortest, the distance that the tail has moved is
// added to the rotation.
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
    \brief An animated busy indicator: a faint circle, and a bright arc that turns clockwise while
    it grows and shrinks.

    \snippet tst_snippets.cpp throbber

    The guide \l {The throbber's cycle} shows its frames.

    While the throbber runs, a timer advances the animation, and the throbber emits updated(). The
    item that shows the throbber then repaints itself and calls draw() with its own painter.

    With the default interval of 17 ms, each tick turns the arc by 3 degrees. For 46 ticks the arc
    grows from 5 degrees to 280, by 6 degrees a tick on average. Then it shrinks at its tail for 46
    ticks. Growing and shrinking begin and end slowly.

    The throbber and its timer belong to the thread that created the throbber.

    \since Ovelin 1.0
*/

/*!
    \fn void ovelin::ThrobberRenderer::updated()

    Emitted when the picture has changed: at the end of each addAngles(), also when the timer calls
    addAngles(). A slot may call every function of the throbber, and may destroy the throbber.
*/

/*!
    Creates a throbber that does not run, as a child of \a parent, which may be null. Its rectangle
    is empty until setRenderRect() is called.
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
    Returns the pen width of the circle and of the arc in pixels, initially 10.
*/
int ThrobberRenderer::penWidth() const
{
    return d->backgroundPen.width();
}

/*!
    Sets the pen width of the circle and of the arc to \a width pixels, and fits both into the
    rectangle of setRenderRect(). Emits nothing.

    QPen accepts widths from 0 to 32767. For any other \a width it prints a warning and keeps its
    width, but the circle is still fitted for \a width: with -10 it lies 5 pixels outside the
    rectangle.
*/
void ThrobberRenderer::setPenWidth(int width)
{
    d->backgroundPen.setWidth(width);
    d->foregroundPen.setWidth(width);
    d->arcRect = insetByPen(d->renderRect, width);
}

/*!
    Sets the colour of the circle to \a color. Initially it is white with an alpha of 30. Emits
    nothing.
*/
void ThrobberRenderer::setBackgroundColor(const QColor &color)
{
    d->backgroundPen.setColor(color);
}

/*!
    Sets the colour of the arc, which has round ends, to \a color. Initially it is white. Emits
    nothing. Applications depend on the spelling of this name.
*/
void ThrobberRenderer::setForegcoundColor(const QColor &color)
{
    d->foregroundPen.setColor(color);
}

/*!
    Sets the rectangle of the throbber to \a rect, in the coordinates of the painter that draw()
    gets. The circle and the arc touch the border of \a rect from inside. With an odd pen width they
    extend half a pixel beyond it. Emits nothing.
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

    The speed does not depend on the interval: a full turn takes two seconds, and the arc grows by
    360 degrees a second. But each tick moves by whole degrees, rounded down. Below 6 ms the arc
    only grows and shrinks, and below 3 ms it does not move. The throbber still emits updated() at
    each tick.
*/
void ThrobberRenderer::setUpdateInterval(std::chrono::milliseconds interval)
{
    d->timer.setInterval(interval);
}

/*!
    Returns true if the timer runs.
*/
bool ThrobberRenderer::isRunning() const
{
    return d->timer.isActive();
}

/*!
    Starts the animation if \a running is true, and stops it otherwise. A stopped animation
    continues where it stopped. Starting a running animation begins a new interval.
*/
void ThrobberRenderer::setRunning(bool running)
{
    if (running)
        d->timer.start();
    else
        d->timer.stop();
}

/*!
    Turns the arc by \a rotationDegrees, lets it grow or shrink by \a spanDegrees, depending on the
    phase of the animation, and emits updated().

    The timer calls this function. Call it to drive the animation without the timer. Negative steps
    go backwards. A step wraps if it exceeds 32 bits when it is counted in 1/16 degree.
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
    Draws the circle and the arc with \a painter into the rectangle of setRenderRect(). The pen of
    the arc stays set. The function changes nothing else of the painter: a brush that is set fills
    the circle, and the edges are jagged unless QPainter::Antialiasing is set.
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
