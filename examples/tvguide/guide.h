#ifndef TVGUIDE_GUIDE_H
#define TVGUIDE_GUIDE_H

#include "times.h"

#include <QString>
#include <QUrl>

#include <cstddef>
#include <vector>

namespace tvguide {

struct Programme
{
    // The end of a programme of which only the beginning is known.
    static constexpr Instant unknownStop = Instant::max();

    Instant start;
    Instant stop = unknownStop;
    QString title;
    QString description;
    QString category;
    QUrl icon;

    bool isRunning(Instant now) const { return start <= now && now < stop; }
};

struct Channel
{
    QString id;
    QString number;
    QString name;
    QUrl icon;
    std::vector<Programme> programmes;

    // The index of the first programme that ends after the instant; the number of programmes if
    // there is none. Costs a binary search.
    std::size_t firstEndingAfter(Instant instant) const;
    bool hasProgrammeAt(Instant instant) const;
};

// What is on, channel by channel. On every channel the programmes follow each other without
// overlapping: each one ends at the latest where the next one begins.
class Guide
{
public:
    Guide() = default;
    Guide(std::vector<Channel> channels, std::chrono::seconds utcOffset);

    const std::vector<Channel> &channels() const { return m_channels; }
    const WallClock &clock() const { return m_clock; }

    bool isEmpty() const { return m_channels.empty(); }
    std::size_t programmeCount() const;
    bool covers(Instant instant) const;

    // A moment worth looking at, for a guide that does not cover the present: an evening of it.
    Instant suggestedTime() const;

private:
    std::vector<Channel> m_channels;
    WallClock m_clock;
};

} // namespace tvguide

#endif
