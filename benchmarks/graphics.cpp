#include "subsystems.h"

#include "support/canvas.h"
#include "support/comparison.h"

#include <ovelin/brushes.h>

#include <QBrush>
#include <QLinearGradient>
#include <QPainter>

#include <memory>
#include <string>

namespace ovelin::benchmarks {

namespace {

QLinearGradient makeGradient(int length)
{
    QLinearGradient gradient(0, 0, length, 0);
    gradient.setColorAt(0, Qt::black);
    gradient.setColorAt(1, Qt::darkBlue);
    return gradient;
}

// Repeats itself as the texture does.
QBrush gradientBrush(int length)
{
    QLinearGradient gradient = makeGradient(length);
    gradient.setSpread(QGradient::RepeatSpread);
    return gradient;
}

std::function<void()> fill(const QSize &size, const QBrush &brush)
{
    return [brush, canvas = std::make_shared<Canvas>(size)] {
        canvas->painter.fillRect(canvas->image.rect(), brush);
    };
}

Comparison compareFill(const QSize &size)
{
    const int length = chooseGradientLength(size.width());
    return {fill(size, createTexturedBrush(length, makeGradient(length))),
            {{"the gradient itself", fill(size, gradientBrush(length))},
             {"a colour", fill(size, Qt::darkBlue)}}};
}

} // namespace

void registerGraphics()
{
    for (const QSize &size : {QSize(1280, 720), QSize(300, 60)}) {
        compare("textured brush: filling " + std::to_string(size.width()) + " x "
                    + std::to_string(size.height()),
                [=] { return compareFill(size); });
    }
}

} // namespace ovelin::benchmarks
