#include "layoutinvariants.h"
#include "oddtext.h"
#include "referencelayout.h"
#include "textsupport.h"

#include "support/properties.h"
#include "support/shapercalls.h"

#include <ovelin/textrenderer.h>

#include <private/qtguiglobal_p.h>

#include <limits>

using namespace ovelin;
using namespace ovelin::tests;

// Checks rules that hold for every text, with random texts and random setups of the renderer.

namespace {

constexpr int most = std::numeric_limits<int>::max();

struct Setup
{
    std::string bytes;
    int pixelSize;
    int letterSpacing;
    int maxLineCount;
    int width;
    bool widthIsMaximal;
    bool hyphenationEnabled;
    Qt::TextFormat format;
    Qt::Alignment alignment;
    int availableHeight;
    QPoint topLeft;
};

std::ostream &operator<<(std::ostream &stream, const Setup &setup)
{
    return stream << rc::toString(setup.bytes) << " in " << setup.pixelSize << " pixels with "
                  << setup.letterSpacing << ", " << setup.maxLineCount << " lines, "
                  << (setup.widthIsMaximal ? "maximal width " : "width ") << setup.width
                  << ", hyphenation " << setup.hyphenationEnabled << ", format " << setup.format
                  << ", alignment " << setup.alignment.toInt() << ", height "
                  << setup.availableHeight << ", at " << setup.topLeft.x() << ", "
                  << setup.topLeft.y();
}

// Input for oddText(). RapidCheck's own strings are mostly ASCII.
rc::Gen<std::string> anyBytes()
{
    return rc::gen::container<std::string>(rc::gen::weightedOneOf<char>({
        {3, rc::gen::element(' ', ' ', '-', '\n', 'g', 's', 'x', 'w', 'i', ',', '1')},
        {3, rc::gen::map(rc::gen::inRange(0xc0, 0x100), [](int c) { return char(c); })},
        {2, rc::gen::map(rc::gen::inRange(0x80, 0xc0), [](int c) { return char(c); })},
        {1, rc::gen::arbitrary<char>()},
    }));
}

rc::Gen<int> anySize(int usualEnd)
{
    return rc::gen::weightedOneOf<int>({{8, rc::gen::inRange(-1, usualEnd)},
                                        {1, rc::gen::arbitrary<int>()},
                                        {1, rc::gen::element(-most - 1, most)}});
}

rc::Gen<Setup> anySetup()
{
    return rc::gen::build<Setup>(
        rc::gen::set(&Setup::bytes, anyBytes()),
        rc::gen::set(&Setup::pixelSize, rc::gen::element(20, 1, 11, 27, 40)),
        rc::gen::set(&Setup::letterSpacing,
                     rc::gen::weightedElement<int>({{8, 0}, {1, -3}, {1, 5}, {1, 30}, {1, -30}})),
        rc::gen::set(&Setup::maxLineCount, anySize(6)), rc::gen::set(&Setup::width, anySize(300)),
        rc::gen::set(&Setup::widthIsMaximal), rc::gen::set(&Setup::hyphenationEnabled),
        rc::gen::set(
            &Setup::format,
            rc::gen::weightedElement<Qt::TextFormat>(
                {{8, Qt::PlainText}, {2, Qt::AutoText}, {1, Qt::MarkdownText}, {1, Qt::RichText}})),
        rc::gen::set(&Setup::alignment,
                     rc::gen::element<Qt::Alignment>(Qt::AlignLeft, Qt::AlignCenter,
                                                     Qt::AlignRight | Qt::AlignBottom)),
        rc::gen::set(&Setup::availableHeight, anySize(200)),
        rc::gen::set(&Setup::topLeft, rc::gen::construct<QPoint>(anySize(100), anySize(100))));
}

void apply(TextRenderer &renderer, const Setup &setup)
{
    QFont font = pixelFont(setup.pixelSize);
    font.setLetterSpacing(QFont::AbsoluteSpacing, setup.letterSpacing);
    renderer.setTextFont(font);
    renderer.setTextFormat(setup.format);
    renderer.setTextAlignment(setup.alignment);
    renderer.setMaxLineCount(setup.maxLineCount);
    renderer.setHyphenationEnabled(setup.hyphenationEnabled);
    renderer.setAvailableHeight(setup.availableHeight);
    renderer.setTextTopLeft(setup.topLeft);
    renderer.setMaxTextWidth(setup.widthIsMaximal ? setup.width : 0);
    renderer.setTextWidth(setup.widthIsMaximal ? 0 : setup.width);
    renderer.setText(oddText(setup.bytes));
    // Without this, some widths would keep the previous layout.
    layOutAgain(renderer);
}

// Checks a rule for any valid setup, in a renderer that had another setup before.
template<typename Rule>
void checkRule(int caseCount, const Rule &rule)
{
    checkProperty(caseCount, [&rule] {
        const Setup before = *anySetup();
        const Setup setup = *anySetup();
        TextRenderer renderer;
        apply(renderer, before);
        apply(renderer, setup);
        RC_PRE(renderer.isValid());

        const QString violation = rule(renderer, setup);
        if (!violation.isEmpty())
            RC_FAIL(violation.toStdString());
    });
}

TextRenderer rendererInBox(const QString &text, int width, int maxLineCount)
{
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setTextFormat(Qt::PlainText);
    renderer.setTextWidth(width);
    renderer.setMaxLineCount(maxLineCount);
    renderer.setText(text);
    return renderer;
}

QString shapingViolationInBox(const QString &text, int width, int maxLineCount)
{
    TextRenderer renderer = rendererInBox(text, width, maxLineCount);
    renderer.relayout();
    const QString violation = shapingViolation(renderer);
    if (violation.isEmpty())
        return {};
    return QStringLiteral("Width %1, %2 lines: %3").arg(width).arg(maxLineCount).arg(violation);
}

int layoutCalls(const QString &text, int width, int maxLineCount)
{
    TextRenderer renderer = rendererInBox(text, width, maxLineCount);
    return countShaperCalls([&] { renderer.relayout(); });
}

} // namespace

