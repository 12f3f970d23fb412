#include "support/renderers.h"

#include "text/hyphenation_p.h"

#include <benchmark/benchmark.h>

#include <QFontMetricsF>
#include <QStringList>

#include <vector>

namespace ovelin::benchmarks {

std::shared_ptr<TextRenderer> makeRenderer(const TextCase &textCase)
{
    auto renderer = std::make_shared<TextRenderer>();
    renderer->setTextFont(pixelFont());
    renderer->setTextWidth(boxWidth);
    renderer->setMaxLineCount(textCase.maxLineCount);
    renderer->setHyphenationEnabled(textCase.hyphenationEnabled);
    if (textCase.centred) {
        renderer->setTextAlignment(Qt::AlignCenter);
        renderer->setAvailableHeight(boxHeight);
    }
    renderer->setText(description(textCase.script, textCase.wordCount));
    renderer->relayout();
    return renderer;
}

// Setting the width of a text that takes several lines makes its layout out of date, even if it
// stays.
std::function<void()> relayoutOf(const std::shared_ptr<TextRenderer> &renderer)
{
    renderer->setTextWidth(boxWidth);
    if (!renderer->isNeedRelayout())
        qFatal("A text that is to be laid out again fits on one line.");
    return [renderer] {
        renderer->setTextWidth(boxWidth);
        renderer->relayout();
    };
}

std::function<void()> hyphenationOf(const QString &text)
{
    struct Word
    {
        QString text; // with its separator
        double room;
    };
    const QFontMetricsF metrics(pixelFont());
    std::vector<Word> words;
    const QStringList texts = text.split(u' ');
    for (const QString &word : texts)
        words.push_back({word + u' ', metrics.horizontalAdvance(word) / 2});

    return [words = std::move(words), metrics] {
        for (const auto &[word, room] : words)
            benchmark::DoNotOptimize(hyphenationPoint(word, word, 0, room, metrics));
    };
}

} // namespace ovelin::benchmarks
