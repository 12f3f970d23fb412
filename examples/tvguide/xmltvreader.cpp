#include "xmltvreader.h"

#include "encoding.h"
#include "languagechoice.h"
#include "timezones.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

// In characters. A screen shows some 1000 at most. The limit bounds the cost of laying a text out.
constexpr qsizetype maxTextLength = 4000;

// More than the panel can show. The limit bounds the cost of comparing ratings.
constexpr qsizetype maxRatings = 16;

// In characters. A message then fits one or two lines of a terminal.
constexpr qsizetype maxQuotedLength = 40;
constexpr qsizetype maxErrorLength = 160;

// Makes a text from the file fit for a message: short, on one line, without control characters.
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

// Reads "1/2", the second of two programmes in a slot, as 1. Without a text the programme has its
// slot to itself.
std::optional<int> readClumpIndex(QStringView text)
{
    if (text.trimmed().isEmpty())
        return 0;
    static const QRegularExpression pattern(
        QRegularExpression::anchoredPattern(u"\\s*(\\d{1,4})\\s*/\\s*(\\d{1,4})\\s*"_s));
    const auto match = pattern.matchView(text);
    const int index = match.capturedView(1).toInt();
    if (!match.hasMatch() || index >= match.capturedView(2).toInt())
        return std::nullopt;
    return index;
}

class XmltvReader
{
public:
    XmltvReader(QIODevice &device, const QString &fileName, const QString &language,
                const ProblemSink &reportProblem)
        : m_device(device)
        , m_xml(&device)
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
    std::optional<Programme> readSlot(const QXmlStreamAttributes &attributes, Place place);
    std::optional<WrittenTime> readTime(QLatin1StringView name, QStringView text, Place place);
    void readDetails(Programme &programme);
    void readEpisode(Programme &programme);
    void readRating(QStringList &ratings);
    QString readText();
    QUrl readIcon();
    std::size_t channelIndex(const QString &id);

    Place place() const { return {m_xml.lineNumber(), std::max<qint64>(m_xml.columnNumber(), 1)}; }
    void reportFault();
    void report(Place place, const QString &cause) const;
    void skipEntry(Place place, const QString &cause);

    QIODevice &m_device;
    QXmlStreamReader m_xml;
    const QString m_fileName;
    const QString m_language;
    const ProblemSink &m_reportProblem;

    std::vector<Channel> m_channels;
    std::unordered_map<QString, std::size_t> m_channelIndex;
    std::unordered_set<QString> m_describedChannels;
    // Channel, start and clump index.
    std::set<std::tuple<std::size_t, Instant, int>> m_takenSlots;
    std::optional<std::chrono::seconds> m_utcOffset;
    int m_skippedEntries = 0;
};

XmltvResult XmltvReader::read()
{
    const QString undecodable = undecodableContent(m_device);
    if (!undecodable.isEmpty()) {
        report({1, 1}, undecodable);
        return {};
    }

    readDocument();
    if (m_xml.hasError())
        reportFault();

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

    // Text after the guide, such as a second guide, is a fault of the file.
    while (!m_xml.atEnd())
        m_xml.readNext();
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
            // Guides write the number of a channel as one of its names.
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
    if (!m_describedChannels.insert(id).second) {
        skipEntry(begin, u"second description of the channel "_s + quoted(id));
        return;
    }
    Channel &known = m_channels[channelIndex(id)];
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

    std::optional<Programme> programme = readSlot(attributes, begin);
    if (!programme) {
        m_xml.skipCurrentElement();
        return;
    }
    readDetails(*programme);
    if (m_xml.hasError())
        return;

    const std::size_t channel = channelIndex(channelId);
    if (!m_takenSlots.emplace(channel, programme->start, programme->clumpIndex).second) {
        skipEntry(begin,
                  u"programme that replaces an earlier one with the same channel and start"_s);
    }
    m_channels[channel].programmes.push_back(std::move(*programme));
}