class tst_TextLayoutInvariants : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void isSourceWithBreaksTellsSourcesApart_data();
    void isSourceWithBreaksTellsSourcesApart();

    void showsTheSource();
    void keepsTheLineLimit();
    void paintsNoMoreLinesThanAllowed();
    void secondLayoutGivesTheSame();
    void copyShowsTheSame();
    void geometryIsThatOfANewRenderer();
    void movesWithoutALayout();
    void keepsTheLayoutInABoxThatIsWideEnough();

    void everyRuleHoldsForATextOfAllOddCharacters();

    void shaperCallsAreCounted();
    void shapesNoMoreThanTheLinesShown();
    void shapesNoMoreThanTheLinesShownInAnyBox_data();
    void shapesNoMoreThanTheLinesShownInAnyBox();
    void shapesNoMoreThanTheLinesShownOfALongWord();
    void doesNotShapeTheTextBeyondTheLineLimit();
    void shapesFewPrefixesOfAWordThatIsSplit();
    void readsAfterAMovedHyphenFromTheSameRun();
    void shaperCallsGrowLinearlyWithMeasuredWords();
};

void tst_TextLayoutInvariants::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_TextLayoutInvariants::isSourceWithBreaksTellsSourcesApart_data()
{
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("isAll");
    QTest::addColumn<bool>("isPrefix");

    const auto row = [](const char *shown, const char *source, bool isAll, bool isPrefix) {
        QTest::addRow("\"%s\" for \"%s\"", QByteArray(shown).replace('\n', '|').constData(),
                      QByteArray(source).replace('\n', '|').constData())
            << QString::fromLatin1(shown) << QString::fromLatin1(source) << isAll << isPrefix;
    };
    row("", "", true, true);
    row("ab", "ab", true, true);
    row("a", "ab", false, true);
    row("ab", "a", false, false);
    row("ba", "ab", false, false);
    row("a\nb", "ab", true, true);
    row("a-\nb", "ab", true, true);
    row("a-b", "ab", false, false);
    row("a-", "ab", false, false);
    row("-\na", "-a", true, true);
    row("-\n-a", "-a", true, true);
    row("\n-a", "-a", true, true);
    row("-\n-\n-a", "-a", true, true);
    row("a\n\nb", "a\nb", true, true);
    row("a-\n\nb", "a\nb", true, true);
    row("a-\nb", "a\nb", false, false);
    row("a b", "a\nb", false, false);
}

void tst_TextLayoutInvariants::isSourceWithBreaksTellsSourcesApart()
{
    QFETCH(QString, shown);
    QFETCH(QString, source);

    QTEST(isSourceWithBreaks(shown, source, Extent::All), "isAll");
    QTEST(isSourceWithBreaks(shown, source, Extent::Prefix), "isPrefix");
}

void tst_TextLayoutInvariants::showsTheSource()
{
    checkRule(400, [](const TextRenderer &r, const Setup &) { return sourceViolation(r); });
}

void tst_TextLayoutInvariants::keepsTheLineLimit()
{
    checkRule(400, [](const TextRenderer &r, const Setup &) { return lineLimitViolation(r); });
}

