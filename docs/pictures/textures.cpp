#include "pictures.h"

#include <ovelin/brushes.h>

#include <QLinearGradient>

namespace {

QLinearGradient gradientTo(const QPointF &end)
{
    QLinearGradient gradient(QPointF(0, 0), end);
    gradient.setColorAt(0, QColor("#1d5a8c"));
    gradient.setColorAt(1, QColor("#ffb454"));
    return gradient;
}

// A brush tiles from the painter's origin.
void fillPanel(Canvas &canvas, const QRect &panel, const QBrush &brush, const QString &label)
{
    canvas.label(panel.topLeft() - QPoint(0, 8), label);
    QPainter &painter = canvas.painter();
    painter.save();
    painter.translate(panel.topLeft());
    painter.fillRect(QRect(QPoint(), panel.size()), brush);
    painter.restore();
}

} // namespace

void drawTextures(Canvas &canvas)
{
    constexpr int wide = 720;
    constexpr int narrow = 8;
    constexpr int high = 72;
    const int length = ovelin::chooseGradientLength(wide);
    const QBrush across = ovelin::createTexturedBrush(length, gradientTo({double(length), 0}));
    const QBrush down = ovelin::createTexturedBrush({narrow, high}, gradientTo({0, double(high)}));

    fillPanel(canvas, {20, 40, length, length}, across, QString("%1 x %1 pixels").arg(length));
    fillPanel(canvas, {180, 40, narrow, high}, down,
              QString("%1 x %2 pixels").arg(narrow).arg(high));
    fillPanel(canvas, {340, 40, 400, high}, down, "the second one fills a panel");
    fillPanel(canvas, {20, 160, wide, high}, across,
              QString("the first one fills a panel of %1 pixels: ten tiles").arg(wide));
}
