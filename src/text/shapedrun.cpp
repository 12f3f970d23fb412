#include "shapedrun_p.h"

#include <private/qtextengine_p.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ovelin {

namespace {

// The table of tolerances, in ems unless a comment says otherwise. Each tolerance was found with fonts of the
// scripts that it is for. If a tolerance is too small, lines break in the wrong place. If it is too large, more
// ranges are measured.

// A range ends between two characters that stand side by side. The pair is kerned in the run, but not in the
// range by itself. Fonts kern a pair by up to half an em.
constexpr double kernedEndInEms = 0.5;
// A range ends as in kernedEndInEms, and the character inside the range has the advance that the font gives this
// character alone. The pair is not kerned then, and rules for characters that are farther apart change little.
constexpr double freeEndInEms = 0.05;
// A range ends between characters that join, stack or are one glyph, such as Arabic letters, marks and ligatures.
constexpr double joinedEndInEms = 4;
// QFont::Capitalize depends on where a word begins. In a font with any capitalization, this tolerance is added to
// kernedEndInEms and to freeEndInEms.
constexpr double capitalizedEndInEms = 1;
// Where the direction changes, neutral characters can take either direction, and no pair is kerned.
constexpr double directionChangeInEms = 1;
// A letter outside the range can mirror a sign from U+2200 on, and the mirrored sign can have another width.
// Brackets before U+2200 are as wide as their counterparts.
constexpr double mirroredSignInEms = 2;
constexpr char16_t firstMirroredSign = u'\u2200';
// Two regional indicators are one flag. Which two form a pair depends on where the range begins.
constexpr double regionalIndicatorInEms = 2;
constexpr char32_t firstRegionalIndicator = 0x1f1e6;
constexpr char32_t lastRegionalIndicator = 0x1f1ff;
// A sign has no script of its own: a digit, a space, a dash. Signs and marks at the beginning of a range are shaped
// by the rules of the first script in the range. Within the run, a letter before them can decide on another script.
constexpr double foreignSignInEms = 2;
// In multiples of qtUnit: a million pixels. A greater advance can come from a font that gives two neighbours huge
// advances of opposite sign. Their sum is right because it wraps at 32 bits, as Qt's sums do; one of them alone
// means nothing. So a range that begins or ends directly after a greater advance is measured.
constexpr qint32 greatestGlyphAdvance = 1 << 26;

double scaledEm(const QFont &font)
{
    const double stretch = font.stretch() == QFont::AnyStretch ? 1 : font.stretch() / 100.0;
    const bool percentage = font.letterSpacingType() == QFont::PercentageSpacing;
    return font.pixelSize() * stretch
           * std::max(1.0, percentage ? std::abs(font.letterSpacing()) / 100 : 0);
}

double absoluteLetterSpacing(const QFont &font)
{
    return font.letterSpacingType() == QFont::AbsoluteSpacing ? font.letterSpacing() : 0;
}

// The scripts whose characters stand side by side, except marks, which are in one cluster with a letter.
constexpr QChar::Script sideBySideScripts[] = {
    QChar::Script_Unknown,  QChar::Script_Inherited, QChar::Script_Common,   QChar::Script_Latin,
    QChar::Script_Greek,    QChar::Script_Cyrillic,  QChar::Script_Armenian, QChar::Script_Hebrew,
    QChar::Script_Georgian, QChar::Script_Hangul,    QChar::Script_Hiragana, QChar::Script_Katakana,
    QChar::Script_Bopomofo, QChar::Script_Han,
};

bool standsSideBySide(QChar::Script script)
{
    return std::ranges::find(sideBySideScripts, script) != std::end(sideBySideScripts);
}

// True if the character begins or ends an embedding, an override or an isolate.
bool isDirectionControl(QChar c)
{
    return (c >= u'\u202a' && c <= u'\u202e') || (c >= u'\u2066' && c <= u'\u2069');
}

char32_t characterAt(QStringView text, qsizetype index)
{
    const QChar c = text.at(index);
    return c.isHighSurrogate() ? QChar::surrogateToUcs4(c, text.at(index + 1)) : c.unicode();
}

// True if the character has a script of its own and is no mark. Qt gives a character without its own script the
// script of the previous letter or, before the first letter of a text, the script of that letter.
bool isLetter(char32_t c)
{
    return QChar::script(c) > QChar::Script_Common && !QChar::isMark(c);
}

// True if a character of the text has a script of its own: a letter, or a mark of one script.
bool hasScript(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (QChar::script(characterAt(text, i)) > QChar::Script_Common)
            return true;
    }
    return false;
}

} // namespace