// Tries only Russian words with single spaces: Qt may break other texts where the layout counts no line.
void tst_TextLayoutInvariants::paintsNoMoreLinesThanAllowed()
{
    TextRenderer line;
    line.setTextFont(pixelFont());
    line.setText(QStringLiteral("a"));
    const int lineHeight = line.boundingSize().height();

    int full = 0;
    checkProperty(1000, [lineHeight, &full] {
        const auto wordSizes = *rc::gen::container<std::vector<int>>(rc::gen::inRange(1, 20));
        QString text;
        for (const int size : wordSizes) {
            for (int letter = 0; letter < size; ++letter)
                text += QChar(*rc::gen::inRange<char16_t>(u'а', u'я' + 1));
            text += u' ';
        }
        RC_PRE(!text.isEmpty());

        const int allowed = *rc::gen::inRange(1, 6);
        TextRenderer renderer;
        renderer.setTextFont(pixelFont());
        renderer.setMaxLineCount(allowed);
        renderer.setHyphenationEnabled(*rc::gen::arbitrary<bool>());
        renderer.setTextWidth(*rc::gen::inRange(1, 400));
        renderer.setText(text);
        const int lines = qRound(double(renderer.boundingSize().height()) / lineHeight);
        RC_ASSERT(lines <= allowed);
        full += lines == allowed && renderer.isTextElided() ? 1 : 0;
    });
    QVERIFY(full > 0);
}

void tst_TextLayoutInvariants::secondLayoutGivesTheSame()
{
    checkRule(400, [](TextRenderer &r, const Setup &) { return repetitionViolation(r); });
}

void tst_TextLayoutInvariants::copyShowsTheSame()
{
    checkRule(400, [](const TextRenderer &r, const Setup &) { return copyViolation(r); });
}

void tst_TextLayoutInvariants::geometryIsThatOfANewRenderer()
{
    checkRule(400, [](TextRenderer &r, const Setup &setup) {
        return geometryViolation(r, setup.availableHeight);
    });
}

void tst_TextLayoutInvariants::movesWithoutALayout()
{
    checkRule(400, [](TextRenderer &r, const Setup &setup) {
        return moveViolation(r, {setup.width, setup.availableHeight});
    });
}

void tst_TextLayoutInvariants::keepsTheLayoutInABoxThatIsWideEnough()
{
    int kept = 0;
    checkRule(400, [&kept](TextRenderer &r, const Setup &setup) {
        const int textWidth = TextRenderer::fineTextWidth(r.text(), QFontMetricsF(r.textFont()));
        QString violation;
        for (const int width : {textWidth, textWidth + setup.pixelSize, setup.width, 0}) {
            if (violation.isEmpty())
                violation = widthViolation(r, width);
            kept += r.isNeedRelayout() ? 0 : 1;
            r.relayout();
        }
        return violation;
    });
    QVERIFY(kept > 0);
}

void tst_TextLayoutInvariants::everyRuleHoldsForATextOfAllOddCharacters()
{
    std::string bytes;
    for (int byte = 0; byte < 0x100; ++byte)
        bytes += static_cast<char>(byte * 7); // all 256 bytes, mixed
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setTextFormat(Qt::PlainText);
    renderer.setText(oddText(bytes));

    for (const int width : {0, 1, 40, 400, most}) {
        renderer.setTextWidth(width);
        for (const int maxLineCount : {-1, 1, 2, 5, most}) {
            renderer.setMaxLineCount(maxLineCount);
            renderer.relayout();
            const QString violation = layoutViolation(renderer, 0);
            QVERIFY2(violation.isEmpty(), qPrintable(violation));
        }
    }
}

void tst_TextLayoutInvariants::shaperCallsAreCounted()
{
#if QT_CONFIG(system_harfbuzz)
    const QFontMetricsF metrics(pixelFont());
    const QString word = QStringLiteral("word");
    QCOMPARE(countShaperCalls([&] { metrics.horizontalAdvance(word); }), 1);
#else
    QSKIP("This Qt contains the text shaper.");
#endif
}

void tst_TextLayoutInvariants::shapesNoMoreThanTheLinesShown()
{
    checkRule(400, [](TextRenderer &r, const Setup &) { return shapingViolation(r); });
}

