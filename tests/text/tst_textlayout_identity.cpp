#include "layoutcomparison.h"
#include "randomchoice.h"
#include "testfonts.h"
#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QFontMetricsF>
#include <QStaticText>
#include <QTest>

#include <limits>

using namespace ovelin;
using namespace ovelin::tests;

namespace {

constexpr int most = std::numeric_limits<int>::max();

// The least number of cases for each font. With fewer cases the layout may never read an advance so wrong that it
// falls back to measuring.
constexpr int fewestFontCases = 25;

class CaseMaker : private RandomChoice
{
public:
    enum Kind { Russian, Latin, Mixed, Separators, Odd, Scripts, LongWords, LongTexts };

    CaseMaker(Kind kind, unsigned seed, const QString &fontFamily = pixelFont().family())
        : RandomChoice(seed)
        , m_kind(kind)
        , m_fontFamily(fontFamily)
    {
    }

    ReferenceInput next()
    {
        ReferenceInput input;
        input.text = text();
        input.font = font();
        input.maxLineCount = oneOf(QList<int>{-1, 0, 1, 2, 2, 3, 3, 4, 5, 6, most, most});
        input.hyphenationEnabled = below(3) > 0;
        input.format = oneOf(QList<Qt::TextFormat>{Qt::AutoText, Qt::AutoText, Qt::PlainText,
                                                   Qt::PlainText, Qt::MarkdownText, Qt::RichText});
        const int limit = width(input.text, input.font);
        if (below(4) == 0)
            input.maxTextWidth = limit;
        else
            input.textWidth = limit;
        return input;
    }

private:
    QString letters(const QString &alphabet, int longest)
    {
        QString result;
        for (int length = 1 + below(longest); length > 0; --length)
            result += alphabet.at(below(int(alphabet.size())));
        return result;
    }

    QString word()
    {
        static const QStringList russian{
            QStringLiteral("программа"),  QStringLiteral("сообщение"), QStringLiteral("район"),
            QStringLiteral("подъезд"),    QStringLiteral("стройка"),   QStringLiteral("выход"),
            QStringLiteral("и"),          QStringLiteral("на"),        QStringLiteral("Новости"),
            QStringLiteral("телеканала"), QStringLiteral("Сегодня"),   QStringLiteral("ВЕЧЕРОМ"),
            QStringLiteral("ёж"),         QStringLiteral("съёмочная"), QStringLiteral("серия"),
        };
        static const QStringList latin{
            QStringLiteral("eggs"), QStringLiteral("x"),       QStringLiteral("www"),
            QStringLiteral("the"),  QStringLiteral("episode"), QStringLiteral("gsgsgs"),
            QStringLiteral("iiii"), QStringLiteral("mmmmmmm"), QStringLiteral("AVAVAV"),
        };
        static const QStringList others{
            QStringLiteral("2024"), QStringLiteral("1-2"),      QStringLiteral("10-20-30"),
            QStringLiteral("5,5"),  QStringLiteral("!?"),       QStringLiteral("«да»"),
            QStringLiteral("..."),  QStringLiteral("т.е."),     QStringLiteral("до-1а"),
            QStringLiteral("\t"),   QStringLiteral("а\u00a0б"), QStringLiteral("—"),
        };
        static const QStringList odd{
            QStringLiteral("İİаба"),      QStringLiteral("\U0001F600\U0001F601"),
            QStringLiteral("\U0001D49C"), QStringLiteral("e\u0301e\u0301"),
            QStringLiteral("שלום"),       QStringLiteral("\u00adмягкий"),
            QStringLiteral("İİİ-"),       QStringLiteral("日本語テレビ"),
            QString(QChar(0xd83d)),       QString(QChar(0xde00)),
            QStringLiteral("\u200b"),     QStringLiteral("\u2026"),
            QString(QChar(u'\0')),        QStringLiteral("\u0661\u0662"),
        };

        // Ligatures, combining marks, joining letters, and both directions.
        static const QStringList scripts{
            QStringLiteral("office"),
            QStringLiteral("fluffiest"),
            QStringLiteral("fi"),
            QStringLiteral("affiffi"),
            QStringLiteral("програ\u0301мма"),
            QStringLiteral("e\u0301\u0302"),
            QStringLiteral("السلام"),
            QStringLiteral("لاإله"),
            QStringLiteral("בוקר"),
            QStringLiteral("हिन्दी"),
            QStringLiteral("Ёлка"),
            QStringLiteral("ΑΥΡΑ"),
        };

        // The last two have signs that take the script of the letters beside them or are mirrored.
        static const QStringList alphabets{
            QStringLiteral("абвгдейо"), QStringLiteral("abcdei"),     QStringLiteral("абвгдейо\t"),
            QStringLiteral("שלוםןוי"),  QStringLiteral("日テの。"),   QStringLiteral("ابلاسم"),
            QStringLiteral("שו。、"),   QStringLiteral("שו\u29f5\t"),
        };

        switch (m_kind) {
        case Russian:
        case LongTexts:
            return below(3) ? oneOf(russian)
                            : letters(QStringLiteral("абвгдеёжзийклмнопрстуъьы"), 14);
        case Latin:
            return below(3) ? oneOf(latin) : letters(QStringLiteral("abcgsxgsxwi"), 14);
        case Mixed:
            switch (below(4)) {
            case 0:
                return oneOf(russian);
            case 1:
                return oneOf(latin);
            case 2:
                return oneOf(others);
            default:
                return letters(QStringLiteral("абгgsx-1ЩiW, .йь"), 16);
            }
        case Separators:
            return below(2) ? letters(QStringLiteral("wi"), 4)
                            : letters(QStringLiteral(" -\u2028\n1w"), 4);
        case Odd:
            return below(2) ? oneOf(odd) : oneOf(russian);
        case Scripts:
            return below(4) ? oneOf(scripts) : oneOf(russian);
        case LongWords:
            return letters(oneOf(alphabets), 900);
        }
        return {};
    }

