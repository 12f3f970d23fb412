#include "fuzzing.h"

#include "tvguide/guideinvariants.h"
#include "xmltvreader.h"

#include <QBuffer>
#include <QXmlStreamWriter>

#include <algorithm>
#include <iterator>
#include <vector>

// Reads any file. The resulting guide must be one that the screen can show, and each message must be one
// line. If the input begins with a zero byte, the other bytes choose the calls that write a file. Any other
// input is the file itself.

using namespace tvguide;
using namespace tvguide::tests;
using namespace Qt::StringLiterals;

namespace {

constexpr int mostCalls = 200;
constexpr std::size_t longestText = 40;

struct Element
{
    QLatin1StringView name;
    QList<QLatin1StringView> attributes;
    QList<QLatin1StringView> children;
};

const Element elements[] = {
    {"tv"_L1, {}, {"channel"_L1, "programme"_L1}},
    {"channel"_L1, {"id"_L1}, {"display-name"_L1, "icon"_L1}},
    {"programme"_L1,
     {"channel"_L1, "start"_L1, "stop"_L1, "clumpidx"_L1},
     {"title"_L1, "desc"_L1, "category"_L1, "icon"_L1, "sub-title"_L1, "episode-num"_L1,
      "premiere"_L1, "new"_L1, "rating"_L1}},
    {"display-name"_L1, {"lang"_L1}, {}},
    {"title"_L1, {"lang"_L1}, {}},
    {"desc"_L1, {"lang"_L1}, {"title"_L1}},
    {"category"_L1, {"lang"_L1}, {}},
    {"icon"_L1, {"src"_L1}, {}},
    {"sub-title"_L1, {"lang"_L1}, {}},
    {"episode-num"_L1, {"system"_L1}, {}},
    {"premiere"_L1, {"lang"_L1}, {}},
    {"new"_L1, {}, {}},
    {"rating"_L1, {"system"_L1}, {"value"_L1}},
    {"value"_L1, {}, {}},
};

// True in one of eight cases.
bool isOdd(FuzzedDataProvider &data)
{
    return data.ConsumeIntegralInRange(0, 7) == 0;
}

QString anyText(FuzzedDataProvider &data)
{
    return QString::fromStdString(data.ConsumeRandomLengthString(longestText));
}

// Returns mostly times of one evening, so that programmes overlap.
QString anyTime(FuzzedDataProvider &data)
{
    if (isOdd(data)) {
        return data.PickValueInArray({u"20250230190000"_s, u"00010101000000"_s,
                                      u"99991231235959 -2359"_s, u"20250314"_s, u"2025031419 UTC"_s,
                                      u"20250314196000"_s, u"20250314190060 +2400"_s});
    }
    const int hour = data.ConsumeIntegralInRange(19, 24);
    const QString minute = data.PickValueInArray({u"00"_s, u"30"_s, u"59"_s});
    const QString offset =
        data.PickValueInArray({u" +0300"_s, u""_s, u" +0330"_s, u" MSK"_s, u" QQQ"_s});
    return u"20250314%1%2"_s.arg(QString::number(hour), minute) + u"00"_s + offset;
}

QString anyValue(QLatin1StringView attribute, FuzzedDataProvider &data)
{
    if (isOdd(data))
        return anyText(data);
    if (attribute == "start"_L1 || attribute == "stop"_L1)
        return anyTime(data);
    if (attribute == "lang"_L1)
        return data.PickValueInArray({u"ru"_s, u"ru_RU"_s, u"en-GB"_s, u""_s});
    if (attribute == "src"_L1)
        return data.PickValueInArray({u"logo.png"_s, u":/logo.png"_s, u"http://a/b"_s, u"//"_s});
    if (attribute == "clumpidx"_L1)
        return data.PickValueInArray({u"0/1"_s, u"0/2"_s, u"1/2"_s, u"2/2"_s, u""_s});
    if (attribute == "system"_L1)
        return data.PickValueInArray({u"xmltv_ns"_s, u"onscreen"_s, u"other"_s, u""_s});
    return data.PickValueInArray({u"a"_s, u"b"_s, u" a "_s, u""_s});
}

// Writes a guide that is mostly valid XMLTV.
class Writer
{
public:
    Writer(QIODevice &device, FuzzedDataProvider &data)
        : m_writer(&device)
        , m_data(data)
    {
    }

    void write();

private:
    void startElement(const Element &element);
    void endElement();
    const Element &anyChild();
    void writeContent();

    QXmlStreamWriter m_writer;
    FuzzedDataProvider &m_data;
    std::vector<const Element *> m_open;
};

void Writer::write()
{
    m_writer.writeStartDocument();
    m_writer.writeDTD(u"<!DOCTYPE tv [<!ENTITY a \"&#x43a;\"><!ENTITY b \"&a;&a;\">]>"_s);
    startElement(elements[0]);
    for (int calls = 0; calls < mostCalls && m_data.remaining_bytes() > 0; ++calls) {
        switch (m_data.ConsumeIntegralInRange(0, 3)) {
        case 0:
            writeContent();
            break;
        case 1:
            endElement();
            break;
        default:
            startElement(anyChild());
        }
    }
    m_writer.writeEndDocument();
}

void Writer::startElement(const Element &element)
{
    m_open.push_back(&element);
    m_writer.writeStartElement(element.name);
    for (const QLatin1StringView attribute : element.attributes) {
        if (!isOdd(m_data))
            m_writer.writeAttribute(attribute, anyValue(attribute, m_data));
    }
}

// Leaves the root element open: text after it would be a fault of the file.
void Writer::endElement()
{
    if (m_open.size() == 1)
        return;
    m_open.pop_back();
    m_writer.writeEndElement();
}

const Element &Writer::anyChild()
{
    const QList<QLatin1StringView> &usual = m_open.back()->children;
    if (usual.isEmpty() || isOdd(m_data))
        return elements[m_data.ConsumeIntegralInRange<std::size_t>(0, std::size(elements) - 1)];
    const auto name = usual[m_data.ConsumeIntegralInRange<qsizetype>(0, usual.size() - 1)];
    return *std::ranges::find(elements, name, &Element::name);
}

void Writer::writeContent()
{
    switch (m_data.ConsumeIntegralInRange(0, 31)) {
    case 0:
        // This may write into a tag that is still open.
        m_writer.device()->write(anyText(m_data).toUtf8());
        break;
    case 1:
        // Two hyphens would end the comment.
        m_writer.writeComment(anyText(m_data).remove(u'-'));
        break;
    case 2:
    case 3:
        m_writer.writeCDATA(anyText(m_data));
        break;
    case 4:
    case 5:
        m_writer.writeEntityReference(m_data.PickValueInArray({u"a"_s, u"b"_s, u"amp"_s, u"c"_s}));
        break;
    case 6:
    case 7:
    case 8:
    case 9:
        m_writer.writeCharacters(QString::number(m_data.ConsumeIntegral<quint8>()));
        break;
    case 10:
        m_writer.writeCharacters(
            m_data.PickValueInArray({u"1.4.0/2"_s, u" 0 . 12/13 . "_s, u"2/2.."_s}));
        break;
    default:
        m_writer.writeCharacters(anyText(m_data));
    }
}

QByteArray anyFile(const uint8_t *bytes, size_t size)
{
    if (size == 0 || bytes[0] != 0)
        return {reinterpret_cast<const char *>(bytes), qsizetype(size)};
    FuzzedDataProvider data(bytes + 1, size - 1);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    Writer(buffer, data).write();
    return buffer.data();
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
