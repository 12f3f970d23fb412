#ifndef RECIPES_FOCUSEDCARD_H
#define RECIPES_FOCUSEDCARD_H

#include "cardlist.h"

#include <QPixmap>

namespace recipes {

//! [focus]
class FocusedCard
{
public:
    static constexpr double largestZoom = 1.2;

    // Paints the card into a pixmap. Make a new FocusedCard when the card changes, not for every frame.
    explicit FocusedCard(const Card &card)
        : m_picture((QSizeF(cardSize) * largestZoom).toSize())
    {
        m_picture.fill(Qt::transparent);
        QPainter painter(&m_picture);
        painter.scale(largestZoom, largestZoom);
        card.paint(painter);
    }

    // Copies the pixmap. The progress goes from 0, a card without focus, to 1, the pixmap in its own size.
    void paint(QPainter &painter, const QPointF &centre, double progress) const
    {
        QRectF target(QPointF(), QSizeF(cardSize) * (1 + (largestZoom - 1) * progress));
        target.moveCenter(centre);

        painter.save();
        painter.setOpacity(0.5 + 0.5 * progress);
        painter.drawPixmap(target, m_picture, QRectF(m_picture.rect()));
        painter.restore();
    }

private:
    QPixmap m_picture;
};
//! [focus]

} // namespace recipes

#endif
