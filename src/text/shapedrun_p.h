#ifndef OVELIN_SHAPEDRUN_P_H
#define OVELIN_SHAPEDRUN_P_H

#include <QtCore/qstring.h>

#include <vector>

QT_BEGIN_NAMESPACE
class QFont;
class QFontMetricsF;
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

// Returns how many times as wide as it was drawn a font is set.
double horizontalScale(const QFont &font);

// How far readings may be off in one font, in pixels; the table in shapedrun.cpp gives the reasons.
struct Tolerances
{
    explicit Tolerances(const QFont &font);

    double kernedEnd;
    double freeEnd;
    double joinedEnd;
    double pieceEnd;
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
    ShapedRun(const QString &text, qsizetype begin, const QFont &font,
              const Tolerances &tolerances);

    qsizetype begin() const { return m_begin; }
    qsizetype end() const { return m_begin + m_text.size(); }

    // True if the characters from `from` up to but not including `to` can be read. The functions below take
    // ranges that are not empty and can be read.
    bool covers(qsizetype from, qsizetype to) const;

    Reading read(qsizetype from, qsizetype to) const;

    // The same with less tolerance at an end whose character has the advance that `metrics` gives for it
    // alone: no neighbour kerns it.
    Reading readClosely(qsizetype from, qsizetype to, const QFontMetricsF &metrics) const;

    // Returns the least advance of a longer text that begins with the characters from `from` to the end of
    // the run, if no character behind these has a negative advance.
    double leastAdvanceOfLonger(qsizetype from) const;

    // True if the character has the advance that `metrics` gives for it alone.
    bool hasOwnAdvance(qsizetype position, const QFontMetricsF &metrics) const;

    // True if the readings of all prefixes of the range are exact for each longer text that begins there.
    bool isExact(qsizetype from, qsizetype to, const QFontMetricsF &metrics) const;

    // True if each character of the range stands beside its neighbours.
    bool isSideBySide(qsizetype from, qsizetype to) const;

private:
    struct Position
    {
        double advance = 0;
        double tolerance = 0;
        double endTolerance = 0;
    };

    void appendItem(const QStackTextEngine &engine, int index);
    void appendTab(const QStackTextEngine &engine, int index);
    void appendCharacters(const QStackTextEngine &engine, int index);
    double characterTolerance(qsizetype index) const;
    double piecesTolerance(qsizetype from, qsizetype to) const;
    double foreignSignsTolerance(qsizetype from, qsizetype to) const;
    const Position &at(qsizetype position) const { return m_positions[size_t(position - m_begin)]; }

    QString m_text;
    qsizetype m_begin = 0;
    qsizetype m_firstDirectionControl = 0;
    qsizetype m_firstLetter = 0; // the end of the run if it has none
    std::vector<Position> m_positions;
    const Tolerances *m_tolerances = nullptr;
    double m_letterSpacing = 0;
};

} // namespace ovelin

#endif
