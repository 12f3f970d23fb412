#include "textlayout_p.h"

#include "finetextwidth_p.h"
#include "hyphenation_p.h"
#include "textmeasure_p.h"

#include <algorithm>
#include <vector>

namespace ovelin {

using namespace Qt::StringLiterals;

namespace {

// A forced split moves at least this many characters of the word to the next line. The word's separator counts.
// A word of so many characters or fewer is never split by force.
constexpr qsizetype fewestMoved = 5;
// A word that would fit on a line of its own is split by force only if it has at least this many characters,
// its separator counted.
constexpr qsizetype shortestForcedSplit = 9;

// Under a line limit moveHyphenToNextLine() moves one hyphen at most this often, or once for each character of
// the text if that is more. Each move inserts a line separator. After the last move the text is elided.
constexpr qsizetype mostHyphenMoves = 1024;

// A separator at which a line may end, and the line and the word that end with it.
struct Candidate
{
    qsizetype lineStart;
    qsizetype wordStart;
    qsizetype separator;
    bool endsParagraph;

    bool isSeparatorOnly() const { return wordStart == separator; }
    bool beginsLine() const { return lineStart == wordStart; }
    qsizetype end() const { return separator + 1; }
    qsizetype wordSize() const { return end() - wordStart; }
};

// The source with the hyphens and line separators that were inserted.
class BrokenLines
{
public:
    explicit BrokenLines(const SourceText &source)
        : m_source(source)
    {
    }

    // Inserts characters before a position of the source. The position must not be before the last insertion.
    void insert(qsizetype position, const QString &characters);

    // The position in the source of the last insertion; 0 before the first one.
    qsizetype lastInsertion() const { return m_lastInsertion; }
    // The number of inserted characters.
    qsizetype inserted() const { return m_inserted; }

    QString withoutLastSpace() const;
    // Returns the text up to a position of the source, with an ellipsis at its end. If the position is after the
    // source, the text ends with its last space instead. Spaces and punctuation before the ellipsis or this space
    // are removed. A position n characters before the last insertion cuts off n characters, inserted ones included.
    QString elidedAt(qsizetype position) const;

private:
    const SourceText &m_source;
    QString m_text;
    qsizetype m_lastInsertion = 0;
    qsizetype m_inserted = 0;
};

void BrokenLines::insert(qsizetype position, const QString &characters)
{
    m_text += m_source.range(m_lastInsertion, position) + characters;
    m_lastInsertion = position;
    m_inserted += characters.size();
}

QString BrokenLines::withoutLastSpace() const
{
    if (m_inserted == 0)
        return m_source.withoutLastSpace();
    QString text = m_text + m_source.range(m_lastInsertion, m_source.size());
    text.chop(1);
    return text;
}

QString BrokenLines::elidedAt(qsizetype position) const
{
    if (position + m_inserted < 0)
        return {};
    const qsizetype end = std::min(position, m_source.size());
    QString text = m_text + m_source.range(m_lastInsertion, std::max(m_lastInsertion, end));
    text.truncate(position + m_inserted);
    if (position <= m_source.size())
        text += ellipsis;
    const auto isTrimmed = [](QChar c) { return c.isSpace() || c.isPunct(); };
    for (qsizetype i = text.size() - 2; i >= 0 && isTrimmed(text.at(i)); --i)
        text.remove(i, 1);
    return text;
}

// Notices a pass that goes round in a circle: a word that fits on no line wraps again and again.
class WrapGuard
{
public:
    // All that a wrap depends on, except the number of lines. Each move of a hyphen changes `inserted`.
    struct State
    {
        qsizetype inserted;
        qsizetype lineStart;
        qsizetype wordStart;
        qsizetype previousWordStart;

        bool operator==(const State &) const = default;
    };

    // Returns how many lines ago this state occurred; nothing if the state is new.
    std::optional<int> linesSince(const State &state, int lineCount);

private:
    struct Wrap
    {
        State state;
        int lineCount;
    };

