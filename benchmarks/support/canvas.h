#ifndef OVELIN_BENCHMARKS_CANVAS_H
#define OVELIN_BENCHMARKS_CANVAS_H

#include <QImage>
#include <QPainter>
#include <QSize>

namespace ovelin::benchmarks {

// An image, by default in the format of a raster window, and a painter on it.
struct Canvas
{
    explicit Canvas(const QSize &size, QImage::Format format = QImage::Format_ARGB32_Premultiplied)
        : image(size, format)
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
