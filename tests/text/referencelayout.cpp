#include "referencelayout.h"

#include "hyphenationpoints.h"
#include "textsupport.h"

#include <QFontMetricsF>
#include <QRegularExpression>
#include <QStaticText>
#include <QTextOption>

#include <algorithm>
#include <array>
#include <set>

namespace ovelin::tests {

namespace {

constexpr int fewestMoved = 5;       // characters of a split word that go to the next line
constexpr int shortestSplitWord = 9; // characters of a word that would fit on a line of its own
// Under a line limit one hyphen moves at most this often, or once for each character of the text if that is more.
constexpr int fewestHyphenMoves = 1024;

enum class Next { Accept, HardBreakCheck, NextMatch, Elide, Split, Wrap };

// The characters from `from` up to but not including `to`.
QString range(const QString &text, qsizetype from, qsizetype to)
{
    return to <= from ? QString() : text.mid(from, to - from);
}

bool isRemovedBeforeEllipsis(QChar c)
{
    const char16_t code = c.unicode();
    const bool whiteSpace =
        code == u' ' || (code >= 9 && code <= 13) || code == 0x85 || code == 0xa0 || c.isSpace();
    return whiteSpace || c.isPunct();
}

bool isInsidePair(const QString &text, qsizetype position)
{
    return position >= 1 && position < text.size() && text.at(position - 1).isHighSurrogate()
           && text.at(position).isLowSurrogate();
}

} // namespace

ReferenceLayout referenceLayout(const ReferenceInput &input, int candidateBudget)
{
    ReferenceLayout result;

    QString text = input.text;
    if (input.maxLineCount >= 2)
        text.replace(u'\n', lineSeparator);

    const QFontMetricsF metrics(input.font);
    const int wholeWidth = fineWidth(text, input.font);
    result.wholeWidth = wholeWidth;
    const int limit = input.textWidth >= 1 ? input.textWidth : input.maxTextWidth;
    const int effectiveWidth = limit >= 1 ? std::min(limit, wholeWidth) : wholeWidth;

    const auto finish = [&](const QString &finalText, double staticTextWidth) {
        QStaticText staticText;
        staticText.setTextFormat(input.format);
        staticText.setTextOption(QTextOption(input.alignment));
        staticText.setTextWidth(staticTextWidth);
        staticText.setText(finalText);
        staticText.prepare(QTransform(), input.font);
        result.ended = true;
        result.size = staticText.size();
        result.displayText = QString(finalText).replace(lineSeparator, u'\n');
    };

    if (limit < 1) {
        finish(text, effectiveWidth);
        return result;
    }
    if (input.format == Qt::RichText) {
        finish(text, limit);
        return result;
    }

    const double W = limit;
    const double hyphenAdvance = metrics.horizontalAdvance(u'-');
    const qint64 maxLineCount = input.maxLineCount;
    const bool limited = maxLineCount >= 1;
    const qsizetype mostMoves = limited ? std::max<qsizetype>(fewestHyphenMoves, text.size()) : 1;
    const QRegularExpression pattern(QStringLiteral("( |\u2028|-[^\\d])"));

    QString workText = withWholeCharacters(text) + u' ';
    qint64 lineCount = 0;
    qsizetype lineStart = 0;
    qsizetype wordStart = 0;
    qsizetype previousWordStart = 0;
    qsizetype movedHyphen =
        -1; // the present position of the last hyphen that moved to the next line
    qsizetype hyphenMoves = 0;
    std::set<std::array<qsizetype, 4>> overflows; // every state in which a line overflowed

    for (qsizetype pos = workText.indexOf(pattern, 0); pos >= 0;
         pos = workText.indexOf(pattern, wordStart)) {
        if (++result.candidates > candidateBudget)
            return result;

        const QString word = range(workText, wordStart, pos + 1);
        const QString line = range(workText, lineStart, pos + 1);
        const double w = metrics.horizontalAdvance(range(workText, lineStart, pos));
        const bool loneSeparator = word == u'-' || word == u' ' || word == lineSeparator;

        Next next = Next::Wrap;
        if (w < W)
            next = Next::Accept;
        else if (lineCount < maxLineCount - 1 && (input.hyphenationEnabled || line == word))
            next = Next::Split;

        if (next == Next::Split) {
            next = Next::Wrap;
            qsizetype k = lastPointThatFits(hyphenationPoints(word), [&](qsizetype point) {
                const QString prefix = range(line, 0, wordStart - lineStart + point);
                return point <= word.size() && fineWidth(prefix, input.font) + hyphenAdvance < W;
            });
            const bool hyphenated = k != -1;
            if (!hyphenated) {
                const int fw = fineWidth(word, input.font);
                const bool keptWhole =
                    (fw > W && word.size() < 2) || (fw <= W && word.size() < shortestSplitWord);
                if (!keptWhole) {
                    for (k = 1; k < word.size(); ++k) {
                        const QString prefix = range(workText, lineStart, wordStart + k);
                        if (word.size() - k < fewestMoved || fineWidth(prefix, input.font) >= W) {
                            --k;
                            break;
                        }
                    }
                }
            }
            if (isInsidePair(workText, wordStart + k))
                --k;
            if (k >= 1) {
                workText.insert(wordStart + k, lineSeparator);
                if (hyphenated)
                    workText.insert(wordStart + k, u'-');
                wordStart += k + (hyphenated ? 2 : 1);
                lineStart = wordStart;
                ++lineCount;
                next = Next::NextMatch;
            }
        }

        // Without a line limit a repeated state would repeat for ever: the word is accepted as if it fitted.
        if (next == Next::Wrap && !limited
            && !overflows.insert({lineStart, wordStart, previousWordStart, workText.size()})
                    .second) {
            next = Next::Accept;
        }

        if (next == Next::Wrap) {
            ++lineCount;
            if (lineCount == maxLineCount) {
                next = Next::Elide;
            } else if (loneSeparator) {
                wordStart = previousWordStart;
                lineStart = previousWordStart;
                pos = previousWordStart;
                next = Next::HardBreakCheck;
            } else if (wordStart >= 1 && workText.at(wordStart - 1) == u'-') {
                const qsizetype hyphen = wordStart - 1;
                hyphenMoves = hyphen == movedHyphen ? hyphenMoves : 0;
                if (hyphenMoves == mostMoves) {
                    next = limited ? Next::Elide : Next::Accept;
                } else {
                    workText.insert(hyphen, lineSeparator);
                    ++hyphenMoves;
                    movedHyphen = hyphen + 1;
                    lineStart = wordStart;
                    wordStart += 1;
                    next = Next::NextMatch;
                }
            } else {
                lineStart = wordStart;
                pos = wordStart;
                next = Next::HardBreakCheck;
            }
        }

        if (next == Next::Accept) {
            previousWordStart = wordStart;
            wordStart = pos + 1;
            next = Next::HardBreakCheck;
        }

        if (next == Next::HardBreakCheck && word.contains(lineSeparator)) {
            ++lineCount;
            if (lineCount == maxLineCount)
                next = Next::Elide;
            else
                lineStart = pos + 1;
        }

        if (next == Next::Elide) {
            const QString e = metrics.elidedText(line, Qt::ElideRight, W);
            qsizetype c = -1;
            if (!e.isEmpty()) {
                const bool tooWide = metrics.horizontalAdvance(e) > W;
                c = lineStart + e.size() - (tooWide ? 2 : 1);
                if (isInsidePair(workText, c))
                    --c;
            }
            workText.replace(c, 1, QChar(ellipsis));
            workText.truncate(c + 1);
            for (qsizetype i = workText.size() - 2;
                 i >= 0 && isRemovedBeforeEllipsis(workText.at(i)); --i)
                workText.remove(i, 1);

            result.elided = true;
            finish(workText, W);
            return result;
        }
    }

    workText.chop(1);
    finish(workText, effectiveWidth);
    return result;
}

ReferenceLayout referenceLayoutAtAnyLimit(ReferenceInput input, int candidateBudget)
{
    if (input.maxLineCount > mostCountedLines)
        input.maxLineCount = mostCountedLines + input.maxLineCount % remainderPeriod;
    return referenceLayout(input, candidateBudget);
}

} // namespace ovelin::tests
