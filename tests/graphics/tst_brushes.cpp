#include <ovelin/brushes.h>

#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

#include <algorithm>
#include <limits>
#include <type_traits>

using ovelin::chooseGradientLength;
using ovelin::createBrushImage;
using ovelin::createTexturedBrush;

namespace {

constexpr int maxInt = std::numeric_limits<int>::max();
constexpr int minInt = std::numeric_limits<int>::min();

static_assert(std::is_same_v<decltype(&chooseGradientLength), int (*)(int)>);
static_assert(
    std::is_same_v<decltype(&createBrushImage), QPixmap (*)(const QBrush &, const QSize &)>);
static_assert(std::is_same_v<decltype(createTexturedBrush(QSize(), QLinearGradient())), QBrush>);
static_assert(std::is_same_v<decltype(createTexturedBrush(1, QLinearGradient())), QBrush>);

constexpr auto imageFormat = QImage::Format_ARGB32_Premultiplied;

QImage blank(const QSize &size, const QColor &color = Qt::transparent)
{
    QImage image(size, imageFormat);
    image.fill(color);
    return image;
}

QImage imageOf(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(imageFormat);
}

QImage textureOf(const QBrush &brush)
{
    return imageOf(brush.texture());
}

// Fills a transparent canvas of 32 bits a pixel with the brush.
QImage paintedByHand(const QBrush &brush, const QSize &size)
{
    QImage image = blank(size);
    QPainter painter(&image);
    painter.fillRect(image.rect(), brush);
    return image;
}

// A texture is a pixmap, and a pixmap has as many bits a pixel as the screen.
int channelTolerance()
{
    constexpr int roundingOfOneStep = 2;
    constexpr int stepOfFiveBits = 8;
    return QGuiApplication::primaryScreen()->depth() < 24 ? stepOfFiveBits : roundingOfOneStep;
}

int greatestDifference(const QImage &first, const QImage &second)
{
    if (first.size() != second.size())
        return maxInt;

    int greatest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QRgb a = first.pixel(x, y);
            const QRgb b = second.pixel(x, y);
            greatest = std::max({greatest, std::abs(qAlpha(a) - qAlpha(b)),
                                 std::abs(qRed(a) * qAlpha(a) - qRed(b) * qAlpha(b)) / 255,
                                 std::abs(qGreen(a) * qAlpha(a) - qGreen(b) * qAlpha(b)) / 255,
                                 std::abs(qBlue(a) * qAlpha(a) - qBlue(b) * qAlpha(b)) / 255});
        }
    }
    return greatest;
}

#define COMPARE_IMAGES(actual, expected)                                                           \
    QCOMPARE_LE(greatestDifference(actual, expected), channelTolerance())

QLinearGradient gradientBetween(const QPointF &start, const QPointF &finalStop, const QColor &from,
                                const QColor &to)
{
    QLinearGradient gradient(start, finalStop);
    gradient.setColorAt(0, from);
    gradient.setColorAt(1, to);
    return gradient;
}

} // namespace

class tst_Brushes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void gradientLength_data();
    void gradientLength();
    void gradientLengthStaysWithinItsBounds();

    void brushImageHasTheGivenSize_data();
    void brushImageHasTheGivenSize();
    void brushImageIsFilledWithTheBrush_data();
    void brushImageIsFilledWithTheBrush();
    void brushImageKeepsHalfTransparency();
    void brushImageOfNoBrushIsTransparent();
    void brushImageIsFilledFromTheTopLeft();

    void texturedBrushIsAPlainTextureBrush();
    void texturedBrushHasTheGivenSize_data();
    void texturedBrushHasTheGivenSize();
    void lengthGivesASquareTexture_data();
    void lengthGivesASquareTexture();
    void textureHoldsTheGradient_data();
    void textureHoldsTheGradient();
    void gradientCoordinatesAreTexels();
    void transparentGradientGivesTransparentTexels_data();
    void transparentGradientGivesTransparentTexels();
    void transparentTexelsShowTheBackground();
    void opaqueGradientGivesOpaqueTexels();
    void texturesDoNotShareTheirPixels();
    void brushTilesItsTexture();

    void emptySizesGiveNoTexture_data();
    void emptySizesGiveNoTexture();
    void lengthsBelowOneGiveNoTexture_data();
    void lengthsBelowOneGiveNoTexture();
    void sizesBeyondMemoryGiveNoTexture_data();
    void sizesBeyondMemoryGiveNoTexture();
};