    QString separator()
    {
        static const QStringList usual{
            QStringLiteral(" "),
            QStringLiteral(" "),
            QStringLiteral(" "),
            QStringLiteral("-"),
        };
        static const QStringList rare{
            QStringLiteral("  "),      QStringLiteral("--"),  QStringLiteral(" -"),
            QStringLiteral("- "),      QStringLiteral("\n"),  QStringLiteral("\n\n"),
            QStringLiteral(" \n"),     QStringLiteral("\n "), QStringLiteral("-\n"),
            QStringLiteral("\u2028"),  QStringLiteral("-1"),  QStringLiteral(", "),
            QStringLiteral(" - "),     QStringLiteral("\t"),  QStringLiteral("-\u2028"),
            QStringLiteral("\u2028-"),
        };
        return below(3) ? oneOf(usual) : oneOf(rare);
    }

    QString text()
    {
        QString result;
        if (below(8) == 0)
            result += separator();
        const int mostWords = m_kind == LongTexts ? 120 : m_kind == LongWords ? 2 : 7;
        for (int words = 1 + below(mostWords); words > 0; --words) {
            result += word();
            if (words > 1 || below(6) == 0)
                result += separator();
        }
        return result;
    }

    QFont font()
    {
        QFont font = pixelFont(oneOf(QList<int>{1, 2, 11, 16, 20, 20, 27, 40}));
        font.setFamily(m_fontFamily);
        // Odd texts have halves of surrogate pairs: in capitals, Qt measures these differently each time.
        if (below(10) == 0 && m_kind != Odd)
            font.setCapitalization(oneOf(QList<QFont::Capitalization>{
                QFont::Capitalize, QFont::SmallCaps, QFont::AllUppercase, QFont::AllLowercase}));
        if (below(10) == 0)
            font.setStretch(oneOf(QList<int>{50, 200, 600, 4000}));
        font.setBold(below(10) == 0);
        // With strong negative spacing a hyphen has a negative advance: it makes the line narrower.
        if (below(5) == 0) {
            font.setLetterSpacing(QFont::AbsoluteSpacing,
                                  oneOf(QList<double>{0.5, 3, 10, 25, -1, -2.5, -5, -8, -13}));
        } else if (below(10) == 0) {
            font.setLetterSpacing(QFont::PercentageSpacing,
                                  oneOf(QList<double>{80, 130, 400, 2000}));
        }
        if (below(10) == 0)
            font.setWordSpacing(oneOf(QList<double>{8, 30, -4}));
        return font;
    }

