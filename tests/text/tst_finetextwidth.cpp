#include "text/finetextwidth_p.h"
#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QTest>

#include <limits>

using namespace ovelin;
using namespace ovelin::tests;

static_assert(std::is_same_v<decltype(&TextRenderer::fineTextWidth),
                             int (*)(const QString &, const QFontMetricsF &)>);

class tst_FineTextWidth : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void emptyTextHasOnlyTheMargin();
    void wholeAdvanceIsNotRounded();
    void fractionalAdvanceIsRoundedUp();
    void measuresTheWholeText();
    void measuresWithTheGivenMetrics();

    void toIntTruncatesAndSaturates_data();
    void toIntTruncatesAndSaturates();
    void toIntOfNotANumberIsTheLowestInt();
};

void tst_FineTextWidth::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_FineTextWidth::emptyTextHasOnlyTheMargin()
{
    QCOMPARE(TextRenderer::fineTextWidth(QString(), QFontMetricsF(pixelFont())), 2);
}

void tst_FineTextWidth::wholeAdvanceIsNotRounded()
{
    // Qt measures in 1/64 pixel, so the loop ends: the advance of 64 equal letters is a whole number.
    const QFontMetricsF metrics(pixelFont());
    QString text(QStringLiteral("a"));
    while (metrics.horizontalAdvance(text) != std::floor(metrics.horizontalAdvance(text)))
        text += u'a';

    QCOMPARE(double(TextRenderer::fineTextWidth(text, metrics)),
             metrics.horizontalAdvance(text) + 2);
}

void tst_FineTextWidth::fractionalAdvanceIsRoundedUp()
{
    const QFontMetricsF metrics(pixelFont());
    int nearestIsBelow = 0;
    int nearestIsAbove = 0;
    for (QString text(u'a'); text.size() < 64; text += u'a') {
        const double advance = metrics.horizontalAdvance(text);
        const double fraction = advance - std::floor(advance);
        if (fraction == 0)
            continue;
        nearestIsBelow += fraction < 0.5;
        nearestIsAbove += fraction > 0.5;
        QCOMPARE(double(TextRenderer::fineTextWidth(text, metrics)), std::floor(advance) + 1 + 2);
    }
    QVERIFY(nearestIsBelow > 0);
    QVERIFY(nearestIsAbove > 0);
}

void tst_FineTextWidth::measuresTheWholeText()
{
    const QFontMetricsF metrics(pixelFont());
    const QString text = QStringLiteral("до\u2028после, ") + QChar(u'\0') + QStringLiteral("конец");
    QCOMPARE(TextRenderer::fineTextWidth(text, metrics),
             static_cast<int>(std::ceil(metrics.horizontalAdvance(text, -1))) + 2);
    QVERIFY(TextRenderer::fineTextWidth(text, metrics)
            > TextRenderer::fineTextWidth(text.chopped(1), metrics));
}

void tst_FineTextWidth::measuresWithTheGivenMetrics()
{
    const QString text = QStringLiteral("телепрограмма");
    for (const int pixelSize : {9, 20, 41}) {
        const QFont font = pixelFont(pixelSize);
        QCOMPARE(TextRenderer::fineTextWidth(text, QFontMetricsF(font)), fineWidth(text, font));
    }
}

void tst_FineTextWidth::toIntTruncatesAndSaturates_data()
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr double infinity = std::numeric_limits<double>::infinity();

    QTest::addColumn<double>("value");
    QTest::addColumn<int>("expected");

    QTest::newRow("zero") << 0.0 << 0;
    QTest::newRow("below one") << 0.9 << 0;
    QTest::newRow("above minus one") << -0.9 << 0;
    QTest::newRow("whole") << 7.0 << 7;
    QTest::newRow("positive") << 7.9 << 7;
    QTest::newRow("negative") << -7.9 << -7;
    QTest::newRow("just below the highest") << 2147483646.9 << highest - 1;
    QTest::newRow("highest") << 2147483647.0 << highest;
    QTest::newRow("highest and a part") << 2147483647.9 << highest;
    QTest::newRow("above the highest") << 2147483648.0 << highest;
    QTest::newRow("far above") << 1e300 << highest;
    QTest::newRow("infinity") << infinity << highest;
    QTest::newRow("just above the lowest") << -2147483647.9 << lowest + 1;
    QTest::newRow("lowest") << -2147483648.0 << lowest;
    QTest::newRow("lowest and a part") << -2147483648.9 << lowest;
    QTest::newRow("below the lowest") << -2147483649.0 << lowest;
    QTest::newRow("far below") << -1e300 << lowest;
    QTest::newRow("minus infinity") << -infinity << lowest;
}

void tst_FineTextWidth::toIntTruncatesAndSaturates()
{
    QFETCH(double, value);
    QFETCH(int, expected);

    QCOMPARE(toInt(value), expected);
}

void tst_FineTextWidth::toIntOfNotANumberIsTheLowestInt()
{
    // A plain conversion would be undefined behaviour.
    QCOMPARE(toInt(std::numeric_limits<double>::quiet_NaN()), std::numeric_limits<int>::min());
}

QTEST_MAIN(tst_FineTextWidth)

#include "tst_finetextwidth.moc"
