#include "textruler_p.h"

#include <QGlyphRun>
#include <QTextLayout>

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
    return std::any_of(std::begin(readableCharacters), std::end(readableCharacters),
                       [c](CharacterRange range) { return c >= range.first && c <= range.last; });
}

// Where each character begins, and the last one ends.
using Positions = std::vector<double>;

// All at once. A character without a glyph is part of a ligature with the one before it. Nothing
// where Qt does not say which glyph is whose, as Qt 6.8 does not where several fonts make up a
// line.
std::optional<Positions> positionsOfGlyphs(const QTextLine &line)
{
    constexpr double noGlyph = -1;
    Positions positions(static_cast<size_t>(line.textLength()) + 1, noGlyph);
    positions.back() = line.cursorToX(line.textLength());

    qsizetype previous = -1;
    for (const QGlyphRun &run : line.glyphRuns(
             -1, -1, QTextLayout::RetrieveGlyphPositions | QTextLayout::RetrieveStringIndexes)) {
        const QList<qsizetype> characters = run.stringIndexes();
        const QList<QPointF> glyphs = run.positions();
        for (qsizetype i = 0; i < characters.size(); ++i) {
            if (characters.at(i) <= previous)
                return std::nullopt;
            previous = characters.at(i);
            positions[static_cast<size_t>(previous)] = glyphs.at(i).x();
        }
    }

    size_t known = 0;
    for (size_t i = 1; i < positions.size(); ++i) {
        if (positions[i] == noGlyph)
            continue;
        const double step = (positions[i] - positions[known]) / double(i - known);
        while (++known < i)
            positions[known] = positions[known - 1] + step;
    }
    return positions;
}

// One by one, which takes several times as long.
Positions positionsOfCursors(const QTextLine &line)
{
    Positions positions;
    for (int character = 0; character <= line.textLength(); ++character)
        positions.push_back(line.cursorToX(character));
    return positions;
}

} // namespace

TextRuler::TextRuler(const QFont &font)
    : m_font(font)
{
}

double TextRuler::tolerance() const
{
    return 0.5 * m_font.pixelSize() + std::abs(m_font.wordSpacing());
}

std::optional<double> TextRuler::advance(QStringView text, qsizetype from, qsizetype to,
                                         qsizetype stretchLength)
{
    const bool shaped =
        from >= m_begin && from <= m_end && (to <= m_end || (m_endsEarly && from == m_begin));
    if (!shaped)
        shapeStretch(
            text, from,
            from + std::max(stretchLength, to - from > stretchLength ? 2 * (to - from) : 0));
    if (to > m_end)
        return std::nullopt;
    return x(to) - x(from);
}

double TextRuler::x(qsizetype position) const
{
    return m_positions[static_cast<size_t>(position - m_shift)];
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
    const auto unreadable = std::find_if_not(wanted.begin(), wanted.end(), isReadable);
    const QStringView stretch(wanted.begin(), unreadable);

    m_shift = m_begin = from;
    m_end = from + stretch.size();
    m_endsEarly = unreadable != wanted.end();

    QTextLayout layout(stretch.toString(), m_font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setNumColumns(static_cast<int>(stretch.size()));
    auto positions = positionsOfGlyphs(line);
    m_positions = positions ? std::move(*positions) : positionsOfCursors(line);
    layout.endLayout();
}

} // namespace ovelin
