#ifndef OVELIN_HYPHENATION_P_H
#define OVELIN_HYPHENATION_P_H

#include <QtCore/qhash.h>
#include <QtCore/qregularexpression.h>
#include <QtCore/qstring.h>

QT_BEGIN_NAMESPACE
class QFontMetricsF;
QT_END_NAMESPACE

namespace ovelin {

// Breaks a line of the displayed text.
constexpr char16_t lineSeparator = u'\u2028';
constexpr char16_t hyphen = u'-';

// The class of each lower-case Russian letter: vowel, consonant, or sign.
extern const QHash<QChar, QChar> hyphenationLetterClasses;

// Matches where a word ends: at a space, at a line separator, or at a hyphen that no digit follows.
extern const QRegularExpression wordBreakPattern;

// Returns how many of the first characters of a word stay on the line when it is broken with a
// hyphen: the most that fit into maxWidth with the line's beginning and the hyphen. 0 when not even
// the first syllable fits, -1 when the word has no place for a hyphen.
//
// The line ends with the word, which begins at wordOffset, and the word ends with its separator.
int hyphenationPoint(const QString &line, const QString &word, int wordOffset, double maxWidth,
                     const QFontMetricsF &metrics);

} // namespace ovelin

#endif