    Kind m_kind;
    QString m_fontFamily;
};

QList<int> widthsBelow(double end, int step = 1)
{
    if (isRunReduced())
        step *= 7;
    QList<int> widths;
    for (int width = 1; width < end; width += step)
        widths.append(width);
    return widths;
}

// Compares the input at each width and line limit, up to the first failure.
void compareInBoxes(ReferenceInput input, const QList<int> &widths, const QList<int> &lineCounts)
{
    for (const int width : widths) {
        input.textWidth = width;
        for (const int lineCount : lineCounts) {
            input.maxLineCount = lineCount;
            if (QTest::currentTestFailed())
                return;
            compare(input);
        }
    }
}

} // namespace

Q_DECLARE_METATYPE(ovelin::tests::Kerning)

class tst_TextLayoutIdentity : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void agreesWithTheReferenceLayout_data();
    void agreesWithTheReferenceLayout();
    void agreesInStronglyKernedFonts_data();
    void agreesInStronglyKernedFonts();
    void agreesOnTextsInKernedFontsThatWereWrong_data();
    void agreesOnTextsInKernedFontsThatWereWrong();
    void agreesInLongTextsCutAtAnyLine_data();
    void agreesInLongTextsCutAtAnyLine();
    void agreesInCapitalizedText_data();
    void agreesInCapitalizedText();
    void agreesOnLinesOfManyNarrowLetters();
    void agreesOnLongLinesOfManyScripts_data();
    void agreesOnLongLinesOfManyScripts();
    void agreesOnTextsWithAStringTerminator();
    void agreesOnTabsInSmallFonts();
    void agreesOnLinesThatEndInsideLigatures_data();
    void agreesOnLinesThatEndInsideLigatures();
    void agreesAtHighLineLimits_data();
    void agreesAtHighLineLimits();
    void agreesOnRareWords_data();
    void agreesOnRareWords();
    void agreesWhereAHyphenFillsTheLine();
    void agreesInFontsWithExtremeLetterSpacing_data();
    void agreesInFontsWithExtremeLetterSpacing();
    void agreesInFontsOfExtremeSizes_data();
    void agreesInFontsOfExtremeSizes();
    void agreesOnLongLinesThatALaterCharacterNarrows_data();
    void agreesOnLongLinesThatALaterCharacterNarrows();
    void reusedRendererGivesTheSameAsANewOne();
};

void tst_TextLayoutIdentity::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_TextLayoutIdentity::agreesWithTheReferenceLayout_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<unsigned>("seed");

    QTest::newRow("Russian") << int(CaseMaker::Russian) << 1U;
    QTest::newRow("Latin") << int(CaseMaker::Latin) << 2U;
    QTest::newRow("mixed") << int(CaseMaker::Mixed) << 3U;
    QTest::newRow("separators") << int(CaseMaker::Separators) << 4U;
    QTest::newRow("odd characters") << int(CaseMaker::Odd) << 5U;
    QTest::newRow("scripts") << int(CaseMaker::Scripts) << 6U;
    QTest::newRow("long words") << int(CaseMaker::LongWords) << 7U;
    QTest::newRow("long texts") << int(CaseMaker::LongTexts) << 8U;
}

void tst_TextLayoutIdentity::agreesWithTheReferenceLayout()
{
    QFETCH(int, kind);
    QFETCH(unsigned, seed);

    LayoutCounts counts;
    CaseMaker maker(static_cast<CaseMaker::Kind>(kind), seed);
    // The reference layout measures a long line as often as it has words.
    const bool isLong = kind == CaseMaker::LongWords || kind == CaseMaker::LongTexts;
    const int cases = isLong ? caseCount() / 5 : caseCount();
    for (int i = 0; i < cases; ++i) {
        const ReferenceInput input = maker.next();
        if (input.text.isEmpty())
            continue;
        compare(input, &counts);
        if (QTest::currentTestFailed())
            return;
    }

    // Comparing shows little if too few cases are elided, broken, hyphenated or repeated.
    if (caseCount() < usualTextCases)
        return;
    const QByteArray description = counts.description();
    QVERIFY2(counts.compared > 4 * cases / 5, description.constData());
    QVERIFY2(counts.elided > cases / 10, description.constData());
    QVERIFY2(counts.broken > cases / 20, description.constData());
    QVERIFY2(counts.repeated > cases / 250, description.constData());
    QVERIFY2(counts.hyphenated > 0, description.constData());
    qInfo("%s", description.constData());
}

