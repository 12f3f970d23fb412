#include "pictures.h"

#include <ovelin/textrenderer.h>

namespace {

constexpr int fontSize = 18;
constexpr int margin = 20;
constexpr int boxTop = 44;
constexpr int labelBaseline = 30;

QString description()
{
    return "Путешествие на воздушном шаре: четыре исследователя поднимаются над тайгой, чтобы "
           "увидеть месторождения, до которых нет дорог.";
}

// The frame shows the box, which is as high as the text unless a height is given.
void drawLaidOut(Canvas &canvas, const QString &label, ovelin::TextRenderer &text, int height = 0)
{
    text.relayout();
    QRect box = text.geometry();
    if (height > 0)
        box.setHeight(height);
    canvas.label({double(box.left()), double(labelBaseline)}, label);
    canvas.frame(box);
    text.draw(canvas.painter());
}

ovelin::TextRenderer textInColumn(int index, int columns)
{
    constexpr int pictureWidth = 760;
    const int column = (pictureWidth - margin) / columns;
    ovelin::TextRenderer text;
    text.setTextFont(pictureFont(fontSize));
    text.setTextTopLeft({margin + index * column, boxTop});
    text.setTextWidth(column - margin);
    text.setText(description());
    return text;
}

} // namespace

void drawLineLimits(Canvas &canvas)
{
    constexpr int limits[] = {1, 2, 4};
    for (int i = 0; i < 3; ++i) {
        ovelin::TextRenderer text = textInColumn(i, 3);
        text.setMaxLineCount(limits[i]);
        drawLaidOut(canvas, QString("setMaxLineCount(%1)").arg(limits[i]), text);
    }
}

void drawHyphenation(Canvas &canvas)
{
    constexpr int enough = 9;
    for (const bool enabled : {true, false}) {
        ovelin::TextRenderer text = textInColumn(enabled ? 0 : 1, 2);
        text.setMaxLineCount(enough);
        text.setHyphenationEnabled(enabled);
        drawLaidOut(canvas, QString("setHyphenationEnabled(%1)").arg(enabled ? "true" : "false"),
                    text);
    }
}

void drawAlignments(Canvas &canvas)
{
    struct Sample
    {
        const char *label;
        Qt::Alignment alignment;
    };
    const Sample samples[] = {
        {"AlignLeft", Qt::AlignLeft},
        {"AlignHCenter | AlignVCenter", Qt::AlignHCenter | Qt::AlignVCenter},
        {"AlignRight | AlignBottom", Qt::AlignRight | Qt::AlignBottom},
    };
    constexpr int height = 140;
    for (int i = 0; i < 3; ++i) {
        ovelin::TextRenderer text = textInColumn(i, 3);
        text.setMaxLineCount(2);
        text.setTextAlignment(samples[i].alignment);
        text.setAvailableHeight(height);
        drawLaidOut(canvas, samples[i].label, text, height);
    }
}

void drawGeometry(Canvas &canvas)
{
    constexpr int padding = 8;
    const QRect box(20, 50, 430, 190);
    ovelin::TextRenderer text;
    text.setTextFont(pictureFont(fontSize));
    text.setTextTopLeft(box.topLeft());
    text.setTextWidth(box.width());
    text.setAvailableHeight(box.height() - 2 * padding);
    text.setTextAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    text.setMaxLineCount(2);
    text.setText("Путешествие на шаре");
    text.relayout();

    struct Shape
    {
        QRect rect;
        QColor colour;
        Qt::PenStyle line;
        const char *name;
        const char *meaning;
    };
    QRect withMargins({}, text.boundingSize({padding, padding, padding, padding}));
    withMargins.moveCenter(text.boundingRect().center());
    const Shape shapes[] = {
        {{box.topLeft(), QSize(box.width(), box.height() - 2 * padding)},
         QColor(colours::faint),
         Qt::DashLine,
         "the box",
         "textTopLeft(), textWidth(), setAvailableHeight()"},
        {text.geometry(), QColor("#63c28b"), Qt::SolidLine, "geometry()",
         "textTopLeft(), textWidth(), height of the text"},
        {text.boundingRect(), QColor(colours::accent), Qt::SolidLine, "boundingRect()",
         "alignedTextTopLeft(), size of the text"},
        {withMargins, QColor("#7fb6ee"), Qt::DotLine, "boundingSize({8, 8, 8, 8})",
         "size of the text with margins"},
    };

    QPainter &painter = canvas.painter();
    text.draw(painter);
    painter.setBrush(Qt::NoBrush);
    int legendTop = box.top() + 2;
    for (const Shape &shape : shapes) {
        painter.setPen(QPen(shape.colour, 1.5, shape.line));
        painter.drawRect(shape.rect);
        painter.setFont(pictureFont(14));
        painter.drawLine(474, legendTop + 6, 494, legendTop + 6);
        painter.drawText(502, legendTop + 11, shape.name);
        canvas.label(QPointF(502, legendTop + 30), shape.meaning);
        legendTop += 48;
    }
}
