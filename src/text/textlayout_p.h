#ifndef OVELIN_TEXTLAYOUT_P_H
#define OVELIN_TEXTLAYOUT_P_H

#include <QtCore/qstring.h>

QT_BEGIN_NAMESPACE
class QFont;
QT_END_NAMESPACE

namespace ovelin {

struct LineLimits
{
    double width;     // a line exactly as wide does not fit
    int maxLineCount; // 0 and below: no limit
    bool hyphenationEnabled;
};

struct BrokenText
{
    QString text;
    bool elided;
    bool widerThanLimit; // the whole text on one line is; it may be where this is false
};

// Breaks a text into lines: with line separators where Qt would not break it by itself at that
// width, with a hyphen before a separator inside a word, and with an ellipsis at the end when the
// line limit cuts it. The text is well-formed UTF-16.
BrokenText breakIntoLines(const QString &text, const QFont &font, const LineLimits &limits);

} // namespace ovelin

#endif
