#include "text/shapedrun_p.h"
#include "textsupport.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace ovelin;
using namespace ovelin::tests;
using namespace Qt::StringLiterals;

namespace {

QFont capitalizedFont(QFont::Capitalization capitalization)
{
    QFont font = pixelFont();
    font.setCapitalization(capitalization);
    return font;
}

QFont fontWithWordSpacing(double spacing)
{
    QFont font = pixelFont();
    font.setWordSpacing(spacing);
    return font;
}

QFont stretchedFont(int stretch)
{
    QFont font = pixelFont();
    font.setStretch(stretch);
    return font;
}

// True if the reading differs from the measured advance by its tolerance at most.
bool isRight(const Reading &reading, const QString &characters, const QFont &font)
{
    const double error = std::abs(reading.advance - advance(characters, font));
    if (error > reading.tolerance) {
        qWarning() << characters << "is read" << reading.advance << "±" << reading.tolerance
                   << "and measured" << advance(characters, font);
    }
    return error <= reading.tolerance;
}

} // namespace

class tst_ShapedRun : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void readsWithinTheTolerance_data();
    void readsWithinTheTolerance();
    void readsTheWholeRunExactly_data();
    void readsTheWholeRunExactly();
    void readsPrefixesOfSeveralPieces_data();
    void readsPrefixesOfSeveralPieces();
    void readsRangesOfOnePieceOnly();
    void readingHasTheExpectedTolerance_data();
    void readingHasTheExpectedTolerance();

    void covers_data();
    void covers();
    void longerTextIsNotNarrower_data();
    void longerTextIsNotNarrower();
    void signsMayTakeTheScriptThatFollows_data();
    void signsMayTakeTheScriptThatFollows();
    void isExact_data();
    void isExact();
    void hasNegativeAdvance_data();
    void hasNegativeAdvance();
    void hasSeparateGlyphs_data();
    void hasSeparateGlyphs();
    void beginsFreely_data();
    void beginsFreely();
    void scalesTheEm_data();
    void scalesTheEm();
};

void tst_ShapedRun::initTestCase()
{
    QVERIFY(isTestFontInstalled());
}

