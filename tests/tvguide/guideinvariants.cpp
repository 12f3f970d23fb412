#include "guideinvariants.h"

#include <set>

namespace tvguide::tests {

using namespace Qt::StringLiterals;

QString problemViolation(const QString &line)
{
    for (const QChar c : line) {
        if (!c.isPrint())
            return u"a problem with a control character: "_s + line;
    }
    return {};
}

QString channelViolation(const Channel &channel)
{
    if (channel.id.isEmpty() || channel.name.isEmpty() || channel.number.isEmpty())
        return u"a channel without id, name or number"_s;
    if (channel.programmes.empty())
        return u"a channel without programmes"_s;
    const Programme *before = nullptr;
    for (const Programme &programme : channel.programmes) {
        if (programme.stop <= programme.start)
            return u"a programme that ends before it begins"_s;
        if (before && programme.start < before->stop)
            return u"programmes at the same time"_s;
        before = &programme;
    }
    return {};
}

QString guideViolation(const Guide &guide)
{
    std::set<QString> ids;
    for (const Channel &channel : guide.channels()) {
        const QString violation = channelViolation(channel);
        if (!violation.isEmpty())
            return violation;
        if (!ids.insert(channel.id).second)
            return u"a channel twice"_s;
    }
    if (!guide.isEmpty() && !guide.covers(guide.suggestedTime()))
        return u"nothing at the suggested time"_s;
    return {};
}

QString resultViolation(const XmltvResult &result, int problems)
{
    const int ofTheFile = problems - result.skippedEntries;
    if (ofTheFile < 0 || ofTheFile > 1)
        return u"%1 problems with %2 entries left out"_s.arg(problems).arg(result.skippedEntries);
    return guideViolation(result.guide);
}

} // namespace tvguide::tests
