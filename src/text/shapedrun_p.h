#ifndef OVELIN_SHAPEDRUN_P_H
#define OVELIN_SHAPEDRUN_P_H

#include <QtCore/qstring.h>
#include <QtGui/qfont.h>
#include <QtGui/qfontmetrics.h>

#include <vector>

QT_BEGIN_NAMESPACE
class QStackTextEngine;
QT_END_NAMESPACE

namespace ovelin {

// The advance of a range, read from a shaped run, in pixels. If the range is shaped by itself, its advance
// differs by at most the tolerance.
struct Reading
{
    double advance;
    double tolerance;
};

// Qt shapes a text in pieces of this many characters, and characters of two pieces do not join. If a text is
// longer, the place where it begins decides where its pieces end. So in a longer run only the ranges that
// begin at the first character of the run can be read.
constexpr qsizetype longestPiece = 4096;

// In pixels. Each advance of Qt is a multiple of this unit.
constexpr double qtUnit = 1.0 / 64;

// In pixels, Qt's default. A tab extends to the next multiple of this distance, counted from the beginning of
// the range.
constexpr double tabStopDistance = 80;

// The font of a run. All distances are in pixels.
struct RunFont
{
    explicit RunFont(const QFont &source);

    const QFont font;
    const QFontMetricsF metrics;
    const double em; // pixel size x stretch, and x letter spacing if this is over 100 %
    const double letterSpacing;
    const double wordSpacing;

    // The tolerances. The table in shapedrun.cpp gives their reasons.
    double kernedEnd;
    double freeEnd;
    double joinedEnd;
    double directionChange;
    double mirroredSign;
    double regionalIndicator;
    double foreignSign;
};

// A part of a text, shaped once. The advance of each range of this part is read from the run.
//
// For each position the run keeps two sums: of the advances before the position, and of the tolerances of the
// characters before the position. A character has a tolerance if its advance can differ in another range.
// Each end of a range also adds a tolerance, because the range has neighbours within the run, and none by
// itself. The ends of the run add none.
class ShapedRun
{
public:
    ShapedRun() = default;
    // `rest` is the text after the run. In `text` and in `rest`, a low surrogate follows each high one.
    ShapedRun(const QString &text, qsizetype begin, const RunFont &font, QStringView rest = {});

    qsizetype begin() const { return m_begin; }
    qsizetype end() const { return m_begin + m_text.size(); }

    // True if the characters from `from` up to but not including `to` can be read. The functions below take
    // ranges that are not empty and can be read.
    bool covers(qsizetype from, qsizetype to) const
    {
        return from >= m_begin && from <= m_lastBegin && to <= end();
    }

    double advance(qsizetype from, qsizetype to) const
    {
        return inPixels(at(to).advance - at(from).advance);
    }
    Reading read(qsizetype from, qsizetype to) const;

    // Like read(), but with less tolerance at an end whose character is not kerned. This takes longer, because
    // each character at an end is measured by itself.
    Reading readClosely(qsizetype from, qsizetype to) const;

    // Returns a lower bound for the advance of every text that begins with the characters from `from` to the
    // end of the run. The characters after the run must have advances of 0 or more.
    double leastAdvanceOfLonger(qsizetype from) const;

    // True if nothing before the position kerns or joins the character after the position. In a range that
    // begins there, this character has the advance that is read.
    bool beginsFreely(qsizetype position) const;

    // True if each prefix of the range has exactly the advance that is read, by itself and in each text that
    // begins with the range. Kerning at the end of the prefix is left out. beginsFreely(from) must be true.
    bool isExact(qsizetype from, qsizetype to) const;

    // True if a character of the run moves the next one back.
    bool hasNegativeAdvance() const { return m_hasNegativeAdvance; }

    // True if no character of the range joins, stacks or shares a glyph with another character.
    bool hasSeparateGlyphs(qsizetype from, qsizetype to) const;

private:
    struct Position
    {
        // The sums before the position. The advance is in multiples of qtUnit and wraps at 32 bits, as in Qt.
        quint32 advance = 0;
        int script = 0; // in which Qt shaped the character after the position; 0 before a tab
        double tolerance = 0;
        double endTolerance =
            0; // of a range that begins or ends here; also tells the kind of this end
    };

    static double inPixels(quint32 advance) { return static_cast<qint32>(advance) * qtUnit; }

    // Adds the advances and tolerances of an item of Qt's engine to the sums.
    void addItem(const QStackTextEngine &engine, int index);
    void addTab(const QStackTextEngine &engine, int index, Position *begin);
    void addCharacters(const QStackTextEngine &engine, int index, Position *begin);

    double characterTolerance(qsizetype index) const;
    double foreignSignsTolerance(qsizetype from, qsizetype to) const;
    bool hasOwnAdvance(qsizetype position) const;
    qsizetype firstLetter(qsizetype from, qsizetype to) const;
    bool hasLetter(qsizetype from, qsizetype to) const { return firstLetter(from, to) < to; }
    const Position &at(qsizetype position) const { return m_positions[size_t(position - m_begin)]; }

    QString m_text;
    qsizetype m_begin = 0;
    qsizetype m_lastBegin = -1;    // the last position at which a range that can be read begins
    qsizetype m_firstLetter = 0;   // the end of the run if it has none
    bool m_mayScriptFollow = true; // false: no character after the run has a script of its own
    bool m_hasNegativeAdvance = false;
    std::vector<Position> m_positions;
    const RunFont *m_font = nullptr;
};

} // namespace ovelin

#endif