void tst_ShapedRun::readsWithinTheTolerance_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");

    const auto row = [](const char *name, const QString &text) {
        QTest::newRow(name) << text << pixelFont();
    };
    row("Russian", u"«Ёлка», фильм 1-2 — 16+"_s);
    row("kerned pairs", u"AVATAR To. Ty VAVA LT"_s);
    row("ligatures", u"office affluent fi ffl"_s);
    row("combining marks", u"програ\u0301мма не\u0302\u0301т"_s);
    row("Hebrew", u"שלום, עולם 12 שָׁלוֹם"_s);
    row("Hebrew and Latin", u"abc (שלום) def-12 עולם"_s);
    row("Arabic", u"السلام عليكم لا، لله"_s);
    row("Arabic and digits", u"قناة 12 السلام 3.5"_s);
    row("Devanagari", u"हिन्दी क्षेत्र र्क (कि)"_s);
    row("Thai", u"ภาษาไทย น้ำ กำ"_s);
    row("CJK", u"日本語「テレビ」番組、한국어"_s);
    row("emoji with ZWJ", u"a\U0001F468\u200d\U0001F469\u200d\U0001F467 b\U0001F44D\U0001F3FD"_s);
    row("regional indicators", u"\U0001F1F7\U0001F1FA\U0001F1E9\U0001F1EA\U0001F1EB x"_s);
    row("tabs", u"аб\tв\t\tгде\t"_s);
    row("mirrored signs beside Hebrew", u"ש∈⧵⟦∑⟧ש⊂a⟮⟯"_s);
    row("mirrored signs between Hebrew letters", u"aש"_s + u"⧵"_s.repeated(20) + u"ש"_s);
    row("brackets beside Hebrew", u"(ש) [«a»] {ש}"_s);
    row("signs before another script", u"a ⟶⟶ «» ש — … क ... ж"_s);
    row("signs without letters", u"… — «!» 12:30 ⟶"_s);
    row("a mark of another script", u"xк\u093cрыл ш\u05b7..."_s);
    row("marks without letters", u"\u0301\u0301 \u0301—\u0301"_s);
    row("embedded direction", u"ab\u202bשלום cd\u202c ef"_s);
    row("isolated direction", u"ab\u2067שלום cd\u2069 ef"_s);

    const QString words = u"«Office» AVATAR, не\u0301т שלום"_s;
    QTest::newRow("letter spacing -2") << words << spacedFont(QFont::AbsoluteSpacing, -2);
    QTest::newRow("letter spacing 0.5") << words << spacedFont(QFont::AbsoluteSpacing, 0.5);
    QTest::newRow("letter spacing 25") << words << spacedFont(QFont::AbsoluteSpacing, 25);
    QTest::newRow("letter spacing 50 %") << words << spacedFont(QFont::PercentageSpacing, 50);
    QTest::newRow("letter spacing 300 %") << words << spacedFont(QFont::PercentageSpacing, 300);
    const QString spaces = u"a b  ц   שלום  "_s;
    QTest::newRow("word spacing 30") << spaces << fontWithWordSpacing(30);
    QTest::newRow("word spacing -30") << spaces << fontWithWordSpacing(-30);
    QTest::newRow("stretch 200 %") << words << stretchedFont(200);
    QTest::newRow("5 pixels") << words << pixelFont(5);
    QTest::newRow("200 pixels") << words << pixelFont(200);
    const QString mixedCase = u"wie GROSS iJ ваЛ ﬁ ß"_s;
    QTest::newRow("capitals") << mixedCase << capitalizedFont(QFont::AllUppercase);
    QTest::newRow("no capitals") << mixedCase << capitalizedFont(QFont::AllLowercase);
    QTest::newRow("small capitals") << mixedCase << capitalizedFont(QFont::SmallCaps);
    QTest::newRow("capital first letters") << mixedCase << capitalizedFont(QFont::Capitalize);
}

void tst_ShapedRun::readsWithinTheTolerance()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    const RunFont runFont(font);
    const ShapedRun run(text, 0, runFont);

    for (qsizetype from = 0; from < text.size(); ++from) {
        for (qsizetype to = from + 1; to <= text.size() && run.covers(from, to); ++to) {
            const QString characters = text.sliced(from, to - from);
            QVERIFY(isRight(run.read(from, to), characters, font));
            QVERIFY(isRight(run.readClosely(from, to), characters, font));
        }
    }
}

void tst_ShapedRun::readsTheWholeRunExactly_data()
{
    readsWithinTheTolerance_data();
}

void tst_ShapedRun::readsTheWholeRunExactly()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    const RunFont runFont(font);
    constexpr qsizetype begin = 7;
    const ShapedRun run(text, begin, runFont);

    QCOMPARE(run.begin(), begin);
    QCOMPARE(run.end(), begin + text.size());
    QCOMPARE(run.read(begin, run.end()).advance, advance(text, font));
}

void tst_ShapedRun::readsPrefixesOfSeveralPieces_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("Russian") << u"абвгдежзик"_s.repeated(500);
    QTest::newRow("Arabic") << u"السلاملا "_s.repeated(600);
}

void tst_ShapedRun::readsPrefixesOfSeveralPieces()
{
    QFETCH(QString, text);
    const RunFont runFont(pixelFont());
    const ShapedRun run(text, 0, runFont);

    for (const qsizetype to : {4095, 4096, 4097, 4098, 4100, 4200}) {
        QVERIFY(to < text.size());
        QVERIFY(isRight(run.read(0, to), text.first(to), pixelFont()));
    }
}

