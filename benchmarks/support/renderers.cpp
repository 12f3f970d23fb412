#include "support/renderers.h"

#include "text/hyphenation_p.h"

#include <benchmark/benchmark.h>

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
    const QStringList parts = text.split(u' ');
    QStringList words;
    for (const QString &word : parts)
        words.append(word + u' ');

    return [words] {
        for (const QString &word : words) {
            const auto isFirstHalf = [&word](qsizetype kept) { return kept <= word.size() / 2; };
            benchmark::DoNotOptimize(hyphenationPoint(word, isFirstHalf));
        }
    };
}

} // namespace ovelin::benchmarks
