#include "subsystems.h"

#include "support/canvas.h"
#include "support/comparison.h"

#include <ovelin/throbberrenderer.h>

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QRectF>

#include <memory>

namespace ovelin::benchmarks {

namespace {

constexpr int side = 160;
constexpr int penWidth = 10;

constexpr int sixteenths = 16; // of a degree, Qt's unit
constexpr int rotation = 120;
constexpr int shortestSpan = 5;
constexpr int longestSpan = 280;

// A throbber with its longest arc. Steps of 0 degrees do not change its picture.
std::shared_ptr<ThrobberRenderer> makeThrobber()
{
    auto throbber = std::make_shared<ThrobberRenderer>();
    throbber->setRenderRect({0, 0, side, side});
    throbber->addAngles(rotation, longestSpan - shortestSpan);
    return throbber;
}

// The same picture by calls of QPainter.
class CircleAndArc
{
public:
    void draw(QPainter &painter) const
    {
        painter.setPen(m_circlePen);
        painter.drawEllipse(m_rect);
        painter.setPen(m_arcPen);
        painter.drawArc(QRectF(m_rect), -(rotation + shortestSpan) * sixteenths,
                        -longestSpan * sixteenths);
    }

private:
    const QPen m_circlePen{QColor(255, 255, 255, 30), penWidth};
    const QPen m_arcPen{Qt::white, penWidth, Qt::SolidLine, Qt::RoundCap};
    const QRect m_rect{penWidth / 2, penWidth / 2, side - penWidth, side - penWidth};
};

std::shared_ptr<Canvas> makeCanvas()
{
    auto canvas = std::make_shared<Canvas>(QSize(side, side));
    canvas->painter.setRenderHint(QPainter::Antialiasing);
    return canvas;
}

template<typename Picture>
QImage drawn(const std::shared_ptr<Picture> &picture)
{
    const auto canvas = makeCanvas();
    picture->draw(canvas->painter);
    return canvas->image;
}

Contender painterCalls(const std::shared_ptr<ThrobberRenderer> &throbber)
{
    const auto calls = std::make_shared<CircleAndArc>();
    if (drawn(calls) != drawn(throbber))
        qFatal("The throbber and what it is compared with draw different pictures.");
    return {"the same two painter calls",
            [calls, canvas = makeCanvas()] { calls->draw(canvas->painter); }};
}

Comparison compareFrame()
{
    const auto throbber = makeThrobber();
    const auto frame = [throbber, canvas = makeCanvas()] {
        throbber->addAngles(0, 0);
        throbber->draw(canvas->painter);
    };
    return {frame, {painterCalls(throbber)}};
}

Comparison compareAddAngles()
{
    const auto throbber = makeThrobber();
    return {[throbber] { throbber->addAngles(0, 0); }, {painterCalls(throbber)}};
}

} // namespace

void registerThrobber()
{
    compare("throbber: frame", compareFrame);
    compare("throbber: addAngles", compareAddAngles);
}

} // namespace ovelin::benchmarks