    // The first wrap of the farthest word, and all wraps after it. Earlier wraps can be forgotten: a pass that
    // goes round in a circle always comes back to the farthest word of the circle.
    std::vector<Wrap> m_wraps;
    qsizetype m_farthestWord = -1;
};

std::optional<int> WrapGuard::linesSince(const State &state, int lineCount)
{
    if (state.wordStart > m_farthestWord) {
        m_farthestWord = state.wordStart;
        m_wraps.clear();
    }
    const auto same = std::ranges::find(m_wraps, state, &Wrap::state);
    if (same != m_wraps.end())
        return lineCount - same->lineCount;
    m_wraps.push_back({.state = state, .lineCount = lineCount});
    return std::nullopt;
}

// One pass over one text. The pass takes the candidates one after the other. It accepts a candidate's word if
// the line up to the separator fits. Otherwise it splits the word, or wraps it and takes it again on the next
// line.
//
// Positions are positions in the source, so the range of a line contains no inserted characters.
class LineBreaker
{
public:
    LineBreaker(const SourceText &source, const QFont &font, const LineLimits &limits,
                TextMeasure::Method method);

    BrokenText run();
    bool findsWrongReading() { return m_measure.findsWrongReading(); }

private:
    bool isLimited() const { return m_limits.maxLineCount > 0; }
    bool nextCandidate();
    bool lineFits();
    bool maySplit() const;

    void acceptWord();
    bool splitWord();
    void wrapWord();
    void breakAfter(qsizetype position);
    void moveHyphenToNextLine();
    void elide();

    int hyphenationPoint();
    qsizetype forcedSplitPoint();
    bool isWordAfterHyphen() const;
    bool countLine();
    void startLine(qsizetype start);
    qsizetype characterStart(qsizetype position) const;
    std::optional<int> wholeFineWidth() const;

    const SourceText &m_source;
    const LineLimits m_limits;
    TextMeasure m_measure;
    BrokenLines m_lines;

    int m_lineCount = 0;
    qsizetype m_lineStart = 0;
    qsizetype m_wordStart = 0;
    qsizetype m_previousWordStart = 0; // of the last word that was accepted

    Candidate m_candidate = {
        .lineStart = 0, .wordStart = 0, .separator = -1, .endsParagraph = false};
    std::optional<QString> m_elidedText;

