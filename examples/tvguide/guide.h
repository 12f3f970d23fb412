#ifndef TVGUIDE_GUIDE_H
#define TVGUIDE_GUIDE_H

#include "episodenumber.h"
#include "times.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <cstddef>
#include <vector>

namespace tvguide {

struct Programme
{
    // The stop of a programme if only its start is known.
    static constexpr Instant unknownStop = Instant::max();

    Instant start;
    Instant stop = unknownStop;
    // The place of the programme among those that share its slot, from 0.
    int clumpIndex = 0;

    QString title;
    QString subTitle;
    QString description;
    QString category;
    QUrl icon;
    EpisodeNumber episodeNumber;
    // The episode as the broadcaster writes it, for a programme without an episode number.
    QString episodeText;
    bool isNew = false;
    bool isPremiere = false;
    QString premiere;
    QStringList ratings;

    // The titles of the programmes that follow in the same slot.
    QStringList alsoInSlot;

    bool isRunning(Instant now) const { return start <= now && now < stop; }
};

struct Channel
{
    QString id;
    QString number;
    QString name;
    QUrl icon;
    std::vector<Programme> programmes;

    // Returns the index of the first programme that ends after the instant; the number of
    // programmes if there is none. Costs a binary search.
    std::size_t firstEndingAfter(Instant instant) const;
    bool hasProgrammeAt(Instant instant) const;
};

// The programmes of all channels. The programmes of a channel are sorted by their start and do not
// overlap: a programme ends at the start of the next one or earlier. Programmes with the same start
// share a slot: the guide keeps the first of them, which names the others.
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

    // Returns a time to show if the guide does not cover the present: its first evening, or its start if
    // no programme runs then.
    Instant suggestedTime() const;

private:
    std::vector<Channel> m_channels;
    WallClock m_clock;
};

} // namespace tvguide

#endif
