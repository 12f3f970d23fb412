#include "textlayout_p.h"

#include "hyphenation_p.h"

#include <ovelin/textrenderer.h>

#include <QFontMetricsF>
#include <QHash>

#include <algorithm>

namespace ovelin {

using namespace Qt::StringLiterals;

namespace {

constexpr char16_t ellipsis = u'\u2026';

// A word is split without a hyphen only if that many characters, its separator counted, go to the
// next line.
constexpr qsizetype shortestRest = 5;
// A word that fits on a line of its own is split only from this length on.
constexpr qsizetype shortestSplitWord = 9;
// The shortest word that is split because no line is wide enough for it.
constexpr qsizetype shortestWideWord = 2;

// How often a hyphen is moved to yet another line before the text is cut there.
constexpr qsizetype usualHyphenMoves = 64;

// All that a wrap depends on, apart from how many lines are left. The text only ever grows: of the
// same size it is the same.
struct WrapState
{
    qsizetype textSize;
    qsizetype lineStart;
    qsizetype wordStart;
    qsizetype previousWordStart;

    bool operator==(const WrapState &) const = default;
};

size_t qHash(const WrapState &state, size_t seed = 0)
{
    return qHashMulti(seed, state.textSize, state.lineStart, state.wordStart,
                      state.previousWordStart);
}

// One run over one text. The break candidates are taken one after the other; at each, the line up to
// it is measured, and the word before it is accepted, split, or moved to the next line, where it is
// looked at again.
class LineBreaker
{
public:
    LineBreaker(const QString &text, const QFont &font, const LineLimits &limits);

    BrokenText run();

private:
    bool nextCandidate();
    bool fits() const;
    bool maySplit() const;

    void acceptWord();
    bool splitWord();
    void wrapWord();
    void skipCycles(int linesPerCycle);
    void breakAfterSeparator();
    void moveHyphenToNextLine();
    void elide();
    void trimBeforeEllipsis();

    bool mayForceSplit() const;
    qsizetype forcedSplitPoint() const;
    bool isWordSeparatorOnly() const;
    bool isWordAfterHyphen() const;
    bool countLine();
    void startLine(qsizetype start);
    QString range(qsizetype from, qsizetype to) const;

    const LineLimits m_limits;
    const QFontMetricsF m_metrics;
    const qsizetype m_sourceSize;

    QString m_text;
    int m_lineCount = 0;
    qsizetype m_lineStart = 0;
    qsizetype m_wordStart = 0;
    qsizetype m_previousWordStart = 0; // of the last word that fitted

    qsizetype m_break = 0; // the candidate
    QString m_word;        // up to and including the candidate's separator, as the line is
    QString m_line;
    bool m_elided = false;

