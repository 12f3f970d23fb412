#include "contenders/textcontenders.h"

#include "contenders/qttext.h"

#ifdef OVELIN_BENCHMARK_PANGO
#  include "contenders/pangotext.h"
#endif

#include <QString>

namespace ovelin::benchmarks {

namespace {

auto makeLineLoop(const TextRenderer &renderer)
{
    return std::make_shared<LineLoop>(renderer.textFont(), renderer.textWidth(),
                                      renderer.maxLineCount());
}

auto makeDocument(const TextRenderer &renderer)
{
    return std::make_shared<Document>(renderer.textFont(), renderer.textWidth());
}

#ifdef OVELIN_BENCHMARK_PANGO
auto makePango(const TextRenderer &renderer)
{
    return std::make_shared<PangoText>(renderer.textFont(), renderer.textWidth(),
                                       renderer.maxLineCount());
}
#endif

} // namespace

std::vector<Contender> textContenders(const TextRenderer &renderer)
{
    const QString text = renderer.text();
    return {
        {floorName, [floor = std::make_shared<StaticTextOf>(renderer)] { floor->prepare(); }},
        {lineLoopName, [text, loop = makeLineLoop(renderer)] { loop->layOut(text); }},
#ifdef OVELIN_BENCHMARK_PANGO
        {pangoName, [utf8 = text.toUtf8(), pango = makePango(renderer)] { pango->layOut(utf8); }},
#endif
        {documentName, [text, document = makeDocument(renderer)] { document->layOut(text); }},
    };
}

std::vector<Contender> textPainters(const TextRenderer &renderer,
                                    const std::shared_ptr<Canvas> &canvas)
{
    const QPoint place = renderer.textTopLeft();
    const auto floor = std::make_shared<StaticTextOf>(renderer);
    floor->prepare();
    const auto loop = makeLineLoop(renderer);
    loop->layOut(renderer.text());
    const auto document = makeDocument(renderer);
    document->layOut(renderer.text());
#ifdef OVELIN_BENCHMARK_PANGO
    const auto pango = makePango(renderer);
    pango->layOut(renderer.text().toUtf8());
#endif
    return {
        {floorName,
         [=, font = renderer.textFont()] {
             canvas->painter.setFont(font);
             canvas->painter.drawStaticText(place, floor->staticText());
         }},
        {lineLoopName, [=] { loop->draw(canvas->painter, place); }},
#ifdef OVELIN_BENCHMARK_PANGO
        {pangoName, [=] { pango->draw(place); }},
#endif
        {documentName, [=] { document->draw(canvas->painter, place); }},
    };
}

} // namespace ovelin::benchmarks