void tst_Brushes::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void tst_Brushes::gradientLength_data()
{
    QTest::addColumn<int>("span");
    QTest::addColumn<int>("length");

    QTest::newRow("least") << minInt << 8;
    QTest::newRow("next to the least") << minInt + 1 << 8;
    QTest::newRow("negative") << -1 << 8;
    QTest::newRow("negative multiple of ten") << -800 << 8;
    QTest::newRow("0") << 0 << 8;
    QTest::newRow("1") << 1 << 8;
    QTest::newRow("7") << 7 << 8;
    QTest::newRow("8") << 8 << 8;
    QTest::newRow("9") << 9 << 8;
    QTest::newRow("10") << 10 << 8;
    QTest::newRow("23, a prime") << 23 << 8;
    QTest::newRow("24 by 3") << 24 << 8;
    QTest::newRow("27 by 3") << 27 << 9;
    QTest::newRow("32 by 4") << 32 << 8;
    QTest::newRow("33 by 3") << 33 << 11;
    QTest::newRow("40 by 5") << 40 << 8;
    QTest::newRow("44 by 4") << 44 << 11;
    QTest::newRow("48 by 6") << 48 << 8;
    QTest::newRow("55 by 5") << 55 << 11;
    QTest::newRow("56 by 7") << 56 << 8;
    QTest::newRow("64 by 8") << 64 << 8;
    QTest::newRow("66 by 6") << 66 << 11;
    QTest::newRow("72 by 9") << 72 << 8;
    QTest::newRow("77 by 7") << 77 << 11;
    QTest::newRow("79, a prime") << 79 << 8;
    QTest::newRow("80 by 10") << 80 << 8;
    QTest::newRow("81 by 9") << 81 << 9;
    QTest::newRow("82, twice a prime") << 82 << 9;
    QTest::newRow("88 by 8") << 88 << 11;
    QTest::newRow("90 by 10, not by 9") << 90 << 9;
    QTest::newRow("99 by 9") << 99 << 11;
    QTest::newRow("100 by 10") << 100 << 10;
    QTest::newRow("101, a prime") << 101 << 11;
    QTest::newRow("110 by 10") << 110 << 11;
    QTest::newRow("111 by 3") << 111 << 37;
    QTest::newRow("720 by 10") << 720 << 72;
    QTest::newRow("1000 by 10") << 1000 << 100;
    QTest::newRow("1001 by 7") << 1001 << 143;
    QTest::newRow("1009, a prime") << 1009 << 101;
    QTest::newRow("greatest but one, by 9") << maxInt - 1 << 238'609'294;
    QTest::newRow("greatest, a prime") << maxInt << 214'748'365;
}

void tst_Brushes::gradientLength()
{
    QFETCH(const int, span);
    QFETCH(const int, length);
    QCOMPARE(chooseGradientLength(span), length);
}

void tst_Brushes::gradientLengthStaysWithinItsBounds()
{
    for (int span = 9; span <= 20'000; ++span) {
        const int length = chooseGradientLength(span);
        QCOMPARE_GE(length, 8);
        QCOMPARE_GE(10 * length, span);
        if (length > 8)
            QCOMPARE_LE(3 * length, span);
    }
}

