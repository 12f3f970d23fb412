#include "subsystems.h"

#include "support/canvas.h"
#include "support/comparison.h"

#include <ovelin/brushes.h>

#include <QBrush>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

#include <functional>
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

// A gradient that repeats as the texture does.
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

// The ways to fill an area with a gradient that covers the area once.
struct Backdrop
{
    Qt::Orientation direction;
    QSize size;
    QImage::Format format;

    QLinearGradient gradient() const
    {
        const bool isDown = direction == Qt::Vertical;
        QLinearGradient gradient(0, 0, isDown ? 0 : size.width(), isDown ? size.height() : 0);
        gradient.setColorAt(0, Qt::black);
        gradient.setColorAt(1, Qt::darkBlue);
        return gradient;
    }

    // The texture is as long as the gradient; `thickness` is its other side, in pixels.
    QBrush texture(int thickness) const
    {
        const QSize texture = direction == Qt::Vertical ? QSize(thickness, size.height())
                                                        : QSize(size.width(), thickness);
        return createTexturedBrush(texture, gradient());
    }

    std::function<void()> paint(const std::function<void(QPainter &, const QRect &)> &action) const
    {
        return [action, canvas = std::make_shared<Canvas>(size, format)] {
            action(canvas->painter, canvas->image.rect());
        };
    }

    std::function<void()> fill(const QBrush &brush) const
    {
        return paint(
            [brush](QPainter &painter, const QRect &area) { painter.fillRect(area, brush); });
    }

    // The kept picture has the canvas's format, as the pixmaps of a window system have the screen's format.
    std::function<void()> copyKept() const
    {
        QImage kept(size, format);
        QPainter(&kept).fillRect(kept.rect(), gradient());
        return paint([kept](QPainter &painter, const QRect &) { painter.drawImage(0, 0, kept); });
    }

    Comparison comparison() const
    {
        constexpr int thin = 8;
        const int full = direction == Qt::Vertical ? size.width() : size.height();
        Comparison comparison{
            fill(texture(thin)),
            {{"the gradient itself", fill(gradient())}, {"a kept picture", copyKept()}}};
        for (const int thickness : {2 * thin, 8 * thin, full}) {
            comparison.contenders.push_back(
                {"a texture " + std::to_string(thickness) + " px thick", fill(texture(thickness))});
        }
        return comparison;
    }
};

std::string name(const QSize &size)
{
    return std::to_string(size.width()) + " x " + std::to_string(size.height());
}

struct NamedFormat
{
    const char *name;
    QImage::Format format;
};

constexpr NamedFormat formats[] = {
    {"RGB32", QImage::Format_RGB32},
    {"RGB16", QImage::Format_RGB16},
    {"ARGB32_Premultiplied", QImage::Format_ARGB32_Premultiplied},
};

} // namespace

void registerGraphics()
{
    for (const QSize &size : {QSize(1280, 720), QSize(300, 60)})
        compare("textured brush: filling " + name(size), [=] { return compareFill(size); });

    for (const Qt::Orientation direction : {Qt::Vertical, Qt::Horizontal}) {
        for (const QSize &size : {QSize(900, 180), QSize(1280, 720)}) {
            for (const NamedFormat &format : formats) {
                const Backdrop backdrop{direction, size, format.format};
                compare("texture 8 px thick: "
                            + std::string(direction == Qt::Vertical ? "down " : "across ")
                            + name(size) + ", " + format.name,
                        [=] { return backdrop.comparison(); });
            }
        }
    }
}

} // namespace ovelin::benchmarks
