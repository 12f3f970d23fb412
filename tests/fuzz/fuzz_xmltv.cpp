#include "fuzzing.h"

#include "tvguide/guideinvariants.h"
#include "xmltvreader.h"

#include <QBuffer>
#include <QXmlStreamWriter>

#include <array>

// Any file, and guides of any elements. Whatever stands in it, the guide that comes of it is one that can
// be shown, and each problem is told on one line. Bytes that begin as a file does are the file; others say
// how one is written.

using namespace tvguide;
using namespace tvguide::tests;
using namespace Qt::StringLiterals;

namespace {

constexpr int mostCalls = 200;
constexpr std::size_t longestText = 40;

struct Element
{
    QLatin1StringView name;
    std::array<QLatin1StringView, 3> attributes; // null where there are fewer
};

constexpr Element elements[] = {
    {"channel"_L1, {"id"_L1}},    {"programme"_L1, {"channel"_L1, "start"_L1, "stop"_L1}},
    {"title"_L1, {"lang"_L1}},    {"desc"_L1, {"lang"_L1}},
    {"category"_L1, {"lang"_L1}}, {"display-name"_L1, {"lang"_L1}},
    {"icon"_L1, {"src"_L1}},      {"tv"_L1, {}},
    {"credits"_L1, {}},
};

QString anyText(FuzzedDataProvider &data)
{
    return QString::fromStdString(data.ConsumeRandomLengthString(longestText));
}

// In an evening, as a rule: programmes meet there.
QString anyTime(FuzzedDataProvider &data)
{
    const auto twoDigits = [&](int highest) {
        return u"%1"_s.arg(data.ConsumeIntegralInRange(0, highest), 2, 10, QChar(u'0'));
    };
    const QString offset =
        data.PickValueInArray({u""_s, u" +0300"_s, u" -0930"_s, u" UTC"_s, u" +2400"_s});
    const QString day = data.PickValueInArray(
        {u"20250314"_s, u"20250315"_s, u"00010101"_s, u"99991231"_s, u"20250230"_s});
    return day + twoDigits(24) + twoDigits(60) + twoDigits(60) + offset;
}

QString anyValue(QLatin1StringView attribute, FuzzedDataProvider &data)
{
    if (data.ConsumeIntegralInRange(0, 7) == 0)
        return anyText(data);
    if (attribute == "start"_L1 || attribute == "stop"_L1)
        return anyTime(data);
    if (attribute == "lang"_L1)
        return data.PickValueInArray({u"ru"_s, u"ru_RU"_s, u"en-GB"_s, u""_s});
    if (attribute == "src"_L1)
        return data.PickValueInArray({u"logo.png"_s, u":/logo.png"_s, u"http://a/b"_s, u"//"_s});
    return data.PickValueInArray({u"a"_s, u"b"_s, u" a "_s, u""_s});
}

void startElement(QXmlStreamWriter &writer, FuzzedDataProvider &data)
{
    const Element &element = data.PickValueInArray(elements);
    writer.writeStartElement(element.name);
    for (const QLatin1StringView attribute : element.attributes) {
        if (!attribute.isNull() && data.ConsumeIntegralInRange(0, 7) > 0)
            writer.writeAttribute(attribute, anyValue(attribute, data));
    }
}

void write(QXmlStreamWriter &writer, FuzzedDataProvider &data)
{
    switch (data.ConsumeIntegralInRange(0, 9)) {
    case 0:
        writer.writeComment(anyText(data));
        break;
    case 1:
        writer.writeCDATA(anyText(data));
        break;
    case 2:
        writer.writeEntityReference(data.PickValueInArray({u"a"_s, u"amp"_s, u"#x41"_s, u"b"_s}));
        break;
    case 3:
        writer.device()->write(anyText(data).toUtf8()); // into a tag that is not closed yet, too
        break;
    case 4:
    case 5:
        writer.writeCharacters(anyText(data));
        break;
    case 6:
    case 7:
        writer.writeEndElement();
        break;
    default:
        startElement(writer, data);
    }
}

QByteArray writtenFile(FuzzedDataProvider &data)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter writer(&buffer);
    writer.writeStartDocument();
    writer.writeDTD(u"<!DOCTYPE tv [<!ENTITY a \"&#x43a;\"><!ENTITY b \"&a;&a;\">]>"_s);
    writer.writeStartElement("tv"_L1);
    for (int calls = 0; calls < mostCalls && data.remaining_bytes() > 0; ++calls)
        write(writer, data);
    writer.writeEndDocument();
    return buffer.data();
}

QByteArray anyFile(const uint8_t *bytes, size_t size)
{
    if (size > 0 && bytes[0] == '<')
        return {reinterpret_cast<const char *>(bytes), qsizetype(size)};
    FuzzedDataProvider data(bytes, size);
    return writtenFile(data);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    QByteArray file = anyFile(bytes, size);
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    int problems = 0;
    const XmltvResult result =
        readXmltv(buffer, u"guide.xml"_s, u"ru"_s, [&problems](const QString &line) {
            ++problems;
            requireNone(problemViolation(line));
        });
    requireNone(resultViolation(result, problems));
    for (const Channel &channel : result.guide.channels()) {
        for (const Programme &programme : channel.programmes)
            result.guide.clock().iso(programme.start);
    }
    return 0;
}
