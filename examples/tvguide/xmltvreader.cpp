#include "xmltvreader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

// More than any screen shows; keeps the cost of a text bounded whatever the file holds.
constexpr qsizetype maxTextLength = 4000;

constexpr qsizetype maxQuotedLength = 40;
constexpr qsizetype maxErrorLength = 160;

// Text from the file for a message: short, on one line and without control characters.
QString printable(QStringView text, qsizetype maxLength)
{
    QString shown;
    for (const QChar c : text.left(maxLength))
        shown += c.isPrint() ? c : QChar(u'?');
    if (text.size() > maxLength)
        shown += u'…';
    return shown;
}

QString quoted(QStringView text)
{
    return u'"' + printable(text, maxQuotedLength) + u'"';
}

// Keeps the best of the texts offered to it, which differ in their language.
class LanguageChoice
{
public:
    explicit LanguageChoice(const QString &preferred)
        : m_preferred(preferred)
    {
    }

    void offer(QStringView language, const QString &text)
    {
        const int rank = this->rank(language);
        if (text.isEmpty() || rank <= m_rank)
            return;
        m_rank = rank;
        m_text = text;
    }

    const QString &text() const { return m_text; }

private:
    // "ru" is also "ru-RU" and "ru_RU".
    int rank(QStringView language) const
    {
        const auto isSeparator = [](QChar c) { return c == u'-' || c == u'_'; };
        if (language.isEmpty())
            return 2;
        if (language.startsWith(m_preferred, Qt::CaseInsensitive)
            && (language.size() == m_preferred.size()
                || isSeparator(language[m_preferred.size()]))) {
            return 3;
        }
        return 1;
    }

    QString m_preferred;
    QString m_text;
    int m_rank = 0;
};

class XmltvReader
{
public:
    XmltvReader(QIODevice &device, const QString &fileName, const QString &language,
                const ProblemSink &reportProblem)
        : m_xml(&device)
        , m_fileName(fileName)
        , m_language(language)
        , m_reportProblem(reportProblem)
    {
    }

    XmltvResult read();

private:
    struct Place
    {
        qint64 line;
        qint64 column;
    };

    void readDocument();
    void readChannel();
    void readProgramme();
    std::optional<Programme> readTimes(const QXmlStreamAttributes &attributes, Place place);
    void readDetails(Programme &programme);
    QString readText();
    QUrl readIcon();
    Channel &channel(const QString &id);

    Place place() const { return {m_xml.lineNumber(), std::max<qint64>(m_xml.columnNumber(), 1)}; }
    void report(Place place, const QString &cause) const;
    void skipEntry(Place place, const QString &cause);

    QXmlStreamReader m_xml;
    const QString m_fileName;
    const QString m_language;
    const ProblemSink &m_reportProblem;

    std::vector<Channel> m_channels;
    std::unordered_map<QString, std::size_t> m_channelIndex;
    std::optional<std::chrono::seconds> m_utcOffset;
    int m_skippedEntries = 0;
};

XmltvResult XmltvReader::read()
{
    readDocument();
    if (m_xml.hasError())
        report(place(),
               u"the file is broken here: "_s + printable(m_xml.errorString(), maxErrorLength));

    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        if (m_channels[i].number.isEmpty())
            m_channels[i].number = QString::number(i + 1);
        if (m_channels[i].name.isEmpty())
            m_channels[i].name = m_channels[i].id;
    }
    return {.guide = Guide(std::move(m_channels), m_utcOffset.value_or(std::chrono::seconds(0))),
            .skippedEntries = m_skippedEntries};
}

void XmltvReader::readDocument()
{
    if (!m_xml.readNextStartElement())
        return;
    if (m_xml.name() != "tv"_L1) {
        report(place(), u"expected the element tv, found "_s + quoted(m_xml.name()));
        return;
    }

    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == "channel"_L1)
            readChannel();
        else if (m_xml.name() == "programme"_L1)
            readProgramme();
        else
            m_xml.skipCurrentElement();
    }
}

void XmltvReader::readChannel()
{
    const Place begin = place();
    const QString id = m_xml.attributes().value("id"_L1).trimmed().toString();

    LanguageChoice name(m_language);
    QString number;
    QUrl icon;
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == "display-name"_L1) {
            const QString language = m_xml.attributes().value("lang"_L1).toString();
            const QString text = readText();
            // Guides give the number of a channel as one more of its names.
            const bool isNumber =
                std::ranges::all_of(text, [](QChar c) { return c >= u'0' && c <= u'9'; });
            if (isNumber && number.isEmpty())
                number = text;
            else if (!isNumber)
                name.offer(language, text);
        } else if (m_xml.name() == "icon"_L1) {
            icon = readIcon();
        } else {
            m_xml.skipCurrentElement();
        }
    }

    if (id.isEmpty()) {
        skipEntry(begin, u"channel without id"_s);
        return;
    }
    Channel &known = channel(id);
    known.number = number;
    known.name = name.text();
    known.icon = icon;
}