void tst_Brushes::brushImageHasTheGivenSize_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("square") << QSize(16, 16);
    QTest::newRow("row") << QSize(33, 1);
    QTest::newRow("column") << QSize(1, 33);
    QTest::newRow("wide") << QSize(40, 7);
}

void tst_Brushes::brushImageHasTheGivenSize()
{
    QFETCH(const QSize, size);

    const QPixmap pixmap = createBrushImage(QBrush(Qt::red), size);
    QVERIFY(!pixmap.isNull());
    QCOMPARE(pixmap.size(), size);
    QCOMPARE(pixmap.devicePixelRatio(), 1.0);
    QCOMPARE(imageOf(pixmap), blank(size, Qt::red));
}

void tst_Brushes::brushImageIsFilledWithTheBrush_data()
{
    QTest::addColumn<QBrush>("brush");

    QTest::newRow("opaque") << QBrush(QColor(10, 200, 30));
    QTest::newRow("half transparent") << QBrush(QColor(255, 0, 0, 128));
    QTest::newRow("fully transparent") << QBrush(QColor(255, 0, 0, 0));
    QTest::newRow("pattern with holes") << QBrush(Qt::blue, Qt::CrossPattern);
    QTest::newRow("dense pattern") << QBrush(Qt::blue, Qt::Dense6Pattern);
    QTest::newRow("gradient") << QBrush(
        gradientBetween({0, 0}, {24, 12}, QColor(255, 255, 0), QColor(0, 0, 255)));
    QTest::newRow("fading gradient")
        << QBrush(gradientBetween({0, 0}, {24, 0}, QColor(255, 255, 0, 200), Qt::transparent));
    QTest::newRow("texture") << QBrush(
        paintedByHand(QBrush(Qt::green, Qt::DiagCrossPattern), QSize(5, 5)));
}

void tst_Brushes::brushImageIsFilledWithTheBrush()
{
    QFETCH(const QBrush, brush);

    const QSize size(24, 12);
    COMPARE_IMAGES(imageOf(createBrushImage(brush, size)), paintedByHand(brush, size));
}

void tst_Brushes::brushImageKeepsHalfTransparency()
{
    const QPixmap pixmap = createBrushImage(QBrush(QColor(255, 0, 0, 128)), QSize(6, 4));
    QVERIFY(pixmap.hasAlphaChannel());

    const QImage image = imageOf(pixmap);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            QCOMPARE(image.pixelColor(x, y).alpha(), 128);
            QCOMPARE_GE(image.pixelColor(x, y).red(), 255 - channelTolerance());
            QCOMPARE(image.pixelColor(x, y).green(), 0);
            QCOMPARE(image.pixelColor(x, y).blue(), 0);
        }
    }
}

void tst_Brushes::brushImageOfNoBrushIsTransparent()
{
    const QPixmap pixmap = createBrushImage(QBrush(), QSize(6, 4));
    QCOMPARE(pixmap.size(), QSize(6, 4));
    QCOMPARE(imageOf(pixmap), blank(QSize(6, 4)));
}

void tst_Brushes::brushImageIsFilledFromTheTopLeft()
{
    QImage chequers = blank(QSize(2, 2), Qt::blue);
    chequers.setPixelColor(0, 0, Qt::red);

    const QImage image = imageOf(createBrushImage(QBrush(chequers), QSize(5, 3)));
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x)
            QCOMPARE(image.pixelColor(x, y), chequers.pixelColor(x % 2, y % 2));
    }
}

void tst_Brushes::texturedBrushIsAPlainTextureBrush()
{
    const QLinearGradient gradient = gradientBetween({0, 0}, {16, 0}, Qt::black, Qt::white);
    const QBrush brush = createTexturedBrush(QSize(16, 4), gradient);

    QCOMPARE(brush.style(), Qt::TexturePattern);
    QCOMPARE(brush.gradient(), nullptr);
    QVERIFY(brush.transform().isIdentity());
    QCOMPARE(brush.color(), QBrush().color());
    QCOMPARE(brush.texture().devicePixelRatio(), 1.0);
}

