#ifndef OVELIN_TESTS_TVGUIDE_COLOURS_H
#define OVELIN_TESTS_TVGUIDE_COLOURS_H

#include <QImage>

#include <set>

namespace tvguide::tests {

// Returns the number of different colours; a plain area has one.
inline std::size_t colours(const QImage &image)
{
    std::set<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    return colours.size();
}

} // namespace tvguide::tests

#endif