    QHash<WrapState, int> m_lineCountAtWrap;
    qsizetype m_hyphenMoves = 0;
    qsizetype m_movedHyphen = -1; // counted from the end, which insertions before it do not change
};

LineBreaker::LineBreaker(const QString &text, const QFont &font, const LineLimits &limits)
    : m_limits(limits)
    , m_metrics(font)
    , m_sourceSize(text.size())
{
    // A break inserts a separator and at most one hyphen.
    const qsizetype breaks
        = std::clamp<qsizetype>(limits.maxLineCount, 1, m_sourceSize + 1) - 1;
    m_text.reserve(m_sourceSize + 1 + 2 * breaks);
    m_text += text;
    m_text += u' ';
}

BrokenText LineBreaker::run()
{
    while (!m_elided && nextCandidate()) {
        if (fits()) {
            acceptWord();
        } else if (!maySplit() || !splitWord()) {
            wrapWord();
        }
    }

    if (m_elided)
        trimBeforeEllipsis();
    else
        m_text.chop(1);
    return {m_text, m_elided};
}

bool LineBreaker::nextCandidate()
{
    m_break = m_text.indexOf(wordBreakPattern, m_wordStart);
    if (m_break == -1)
        return false;
    m_word = range(m_wordStart, m_break + 1);
    m_line = range(m_lineStart, m_break + 1);
    return true;
}

bool LineBreaker::fits() const
{
    return m_metrics.horizontalAdvance(range(m_lineStart, m_break)) < m_limits.width;
}

// A word that fills its line alone is split even without hyphenation: it fits nowhere.
bool LineBreaker::maySplit() const
{
    return m_lineCount + 1 < m_limits.maxLineCount
        && (m_limits.hyphenationEnabled || m_line == m_word);
}

void LineBreaker::acceptWord()
{
    m_previousWordStart = m_wordStart;
    m_wordStart = m_break + 1;
    breakAfterSeparator();
}

bool LineBreaker::splitWord()
{
    qsizetype kept = hyphenationPoint(m_line, m_word, static_cast<int>(m_wordStart - m_lineStart),
                                      m_limits.width, m_metrics);
    const bool hyphenated = kept != -1;
    if (!hyphenated)
        kept = mayForceSplit() ? forcedSplitPoint() : 0;
    if (kept < 1)
        return false;

    const QString lineEnd = hyphenated ? u"-\u2028"_s : u"\u2028"_s;
    // Lower-casing can lengthen a word, and put the point behind the end of the text.
    const qsizetype splitPoint = std::min(m_wordStart + kept, m_text.size() - 1);
    m_text.insert(splitPoint, lineEnd);
    startLine(splitPoint + lineEnd.size());
    ++m_lineCount;
    return true;
}

void LineBreaker::wrapWord()
{
    const WrapState state{m_text.size(), m_lineStart, m_wordStart, m_previousWordStart};
    const auto seen = m_lineCountAtWrap.constFind(state);
    if (seen == m_lineCountAtWrap.cend()) {
        m_lineCountAtWrap.insert(state, m_lineCount);
    } else if (m_limits.maxLineCount <= 0) {
        acceptWord();
        return;
    } else {
        skipCycles(m_lineCount - *seen);
    }

    if (!countLine())
        return;
    if (isWordSeparatorOnly()) {
        startLine(m_previousWordStart);
        m_break = m_previousWordStart;
    } else if (isWordAfterHyphen()) {
        moveHyphenToNextLine();
        return;
    } else {
        // Qt, given the same width, breaks the line at the space before the word.
        startLine(m_wordStart);
        m_break = m_wordStart;
    }
    breakAfterSeparator();
}

// Wrapping has led back to where it was before that many lines, and does so until the limit is near:
// only the last cycle is left to go through.
void LineBreaker::skipCycles(int linesPerCycle)
{
    const int linesLeft = m_limits.maxLineCount - 1 - m_lineCount;
    m_lineCount += linesLeft / linesPerCycle * linesPerCycle;
}

// Ends the line where the word's own separator is a break that the user wanted.
void LineBreaker::breakAfterSeparator()
{
    if (m_word.contains(lineSeparator) && countLine())
        m_lineStart = m_break + 1;
}

// Breaks the line in front of the hyphen, which begins the next one. A word for which that line is too
// narrow as well comes back here, and does so until the limit, or for ever: all its empty lines are
// made at once then, and where there are too many of them the text is cut.
void LineBreaker::moveHyphenToNextLine()
{
    const qsizetype movedHyphen = m_text.size() - m_wordStart;
    if (m_movedHyphen != movedHyphen) {
        m_movedHyphen = movedHyphen;
        m_hyphenMoves = 0;
    }
    const qsizetype movesLeft = std::max(usualHyphenMoves, m_sourceSize) - m_hyphenMoves;
    if (movesLeft == 0) {
        elide();
        return;
    }

    qsizetype moves = 1;
    const bool hyphenBeginsLine = m_lineStart == m_wordStart - 1;
    if (hyphenBeginsLine) {
        const bool limited = m_limits.maxLineCount > 0;
        const qsizetype linesLeft = limited ? m_limits.maxLineCount - m_lineCount : movesLeft;
        moves = std::min(movesLeft, linesLeft);
    }

    m_hyphenMoves += moves;
    m_lineCount += static_cast<int>(moves - 1);
    m_text.insert(m_wordStart - 1, QString(moves, lineSeparator));
    m_wordStart += moves;
    m_lineStart = m_wordStart - 1;
}

void LineBreaker::elide()
{
    const QString shown = m_metrics.elidedText(m_line, Qt::ElideRight, m_limits.width);
    qsizetype cut = -1;
    if (!shown.isEmpty()) {
        cut = m_lineStart + shown.size() - 1;
        if (m_metrics.horizontalAdvance(shown) > m_limits.width)
            --cut;
    }
    if (cut >= 0)
        m_text.replace(cut, 1, ellipsis);
    m_text.truncate(cut + 1);
    m_elided = true;
}

void LineBreaker::trimBeforeEllipsis()
{
    const auto isTrimmed = [](QChar c) { return c.isSpace() || c.isPunct(); };
    for (qsizetype i = m_text.size() - 2; i >= 0 && isTrimmed(m_text.at(i)); --i)
        m_text.remove(i, 1);
}

bool LineBreaker::mayForceSplit() const
{
    const bool fitsAlone = TextRenderer::fineTextWidth(m_word, m_metrics) <= m_limits.width;
    return m_word.size() >= (fitsAlone ? shortestSplitWord : shortestWideWord);
}

qsizetype LineBreaker::forcedSplitPoint() const
{
    const auto fitsWith = [this](qsizetype kept) {
        const QString line = range(m_lineStart, m_wordStart + kept);
        return TextRenderer::fineTextWidth(line, m_metrics) < m_limits.width;
    };
    qsizetype kept = 0;
    while (m_word.size() - (kept + 1) >= shortestRest && fitsWith(kept + 1))
        ++kept;
    return kept;
}

bool LineBreaker::isWordSeparatorOnly() const
{
    return m_word == u"-"_s || m_word == u" "_s || m_word == u"\u2028"_s;
}

bool LineBreaker::isWordAfterHyphen() const
{
    return m_wordStart >= 1 && m_text.at(m_wordStart - 1) == hyphen;
}

// Returns whether there is a next line; the text is elided on this one if not.
bool LineBreaker::countLine()
{
    ++m_lineCount;
    if (m_lineCount == m_limits.maxLineCount)
        elide();
    return !m_elided;
}

void LineBreaker::startLine(qsizetype start)
{
    m_lineStart = start;
    m_wordStart = start;
}

// A range that ends before it begins is empty.
QString LineBreaker::range(qsizetype from, qsizetype to) const
{
    return m_text.mid(from, std::max<qsizetype>(0, to - from));
}

} // namespace

BrokenText breakIntoLines(const QString &text, const QFont &font, const LineLimits &limits)
{
    return LineBreaker(text, font, limits).run();
}

} // namespace ovelin
