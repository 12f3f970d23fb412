#include "support/texts.h"

#include <QStringList>

namespace ovelin::benchmarks {

using namespace Qt::StringLiterals;

namespace {

constexpr int fontPixelSize = 24;

// Sixty words each, at least.
const QString russian =
    u"Документальный фильм рассказывает об экипаже атомного ледокола, который каждую зиму "
    "прокладывает караванам безопасную дорогу через замёрзшие проливы и полярную ночь. "
    "Капитан вспоминает свой первый поход, молодой механик впервые видит северное сияние, а "
    "радист тридцать лет записывает голоса станций, которых давно нет на карте. Съёмочная "
    "группа провела на борту четыре месяца и вернулась с удивительными кадрами о людях, для "
    "которых лёд стал домом, работой и судьбой."_s;
const QString latin =
    u"This documentary accompanies the crew of a nuclear icebreaker that opens a safe passage "
    "for convoys every winter, through frozen straits and the long polar night. The captain "
    "remembers his earliest voyage, a young mechanic discovers northern lights, while the "
    "radio operator has been recording distant voices of abandoned stations for thirty years. "
    "Four months aboard gave us extraordinary pictures."_s;

QStringList words(const QString &text)
{
    return text.split(u' ');
}

// Every other word is of the other script.
QStringList mixedWords()
{
    QStringList mixed = words(russian);
    const QStringList others = words(latin);
    for (qsizetype i = 1; i < std::min(mixed.size(), others.size()); i += 2)
        mixed[i] = others[i];
    return mixed;
}

QStringList sampleWords(Script script)
{
    switch (script) {
    case Script::Russian:
        return words(russian);
    case Script::Latin:
        return words(latin);
    case Script::Mixed:
        return mixedWords();
    }
    return {};
}

} // namespace

const char *name(Script script)
{
    switch (script) {
    case Script::Russian:
        return "Russian";
    case Script::Latin:
        return "Latin";
    case Script::Mixed:
        return "mixed";
    }
    return "";
}

QString description(Script script, int wordCount)
{
    const QStringList sample = sampleWords(script);
    QStringList result;
    for (int i = 0; i < wordCount; ++i)
        result += sample[i % sample.size()];
    return result.join(u' ');
}

QFont pixelFont()
{
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(fontPixelSize);
    return font;
}

} // namespace ovelin::benchmarks
