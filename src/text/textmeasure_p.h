#ifndef OVELIN_TEXTMEASURE_P_H
#define OVELIN_TEXTMEASURE_P_H

#include "shapedrun_p.h"

#include <QtCore/qxpfunctional.h>

#include <optional>

namespace ovelin {

// The source text of a layout, in well-formed UTF-16, and one more space after it. This space ends the last
// word. size() counts it. It is shown only if an elided text is cut after it.
class SourceText
{
public:
    explicit SourceText(const QString &text)
        : m_text(text)
    {
    }

    const QString &withoutLastSpace() const { return m_text; }
    qsizetype size() const { return m_text.size() + 1; }
    QChar at(qsizetype position) const;
    QString range(qsizetype from, qsizetype to) const;

    // True if the position lies between the two halves of a surrogate pair.
    bool isInsidePair(qsizetype position) const;

private:
    const QString m_text;
};

// Decides whether ranges of a text fit on a line.
//
// The rule: a part of the text is shaped once, and the advance of a range is read from this run. If all
// advances within the tolerance of the reading give the same answer, this is the answer. Otherwise the range
// is measured by itself.
//
// If a range that was read is measured, the measurement is compared with the reading. If they differ by more
// than the tolerance, readings in this font are wrong: the caller lays the text out anew by measuring alone.
class TextMeasure
{
public:
    enum class Method { ReadRuns, MeasureAll };
    using Fits = qxp::function_ref<bool(double advance) const>;

    TextMeasure(const SourceText &text, const QFont &font, double lineWidth, int maxLineCount,
                Method method);

    const QFontMetricsF &metrics() const { return m_font.metrics; }

    // Returns what `fits` says of the advance of the characters from `from` up to but not including `to`.
    // `fits` must say true for all advances up to some limit, and false for all greater ones.
    bool decide(qsizetype from, qsizetype to, Fits fits);

    // What QFontMetricsF::elidedText() shows of a line. For that function, a text that is as wide as the line fits.
    struct ElidedLine
    {
        qsizetype size; // in characters, with the ellipsis; 0 if not even the ellipsis fits
        bool isTooWide; // true if the text shown is wider than the line
    };
    ElidedLine elide(qsizetype from, qsizetype to);

    // Returns true if a comparison of a reading with a measurement showed a difference beyond the tolerance. If
    // decide() has compared no range that ends with a letter before a space, this function first compares one
    // character before a space, a letter if possible.
    bool findsWrongReading();

    // Returns the advance of the whole text. If the text is wider than the line, the result can be a smaller
    // advance that is still wider than the line. Returns nothing if no shaped run told any such advance.
    std::optional<double> wholeAdvance() const { return m_wholeAdvance; }

private:
    bool shape(qsizetype from, qsizetype size);
    qsizetype nextRunSize(qsizetype from, qsizetype to) const;
    void noteWholeAdvance();
    double measure(qsizetype from, qsizetype to) const;
    double measureAndCompare(qsizetype from, qsizetype to, const Reading &reading);
    void compareAtSpace();
    std::optional<ElidedLine> elideByReading(qsizetype from, qsizetype to);

    const SourceText &m_text;
    const RunFont m_font;
    const double m_lineWidth;
    const bool m_readsRuns;
    const qsizetype m_usualRunSize; // in characters

    bool m_charactersTakeRoom; // false: a negative advance is possible or was seen
    ShapedRun m_run;
    std::optional<double> m_wholeAdvance;
    bool m_isComparedAtSpace = false;
    bool m_isReadWrong = false;
};

} // namespace ovelin

#endif