void tst_Brushes::texturedBrushHasTheGivenSize_data()
{
    brushImageHasTheGivenSize_data();
}

void tst_Brushes::texturedBrushHasTheGivenSize()
{
    QFETCH(const QSize, size);

    const QLinearGradient red = gradientBetween({0, 0}, {1, 1}, Qt::red, Qt::red);
    const QBrush brush = createTexturedBrush(size, red);
    QCOMPARE(brush.texture().size(), size);
    QCOMPARE(textureOf(brush), blank(size, Qt::red));
}

void tst_Brushes::lengthGivesASquareTexture_data()
{
    QTest::addColumn<int>("length");

    QTest::newRow("1") << 1;
    QTest::newRow("8") << 8;
    QTest::newRow("16") << 16;
    QTest::newRow("101") << 101;
}

void tst_Brushes::lengthGivesASquareTexture()
{
    QFETCH(const int, length);

    const QLinearGradient gradient =
        gradientBetween({0, 0}, QPointF(length, length), Qt::black, Qt::white);
    const QBrush brush = createTexturedBrush(length, gradient);
    QCOMPARE(brush.style(), Qt::TexturePattern);
    QCOMPARE(brush.texture().size(), QSize(length, length));
    QCOMPARE(textureOf(brush), textureOf(createTexturedBrush(QSize(length, length), gradient)));
}

void tst_Brushes::textureHoldsTheGradient_data()
{
    QTest::addColumn<QLinearGradient>("gradient");

    const QColor from(250, 200, 0);
    const QColor to(0, 40, 250);
    QTest::newRow("along the width") << gradientBetween({0, 0}, {32, 0}, from, to);
    QTest::newRow("along the height") << gradientBetween({0, 0}, {0, 12}, from, to);
    QTest::newRow("backwards") << gradientBetween({32, 0}, {0, 0}, from, to);
    QTest::newRow("slanting") << gradientBetween({0, 0}, {32, 12}, from, to);
    QTest::newRow("beginning inside") << gradientBetween({8, 0}, {24, 0}, from, to);
    QTest::newRow("before the texture") << gradientBetween({-40, 0}, {-8, 0}, from, to);
    QTest::newRow("behind the texture") << gradientBetween({100, 0}, {200, 0}, from, to);
    QTest::newRow("to transparent") << gradientBetween({0, 0}, {32, 0}, from, Qt::transparent);
    QTest::newRow("between alphas")
        << gradientBetween({0, 0}, {0, 12}, QColor(255, 0, 0, 40), QColor(0, 255, 0, 220));

    QLinearGradient repeated = gradientBetween({0, 0}, {7, 0}, from, to);
    repeated.setSpread(QGradient::RepeatSpread);
    QTest::newRow("repeated") << repeated;

    QLinearGradient reflected = gradientBetween({0, 0}, {7, 0}, from, to);
    reflected.setSpread(QGradient::ReflectSpread);
    QTest::newRow("reflected") << reflected;

    QLinearGradient threeStops = gradientBetween({0, 0}, {32, 0}, from, to);
    threeStops.setColorAt(0.25, Qt::green);
    QTest::newRow("three stops") << threeStops;

    QLinearGradient ofTheObject = gradientBetween({0, 0}, {1, 0}, from, to);
    ofTheObject.setCoordinateMode(QGradient::ObjectMode);
    QTest::newRow("object mode") << ofTheObject;
}

void tst_Brushes::textureHoldsTheGradient()
{
    QFETCH(const QLinearGradient, gradient);

    const QSize size(32, 12);
    const QImage byHand = paintedByHand(QBrush(gradient), size);
    QCOMPARE_NE(byHand, blank(size));
    COMPARE_IMAGES(textureOf(createTexturedBrush(size, gradient)), byHand);
}