void tst_TextLayoutIdentity::agreesInStronglyKernedFonts_data()
{
    QTest::addColumn<Kerning>("kerning");

    // Each glyph of a kerned pair becomes wider by half of the kerning. So the advance of a prefix by itself
    // differs from its advance in the line by half of the kerning. In these rows this half is less than the
    // tolerance of half an em.
    QTest::newRow("closer to spaces") << Kerning{.beforeSpace = -450};
    QTest::newRow("farther from spaces") << Kerning{.beforeSpace = 450};
    QTest::newRow("closer to the letter before") << Kerning{.afterSpace = -450};
    QTest::newRow("letters closer") << Kerning{.betweenLetters = -240};
    QTest::newRow("letters farther apart") << Kerning{.betweenLetters = 240};
    // The advances differ by more than the tolerance.
    QTest::newRow("spaces swallowed") << Kerning{.beforeSpace = -1400};
    QTest::newRow("far from spaces") << Kerning{.beforeSpace = 1400};
    QTest::newRow("very far from spaces") << Kerning{.beforeSpace = 2000};
}

void tst_TextLayoutIdentity::agreesInStronglyKernedFonts()
{
    QFETCH(Kerning, kerning);

    const InstalledFont installed(kernedFont(kerning));
    QVERIFY(!installed.family().isEmpty());
    const QFont font = installed.font(100);
    const auto kerned = [&font](const QString &pair) {
        return qRound(
            10
            * (advance(pair, font) - advance(pair.first(1), font) - advance(pair.last(1), font)));
    };
    QCOMPARE(kerned(QStringLiteral("a ")), kerning.beforeSpace);
    QCOMPARE(kerned(QStringLiteral(" b")), kerning.afterSpace);

    for (const QString &text : {QStringLiteral("eggs —--«да» s1i,б."), QStringLiteral("йg-i")}) {
        ReferenceInput input;
        input.text = text;
        input.font = font;
        for (const int pixelSize : {20, 40}) {
            input.font.setPixelSize(pixelSize);
            compareInBoxes(input, widthsBelow(advance(text, input.font)), {-1, 2});
        }
    }

    for (const auto kind : {CaseMaker::Russian, CaseMaker::Latin, CaseMaker::Mixed}) {
        CaseMaker maker(kind, 9, installed.family());
        for (int i = 0; i < std::max(fewestFontCases, caseCount() / 20); ++i) {
            compare(maker.next());
            if (QTest::currentTestFailed())
                return;
        }
    }
}

void tst_TextLayoutIdentity::agreesOnTextsInKernedFontsThatWereWrong_data()
{
    QTest::addColumn<int>("beforeSpace");
    QTest::addColumn<QFont>("font");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("lines");

    const auto sized = [](int pixelSize, int stretch) {
        QFont font;
        font.setPixelSize(pixelSize);
        font.setStretch(stretch);
        return font;
    };
    const auto spaced = [](QFont font, QFont::SpacingType type, double spacing) {
        font.setLetterSpacing(type, spacing);
        return font;
    };
    QTest::newRow("compared after a hyphen")
        << -1400 << spaced(sized(20, 600), QFont::PercentageSpacing, 400)
        << QStringLiteral("на на на- выход") << 767 << 2;
    QTest::newRow("compared in the middle of a word")
        << 1400 << spaced(sized(20, 100), QFont::PercentageSpacing, 2000)
        << QStringLiteral("eggs  mmmmmmm gsgsibixgwi mmmmmmm AVAVAV") << 963 << 6;
    QTest::newRow("a comma moves back")
        << -1400 << sized(16, 50)
        << QStringLiteral("xigxbc, wcgsaicxis sbxscgwaicab, sxw the www -gsgsgs") << 13 << 3;
    QTest::newRow("elided after several words")
        << -1400 << spaced(sized(20, 100), QFont::AbsoluteSpacing, 10)
        << QStringLiteral("1-2 «да»- eggs x -т.е. «да»\tсй,г") << 108 << 3;
    QTest::newRow("a narrow font")
        << -1400 << sized(16, 50) << QStringLiteral(" телеканала выход -Новости") << 24 << 3;
    QTest::newRow("compared in a word of one letter")
        << -1400 << spaced(sized(40, 100), QFont::AbsoluteSpacing, -2.5)
        << QStringLiteral("-\t gsgsgs-Щ, - а - телеканала") << 127 << 3;
    // The space after the text moves the last letter back. So Qt cuts the text after this letter.
    QTest::newRow("elided after the last letter")
        << -450 << spaced(sized(20, 100), QFont::PercentageSpacing, 2000) << QStringLiteral("лажк")
        << 957 << 1;
}

