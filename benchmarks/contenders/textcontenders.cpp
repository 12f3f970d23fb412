#include "contenders/textcontenders.h"

#include "contenders/qttext.h"

#ifdef OVELIN_BENCHMARK_PANGO
#  include "contenders/pangotext.h"
#endif

#include <QString>

#include <memory>

namespace ovelin::benchmarks {

namespace {

Contender floorOf(const TextRenderer &renderer)
{
    auto floor = std::make_shared<StaticTextOf>(renderer);
    return {floorName, [floor] { floor->prepare(); }};
}

Contender lineLoop(const TextRenderer &renderer)
{
    auto loop = std::make_shared<LineLoop>(renderer.textFont(), renderer.textWidth(),
                                           renderer.maxLineCount());
    return {lineLoopName, [loop, text = renderer.text()] { loop->layOut(text); }};
}

#ifdef OVELIN_BENCHMARK_PANGO
Contender pango(const TextRenderer &renderer)
{
    auto layout = std::make_shared<PangoText>(renderer.textFont(), renderer.textWidth(),
                                              renderer.maxLineCount());
    return {pangoName, [layout, utf8 = renderer.text().toUtf8()] { layout->layOut(utf8); }};
}
#endif

} // namespace

std::vector<Contender> textContenders(const TextRenderer &renderer)
{
    return {
        floorOf(renderer),
        lineLoop(renderer),
#ifdef OVELIN_BENCHMARK_PANGO
        pango(renderer),
#endif
    };
}

} // namespace ovelin::benchmarks