RunFont::RunFont(const QFont &source)
    : font(source)
    , metrics(source)
    , em(scaledEm(source))
    , letterSpacing(absoluteLetterSpacing(source))
    , wordSpacing(source.wordSpacing())
{
    const double spaces = std::abs(wordSpacing); // Qt adds it only to the last of several spaces
    const double character = em + std::abs(letterSpacing) + spaces;
    const double capitals =
        font.capitalization() == QFont::MixedCase ? 0 : capitalizedEndInEms * em;
    kernedEnd = kernedEndInEms * em + spaces + capitals;
    freeEnd = freeEndInEms * em + spaces + capitals;
    joinedEnd = joinedEndInEms * character;
    directionChange = directionChangeInEms * character;
    mirroredSign = mirroredSignInEms * character;
    regionalIndicator = regionalIndicatorInEms * character;
    foreignSign = foreignSignInEms * character;
}

ShapedRun::ShapedRun(const QString &text, qsizetype begin, const RunFont &font, QStringView rest)
    : m_text(text)
    , m_begin(begin)
    , m_lastBegin(begin)
    , m_firstLetter(begin)
    , m_positions(size_t(text.size()) + 1)
    , m_font(&font)
{
    // A range that begins after a direction control lacks this control, and so can have another direction.
    if (text.size() <= longestPiece) {
        while (m_lastBegin < end() && !isDirectionControl(text.at(m_lastBegin - begin)))
            ++m_lastBegin;
    }

    const QStackTextEngine engine(text, font.font);
    engine.itemize();
    for (int item = 0; item < engine.layoutData->items.size(); ++item)
        addItem(engine, item);
    m_positions.back().endTolerance = 0;
    m_firstLetter = firstLetter(begin, end());
    m_mayScriptFollow = m_firstLetter < end() || hasScript(rest);
}

Reading ShapedRun::read(qsizetype from, qsizetype to) const
{
    const Position &first = at(from);
    const Position &last = at(to);
    return {.advance = advance(from, to),
            .tolerance = first.endTolerance + last.endTolerance + last.tolerance - first.tolerance
                         + foreignSignsTolerance(from, to)};
}

Reading ShapedRun::readClosely(qsizetype from, qsizetype to) const
{
    Reading reading = read(from, to);
    const auto relax = [&](qsizetype end, qsizetype character) {
        if (at(end).endTolerance == m_font->kernedEnd && hasOwnAdvance(character))
            reading.tolerance -= m_font->kernedEnd - m_font->freeEnd;
    };
    relax(from, from);
    relax(to, to - 1);
    return reading;
}

double ShapedRun::leastAdvanceOfLonger(qsizetype from) const
{
    Reading reading = read(from, end());
    // The range has no letter: a character after the run may give all signs of the range another script.
    if (m_mayScriptFollow && !hasLetter(from, end()))
        reading.tolerance += double(end() - from) * m_font->foreignSign;
    return reading.advance - reading.tolerance - m_font->joinedEnd;
}

bool ShapedRun::beginsFreely(qsizetype position) const
{
    const double tolerance = at(position).endTolerance;
    return tolerance == 0 || (tolerance == m_font->kernedEnd && hasOwnAdvance(position));
}

bool ShapedRun::hasOwnAdvance(qsizetype position) const
{
    const QChar c = m_text.at(position - m_begin);
    // A mark alone may get a dotted circle to stand on, and not each space has word spacing.
    if (c.isMark() || (m_font->wordSpacing != 0 && c.isSpace()))
        return false;
    const double alone = m_font->metrics.horizontalAdvance(c) + m_font->letterSpacing;
    return std::abs(advance(position, position + 1) - alone) <= qtUnit;
}

bool ShapedRun::isExact(qsizetype from, qsizetype to) const
{
    return at(to).tolerance == at(from).tolerance && hasLetter(from, to)
           && foreignSignsTolerance(from, to) == 0;
}