void tst_Brushes::gradientCoordinatesAreTexels()
{
    // The gradient runs from texel 4 to texel 12 of 16: it is neither stretched nor moved.
    const QImage texture = textureOf(
        createTexturedBrush(QSize(16, 3), gradientBetween({4, 0}, {12, 0}, Qt::black, Qt::white)));

    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 16; ++x) {
            const double position = std::clamp((x + 0.5 - 4) / 8, 0.0, 1.0);
            const int grey = texture.pixelColor(x, y).green();
            QCOMPARE_LE(std::abs(grey - qRound(position * 255)), channelTolerance());
        }
    }
}

void tst_Brushes::transparentGradientGivesTransparentTexels_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("one texel") << QSize(1, 1);
    QTest::newRow("square") << QSize(16, 16);
    QTest::newRow("wide") << QSize(64, 5);
    QTest::newRow("tall") << QSize(5, 64);
}

void tst_Brushes::transparentGradientGivesTransparentTexels()
{
    QFETCH(const QSize, size);

    const QBrush clear = createTexturedBrush(
        size, gradientBetween({0, 0}, {1, 0}, Qt::transparent, QColor(255, 255, 255, 0)));
    QVERIFY(clear.texture().hasAlphaChannel());
    QCOMPARE(textureOf(clear), blank(size));

    const QBrush half = createTexturedBrush(
        size, gradientBetween({0, 0}, {1, 0}, QColor(0, 255, 0, 128), QColor(0, 255, 0, 128)));
    QVERIFY(half.texture().hasAlphaChannel());
    const QImage texture = textureOf(half);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            QCOMPARE_LE(std::abs(texture.pixelColor(x, y).alpha() - 128), 1);
    }
}

void tst_Brushes::transparentTexelsShowTheBackground()
{
    // The gradient is opaque up to the middle of the texture and transparent after it.
    QLinearGradient gradient(QPointF(0, 0), QPointF(16, 0));
    gradient.setColorAt(0, Qt::red);
    gradient.setColorAt(0.5, Qt::red);
    gradient.setColorAt(0.500001, Qt::transparent);
    gradient.setColorAt(1, Qt::transparent);

    QImage canvas = blank(QSize(32, 8), Qt::blue);
    QPainter painter(&canvas);
    painter.fillRect(canvas.rect(), createTexturedBrush(16, gradient));
    painter.end();

    for (const int tile : {0, 16}) {
        QCOMPARE(canvas.pixelColor(tile + 1, 4), QColor(Qt::red));
        QCOMPARE(canvas.pixelColor(tile + 6, 4), QColor(Qt::red));
        QCOMPARE(canvas.pixelColor(tile + 9, 4), QColor(Qt::blue));
        QCOMPARE(canvas.pixelColor(tile + 14, 4), QColor(Qt::blue));
    }
}

void tst_Brushes::opaqueGradientGivesOpaqueTexels()
{
    const QImage texture = textureOf(
        createTexturedBrush(20, gradientBetween({0, 0}, {20, 20}, Qt::black, Qt::yellow)));
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x)
            QCOMPARE(texture.pixelColor(x, y).alpha(), 255);
    }
}

void tst_Brushes::texturesDoNotShareTheirPixels()
{
    const QBrush red = createTexturedBrush(8, gradientBetween({0, 0}, {8, 0}, Qt::red, Qt::red));
    const QBrush blue = createTexturedBrush(8, gradientBetween({0, 0}, {8, 0}, Qt::blue, Qt::blue));
    QCOMPARE(textureOf(red), blank(QSize(8, 8), Qt::red));
    QCOMPARE(textureOf(blue), blank(QSize(8, 8), Qt::blue));
}

