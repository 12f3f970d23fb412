#ifndef TVGUIDE_POSTERART_H
#define TVGUIDE_POSTERART_H

#include <QString>

QT_BEGIN_NAMESPACE
class QPainter;
class QRect;
QT_END_NAMESPACE

namespace tvguide {

// What stands in for a poster: a picture in the colours of the genre with a motif of it. It depends
// on the title only, so that a programme looks the same whenever it is shown.
void paintPosterArt(QPainter &painter, const QRect &rect, const QString &title,
                    const QString &category);

// The first letter of the title, large and faint, for a picture that has no words beside it.
void paintPosterInitial(QPainter &painter, const QRect &rect, const QString &title);

// The sign of a channel without a logo: its first letter on a disc.
void paintChannelBadge(QPainter &painter, const QRect &rect, const QString &name);

} // namespace tvguide

#endif