void tst_ShapedRun::readsRangesOfOnePieceOnly()
{
    const RunFont runFont(pixelFont());
    QVERIFY(ShapedRun(u"ж"_s.repeated(4096), 0, runFont).covers(1, 2));

    const ShapedRun longer(u"ж"_s.repeated(4097), 0, runFont);
    QVERIFY(longer.covers(0, 2));
    QVERIFY(!longer.covers(1, 2));
}

void tst_ShapedRun::readingHasTheExpectedTolerance_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("from");
    QTest::addColumn<qsizetype>("to");
    QTest::addColumn<double>("toleranceInEms");
    QTest::addColumn<QFont>("font");

    const auto row = [](const char *name, const QString &text, qsizetype from, qsizetype to,
                        double toleranceInEms, const QFont &font = pixelFont()) {
        QTest::newRow(name) << text << from << to << toleranceInEms << font;
    };
    row("not kerned", u"xабвx"_s, 1, 4, 0.05 + 0.05);
    row("kerned at the beginning", u"xVAбx"_s, 1, 4, 0.5 + 0.05);
    row("kerned before it", u"VAбвx"_s, 1, 4, 0.05 + 0.05);
    row("kerned at the end", u"xабAVx"_s, 1, 4, 0.05 + 0.5);
    row("the beginning of the run", u"абвx"_s, 0, 3, 0.05);
    row("the whole run", u"абв"_s, 0, 3, 0);
    row("joined at both ends", u"سلام"_s, 1, 2, 4 + 4);
    row("a tab", u"xа\tбx"_s, 1, 4, 0.05 + 4 + 0.05); // 80 pixels
    row("the direction changes twice", u"xаשбx"_s, 1, 4, 0.05 + 1 + 1 + 0.05);
    row("a mirrored sign", u"xа∈бx"_s, 1, 4, 0.05 + 2 + 0.05);
    row("after a mirrored sign", u"x∈абx"_s, 2, 4, 0.05 + 0.05);
    row("the first regional indicator", u"xа\U0001F1E6бx"_s, 1, 5, 0.05 + 2 + 0.05);
    row("the last regional indicator", u"xа\U0001F1FFбx"_s, 1, 5, 0.05 + 2 + 0.05);
    row("signs before another script", u"a—…кx"_s, 1, 4, 0.05 + 2 + 2 + 0.05);
    row("a mark of another script after signs", u"τ12\u093c/τx"_s, 1, 6, 0.05 + 4 * 2 + 0.05);
    row("signs before the script of the run", u"a—…kx"_s, 1, 4, 0.05 + 0.05);
    row("joined before a space", u"سلام و"_s, 0, 4, 0.05);
    row("joined after a space", u"و سلام"_s, 2, 6, 0.5);
    // A letter spacing of two million pixels: the range is measured, whatever its advance is.
    row("huge advances", u"xабвx"_s, 1, 4, std::numeric_limits<double>::infinity(),
        spacedFont(QFont::AbsoluteSpacing, 2e6));
    row("huge negative advances", u"xабвx"_s, 1, 4, std::numeric_limits<double>::infinity(),
        spacedFont(QFont::AbsoluteSpacing, -2e6));
    row("capital first letters", u"xабвx"_s, 1, 4, 0.05 + 1 + 0.05 + 1,
        capitalizedFont(QFont::Capitalize));
}

void tst_ShapedRun::readingHasTheExpectedTolerance()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, from);
    QFETCH(qsizetype, to);
    QFETCH(double, toleranceInEms);
    QFETCH(QFont, font);
    const RunFont runFont(font);
    const ShapedRun run(text, 0, runFont);

    QCOMPARE(run.readClosely(from, to).tolerance, toleranceInEms * font.pixelSize());
}

