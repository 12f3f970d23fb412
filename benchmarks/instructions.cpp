// ovelin_instructions RUNS
//
// Runs each operation below RUNS times. Callgrind runs this program and writes, for each operation, its name
// and the number of its instructions. instructions.txt describes the operations.

#include "support/canvas.h"
#include "support/renderers.h"
#include "support/scene.h"

#include <ovelin/brushes.h>
#include <ovelin/throbberrenderer.h>

#include <valgrind/callgrind.h>

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>

#include <cstdlib>
#include <functional>
#include <memory>

using namespace ovelin;
using namespace ovelin::benchmarks;

namespace {

using Operation = std::function<void()>;

template<TextCase textCase>
Operation relayout()
{
    return relayoutOf(makeRenderer(textCase));
}

// Some cells of the grid in support/textgrid.h.
constexpr TextCase tickerRussian{
    .script = Script::Russian, .wordCount = 200, .maxLineCount = 1, .width = justWideEnough};
constexpr TextCase cutTickerArabic{
    .script = Script::Arabic, .wordCount = 200, .maxLineCount = 1, .width = screenWidth};
constexpr TextCase linesHebrew{.script = Script::Hebrew, .wordCount = 200, .maxLineCount = 4};
constexpr TextCase linesChinese{.script = Script::Chinese, .wordCount = 200, .maxLineCount = 4};
constexpr TextCase linesSpaced{
    .script = Script::Russian, .wordCount = 200, .maxLineCount = 4, .letterSpacing = -0.5};
constexpr TextCase linesEndless{
    .script = Script::Russian, .wordCount = 2000, .maxLineCount = 4, .endless = true};

Operation hyphenation()
{
    return hyphenationOf(description(Script::Russian, 60));
}

Operation draw()
{
    return [renderer = makeRenderer({Script::Russian, 20, 4}),
            canvas = std::make_shared<Canvas>(QSize(boxWidth, boxHeight))] {
        renderer->draw(canvas->painter);
    };
}

constexpr int usualResourceCount = 1024;

Operation registration()
{
    return [scene = std::make_shared<Scene>(usualResourceCount, false)] {
        scene->registerAnother();
        scene->unregisterAnother();
    };
}

Operation reregistration()
{
    return [scene = std::make_shared<Scene>(usualResourceCount, false)] { scene->registerLast(); };
}

Operation messages()
{
    constexpr int fewResources = 4;
    constexpr int messageCount = 10;
    return [scene = std::make_shared<Scene>(fewResources, true)] {
        for (int i = 0; i < messageCount; ++i)
            scene->registerLast();
    };
}

Operation throbberFrame()
{
    constexpr int side = 160;
    auto throbber = std::make_shared<ThrobberRenderer>();
    throbber->setRenderRect({0, 0, side, side});
    throbber->addAngles(120, 180);
    auto canvas = std::make_shared<Canvas>(QSize(side, side));
    canvas->painter.setRenderHint(QPainter::Antialiasing);
    return [throbber, canvas] {
        throbber->addAngles(0, 0);
        throbber->draw(canvas->painter);
    };
}

constexpr QSize panel(300, 60);

QBrush makePanelBrush()
{
    const int length = chooseGradientLength(panel.width());
    QLinearGradient gradient(0, 0, length, 0);
    gradient.setColorAt(0, Qt::black);
    gradient.setColorAt(1, Qt::darkBlue);
    return createTexturedBrush(length, gradient);
}

Operation brushMade()
{
    return [] { static_cast<void>(makePanelBrush()); };
}

Operation brushFill()
{
    return [brush = makePanelBrush(), canvas = std::make_shared<Canvas>(panel)] {
        canvas->painter.fillRect(canvas->image.rect(), brush);
    };
}

struct NamedOperation
{
    const char *name;
    Operation (*make)();
};

constexpr NamedOperation operations[] = {
    {"relayout-6-2", relayout<TextCase{Script::Russian, 6, 2}>},
    {"relayout-20-4", relayout<TextCase{Script::Russian, 20, 4}>},
    {"relayout-20-4-no-hyphens", relayout<TextCase{Script::Russian, 20, 4, false}>},
    {"relayout-20-4-latin", relayout<TextCase{Script::Latin, 20, 4}>},
    {"relayout-60-100", relayout<TextCase{Script::Russian, 60, 100}>},
    {"relayout-20000-4", relayout<TextCase{Script::Russian, 20000, 4}>},
    {"relayout-200-1-ticker", relayout<tickerRussian>},
    {"relayout-200-1-arabic", relayout<cutTickerArabic>},
    {"relayout-200-4-hebrew", relayout<linesHebrew>},
    {"relayout-200-4-chinese", relayout<linesChinese>},
    {"relayout-200-4-spaced", relayout<linesSpaced>},
    {"relayout-2000-4-endless", relayout<linesEndless>},
    {"hyphenation", hyphenation},
    {"draw", draw},
    {"registration", registration},
    {"re-registration", reregistration},
    {"messages", messages},
    {"throbber-frame", throbberFrame},
    {"brush-made", brushMade},
    {"brush-fill", brushFill},
};

// The first runs fill caches and bind functions, so they are not counted.
constexpr int runsBefore = 3;

void run(const Operation &operation, int runs)
{
    for (int i = 0; i < runs; ++i)
        operation();
}

void count(const NamedOperation &named, int runs)
{
    const Operation operation = named.make();
    run(operation, runsBefore);
    CALLGRIND_ZERO_STATS;
    run(operation, runs);
    CALLGRIND_DUMP_STATS_AT(named.name);
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const int runs = argc > 1 ? std::atoi(argv[1]) : 1;
    for (const NamedOperation &operation : operations)
        count(operation, runs);
}
