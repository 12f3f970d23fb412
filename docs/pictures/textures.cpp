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

// A brush tiles from the painter's origin, which is moved to the panel.
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
    constexpr int left = 20;
    constexpr int wide = 720;
    constexpr int thin = 8;
    constexpr int high = 72;
    const int length = ovelin::chooseGradientLength(wide);
    const QBrush once = ovelin::createTexturedBrush({wide, thin}, gradientTo({wide, 0}));
    const QBrush repeated = ovelin::createTexturedBrush(length, gradientTo({double(length), 0}));

    fillPanel(canvas, {left, 32, wide, thin}, once, "a texture of 720 x 8 pixels");
    fillPanel(canvas, {left, 76, wide, high}, once, "fills a panel of 720 x 72 pixels once");
    fillPanel(canvas, {left, 196, length, length}, repeated,
              QString("a texture of %1 x %1 pixels").arg(length));
    fillPanel(canvas, {left, 304, wide, high}, repeated, "fills the panel with ten tiles");
}
