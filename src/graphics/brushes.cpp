#include <ovelin/brushes.h>

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ovelin {

namespace {

constexpr int shortestTexture = 8; // pixels
// The numbers of tiles that may cover a length exactly.
constexpr int largestDivisor = 10;
constexpr int smallestDivisor = 3;

} // namespace

/*!
    \headerfile <ovelin/brushes.h>
    \inmodule Ovelin
    \title Textured brushes
    \brief Gradients that are rendered once into a small texture, which a brush tiles.

    A texture is the cheaper way for gradients that run across or repeat: Qt computes each pixel of these
    gradients anew, but only copies the pixels of a texture. A gradient that runs straight down has one
    colour a row and is cheapest without a texture. The guide \l {Gradients and textures} tells which way
    to use when. All functions belong to the GUI thread.

    \snippet tst_snippets.cpp across
*/

/*!
    \relates <ovelin/brushes.h>

    Returns the length in pixels of a texture that is repeated to fill \a length pixels with a gradient.

    The result is the smallest of a tenth, a ninth, and so on up to a third of \a length that is a
    whole number and at least 8: whole tiles then cover \a length. If there is none, the result is a
    tenth of \a length, rounded up, but at least 8: the last tile is cut. Any \a length below 9,
    even a negative one, gives 8.

    Examples: 720 gives 72, ten tiles; 63 gives 9, seven tiles; 101 gives 11, nine tiles and a part.

    For a gradient that covers the length once, make the texture as long as the gradient instead.

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
    return std::max(shortestTexture, tenth);
}

/*!
    \relates <ovelin/brushes.h>

    Returns a pixmap of \a size pixels with \a brush painted on a transparent ground. Returns a null
    pixmap if \a size is empty, invalid, or too large for the memory.

    \since Ovelin 1.0
*/
QPixmap createBrushImage(const QBrush &brush, const QSize &size)
{
    QPixmap pixmap(size);
    // A pixmap that is too large for the memory is not null, but has no paint engine.
    if (pixmap.isNull() || !pixmap.paintEngine())
        return {};

    // Gives the pixmap an alpha channel, which a new pixmap lacks on some platforms.
    pixmap.fill(Qt::transparent);
    QPainter(&pixmap).fillRect(pixmap.rect(), brush);
    return pixmap;
}

/*!
    \relates <ovelin/brushes.h>

    Returns a brush that tiles a texture of \a size pixels with \a gradient. The texture
    keeps the transparency of the gradient's colours.

    The points of the gradient are in pixels of the texture: a gradient from (0, 0) to (0, 72) runs
    once over a texture that is 72 pixels high. Returns a brush without a texture if \a size is
    empty, invalid, or too large for the memory.

    \table
    \header
        \li The gradient
        \li \a size
    \row
        \li runs straight down
        \li none: paint with the gradient itself, which costs less than any texture
    \row
        \li runs across, once over the area
        \li the width of the area, 8 pixels high
    \row
        \li repeats
        \li a square of chooseGradientLength() pixels
    \endtable

    On a screen with 16 bits a pixel a texture costs more than the gradient in every direction.

    \since Ovelin 1.0
*/
QBrush createTexturedBrush(const QSize &size, const QLinearGradient &gradient)
{
    QBrush brush;
    brush.setTexture(createBrushImage(gradient, size));
    return brush;
}

/*!
    \relates <ovelin/brushes.h>
    \overload

    Returns a brush that tiles a square texture, \a length pixels wide and high, with \a gradient.

    \since Ovelin 1.0
    \sa chooseGradientLength()
*/
QBrush createTexturedBrush(int length, const QLinearGradient &gradient)
{
    return createTexturedBrush(QSize(length, length), gradient);
}

} // namespace ovelin
