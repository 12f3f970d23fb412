#include "textblock.h"

#include "theme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace tvguide {

void TextBlock::show(const QString &text, const TextStyle &style, const QRect &box)
{
    m_renderer.setText(text);
    setStyle(style);
    place(box);
}

void TextBlock::setStyle(const TextStyle &style)
{
    m_renderer.setTextFormat(Qt::PlainText);
    m_renderer.setTextFont(theme::font(style.pixelSize, style.weight));
    m_renderer.setTextAlignment(style.alignment);
    m_color = style.color;
    m_maxLines = style.maxLines;
}

void TextBlock::place(const QRect &box)
{
    m_box = box;
    const QFontMetrics metrics(m_renderer.textFont());
    const int lines = std::min(m_maxLines, box.height() / metrics.lineSpacing());
    m_isShown = lines > 0 && box.width() > m_renderer.textFont().pixelSize();
    if (!m_isShown)
        return;

    m_renderer.setMaxLineCount(lines);
    m_renderer.setAvailableHeight(box.height());
    if (m_renderer.textWidth() != box.width())
        m_renderer.setTextWidth(box.width());
    m_renderer.move(box.topLeft());
    m_renderer.relayout();
}

void TextBlock::draw(QPainter &painter) const
{
    if (!m_isShown)
        return;
    painter.setPen(m_color);
    m_renderer.draw(painter);
}

int TextBlock::height() const
{
    return m_isShown && !text().isEmpty() ? m_renderer.boundingSize().height() : 0;
}

// The text of the renderer does not contain the line breaks that Qt makes at spaces. A QTextLayout
// of the same width makes the same ones.
QStringList TextBlock::displayedLines() const
{
    QStringList lines;
    if (!m_isShown)
        return lines;

    QString text = m_renderer.displayText();
    text.replace(u'\n', QChar::LineSeparator);
    QTextLayout layout(text, m_renderer.textFont());
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(m_renderer.textWidth());
        QString shown = text.mid(line.textStart(), line.textLength());
        shown.remove(QChar::LineSeparator);
        lines += shown.trimmed();
    }
    layout.endLayout();
    return lines;
}

} // namespace tvguide