void XmltvReader::readProgramme()
{
    const Place begin = place();
    const QXmlStreamAttributes attributes = m_xml.attributes();
    const QString channelId = attributes.value("channel"_L1).trimmed().toString();
    if (channelId.isEmpty()) {
        skipEntry(begin, u"programme without channel"_s);
        m_xml.skipCurrentElement();
        return;
    }

    std::optional<Programme> programme = readTimes(attributes, begin);
    if (!programme) {
        m_xml.skipCurrentElement();
        return;
    }
    readDetails(*programme);
    if (m_xml.hasError())
        return;
    channel(channelId).programmes.push_back(std::move(*programme));
}

std::optional<Programme> XmltvReader::readTimes(const QXmlStreamAttributes &attributes, Place place)
{
    const QStringView startText = attributes.value("start"_L1);
    const QStringView stopText = attributes.value("stop"_L1);

    const auto start = readXmltvTime(startText);
    if (!start) {
        skipEntry(place, u"programme with an impossible start "_s + quoted(startText));
        return std::nullopt;
    }
    const auto stop = readXmltvTime(stopText);
    if (!stop && !stopText.isEmpty()) {
        skipEntry(place, u"programme with an impossible stop "_s + quoted(stopText));
        return std::nullopt;
    }

    constexpr std::chrono::seconds utc(0);
    Programme programme;
    programme.start = start->instant(utc);
    if (stop)
        programme.stop = stop->instant(utc);
    if (programme.stop <= programme.start) {
        skipEntry(place, u"programme that stops at %1, not after its start at %2"_s.arg(
                             quoted(stopText), quoted(startText)));
        return std::nullopt;
    }

    if (!m_utcOffset)
        m_utcOffset = start->utcOffset.value_or(utc);
    return programme;
}

void XmltvReader::readDetails(Programme &programme)
{
    LanguageChoice title(m_language);
    LanguageChoice description(m_language);
    LanguageChoice category(m_language);
    while (m_xml.readNextStartElement()) {
        const QString language = m_xml.attributes().value("lang"_L1).toString();
        if (m_xml.name() == "title"_L1)
            title.offer(language, readText());
        else if (m_xml.name() == "desc"_L1)
            description.offer(language, readText());
        else if (m_xml.name() == "category"_L1)
            category.offer(language, readText());
        else if (m_xml.name() == "icon"_L1)
            programme.icon = readIcon();
        else
            m_xml.skipCurrentElement();
    }
    programme.title = title.text();
    programme.description = description.text();
    programme.category = category.text();
}

// The text of the current element and of those inside it.
QString XmltvReader::readText()
{
    QString text;
    int depth = 1;
    while (depth > 0 && !m_xml.atEnd()) {
        switch (m_xml.readNext()) {
        case QXmlStreamReader::StartElement:
            ++depth;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::Characters:
            text += m_xml.text().left(maxTextLength - text.size());
            break;
        default:
            break;
        }
    }
    return text.simplified();
}

// A path without a scheme is a file, found beside the guide.
QUrl XmltvReader::readIcon()
{
    const QString source = m_xml.attributes().value("src"_L1).trimmed().toString();
    m_xml.skipCurrentElement();
    if (source.isEmpty())
        return {};
    const QUrl url(source);
    if (!url.scheme().isEmpty())
        return url;
    const QString path = QFileInfo(m_fileName).dir().absoluteFilePath(source);
    return path.startsWith(u':') ? QUrl(u"qrc"_s + path) : QUrl::fromLocalFile(path);
}

// Guides exist that describe a channel after its programmes, or never.
Channel &XmltvReader::channel(const QString &id)
{
    const auto [entry, isNew] = m_channelIndex.try_emplace(id, m_channels.size());
    if (isNew)
        m_channels.emplace_back().id = id;
    return m_channels[entry->second];
}

void XmltvReader::report(Place place, const QString &cause) const
{
    m_reportProblem(u"%1:%2:%3: %4"_s.arg(m_fileName, QString::number(place.line),
                                          QString::number(place.column), cause));
}

void XmltvReader::skipEntry(Place place, const QString &cause)
{
    ++m_skippedEntries;
    report(place, cause);
}

} // namespace

XmltvResult readXmltv(const QString &fileName, const QString &language,
                      const ProblemSink &reportProblem)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        reportProblem(u"%1: cannot be read: %2"_s.arg(fileName, file.errorString()));
        return {};
    }
    XmltvResult result = readXmltv(file, fileName, language, reportProblem);
    if (file.error() != QFileDevice::NoError)
        reportProblem(u"%1: cannot be read to its end: %2"_s.arg(fileName, file.errorString()));
    return result;
}

XmltvResult readXmltv(QIODevice &device, const QString &fileName, const QString &language,
                      const ProblemSink &reportProblem)
{
    return XmltvReader(device, fileName, language, reportProblem).read();
}

} // namespace tvguide
