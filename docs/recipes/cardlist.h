#ifndef RECIPES_CARDLIST_H
#define RECIPES_CARDLIST_H

#include <ovelin/textrenderer.h>

#include <QFont>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <vector>

namespace recipes {

//! [card]
inline constexpr QSize cardSize(200, 90);
inline constexpr int padding = 12;

class Card
{
public:
    Card(const QString &title, const QFont &font)
    {
        m_background.setColorAt(0, QColor("#2a5078"));
        m_background.setColorAt(1, QColor("#1a3350"));
        m_title.setTextFont(font); // must have a size in pixels
        m_title.setTextFormat(Qt::PlainText);
        m_title.setTextTopLeft({padding, padding});
        m_title.setTextWidth(cardSize.width() - 2 * padding);
        m_title.setMaxLineCount(2);
        m_title.setText(title.simplified()); // without newlines
        m_title.relayout();
    }

    // Paints the card at the painter's origin.
    void paint(QPainter &painter) const
    {
        painter.fillRect(QRect(QPoint(), cardSize), m_background);
        painter.setPen(Qt::white);
        m_title.draw(painter);
    }

private:
    QLinearGradient m_background{0, 0, 0, double(cardSize.height())};
    ovelin::TextRenderer m_title;
};
//! [card]

//! [list]
class CardList
{
public:
    CardList(const QStringList &titles, const QFont &font)
    {
        for (const QString &title : titles)
            m_cards.emplace_back(title, font);
    }

    // The offset is the number of pixels by which the list is scrolled to the left.
    void scrollTo(int offset) { m_offset = std::max(0, offset); }

    // Paints the visible cards of the area.
    void paint(QPainter &painter, const QRect &area) const
    {
        const int step = cardSize.width() + padding;
        const int first = m_offset / step;
        const int end = std::min(int(m_cards.size()), (m_offset + area.width()) / step + 1);

        painter.save();
        painter.setClipRect(area);
        painter.translate(area.x() - m_offset + first * step, area.y());
        for (int i = first; i < end; ++i) {
            m_cards[std::size_t(i)].paint(painter);
            painter.translate(step, 0);
        }
        painter.restore();
    }

private:
    std::vector<Card> m_cards;
    int m_offset = 0;
};
//! [list]

} // namespace recipes

#endif
