#include <ovelin/brushes.h>

#include <QTest>

#include <algorithm>
#include <limits>
#include <vector>

// Compares chooseGradientLength() with its definition for all lengths up to 100,000 pixels, for negative lengths,
// and for the greatest values of int.

using ovelin::chooseGradientLength;

namespace {

constexpr int shortestTexture = 8;
constexpr int longestLength = 100'000;

int tenthOf(int length)
{
    return length / 10 + (length % 10 > 0);
}

// Returns the length of the texture for every length to fill, from 0 to longestLength. The texture is the shortest
// one that fits into the length a whole number of times, from 3 to 10 times. If no texture fits, the texture has a
// tenth of the length, rounded up. No texture is shorter than shortestTexture.
std::vector<int> definedLengths()
{
    std::vector<int> lengths(longestLength + 1, 0);
    for (int times = 3; times <= 10; ++times) {
        for (int texture = shortestTexture; texture * times <= longestLength; ++texture)
            lengths[std::size_t(texture * times)] = texture;
    }
    for (int length = 0; length <= longestLength; ++length) {
        int &texture = lengths[std::size_t(length)];
        if (texture == 0)
            texture = std::max(shortestTexture, std::min(length, tenthOf(length)));
    }
    return lengths;
}

} // namespace

class tst_GradientLength : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLengthIsAsDefined();
    void negativeLengthsGetTheShortestTexture();
    void greatestLengthsAreAsDefined();
};

void tst_GradientLength::everyLengthIsAsDefined()
{
    const std::vector<int> defined = definedLengths();
    for (int length = 0; length <= longestLength; ++length) {
        if (chooseGradientLength(length) != defined[std::size_t(length)]) {
            QFAIL(qPrintable(QStringLiteral("%1 for %2, not %3")
                                 .arg(chooseGradientLength(length))
                                 .arg(length)
                                 .arg(defined[std::size_t(length)])));
        }
    }
}

void tst_GradientLength::negativeLengthsGetTheShortestTexture()
{
    for (int length = -1000; length < 0; ++length)
        QCOMPARE(chooseGradientLength(length), shortestTexture);
}

void tst_GradientLength::greatestLengthsAreAsDefined()
{
    constexpr int greatest = std::numeric_limits<int>::max();
    for (int length = greatest; length > greatest - 1000; --length) {
        int times = 10;
        while (times >= 3 && length % times != 0)
            --times;
        QCOMPARE(chooseGradientLength(length), times >= 3 ? length / times : tenthOf(length));
    }
}

QTEST_MAIN(tst_GradientLength)

#include "tst_gradientlength.moc"