void tst_TextLayoutInvariants::shapesNoMoreThanTheLinesShownInAnyBox_data()
{
    QTest::addColumn<QString>("pattern");

    QTest::newRow("words") << QStringLiteral("программа ");
    QTest::newRow("one word") << QStringLiteral("программа");
    QTest::newRow("one word of narrow letters") << QStringLiteral("i");
    QTest::newRow("one word that is a number") << QStringLiteral("-1");
    QTest::newRow("hyphens in words") << QStringLiteral("www-wwwwwwwwwww ");
    QTest::newRow("hyphens") << QStringLiteral("-");
    QTest::newRow("spaces") << QStringLiteral(" ");
    QTest::newRow("punctuation") << QStringLiteral(". ");
    QTest::newRow("paragraphs") << QStringLiteral("a\n");
    QTest::newRow("two scripts") << QStringLiteral("Новости news ");
    QTest::newRow("right to left") << QStringLiteral("\u0644\u0627 ");
    QTest::newRow("surrogate pairs") << QStringLiteral("\U0001F600");
    QTest::newRow("marks") << QStringLiteral("\u0301");
    QTest::newRow("zero width spaces") << QStringLiteral("\u200b");
}

void tst_TextLayoutInvariants::shapesNoMoreThanTheLinesShownInAnyBox()
{
    QFETCH(QString, pattern);
    const QString text = pattern.repeated((isRunReduced() ? 100 : 2000) / pattern.size());

    for (const int width : {1, 10, 30, 300, 1000, most}) {
        for (const int maxLineCount : {-1, 0, 1, 2, 10, most}) {
            const QString violation = shapingViolationInBox(text, width, maxLineCount);
            QVERIFY2(violation.isEmpty(), qPrintable(violation));
        }
    }
}

void tst_TextLayoutInvariants::shapesNoMoreThanTheLinesShownOfALongWord()
{
    const QString word = QStringLiteral("news").repeated(isRunReduced() ? 500 : 25'000);

    for (const int maxLineCount : {0, 1, 3, most}) {
        const QString violation = shapingViolationInBox(word, 300, maxLineCount);
        QVERIFY2(violation.isEmpty(), qPrintable(violation));
    }
}

void tst_TextLayoutInvariants::doesNotShapeTheTextBeyondTheLineLimit()
{
    constexpr int width = 300;
    constexpr int maxLineCount = 3;
    const QString words = QStringLiteral("программа передач ");
    const int calls = layoutCalls(words.repeated(40), width, maxLineCount);
    if (calls == 0)
        QSKIP("This Qt contains the text shaper, whose calls cannot be counted.");

    QCOMPARE(layoutCalls(words.repeated(2000), width, maxLineCount), calls);
}

// The layout does not measure a prefix for each letter of a line.
void tst_TextLayoutInvariants::shapesFewPrefixesOfAWordThatIsSplit()
{
    constexpr int width = 1000;
    constexpr int maxLineCount = 20;
    const QString letter = QStringLiteral("ש");
    const double lettersPerLine = width / QFontMetricsF(pixelFont()).horizontalAdvance(letter);

    const int calls = layoutCalls(letter.repeated(5000), width, maxLineCount);
    if (calls == 0)
        QSKIP("This Qt contains the text shaper, whose calls cannot be counted.");

    QVERIFY(calls < maxLineCount * lettersPerLine / 2);
}

void tst_TextLayoutInvariants::readsAfterAMovedHyphenFromTheSameRun()
{
    constexpr int width = 400;
    constexpr int maxLineCount = 3;
    const QString first = QStringLiteral("w").repeated(20);
    // The word is too short to be split.
    const QString second = QStringLiteral("-") + QStringLiteral("w").repeated(7);
    const QString fewMore = second + QStringLiteral(" и и");
    const QString more = second + QStringLiteral(" и и и и и и и");
    QVERIFY(advance(first + second) > width);
    QVERIFY(advance(more) < width - pixelFont().pixelSize());

    const int calls = layoutCalls(first + fewMore, width, maxLineCount);
    if (calls == 0)
        QSKIP("This Qt contains the text shaper, whose calls cannot be counted.");

    QCOMPARE(layoutCalls(first + more, width, maxLineCount), calls);
}

// Four times as many words on one line take at most four times as many calls.
void tst_TextLayoutInvariants::shaperCallsGrowLinearlyWithMeasuredWords()
{
    constexpr int width = 10'000;
    constexpr int words = 100;
    const QString word = QStringLiteral("ש") + QStringLiteral("\u05b0").repeated(60) + u' ';
    const QString line = word.repeated(4 * words);
    QVERIFY(advance(line) < width);

    const int calls = layoutCalls(word.repeated(words), width, 1);
    if (calls == 0)
        QSKIP("This Qt contains the text shaper, whose calls cannot be counted.");

    QCOMPARE_LE(layoutCalls(line, width, 1), 4 * calls);
}

QTEST_MAIN(tst_TextLayoutInvariants)

#include "tst_textlayout_invariants.moc"