void tst_TextLayoutIdentity::agreesOnTextsInKernedFontsThatWereWrong()
{
    QFETCH(int, beforeSpace);
    QFETCH(QFont, font);
    QFETCH(QString, text);
    QFETCH(int, width);
    QFETCH(int, lines);

    const InstalledFont installed(kernedFont({.beforeSpace = beforeSpace}));
    font.setFamily(installed.family());

    ReferenceInput input;
    input.text = text;
    input.font = font;
    input.textWidth = width;
    input.maxLineCount = lines;
    for (const bool hyphenationEnabled : {false, true}) {
        input.hyphenationEnabled = hyphenationEnabled;
        compare(input);
    }
}

// In this box the first run of a text has 17 characters for each line of the limit, for at most 16 lines, and 5 more.
// With these sizes and limits the run ends before, in or after the second paragraph, and directly at its ends.
void tst_TextLayoutIdentity::agreesInLongTextsCutAtAnyLine_data()
{
    QTest::addColumn<int>("paragraphSize");

    for (int size = 30; size <= 300; size += 3)
        QTest::addRow("%d characters", size) << size;
}

void tst_TextLayoutIdentity::agreesInLongTextsCutAtAnyLine()
{
    QFETCH(int, paragraphSize);

    ReferenceInput input;
    input.font = pixelFont();
    constexpr int width = 196;
    input.textWidth = width;
    input.text = QStringLiteral("iiii ii wwww www iw ").repeated(60).left(paragraphSize);
    input.maxLineCount = most;
    const double lineHeight = QFontMetricsF(input.font).lineSpacing();
    const int lines = qRound(referenceLayout(input, candidateBudget).size.height() / lineHeight);

    input.text += QStringLiteral("\nzzzz yyyy xxxx vvvv uuuu tttt");
    compareInBoxes(input, {width}, {lines - 1, lines, lines + 1, lines + 2});
}

void tst_TextLayoutIdentity::agreesInCapitalizedText_data()
{
    QTest::addColumn<QFont::Capitalization>("capitalization");

    // A line that begins inside a word gets a capital letter that the word does not have.
    QTest::newRow("first letters") << QFont::Capitalize;
    QTest::newRow("small capitals") << QFont::SmallCaps;
    QTest::newRow("capitals") << QFont::AllUppercase;
    QTest::newRow("no capitals") << QFont::AllLowercase;
}

void tst_TextLayoutIdentity::agreesInCapitalizedText()
{
    QFETCH(const QFont::Capitalization, capitalization);

    ReferenceInput input;
    input.text = QStringLiteral("магистрали железнодорожной программирование");
    input.font = pixelFont(16);
    input.font.setCapitalization(capitalization);
    compareInBoxes(input, widthsBelow(advance(input.text, input.font)), {2, 3, 4, most});
}

// The lines have more letters than the estimate for a shaped run expects.
void tst_TextLayoutIdentity::agreesOnLinesOfManyNarrowLetters()
{
    ReferenceInput input;
    input.text =
        QStringLiteral("illi").repeated(400) + u' ' + QStringLiteral("li il").repeated(100);
    input.font = spacedFont(QFont::PercentageSpacing, 50);
    for (const qsizetype onLine : {400, 800, 1595, 1600, 1700, 2000}) {
        const int least = leastWidthThatFits(advance(input.text.first(onLine), input.font));
        compareInBoxes(input, {least - 1, least, least + 1, least + 2}, {3});
    }
}

