#include "canvas.h"

namespace {

constexpr int labelSize = 13;

} // namespace

QFont pictureFont(int pixelSize)
{
    QFont font("DejaVu Sans");
    font.setPixelSize(pixelSize);
    return font;
}

Canvas::Canvas(const QSize &size, int resolution)
    : m_image(size * resolution, QImage::Format_RGB32)
{
    m_image.fill(colours::background);
    m_painter.begin(&m_image);
    m_painter.scale(resolution, resolution);
    m_painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    m_painter.setPen(QColor(colours::ink));
}

void Canvas::label(const QPointF &baseline, const QString &text)
{
    m_painter.save();
    m_painter.setFont(pictureFont(labelSize));
    m_painter.setPen(QColor(colours::faint));
    m_painter.drawText(baseline, text);
    m_painter.restore();
}

void Canvas::frame(const QRectF &rect)
{
    m_painter.save();
    m_painter.setPen(QPen(QColor(colours::faint), 1, Qt::DashLine));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRect(rect);
    m_painter.restore();
}

bool Canvas::save(const QString &file)
{
    m_painter.end();
    return m_image.save(file);
}
