#include <ovelin/brushes.h>

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ovelin {

namespace {

constexpr int shortestTexture = 8;
constexpr int largestDivisor = 10;
constexpr int smallestDivisor = 3;

// A pixmap of its own has an alpha channel on some platforms only; filling it with a transparent
// colour gives it one on all.
QPixmap filledPixmap(const QSize &size, const QBrush &brush, QPainter::CompositionMode mode)
{
    QPixmap pixmap(size);
    // A pixmap beyond what memory can hold is not null, but nothing can paint on it.
    if (pixmap.isNull() || !pixmap.paintEngine())
        return {};

    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setCompositionMode(mode);
    painter.setPen(Qt::NoPen);
    painter.fillRect(pixmap.rect(), brush);
    return pixmap;
}

} // namespace

/*!
    \headerfile <ovelin/brushes.h>
    \inmodule Ovelin
    \title Textured brushes
    \brief Gradients that are rendered once, into a small texture that a brush then tiles.

    Filling an area with a gradient computes every pixel; tiling a texture copies them. All functions
    belong to the GUI thread.
*/

/*!
    \relates <ovelin/brushes.h>

    Returns the length, in pixels, of a texture for a gradient that is to cover \a length pixels.

    This is the smallest whole fraction of \a length, from a tenth up to a third, that has at least 8
    pixels, so that the texture repeats without a seam. Where there is none it is a tenth of
    \a length, rounded up, and at least 8. Lengths below 9, negative ones too, give 8.

    \since Ovelin 1.0
*/
int chooseGradientLength(int length)
{
    if (length <= shortestTexture)
        return shortestTexture;

    for (int divisor = largestDivisor; divisor >= smallestDivisor; --divisor) {
        if (length % divisor == 0 && length / divisor >= shortestTexture)
            return length / divisor;
    }

    const auto tenth = static_cast<int>(std::ceil(length / double(largestDivisor)));
    return std::max(shortestTexture, std::min(length, tenth));
}

/*!
    \relates <ovelin/brushes.h>

    Returns a pixmap of \a size pixels, transparent at first and then filled with \a brush. A size
    that is empty, invalid or beyond what memory can hold gives a null pixmap.

    \since Ovelin 1.0
*/
QPixmap createBrushImage(const QBrush &brush, const QSize &size)
{
    return filledPixmap(size, brush, QPainter::CompositionMode_SourceOver);
}

/*!
    \relates <ovelin/brushes.h>

    Returns a brush that tiles a texture of \a size pixels holding \a gradient; the texture is
    transparent where the gradient is.

    The gradient's points are in pixels of the texture and used as they are: from 0 to the width and
    height of \a size covers it once. A size that is empty, invalid or beyond what memory can hold gives
    a brush without a texture.

    \since Ovelin 1.0
*/
QBrush createTexturedBrush(const QSize &size, const QLinearGradient &gradient)
{
    QBrush brush;
    brush.setTexture(filledPixmap(size, gradient, QPainter::CompositionMode_Source));
    return brush;
}

/*!
    \relates <ovelin/brushes.h>
    \overload

    The texture is a square with sides of \a length pixels, holding \a gradient.

    \since Ovelin 1.0
    \sa chooseGradientLength()
*/
QBrush createTexturedBrush(int length, const QLinearGradient &gradient)
{
    return createTexturedBrush(QSize(length, length), gradient);
}

} // namespace ovelin