void tst_ShapedRun::covers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("from");
    QTest::addColumn<qsizetype>("to");
    QTest::addColumn<bool>("covered");

    const auto row = [](const char *name, const QString &text, qsizetype from, qsizetype to,
                        bool covered) { QTest::newRow(name) << text << from << to << covered; };
    // The run begins at position 10.
    row("all", u"abcdef"_s, 10, 16, true);
    row("a part", u"abcdef"_s, 12, 14, true);
    row("begins before it", u"abcdef"_s, 9, 14, false);
    row("ends after it", u"abcdef"_s, 12, 17, false);
    row("all, with a control", u"ab\u202edef"_s, 10, 16, true);
    row("before the control", u"ab\u202edef"_s, 11, 12, true);
    row("from before the control", u"ab\u202edef"_s, 11, 16, true);
    row("from the control", u"ab\u202edef"_s, 12, 16, true);
    row("after the control", u"ab\u202edef"_s, 13, 14, false);
    row("after the first embedding", u"ab\u202adef"_s, 13, 16, false);
    row("after the first isolate", u"ab\u2066def"_s, 13, 16, false);
    row("after the last isolate", u"ab\u2069def"_s, 13, 16, false);
    row("after a mark that turns nothing", u"ab\u200fdef"_s, 13, 16, true);
}

void tst_ShapedRun::covers()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, from);
    QFETCH(qsizetype, to);
    QFETCH(bool, covered);
    const RunFont runFont(pixelFont());

    QCOMPARE(ShapedRun(text, 10, runFont).covers(from, to), covered);
}

void tst_ShapedRun::longerTextIsNotNarrower_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("Russian") << u"абвгд"_s;
    QTest::newRow("a kerned letter") << u"xxT"_s;
    QTest::newRow("a part of a ligature") << u"of"_s;
    QTest::newRow("Arabic") << u"السل"_s;
    QTest::newRow("Hebrew") << u"שלום"_s;
    QTest::newRow("Devanagari") << u"हिन्"_s;
    QTest::newRow("an emoji") << u"a\U0001F468"_s;
    QTest::newRow("an emoji and ZWJ") << u"a\U0001F468\u200d"_s;
    QTest::newRow("regional indicators") << u"\U0001F1F7\U0001F1FA\U0001F1E9"_s;
    QTest::newRow("signs without letters") << u"⟶"_s.repeated(60);
    QTest::newRow("mirrored signs") << u"∈⧵⟦∑⟧⊂"_s;
    QTest::newRow("a tab") << u"a\t"_s;
}

void tst_ShapedRun::longerTextIsNotNarrower()
{
    QFETCH(QString, text);
    const QStringList continuations = {
        u""_s,       u" "_s,      u"я"_s,   u"."_s,      u"AV"_s,         u"fi"_s,
        u"\u0301"_s, u"ا"_s,      u"لام"_s, u"ש"_s,      u"क्ष"_s,         u"\u094d"_s,
        u"\t"_s,     u"\u200d"_s, u"日"_s,  u"\u202e"_s, u"\U0001F1F7"_s, u"\u200d\U0001F469"_s,
    };
    const RunFont runFont(pixelFont());

    for (const QString &continuation : continuations) {
        const ShapedRun run(text, 0, runFont, continuation);
        for (qsizetype from = 0; from < text.size(); ++from) {
            const QString longer = text.sliced(from) + continuation;
            QVERIFY2(run.leastAdvanceOfLonger(from) <= advance(longer), qPrintable(longer));
        }
    }
}

void tst_ShapedRun::signsMayTakeTheScriptThatFollows_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rest");
    QTest::addColumn<qsizetype>("from");
    QTest::addColumn<double>("toleranceInEms");

    const auto row = [](const char *name, const QString &text, const QString &rest, qsizetype from,
                        double toleranceInEms) {
        QTest::newRow(name) << text << rest << from << toleranceInEms;
    };
    // 4 em for the end of the run, and 2 em for each sign if a script may follow.
    row("no script", u"12"_s, u"34"_s, 0, 4);
    row("a letter", u"12"_s, u"а"_s, 0, 4 + 2 * 2);
    row("a digit and a letter", u"12"_s, u"3а"_s, 0, 4 + 2 * 2);
    row("a mark of one script", u"12"_s, u"3\u093c"_s, 0, 4 + 2 * 2);
    // Half an em more for the beginning, and 2 em more for each sign, which has the script of the letter.
    row("no script after a letter", u"а12"_s, u"34"_s, 1, 4 + 2 * 2 + 0.5 + 2 * 2);
}

