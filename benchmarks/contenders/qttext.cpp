#include "contenders/qttext.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QTextOption>
#include <QTransform>

#include <algorithm>

namespace ovelin::benchmarks {

namespace {

// Returns the width of the renderer's QStaticText: the width of the box if the text was elided, otherwise the
// smaller of the widths of the box and the text.
int staticTextWidth(const TextRenderer &renderer)
{
    if (renderer.isTextElided())
        return renderer.textWidth();
    const int fineWidth =
        TextRenderer::fineTextWidth(renderer.text(), QFontMetricsF(renderer.textFont()));
    return std::min(renderer.textWidth(), fineWidth);
}

} // namespace

StaticTextOf::StaticTextOf(const TextRenderer &renderer)
    : m_font(renderer.textFont())
    , m_text(renderer.displayText().replace(u'\n', QChar(QChar::LineSeparator)))
    , m_width(staticTextWidth(renderer))
{
    m_staticText.setTextFormat(renderer.textFormat());
    m_staticText.setPerformanceHint(QStaticText::AggressiveCaching);
    m_staticText.setTextOption(QTextOption(renderer.textAlignment()));
}

void StaticTextOf::prepare()
{
    m_staticText.setTextWidth(m_width);
    m_staticText.setText(m_text);
    m_staticText.prepare(QTransform(), m_font);
}

LineLoop::LineLoop(const QFont &font, int width, int maxLineCount)
    : m_font(font)
    , m_width(width)
    , m_maxLineCount(maxLineCount)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_layout.setTextOption(option);
    m_layout.setFont(font);
    m_layout.setCacheEnabled(true);
    m_lastLine.setFont(font);
    m_lastLine.setCacheEnabled(true);
}

void LineLoop::layOut(const QString &text)
{
    m_lastLine.setText({});
    m_layout.setText(text);
    m_layout.beginLayout();
    qreal y = 0;
    for (int i = 0; i < m_maxLineCount; ++i) {
        QTextLine line = m_layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(m_width);
        line.setPosition({0, y});
        const bool isLastAllowed = i == m_maxLineCount - 1;
        if (isLastAllowed && line.textStart() + line.textLength() < text.size())
            layOutLastLine(text.mid(line.textStart()), y);
        y += line.height();
    }
    m_layout.endLayout();
}

void LineLoop::layOutLastLine(const QString &rest, qreal y)
{
    m_lastLine.setText(QFontMetricsF(m_font).elidedText(rest, Qt::ElideRight, m_width));
    m_lastLine.beginLayout();
    QTextLine line = m_lastLine.createLine();
    line.setLineWidth(m_width);
    line.setPosition({0, y});
    m_lastLine.endLayout();
}

void LineLoop::draw(QPainter &painter, const QPointF &place)
{
    const bool isElided = m_lastLine.lineCount() > 0;
    const int wholeLines = m_layout.lineCount() - (isElided ? 1 : 0);
    for (int i = 0; i < wholeLines; ++i)
        m_layout.lineAt(i).draw(&painter, place);
    if (isElided)
        m_lastLine.lineAt(0).draw(&painter, place);
}

Document::Document(const QFont &font, int width)
{
    m_document.setUndoRedoEnabled(false);
    m_document.setDefaultFont(font);
    m_document.setDocumentMargin(0);
    m_document.setTextWidth(width);
}

void Document::layOut(const QString &text)
{
    m_document.setPlainText(text);
    // The function lays the text out before it returns the size.
    static_cast<void>(m_document.documentLayout()->documentSize());
}

void Document::draw(QPainter &painter, const QPointF &place)
{
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, painter.pen().color());
    painter.translate(place);
    m_document.documentLayout()->draw(&painter, context);
    painter.translate(-place);
}

} // namespace ovelin::benchmarks
