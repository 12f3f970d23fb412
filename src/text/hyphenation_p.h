#ifndef OVELIN_HYPHENATION_P_H
#define OVELIN_HYPHENATION_P_H

#include <QtCore/qhash.h>
#include <QtCore/qregularexpression.h>
#include <QtCore/qstring.h>
#include <QtCore/qxpfunctional.h>

namespace ovelin {

// The characters that the text module names.
constexpr char16_t newline = u'\n';
constexpr char16_t lineSeparator = u'\u2028';
constexpr char16_t hyphen = u'-';
constexpr char16_t ellipsis = u'\u2026';

// The class of each lower-case Russian letter: vowel, consonant, or sign.
extern const QHash<QChar, QChar> hyphenationLetterClasses;

// Matches where a word ends: at a space, at a line separator, or at a hyphen that no digit follows.
extern const QRegularExpression wordBreakPattern;

// Returns the position of the first match at or after a position in a well-formed text with a space behind
// it. That space ends the last word.
qsizetype wordEnd(QStringView text, qsizetype from);

// Returns how many of the first characters of a word stay on the line if the word is broken with a hyphen:
// the most that fit. Returns 0 if the word has hyphenation points and none fits, and -1 if it has none.
// The word ends with its separator.
int hyphenationPoint(QStringView word,
                     qxp::function_ref<bool(qsizetype kept) const> fitsWithHyphen);

} // namespace ovelin

#endif
