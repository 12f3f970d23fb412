#include "textlayout_p.h"

#include "finetextwidth_p.h"
#include "hyphenation_p.h"
#include "textmeasure_p.h"

#include <QHash>

#include <algorithm>
#include <bit>
#include <utility>

namespace ovelin {

using namespace Qt::StringLiterals;

namespace {

constexpr char16_t ellipsis = u'\u2026';

// A word is split without a hyphen only if that many characters, its separator counted, go to the
// next line.
constexpr qsizetype shortestRest = 5;
// A word that fits on a line of its own is split only from this length on.
constexpr qsizetype shortestSplitWord = 9;

// What is taken of the text at first, in characters; more is where the lines want it.
constexpr qsizetype shortestLoad = 512;

// How often a hyphen is moved to yet another line, up to a limit, before the text is cut there.
constexpr qsizetype usualHyphenMoves = 64;

// All that a wrap depends on, apart from how many lines are left. The text only ever grows: with as
// many characters inserted it is the same.
struct WrapState
{
    qsizetype inserted;
    qsizetype lineStart;
    qsizetype wordStart;
    qsizetype previousWordStart;

    bool operator==(const WrapState &) const = default;
};

size_t qHash(const WrapState &state, size_t seed)
{
    return qHashMulti(seed, state.inserted, state.lineStart, state.wordStart,
                      state.previousWordStart);
}

// A separator at which the text may break, and the line and the word that end with it.
struct Candidate
{
    qsizetype lineStart;
    qsizetype wordStart;
    qsizetype separator;
    bool endsParagraph;

    bool isWordSeparatorOnly() const { return wordStart == separator; }
    bool isLineOneWord() const { return lineStart == wordStart; }
    qsizetype end() const { return separator + 1; }
    qsizetype wordSize() const { return end() - wordStart; }
};

// One run over one text. The break candidates are taken one after the other; at each, the word
// before it is accepted if the line up to it fits, and else split, or moved to the next line, where
// it is looked at again. Of the text only as much is looked at as is shown.
class LineBreaker
{
public:
    LineBreaker(const QString &text, const QFont &font, const LineLimits &limits,
                TextMeasure::Method method);

    BrokenText run();
    bool isRulerWrong() const { return m_measure.isRulerWrong(); }

private:
    bool isLimited() const { return m_limits.maxLineCount > 0; }
    bool nextCandidate();
    bool loadText();
    void loadUpTo(qsizetype position);
    bool isWiderThanLimit() const;
    bool fits();
    bool maySplit() const;

    void acceptWord();
    bool splitWord();
    void wrapWord();
    void skipCycles(int linesPerCycle);
    void breakAfterSeparator();
    void moveHyphenToNextLine();
    void elide();
    void trimBeforeEllipsis();

    int hyphenationPoint();
    bool mayForceSplit();
    qsizetype forcedSplitPoint();
    bool isWordAfterHyphen() const;
    bool countLine();
    void startLine(qsizetype start);
    void insert(qsizetype position, const QString &characters);
    qsizetype characterStart(qsizetype position) const;
    QString range(qsizetype from, qsizetype to) const;

    const LineLimits m_limits;
    const QString m_source;
    TextMeasure m_measure;

    QString m_text;         // what was looked at, with the breaks, and in the end a space behind it
    qsizetype m_loaded = 0; // characters of the source, and the space
    qsizetype m_inserted = 0;
    int m_lineCount = 0;
    qsizetype m_lineStart = 0;
    qsizetype m_wordStart = 0;
    qsizetype m_previousWordStart = 0; // of the last word that fitted

    Candidate m_candidate = {};
    qsizetype m_knownSeparator = -1; // of the rest of a word that was split
    qsizetype m_break = 0;           // the separator behind which a new line may begin
    bool m_elided = false;

