#include "pictures.h"

#include "recipes/cardlist.h"
#include "recipes/focusedcard.h"
#include "recipes/languages.h"
#include "recipes/ticker.h"

using namespace recipes;

namespace {

constexpr int fontSize = 20;

QStringList titles()
{
    return {"Утренние новости", "Путешествие на воздушном шаре", "Погода", "Ледокол идёт на север",
            "Вечернее кино"};
}

} // namespace

void drawCardList(Canvas &canvas)
{
    constexpr int offset = 130;
    const QRect area(20, 40, 720, 100);
    CardList list(titles(), pictureFont(fontSize));
    list.scrollTo(offset);
    canvas.label({20, 28}, QString("scrollTo(%1)").arg(offset));
    list.paint(canvas.painter(), area);
    canvas.frame(area);
}

void drawFocusedCard(Canvas &canvas)
{
    constexpr QPoint first(130, 105);
    constexpr QPoint step(250, 0);
    const FocusedCard card(Card(titles().at(1), pictureFont(fontSize)));
    for (int i = 0; i < 3; ++i) {
        const double progress = i / 2.0;
        const QPoint centre = first + i * step;
        canvas.label(centre - QPoint(100, 77), QString("progress %1").arg(progress));
        card.paint(canvas.painter(), centre, progress);
    }
}

void drawTicker(Canvas &canvas)
{
    const QRect area(20, 45, 720, 34);
    Ticker ticker("Сегодня в программе: " + titles().join(" • "), pictureFont(fontSize), area);
    ticker.advance(860);
    canvas.label({20, 30}, "advance(2), some 400 times");
    ticker.paint(canvas.painter());
    canvas.frame(area);
}

void drawLanguages(Canvas &canvas)
{
    const auto draw = [&canvas](int left, const QString &label, const QString &language) {
        ovelin::TextRenderer text;
        text.setTextFont(pictureFont(fontSize));
        text.setTextTopLeft({left, 44});
        text.setTextWidth(80);
        text.setMaxLineCount(4);
        setText(text, "two eggs and boxes", language);
        canvas.label({double(left), 30}, label);
        canvas.frame(text.geometry());
        text.draw(canvas.painter());
    };
    draw(20, "as Russian: \"eg-gs\"", "ru");
    draw(280, "as English", "en");
}
