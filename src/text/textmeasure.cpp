#include "textmeasure_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ovelin {

namespace {

// No character is wider than the first, the longest ligatures of sentences included, but for a tab, which
// reaches up to the next of Qt's stops; and no text is wider than the second on average.
constexpr double widestCharacterInEms = 16;
constexpr double widestAverageInEms = 4;
constexpr double tabStopDistance = 80;

// Qt counts 64ths of pixels in an int: greater advances overflow.
constexpr double greatestAdvance = 1 << 25;

// What comes behind it is not measured: Qt takes it for a shorter form of the text.
constexpr char16_t endOfMeasuredText = u'\u009c';

// The second halves of the pairs from REGIONAL INDICATOR SYMBOL LETTER A to Z.
constexpr char16_t firstOfRegion = QChar::lowSurrogate(0x1f1e6);
constexpr char16_t lastOfRegion = QChar::lowSurrogate(0x1f1ff);

// Letters of most scripts are a little over half as wide as high.
constexpr double usualCharacterInEms = 0.55;

// In a line of narrow letters stand that many times as many as in one of usual ones, and some more.
constexpr double narrowLetters = 2;
constexpr qsizetype fewestPerLine = 64;
constexpr double longestLine = 1 << 14;

// Shaping a longer stretch costs no less a character, and where the lines end sooner it is for
// nothing.
constexpr qsizetype longestUsualStretch = 256;

// As many emoji of families, which end as one.
constexpr double joinedCharactersInEms = 4;

// Qt has longer texts shaped in pieces of so many characters, and these do not join.
constexpr qsizetype longestShaped = 4096;

// On a shorter line what is measured ahead saves nothing.
constexpr qsizetype shortestLongLine = 64;
constexpr qsizetype fewestAhead = 16;

double characterWidth(const QFont &font, double ems)
{
    const bool percentage = font.letterSpacingType() == QFont::PercentageSpacing;
    const double widest = std::max(ems * font.pixelSize(), tabStopDistance);
    return widest * horizontalScale(font) + (percentage ? 0 : std::abs(font.letterSpacing()))
           + std::abs(font.wordSpacing());
}

// By how much a character may make a text narrower, in a font that sets them closer than they are wide.
double characterShrinkage(const QFont &font)
{
    const bool percentage = font.letterSpacingType() == QFont::PercentageSpacing;
    const double letterShrinkage = percentage && font.letterSpacing() < 0
                                       ? characterWidth(font, widestCharacterInEms)
                                       : std::max(0.0, -font.letterSpacing());
    return letterShrinkage + std::max(0.0, -font.wordSpacing());
}

double usualPerLine(const QFont &font, double lineWidth)
{
    return std::min(lineWidth / (usualCharacterInEms * std::max(1, font.pixelSize())), longestLine);
}

qsizetype stretchLength(const QFont &font, double lineWidth, int maxLineCount)
{
    if (maxLineCount < 1)
        return longestUsualStretch;
    return static_cast<qsizetype>(
        std::min<double>(usualPerLine(font, lineWidth) * maxLineCount, longestUsualStretch));
}

char32_t characterAt(QStringView text, qsizetype position)
{
    const QChar c = text.at(position);
    const bool isPair = c.isHighSurrogate() && position + 1 < text.size();
    return isPair ? QChar::surrogateToUcs4(c, text.at(position + 1)) : c.unicode();
}

bool hasScript(char32_t c)
{
    return QChar::script(c) > QChar::Script_Common;
}

bool isLetter(char32_t c)
{
    return hasScript(c) && !QChar::isMark(c);
}

// Returns the end, if there is none.
qsizetype find(QStringView text, qsizetype from, qsizetype to, bool (*is)(char32_t))
{
    while (from < to && !is(characterAt(text, from)))
        ++from;
    return from;
}

// A letter behind such signs may turn them around, into wider or narrower ones. The brackets below are as
// wide as their counterparts.
bool mayTurnAround(QStringView text)
{
    return std::ranges::any_of(text, [](QChar c) { return c >= u'\u2200' && c.hasMirrored(); });
}

// The end of a text that holds such characters may be another one by itself: a tab reaches up to a stop,
// controls of the direction act on all behind them, two signs of regions make a flag, and what is behind the
// end of the measured text has not been measured.
bool dependsOnBeginning(QChar c)
{
    const auto isBetween = [c](char16_t first, char16_t last) { return c >= first && c <= last; };
    return c == u'\t' || c == endOfMeasuredText || isBetween(u'\u202a', u'\u202e')
           || isBetween(u'\u2066', u'\u2069') || isBetween(firstOfRegion, lastOfRegion);
}

// Up to where a longer text tells of the beginning that ends there: signs before the first letter are
// shaped as that letter asks for.
qsizetype endOfSameShape(QStringView text, qsizetype from, qsizetype to, qsizetype end)
{
    return find(text, from, to, hasScript) < to ? end : find(text, to, end, hasScript);
}

} // namespace

