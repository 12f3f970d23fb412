#include "subsystems.h"

#include "contenders/qttext.h"
#include "contenders/textcontenders.h"
#include "support/canvas.h"
#include "support/comparison.h"
#include "support/renderers.h"
#include "support/texts.h"

#include <ovelin/textrenderer.h>

#include <benchmark/benchmark.h>

#include <QFontMetricsF>
#include <QPainter>
#include <QPen>
#include <QString>

#include <memory>
#include <string>

namespace ovelin::benchmarks {

namespace {

std::string sizeName(const TextCase &textCase)
{
    return std::to_string(textCase.wordCount) + " words in " + std::to_string(textCase.maxLineCount)
           + " lines";
}

std::string caseName(const TextCase &textCase)
{
    return std::string(name(textCase.script)) + ", " + sizeName(textCase)
           + (textCase.hyphenationEnabled ? "" : ", no hyphens")
           + (textCase.centred ? ", centred" : "");
}

constexpr TextCase usualCase{.script = Script::Russian, .wordCount = 20, .maxLineCount = 4};

// A long text should cost as much as a text of this many words with the same line limit.
constexpr int fewWords = 60;

Contender relayoutOfFewWords(TextCase textCase)
{
    textCase.wordCount = fewWords;
    return {"the same with 60 words", relayoutOf(makeRenderer(textCase))};
}

Comparison compareRelayout(const TextCase &textCase)
{
    const auto renderer = makeRenderer(textCase);
    Comparison comparison{relayoutOf(renderer), textContenders(*renderer)};
    if (textCase.wordCount > fewWords)
        comparison.contenders.push_back(relayoutOfFewWords(textCase));
    return comparison;
}

void registerRelayout(const TextCase &textCase)
{
    compare("relayout: " + caseName(textCase), [=] { return compareRelayout(textCase); });
}

constexpr QPoint awayFromOrigin(100, 50);

std::shared_ptr<Canvas> makeCanvas()
{
    return std::make_shared<Canvas>(
        QSize(awayFromOrigin.x() + boxWidth, awayFromOrigin.y() + boxHeight));
}

Contender drawnByPainter(const TextRenderer &renderer)
{
    return {"QPainter::drawText with word wrap",
            [text = renderer.text(), font = renderer.textFont(), canvas = makeCanvas()] {
                canvas->painter.setFont(font);
                canvas->painter.drawText(QRect(0, 0, boxWidth, boxHeight), Qt::TextWordWrap, text);
            }};
}

Comparison compareDraw()
{
    const auto renderer = makeRenderer(usualCase);
    const auto bare = std::make_shared<StaticTextOf>(*renderer);
    bare->prepare();
    return {[renderer, canvas = makeCanvas()] { renderer->draw(canvas->painter); },
            {{"setFont and drawStaticText",
              [bare, font = renderer->textFont(), canvas = makeCanvas()] {
                  canvas->painter.setFont(font);
                  canvas->painter.drawStaticText(QPointF(), bare->staticText());
              }},
             drawnByPainter(*renderer)}};
}

// drawTextRenderer() translates the painter by the negative position of the text. The translation before each
// call makes up for that.
Comparison compareDrawTextRenderer()
{
    const auto renderer = makeRenderer(usualCase);
    renderer->move(awayFromOrigin);
    const auto bare = std::make_shared<StaticTextOf>(*renderer);
    bare->prepare();
    const QPen pen(Qt::white);
    return {[=, canvas = makeCanvas()] {
                canvas->painter.translate(awayFromOrigin);
                drawTextRenderer(canvas->painter, *renderer, pen);
            },
            {{"the same painter calls", [=, font = renderer->textFont(), canvas = makeCanvas()] {
                  canvas->painter.translate(awayFromOrigin);
                  canvas->painter.setPen(pen);
                  canvas->painter.setBrush(Qt::NoBrush);
                  canvas->painter.translate(-awayFromOrigin);
                  canvas->painter.setFont(font);
                  canvas->painter.drawStaticText(awayFromOrigin, bare->staticText());
              }}}};
}

void setEqualValues(TextRenderer &renderer)
{
    renderer.setText(renderer.text());
    renderer.setTextFont(renderer.textFont());
    renderer.setTextFormat(renderer.textFormat());
    renderer.setTextAlignment(renderer.textAlignment());
    renderer.setMaxTextWidth(renderer.maxTextWidth());
    renderer.setMaxLineCount(renderer.maxLineCount());
    renderer.setHyphenationEnabled(renderer.hyphenationEnabled());
    renderer.setTextTopLeft(renderer.textTopLeft());
    renderer.relayout();
}

// Both widths have room for the whole text.
void changeSpareWidth(TextRenderer &renderer)
{
    const bool wide = renderer.textWidth() > boxWidth;
    renderer.setTextWidth(wide ? boxWidth : 2 * boxWidth);
    renderer.relayout();
}

void moveAway(TextRenderer &renderer)
{
    renderer.move(renderer.textTopLeft() + QPoint(1, 1));
    renderer.relayout();
}

void registerSetters()
{
    constexpr TextCase shortCase{.script = Script::Russian, .wordCount = 2, .maxLineCount = 2};
    const auto countIn = [](const std::string &name, const TextCase &textCase, auto *change) {
        countShaping("setters: " + name, [=] {
            return [change, renderer = makeRenderer(textCase)] { change(*renderer); };
        });
    };
    countIn("equal values", usualCase, setEqualValues);
    countIn("setTextWidth that keeps the layout", shortCase, changeSpareWidth);
    countIn("move", usualCase, moveAway);
    // A count above 0 shows that calls are counted.
    countShaping("relayout: " + caseName(usualCase) + ", calls",
                 [] { return relayoutOf(makeRenderer(usualCase)); });
}

Comparison compareHyphenation()
{
    const QString text = description(Script::Russian, 60);
    const QFontMetricsF metrics(pixelFont());
    return {hyphenationOf(text),
            {{"measuring the words", [words = text.split(u' '), metrics] {
                  for (const QString &word : words)
                      benchmark::DoNotOptimize(metrics.horizontalAdvance(word));
              }}}};
}

} // namespace

void registerText()
{
    struct Size
    {
        int wordCount;
        int maxLineCount;
    };
    constexpr Size sizes[] = {{6, 2}, {20, 4}, {60, 4}, {60, 100}, {2000, 4}, {20000, 4}};
    for (const Script script : {Script::Russian, Script::Latin, Script::Mixed}) {
        for (const auto &[wordCount, maxLineCount] : sizes) {
            for (const bool hyphenationEnabled : {true, false})
                registerRelayout({script, wordCount, maxLineCount, hyphenationEnabled});
        }
    }
    registerRelayout(
        {.script = Script::Russian, .wordCount = 20, .maxLineCount = 4, .centred = true});
    registerRelayout(
        {.script = Script::Russian, .wordCount = 60, .maxLineCount = 100, .centred = true});

    compare("draw", compareDraw);
    compare("drawTextRenderer", compareDrawTextRenderer);
    registerSetters();
    compare("hyphenationPoint: 60 Russian words", compareHyphenation);
}

} // namespace ovelin::benchmarks
