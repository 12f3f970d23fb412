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
    void brokenAdvanceIsRoundedUp();
    void measuresTheWholeText();
    void measuresWithTheGivenMetrics();

    void toIntTruncatesAndSaturates_data();
    void toIntTruncatesAndSaturates();
    void toIntOfNoNumberEnds();
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
    // Advances are multiples of 1/64 pixel, so that some repetition of a letter is whole.
    const QFontMetricsF metrics(pixelFont());
    QString text(QStringLiteral("a"));
    while (metrics.horizontalAdvance(text) != std::floor(metrics.horizontalAdvance(text)))
        text += u'a';

    QCOMPARE(double(TextRenderer::fineTextWidth(text, metrics)),
             metrics.horizontalAdvance(text) + 2);
}

void tst_FineTextWidth::brokenAdvanceIsRoundedUp()
{
    const QFontMetricsF metrics(pixelFont());
    int slightlyAbove = 0;
    int slightlyBelow = 0;
    for (QString text(u'a'); text.size() < 64; text += u'a') {
        const double advance = metrics.horizontalAdvance(text);
        const double fraction = advance - std::floor(advance);
        if (fraction == 0)
            continue;
        slightlyAbove += fraction < 0.5;
        slightlyBelow += fraction > 0.5;
        QCOMPARE(double(TextRenderer::fineTextWidth(text, metrics)), std::floor(advance) + 1 + 2);
    }
    QVERIFY(slightlyAbove > 0);
    QVERIFY(slightlyBelow > 0);
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
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    constexpr double infinity = std::numeric_limits<double>::infinity();

    QTest::addColumn<double>("value");
    QTest::addColumn<int>("expected");

    QTest::newRow("zero") << 0.0 << 0;
    QTest::newRow("below one") << 0.9 << 0;
    QTest::newRow("above minus one") << -0.9 << 0;
    QTest::newRow("whole") << 7.0 << 7;
    QTest::newRow("positive") << 7.9 << 7;
    QTest::newRow("negative") << -7.9 << -7;
    QTest::newRow("just below the most") << 2147483646.9 << most - 1;
    QTest::newRow("most") << 2147483647.0 << most;
    QTest::newRow("most and a part") << 2147483647.9 << most;
    QTest::newRow("above the most") << 2147483648.0 << most;
    QTest::newRow("far above") << 1e300 << most;
    QTest::newRow("infinity") << infinity << most;
    QTest::newRow("just above the least") << -2147483647.9 << least + 1;
    QTest::newRow("least") << -2147483648.0 << least;
    QTest::newRow("least and a part") << -2147483648.9 << least;
    QTest::newRow("below the least") << -2147483649.0 << least;
    QTest::newRow("far below") << -1e300 << least;
    QTest::newRow("minus infinity") << -infinity << least;
}

void tst_FineTextWidth::toIntTruncatesAndSaturates()
{
    QFETCH(double, value);
    QFETCH(int, expected);

    QCOMPARE(toInt(value), expected);
}

void tst_FineTextWidth::toIntOfNoNumberEnds()
{
    // Which number is arbitrary; under the undefined behaviour sanitizer the conversion must not trap.
    QCOMPARE(toInt(std::numeric_limits<double>::quiet_NaN()), std::numeric_limits<int>::min());
}

QTEST_MAIN(tst_FineTextWidth)

#include "tst_finetextwidth.moc"
