#ifndef OVELIN_TESTS_THROBBER_THROBBERSUPPORT_H
#define OVELIN_TESTS_THROBBER_THROBBERSUPPORT_H

#include "support/paintrecorder.h"

#include <ovelin/throbberrenderer.h>

#include <QEasingCurve>
#include <QPainter>
#include <QRect>
#include <QTest>

#include <chrono>
#include <cmath>
#include <memory>

namespace ovelin::tests {

constexpr int fullTurn = 360 * 16; // 1/16 degree, Qt's arc unit
constexpr double shortestSpan = 80;
constexpr double longestSpan = 4480;

// The angles of the arc in a frame: its start, reduced to one turn, and its length.
struct Angles
{
    int start = 0;
    int length = 0;

    bool operator==(const Angles &) const = default;
};

inline char *toString(const Angles &angles)
{
    return qstrdup(qPrintable(
        QStringLiteral("start %1, length %2 (1/16 degree)").arg(angles.start).arg(angles.length)));
}

constexpr Angles noArc{-1, -1};

constexpr int reducedToTurn(int angle)
{
    return ((angle % fullTurn) + fullTurn) % fullTurn;
}

// A plain model of the animation.
class Animation
{
public:
    void addAngles(int rotationDegrees, int spanDegrees)
    {
        const double rotationStep = sixteenths(rotationDegrees);
        const double spanStep = sixteenths(spanDegrees);

        if (growing) {
            span += spanStep;
            if (span >= longestSpan) {
                span = longestSpan;
                growing = false;
            }
        } else {
            span -= spanStep;
            tailOffset += spanStep;
            if (span <= shortestSpan) {
                rotation += tailOffset;
                span = shortestSpan;
                tailOffset = 0;
                growing = true;
            }
        }
        rotation = std::fmod(rotation + rotationStep, fullTurn);
    }

    void tick(std::chrono::milliseconds interval)
    {
        const auto ms = static_cast<double>(interval.count());
        addAngles(static_cast<int>(ms / 2000.0 * 360.0), static_cast<int>(ms / 1000.0 * 360.0));
    }

    int start() const { return static_cast<int>(-(rotation + eased(tailOffset))); }
    int length() const { return static_cast<int>(-eased(span)); }
    Angles angles() const { return {reducedToTurn(start()), length()}; }

    bool growing = true;
    double rotation = 0;
    double tailOffset = 0;
    double span = shortestSpan;

private:
    // The shift is unsigned: a signed product would overflow.
    static double sixteenths(int degrees)
    {
        return static_cast<int>(static_cast<unsigned>(degrees) << 4);
    }

    static double eased(double value)
    {
        const double range = longestSpan - shortestSpan;
        const double progress = (value - shortestSpan) / range;
        return QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(progress) * range
               + shortestSpan;
    }
};

template<typename Paint>
QList<PaintCall> recorded(Paint &&paint)
{
    PaintRecorder recorder;
    QPainter painter(&recorder);
    paint(painter);
    painter.end();
    return recorder.calls();
}

inline QList<PaintCall> drawn(ThrobberRenderer &throbber)
{
    return recorded([&](QPainter &painter) { throbber.draw(painter); });
}

// Returns the paint calls of a frame with these angles, painted without the library.
inline QList<PaintCall> drawnByHand(const QRect &arcRect, int start, int length)
{
    return recorded([&](QPainter &painter) {
        painter.drawEllipse(arcRect);
        painter.drawArc(QRectF(arcRect), start, length);
    });
}

// Computes the angles from the recorded path. Draws them again to check the result.
inline Angles anglesOf(const QPainterPath &path, const QRect &arcRect)
{
    if (path.elementCount() < 2)
        return noArc;

    const QPointF center = QRectF(arcRect).center();
    const auto angleAt = [&](int element) {
        const QPointF radius = QPointF(path.elementAt(element)) - center;
        const double turns = std::atan2(-radius.y(), radius.x()) / (2 * std::acos(-1.0));
        return static_cast<int>(std::lround(turns * fullTurn));
    };
    const int start = reducedToTurn(angleAt(0));
    const int end = angleAt(path.elementCount() - 1);
    const int length = -reducedToTurn(start - end);

    const QList<PaintCall> again = drawnByHand(arcRect, start, length);
    return again.last().path == path ? Angles{start, length} : noArc;
}

constexpr QRect wideRect(0, 0, 1010, 1010);
constexpr QRect wideArcRect(5, 5, 1000, 1000); // inset by half of the default pen

inline Angles drawnAngles(ThrobberRenderer &throbber)
{
    const QList<PaintCall> arcs = drawn(throbber);
    return arcs.isEmpty() ? noArc : anglesOf(arcs.last().path, wideArcRect);
}

inline std::unique_ptr<ThrobberRenderer> makeThrobber()
{
    auto throbber = std::make_unique<ThrobberRenderer>(nullptr);
    throbber->setRenderRect(wideRect);
    return throbber;
}

} // namespace ovelin::tests

#endif