std::optional<Programme> XmltvReader::readSlot(const QXmlStreamAttributes &attributes, Place place)
{
    const QStringView startText = attributes.value("start"_L1);
    const QStringView stopText = attributes.value("stop"_L1);
    const auto start = readTime("start"_L1, startText, place);
    if (!start)
        return std::nullopt;
    std::optional<WrittenTime> stop;
    if (!stopText.isEmpty()) {
        stop = readTime("stop"_L1, stopText, place);
        if (!stop)
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

    const QStringView clumpText = attributes.value("clumpidx"_L1);
    const auto clumpIndex = readClumpIndex(clumpText);
    if (!clumpIndex) {
        skipEntry(place,
                  u"programme with an impossible clumpidx %1: expected one like \"0/2\""_s.arg(
                      quoted(clumpText)));
        return std::nullopt;
    }
    programme.clumpIndex = *clumpIndex;

    if (!m_utcOffset)
        m_utcOffset = start->utcOffset.value_or(utc);
    return programme;
}

// Leaves the entry out if the time cannot be read.
std::optional<WrittenTime> XmltvReader::readTime(QLatin1StringView name, QStringView text,
                                                 Place place)
{
    const auto time = readXmltvTime(text);
    if (!time) {
        QString cause = u"programme with an impossible %1 %2"_s.arg(name, quoted(text));
        if (const QStringView zone = unknownTimeZone(text); !zone.isEmpty()) {
            cause += u": the time zone %1 is none of %2"_s.arg(quoted(zone), timeZoneNames());
        }
        skipEntry(place, cause);
    }
    return time;
}

void XmltvReader::readDetails(Programme &programme)
{
    LanguageChoice title(m_language);
    LanguageChoice subTitle(m_language);
    LanguageChoice description(m_language);
    LanguageChoice category(m_language);
    LanguageChoice premiere(m_language);
    while (m_xml.readNextStartElement()) {
        const QString language = m_xml.attributes().value("lang"_L1).toString();
        if (m_xml.name() == "title"_L1) {
            title.offer(language, readText());
        } else if (m_xml.name() == "sub-title"_L1) {
            subTitle.offer(language, readText());
        } else if (m_xml.name() == "desc"_L1) {
            description.offer(language, readText());
        } else if (m_xml.name() == "category"_L1) {
            category.offer(language, readText());
        } else if (m_xml.name() == "premiere"_L1) {
            programme.isPremiere = true;
            premiere.offer(language, readText());
        } else if (m_xml.name() == "new"_L1) {
            programme.isNew = true;
            m_xml.skipCurrentElement();
        } else if (m_xml.name() == "episode-num"_L1) {
            readEpisode(programme);
        } else if (m_xml.name() == "rating"_L1) {
            readRating(programme.ratings);
        } else if (m_xml.name() == "icon"_L1) {
            programme.icon = readIcon();
        } else {
            m_xml.skipCurrentElement();
        }
    }
    programme.title = title.text();
    programme.subTitle = subTitle.text();
    programme.description = description.text();
    programme.category = category.text();
    programme.premiere = premiere.text();
}

// Systems other than xmltv_ns and onscreen are for machines. A number of the wrong form is shown as it
// is written.
void XmltvReader::readEpisode(Programme &programme)
{
    const QString system = m_xml.attributes().value("system"_L1).trimmed().toString();
    const QString text = readText();
    if (system == "xmltv_ns"_L1) {
        if (const auto number = readEpisodeNumber(text)) {
            programme.episodeNumber = *number;
            return;
        }
    } else if (!system.isEmpty() && system != "onscreen"_L1) {
        return;
    }
    if (programme.episodeText.isEmpty())
        programme.episodeText = text;
}

// Several bodies may give a programme the same rating.
void XmltvReader::readRating(QStringList &ratings)
{
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() != "value"_L1) {
            m_xml.skipCurrentElement();
            continue;
        }
        const QString rating = readText();
        if (!rating.isEmpty() && ratings.size() < maxRatings && !ratings.contains(rating))
            ratings += rating;
    }
}

// Returns the text of the current element and of the elements inside it, with single spaces.
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

// A path without a scheme is a file relative to the guide's folder.
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

// Adds a channel on its first mention. Some guides describe a channel after its programmes, or
// never.
std::size_t XmltvReader::channelIndex(const QString &id)
{
    const auto [entry, isNew] = m_channelIndex.try_emplace(id, m_channels.size());
    if (isNew)
        m_channels.emplace_back().id = id;
    return entry->second;
}

// The parser decodes ahead: the place that it has reached is before the wrong byte.
void XmltvReader::reportFault()
{
    if (const auto line = wronglyEncodedLine(m_device)) {
        report({*line, 1}, u"the text is not UTF-8: declare its encoding or convert the file"_s);
    } else {
        report(place(),
               u"the file is broken here: "_s + printable(m_xml.errorString(), maxErrorLength));
    }
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
