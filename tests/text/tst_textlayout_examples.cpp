// The lines of a text in its box, rule by rule. A text that shows a fault becomes a row here.
//
// Every character is 10 pixels wide and every line 20 pixels high, so that a reader can check a row by
// eye. The expected lines are those that a painter gets. Qt paints no space at the end of a wrapped line.
//
// A line fits if it is narrower than the box: N characters need 10 N + 1 pixels. The part of a word that
// stays on a line is measured with two pixels of margin: N characters need 10 N + 3 pixels, with a hyphen
// after them 10 N + 13 pixels.

#include "support/paintrecorder.h"
#include "testfonts.h"

#include <ovelin/textrenderer.h>

#include <QPainter>
#include <QTest>

#include <algorithm>
#include <limits>

using namespace ovelin;
using namespace ovelin::tests;

namespace {

constexpr int fontSize = 20; // the height of a line, and twice the width of a character
constexpr int noLimit = std::numeric_limits<int>::max();

constexpr bool on = true;
constexpr bool off = false;
constexpr bool whole = false;
constexpr bool elided = true;

struct Example
{
    const char *rule;
    QStringView text;
    int width;
    int maxLineCount;
    bool hyphenationEnabled;
    QList<QStringView> lines;
    bool isElided;
    Qt::TextFormat format = Qt::AutoText;
    int maxTextWidth = 0;
};

// clang-format off: one row a line
const Example examples[] = {
    // Rule, text, width, line limit, hyphenation, lines, elided; format and maximal width where they matter.

    // Fitting: a line must be narrower than the box.
    {"fits",                                u"слово",              100, 1, on, {u"слово"},          whole},
    {"one pixel wider than the line",       u"слово",               51, 1, on, {u"слово"},          whole},
    {"as wide as the line",                 u"слово",               50, 1, on, {u"сло…"},           elided},
    {"space after a word is not measured",  u"аб вг",               21, 2, on, {u"аб", u"вг"},      whole},
    {"hyphen after a word is not measured", u"аб-вг",               31, 2, on, {u"аб", u"-вг"},     whole},
    {"space at the end is measured",        u"слово ",              51, 1, on, {u"слов…"},          elided},
    {"space at the end fits",               u"слово ",              61, 1, on, {u"слово "},         whole},
    {"spaces and hyphens fit",              u"а-б  в 1-2 - г",     141, 2, on, {u"а-б  в 1-2 - г"}, whole},
    {"width without bound",                 u"слово",          noLimit, 1, on, {u"слово"},          whole},

    // Width: the text width wins over the maximal text width. If neither is set, the text is not broken into lines.
    {"no width",                      u"программа передач",  0, 1, on, {u"программа передач"}, whole},
    {"negative width",                u"программа передач", -1, 1, on, {u"программа передач"}, whole, Qt::AutoText, -1},
    {"no width, two paragraphs",      u"один\nдва",          0, 2, on, {u"один", u"два"},      whole},
    {"maximal width",                 u"один два",           0, 1, on, {u"один…"},             elided, Qt::AutoText, 60},
    {"maximal width, narrower width", u"один два",          60, 1, on, {u"один…"},             elided, Qt::AutoText, 90},
    {"maximal width, wider width",    u"один два",          90, 1, on, {u"один два"},          whole, Qt::AutoText, 60},

    // Spaces: Qt wraps there.
    {"wraps at a space",                     u"один два",             60,       2, on, {u"один", u"два"},            whole},
    {"fills the lines",                      u"один два три четыре", 101,       2, on, {u"один два", u"три четыре"}, whole},
    {"no-break space",                       u"аб\u00A0вг",           45,       2, on, {u"а", u"б\u00A0вг"},         whole},
    // The layout counts two lines. Qt shows one, because Qt lets a line be as wide as the box.
    {"as wide as the line, in two lines",    u"аб вг",                50,       2, on, {u"аб вг"},                   whole},
    // The second space does not fit. So the layout moves the word before it to the next line; Qt does not.
    {"two spaces where the line is full",    u"аб вгд  е",            65,       2, on, {u"аб вгд", u"е"},            whole},
    // The separator after the first word does not fit. So the word moves to the next line. There the separator
    // does not fit either, and the word moves again, until the line limit cuts the text.
    {"two spaces, first word",               u"слово  да",            51,       3, on, {u"слов…"},                   elided},
    {"hyphen and space, first word",         u"слово- да",            51,       3, on, {u"слов…"},                   elided},
    {"space and hyphen, first word",         u"слово -да",            51,       3, on, {u"слов…"},                   elided},
    {"space at the end that does not fit",   u"слово ",               51,       2, on, {u"слов…"},                   elided},
    {"space at the end, without limit",      u"слово ",               51, noLimit, on, {u"слов…"},                   elided},
    {"space at the end, without line count", u"слово ",               51,       0, on, {u"слово"},                   whole},

    // Line limit: the text is cut on the last line that is allowed.
    {"limit of one line",         u"один два три", 60,       1, on, {u"один…"},                elided},
    {"limit of two lines",        u"один два три", 60,       2, on, {u"один", u"два…"},        elided},
    {"limit of three lines",      u"один два три", 60,       3, on, {u"один", u"два", u"три"}, whole},
    {"without limit",             u"один два три", 60, noLimit, on, {u"один", u"два", u"три"}, whole},
    {"without limit, hyphenated", u"программа",    60, noLimit, on, {u"прог-", u"рамма"},      whole},
    // A limit of 0 or less counts no lines: nothing is cut, hyphenated or split.
    {"limit of 0",                u"один два три", 60,       0, on, {u"один", u"два", u"три"}, whole},
    {"limit of 0, wide word",     u"программа",    60,       0, on, {u"программа"},            whole},
    {"negative limit",            u"один два три", 60,      -1, on, {u"один", u"два", u"три"}, whole},
    {"negative limit, wide word", u"программа",    60,      -1, on, {u"программа"},            whole},

    // Ellipsis: the cut line is narrower than the box. Spaces and punctuation before the ellipsis are removed.
    {"cuts at the end of a line",  u"программа передач", 101, 1, on, {u"программа…"}, elided},
    {"cuts inside a word",         u"программа передач",  70, 1, on, {u"прогр…"},     elided},
    {"cuts one pixel later",       u"программа передач",  71, 1, on, {u"програ…"},    elided},
    {"comma and space before it",  u"да, нет",            60, 1, on, {u"да…"},        elided},
    {"quotation mark before it",   u"да «нет»",           60, 1, on, {u"да…"},        elided},
    {"dash before it",             u"да — нет",           60, 1, on, {u"да…"},        elided},
    {"hyphen before it",           u"кто-то-нибудь",      60, 1, on, {u"кто…"},       elided},
    {"symbol before it stays",     u"да 5$, нет",         80, 1, on, {u"да 5$…"},     elided},
    {"punctuation inside stays",   u"а,б, нет",           60, 1, on, {u"а,б…"},       elided},
    {"only punctuation before it", u",, ,,да",            60, 1, on, {u"…"},          elided},
    // The ellipsis alone may be as wide as the box. If the ellipsis does not fit, nothing is shown.
    {"ellipsis alone",             u"да",                 10, 1, on, {u"…"},          elided},
    {"no room for the ellipsis",   u"да",                  9, 1, on, {u""},           elided},
    {"no room on a later line",    u"\nда",                9, 2, on, {u""},           elided},

    // Paragraphs: each newline counts as a line, also a newline at the end. With a limit of one line, newlines
    // are ordinary characters without a width.
    {"newline",                              u"один\nдва",     101, 2, on, {u"один", u"два"},      whole},
    {"newline on one line",                  u"один\nдва",     101, 1, on, {u"один\nдва"},         whole},
    {"newline on one line, cut",             u"один\nдва",      60, 1, on, {u"один…"},             elided},
    {"newline without line count",           u"один\nдва",     101, 0, on, {u"один\nдва"},         whole},
    {"line separator on one line",           u"один\u2028два", 101, 1, on, {u"один…"},             elided},
    {"line separator without line count",    u"один\u2028два", 101, 0, on, {u"один", u"два"},      whole},
    {"paragraphs within the limit",          u"а\nб\nв",       101, 3, on, {u"а", u"б", u"в"},     whole},
    {"paragraphs beyond the limit",          u"а\nб\nв",       101, 2, on, {u"а", u"б…"},          elided},
    {"newline at the end, within the limit", u"а\nб\n",        101, 3, on, {u"а", u"б", u""},      whole},
    {"newline at the end, beyond the limit", u"а\nб\n",        101, 2, on, {u"а", u"б…"},          elided},
    {"newline at the start",                 u"\nа",           101, 2, on, {u"", u"а"},            whole},
    {"empty paragraphs within the limit",    u"а\n\n\nб",      101, 4, on, {u"а", u"", u"", u"б"}, whole},
    {"empty paragraphs beyond the limit",    u"а\n\n\nб",      101, 3, on, {u"а…"},                elided},

    // The last word of a paragraph counts as two lines when it wraps: one for the wrap, one for the newline.
    {"last word wraps, four lines",          u"аб вг\nде",    45,           4, on, {u"аб", u"вг", u"де"},     whole},
    {"last word wraps, three lines",         u"аб вг\nде",    45,           3, on, {u"аб", u"вг…"},           elided},
    {"last word wraps, two lines",           u"аб вг\nде",    45,           2, on, {u"аб", u"вг…"},           elided},
    // If the second count reaches the limit, Qt elides the first line to N characters, and the layout cuts the second
    // line after N characters. Its newline and the space after the text count. In the third row the second line has
    // fewer than N characters, and ends with this space instead of an ellipsis.
    {"cut at the end of the text",           u"аб вгд\n",     55,           2, on, {u"аб", u"вгд…"},          elided},
    {"cut next to the end of the text",      u"абв гд\n",     55,           2, on, {u"абв", u"гд…"},          elided},
    {"cut beyond the end of the text",       u"абвг д\n",     55,           2, on, {u"абвг", u"д "},          elided},
    // If the last word of a paragraph wraps, the line to which it moves is measured without its first character.
    {"last word wraps, as wide as the box",  u"и ввв\nб",     30,           4, on, {u"и", u"ввв", u"б"},      whole},
    {"last word after a hyphen counts once", u"слон-пёс\nда", 70,           3, on, {u"слон", u"-пёс", u"да"}, whole},
    {"space before a newline, four lines",   u"абвг \nде",    45,           4, on, {u"абвг ", u"де"},         whole},
    {"space before a newline, three lines",  u"абвг \nде",    45,           3, on, {u"абвг…"},                elided},
    {"space before a newline, two lines",    u"абвг \nде",    45,           2, on, {u"абв…"},                 elided},
    // A last word that fits on no line counts as two lines each time it wraps: odd and even limits differ.
    {"wide last word, even limit",           u"абвг\nд",      25,           4, on, {u"а…"},                   elided},
    {"wide last word, odd limit",            u"абвг\nд",      25,           5, on, {u"аб…"},                  elided},
    {"wide last word, highest even limit",   u"абвг\nд",      25, noLimit - 1, on, {u"а…"},                   elided},
    {"wide last word, highest odd limit",    u"абвг\nд",      25,     noLimit, on, {u"аб…"},                  elided},
    {"box as wide as a space, four lines",   u" \n",          10,           4, on, {u" ", u""},               whole},
    {"box as wide as a space, three lines",  u" \n",          10,           3, on, {u"…"},                    elided},

    // Hyphens of the text: the line is broken before the hyphen, unless a digit follows.
    {"fits with its hyphen",                 u"слон-пёс",     81, 1, on,  {u"слон-пёс"},            whole},
    {"hyphen moves to the next line",        u"слон-пёс",     70, 2, on,  {u"слон", u"-пёс"},       whole},
    {"hyphens move to the next lines",       u"аб-вг-де",     50, 3, on,  {u"аб", u"-вг", u"-де"},  whole},
    {"hyphens move without line count",      u"аб-вг-де",     50, 0, on,  {u"аб", u"-вг", u"-де"},  whole},
    {"hyphen counts on its new line",        u"аб-вгде",      50, 2, on,  {u"аб", u"-вг…"},         elided},
    {"hyphen at the start",                  u"-слон",        45, 2, on,  {u"", u"-сл…"},           elided},
    {"hyphen moves until the limit",         u"я-слон",       35, 4, on,  {u"я", u"", u"", u"-с…"}, elided},
    {"hyphen moves once without line count", u"я-слон",       35, 0, on,  {u"я", u"-", u"слон"},    whole},
    {"hyphen before a letter",               u"канал аб-вг", 101, 2, off, {u"канал аб", u"-вг"},    whole},
    {"hyphen before a sign",                 u"канал аб-+г", 101, 2, off, {u"канал аб", u"-+г"},    whole},
    {"hyphen before a digit",                u"канал 10-20", 101, 2, off, {u"канал", u"10-20"},     whole},
    {"hyphen before a digit, doubled",       u"канал 10-20", 101, 2, on,  {u"канал 10-", u"-20"},   whole},
    {"hyphen at the end",                    u"слон-",        51, 1, on,  {u"слон-"},               whole},
    {"hyphen at the end does not fit",       u"слон-",        50, 1, on,  {u"сло…"},                elided},
    // A second hyphen that does not fit moves the word before it again and again, up to the limit.
    {"two hyphens",                          u"аб--вг",       30, 3, on,  {u"а…"},                  elided},

    // Hyphenation: программа has the points прог-рам-ма.
    {"last point that fits",               u"программа",         83, 2, on,  {u"програм-", u"ма"},                    whole},
    {"margin rejects a point",             u"программа",         82, 2, on,  {u"прог-", u"рамма"},                    whole},
    {"hyphenates after other words",       u"это программа",    123, 2, on,  {u"это програм-", u"ма"},                whole},
    {"first point fits",                   u"слово программа",  113, 2, on,  {u"слово прог-", u"рамма"},              whole},
    {"no point fits",                      u"слово программа",  112, 2, on,  {u"слово", u"программа"},                whole},
    {"no point fits on any line",          u"программа",         52, 3, on,  {u"прог…"},                              elided},
    {"hyphenates line after line",         u"программирование",  60, 4, on,  {u"прог-", u"рам-", u"миро-", u"вание"}, whole},
    {"does not hyphenate the last line",   u"программирование",  60, 2, on,  {u"прог-", u"рамм…"},                    elided},
    {"does not hyphenate the only line",   u"это программа",     83, 1, on,  {u"это про…"},                           elided},
    {"hyphenates before a line separator", u"программа\nда",     83, 3, on,  {u"програм-", u"ма", u"да"},             whole},
    {"disabled",                           u"это программа",    123, 2, off, {u"это", u"программа"},                  whole},
    {"disabled, lone word",                u"программа",         83, 2, off, {u"програм-", u"ма"},                    whole},
    {"disabled, lone word on its line",    u"да программа",      83, 3, off, {u"да", u"програм-", u"ма"},             whole},

    // The rules, in their order: g is a vowel, s a consonant, x is й, ь or ъ.
    {"xgg: x-gg",                         u"семьею",           60, 2, on, {u"семь-", u"ею"},         whole},
    {"xgs: x-gs",                         u"подъезд",          70, 2, on, {u"подъ-", u"езд"},        whole},
    {"xsg: x-sg",                         u"письмо",           60, 2, on, {u"пись-", u"мо"},         whole},
    {"xss: x-ss",                         u"сельский",         80, 2, on, {u"сель-", u"ский"},       whole},
    {"ggg: g-gg",                         u"длинношеее",      100, 2, on, {u"длинноше-", u"ее"},     whole},
    {"ggs: g-gs",                         u"поэт",             40, 2, on, {u"по-", u"эт"},           whole},
    {"ggx: g-gx",                         u"твоей",            50, 2, on, {u"тво-", u"ей"},          whole},
    {"gssg: gs-sg",                       u"горка",            50, 2, on, {u"гор-", u"ка"},          whole},
    {"sgsg: sg-sg",                       u"вода",             40, 2, on, {u"во-", u"да"},           whole},
    {"gsssg: gs-ssg",                     u"сестра",           60, 2, on, {u"сес-", u"тра"},         whole},
    {"gssssg: gss-ssg",                   u"чувство",          70, 2, on, {u"чувс-", u"тво"},        whole},
    // The rule for ggg comes before the rule for ggs: in the other order мао-ист would be the only point.
    {"rules in their order",              u"маоист",           42, 2, on, {u"ма-", u"оист"},         whole},
    {"several rules",                     u"сообщение",        90, 2, on, {u"сообще-", u"ние"},      whole},
    {"several rules, narrower",           u"сообщение",        60, 2, on, {u"сооб-", u"щение"},      whole},
    {"short i before a vowel",            u"район",            50, 2, on, {u"рай-", u"он"},          whole},
    {"short i before a consonant",        u"стройка",          70, 2, on, {u"строй-", u"ка"},        whole},
    {"consonant between two vowels",      u"выход",            50, 2, on, {u"вы-", u"ход"},          whole},
    {"letter ё",                          u"ёлка",             40, 2, on, {u"ёл-", u"ка"},           whole},
    // In lower case İ is two characters, so that the points after it move one character to the right.
    {"letter with a longer lower case",   u"İпрограмма",      100, 2, on, {u"İпрогр-", u"амма"},     whole},
    {"upper case",                        u"ПРОГРАММА",        83, 2, on, {u"ПРОГРАМ-", u"МА"},      whole},
    {"capital",                           u"Программа",        83, 2, on, {u"Програм-", u"ма"},      whole},
    {"capital Ё",                         u"Ёлка",             40, 2, on, {u"Ёл-", u"ка"},           whole},
    {"two letters",                       u"ая",               20, 2, on, {u"…"},                    elided},
    // The classes have Latin letters for names. These letters count as members of their classes.
    {"Latin g and s",                     u"eggs",             40, 2, on, {u"eg-", u"gs"},           whole},
    {"Latin x and s",                     u"xss",              30, 2, on, {u"x-", u"ss"},            whole},
    {"Latin capitals",                    u"EGGS",             40, 2, on, {u"EG-", u"GS"},           whole},
    // A word's own hyphen counts as a point, and moves the points after it one character to the left.
    {"own hyphen is a point",             u"программа-2000",  140, 2, on, {u"программа-", u"-2000"}, whole},
    // The rules alone would give ТВ-3сери-ал.
    {"own hyphen moves the later points", u"ТВ-3сериал",      100, 2, on, {u"ТВ-3сер-", u"иал"},     whole},
    // The point at the hyphen does not fit, but a word that has a point is not split without a hyphen.
    {"hyphen after the word",             u"abcdefhijklm-да",  63, 3, on, {u"abcde…"},               elided},

    // Words without a point: at least five characters go to the next line, the separator counted.
    {"splits a word without points",         u"abcdefhijklm",    63,       2, on,  {u"abcdef", u"hijklm"},      whole},
    {"margin rejects a split",               u"abcdefhijklm",    62,       3, on,  {u"abcde", u"fhi", u"jklm"}, whole},
    {"five characters go to the next line",  u"abcdefhij",       90,       2, on,  {u"abcde", u"fhij"},         whole},
    {"six characters",                       u"abcde",           50,       2, on,  {u"a", u"bcde"},             whole},
    {"five characters",                      u"abcd",            35,       2, on,  {u"ab…"},                    elided},
    {"five characters, without limit",       u"abcd",            35, noLimit, on,  {u"ab…"},                    elided},
    {"disabled, splits a lone word",         u"abcdefhijklm",    63,       2, off, {u"abcdef", u"hijklm"},      whole},
    {"disabled, wraps a word",               u"да abcdefhij",   103,       2, off, {u"да", u"abcdefhij"},       whole},
    // A word that fits on a line of its own is split only if it has at least nine characters, the separator counted.
    {"nine characters fill the line",        u"да abcdefhi",     95,       2, on,  {u"да abcd", u"efhi"},       whole},
    {"eight characters wrap",                u"да abcdefh",      95,       2, on,  {u"да", u"abcdefh"},         whole},
    {"eight characters, as wide as the box", u"да abcdefh",      82,       2, on,  {u"да", u"abcdefh"},         whole},
    {"eight characters, wider than the box", u"да abcdefh",      81,       2, on,  {u"да abc", u"defh"},        whole},
    {"splits no word on the last line",      u"abcdefhijklm",    60,       1, on,  {u"abcd…"},                  elided},
    {"newline after the word counts",       u"да abcdefhi\nя", 100,       3, on,  {u"да abcd", u"efhi", u"я"}, whole},

    // Surrogate pairs stay whole. Half a pair is shown as U+FFFD.
    {"pair after the split",             u"😀😀😀😀я",     50, 2, on, {u"😀😀", u"😀😀я"}, whole},
    {"pair in front of the ellipsis",     u"😀😀😀😀",      40, 1, on, {u"😀😀…"},          elided},
    {"pair at the cut of a wrapped word", u"аб 😀😀\nв",    45, 2, on, {u"аб", u"😀…"},     elided},
    {"high half",                         u"а\xD83D" u"б", 101, 1, on, {u"а\uFFFDб"},       whole},
    {"low half",                          u"а\xDE00" u"б", 101, 1, on, {u"а\uFFFDб"},       whole},
    {"high half at the end",              u"а\xD83D",      101, 1, on, {u"а\uFFFD"},        whole},
    {"low half at the start",             u"\xDE00" u"а",  101, 1, on, {u"\uFFFDа"},        whole},
    {"high half before a pair",           u"\xD83D😀",     101, 1, on, {u"\uFFFD😀"},       whole},
    {"low half after a pair",             u"😀\xDE00",     101, 1, on, {u"😀\uFFFD"},       whole},
    {"halves the wrong way round",        u"\xDE00\xD83D", 101, 1, on, {u"\uFFFD\uFFFD"},   whole},

    // Formats: rich text is left to Qt. In every other format the tags and marks are measured as characters.
    {"rich text",            u"<b>один</b> два",   60, 1, on, {u"один", u"два"}, whole, Qt::RichText},
    {"rich text, wide word", u"<b>программа</b>",  60, 2, on, {u"программа"},    whole, Qt::RichText},
    {"plain text",           u"<b>да</b>",         50, 1, on, {u"<b>…"},         elided, Qt::PlainText},
    {"automatic format",     u"<b>да</b> нет",    101, 1, on, {u"да…"},          elided, Qt::AutoText},
    {"Markdown",             u"**да** нет",        81, 1, on, {u"**да…"},        elided, Qt::MarkdownText},
};
// clang-format on

QStringList paintedLines(TextRenderer &renderer)
{
    PaintRecorder device;
    QPainter painter(&device);
    renderer.draw(painter);
    painter.end();

    QStringList lines(renderer.boundingSize().height() / fontSize);
    for (const PaintCall &call : device.calls(PaintCall::Kind::Text)) {
        const auto line = qsizetype(call.position.y()) / fontSize;
        lines.resize(std::max(lines.size(), line + 1));
        lines[line] += call.text;
    }
    return lines;
}

} // namespace

