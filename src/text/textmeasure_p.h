#ifndef OVELIN_TEXTMEASURE_P_H
#define OVELIN_TEXTMEASURE_P_H

#include "textruler_p.h"

#include <QtCore/qxpfunctional.h>
#include <QtGui/qfontmetrics.h>

#include <optional>

namespace ovelin {

// Decides whether ranges of a text fit on a line, and measures few of them.
//
// Most ranges are so much shorter or longer than the line that counting their characters, or
// reading them from a ruler, tells. What is left is measured, and every measurement checks the
// ruler: should it read this font wrong, nothing that was decided by it holds.
class TextMeasure
{
public:
    enum class Method { Ruler, MeasureAll };
    using Fits = qxp::function_ref<bool(double advance) const>;

    TextMeasure(const QFont &font, double lineWidth, int maxLineCount, Method method);

    const QFontMetricsF &metrics() const { return m_metrics; }

    // More characters hardly ever stand on a line.
    qsizetype mostPerLine() const { return m_mostPerLine; }

    // Whether each character takes room, but where it joins others.
    bool advancesGrow() const { return m_characterShrinkage <= 0; }

    // By how much a beginning of that text may be wider than a longer one nevertheless.
    double mostShrinkage(QStringView text) const;

    // Returns what `fits` says of the advance of the characters from `from` up to but not including
    // `to`; it says the same of every advance up to some limit.
    bool decide(const QString &text, qsizetype from, qsizetype to, Fits fits);

    void textInserted(qsizetype before, qsizetype size);

    // Checks the ruler by a range, unless that has been done or it cannot read that one.
    void checkOnce(const QString &text, qsizetype from, qsizetype to);
    bool isRulerWrong() const { return m_rulerIsWrong; }

    // Returns whether a range was found with which the whole text, of that size, is wider than the line;
    // `seen` is its beginning that holds the ranges.
    bool isWiderThanLine(QStringView seen, qsizetype size) const;

private:
    // What was measured last to know of all of its beginnings.
    struct Ahead
    {
        qsizetype from = -1;
        qsizetype to = -1;
        double advance = 0;
        qsizetype mostMore = 0; // characters than asked for, the next time
    };

    // What was measured last to know of all of its ends.
    struct Rest
    {
        qsizetype from;
        qsizetype to;
        qsizetype firstOfScript; // `to`, if no character has one
        bool isRightToLeft;
        double advance;
    };

    bool decideLongLine(const QString &text, qsizetype from, qsizetype to, Fits fits);
    bool isKnownToFit(qsizetype from, qsizetype to, Fits fits) const;
    bool fitsWithMore(const QString &text, qsizetype from, qsizetype to, Fits fits);
    bool isKnownNotToFit(QStringView text, qsizetype from, qsizetype to, Fits fits) const;
    void noteRest(QStringView text, qsizetype from, qsizetype to, double advance);
    std::optional<double> read(const QString &text, qsizetype from, qsizetype to);
    double measure(const QString &text, qsizetype from, qsizetype to);
    double measureToo(const QString &text, qsizetype from, qsizetype to,
                      std::optional<double> reading);

    const QFontMetricsF m_metrics;
    const double m_lineWidth;
    const double m_widestCharacter;
    const qsizetype m_mostInText; // without an overflow
    const double m_characterShrinkage;
    const double m_tolerance; // of the ruler
    const double m_joinedCharacters;
    const qsizetype m_mostPerLine;
    const qsizetype m_stretchLength;

    TextRuler m_ruler;
    const bool m_usesRuler;
    bool m_rulerIsChecked = false;
    bool m_rulerIsWrong = false;
    double m_widestRange = 0;
    Ahead m_ahead;
    std::optional<Rest> m_rest;
};

} // namespace ovelin

#endif
