#include "contenders/qttext.h"
#include "support/comparison.h"
#include "support/texts.h"

#ifdef OVELIN_BENCHMARK_PANGO
#include "contenders/pangotext.h"
#endif

#include <ovelin/textrenderer.h>

#include <QFontInfo>
#include <QString>

#include <memory>
#include <string>

namespace ovelin::benchmarks {

namespace {

constexpr int boxWidth = 400;
constexpr int boxHeight = 200;

struct TextCase
{
    Script script;
    int wordCount;
    int maxLineCount;
    bool hyphenationEnabled = true;
    bool centred = false;
};

std::string sizeName(const TextCase &textCase)
{
    return std::to_string(textCase.wordCount) + " words in "
        + std::to_string(textCase.maxLineCount) + " lines";
}

std::string caseName(const TextCase &textCase)
{
    return std::string(name(textCase.script)) + ", " + sizeName(textCase)
        + (textCase.hyphenationEnabled ? "" : ", no hyphens") + (textCase.centred ? ", centred" : "");
}

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

// Setting the width of a text that takes several lines makes its layout out of date, even if it stays.
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

Contender floorOf(const TextRenderer &renderer)
{
    auto floor = std::make_shared<StaticTextOf>(renderer);
    return {"QStaticText alone (floor)", [floor] { floor->prepare(); }};
}

Contender lineLoop(const QString &text, int maxLineCount)
{
    auto loop = std::make_shared<LineLoop>(pixelFont(), boxWidth, maxLineCount);
    return {"QTextLayout loop", [loop, text] { loop->layOut(text); }};
}

Contender document(const QString &text)
{
    auto document = std::make_shared<Document>(pixelFont(), boxWidth);
    return {"QTextDocument", [document, text] { document->layOut(text); }};
}

#ifdef OVELIN_BENCHMARK_PANGO
Contender pango(const QString &text, int maxLineCount)
{
    const QFont font = pixelFont();
    auto layout = std::make_shared<PangoText>(font.family().toUtf8().constData(), font.pixelSize(),
                                              boxWidth, maxLineCount);
    return {"Pango", [layout, utf8 = text.toUtf8()] { layout->layOut(utf8); }};
}
#endif

Comparison compareRelayout(const TextCase &textCase)
{
    const auto renderer = makeRenderer(textCase);
    const QString text = renderer->text();
    Comparison comparison;
    comparison.contenders = {
        floorOf(*renderer),
        lineLoop(text, textCase.maxLineCount),
        document(text),
#ifdef OVELIN_BENCHMARK_PANGO
        pango(text, textCase.maxLineCount),
#endif
    };
    comparison.work = relayoutOf(renderer);
    return comparison;
}

void registerRelayout(const TextCase &textCase)
{
    compare("relayout: " + caseName(textCase), [=] { return compareRelayout(textCase); });
}

void registerLongRelayout(const TextCase &longCase, const TextCase &shortCase)
{
    compare("relayout: " + caseName(longCase) + " against fewer words", [=] {
        return Comparison{relayoutOf(makeRenderer(longCase)),
                          {{sizeName(shortCase), relayoutOf(makeRenderer(shortCase))}}};
    });
}

[[maybe_unused]] const bool registered = [] {
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
    registerRelayout({.script = Script::Russian, .wordCount = 20, .maxLineCount = 4, .centred = true});
    registerRelayout({.script = Script::Russian, .wordCount = 60, .maxLineCount = 100, .centred = true});
    registerLongRelayout({Script::Russian, 20000, 4}, {Script::Russian, 60, 4});
    return true;
}();

} // namespace

} // namespace ovelin::benchmarks
