#ifndef RECIPES_TICKER_H
#define RECIPES_TICKER_H

#include <ovelin/textrenderer.h>

#include <QFont>
#include <QPainter>

namespace recipes {

//! [ticker]
class Ticker
{
public:
    Ticker(const QString &text, const QFont &font, const QRect &area)
        : m_area(area)
    {
        m_text.setTextFont(font);
        m_text.setTextFormat(Qt::PlainText);
        m_text.setTextTopLeft({area.right() + 1, area.y()});
        m_text.setText(text.simplified()); // without newlines and without width: one long line
        m_text.relayout();
    }

    // Call this from a timer, and repaint the area.
    void advance(int pixels)
    {
        QPoint place = m_text.textTopLeft() - QPoint(pixels, 0);
        if (place.x() + m_text.boundingRect().width() <= m_area.x())
            place.setX(m_area.right() + 1); // the whole text was seen: begin at the right again
        m_text.move(place);                 // needs no new layout
    }

    void paint(QPainter &painter) const
    {
        painter.save();
        painter.setClipRect(m_area);
        painter.setPen(Qt::white);
        m_text.draw(painter);
        painter.restore();
    }

private:
    const QRect m_area;
    ovelin::TextRenderer m_text;
};
//! [ticker]

} // namespace recipes

#endif