void tst_TextLayoutIdentity::agreesOnLongLinesOfManyScripts_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<double>("spacing");

    const QString hebrew = QStringLiteral("שלום עולם ");
    QTest::newRow("Hebrew") << hebrew << 0.0;
    QTest::newRow("Hebrew, close letters") << hebrew << -3.0;
    QTest::newRow("Hebrew, negative advances") << hebrew << -13.0;
    QTest::newRow("letters that join") << QStringLiteral("السلام عليكم لا ") << 0.0;
    QTest::newRow("emoji that join") << QStringLiteral("\U0001F468\u200d\U0001F467 ") << 0.0;
    QTest::newRow("marks") << QStringLiteral("и\u0306е\u0301-я\u0301 ") << 0.0;
    QTest::newRow("tabs") << QStringLiteral("a\tbc\t d") << 0.0;
    QTest::newRow("two directions") << QStringLiteral("слово (של 12) ") << 0.0;
}

void tst_TextLayoutIdentity::agreesOnLongLinesOfManyScripts()
{
    QFETCH(QString, words);
    QFETCH(double, spacing);
    const qsizetype length = isRunReduced() ? 150 : 300;

    ReferenceInput input;
    input.text = words.repeated(length / words.size());
    input.font = spacedFont(QFont::AbsoluteSpacing, spacing);
    QList<int> widths;
    for (qsizetype onLine = length / 3; onLine < input.text.size(); onLine += 37) {
        const int least = leastWidthThatFits(advance(input.text.first(onLine), input.font));
        widths += {least - 1, least, least + 1};
    }
    compareInBoxes(input, widths, {1, 2, most});
}

// Qt measures a text only up to its first U+009C.
void tst_TextLayoutIdentity::agreesOnTextsWithAStringTerminator()
{
    ReferenceInput input;
    input.text = QStringLiteral("a\u009c\u2028wwww ww ww w");
    input.font = pixelFont();
    compareInBoxes(input, widthsBelow(150), {5});
    // elidedText() takes the characters after U+009C for a shorter form of the text.
    input.text = QStringLiteral("wwwwwwwwwwww\u009cab");
    compareInBoxes(input, widthsBelow(250), {1});
}

// Tab stops have a fixed distance in pixels in every font.
void tst_TextLayoutIdentity::agreesOnTabsInSmallFonts()
{
    ReferenceInput input;
    input.text = QStringLiteral("a\t b\t c");
    for (const int pixelSize : {1, 2, 3}) {
        input.font = pixelFont(pixelSize);
        compareInBoxes(input, widthsBelow(200), {2});
    }
}

void tst_TextLayoutIdentity::agreesOnLinesThatEndInsideLigatures_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("at the beginning") << QStringLiteral("fficuffic");
    QTest::newRow("at the end") << QStringLiteral("officoffi");
    QTest::newRow("several") << QStringLiteral("fluffiest affiffi office");
    QTest::newRow("before a paragraph") << QStringLiteral("office fi\n-стройка");
}

void tst_TextLayoutIdentity::agreesOnLinesThatEndInsideLigatures()
{
    QFETCH(QString, text);

    ReferenceInput input;
    input.text = text;
    for (const int pixelSize : {16, 27}) {
        input.font = pixelFont(pixelSize);
        const double letters =
            3 * advance(QStringLiteral("f"), input.font) + advance(QStringLiteral("i"), input.font);
        const double joined = advance(QStringLiteral("fffi"), input.font);
        QVERIFY2(joined != letters, "The font has no ligature.");

        compareInBoxes(input, widthsBelow(advance(text, input.font)), {1, 2, 3, most});
    }
}