void tst_ShapedRun::signsMayTakeTheScriptThatFollows()
{
    QFETCH(QString, text);
    QFETCH(QString, rest);
    QFETCH(qsizetype, from);
    QFETCH(double, toleranceInEms);
    const RunFont runFont(pixelFont());
    const ShapedRun run(text, 0, runFont, rest);

    const double least = run.leastAdvanceOfLonger(from);
    QCOMPARE(run.advance(from, run.end()) - least, toleranceInEms * pixelFont().pixelSize());
}

void tst_ShapedRun::isExact_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("to");
    QTest::addColumn<bool>("exact");

    const auto row = [](const char *name, const QString &text, qsizetype to, bool exact) {
        QTest::newRow(name) << text << to << exact;
    };
    row("letters", u"абв"_s, 2, true);
    row("a sign before the first letter", u"«абв»"_s, 1, false);
    row("the first letter after a sign", u"«абв»"_s, 2, true);
    row("signs without letters", u"1-2…"_s, 4, false);
    row("before a tab", u"а\tб"_s, 1, true);
    row("after a tab", u"а\tб"_s, 2, false);
    row("before the direction changes", u"абש"_s, 1, true);
    row("where the direction changes", u"абש"_s, 2, false);
    row("after a mirrored sign", u"а∈б"_s, 2, false);
    row("after a regional indicator", u"а\U0001F1F7б"_s, 3, false);
}

void tst_ShapedRun::isExact()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, to);
    QFETCH(bool, exact);
    const RunFont runFont(pixelFont());
    constexpr qsizetype begin = 10;

    const ShapedRun run(text, begin, runFont);
    QCOMPARE(run.isExact(begin, begin + to), exact);
}

void tst_ShapedRun::hasNegativeAdvance_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("letterSpacing");
    QTest::addColumn<bool>("negative");

    QTest::newRow("letters") << u"abi"_s << 0.0 << false;
    // The second half of a surrogate pair and the mark have an advance of 0.
    QTest::newRow("advances of zero") << u"a\U0001F600e\u0301b"_s << 0.0 << false;
    QTest::newRow("close letters") << u"abi"_s << -5.0 << false;
    QTest::newRow("the narrowest letter moves back") << u"abi"_s << -6.0 << true;
    QTest::newRow("a letter before others moves back") << u"iab"_s << -6.0 << true;
}

void tst_ShapedRun::hasNegativeAdvance()
{
    QFETCH(QString, text);
    QFETCH(double, letterSpacing);
    QFETCH(bool, negative);
    const RunFont runFont(spacedFont(QFont::AbsoluteSpacing, letterSpacing));

    QCOMPARE(ShapedRun(text, 0, runFont).hasNegativeAdvance(), negative);
}

void tst_ShapedRun::hasSeparateGlyphs_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("from");
    QTest::addColumn<qsizetype>("to");
    QTest::addColumn<bool>("separate");

    const auto row = [](const char *name, const QString &text, qsizetype from, qsizetype to,
                        bool separate) { QTest::newRow(name) << text << from << to << separate; };
    row("Russian", u"абв где"_s, 0, 7, true);
    row("kerned", u"AVAVA"_s, 1, 4, true);
    row("Hebrew", u"שלום"_s, 0, 4, true);
    row("CJK", u"日本語한국어テレビ"_s, 0, 9, true);
    row("Arabic", u"درس"_s, 0, 3, false);
    row("Devanagari", u"कखग"_s, 0, 3, false);
    row("before a ligature", u"xfi"_s, 0, 1, true);
    row("up to inside a ligature", u"xfi"_s, 0, 2, false);
    row("from inside a ligature", u"fix"_s, 1, 3, false);
    row("a ligature", u"xfix"_s, 1, 3, false);
    row("a mark", u"ае\u0301б"_s, 0, 4, false);
    row("after a mark", u"ае\u0301б"_s, 3, 4, true);
    row("a surrogate pair", u"a\U0001F600"_s, 0, 3, false);
}

