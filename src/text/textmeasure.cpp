#include "textmeasure_p.h"

#include "hyphenation_p.h"

#include <algorithm>
#include <cmath>

namespace ovelin {

namespace {

// Qt measures a text up to this control character only.
constexpr char16_t endOfMeasuredText = u'\u009c';

// Letters of most scripts are a little over half an em wide.
constexpr double usualCharacterInEms = 0.55;

// A run usually has at most this many lines. The next run begins with the line in which the previous run ended,
// so this line is shaped twice. Shorter runs would shape more lines twice.
constexpr int usualLines = 16;

// If a line needs a longer run, the new one is this many times as long, or longer. All runs of one line
// together cost at most three times the last one.
constexpr double runGrowth = 1.5;

// The cut of an elided line is looked for among this many characters before the first one that overflows. An
// ellipsis is as wide as one to four characters.
constexpr qsizetype charactersBeforeOverflow = 4;

bool charactersTakeRoom(const QFont &font)
{
    return font.letterSpacing() >= 0 && font.wordSpacing() >= 0;
}

// Returns the size of a run in characters: those expected in the lines, and a quarter of a line more, because
// letters can be narrow and a word overflows. The run exceeds longestPiece only if a line and a quarter do.
qsizetype usualRunSize(const QFont &font, double lineWidth, int maxLineCount, qsizetype textSize)
{
    const double characters = lineWidth / (usualCharacterInEms * std::max(1, font.pixelSize()));
    const auto line = static_cast<qsizetype>(std::clamp(characters, 0.0, double(textSize)));
    const qsizetype more = line / 4 + 1;
    const int lines = maxLineCount >= 1 ? std::min(maxLineCount, usualLines) : usualLines;
    return std::max(line + more, std::min(longestPiece, lines * line + more));
}

// Returns the number of characters before the first `end`, or of all characters if there is none.
qsizetype sizeUpTo(QChar end, QStringView characters)
{
    const qsizetype position = characters.indexOf(end);
    return position < 0 ? characters.size() : position;
}

// True if the character makes QFontMetricsF::elidedText() do more than cut the end of a text: the function
// keeps direction controls of the part that it cuts away, and takes what follows U+009C as a shorter form of
// the text.
bool isSpecialInElision(QChar c)
{
    return (c >= u'\u200e' && c <= u'\u200f') || (c >= u'\u202a' && c <= u'\u202e')
           || (c >= u'\u2066' && c <= u'\u2069') || c == endOfMeasuredText;
}

// Returns the position of the first space after a letter, or -1.
qsizetype firstSpaceAfterLetter(QStringView text)
{
    qsizetype space = text.indexOf(u' ', 1);
    while (space >= 0 && !text.at(space - 1).isLetter())
        space = text.indexOf(u' ', space + 1);
    return space;
}

} // namespace

QChar SourceText::at(qsizetype position) const
{
    return position < m_text.size() ? m_text.at(position) : u' ';
}

QString SourceText::range(qsizetype from, qsizetype to) const
{
    QString characters = m_text.mid(from, to - from);
    if (to > m_text.size())
        characters += u' ';
    return characters;
}

bool SourceText::isInsidePair(qsizetype position) const
{
    return at(position).isLowSurrogate();
}

TextMeasure::TextMeasure(const SourceText &text, const QFont &font, double lineWidth,
                         int maxLineCount, Method method)
    : m_text(text)
    , m_font(font)
    , m_lineWidth(lineWidth)
    , m_readsRuns(method == Method::ReadRuns)
    , m_usualRunSize(usualRunSize(font, lineWidth, maxLineCount, text.size()))
    , m_charactersTakeRoom(charactersTakeRoom(font))
{
}

bool TextMeasure::decide(qsizetype from, qsizetype to, Fits fits)
{
    if (to <= from)
        return fits(0);
    if (!m_readsRuns)
        return fits(measure(from, to));
    while (!m_run.covers(from, to)) {
        const bool readsPrefix = m_charactersTakeRoom && m_run.covers(from, from + 1);
        if (readsPrefix && !fits(m_run.leastAdvanceOfLonger(from)))
            return false;
        if (!shape(from, nextRunSize(from, to)))
            return fits(measure(from, to));
    }

    const auto answer = [&](const Reading &reading) -> std::optional<bool> {
        if (fits(reading.advance + reading.tolerance))
            return true;
        if (!fits(reading.advance - reading.tolerance))
            return false;
        return std::nullopt;
    };
    if (const auto decided = answer(m_run.read(from, to)))
        return *decided;
    const Reading reading = m_run.readClosely(from, to);
    if (const auto decided = answer(reading))
        return *decided;
    return fits(measureAndCompare(from, to, reading));
}

// Shapes a run of up to `size` characters from `from` on. Returns false, and keeps the present run, if the
// new one would add no characters.
bool TextMeasure::shape(qsizetype from, qsizetype size)
{
    const QStringView rest = QStringView(m_text.withoutLastSpace()).sliced(from);
    QStringView characters = rest.first(std::min(size, rest.size()));
    characters.truncate(sizeUpTo(endOfMeasuredText, characters));
    // From a run that is longer than a piece only the first line is read, and a line ends with its paragraph.
    if (characters.size() > longestPiece)
        characters.truncate(std::max(longestPiece, sizeUpTo(lineSeparator, characters)));
    if (!characters.isEmpty() && m_text.isInsidePair(from + characters.size()))
        characters.chop(1);
    const bool readsMore = !characters.isEmpty() && !m_run.covers(from, from + characters.size());
    if (readsMore) {
        m_run = ShapedRun(characters.toString(), from, m_font, rest.sliced(characters.size()));
        m_charactersTakeRoom = m_charactersTakeRoom && !m_run.hasNegativeAdvance();
        noteWholeAdvance();
    }
    return readsMore;
}

// If advances can be negative, a prefix tells nothing about the range: the run must reach the range's end.
qsizetype TextMeasure::nextRunSize(qsizetype from, qsizetype to) const
{
    const bool isSameLine = m_run.begin() == from;
    const auto grown =
        isSameLine ? static_cast<qsizetype>(double(m_run.end() - from) * runGrowth) + 1 : 0;
    return std::max({grown, m_usualRunSize, m_charactersTakeRoom ? 1 : to - from});
}

void TextMeasure::noteWholeAdvance()
{
    if (m_run.begin() != 0)
        return;
    const qsizetype size = m_text.withoutLastSpace().size();
    if (m_run.end() == size) {
        m_wholeAdvance = m_run.advance(0, size);
    } else if (m_charactersTakeRoom) {
        const double least = m_run.leastAdvanceOfLonger(0);
        if (least > m_lineWidth)
            m_wholeAdvance = least;
    }
}

double TextMeasure::measure(qsizetype from, qsizetype to) const
{
    return m_font.metrics.horizontalAdvance(m_text.range(from, to));
}

double TextMeasure::measureAndCompare(qsizetype from, qsizetype to, const Reading &reading)
{
    const double advance = measure(from, to);
    if (std::abs(advance - reading.advance) > reading.tolerance)
        m_isReadWrong = true;
    // With a large tolerance, this comparison could miss strong kerning at the space. So at most one end may have
    // the tolerance of kerned characters, and nothing else may add to it.
    const bool isClose = reading.tolerance <= m_font.kernedEnd + m_font.freeEnd;
    if (isClose && m_text.at(to) == u' ' && to < m_run.end() && m_text.at(to - 1).isLetter())
        m_isComparedAtSpace = true;
    return advance;
}

bool TextMeasure::findsWrongReading()
{
    if (m_readsRuns && !m_isComparedAtSpace)
        compareAtSpace();
    return m_isReadWrong;
}

// A font that kerns more than the tolerances allow usually kerns letters with spaces, too. So a letter before a
// space is read from a run that has this space, and measured without it.
void TextMeasure::compareAtSpace()
{
    const QStringView text = m_text.withoutLastSpace();
    qsizetype space = firstSpaceAfterLetter(text);
    if (space < 0)
        space = text.lastIndexOf(u' ');
    if (space <= 0)
        return;
    const ShapedRun run(m_text.range(space - 1, space + 1), space - 1, m_font);
    measureAndCompare(space - 1, space, run.read(space - 1, space));
}

TextMeasure::ElidedLine TextMeasure::elide(qsizetype from, qsizetype to)
{
    if (const auto elided = elideByReading(from, to))
        return *elided;
    const QString shown =
        m_font.metrics.elidedText(m_text.range(from, to), Qt::ElideRight, m_lineWidth);
    return {.size = shown.size(),
            .isTooWide = !shown.isEmpty() && m_font.metrics.horizontalAdvance(shown) > m_lineWidth};
}

// Lets Qt elide only the characters around the cut. The result is that of the whole line if the readings of
// the line's prefixes are exact. Returns nothing if a reading may be inexact, or if the line may fit.
std::optional<TextMeasure::ElidedLine> TextMeasure::elideByReading(qsizetype from, qsizetype to)
{
    const QStringView line = QStringView(m_text.withoutLastSpace()).mid(from, to - from);
    const bool isPlain = m_font.font.capitalization() == QFont::MixedCase
                         && std::ranges::none_of(line, isSpecialInElision);
    if (!m_readsRuns || !isPlain)
        return std::nullopt;
    if (!m_run.covers(from, from + 1) || !m_run.beginsFreely(from)) {
        m_run = ShapedRun(); // otherwise shape() may keep the present run
        if (!shape(from, std::min(to - from, nextRunSize(from, to))))
            return std::nullopt;
    }
    const qsizetype end = std::min(to, m_run.end());
    qsizetype overflow = from;
    while (overflow < end && m_run.advance(from, overflow + 1) <= m_lineWidth)
        ++overflow;
    if (overflow == end)
        return std::nullopt;
    qsizetype first = std::max(from, overflow - charactersBeforeOverflow);
    while (first > from && !m_run.beginsFreely(first))
        --first;
    // No run has the space after the text, but a font can kern the last letter with it. So Qt gets this space.
    const bool reachesEnd = end == m_text.withoutLastSpace().size();
    const qsizetype last = reachesEnd ? end : overflow + 1;
    const bool isExact = m_charactersTakeRoom && m_run.hasSeparateGlyphs(first, last)
                         && m_run.isExact(first, last) && m_run.isExact(from, last);
    if (!isExact)
        return std::nullopt;

    const double before = m_run.advance(from, first);
    const QString tail = m_text.range(first, reachesEnd ? to : last);
    const QString shown = m_font.metrics.elidedText(tail, Qt::ElideRight, m_lineWidth - before);
    // With only an ellipsis, the cut may be before the tail. Without one, the line fits, or it is too narrow for an
    // ellipsis, or Qt shows three dots instead.
    if (shown.size() == 1 || !shown.endsWith(ellipsis))
        return std::nullopt;
    return ElidedLine{.size = first - from + shown.size(),
                      .isTooWide = before + m_font.metrics.horizontalAdvance(shown) > m_lineWidth};
}

} // namespace ovelin
