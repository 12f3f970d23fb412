#ifndef PICTURES_CANVAS_H
#define PICTURES_CANVAS_H

#include <QImage>
#include <QPainter>
#include <QString>

// A picture of the documentation while it is drawn: so many times as fine as it is shown.
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

// The font of that size in pixels that all pictures are written in.
QFont pictureFont(int pixelSize);

#endif