    QHash<WrapState, int> m_lineCountAtWrap;
    qsizetype m_hyphenMoves = 0;
    qsizetype m_movedHyphen = -1;      // where it is in the source
    qsizetype m_wordWithoutPoint = -1; // where it ends there; no part of it has one
};

LineBreaker::LineBreaker(const QString &text, const QFont &font, const LineLimits &limits,
                         TextMeasure::Method method)
    : m_limits(limits)
    , m_source(text)
    , m_measure(font, limits.width, limits.maxLineCount, method)
{
    // A break inserts a separator and at most one hyphen. Few texts are shown of which more than the first
    // piece is looked at.
    const qsizetype shown = std::min(text.size(), shortestLoad) + 1;
    const qsizetype breaks = std::clamp<qsizetype>(limits.maxLineCount, 1, shown) - 1;
    m_text.reserve(shown + 2 * breaks);
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
    return {.text = m_text, .elided = m_elided, .widerThanLimit = isWiderThanLimit()};
}

bool LineBreaker::nextCandidate()
{
    qsizetype separator = std::exchange(m_knownSeparator, -1);
    while (separator == -1) {
        separator = wordBreak(m_text, m_wordStart);
        if (separator == -1 && !loadText())
            return false;
    }

    m_break = separator;
    m_candidate = {.lineStart = m_lineStart,
                   .wordStart = m_wordStart,
                   .separator = separator,
                   .endsParagraph = m_text.at(separator) == lineSeparator};
    return true;
}

// Takes more of the source, and the space that ends its last word; returns whether there was any
// left.
bool LineBreaker::loadText()
{
    if (m_loaded > m_source.size())
        return false;
    const qsizetype size = std::max(shortestLoad, m_text.size());
    m_text +=
        QStringView(m_source).sliced(m_loaded).first(std::min(size, m_source.size() - m_loaded));
    m_loaded += size;
    if (m_loaded > m_source.size())
        m_text += u' ';
    return true;
}

// The text may end before that position, too.
void LineBreaker::loadUpTo(qsizetype position)
{
    while (position >= m_text.size() && loadText()) {
    }
}

bool LineBreaker::isWiderThanLimit() const
{
    const QStringView seen = QStringView(m_source).first(std::min(m_loaded, m_source.size()));
    return m_measure.isWiderThanLine(seen, m_source.size());
}

bool LineBreaker::fits()
{
    // Fonts that kern letters with spaces are mostly those which a ruler reads wrong.
    if (m_text.at(m_candidate.separator) == u' ')
        m_measure.checkOnce(m_text, m_lineStart, m_candidate.separator);
    return m_measure.decide(m_text, m_lineStart, m_candidate.separator,
                            [this](double advance) { return advance < m_limits.width; });
}

// A word that fills its line alone is split even without hyphenation: it fits nowhere.
bool LineBreaker::maySplit() const
{
    return m_lineCount + 1 < m_limits.maxLineCount
           && (m_limits.hyphenationEnabled || m_candidate.isLineOneWord());
}

void LineBreaker::acceptWord()
{
    m_previousWordStart = m_wordStart;
    m_wordStart = m_break + 1;
    breakAfterSeparator();
}

bool LineBreaker::splitWord()
{
    qsizetype kept = hyphenationPoint();
    const bool hyphenated = kept != -1;
    if (!hyphenated)
        kept = mayForceSplit() ? forcedSplitPoint() : 0;

    const qsizetype splitPoint = characterStart(m_wordStart + kept);
    if (splitPoint <= m_wordStart)
        return false;

    const QString lineEnd = hyphenated ? u"-\u2028"_s : u"\u2028"_s;
    insert(splitPoint, lineEnd);
    m_knownSeparator = m_candidate.separator + lineEnd.size();
    startLine(splitPoint + lineEnd.size());
    ++m_lineCount;
    return true;
}

void LineBreaker::wrapWord()
{
    const WrapState state{m_inserted, m_lineStart, m_wordStart, m_previousWordStart};
    const auto seen = m_lineCountAtWrap.constFind(state);
    if (seen == m_lineCountAtWrap.cend()) {
        m_lineCountAtWrap.insert(state, m_lineCount);
    } else if (!isLimited()) {
        acceptWord();
        return;
    } else {
        skipCycles(m_lineCount - *seen);
    }

    if (!countLine())
        return;
    if (m_candidate.isWordSeparatorOnly()) {
        startLine(m_previousWordStart);
    } else if (isWordAfterHyphen()) {
        moveHyphenToNextLine();
        return;
    } else {
        // Qt, given the same width, breaks the line at the space before the word.
        startLine(m_wordStart);
    }
    m_break = m_lineStart;
    breakAfterSeparator();
}

// Wrapping has led back to where it was before that many lines, and does so until the limit is
// near: only the last cycle is left to go through.
void LineBreaker::skipCycles(int linesPerCycle)
{
    const int linesLeft = m_limits.maxLineCount - 1 - m_lineCount;
    m_lineCount += linesLeft / linesPerCycle * linesPerCycle;
}

// Ends the line where the word's own separator is a break that the user wanted.
void LineBreaker::breakAfterSeparator()
{
    if (m_candidate.endsParagraph && countLine())
        m_lineStart = m_break + 1;
}

// Breaks the line in front of the hyphen, which begins the next one. A word for which that line is
// too narrow as well comes back here, and does so until the limit: all its empty lines are made at once
// then. Behind too many of them, or behind the first one where there is no limit, nothing is changed, and
// wrapWord() sees that it is where it has been.
void LineBreaker::moveHyphenToNextLine()
{
    const qsizetype movedHyphen = m_wordStart - m_inserted;
    if (m_movedHyphen != movedHyphen) {
        m_movedHyphen = movedHyphen;
        m_hyphenMoves = 0;
    }
    const qsizetype mostMoves = isLimited() ? std::max(usualHyphenMoves, m_source.size()) : 1;
    const qsizetype movesLeft = mostMoves - m_hyphenMoves;
    if (movesLeft == 0)
        return;

    qsizetype moves = 1;
    const bool hyphenBeginsLine = m_lineStart == m_wordStart - 1;
    if (isLimited() && hyphenBeginsLine)
        moves = std::min<qsizetype>(movesLeft, m_limits.maxLineCount - m_lineCount);

    m_hyphenMoves += moves;
    m_lineCount += static_cast<int>(moves - 1);
    insert(m_wordStart - 1, QString(moves, lineSeparator));
    m_wordStart += moves;
    m_lineStart = m_wordStart - 1;
}

void LineBreaker::elide()
{
    const QFontMetricsF &metrics = m_measure.metrics();
    const QString line = range(m_candidate.lineStart, m_candidate.end());
    const QString shown = metrics.elidedText(line, Qt::ElideRight, m_limits.width);
    qsizetype cut = -1;
    if (!shown.isEmpty()) {
        // The line may begin behind the one whose length is taken here.
        cut = m_lineStart + shown.size() - 1;
        loadUpTo(cut);
        if (metrics.horizontalAdvance(shown) > m_limits.width)
            cut = characterStart(cut - 1);
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

int LineBreaker::hyphenationPoint()
{
    const qsizetype wordEndInSource = m_candidate.end() - m_inserted;
    if (wordEndInSource == m_wordWithoutPoint)
        return -1;

    const double hyphenWidth = m_measure.metrics().horizontalAdvance(QChar(hyphen));
    const auto fits = [this, hyphenWidth](double advance) {
        return fineWidth(advance) + hyphenWidth < m_limits.width;
    };
    const qsizetype mostKept = m_measure.mostPerLine();
    bool isRejected = false;
    // Also notes whether a point was seen that does not fit.
    const auto fitsWithHyphen = [&](qsizetype kept) {
        const bool accepted = m_measure.decide(m_text, m_lineStart, m_wordStart + kept, fits);
        isRejected = !accepted && kept <= mostKept;
        return accepted;
    };

    // The beginning of a word without an end tells its point, if there is one that does not fit.
    const QString word = range(m_wordStart, m_candidate.end());
    const QString head = word.left(mostKept + hyphenationReach);
    int point = ovelin::hyphenationPoint(head, fitsWithHyphen);
    if (!isRejected && head.size() < word.size())
        point = ovelin::hyphenationPoint(word, fitsWithHyphen);
    if (point == -1)
        m_wordWithoutPoint = wordEndInSource;
    return point;
}

bool LineBreaker::mayForceSplit()
{
    const auto fits = [this](double advance) { return fineWidth(advance) <= m_limits.width; };
    return m_candidate.wordSize() >= shortestSplitWord
           || !m_measure.decide(m_text, m_wordStart, m_candidate.end(), fits);
}

qsizetype LineBreaker::forcedSplitPoint()
{
    const auto fitsWith = [this](qsizetype kept, double spare) {
        return m_measure.decide(m_text, m_lineStart, m_wordStart + kept, [&](double advance) {
            return fineWidth(advance + spare) < m_limits.width;
        });
    };
    const qsizetype most = m_candidate.wordSize() - shortestRest;
    qsizetype kept = 0;
    // Where a beginning fits with room to spare, each shorter one fits.
    const qsizetype likely = std::min(most, m_measure.mostPerLine());
    if (likely > 0 && m_measure.advancesGrow()) {
        const double spare =
            m_measure.mostShrinkage(QStringView(m_text).sliced(m_wordStart).first(likely));
        for (auto step = qsizetype(std::bit_floor(size_t(likely))); step > 0; step /= 2) {
            if (kept + step <= likely && fitsWith(kept + step, spare))
                kept += step;
        }
    }
    while (kept < most && fitsWith(kept + 1, 0))
        ++kept;
    return kept;
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

void LineBreaker::insert(qsizetype position, const QString &characters)
{
    m_text.insert(position, characters);
    m_inserted += characters.size();
    m_measure.textInserted(position + characters.size(), characters.size());
}

// Of two positions inside a surrogate pair, the one in front of it.
qsizetype LineBreaker::characterStart(qsizetype position) const
{
    const bool isInsidePair = position > 0 && position < m_text.size()
                              && m_text.at(position).isLowSurrogate()
                              && m_text.at(position - 1).isHighSurrogate();
    return isInsidePair ? position - 1 : position;
}

QString LineBreaker::range(qsizetype from, qsizetype to) const
{
    return m_text.mid(from, to - from);
}

} // namespace

BrokenText breakIntoLines(const QString &text, const QFont &font, const LineLimits &limits)
{
    LineBreaker breaker(text, font, limits, TextMeasure::Method::Ruler);
    const BrokenText broken = breaker.run();
    if (!breaker.isRulerWrong())
        return broken;
    return LineBreaker(text, font, limits, TextMeasure::Method::MeasureAll).run();
}

} // namespace ovelin