    WrapGuard m_wraps;
    qsizetype m_movedHyphen = -1;
    qsizetype m_hyphenMoves = 0;
    qsizetype m_wordWithoutPoint = -1; // the end of a word without hyphenation points
};

LineBreaker::LineBreaker(const SourceText &source, const QFont &font, const LineLimits &limits,
                         TextMeasure::Method method)
    : m_source(source)
    , m_limits(limits)
    , m_measure(source, font, limits.width, limits.maxLineCount, method)
    , m_lines(source)
{
}

BrokenText LineBreaker::run()
{
    while (!m_elidedText && nextCandidate()) {
        if (lineFits()) {
            acceptWord();
        } else if (!maySplit() || !splitWord()) {
            wrapWord();
        }
    }
    return {.text = m_elidedText ? *m_elidedText : m_lines.withoutLastSpace(),
            .elided = m_elidedText.has_value(),
            .fineWidth = wholeFineWidth()};
}

// After a split or a wrap, the rest of the same word is the next candidate. Its end is known already.
bool LineBreaker::nextCandidate()
{
    if (m_wordStart >= m_source.size())
        return false;
    const bool isSameWord =
        m_wordStart >= m_candidate.wordStart && m_wordStart <= m_candidate.separator;
    const qsizetype separator =
        isSameWord ? m_candidate.separator : wordEnd(m_source.withoutLastSpace(), m_wordStart);
    m_candidate = {.lineStart = m_lineStart,
                   .wordStart = m_wordStart,
                   .separator = separator,
                   .endsParagraph = m_source.at(separator) == lineSeparator};
    return true;
}

bool LineBreaker::lineFits()
{
    return m_measure.decide(m_lineStart, m_candidate.separator,
                            [this](double advance) { return advance < m_limits.width; });
}

// Words are split under a line limit only, and not on the last line. With hyphenation disabled, only a word
// that begins its line is split, but still at a hyphenation point if it has one.
bool LineBreaker::maySplit() const
{
    return m_lineCount + 1 < m_limits.maxLineCount
           && (m_limits.hyphenationEnabled || m_candidate.beginsLine());
}

void LineBreaker::acceptWord()
{
    m_previousWordStart = m_wordStart;
    m_wordStart = m_candidate.end();
    breakAfter(m_candidate.separator);
}

bool LineBreaker::splitWord()
{
    const qsizetype point = hyphenationPoint();
    const bool hasPoints = point != -1;
    const qsizetype kept = hasPoints ? point : forcedSplitPoint();

    const qsizetype splitPoint = characterStart(m_wordStart + kept);
    if (splitPoint <= m_wordStart)
        return false;
    m_lines.insert(splitPoint, hasPoints ? u"-\u2028"_s : u"\u2028"_s);
    startLine(splitPoint);
    ++m_lineCount;
    return true;
}

void LineBreaker::wrapWord()
{
    const auto linesPerRound = m_wraps.linesSince(
        {m_lines.inserted(), m_lineStart, m_wordStart, m_previousWordStart}, m_lineCount);
    if (linesPerRound && !isLimited()) {
        acceptWord();
        return;
    }
    if (linesPerRound) {
        // The pass would go round until the line limit. All whole rounds are skipped: only their lines are counted.
        const int linesLeft = m_limits.maxLineCount - 1 - m_lineCount;
        m_lineCount += linesLeft - linesLeft % *linesPerRound;
    }

    if (!countLine())
        return;
    if (m_candidate.isSeparatorOnly()) {
        startLine(m_previousWordStart);
    } else if (isWordAfterHyphen()) {
        moveHyphenToNextLine();
        return;
    } else {
        // Nothing is inserted: Qt, given the same width, breaks the line at the space before the word.
        startLine(m_wordStart);
    }
    breakAfter(m_lineStart);
}

// Begins a new line after the position if the word of the candidate ends its paragraph.
void LineBreaker::breakAfter(qsizetype position)
{
    if (m_candidate.endsParagraph && countLine())
        m_lineStart = position + 1;
}

// Breaks the line before the hyphen: the hyphen begins the next line. If the word after the hyphen does not
// fit there either, the hyphen moves again, line after line; all these moves are made at once. After the last
// allowed move nothing is changed: the next wrap repeats the state, and WrapGuard notices the circle.
void LineBreaker::moveHyphenToNextLine()
{
    const qsizetype hyphenPosition = m_wordStart - 1;
    if (m_movedHyphen != hyphenPosition) {
        m_movedHyphen = hyphenPosition;
        m_hyphenMoves = 0;
    }
    const qsizetype mostMoves =
        isLimited() ? std::max(mostHyphenMoves, m_source.withoutLastSpace().size()) : 1;
    const qsizetype movesLeft = mostMoves - m_hyphenMoves;
    if (movesLeft == 0)
        return;

    const bool beginsLine = m_lineStart == hyphenPosition;
    const qsizetype moves =
        isLimited() && beginsLine
            ? std::min<qsizetype>(movesLeft, m_limits.maxLineCount - m_lineCount)
            : 1;
    m_hyphenMoves += moves;
    m_lineCount += static_cast<int>(moves - 1);
    m_lines.insert(hyphenPosition, QString(moves, lineSeparator));
    m_lineStart = hyphenPosition;
}

// Measures the line of the candidate, and cuts the line from m_lineStart on after as many characters. The two lines
// differ if the last word of a paragraph wraps and thereby reaches the line limit.
void LineBreaker::elide()
{
    const auto line = m_measure.elide(m_candidate.lineStart, m_candidate.end());
    if (line.size == 0) {
        m_elidedText = QString();
        return;
    }
    constexpr qsizetype ellipsisSize = 1;
    const qsizetype cut = m_lineStart + line.size - ellipsisSize - (line.isTooWide ? 1 : 0);
    // A cut before m_lineStart removes the separator before the line, which is no half of a surrogate pair.
    m_elidedText = m_lines.elidedAt(cut < m_lineStart ? cut : characterStart(cut));
}

int LineBreaker::hyphenationPoint()
{
    if (m_candidate.end() == m_wordWithoutPoint)
        return -1;
    const double hyphenWidth = m_measure.metrics().horizontalAdvance(QChar(hyphen));
    const auto fitsWithHyphen = [this, hyphenWidth](double advance) {
        return fineWidth(advance) + hyphenWidth < m_limits.width;
    };
    // Points can lie after the word: some letters are two characters in lower case.
    const auto prefixFits = [&](qsizetype kept) {
        return kept <= m_candidate.wordSize()
               && m_measure.decide(m_lineStart, m_wordStart + kept, fitsWithHyphen);
    };
    // If this is the last word, the space after the text is not part of it.
    const auto word =
        QStringView(m_source.withoutLastSpace()).mid(m_wordStart, m_candidate.wordSize());
    const int point = ovelin::hyphenationPoint(word, prefixFits);
    if (point == -1)
        m_wordWithoutPoint = m_candidate.end();
    return point;
}

// Returns how many characters of the word stay on the line; 0 if the word is not split by force.
qsizetype LineBreaker::forcedSplitPoint()
{
    const auto fitsAlone = [this](double advance) { return fineWidth(advance) <= m_limits.width; };
    const auto fitsOnLine = [this](double advance) { return fineWidth(advance) < m_limits.width; };
    const qsizetype most = m_candidate.wordSize() - fewestMoved;
    const bool isShort = m_candidate.wordSize() < shortestForcedSplit;
    if (most <= 0 || (isShort && m_measure.decide(m_wordStart, m_candidate.end(), fitsAlone)))
        return 0;
    qsizetype kept = 0;
    while (kept < most && m_measure.decide(m_lineStart, m_wordStart + kept + 1, fitsOnLine))
        ++kept;
    return kept;
}

// True if a hyphen of the source stands before the word, and no line break was inserted between them.
bool LineBreaker::isWordAfterHyphen() const
{
    return m_wordStart >= 1 && m_source.at(m_wordStart - 1) == hyphen
           && m_lines.lastInsertion() != m_wordStart;
}

// Counts the present line. If it is the last one allowed, elides the text on it and returns false.
bool LineBreaker::countLine()
{
    ++m_lineCount;
    if (m_lineCount == m_limits.maxLineCount)
        elide();
    return !m_elidedText;
}

void LineBreaker::startLine(qsizetype start)
{
    m_lineStart = start;
    m_wordStart = start;
}

// Returns the beginning of a surrogate pair for the position inside it, and any other position as it is.
qsizetype LineBreaker::characterStart(qsizetype position) const
{
    return m_source.isInsidePair(position) ? position - 1 : position;
}

std::optional<int> LineBreaker::wholeFineWidth() const
{
    const auto advance = m_measure.wholeAdvance();
    return advance ? std::optional(fineWidth(*advance)) : std::nullopt;
}

} // namespace

BrokenText breakIntoLines(const QString &text, const QFont &font, const LineLimits &limits)
{
    using Method = TextMeasure::Method;
    // If the font gives wrong readings, as few fonts do, the text is laid out a second time, by measuring alone.
    const SourceText source(text);
    BrokenText broken;
    for (const Method method : {Method::ReadRuns, Method::MeasureAll}) {
        LineBreaker breaker(source, font, limits, method);
        broken = breaker.run();
        if (!breaker.findsWrongReading())
            break;
    }
    return broken;
}

} // namespace ovelin
