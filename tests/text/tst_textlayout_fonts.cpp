#include "layoutcomparison.h"
#include "randomchoice.h"
#include "realwords.h"
#include "textsupport.h"

#include <QFile>
#include <QFontDatabase>
#include <QLoggingCategory>
#include <QMetaEnum>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

using namespace ovelin::tests;
using namespace Qt::StringLiterals;

// Compares layouts of real words in real fonts with the reference layout. The test skips fonts and
// dictionaries that the machine lacks; with OVELIN_FONTS=required a missing one fails the test.

namespace {

constexpr int most = std::numeric_limits<int>::max();

class CaseMaker : public RandomChoice
{
public:
    CaseMaker(const QString &family, Script script, unsigned seed)
        : RandomChoice(seed)
        , m_family(family)
        , m_words(wordsOf(script))
        , m_spaced(hasSpaces(script))
    {
    }

    // A text and its font.
    ReferenceInput text(int longest)
    {
        ReferenceInput input;
        input.text = words(1 + below(longest));
        input.font = font();
        input.hyphenationEnabled = below(3) > 0;
        input.format = below(2) ? Qt::AutoText : Qt::PlainText;
        return input;
    }

    // A text with its font and a box.
    ReferenceInput layout()
    {
        constexpr int usualLength = 70;
        constexpr int greatestLength = 2000;
        ReferenceInput input = text(below(80) ? usualLength : greatestLength);
        input.maxLineCount = oneOf(QList<int>{-1, 0, 1, 1, 2, 2, 3, 4, most});
        const int limit = below(6) ? width(input.text, input.font) : widthOfAPrefix(input);
        if (below(4) == 0)
            input.maxTextWidth = limit;
        else
            input.textWidth = limit;
        return input;
    }

private:
    // The width of a box that a prefix of any length just fits or just overflows.
    int widthOfAPrefix(const ReferenceInput &input)
    {
        const QString prefix = input.text.first(1 + below(int(input.text.size())));
        return leastWidthThatFits(advance(prefix, input.font)) + below(3) - 1;
    }

    // Some texts have only words, some have a few signs, and some are full of signs.
    QString words(int length)
    {
        const int signsPerHundredWords = oneOf(QList<int>{0, 0, 8, 30, 80});
        const auto isNextASign = [&] { return below(100) < signsPerHundredWords; };
        const bool spaced = below(6) ? m_spaced : !m_spaced;
        QString result;
        while (result.size() < length) {
            result += oneOf(m_words);
            while (isNextASign())
                insertSign(result);
            if (isNextASign())
                result += separator();
            else if (spaced)
                result += u' ';
        }
        return result;
    }

    void insertSign(QString &text)
    {
        constexpr int longestWord = 12;
        qsizetype position =
            text.size() - below(1 + std::min(longestWord, static_cast<int>(text.size())));
        if (position < text.size() && text.at(position).isLowSurrogate())
            --position;
        text.insert(position, sign());
    }

    QString sign()
    {
        static const QStringList marks{
            u"\u0301"_s, u"\u0308"_s, u"\u0327"_s, u"\u05b0"_s,       u"\u05bc"_s, u"\u064b"_s,
            u"\u0651"_s, u"\u0902"_s, u"\u093c"_s, u"\u094d"_s,       u"\u0e49"_s, u"\u0e33"_s,
            u"\u20dd"_s, u"\u3099"_s, u"\ufe0f"_s, u"\u0306\u0306"_s,
        };
        static const QStringList joiners{
            u"\u200c"_s, u"\u200d"_s, u"\u00ad"_s, u"\u200b"_s, u"\u2060"_s, u"\u0640"_s,
        };
        static const QStringList directions{
            u"\u200e"_s, u"\u200f"_s, u"\u202a"_s, u"\u202b"_s, u"\u202c"_s, u"\u202d"_s,
            u"\u202e"_s, u"\u2066"_s, u"\u2067"_s, u"\u2068"_s, u"\u2069"_s,
        };
        static const QStringList mirrored{
            u"("_s,      u")"_s,      u"["_s,      u"]"_s,      u"«"_s,
            u"»"_s,      u"<"_s,      u">"_s,      u"\u2208"_s, u"\u2211"_s,
            u"\u221a"_s, u"\u2264"_s, u"\u2282"_s, u"\u29f5"_s, u"\u300c"_s,
        };
        static const QStringList digits{
            u"7"_s,   u"2024"_s,         u"1-2"_s,          u"5,5"_s,
            u"10%"_s, u"\u0661\u0662"_s, u"\u0967\u0968"_s, u"\u06f1\u06f2"_s,
        };
        static const QStringList punctuation{
            u"."_s, u","_s, u"!"_s, u"…"_s,  u"—"_s, u"\""_s,
            u"'"_s, u"،"_s, u"।"_s, u"。"_s, u":"_s,
        };
        static const QStringList others{
            u" word "_s, u"office"_s, u" слово "_s, u" λέξη "_s, u" מילה "_s,
            u"كلمة"_s,   u" शब्द "_s,  u"คำ"_s,      u"文字"_s,   u"\U0001F468\u200d\U0001F467"_s,
        };
        static const QStringList breaks{u"\t"_s, u"\n"_s, u"\u2028"_s, u"-"_s, u" "_s, u"\u00a0"_s};
        return oneOf(oneOf(QList<QStringList>{marks, joiners, directions, mirrored, digits,
                                              punctuation, others, breaks}));
    }

