#ifndef PICTURES_CANVAS_H
#define PICTURES_CANVAS_H

#include <QImage>
#include <QPainter>
#include <QString>

// A picture of the documentation while it is drawn. One unit of its size and painter is `resolution` pixels.
class Canvas
{
public:
    Canvas(const QSize &size, int resolution);

    QPainter &painter() { return m_painter; }

    void label(const QPointF &baseline, const QString &text);
    void frame(const QRectF &rect);

    bool save(const QString &file);

private:
    QImage m_image;
    QPainter m_painter;
};

namespace colours {

inline constexpr QRgb background = 0xff10243a;
inline constexpr QRgb ink = 0xfff4f7fa;
inline constexpr QRgb faint = 0xff8fa6bd;
inline constexpr QRgb accent = 0xffffb454;

} // namespace colours

// Returns the font of all pictures, in this size in pixels.
QFont pictureFont(int pixelSize);

#endif
