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

// An advance that was read from a shaped run, in pixels. The same characters, shaped by themselves, are
// wider or narrower by the tolerance at most.
struct Reading
{
    double advance;
    double tolerance;
};

// Qt shapes a text in pieces of this many characters, and characters of two pieces do not join. Where a
// longer run has the end of a piece, a range has none: it can be read from the begin of the run only.
constexpr qsizetype longestPiece = 4096;

// Returns how many times as wide as it was drawn a font is set.
double horizontalScale(const QFont &font);

// A font, and how far readings in it may be off, in pixels; the table in shapedrun.cpp gives the reasons.
struct ReadFont
{
    explicit ReadFont(const QFont &source);

    const QFont font;
    const QFontMetricsF metrics;
    const double letterSpacing; // in pixels

    double kernedEnd;
    double freeEnd;
    double joinedEnd;
    double directionChange;
    double mirroredSign;
    double regionalIndicator;
    double foreignSign;
};

// One shaping of a part of a text. The advance of each range of that part is read from it.
//
// The run keeps two sums for each position: of the advances before it, and of the tolerances of the
// characters before it that may differ from range to range. The ends of a range add their own tolerances,
// because they have other neighbours within the run. The ends of the run add none.
class ShapedRun
{
public:
    ShapedRun() = default;
    ShapedRun(const QString &text, qsizetype begin, const ReadFont &font);

    qsizetype begin() const { return m_begin; }
    qsizetype end() const { return m_begin + m_text.size(); }

    // True if the characters from `from` up to but not including `to` can be read. The functions below take
    // ranges that are not empty and can be read.
    bool covers(qsizetype from, qsizetype to) const
    {
        return from >= m_begin && from <= m_lastBegin && to <= end();
    }

    Reading read(qsizetype from, qsizetype to) const;

    // The same with less tolerance at an end whose character is not kerned. It takes more time.
    Reading readClosely(qsizetype from, qsizetype to) const;

    // Returns the least advance of a longer text that begins with the characters from `from` to the end of
    // the run, if no character behind these has a negative advance.
    double leastAdvanceOfLonger(qsizetype from) const;

    // True if a range that begins there has no other advances than those read: nothing kerns or joins its
    // first character.
    bool beginsFreely(qsizetype position) const;

    // True if the prefixes of the range have the advances that are read in each longer text that begins at
    // `from`, provided that it begins freely.
    bool isExact(qsizetype from, qsizetype to) const;

    // True if each character of the range stands beside its neighbours.
    bool isSideBySide(qsizetype from, qsizetype to) const;

private:
    struct Position
    {
        double advance = 0;
        double tolerance = 0;
        double endTolerance = 0; // of a range that begins or ends here
        int script = 0;          // of the character behind the position, as it was shaped
    };

    void appendItem(const QStackTextEngine &engine, int index);
    void appendTab(const QStackTextEngine &engine, int index);
    void appendCharacters(const QStackTextEngine &engine, int index);
    double characterTolerance(qsizetype index) const;
    double foreignSignsTolerance(qsizetype from, qsizetype to) const;
    bool hasOwnAdvance(qsizetype position) const;
    qsizetype firstLetter(qsizetype from, qsizetype to) const;
    bool hasLetter(qsizetype from, qsizetype to) const { return firstLetter(from, to) < to; }
    const Position &at(qsizetype position) const { return m_positions[size_t(position - m_begin)]; }

    QString m_text;
    qsizetype m_begin = 0;
    qsizetype m_lastBegin = -1;  // the last position at which a range may begin
    qsizetype m_firstLetter = 0; // the end of the run if it has none
    std::vector<Position> m_positions;
    const ReadFont *m_font = nullptr;
};

} // namespace ovelin

#endif
