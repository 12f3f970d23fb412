// ovelin_instructions RUNS
//
// Runs each work of a list RUNS times. Callgrind writes the instructions of each work with its name.
// instructions.txt describes the works.

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

using Work = std::function<void()>;

template<TextCase textCase>
Work relayout()
{
    return relayoutOf(makeRenderer(textCase));
}

// Some cells of the grid.
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

Work hyphenation()
{
    return hyphenationOf(description(Script::Russian, 60));
}

Work draw()
{
    return [renderer = makeRenderer({Script::Russian, 20, 4}),
            canvas = std::make_shared<Canvas>(QSize(boxWidth, boxHeight))] {
        renderer->draw(canvas->painter);
    };
}

constexpr int usualResourceCount = 1024;

Work registration()
{
    return [scene = std::make_shared<Scene>(usualResourceCount, false)] {
        scene->registerAnother();
        scene->unregisterAnother();
    };
}

Work reregistration()
{
    return [scene = std::make_shared<Scene>(usualResourceCount, false)] { scene->registerLast(); };
}

Work messages()
{
    constexpr int fewResources = 4;
    constexpr int messageCount = 10;
    return [scene = std::make_shared<Scene>(fewResources, true)] {
        for (int i = 0; i < messageCount; ++i)
            scene->registerLast();
    };
}

Work throbberFrame()
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

Work brushMade()
{
    return [] { static_cast<void>(makePanelBrush()); };
}

Work brushFill()
{
    return [brush = makePanelBrush(), canvas = std::make_shared<Canvas>(panel)] {
        canvas->painter.fillRect(canvas->image.rect(), brush);
    };
}

struct NamedWork
{
    const char *name;
    Work (*make)();
};

constexpr NamedWork works[] = {
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

void run(const Work &work, int runs)
{
    for (int i = 0; i < runs; ++i)
        work();
}

void count(const NamedWork &named, int runs)
{
    const Work work = named.make();
    run(work, runsBefore);
    CALLGRIND_ZERO_STATS;
    run(work, runs);
    CALLGRIND_DUMP_STATS_AT(named.name);
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const int runs = argc > 1 ? std::atoi(argv[1]) : 1;
    for (const NamedWork &work : works)
        count(work, runs);
}
