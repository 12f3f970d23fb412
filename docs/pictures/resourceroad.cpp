#include "pictures.h"

#include <algorithm>
#include <utility>

namespace {

enum Lifeline { Item, Tracker, Application };

constexpr double lifelines[] = {110, 380, 650};
constexpr const char *names[] = {"item", "SceneResourceTracker", "application"};
constexpr double top = 46;
constexpr double bottom = 540;
constexpr int textSize = 12;

void drawLifelines(Canvas &canvas)
{
    QPainter &painter = canvas.painter();
    painter.setFont(pictureFont(14));
    for (const Lifeline line : {Item, Tracker, Application}) {
        const double x = lifelines[line];
        const QRectF head(x - 90, 14, 180, top - 14);
        painter.setPen(QPen(QColor(colours::faint), 1));
        painter.drawLine(QPointF(x, top), QPointF(x, bottom));
        painter.setBrush(QColor("#1d3a58"));
        painter.drawRoundedRect(head, 6, 6);
        painter.setPen(QColor(colours::ink));
        painter.drawText(head, Qt::AlignCenter, names[line]);
    }
}

// A call has a solid line, a signal a dashed one.
enum class Arrow { Call, Signal };

void drawArrow(Canvas &canvas, double y, Lifeline from, Lifeline to, const QString &text,
               Arrow kind = Arrow::Call)
{
    QPainter &painter = canvas.painter();
    const QColor colour(kind == Arrow::Signal ? colours::accent : colours::ink);
    const double direction = to > from ? 1 : -1;
    const QPointF start(lifelines[from], y);
    const QPointF tip(lifelines[to], y);
    const QPointF back(-9 * direction, 0);
    const QPointF half(0, 5);

    painter.setPen(QPen(colour, 1.5, kind == Arrow::Signal ? Qt::DashLine : Qt::SolidLine));
    painter.drawLine(start, tip);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPolygon(QPolygonF({tip, tip + back + half, tip + back - half}));

    painter.setPen(colour);
    painter.setFont(pictureFont(textSize));
    const QRectF place(std::min(start.x(), tip.x()), y - 20, 270, 18);
    painter.drawText(place, Qt::AlignCenter, text);
}

// Draws what the item, the tracker or the application does by itself.
void drawAct(Canvas &canvas, double y, Lifeline line, const QString &text)
{
    QPainter &painter = canvas.painter();
    painter.setFont(pictureFont(textSize));
    const QRectF box(lifelines[line] - 100, y - 13, 200, 26);
    painter.setPen(QPen(QColor(colours::faint), 1));
    painter.setBrush(QColor(colours::background));
    painter.drawRect(box);
    painter.setPen(QColor(colours::ink));
    painter.drawText(box, Qt::AlignCenter, text);
}

} // namespace

void drawResourceRoad(Canvas &canvas)
{
    drawLifelines(canvas);

    double y = 82;
    const auto next = [&y] { return std::exchange(y, y + 37); };

    drawArrow(canvas, next(), Item, Tracker, "registerImage(1, url)");
    drawAct(canvas, next(), Tracker, "creation requested");
    drawArrow(canvas, next(), Tracker, Application, "resourceOwnerAdded()", Arrow::Signal);
    drawArrow(canvas, next(), Tracker, Application, "resourcesChanged()", Arrow::Signal);
    drawAct(canvas, next(), Application, "decides");
    drawArrow(canvas, next(), Application, Tracker, "setStatus(state, CreationAllowed)");
    drawArrow(canvas, next(), Application, Tracker, "allowResources(state)");
    drawArrow(canvas, next(), Tracker, Item, "allowResources()");
    drawAct(canvas, next(), Item, "creates its image");
    drawArrow(canvas, next(), Item, Tracker, "unregisterResource(1)");
    drawArrow(canvas, next(), Tracker, Application, "resourceOwnerRemoved()", Arrow::Signal);
    drawAct(canvas, next(), Tracker, "the entry leaves the list");
    drawArrow(canvas, next(), Tracker, Application, "resourcesChanged()", Arrow::Signal);
}
