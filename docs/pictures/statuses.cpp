#include "pictures.h"

#include <cmath>
#include <numbers>

namespace {

struct Status
{
    const char *name;
    QPointF centre;
    bool isAllowed;
};

constexpr QSizeF boxSize(180, 40);
constexpr Status requested{"CreationRequested", {120, 170}, false};
constexpr Status ignored{"Ignored", {380, 60}, true};
constexpr Status allowed{"CreationAllowed", {380, 170}, true};
constexpr Status denied{"CreationDenied", {380, 280}, false};
constexpr Status cleared{"Cleared", {640, 170}, false};

constexpr QRgb allowedColour = 0xff2f7d4f;
constexpr QRgb otherColour = 0xff1d3a58;

QPointF left(const Status &status)
{
    return status.centre - QPointF(boxSize.width() / 2, 0);
}

QPointF right(const Status &status)
{
    return status.centre + QPointF(boxSize.width() / 2, 0);
}

void drawStatus(Canvas &canvas, const Status &status)
{
    QPainter &painter = canvas.painter();
    QRectF box({}, boxSize);
    box.moveCenter(status.centre);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(status.isAllowed ? allowedColour : otherColour));
    painter.drawRoundedRect(box, 6, 6);
    painter.setPen(QColor(colours::ink));
    painter.setFont(pictureFont(14));
    painter.drawText(box, Qt::AlignCenter, status.name);
}

void drawArrow(Canvas &canvas, const QPointF &from, const QPointF &to)
{
    QPainter &painter = canvas.painter();
    const double angle = std::atan2(to.y() - from.y(), to.x() - from.x());
    painter.save();
    painter.setPen(QPen(QColor(colours::faint), 1.5));
    painter.drawLine(from, to);
    painter.translate(to);
    painter.rotate(angle * 180 / std::numbers::pi);
    painter.setBrush(QColor(colours::faint));
    painter.setPen(Qt::NoPen);
    painter.drawPolygon(QPolygonF({{0, 0}, {-9, 5}, {-9, -5}}));
    painter.restore();
}

} // namespace

void drawStatuses(Canvas &canvas)
{
    for (const Status &status : {requested, ignored, allowed, denied, cleared})
        drawStatus(canvas, status);

    const QPointF up(0, -8);
    const QPointF halfBox(0, boxSize.height() / 2);
    drawArrow(canvas, right(requested), left(allowed));
    drawArrow(canvas, right(requested) + up, left(ignored));
    drawArrow(canvas, right(requested) - up, left(denied));
    drawArrow(canvas, right(allowed) + up, left(cleared) + up);
    drawArrow(canvas, left(cleared) - up, right(allowed) - up);
    drawArrow(canvas, denied.centre - halfBox, allowed.centre + halfBox);

    canvas.label({40, 142}, "the first one");
    canvas.label({190, 86}, "not managed");
    canvas.label({228, 162}, "it fits");
    canvas.label({170, 260}, "it does not fit");
    canvas.label({388, 232}, "there is room again");
    canvas.label({480, 152}, "off screen");
    canvas.label({478, 200}, "back again");
}
