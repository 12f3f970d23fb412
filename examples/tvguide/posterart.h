#ifndef TVGUIDE_POSTERART_H
#define TVGUIDE_POSTERART_H

#include <QString>

QT_BEGIN_NAMESPACE
class QPainter;
class QRect;
QT_END_NAMESPACE

namespace tvguide {

// Paints a picture for a programme without a poster: a motif of its genre, in the genre's colours.
// Title and category alone decide how it looks, so that a programme always looks the same.
void paintPosterArt(QPainter &painter, const QRect &rect, const QString &title,
                    const QString &category);

// Paints the first letter of the title, large and faint, onto a picture that no other text covers.
void paintPosterInitial(QPainter &painter, const QRect &rect, const QString &title);

// Paints the sign of a channel without a logo: the first letter of its name on a disc.
void paintChannelBadge(QPainter &painter, const QRect &rect, const QString &name);

} // namespace tvguide

#endif
