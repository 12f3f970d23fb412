#include "fuzzing.h"

#include "xmltvreader.h"

#include <QBuffer>

#include <set>

// Any file. Whatever stands in it, the guide that comes of it is one that can be shown, and each problem
// is told on one line.

using namespace tvguide;
using namespace Qt::StringLiterals;

namespace {

QString problemViolation(const QString &line)
{
    for (const QChar c : line) {
        if (!c.isPrint())
            return u"a problem with a control character: "_s + line;
    }
    return {};
}

QString programmesViolation(const Channel &channel)
{
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
        if (channel.id.isEmpty() || channel.name.isEmpty() || channel.number.isEmpty())
            return u"a channel without id, name or number"_s;
        if (!ids.insert(channel.id).second)
            return u"a channel twice"_s;
        if (channel.programmes.empty())
            return u"a channel without programmes"_s;
        const QString violation = programmesViolation(channel);
        if (!violation.isEmpty())
            return violation;
    }
    if (!guide.isEmpty() && !guide.covers(guide.suggestedTime()))
        return u"nothing at the suggested time"_s;
    return {};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    QByteArray file(reinterpret_cast<const char *>(bytes), qsizetype(size));
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    const XmltvResult result = readXmltv(buffer, u"guide.xml"_s, u"ru"_s, [](const QString &line) {
        requireNone(problemViolation(line));
    });
    requireNone(guideViolation(result.guide));
    for (const Channel &channel : result.guide.channels()) {
        for (const Programme &programme : channel.programmes)
            result.guide.clock().iso(programme.start);
    }
    return 0;
}
