#ifndef OVELIN_BENCHMARKS_CANVAS_H
#define OVELIN_BENCHMARKS_CANVAS_H

#include <QImage>
#include <QPainter>
#include <QSize>

namespace ovelin::benchmarks {

// An image in the format of a raster window, and a painter on it.
struct Canvas
{
    explicit Canvas(const QSize &size)
        : image(size, QImage::Format_ARGB32_Premultiplied)
    {
        image.fill(Qt::black);
        painter.begin(&image);
        painter.setPen(Qt::white);
    }

    QImage image;
    QPainter painter;
};

} // namespace ovelin::benchmarks

#endif