void tst_TextLayoutIdentity::agreesAtHighLineLimits_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("wide word") << QStringLiteral("i wwww");
    QTest::newRow("wide word in the middle") << QStringLiteral("i wwww i");
    QTest::newRow("wide paragraph") << QStringLiteral("wwww\ni");
    QTest::newRow("wide last word of a paragraph") << QStringLiteral("i wwww\nwwww\ni");
    QTest::newRow("wide paragraphs") << QStringLiteral("wwww\nwwww\nwwww\n");
    QTest::newRow("spaces") << QStringLiteral("ww   ww");
    QTest::newRow("spaces at the end") << QStringLiteral("ww   ");
    QTest::newRow("space and separator") << QStringLiteral("ww \nww");
    QTest::newRow("separators") << QStringLiteral("ww \n\n \nww");
    QTest::newRow("hyphens") << QStringLiteral("ww--ww");
    QTest::newRow("hyphen and space") << QStringLiteral("ww- ww");
    QTest::newRow("hyphen and separator") << QStringLiteral("ww-\nww");
    QTest::newRow("hyphen and wide word") << QStringLiteral("x-www");
    QTest::newRow("hyphens and wide words") << QStringLiteral("i-www-www www-i");
    QTest::newRow("hyphen and wide word after others") << QStringLiteral("i i\ni x-wwww\ni");
    QTest::newRow("hyphen and wide paragraph") << QStringLiteral("x-www\nwww");
    QTest::newRow("hyphen, wide word and spaces") << QStringLiteral("x-wwww  i");
    QTest::newRow("digits") << QStringLiteral("i 1-2-3 -4");
    QTest::newRow("Russian") << QStringLiteral("это-программа передач-на\nсегодня");
}

void tst_TextLayoutIdentity::agreesAtHighLineLimits()
{
    QFETCH(QString, text);

    ReferenceInput input;
    input.text = text;
    // In this font a hyphen has a negative advance: it makes the line narrower.
    QFont tight = spacedFont(QFont::AbsoluteSpacing, -10);
    tight.setWordSpacing(30);

    const bool reduced = caseCount() < usualTextCases;
    for (const QFont &font : {pixelFont(), pixelFont(27), tight}) {
        input.font = font;
        const int step = reduced ? 31 : font == tight ? 1 : 3;
        for (int width = 1; width < advance(text, font); width += step) {
            input.textWidth = width;
            for (const bool hyphenation : {false, true}) {
                input.hyphenationEnabled = hyphenation;
                for (const int lines : {5, 50, 51, 1000, most}) {
                    if (lines >= 1000 && width % 4 != 1)
                        continue;
                    input.maxLineCount = lines;
                    compare(input);
                    if (QTest::currentTestFailed())
                        return;
                }
            }
        }
        if (reduced)
            return;
    }
}

// Words that random texts hardly ever have.
void tst_TextLayoutIdentity::agreesOnRareWords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");

    QTest::newRow("surrogate pairs that are wider than their halves")
        << QStringLiteral("\U0001F600").repeated(6) << pixelFont(60);
    QTest::newRow("surrogate pairs at odd positions in many lines")
        << QStringLiteral("а") + QStringLiteral("\U0001F600").repeated(100) << pixelFont();
    QTest::newRow("first hyphenation point far after the end of the line")
        << QString(300, u'ш') + QStringLiteral("сообщение") << pixelFont();
    QTest::newRow("surrogate pairs between letters")
        << QStringLiteral("\U0001F600ш").repeated(6) << pixelFont(60);
    QTest::newRow("signs after a mark of another script")
        << QStringLiteral("ह\u05b7") + QString(100, u'.')
        << spacedFont(QFont::AbsoluteSpacing, -6.3);
    QTest::newRow("half a surrogate pair that is not as wide as U+FFFD")
        << QStringLiteral("\u0627") + QChar(0xd83d) + QStringLiteral("\u0483")
        << spacedFont(QFont::PercentageSpacing, 24);
    QTest::newRow("hyphenation points far from each other")
        << QStringLiteral("сообщение") + QString(250, u'т') + QStringLiteral("сообщение")
               + QString(100, u'ш')
        << spacedFont(QFont::AbsoluteSpacing, -12);
}

void tst_TextLayoutIdentity::agreesOnRareWords()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);

    ReferenceInput input;
    input.text = text;
    input.font = font;
    compareInBoxes(input, widthsBelow(140, 4), {2, 4, most});
}

void tst_TextLayoutIdentity::agreesWhereAHyphenFillsTheLine()
{
    ReferenceInput input;
    input.text = QStringLiteral("сообщение");
    input.font = pixelFont(97);
    const double hyphenWidth = advance(QStringLiteral("-"), input.font);
    QCOMPARE(hyphenWidth, std::floor(hyphenWidth));

    QList<int> widths;
    for (qsizetype kept = 1; kept < input.text.size(); ++kept)
        widths.append(fineWidth(input.text.first(kept), input.font) + int(hyphenWidth));
    compareInBoxes(input, widths, {2, most});
}