TextMeasure::TextMeasure(const QFont &font, double lineWidth, int maxLineCount, Method method)
    : m_metrics(font)
    , m_lineWidth(lineWidth)
    , m_widestCharacter(characterWidth(font, widestCharacterInEms))
    , m_mostInText(
          static_cast<qsizetype>(greatestAdvance / characterWidth(font, widestAverageInEms)))
    , m_characterShrinkage(characterShrinkage(font))
    , m_tolerance(TextRuler::tolerance(font))
    , m_joinedCharacters(joinedCharactersInEms
                         * (font.pixelSize() * horizontalScale(font) + m_characterShrinkage))
    , m_mostPerLine(static_cast<qsizetype>(narrowLetters * usualPerLine(font, lineWidth))
                    + fewestPerLine)
    , m_stretchLength(stretchLength(font, lineWidth, maxLineCount))
    , m_ruler(font)
    , m_usesRuler(method == Method::Ruler && TextRuler::canRead(font))
{
}

double TextMeasure::mostShrinkage(QStringView text) const
{
    return TextRuler::canRead(text) ? m_tolerance : m_joinedCharacters;
}

bool TextMeasure::decide(const QString &text, qsizetype from, qsizetype to, Fits fits)
{
    to = std::max(from, to);
    if (fits(double(to - from) * m_widestCharacter) || isKnownToFit(from, to, fits))
        return true;

    // Of what is much longer than a line, as a word without an end, the beginning is enough: what
    // follows does not make it narrower, or, where letters join that cannot be read, by no whole line.
    if (advancesGrow()) {
        for (qsizetype seen = m_mostPerLine; seen < to - from; seen *= 2) {
            const auto reading = read(text, from, from + seen);
            const double least =
                reading ? *reading - m_tolerance : measure(text, from, from + seen) - m_lineWidth;
            if (!fits(least))
                return false;
        }
    }

    const auto reading = read(text, from, to);
    const auto decides = [&](double tolerance) {
        return fits(*reading - tolerance) == fits(*reading + tolerance);
    };
    if (reading && (decides(m_tolerance) || decides(m_ruler.tolerance(text, from, to))))
        return fits(*reading);
    if (!reading && to - from >= shortestLongLine)
        return decideLongLine(text, from, to, fits);
    return fits(measureToo(text, from, to, reading));
}

void TextMeasure::textInserted(qsizetype before, qsizetype size)
{
    m_ruler.textInserted(before, size);
    m_ahead = {};
    const qsizetype position = before - size;
    if (m_rest && position >= m_rest->from && position < m_rest->to)
        m_rest->to += size;
    else
        m_rest.reset();
}

void TextMeasure::checkOnce(const QString &text, qsizetype from, qsizetype to)
{
    if (m_rulerIsChecked || !m_usesRuler || from >= to)
        return;
    // With the neighbour behind it, which must be known for what it does. It need not be of the text.
    static_cast<void>(m_ruler.advance(text, from, to + 1, m_stretchLength));
    if (const auto reading = read(text, from, to)) {
        measureToo(text, from, to, reading);
        m_rulerIsChecked = true;
    }
}

// What else is in the text makes it no narrower, but for the two ends of the range, which have
// other neighbours in it.
bool TextMeasure::isWiderThanLine(QStringView seen, qsizetype size) const
{
    return m_usesRuler && advancesGrow() && m_widestRange > m_lineWidth + m_tolerance
           && size <= m_mostInText && !seen.contains(endOfMeasuredText) && !mayTurnAround(seen);
}

