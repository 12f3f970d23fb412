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

// Returns the position of the first match at or after a position. The end of the text, which must be
// well-formed, counts as a space.
qsizetype wordEnd(QStringView text, qsizetype from);

// Returns the greatest number of characters of the word that fit on the line with a hyphen. Returns 0 if no
// hyphenation point fits, and -1 if the word has none. The word includes its separator; the last word of a
// text has none.
int hyphenationPoint(QStringView word,
                     qxp::function_ref<bool(qsizetype kept) const> fitsWithHyphen);

} // namespace ovelin

#endif
