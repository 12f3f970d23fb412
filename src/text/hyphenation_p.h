#ifndef OVELIN_HYPHENATION_P_H
#define OVELIN_HYPHENATION_P_H

#include <QtCore/qhash.h>
#include <QtCore/qregularexpression.h>
#include <QtCore/qstring.h>

#include <functional>

namespace ovelin {

// Breaks a line of the displayed text.
constexpr char16_t lineSeparator = u'\u2028';
constexpr char16_t hyphen = u'-';

// The class of each lower-case Russian letter: vowel, consonant, or sign.
extern const QHash<QChar, QChar> hyphenationLetterClasses;

// Matches where a word ends: at a space, at a line separator, or at a hyphen that no digit follows.
extern const QRegularExpression wordBreakPattern;

// Returns where that pattern matches first at or after a position of a well-formed text, or -1.
qsizetype wordBreak(QStringView text, qsizetype from);

// How far behind a place stands the last character on which it depends whether a hyphen may be there:
// each rule is applied twice, and sees that many letters more each time.
constexpr qsizetype hyphenationReach = qsizetype{11} * 2 * 5;

// Returns how many of the first characters of a word stay on the line when it is broken with a
// hyphen: the most that fit. 0 when not even the first syllable fits, -1 when the word has no place
// for a hyphen. The word ends with its separator.
int hyphenationPoint(const QString &word,
                     const std::function<bool(qsizetype kept)> &fitsWithHyphen);

} // namespace ovelin

#endif
