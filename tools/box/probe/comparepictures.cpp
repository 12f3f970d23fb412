// comparepictures FIRST.png SECOND.png MOST_DIFFERENT_PIXELS LARGEST_DIFFERENCE
//
// Prints the number of pixels in which two pictures differ, and the largest difference in a channel. Fails
// if one of the two numbers exceeds its limit.

#include <QImage>
#include <QString>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace {

int difference(QRgb first, QRgb second)
{
    return std::max({std::abs(qRed(first) - qRed(second)), std::abs(qGreen(first) - qGreen(second)),
                     std::abs(qBlue(first) - qBlue(second)),
                     std::abs(qAlpha(first) - qAlpha(second))});
}

QImage read(const char *file)
{
    return QImage(QString::fromLocal8Bit(file)).convertToFormat(QImage::Format_ARGB32);
}

} // namespace

int main(int argc, char *argv[])
{
    constexpr int wordCount = 5; // the program's name and its arguments
    if (argc != wordCount) {
        std::cerr
            << "usage: comparepictures FIRST SECOND MOST_DIFFERENT_PIXELS LARGEST_DIFFERENCE\n";
        return 2;
    }
    const QImage first = read(argv[1]);
    const QImage second = read(argv[2]);
    if (first.isNull() || first.size() != second.size()) {
        std::cerr << "comparepictures: the pictures cannot be read or have different sizes\n";
        return 1;
    }

    qint64 differentPixels = 0;
    int largestDifference = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const int d = difference(first.pixel(x, y), second.pixel(x, y));
            differentPixels += d > 0;
            largestDifference = std::max(largestDifference, d);
        }
    }
    std::cout << differentPixels << " of " << qint64(first.width()) * first.height()
              << " pixels differ, by at most " << largestDifference << " of 255 in a channel\n";
    return differentPixels <= std::atoll(argv[3]) && largestDifference <= std::atoi(argv[4]) ? 0
                                                                                             : 1;
}
