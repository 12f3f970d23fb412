#ifndef OVELIN_TEXTRULER_P_H
#define OVELIN_TEXTRULER_P_H

#include <QtGui/qfontmetrics.h>

#include <private/qtextengine_p.h>

#include <optional>

namespace ovelin {

// How many times as wide as it was drawn a font is set, its letters and their kerning.
double horizontalScale(const QFont &font);

// Reads the advances of many ranges of a text from one shaping of a longer stretch of it.
//
// A range in its stretch can be shaped a little otherwise than by itself: the characters at its two
// ends have neighbours. Only stretches of scripts whose characters stand side by side from left to
// right are shaped, where that means some kerning at the most, and word spacing, which Qt adds
// behind the last of several spaces; a range that would cut a ligature is not read.
class TextRuler
{
public:
    explicit TextRuler(const QFont &font);

    // Not fonts that change letters by their case or place.
    static bool canRead(const QFont &font);

    // Only characters that stand side by side from left to right, each in a place of its own.
    static bool canRead(QStringView text);

    // How far any advance that is read may lie from that of the range by itself.
    static double tolerance(const QFont &font);

    // Returns the advance of the characters from `from` up to but not including `to`; nothing where
    // the ruler cannot read these. A stretch of that many characters is shaped if the last one does
    // not hold the range.
    std::optional<double> advance(QStringView text, qsizetype from, qsizetype to,
                                  qsizetype stretchLength);

    // How far the advance of that range may lie from what was read, which is less where no neighbour
    // has acted on its ends. It must have been the last one read.
    double tolerance(QStringView text, qsizetype from, qsizetype to);

    // The text was changed in front of a position, which has moved by that many characters.
    void textInserted(qsizetype before, qsizetype size);

private:
    void shapeStretch(QStringView text, qsizetype from, qsizetype to);
    double advance(qsizetype from, qsizetype to);
    bool cutsLigature(qsizetype position);
    bool isAsByItself(QStringView text, qsizetype position);

    const QFont m_font;
    const QFontMetricsF m_metrics;
    std::optional<QStackTextEngine> m_stretch;
    qsizetype m_shift = 0;    // where it began, moved as its end was by changes of the text
    qsizetype m_begin = 0;    // where it still agrees with the text, from
    qsizetype m_end = -1;     // and up to; before the first stretch, nowhere
    bool m_endsEarly = false; // before a character that the ruler cannot read
};

} // namespace ovelin

#endif