// Qt's positions can overflow with these letter spacings.
void tst_TextLayoutIdentity::agreesInFontsWithExtremeLetterSpacing_data()
{
    QTest::addColumn<QFont::SpacingType>("type");
    QTest::addColumn<double>("spacing");

    for (const double spacing : {-1e9, -33554432.0, -2e5, 2e5, 33554432.0, 1e9}) {
        QTest::addRow("%g pixels", spacing) << QFont::AbsoluteSpacing << spacing;
        QTest::addRow("%g percent", spacing) << QFont::PercentageSpacing << spacing;
    }
}

void tst_TextLayoutIdentity::agreesInFontsWithExtremeLetterSpacing()
{
    QFETCH(QFont::SpacingType, type);
    QFETCH(double, spacing);

    ReferenceInput input;
    input.font = pixelFont(27);
    input.font.setLetterSpacing(type, spacing);
    const QString text = QStringLiteral(" ~ сообщение на-экране");
    for (const int repetitions : {1, 20}) {
        input.text = text.repeated(repetitions);
        compareInBoxes(input, {1, 20, 500, 1'000'000}, {0, 1, 2, 5, 300});
    }
}

void tst_TextLayoutIdentity::agreesInFontsOfExtremeSizes_data()
{
    QTest::addColumn<int>("pixelSize");

    for (const int pixelSize : {0, 100'000, 134'217'727, 134'217'728, most})
        QTest::addRow("%d", pixelSize) << pixelSize;
}

void tst_TextLayoutIdentity::agreesInFontsOfExtremeSizes()
{
    QFETCH(int, pixelSize);

    ReferenceInput input;
    input.font = pixelFont(std::max(1, pixelSize));
    if (pixelSize == 0)
        input.font = fontOfZeroPixels();
    input.text = QStringLiteral("сообщение на-экране");
    compareInBoxes(input, {1, 500, 1'000'000, most}, {0, 1, 2, 5});
}

// The last letter mirrors the signs before it or gives them its script. In the last row Qt's advance overflows.
void tst_TextLayoutIdentity::agreesOnLongLinesThatALaterCharacterNarrows_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<int>("width");

    const QString sign = QStringLiteral("\u29f5 ");
    QTest::newRow("mirrored") << sign.repeated(60) + QStringLiteral("ש") << 0.0 << 1000;
    QTest::newRow("mirrored between letters")
        << QStringLiteral("aש ") + sign.repeated(60) + QStringLiteral("ש") << 0.0 << 1000;
    QTest::newRow("short") << sign.repeated(29) + QStringLiteral("ש") << 0.0 << 450;
    QTest::newRow("overflow") << QStringLiteral("של ").repeated(100) << 2e5 << 30'000'000;
}

void tst_TextLayoutIdentity::agreesOnLongLinesThatALaterCharacterNarrows()
{
    QFETCH(QString, text);
    QFETCH(double, spacing);
    QFETCH(int, width);
    ReferenceInput input;
    input.text = text;
    input.font = spacedFont(QFont::AbsoluteSpacing, spacing);
    compareInBoxes(input, {width}, {1, 2});
}

void tst_TextLayoutIdentity::reusedRendererGivesTheSameAsANewOne()
{
    TextRenderer used;
    CaseMaker maker(CaseMaker::Mixed, 6);
    for (int i = 0; i < caseCount() / 4; ++i) {
        const ReferenceInput input = maker.next();
        if (input.text.isEmpty())
            continue;
        apply(used, input);
        TextRenderer fresh;
        apply(fresh, input);
        const QString description = described(input);
        // The present line limit decides whether setText() replaces newlines, not an earlier limit.
        QVERIFY2(used.text() == fresh.text(), qPrintable(description));
        QVERIFY2(used.displayText() == fresh.displayText(), qPrintable(description));
        QVERIFY2(used.boundingSize() == fresh.boundingSize(), qPrintable(description));
    }
}

QTEST_MAIN(tst_TextLayoutIdentity)

#include "tst_textlayout_identity.moc"