void tst_Brushes::brushTilesItsTexture()
{
    const QSize tile(16, 6);
    const QBrush brush = createTexturedBrush(
        tile, gradientBetween({0, 0}, {16, 6}, QColor(255, 0, 0), QColor(0, 0, 255, 100)));
    const QImage texture = textureOf(brush);
    QCOMPARE_NE(texture.pixel(0, 0), texture.pixel(15, 5));

    const QPoint origin(3, 2);
    QImage canvas = blank(QSize(50, 30));
    QPainter painter(&canvas);
    painter.setBrushOrigin(origin);
    painter.fillRect(canvas.rect(), brush);
    painter.end();

    QImage expected = blank(canvas.size());
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const int u = (x - origin.x() + tile.width()) % tile.width();
            const int v = (y - origin.y() + tile.height()) % tile.height();
            expected.setPixelColor(x, y, texture.pixelColor(u, v));
        }
    }
    COMPARE_IMAGES(canvas, expected);
}

void tst_Brushes::emptySizesGiveNoTexture_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("invalid") << QSize();
    QTest::newRow("empty") << QSize(0, 0);
    QTest::newRow("no width") << QSize(0, 10);
    QTest::newRow("no height") << QSize(10, 0);
    QTest::newRow("negative width") << QSize(-5, 10);
    QTest::newRow("negative height") << QSize(10, -5);
    QTest::newRow("negative") << QSize(-10, -10);
    QTest::newRow("least") << QSize(minInt, minInt);
}

void tst_Brushes::emptySizesGiveNoTexture()
{
    QFETCH(const QSize, size);

    QVERIFY(createBrushImage(QBrush(Qt::red), size).isNull());

    const QBrush brush =
        createTexturedBrush(size, gradientBetween({0, 0}, {9, 9}, Qt::red, Qt::blue));
    QVERIFY(brush.texture().isNull());

    QPixmap none;
    QBrush expected;
    expected.setTexture(none);
    QCOMPARE(brush, expected);

    // The brush can be used.
    QImage canvas = blank(QSize(8, 8), Qt::green);
    QPainter painter(&canvas);
    painter.fillRect(canvas.rect(), brush);
    painter.end();
    QCOMPARE(canvas, blank(QSize(8, 8), Qt::green));
}

void tst_Brushes::lengthsBelowOneGiveNoTexture_data()
{
    QTest::addColumn<int>("length");

    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("least") << minInt;
}

void tst_Brushes::lengthsBelowOneGiveNoTexture()
{
    QFETCH(const int, length);

    const QBrush brush =
        createTexturedBrush(length, gradientBetween({0, 0}, {9, 9}, Qt::red, Qt::blue));
    QVERIFY(brush.texture().isNull());
    QCOMPARE(brush.style(), Qt::NoBrush);
}

void tst_Brushes::sizesBeyondMemoryGiveNoTexture_data()
{
    QTest::addColumn<QSize>("size");

    // A row would have more bits than an int can count, so Qt requests no memory.
    QTest::newRow("greatest") << QSize(maxInt, maxInt);
    QTest::newRow("greatest width") << QSize(maxInt, 1);
    QTest::newRow("more than a row can have") << QSize(1 << 29, 2);
}

void tst_Brushes::sizesBeyondMemoryGiveNoTexture()
{
    QFETCH(const QSize, size);
    const QLinearGradient gradient = gradientBetween({0, 0}, {9, 9}, Qt::red, Qt::blue);

    const QPixmap pixmap = createBrushImage(QBrush(Qt::red), size);
    QVERIFY(pixmap.toImage().isNull());

    for (const QBrush &brush :
         {createTexturedBrush(size, gradient), createTexturedBrush(size.width(), gradient)}) {
        QVERIFY(textureOf(brush).isNull());

        QImage canvas = blank(QSize(8, 8), Qt::green);
        QPainter painter(&canvas);
        painter.fillRect(canvas.rect(), brush);
        painter.end();
        QCOMPARE(canvas, blank(QSize(8, 8), Qt::green));
    }
}

QTEST_MAIN(tst_Brushes)

#include "tst_brushes.moc"
