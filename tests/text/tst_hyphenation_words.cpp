#include "hyphenationpoints.h"
#include "text/hyphenation_p.h"
#include "textsupport.h"

#include <ovelin/textrenderer.h>

#include <QFile>
#include <QTest>

#include <array>
#include <limits>
#include <numeric>

using namespace ovelin;
using namespace ovelin::tests;
using namespace Qt::StringLiterals;

// Hyphenates and lays out the words of a Russian dictionary and compares with the rules.

namespace {

constexpr auto dictionary = "/usr/share/hunspell/ru_RU.dic"_L1;
constexpr int fewestWords = 100'000;
constexpr int reducedStep = 100; // a reduced run tries one word in 100

constexpr std::array lineWidths{10, 40, 70, 110, 1000};
constexpr std::array boxWidths{40, 60, 80, 110, 150};

// Returns how displayText() must begin for the two words. If the second word is hyphenated, the beginning ends
// with the newline after the hyphen. Otherwise the beginning is both words, because a break at a space adds no
// newline. Returns nothing if the rules of hyphenation do not decide. A part of the second word stays on a line
// if the line up to the end of this part fits with the hyphen and two pixels of margin.
QString expectedStart(const QString &firstWord, const QString &word, int boxWidth)
{
    static const double hyphenAdvance = advance(QString(hyphen));
    const QList<int> points = hyphenationPoints(word + u' ');
    for (const QString &before : {firstWord, QString()}) {
        if (advance(before + word) < boxWidth)
            return firstWord + word;
        const int point = lastPointThatFits(points, [&](qsizetype kept) {
            return fineWidth(before + word.left(kept)) + hyphenAdvance < boxWidth;
        });
        if (point > 0)
            return firstWord + word.left(point) + u"-\n"_s;
        if (point == -1)
            break; // A word without a point may be split without a hyphen.
    }
    return {};
}

QStringList dictionaryWords()
{
    QFile file(dictionary);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList words;
    file.readLine(); // the number of words
    while (!file.atEnd())
        words.append(QString::fromUtf8(file.readLine()).section(u'/', 0, 0).trimmed());
    return words;
}

} // namespace

class tst_HyphenationWords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void hyphenatesEveryWordAsTheRulesSay();
    void laysEveryWordOutAsTheRulesSay();
};

void tst_HyphenationWords::initTestCase()
{
    if (!QFile::exists(dictionary))
        QSKIP("The Russian dictionary of Hunspell is missing.");
    QVERIFY(isTestFontInstalled());
}

void tst_HyphenationWords::hyphenatesEveryWordAsTheRulesSay()
{
    const QStringList words = dictionaryWords();
    QCOMPARE_GT(words.size(), fewestWords);

    QHash<QChar, double> advances;
    const QFontMetricsF metrics(pixelFont());
    const auto advanceOf = [&](QChar letter) {
        if (!advances.contains(letter))
            advances.insert(letter, metrics.horizontalAdvance(letter));
        return advances.value(letter);
    };

    qsizetype hyphenated = 0;
    const qsizetype step = isRunReduced() ? reducedStep : 1;
    for (qsizetype i = 0; i < words.size(); i += step) {
        const QString word = words.at(i) + u' ';
        const QList<int> points = hyphenationPoints(word);
        for (const int lineWidth : lineWidths) {
            const auto fits = [&](qsizetype kept) {
                const QString part = word.left(kept) + hyphen;
                return std::accumulate(part.begin(), part.end(), 0.0,
                                       [&](double width, QChar c) { return width + advanceOf(c); })
                       < lineWidth;
            };
            const int point = hyphenationPoint(word, fits);
            QVERIFY2(point == lastPointThatFits(points, fits), qPrintable(word));
            hyphenated += point > 0;
        }
    }
    QCOMPARE_GT(hyphenated, words.size() / step);
    qInfo("%lld words at %d widths, hyphenated %lld times",
          qlonglong((words.size() - 1) / step + 1), int(lineWidths.size()), qlonglong(hyphenated));
}

// Each word is laid out at one of the widths.
void tst_HyphenationWords::laysEveryWordOutAsTheRulesSay()
{
    const QString firstWord = u"и "_s;
    TextRenderer renderer;
    renderer.setTextFont(pixelFont());
    renderer.setTextFormat(Qt::PlainText);
    renderer.setMaxLineCount(std::numeric_limits<int>::max());

    const QStringList words = dictionaryWords();
    // The step is no multiple of the number of widths, so that every width is used.
    const qsizetype step = isRunReduced() ? reducedStep + 1 : 1;
    qsizetype hyphenated = 0;
    for (qsizetype i = 0; i < words.size(); i += step) {
        const QString &word = words.at(i);
        const int boxWidth = boxWidths.at(std::size_t(i) % boxWidths.size());
        const QString start = expectedStart(firstWord, word, boxWidth);
        if (word.contains(hyphen) || start.isEmpty())
            continue;

        renderer.setTextWidth(boxWidth);
        renderer.setText(firstWord + word);
        renderer.relayout();
        QVERIFY2(renderer.displayText().startsWith(start), qPrintable(word));
        hyphenated += start.endsWith(u'\n');
    }
    QCOMPARE_GT(hyphenated, words.size() / step / 2);
}

QTEST_MAIN(tst_HyphenationWords)

#include "tst_hyphenation_words.moc"