    QString separator()
    {
        return oneOf(QStringList{u"-"_s, u" - "_s, u"  "_s, u", "_s, u". "_s, u" ("_s, u") "_s,
                                 u"»\n"_s, u"\n"_s, u"\t"_s, u"\t "_s, u"/"_s, u"--"_s});
    }

    QFont font()
    {
        QFont font(m_family);
        font.setPixelSize(11 + below(50));
        font.setLetterSpacing(QFont::AbsoluteSpacing,
                              oneOf(QList<double>{0, 0, 0, 0, 0, 0, -2, -1, -0.5, 0.3, 1, 4}));
        font.setWordSpacing(oneOf(QList<double>{0, 0, 0, 0, 0, 0, -3, -0.7, 2.5, 9}));
        font.setBold(below(8) == 0);
        font.setItalic(below(8) == 0);
        return font;
    }

    QString m_family;
    QStringList m_words;
    bool m_spaced;
};

// Returns the three widths around each width at which a range starts to fit: alone, with the margin of two
// pixels, with a hyphen, and with both.
std::set<int> widthsAround(double advance, double hyphenAdvance)
{
    std::set<int> widths;
    for (const double least : {advance, std::ceil(advance) + 2}) {
        for (const double end : {least, least + hyphenAdvance}) {
            const int width = static_cast<int>(std::floor(end));
            widths.insert({width - 1, width, width + 1});
        }
    }
    return widths;
}

struct FontOfScripts
{
    const char *family;
    const char *package; // Debian's package of the font
    QList<Script> scripts;
};

QList<FontOfScripts> fonts()
{
    using enum Script;
    return {
        // DejaVu Sans lacks Devanagari, Thai, Chinese and most emoji. Qt takes these from another font, if any.
        {"DejaVu Sans",
         "fonts-dejavu-core",
         {Latin, Cyrillic, Greek, Hebrew, Arabic, Devanagari, Thai, Chinese, Emoji}},
        {"Amiri", "fonts-hosny-amiri", {Arabic, Latin}},
        {"Awami Nastaliq", "fonts-sil-awami-nastaliq", {Arabic}},
        {"Nafees", "fonts-nafees", {Arabic}},
        {"Lohit Devanagari", "fonts-lohit-deva", {Devanagari}},
        {"Loma", "fonts-tlwg-loma-ttf", {Thai}},
        {"WenQuanYi Micro Hei", "fonts-wqy-microhei", {Chinese, Japanese, Korean}},
        {"Noto Color Emoji", "fonts-noto-color-emoji", {Emoji}},
        {"PT Sans", "fonts-paratype", {Cyrillic}},
        {"PT Serif", "fonts-paratype", {Cyrillic}},
        {"Roboto", "fonts-roboto-unhinted", {Latin, Cyrillic, Greek}},
        {"EB Garamond", "fonts-ebgaramond", {Latin, Cyrillic, Greek}},
        {"Linux Libertine O", "fonts-linuxlibertine", {Latin, Cyrillic, Greek}},
    };
}

QString packageOf(QByteArrayView family)
{
    for (const FontOfScripts &font : fonts()) {
        if (font.family == family)
            return QString::fromLatin1(font.package);
    }
    return {};
}

void addRows()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("package");
    QTest::addColumn<Script>("script");
    QTest::addColumn<unsigned>("seed");

    unsigned seed = 0;
    const auto scriptNames = QMetaEnum::fromType<Script>();
    for (const FontOfScripts &font : fonts()) {
        for (const Script script : font.scripts) {
            QTest::addRow("%s, %s", font.family, scriptNames.valueToKey(int(script)))
                << QString::fromLatin1(font.family) << QString::fromLatin1(font.package) << script
                << ++seed;
        }
    }
}

int rowCases(Script script, int cases)
{
    // Qt decodes the picture of an emoji each time it measures the emoji.
    constexpr int slowdown = 10;
    return std::max(1, script == Script::Emoji ? cases / slowdown : cases);
}

// Fails if too few cases are elided or broken: comparing the others shows little.
void verifyVariety(const LayoutCounts &counts)
{
    const QByteArray description = counts.description();
    qInfo("%s", description.constData());
    if (counts.compared < 100)
        return;
    QVERIFY2(counts.elided > counts.compared / 10, description.constData());
    QVERIFY2(counts.broken > counts.compared / 20, description.constData());
}

} // namespace

class tst_TextLayoutFonts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void agreesWithTheReferenceLayout_data();
    void agreesWithTheReferenceLayout();
    void agreesInBoxesThatAPrefixJustFits_data();
    void agreesInBoxesThatAPrefixJustFits();
    void agreesOnTextsThatWereWrong_data();
    void agreesOnTextsThatWereWrong();
};

