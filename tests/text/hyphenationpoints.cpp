#include "hyphenationpoints.h"

#include <array>
#include <utility>

namespace ovelin::tests {

using namespace Qt::StringLiterals;

namespace {

struct Rule
{
    QString before;
    QString after;
};

const std::array rules{
    Rule{u"xgg"_s, u"x-gg"_s},     Rule{u"xgs"_s, u"x-gs"_s},       Rule{u"xsg"_s, u"x-sg"_s},
    Rule{u"xss"_s, u"x-ss"_s},     Rule{u"ggg"_s, u"g-gg"_s},       Rule{u"ggs"_s, u"g-gs"_s},
    Rule{u"ggx"_s, u"g-gx"_s},     Rule{u"gssg"_s, u"gs-sg"_s},     Rule{u"sgsg"_s, u"sg-sg"_s},
    Rule{u"gsssg"_s, u"gs-ssg"_s}, Rule{u"gssssg"_s, u"gss-ssg"_s},
};

QChar classOf(QChar letter)
{
    if (u"аеёиоуыэюя"_s.contains(letter))
        return u'g';
    if (u"бвгджзклмнпрстфхцчшщ"_s.contains(letter))
        return u's';
    if (u"йьъ"_s.contains(letter))
        return u'x';
    return letter;
}

QString appliedOnce(const Rule &rule, const QString &classes)
{
    QString result;
    for (qsizetype position = 0; position < classes.size();) {
        if (QStringView(classes).sliced(position).startsWith(rule.before)) {
            result += rule.after;
            position += rule.before.size();
        } else {
            result += classes.at(position);
            ++position;
        }
    }
    return result;
}

} // namespace

QList<int> hyphenationPoints(const QString &word)
{
    QString classes;
    const QString lowerCase = word.toLower();
    for (const QChar letter : lowerCase)
        classes += classOf(letter);
    for (const Rule &rule : rules)
        classes = appliedOnce(rule, appliedOnce(rule, classes));

    QList<int> points;
    int letters = 0;
    for (const QChar c : std::as_const(classes)) {
        if (c == u'-')
            points.append(letters);
        else
            ++letters;
    }
    return points;
}

int lastPointThatFits(const QList<int> &points, const std::function<bool(qsizetype point)> &fits)
{
    if (points.isEmpty())
        return -1;
    int point = 0;
    for (const int candidate : points) {
        if (!fits(candidate))
            break;
        point = candidate;
    }
    return point;
}

} // namespace ovelin::tests
