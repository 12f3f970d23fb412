#include "textmeasure_p.h"

#include "hyphenation_p.h"

#include <algorithm>
#include <cmath>

namespace ovelin {

namespace {

// Qt counts 64ths of a pixel in an int: greater advances overflow.
constexpr double greatestAdvance = 1 << 25;
// No text is wider on average, per character.
constexpr double widestAverageInEms = 4;

// Qt measures a text up to this control character only.
constexpr char16_t endOfMeasuredText = u'\u009c';

// Letters of most scripts are a little over half as wide as high.
constexpr double usualCharacterInEms = 0.55;

// Of lines without a limit, so many are shaped at once. Each run begins with the line in which the one
// before it ended, so that shorter runs shape more characters twice.
constexpr int usualLines = 16;

// A run grows at least by half of its size, so that all runs that begin with one line cost no more than
// three times the last one.
constexpr double runGrowth = 1.5;

// Fonts are checked with at most so many characters.
constexpr qsizetype longestCheck = 64;

// The elided part of a line is looked for by its last characters: so many before the one that overflows,
// and so many behind it. An ellipsis is as wide as one to four of them.
constexpr qsizetype charactersBeforeCut = 8;
constexpr qsizetype charactersBehindCut = 4;

bool charactersTakeRoom(const QFont &font)
{
    return font.letterSpacing() >= 0 && font.wordSpacing() >= 0;
}

// At least a pixel: a font can have a size of 0.
double widestAverage(const QFont &font)
{
    const bool percentage = font.letterSpacingType() == QFont::PercentageSpacing;
    return std::max(1.0, widestAverageInEms * font.pixelSize() * horizontalScale(font))
           + (percentage ? 0 : std::abs(font.letterSpacing())) + std::abs(font.wordSpacing());
}

qsizetype usualLine(const QFont &font, double lineWidth, qsizetype textSize)
{
    const double size = lineWidth / (usualCharacterInEms * std::max(1, font.pixelSize()));
    return static_cast<qsizetype>(std::min(size, double(textSize)));
}

// With a quarter of a line more, for narrow letters and for the word that overflows.
qsizetype usualRun(qsizetype usualLine, int maxLineCount)
{
    const bool isLimited = maxLineCount >= 1 && maxLineCount < usualLines;
    return usualLine * (isLimited ? maxLineCount : usualLines) + usualLine / 4 + 1;
}

// QFontMetricsF::elidedText() keeps these from what it cuts away, except the last one: what stands behind
// that is a shorter form of the text, which it may show instead.
bool isKeptWhenElided(QChar c)
{
    return (c >= u'\u200b' && c <= u'\u200f') || (c >= u'\u202a' && c <= u'\u202e')
           || (c >= u'\u2060' && c <= u'\u206f') || c == u'\u061c' || c == endOfMeasuredText;
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
    , m_metrics(font)
    , m_lineWidth(lineWidth)
    , m_tolerances(font)
    , m_charactersTakeRoom(charactersTakeRoom(font))
    , m_longestRun(method == Method::MeasureAll
                       ? 0
                       : static_cast<qsizetype>(
                             std::min(greatestAdvance / widestAverage(font), double(text.size()))))
    , m_usualRun(usualRun(usualLine(font, lineWidth, text.size()), maxLineCount))
{
}

bool TextMeasure::decide(qsizetype from, qsizetype to, Fits fits)
{
    if (to <= from)
        return fits(0);
    while (!m_run.covers(from, to)) {
        const bool readsPrefix = m_charactersTakeRoom && m_run.covers(from, from + 1);
        if (readsPrefix && !fits(m_run.leastAdvanceOfLonger(from)))
            return false;
        if (!shape(from, nextRunSize(from, to)))
            return fits(measure(from, to));
    }

    const auto decides = [&](const Reading &reading) {
        return fits(reading.advance - reading.tolerance)
               == fits(reading.advance + reading.tolerance);
    };
    const Reading reading = m_run.read(from, to);
    if (decides(reading) || decides(m_run.readClosely(from, to, m_metrics)))
        return fits(reading.advance);
    return fits(measureAndCompare(from, to));
}

// Makes a run that begins there. Returns false if none reads more than the present one.
bool TextMeasure::shape(qsizetype from, qsizetype size)
{
    const QStringView rest = QStringView(m_text.withoutSpace()).sliced(from);
    QStringView characters = rest.first(std::min({size, m_longestRun, rest.size()}));
    const qsizetype measured = characters.indexOf(endOfMeasuredText);
    if (measured >= 0)
        characters.truncate(measured);
    if (!characters.isEmpty() && m_text.isInsidePair(from + characters.size()))
        characters.chop(1);
    const bool readsMore = !characters.isEmpty() && !m_run.covers(from, from + characters.size());
    if (readsMore) {
        m_run = ShapedRun(characters.toString(), from, m_font, m_tolerances);
        noteWholeAdvance();
    }
    return readsMore;
}

// A text in which characters may take room away has to be known up to the end of the range.
qsizetype TextMeasure::nextRunSize(qsizetype from, qsizetype to) const
{
    const bool isSameLine = m_run.begin() == from;
    const auto grown =
        isSameLine ? static_cast<qsizetype>(double(m_run.end() - from) * runGrowth) + 1 : 0;
    return std::max({grown, m_usualRun, m_charactersTakeRoom ? 1 : to - from});
}

void TextMeasure::noteWholeAdvance()
{
    const qsizetype size = m_text.withoutSpace().size();
    const bool isKnown = m_run.begin() > 0 || size > m_longestRun;
    if (isKnown)
        return;
    if (m_run.end() == size) {
        m_wholeAdvance = m_run.read(0, size).advance;
    } else if (m_charactersTakeRoom) {
        const double least = m_run.leastAdvanceOfLonger(0);
        if (least > m_lineWidth)
            m_wholeAdvance = least;
    }
}

double TextMeasure::measure(qsizetype from, qsizetype to) const
{
    return m_metrics.horizontalAdvance(m_text.range(from, to));
}

double TextMeasure::measureAndCompare(qsizetype from, qsizetype to)
{
    const Reading reading = m_run.readClosely(from, to, m_metrics);
    const double advance = measure(from, to);
    if (std::abs(advance - reading.advance) > reading.tolerance)
        m_isReadWrong = true;
    if (m_text.at(to) == u' ' && to < m_run.end())
        m_isChecked = true;
    return advance;
}

// Fonts for which the tolerances are too small mostly kern letters with spaces: the run has to have the
// space behind the range.
bool TextMeasure::isReadWrong()
{
    const QStringView text = m_text.withoutSpace();
    qsizetype space = text.indexOf(u' ', m_run.begin() + 1);
    if (space < 0)
        space = text.lastIndexOf(u' ');
    const qsizetype from =
        std::max(space - longestCheck, space > m_run.begin() ? m_run.begin() : 0);
    const bool canBeChecked = space > from && space - from < m_longestRun;
    if (!m_isChecked && canBeChecked) {
        if (!m_run.covers(from, space + 1))
            m_run = ShapedRun(m_text.range(from, space + 1), from, m_font, m_tolerances);
        measureAndCompare(from, space);
    }
    return m_isReadWrong;
}

TextMeasure::ElidedLine TextMeasure::elide(qsizetype from, qsizetype to)
{
    const QStringView line = QStringView(m_text.withoutSpace()).mid(from, to - from);
    qsizetype end = to;
    if (m_longestRun > 0 && std::ranges::none_of(line, isKeptWhenElided)) {
        if (const auto elided = elideByReading(from, to))
            return *elided;
        if (m_run.covers(from, from + 1))
            end = endOfWhatIsElided(from, to);
    }
    const QString characters = m_text.range(from, end);
    const QString shown = m_metrics.elidedText(characters, Qt::ElideRight, m_lineWidth);
    return {.size = shown.size(),
            .overflows = !shown.isEmpty() && m_metrics.horizontalAdvance(shown) > m_lineWidth};
}

// What is farther behind the end of the line than two joined ends is cut away and changes nothing before
// it.
qsizetype TextMeasure::endOfWhatIsElided(qsizetype from, qsizetype to)
{
    if (!m_charactersTakeRoom)
        return to;
    do {
        const double least = m_run.leastAdvanceOfLonger(from);
        if (m_run.end() < to && least > m_lineWidth + 2 * m_tolerances.joinedEnd
            && m_run.isExact(from, m_run.end(), m_metrics)) {
            return m_run.end();
        }
    } while (m_run.end() < to && shape(from, nextRunSize(from, to)));
    return to;
}

// Looks for the cut in the last characters that fit, where the readings of the line's prefixes are exact.
std::optional<TextMeasure::ElidedLine> TextMeasure::elideByReading(qsizetype from, qsizetype to)
{
    const bool isExact = m_run.covers(from, from + 1)
                         && (m_run.begin() == from || m_run.hasOwnAdvance(from, m_metrics));
    if (!isExact) {
        m_run = ShapedRun();
        if (!shape(from, std::min(to - from, nextRunSize(from, to))))
            return std::nullopt;
    }
    const auto overflow = overflowByReading(from, to);
    if (!overflow || m_font.capitalization() != QFont::MixedCase)
        return std::nullopt;
    qsizetype first = std::max(from, *overflow - charactersBeforeCut);
    while (first > from && !m_run.hasOwnAdvance(first, m_metrics))
        --first;
    const qsizetype last = std::min({to, m_run.end(), *overflow + 1 + charactersBehindCut});
    if (!m_run.isSideBySide(first, last) || !m_run.isExact(from, last, m_metrics))
        return std::nullopt;

    const double before = first > from ? m_run.read(from, first).advance : 0;
    const QString tail = m_text.range(first, last);
    const QString shown = m_metrics.elidedText(tail, Qt::ElideRight, m_lineWidth - before);
    const qsizetype kept = shown.size() - 1;
    if (kept < 1 || kept > tail.size() - 2 || shown.back() != ellipsis)
        return std::nullopt;
    return ElidedLine{.size = first - from + shown.size(),
                      .overflows = before + m_metrics.horizontalAdvance(shown) > m_lineWidth};
}

// Returns the position of the first character with which the line is not below the limit; nothing if the
// whole line may fit, or if a character before it has a negative advance.
std::optional<qsizetype> TextMeasure::overflowByReading(qsizetype from, qsizetype to) const
{
    const qsizetype end = std::min(to, m_run.end());
    const Reading reading = m_run.read(from, end);
    double least = reading.advance - reading.tolerance;
    if (end < std::min(to, m_text.withoutSpace().size()))
        least = m_charactersTakeRoom ? m_run.leastAdvanceOfLonger(from) : 0;
    else if (end < to)
        least -= m_tolerances.kernedEnd; // with the space behind the text
    if (least <= m_lineWidth)
        return std::nullopt;
    qsizetype position = from;
    double before = 0;
    for (double next = before; next < m_lineWidth; ++position) {
        before = next;
        next = m_run.read(from, position + 1).advance;
        if (next < before)
            return std::nullopt;
    }
    return position - 1;
}

} // namespace ovelin