bool ShapedRun::hasSeparateGlyphs(qsizetype from, qsizetype to) const
{
    const auto first = m_positions.begin() + (from - m_begin);
    return std::all_of(first, first + (to - from) + 1, [this](const Position &position) {
        return position.endTolerance <= m_font->kernedEnd;
    });
}

void ShapedRun::addItem(const QStackTextEngine &engine, int index)
{
    const QScriptItem &item = engine.layoutData->items.at(index);
    Position *begin = &m_positions[size_t(item.position)];
    if (index > 0) {
        const QScriptItem &before = engine.layoutData->items.at(index - 1);
        if (before.analysis.bidiLevel != item.analysis.bidiLevel)
            begin->tolerance += m_font->directionChange;
    }
    if (item.analysis.flags == QScriptAnalysis::Tab)
        addTab(engine, index, begin);
    else
        addCharacters(engine, index, begin);
}

void ShapedRun::addTab(const QStackTextEngine &engine, int index, Position *begin)
{
    const auto left = QFixed::fromFixed(static_cast<int>(begin->advance));
    const QFixed tab = engine.calculateTabWidth(index, left);
    begin[1] = {.advance = begin->advance + static_cast<quint32>(tab.value()),
                .tolerance = begin->tolerance + tabStopDistance,
                .endTolerance = m_font->kernedEnd};
}

void ShapedRun::addCharacters(const QStackTextEngine &engine, int index, Position *begin)
{
    engine.shape(index);
    const QScriptItem &item = engine.layoutData->items.at(index);
    const QGlyphLayout glyphs = engine.shapedGlyphs(&item);
    const unsigned short *clusters = engine.logClusters(&item);
    const int length = engine.length(&item);
    const bool joins = !standsSideBySide(QChar::Script(item.analysis.script));
    const auto isSpace = [this](qsizetype at) { return m_text.at(at).isSpace(); };

    for (int i = 0; i < length; ++i) {
        quint32 advance = 0;
        const bool isLast = i + 1 == length;
        const int nextGlyph = isLast ? glyphs.numGlyphs : clusters[i + 1];
        for (int glyph = clusters[i]; glyph < nextGlyph; ++glyph)
            advance += static_cast<quint32>(glyphs.effectiveAdvance(glyph).value());
        const auto signedAdvance = static_cast<qint32>(advance);
        m_hasNegativeAdvance |= signedAdvance < 0;

        const qsizetype character = item.position + i;
        const bool isJoined = !isLast
                              && (clusters[i + 1] == clusters[i]
                                  || (joins && !isSpace(character) && !isSpace(character + 1)));
        begin[i].script = item.analysis.script;
        begin[i + 1] = {.advance = begin[i].advance + advance,
                        .tolerance = begin[i].tolerance + characterTolerance(character),
                        .endTolerance = isJoined ? m_font->joinedEnd : m_font->kernedEnd};
        if (signedAdvance < -greatestGlyphAdvance || signedAdvance > greatestGlyphAdvance)
            begin[i + 1].endTolerance = std::numeric_limits<double>::infinity();
    }
}

double ShapedRun::characterTolerance(qsizetype index) const
{
    const QChar c = m_text.at(index);
    if (c < firstMirroredSign)
        return 0;
    if (c.hasMirrored())
        return m_font->mirroredSign;
    const char32_t character = characterAt(m_text, index);
    const bool isRegionalIndicator =
        character >= firstRegionalIndicator && character <= lastRegionalIndicator;
    return isRegionalIndicator ? m_font->regionalIndicator : 0;
}

double ShapedRun::foreignSignsTolerance(qsizetype from, qsizetype to) const
{
    const qsizetype signs = firstLetter(from, to) - from;
    int ownScript = QChar::Script_Common;
    for (qsizetype i = from; i < to && ownScript <= QChar::Script_Common; ++i)
        ownScript = QChar::script(characterAt(m_text, i - m_begin));
    return at(from).script == ownScript ? 0 : double(signs) * m_font->foreignSign;
}

// Returns the position of the first letter in the range, or `to` if it has none.
qsizetype ShapedRun::firstLetter(qsizetype from, qsizetype to) const
{
    qsizetype position = std::max(from, m_firstLetter);
    while (position < to && !isLetter(characterAt(m_text, position - m_begin)))
        ++position;
    return std::min(position, to);
}

} // namespace ovelin
