#ifndef OVELIN_HYPHENATION_P_H
#define OVELIN_HYPHENATION_P_H

#include <QtCore/qhash.h>
#include <QtCore/qregularexpression.h>
#include <QtCore/qstring.h>
#include <QtCore/qxpfunctional.h>

namespace ovelin {

constexpr char16_t newline = u'\n';
constexpr char16_t lineSeparator = u'\u2028';
constexpr char16_t hyphen = u'-';
constexpr char16_t ellipsis = u'\u2026';

// The class of each lower-case Russian letter: g for a vowel, s for a consonant, x for the rest.
extern const QHash<QChar, QChar> hyphenationLetterClasses;

// Matches where a word ends: at a space, at a line separator, or at a hyphen that no digit follows.
extern const QRegularExpression wordBreakPattern;

// Returns the position at or after `from` where a word ends: the first match of the pattern. The end of the
// text counts as a space. The text must be well-formed UTF-16.
qsizetype wordEnd(QStringView text, qsizetype from);

// Returns the number of characters before the last hyphenation point that fits on the line with a hyphen.
// Returns 0 if no hyphenation point fits, and -1 if the word has no hyphenation point. The word includes its
// separator; the last word of a text has no separator.
int hyphenationPoint(QStringView word,
                     qxp::function_ref<bool(qsizetype kept) const> fitsWithHyphen);

} // namespace ovelin

#endif
