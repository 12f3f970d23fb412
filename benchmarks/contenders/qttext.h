#ifndef OVELIN_BENCHMARKS_QTTEXT_H
#define OVELIN_BENCHMARKS_QTTEXT_H

#include <ovelin/textrenderer.h>

#include <QFont>
#include <QPainter>
#include <QPointF>
#include <QStaticText>
#include <QString>
#include <QTextDocument>
#include <QTextLayout>

namespace ovelin::benchmarks {

// The floor of docs/performance.md: Qt prepares the text that a renderer shows. Qt wraps this text at spaces;
// the renderer's search for line breaks, hyphens and the ellipsis is left out.
class StaticTextOf
{
public:
    explicit StaticTextOf(const TextRenderer &renderer);

    void prepare();
    const QStaticText &staticText() const { return m_staticText; }

private:
    QFont m_font;
    QString m_text;
    int m_width;
    QStaticText m_staticText;
};

// Breaks a text as applications without a renderer do: a QTextLayout creates the lines, and another one
// creates the elided last line.
class LineLoop
{
public:
    LineLoop(const QFont &font, int width, int maxLineCount);

    void layOut(const QString &text);
    void draw(QPainter &painter, const QPointF &place);

private:
    void layOutLastLine(const QString &rest, qreal y);

    QFont m_font;
    int m_width;
    int m_maxLineCount;
    QTextLayout m_layout;
    QTextLayout m_lastLine;
};

// QTextDocument, which has no line limit.
class Document
{
public:
    Document(const QFont &font, int width);

    void layOut(const QString &text);
    void draw(QPainter &painter, const QPointF &place);

private:
    QTextDocument m_document;
};

} // namespace ovelin::benchmarks

#endif
