#include "subsystems.h"

#include "contenders/textcontenders.h"
#include "support/canvas.h"
#include "support/comparison.h"
#include "support/renderers.h"
#include "support/texts.h"

#include <ovelin/textrenderer.h>

#include <QSize>
#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ovelin::benchmarks {

namespace {

constexpr QSize screen(1280, 720);

struct ShownText
{
    const char *text;
    int pixelSize;
    QPoint place;
    int width;
    int maxLineCount;
};

// The heading, the details, and the names of channels and programmes in docs/images/tvguide.png.
constexpr ShownText screenful[] = {
    {"Программа передач", 24, {48, 34}, 720, 1},
    {"Электростанция на краю света", 32, {421, 96}, 777, 1},
    {"Вечерняя площадь · 20:00–21:15 · 1 ч 15 мин · Фильм", 20, {421, 140}, 777, 1},
    {"Молодая изобретательница приезжает на полузаброшенную гидроэлектростанцию, чтобы "
     "законсервировать её навсегда. Но единственный сторож, немногословный радиолюбитель, "
     "показывает ей неотправленные телеграммы, и размеренная командировка превращается в "
     "расследование. Чем ближе развязка, тем яснее, что станция молчит не случайно.",
     20,
     {421, 198},
     777,
     4},
    {"Вечерняя площадь", 17, {145, 356}, 111, 2},
    {"Восьмой меридиан", 17, {145, 426}, 111, 2},
    {"Дальний луч", 17, {145, 496}, 111, 2},
    {"Секундомер", 17, {145, 566}, 111, 2},
    {"Голубая сойка", 17, {145, 636}, 111, 2},
    {"Электростанция на краю света", 18, {280, 356}, 376, 2},
    {"Знаки вопросительные и восклицательные", 18, {780, 356}, 220, 2},
    {"Известия в десять", 18, {1080, 356}, 104, 2},
    {"Сводка событий. Вечер", 18, {280, 426}, 128, 2},
    {"Документальное расследование", 18, {480, 426}, 320, 2},
    {"Разговор у карты", 18, {880, 426}, 120, 2},
    {"Обозреватели за круглым столом", 18, {1080, 426}, 92, 2},
    {"Вдвоём на аэростате", 18, {280, 496}, 116, 2},
    {"Неизвестный адресат", 18, {480, 496}, 640, 2},
    {"Хоккей. «Полярные совы» – «Бобры»", 18, {280, 566}, 290, 2},
    {"Спортивное обозрение", 18, {680, 566}, 120, 2},
    {"Фигурное катание. Показательные выступления", 18, {880, 566}, 270, 2},
    {"Приключения лунного зайца", 18, {280, 636}, 90, 2},
    {"Рисуем небывальщину", 18, {413, 636}, 180, 2},
    {"Колыбельная для медвежонка", 18, {680, 636}, 60, 2},
    {"Мультипликационный фестиваль", 18, {780, 636}, 360, 2},
};

using Renderers = std::vector<std::shared_ptr<TextRenderer>>;

Renderers makeRenderers()
{
    Renderers renderers;
    for (const ShownText &shown : screenful) {
        auto renderer = std::make_shared<TextRenderer>();
        QFont font = pixelFont();
        font.setPixelSize(shown.pixelSize);
        renderer->setTextFont(font);
        renderer->setTextTopLeft(shown.place);
        renderer->setTextWidth(shown.width);
        renderer->setMaxLineCount(shown.maxLineCount);
        renderer->setText(QString::fromUtf8(shown.text));
        renderer->relayout();
        renderers.push_back(std::move(renderer));
    }
    return renderers;
}

std::string recordKey(const char *operation)
{
    qsizetype wordCount = 0;
    for (const ShownText &shown : screenful)
        wordCount += QString::fromUtf8(shown.text).count(u' ') + 1;
    return std::string("Russian,") + operation + "," + std::to_string(wordCount);
}

std::function<void()> allOf(std::vector<std::function<void()>> actions)
{
    return [actions = std::move(actions)] {
        for (const auto &action : actions)
            action();
    };
}

// Returns one contender for each name: it runs the contenders of this name for all texts.
template<typename MakeContenders>
std::vector<Contender> contendersFor(const Renderers &renderers,
                                     const MakeContenders &makeContenders)
{
    std::map<std::string, std::vector<std::function<void()>>> actions;
    for (const auto &renderer : renderers) {
        for (const Contender &contender : makeContenders(*renderer))
            actions[contender.name].push_back(contender.run);
    }
    std::vector<Contender> contenders;
    contenders.reserve(actions.size());
    for (const auto &[name, runs] : actions)
        contenders.push_back({name, allOf(runs)});
    return contenders;
}

Comparison compareLayout()
{
    const Renderers renderers = makeRenderers();
    std::vector<std::function<void()>> relayouts;
    for (const auto &renderer : renderers)
        relayouts.push_back(relayoutOf(renderer));
    return {.operation = allOf(std::move(relayouts)),
            .contenders = contendersFor(renderers, textContenders),
            .recordedAs = recordKey("a screenful laid out")};
}

Comparison comparePainting()
{
    const Renderers renderers = makeRenderers();
    const auto canvas = std::make_shared<Canvas>(screen);
    const auto painters = [canvas](const TextRenderer &renderer) {
        return textPainters(renderer, canvas);
    };
    return {.operation =
                [renderers, canvas] {
                    for (const auto &renderer : renderers)
                        renderer->draw(canvas->painter);
                },
            .contenders = contendersFor(renderers, painters),
            .recordedAs = recordKey("a screenful painted")};
}

} // namespace

void registerScreenful()
{
    compareOnce("screenful: layout", compareLayout);
    compareOnce("screenful: painting", comparePainting);
}

} // namespace ovelin::benchmarks
