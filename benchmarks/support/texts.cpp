#include "support/texts.h"

#include <QStringList>

namespace ovelin::benchmarks {

using namespace Qt::StringLiterals;

namespace {

constexpr int fontPixelSize = 24;

// Each text has at least 60 words.
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
const QString hebrew =
    u"הסרט התיעודי מלווה את צוותה של שוברת קרח גרעינית, שפותחת בכל חורף דרך בטוחה לשיירות אוניות "
    "בין מצרים קפואים ובלילה קוטבי ארוך. רב החובל נזכר בהפלגתו הראשונה, מכונאית צעירה רואה "
    "לראשונה את זוהר הצפון, ואלחוטאי ותיק מקליט כבר שלושים שנה קולות של תחנות שמזמן אינן על "
    "המפה. צוות הצילום שהה על הסיפון ארבעה חודשים וחזר עם תמונות נדירות של אנשים שהקרח הפך להם "
    "לבית, לעבודה ולגורל."_s;
const QString arabic =
    u"يرافق هذا الفيلم الوثائقي طاقم كاسحة جليد نووية تفتح كل شتاء طريقا آمنا لقوافل السفن عبر "
    "مضائق متجمدة وليل قطبي طويل. يتذكر القبطان رحلته الأولى، وترى مهندسة شابة أضواء الشمال للمرة "
    "الأولى، بينما يسجل عامل اللاسلكي منذ ثلاثين عاما أصوات محطات اختفت عن الخريطة منذ زمن بعيد. "
    "أمضى فريق التصوير أربعة أشهر على متنها وعاد بصور مدهشة لأناس صار الجليد لهم بيتا وعملا "
    "ومصيرا."_s;
// Chinese is written without spaces. These spaces only separate the words here.
const QString chinese =
    u"这部 纪录片 讲述 一艘 核动力 破冰船 的 船员， 他们 每年 冬天 穿过 冰封 的 海峡 和 漫长 的 "
    "极夜， 为 船队 开辟 安全 的 航道。 船长 回忆 起 自己 的 第一次 远航， 年轻 的 机械师 初次 "
    "看见 北极光， 而 无线电 报务员 三十年来 一直 记录 着 那些 早已 从 地图 上 消失 的 电台 的 "
    "声音。 摄制组 在 船上 度过 了 四个月， 带回 了 令人 惊叹 的 画面， 画面 里 的 人们 把 冰 "
    "当作 家园、 工作 和 命运。"_s;

QStringList words(const QString &text)
{
    return text.split(u' ');
}

// Russian and English words in turns.
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
    case Script::Hebrew:
        return words(hebrew);
    case Script::Arabic:
        return words(arabic);
    case Script::Chinese:
        return words(chinese);
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
    case Script::Hebrew:
        return "Hebrew";
    case Script::Arabic:
        return "Arabic";
    case Script::Chinese:
        return "Chinese";
    }
    return "";
}

QString description(Script script, int wordCount)
{
    const QStringList sample = sampleWords(script);
    QStringList result;
    for (int i = 0; i < wordCount; ++i)
        result += sample[i % sample.size()];
    return result.join(script == Script::Chinese ? u""_s : u" "_s);
}

QString endlessWord(Script script, int wordCount)
{
    QString word = description(script, wordCount);
    return word.removeIf([](QChar character) { return !character.isLetter(); });
}

QFont pixelFont(double letterSpacing)
{
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(fontPixelSize);
    if (letterSpacing != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
    return font;
}

} // namespace ovelin::benchmarks