void tst_TextLayoutFonts::initTestCase()
{
    // Qt logs each script for which a font has no shaping rules.
    QLoggingCategory::setFilterRules(u"qt.text.font.db=false"_s);
}

void tst_TextLayoutFonts::init()
{
    QFETCH(QString, family);
    QFETCH(QString, package);
    QFETCH(Script, script);
    const bool required = qgetenv("OVELIN_FONTS") == "required";

    for (const QString &file : wordFiles(script))
        QVERIFY2(!required || QFile::exists(file), qPrintable(file + " is missing."_L1));

    // Without the font, Qt would silently use another one.
    if (!QFontDatabase::hasFamily(family)) {
        const QString message =
            "The font %1 is missing; Debian has it in %2."_L1.arg(family, package);
        QVERIFY2(!required, qPrintable(message));
        QSKIP(qPrintable(message));
    }
}

void tst_TextLayoutFonts::agreesWithTheReferenceLayout_data()
{
    addRows();
}

void tst_TextLayoutFonts::agreesWithTheReferenceLayout()
{
    QFETCH(QString, family);
    QFETCH(Script, script);
    QFETCH(unsigned, seed);

    CaseMaker maker(family, script, seed);
    LayoutCounts counts;
    for (int i = 0; i < rowCases(script, caseCount() / 10); ++i) {
        compare(maker.layout(), &counts);
        if (QTest::currentTestFailed())
            return;
    }
    verifyVariety(counts);
}

// Each text is laid out in many boxes. A part of the text just fits or just overflows each of them.
void tst_TextLayoutFonts::agreesInBoxesThatAPrefixJustFits_data()
{
    addRows();
}

void tst_TextLayoutFonts::agreesInBoxesThatAPrefixJustFits()
{
    QFETCH(QString, family);
    QFETCH(Script, script);
    QFETCH(unsigned, seed);
    constexpr int longestText = 90;
    constexpr int endsOfText = 5;

    CaseMaker maker(family, script, seed);
    LayoutCounts counts;
    for (int i = 0; i < rowCases(script, caseCount() / 100); ++i) {
        ReferenceInput input = maker.text(longestText);
        const double hyphenAdvance = advance(u"-"_s, input.font);
        for (int end = 0; end < endsOfText; ++end) {
            const int from = maker.below(2) ? 0 : maker.below(int(input.text.size()));
            const int length = 1 + maker.below(int(input.text.size()) - from);
            const double part = advance(input.text.mid(from, length), input.font);
            for (const int width : widthsAround(part, hyphenAdvance)) {
                input.textWidth = width;
                input.maxLineCount = 1 + maker.below(3);
                compareLayout(input, &counts);
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }
    verifyVariety(counts);
}

void tst_TextLayoutFonts::agreesOnTextsThatWereWrong_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("package");
    QTest::addColumn<Script>("script");
    QTest::addColumn<ReferenceInput>("input");

    const auto row = [](const char *name, const char *family, Script script, int pixelSize,
                        double letterSpacing, double wordSpacing, const QString &text, int width,
                        int lines) {
        ReferenceInput input;
        input.text = text;
        input.font = QFont(QString::fromLatin1(family));
        input.font.setPixelSize(pixelSize);
        input.font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
        input.font.setWordSpacing(wordSpacing);
        input.maxLineCount = lines;
        input.textWidth = width;
        input.format = Qt::PlainText;
        QTest::newRow(name) << input.font.family() << packageOf(family) << script << input;
    };
    row("two glyphs whose advances add up", "Awami Nastaliq", Script::Arabic, 25, -1, 0,
        u"اخصري \u0301خثرن\nا -تراقصن\u202a ایرانئ ریال, "_s, 51, 2);
    row("a mark after digits", "EB Garamond", Script::Greek, 31, 1, 9,
        u"Τετάρτη 18 Σεπτεμβ מילה ρίου \n2024\u093c/Τετάρτη 12 Ιουνίου 2024, Τετάρτη 18 "
        u"Σεπτεμβρίου "
        u"2024\n"_s,
        719, 2);
    row("a space without word spacing", "WenQuanYi Micro Hei", Script::Chinese, 30, 0, 9,
        u"港元 2024年7月14日 星期日 中國澳門特別行政區"_s, 152, 1);
    row("digits that are kerned in their script", "Amiri", Script::Latin, 33, 0.296875, 0,
        u"srijeda, 12. juni 2024. 2024 ođđajagemánnu 2"_s, 354, 1);
    row("a mark after a sign", "WenQuanYi Micro Hei", Script::Japanese, 44, 0, 0,
        u"日\u0301本√\u0902語5,5»\n木曜日"_s, 105, 3);
}

void tst_TextLayoutFonts::agreesOnTextsThatWereWrong()
{
    QFETCH(ReferenceInput, input);
    compareLayout(input);
}

QTEST_MAIN(tst_TextLayoutFonts)

#include "tst_textlayout_fonts.moc"