class tst_TextLayoutExamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void showsTheExpectedLines_data();
    void showsTheExpectedLines();

private:
    const InstalledFont m_installed{halfEmFont()};
    const QFont m_font = m_installed.font(fontSize);
};

void tst_TextLayoutExamples::initTestCase()
{
    const QFontMetricsF metrics(m_font);
    QCOMPARE(metrics.height(), 20.0);
    QCOMPARE(metrics.horizontalAdvance(QStringLiteral("жi7 -…")), 60.0);
}

void tst_TextLayoutExamples::showsTheExpectedLines_data()
{
    QTest::addColumn<Example>("example");
    for (const Example &example : examples)
        QTest::newRow(example.rule) << example;
}

void tst_TextLayoutExamples::showsTheExpectedLines()
{
    QFETCH(Example, example);

    TextRenderer renderer;
    renderer.setTextFont(m_font);
    renderer.setTextFormat(example.format);
    renderer.setHyphenationEnabled(example.hyphenationEnabled);
    renderer.setMaxLineCount(example.maxLineCount);
    renderer.setMaxTextWidth(example.maxTextWidth);
    renderer.setTextWidth(example.width);
    renderer.setText(example.text.toString());
    renderer.relayout();

    QStringList expected;
    for (const QStringView line : example.lines)
        expected += line.toString();
    // QCOMPARE would show every Russian letter as its code point.
    const QStringList painted = paintedLines(renderer);
    QVERIFY2(painted == expected, qPrintable(painted.join(u'|')));
    QCOMPARE(renderer.isTextElided(), example.isElided);
}

QTEST_MAIN(tst_TextLayoutExamples)

#include "tst_textlayout_examples.moc"
