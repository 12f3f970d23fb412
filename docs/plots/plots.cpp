#include "plots.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <ranges>

namespace {

constexpr int titleSize = 18;
constexpr int textSize = 14;

// Colours that readers who see no red or no green can tell apart, too.
struct Style
{
    const char *name;
    QRgb colour;
};

constexpr Style styles[contenderCount] = {
    {"ovelin", colours::accent},      {"floor: QStaticText alone", colours::ink},
    {"QTextLayout loop", 0xff56b4e9}, {"Pango", 0xff2fbf9a},
    {"QTextDocument", 0xffe08fc0},
};

template<typename Predicate>
QList<Measurement> select(const Measured &measured, const QString &what, Predicate isWanted)
{
    QList<Measurement> rows;
    std::ranges::copy_if(measured.rows, std::back_inserter(rows), isWanted);
    if (rows.isEmpty())
        throw DataError("no times of " + what);
    return rows;
}

QString timeText(double nanoseconds)
{
    constexpr double perMicrosecond = 1e3;
    constexpr double perMillisecond = 1e6;
    return nanoseconds < perMillisecond
               ? QString("%1 µs").arg(nanoseconds / perMicrosecond, 0, 'g', 3)
               : QString("%1 ms").arg(nanoseconds / perMillisecond, 0, 'g', 3);
}

void drawText(Canvas &canvas, const QRectF &rect, int flags, const QString &text,
              QRgb colour = colours::ink, int pixelSize = textSize)
{
    QPainter &painter = canvas.painter();
    painter.setFont(pictureFont(pixelSize));
    painter.setPen(QColor(colour));
    painter.drawText(rect, flags, text);
}

void drawHead(Canvas &canvas, const QSize &size, const QString &title, const Measured &measured)
{
    constexpr double margin = 20;
    constexpr int originSize = 12;
    const QRectF area = QRectF({}, size).adjusted(margin, margin, -margin, -margin / 2);
    drawText(canvas, area, Qt::AlignLeft | Qt::AlignTop, title, colours::ink, titleSize);
    drawText(canvas, area, Qt::AlignLeft | Qt::AlignBottom, measured.origin, colours::faint,
             originSize);
}

// Where a value lies on a logarithmic axis.
struct LogAxis
{
    double firstValue;
    double lastValue;
    double firstPixel;
    double lastPixel;

