#include "finetextwidth_p.h"

#include <ovelin/textrenderer.h>

#include <QFontMetricsF>

#include <cmath>
#include <limits>

namespace ovelin {

namespace {

// In pixels. Keeps the last glyph from being clipped where it reaches beyond its advance.
constexpr int safetyMargin = 2;

} // namespace

int toInt(double value)
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    if (value >= highest)
        return highest;
    return value > lowest ? static_cast<int>(value) : lowest;
}

int fineWidth(double advance)
{
    return toInt(std::ceil(advance) + safetyMargin);
}

/*!
    Returns the whole number of pixels that \a text needs on one line in the font of \a metrics: its
    advance rounded up, and two pixels that keep its last glyph from being clipped. The fine width of
    an empty text is 2.
*/
int TextRenderer::fineTextWidth(const QString &text, const QFontMetricsF &metrics)
{
    return fineWidth(metrics.horizontalAdvance(text));
}

} // namespace ovelin