void tst_ShapedRun::hasSeparateGlyphs()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, from);
    QFETCH(qsizetype, to);
    QFETCH(bool, separate);
    const RunFont runFont(pixelFont());
    constexpr qsizetype begin = 10;
    const ShapedRun run(text, begin, runFont);

    QCOMPARE(run.hasSeparateGlyphs(begin + from, begin + to), separate);
}

void tst_ShapedRun::beginsFreely_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("position");
    QTest::addColumn<QFont>("font");
    QTest::addColumn<bool>("free");

    const auto row = [](const char *name, const QString &text, qsizetype position, bool free,
                        const QFont &font = pixelFont()) {
        QTest::newRow(name) << text << position << font << free;
    };
    row("the beginning of the run", u"AV"_s, 0, true);
    row("a letter", u"xан"_s, 1, true);
    row("a space", u"x н"_s, 1, true);
    row("a space with word spacing", u"元 2"_s, 1, false, fontWithWordSpacing(30));
    row("the last letter", u"xан"_s, 2, true);
    row("a kerned letter", u"xAVx"_s, 1, false);
    row("after a kerned letter", u"xAVx"_s, 2, true);
    row("before a ligature", u"xfix"_s, 1, false);
    row("in a ligature", u"xfix"_s, 2, false);
    row("a mark", u"xк\u093cx"_s, 2, false);
    row("after a mark", u"xк\u093cx"_s, 3, true);
    row("joined", u"سلام"_s, 2, false);
    row("letter spacing", u"xан"_s, 1, true, spacedFont(QFont::AbsoluteSpacing, 3));
    row("letter spacing, kerned", u"xAVx"_s, 1, false, spacedFont(QFont::AbsoluteSpacing, 3));
    row("word spacing", u"а н"_s, 1, false, fontWithWordSpacing(30));
}

void tst_ShapedRun::beginsFreely()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, position);
    QFETCH(QFont, font);
    QFETCH(bool, free);
    const RunFont runFont(font);
    constexpr qsizetype begin = 10;
    const ShapedRun run(text, begin, runFont);

    QCOMPARE(run.beginsFreely(begin + position), free);
}

void tst_ShapedRun::scalesTheEm_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<double>("scale");

    QFont both = spacedFont(QFont::PercentageSpacing, 300);
    both.setStretch(150);
    QTest::newRow("plain") << pixelFont() << 1.0;
    QTest::newRow("narrow") << stretchedFont(50) << 0.5;
    QTest::newRow("wide") << stretchedFont(150) << 1.5;
    QTest::newRow("letters apart") << spacedFont(QFont::PercentageSpacing, 300) << 3.0;
    QTest::newRow("letters close") << spacedFont(QFont::PercentageSpacing, 50) << 1.0;
    QTest::newRow("letters backwards") << spacedFont(QFont::PercentageSpacing, -300) << 3.0;
    QTest::newRow("letters apart by pixels") << spacedFont(QFont::AbsoluteSpacing, 300) << 1.0;
    QTest::newRow("both") << both << 4.5;
}

void tst_ShapedRun::scalesTheEm()
{
    QFETCH(QFont, font);
    QFETCH(double, scale);

    QCOMPARE(RunFont(font).em, font.pixelSize() * scale);
}

QTEST_MAIN(tst_ShapedRun)

#include "tst_shapedrun.moc"