    double at(double value) const
    {
        const double part = std::log(value / firstValue) / std::log(lastValue / firstValue);
        return std::lerp(firstPixel, lastPixel, part);
    }
};

constexpr QSize growthSize(900, 520);

void drawGrowth(Canvas &canvas, const Measured &measured)
{
    const QString box = "4 lines of 400 px";
    const QList<Measurement> rows =
        select(measured, "Russian texts in " + box,
               [&box](const Measurement &row) { return row.text == "Russian" && row.box == box; });
    drawHead(canvas, growthSize, "Layout of a Russian text in " + box, measured);

    const QRectF area(90, 80, 620, 340);
    double least = rows.first().nanoseconds[Floor];
    double most = least;
    for (const Measurement &row : rows) {
        least = std::min(least, std::ranges::min(row.nanoseconds));
        most = std::max(most, std::ranges::max(row.nanoseconds));
    }
    const LogAxis x{double(rows.first().wordCount), double(rows.last().wordCount), area.left(),
                    area.right()};
    const int firstDecade = int(std::floor(std::log10(least)));
    const int lastDecade = int(std::ceil(std::log10(most)));
    const LogAxis y{std::pow(10, firstDecade), std::pow(10, lastDecade), area.bottom(), area.top()};

    QPainter &painter = canvas.painter();
    const QPen gridLine(QColor(colours::faint).darker(200), 1);
    for (const Measurement &row : rows) {
        const double place = x.at(row.wordCount);
        painter.setPen(gridLine);
        painter.drawLine(QPointF(place, area.top()), QPointF(place, area.bottom()));
        drawText(canvas, {place - 50, area.bottom() + 8, 100, 20}, Qt::AlignHCenter,
                 QLocale::c().toString(row.wordCount), colours::faint);
    }
    for (int decade = firstDecade; decade <= lastDecade; ++decade) {
        const double time = std::pow(10, decade);
        const double place = y.at(time);
        painter.setPen(gridLine);
        painter.drawLine(QPointF(area.left(), place), QPointF(area.right(), place));
        drawText(canvas, {0, place - 10, area.left() - 10, 20}, Qt::AlignRight | Qt::AlignVCenter,
                 timeText(time), colours::faint);
    }
    drawText(canvas, {area.left(), area.bottom() + 32, area.width(), 20}, Qt::AlignHCenter,
             "words in the text (logarithmic)");
    drawText(canvas, {20, area.top() - 28, 300, 20}, Qt::AlignLeft,
             "time of one layout (logarithmic)");

    // The lines are named from the top down: a name that would cover the previous one moves down.
    QList<Contender> order{Ovelin, Floor, LineLoop, Pango, Document};
    std::ranges::sort(order, std::ranges::greater(),
                      [&rows](Contender contender) { return rows.last().nanoseconds[contender]; });
    constexpr double nameHeight = 18;
    double nameTop = area.top() - nameHeight;
    for (const Contender contender : std::as_const(order)) {
        const Style &style = styles[contender];
        QPolygonF line;
        for (const Measurement &row : rows)
            line.append({x.at(row.wordCount), y.at(row.nanoseconds[contender])});
        painter.setPen(QPen(QColor(style.colour), contender == Ovelin ? 4 : 2));
        painter.drawPolyline(line);
        painter.setBrush(QColor(style.colour));
        for (const QPointF &point : std::as_const(line))
            painter.drawEllipse(point, 3, 3);
        nameTop = std::max(nameTop + nameHeight, line.last().y() - nameHeight / 2);
        drawText(canvas, {area.right() + 12, nameTop, 180, nameHeight},
                 Qt::AlignLeft | Qt::AlignVCenter, style.name, style.colour);
    }
}

void drawBar(Canvas &canvas, const QRectF &bar, QRgb colour, const QString &value)
{
    constexpr QSizeF valueSize(80, 20);
    canvas.painter().fillRect(bar, QColor(colour));
    QRectF place({bar.right() + 6, 0}, valueSize);
    place.moveCenter({place.center().x(), bar.center().y()});
    drawText(canvas, place, Qt::AlignLeft | Qt::AlignVCenter, value);
}

constexpr QSize ratioSize(900, 460);

double ratioToFloor(const Measurement &row)
{
    return row.nanoseconds[Ovelin] / row.nanoseconds[Floor];
}

QStringList distinct(const QList<Measurement> &rows, QString Measurement::*member)
{
    QStringList values;
    for (const Measurement &row : rows)
        values.append(row.*member);
    values.removeDuplicates();
    return values;
}

// A column of bars for each box, with a row for each kind of text.
void drawRatios(Canvas &canvas, const Measured &measured)
{
    constexpr int wordCount = 200;
    const QList<Measurement> rows =
        select(measured, "texts of 200 words",
               [](const Measurement &row) { return row.wordCount == wordCount; });
    const QStringList texts = distinct(rows, &Measurement::text);
    const QStringList boxes = distinct(rows, &Measurement::box);
    constexpr double left = 240;
    drawHead(canvas, ratioSize, "Layout of 200 words: time as a multiple of the floor", measured);
    drawText(canvas, {0, 56, left - 12, 40}, Qt::AlignRight | Qt::AlignBottom,
             "the mark in a bar: the floor, 1.0", colours::faint, 12);

    constexpr double top = 112;
    const double column = (ratioSize.width() - left) / double(boxes.size());
    const double line = (ratioSize.height() - top - 44) / double(texts.size());
    constexpr double valueWidth = 46;
    const double largest = std::ranges::max(rows | std::views::transform(ratioToFloor));
    const double unit = (column - valueWidth) / largest;

    for (qsizetype i = 0; i < texts.size(); ++i) {
        drawText(canvas, {0, top + double(i) * line, left - 12, line},
                 Qt::AlignRight | Qt::AlignVCenter, texts[i]);
    }
    for (const Measurement &row : rows) {
        const QPointF place(left + double(boxes.indexOf(row.box)) * column,
                            top + double(texts.indexOf(row.text)) * line);
        const double ratio = ratioToFloor(row);
        drawBar(canvas, {place + QPointF(0, 6), QSizeF(ratio * unit, line - 12)}, colours::accent,
                QString::number(ratio, 'f', 1));
    }
    QPainter &painter = canvas.painter();
    for (qsizetype i = 0; i < boxes.size(); ++i) {
        const double start = left + double(i) * column;
        drawText(canvas, {start, 56, column - 10, 40}, Qt::AlignBottom | Qt::TextWordWrap,
                 QString(boxes[i]).replace(" px", "\u00a0px"));
        const double floor = start + unit;
        painter.setPen(QPen(QColor(colours::background), 1.5));
        painter.drawLine(QPointF(floor, top), QPointF(floor, ratioSize.height() - 44));
    }
}

constexpr QSize screenfulSize(900, 460);

void drawScreenful(Canvas &canvas, const Measured &measured)
{
    drawHead(canvas, screenfulSize,
             "The 25 texts of a programme guide: time to lay them out, and to paint them",
             measured);
    const QList<Measurement> rows = select(measured, "a screenful", [](const Measurement &row) {
        return row.box.startsWith("a screenful ");
    });

    constexpr double left = 220;
    constexpr double line = 28;
    double most = 0;
    for (const Measurement &row : rows)
        most = std::max(most, std::ranges::max(row.nanoseconds));
    const double unit = 560 / most;

    double y = 64;
    for (const Measurement &row : rows) {
        drawText(canvas, {left, y, 600, line}, Qt::AlignLeft | Qt::AlignVCenter, row.box);
        y += line;
        for (const Contender contender : {Floor, Ovelin, LineLoop, Pango, Document}) {
            const Style &style = styles[contender];
            const double time = row.nanoseconds[contender];
            drawText(canvas, {0, y, left - 12, line}, Qt::AlignRight | Qt::AlignVCenter, style.name,
                     style.colour);
            drawBar(canvas, {left, y + 4, time * unit, line - 8}, style.colour, timeText(time));
            y += line;
        }
        y += 12;
    }
}

} // namespace

QList<Plot> allPlots()
{
    return {
        {"speed-growth", growthSize, drawGrowth},
        {"speed-ratios", ratioSize, drawRatios},
        {"speed-screenful", screenfulSize, drawScreenful},
    };
}
