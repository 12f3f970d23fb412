#include "textruler_p.h"

#include <algorithm>
#include <cmath>

namespace ovelin {

namespace {

struct CharacterRange
{
    char16_t first;
    char16_t last;
};

// Letters of the Latin, Greek and Cyrillic scripts, digits, and visible punctuation. No marks that
// combine, no controls, no soft hyphens, which are as wide as the place they are in asks for.
constexpr CharacterRange readableCharacters[] = {
    {u'\u0020', u'\u007e'}, {u'\u00a0', u'\u00ac'}, {u'\u00ae', u'\u024f'},
    {u'\u0370', u'\u0482'}, {u'\u048a', u'\u052f'}, {u'\u2010', u'\u2027'},
    {u'\u2030', u'\u205e'}, {u'\u20a0', u'\u20bf'}, {u'\u2116', u'\u2116'},
};

bool isReadable(QChar c)
{
    return std::ranges::any_of(readableCharacters, [c](CharacterRange range) {
        return c >= range.first && c <= range.last;
    });
}

// Kerning between letters takes a fifth of this, and less at spaces.
constexpr double tolerableEms = 0.5;

// How much of it is enough where neither end is kerned to its neighbour: only what fonts hardly ever
// have can act on the range then, rules for letters that are farther apart.
constexpr double freeEndsShare = 0.2;

// What has none, as digits and punctuation, is of the script before it, and is kerned with letters of that.
bool hasScript(QChar c)
{
    return c.script() != QChar::Script_Common;
}

bool isSpaced(const QFont &font)
{
    return !qFuzzyIsNull(font.letterSpacing()) || !qFuzzyIsNull(font.wordSpacing());
}

} // namespace

double horizontalScale(const QFont &font)
{
    const bool percentage = font.letterSpacingType() == QFont::PercentageSpacing;
    return std::max(1.0, font.stretch() / 100.0)
           * std::max(1.0, percentage ? std::abs(font.letterSpacing()) / 100 : 0);
}

TextRuler::TextRuler(const QFont &font)
    : m_font(font)
    , m_metrics(font)
{
}

bool TextRuler::canRead(const QFont &font)
{
    return font.capitalization() == QFont::MixedCase;
}

bool TextRuler::canRead(QStringView text)
{
    return std::ranges::all_of(text, isReadable);
}

double TextRuler::tolerance(const QFont &font)
{
    return tolerableEms * font.pixelSize() * horizontalScale(font) + std::abs(font.wordSpacing());
}

std::optional<double> TextRuler::advance(QStringView text, qsizetype from, qsizetype to,
                                         qsizetype stretchLength)
{
    const bool shaped =
        from >= m_begin && from <= m_end && (to <= m_end || (m_endsEarly && from == m_begin));
    if (!shaped) {
        // Longer and longer ones for a long line, so that all of them together cost no more than
        // twice it; and the range has neighbours, or checking the ruler by it would tell nothing.
        shapeStretch(text, from, from + std::max(stretchLength, 2 * (to - from)));
    }
    if (to > m_end || cutsLigature(from) || cutsLigature(to))
        return std::nullopt;
    return advance(from, to);
}

double TextRuler::tolerance(QStringView text, qsizetype from, qsizetype to)
{
    const bool endsAreFree = from < to && hasScript(text.at(from)) && isAsByItself(text, from)
                             && isAsByItself(text, to - 1);
    return tolerance(m_font) * (endsAreFree ? freeEndsShare : 1);
}

void TextRuler::textInserted(qsizetype before, qsizetype size)
{
    m_shift += size;
    m_begin = std::max(m_begin + size, before);
    m_end += size;
}

void TextRuler::shapeStretch(QStringView text, qsizetype from, qsizetype to)
{
    const QStringView wanted = text.sliced(from, std::min(to, text.size()) - from);
    const auto unreadable = std::ranges::find_if_not(wanted, isReadable);
    const QStringView stretch(wanted.begin(), unreadable);

    m_shift = m_begin = from;
    m_end = from + stretch.size();
    m_endsEarly = unreadable != wanted.end();

    m_stretch.emplace(stretch.toString(), m_font);
}

double TextRuler::advance(qsizetype from, qsizetype to)
{
    const auto begin = static_cast<int>(from - m_shift);
    return m_stretch ? m_stretch->width(begin, static_cast<int>(to - from)).toReal() : 0;
}

// Of letters that are joined into one, the first has all the width.
bool TextRuler::cutsLigature(qsizetype position)
{
    return position < m_end && qFuzzyIsNull(advance(position, position + 1));
}

// Not known in a spaced font: there the characters by themselves would be without their spacing.
bool TextRuler::isAsByItself(QStringView text, qsizetype position)
{
    return !isSpaced(m_font)
           && qFuzzyCompare(advance(position, position + 1),
                            m_metrics.horizontalAdvance(text.at(position)));
}

} // namespace ovelin
