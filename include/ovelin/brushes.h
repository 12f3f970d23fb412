#ifndef OVELIN_BRUSHES_H
#define OVELIN_BRUSHES_H

#include <ovelin/ovelinglobal.h>

#include <QtGui/qbrush.h>
#include <QtGui/qpixmap.h>

QT_BEGIN_NAMESPACE
class QSize;
QT_END_NAMESPACE

namespace ovelin {

// Gradients as small textures that a brush tiles. Lengths are in pixels. Guide: "Gradients and textures".
[[nodiscard]] OVELIN_EXPORT int chooseGradientLength(int length);
[[nodiscard]] OVELIN_EXPORT QPixmap createBrushImage(const QBrush &brush, const QSize &size);
[[nodiscard]] OVELIN_EXPORT QBrush createTexturedBrush(const QSize &size,
                                                       const QLinearGradient &gradient);
[[nodiscard]] OVELIN_EXPORT QBrush createTexturedBrush(int length, const QLinearGradient &gradient);

} // namespace ovelin

#endif