bool TextMeasure::decideLongLine(const QString &text, qsizetype from, qsizetype to, Fits fits)
{
    if (isKnownNotToFit(text, from, to, fits))
        return false;
    if (fitsWithMore(text, from, to, fits))
        return true;
    const double advance = measure(text, from, to);
    noteRest(text, from, to, advance);
    return fits(advance);
}

// From what was measured ahead, with room to spare for what makes a beginning wider than all of it.
bool TextMeasure::isKnownToFit(qsizetype from, qsizetype to, Fits fits) const
{
    if (from != m_ahead.from || to > m_ahead.to)
        return false;
    const double shrinkage = m_joinedCharacters + double(m_ahead.to - to) * m_characterShrinkage;
    return fits(m_ahead.advance + shrinkage);
}

// Of a long line twice as much is measured as is asked for, and less and less ahead where that is too
// much, so that the measurements are few however many words stand on it; and no more than can be without
// an overflow.
bool TextMeasure::fitsWithMore(const QString &text, qsizetype from, qsizetype to, Fits fits)
{
    if (from != m_ahead.from)
        m_ahead = {.from = from, .to = from, .mostMore = std::numeric_limits<qsizetype>::max()};
    while (!isKnownToFit(from, to, fits)) {
        const auto unknown = double(std::max<qsizetype>(0, to - m_ahead.to));
        const auto room = static_cast<qsizetype>(
            (greatestAdvance - m_ahead.advance) / m_widestCharacter - unknown);
        const qsizetype more = std::min({m_ahead.mostMore, to - from, text.size() - to, room});
        if (more < fewestAhead)
            return false;
        const qsizetype end = endOfSameShape(text, from, to, to + more);
        const QString seen = text.sliced(from, end - from);
        if (mayTurnAround(seen))
            return false;
        m_ahead.to = end;
        m_ahead.advance = m_metrics.horizontalAdvance(seen);
        if (!isKnownToFit(from, to, fits))
            m_ahead.mostMore = more / 2;
    }
    return true;
}

// Of a word without an end, what was left for one line tells of what is left for the next ones, until that
// is little. Signs in front of its first letter are not counted where they had a letter in front of them:
// they are shaped as that one asks for.
bool TextMeasure::isKnownNotToFit(QStringView text, qsizetype from, qsizetype to, Fits fits) const
{
    if (!m_rest || from < m_rest->from || to != m_rest->to)
        return false;
    if (text.sliced(from, to - from).isRightToLeft() != m_rest->isRightToLeft)
        return false;
    const qsizetype same = from <= m_rest->firstOfScript ? from : find(text, from, to, isLetter);
    const double mostGone =
        double(same - m_rest->from) * (m_widestCharacter + m_characterShrinkage);
    const qsizetype pieces = (to - m_rest->from) / longestShaped + 1;
    return !fits(m_rest->advance - mostGone - double(pieces) * m_joinedCharacters);
}

// Only what ends farther than what was noted: the beginnings of its lines are measured, too.
void TextMeasure::noteRest(QStringView text, qsizetype from, qsizetype to, double advance)
{
    const QStringView rest = text.sliced(from, to - from);
    if (advancesGrow() || (m_rest && to < m_rest->to)
        || std::ranges::any_of(rest, dependsOnBeginning)) {
        return;
    }
    m_rest = {.from = from,
              .to = to,
              .firstOfScript = find(text, from, to, hasScript),
              .isRightToLeft = rest.isRightToLeft(),
              .advance = advance};
}

std::optional<double> TextMeasure::read(const QString &text, qsizetype from, qsizetype to)
{
    if (!m_usesRuler)
        return std::nullopt;
    const auto reading = m_ruler.advance(text, from, to, m_stretchLength);
    if (reading)
        m_widestRange = std::max(m_widestRange, *reading - m_tolerance);
    return reading;
}

double TextMeasure::measure(const QString &text, qsizetype from, qsizetype to)
{
    const double advance = m_metrics.horizontalAdvance(text.mid(from, to - from));
    m_widestRange = std::max(m_widestRange, advance);
    return advance;
}

// Measures what was read, if it could be, to see whether the ruler is right.
double TextMeasure::measureToo(const QString &text, qsizetype from, qsizetype to,
                               std::optional<double> reading)
{
    const double advance = measure(text, from, to);
    if (reading && std::abs(advance - *reading) > m_ruler.tolerance(text, from, to))
        m_rulerIsWrong = true;
    return advance;
}

} // namespace ovelin
