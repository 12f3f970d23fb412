#include "support/renderers.h"

#include "text/hyphenation_p.h"

#include <benchmark/benchmark.h>

#include <QFontMetricsF>
#include <QPoint>
#include <QStringList>

#include <vector>

namespace ovelin::benchmarks {

namespace {

QString makeText(const TextCase &textCase)
{
    const auto make = textCase.endless ? endlessWord : description;
    return make(textCase.script, textCase.wordCount);
}

int findWidth(const TextCase &textCase, const TextRenderer &renderer)
{
    if (textCase.width != justWideEnough)
        return textCase.width;
    // A line that is as wide as the box does not fit.
    return TextRenderer::fineTextWidth(renderer.text(), QFontMetricsF(renderer.textFont())) + 1;
}

} // namespace

std::shared_ptr<TextRenderer> makeRenderer(const TextCase &textCase)
{
    auto renderer = std::make_shared<TextRenderer>();
    renderer->setTextFont(pixelFont(textCase.letterSpacing));
    renderer->setMaxLineCount(textCase.maxLineCount);
    renderer->setHyphenationEnabled(textCase.hyphenationEnabled);
    if (textCase.centred) {
        renderer->setTextAlignment(Qt::AlignCenter);
        renderer->setAvailableHeight(boxHeight);
    }
    renderer->setText(makeText(textCase));
    renderer->setTextWidth(findWidth(textCase, *renderer));
    renderer->relayout();
    return renderer;
}

// relayout() does nothing for an unchanged renderer. A changed position makes the layout out of date.
std::function<void()> relayoutOf(const std::shared_ptr<TextRenderer> &renderer)
{
    return [renderer] {
        renderer->setTextTopLeft(QPoint(1, 1) - renderer->textTopLeft());
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
