#include "trackerlog.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace tvguide {

using namespace Qt::StringLiterals;
using ovelin::SceneResourceTracker;

namespace {

constexpr qsizetype widestColumn = 44;

using Row = std::array<QString, 8>;

Row row(const TrackerLog::Message &message)
{
    return {
        eventName(message.event), message.status,    message.type,     QString::number(message.id),
        message.objectName,       message.className, message.geometry, message.source};
}

// Titles come from a file and may contain control characters, which would act on a terminal.
QString cell(const QString &text)
{
    QString shown = text.size() <= widestColumn ? text : text.left(widestColumn - 1) + u'…';
    for (QChar &c : shown) {
        if (c.category() == QChar::Other_Control)
            c = QChar::ReplacementCharacter;
    }
    return shown;
}

} // namespace

QString eventName(TrackerLog::Message::Event event)
{
    switch (event) {
    case TrackerLog::Message::Registered:
        return u"registered"_s;
    case TrackerLog::Message::Updated:
        return u"updated"_s;
    case TrackerLog::Message::StatusChanged:
        return u"status_changed"_s;
    case TrackerLog::Message::Unregistered:
        return u"unregistered"_s;
    }
    return {};
}

TrackerLog::TrackerLog(SceneResourceTracker &tracker, QObject *parent)
    : QObject(parent)
    , m_tracker(tracker)
{
    connect(&tracker, &SceneResourceTracker::messagesAdded, this, &TrackerLog::collect);
    tracker.setMessagesEnabled(true);
}

void TrackerLog::collect()
{
    m_messages.push_back(m_tracker.messages().constLast());
    if (m_messages.size() > capacity)
        m_messages.pop_front();
}

QStringList TrackerLog::table(std::size_t count) const
{
    std::vector<Row> rows{{u"event"_s, u"status"_s, u"type"_s, u"id"_s, u"object"_s, u"class"_s,
                           u"geometry"_s, u"source"_s}};
    const std::size_t shown = std::min(count, m_messages.size());
    std::transform(m_messages.end() - static_cast<std::ptrdiff_t>(shown), m_messages.end(),
                   std::back_inserter(rows), row);

    std::array<qsizetype, std::tuple_size_v<Row>> widths{};
    for (Row &row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            row[column] = cell(row[column]);
            widths[column] = std::max(widths[column], row[column].size());
        }
    }

    QStringList lines;
    for (const Row &row : rows) {
        QString line;
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            line += row[column].leftJustified(widths[column]) + u"  "_s;
        lines += line + row.back();
    }
    return lines;
}

} // namespace tvguide
