#ifndef TVGUIDE_EPISODENUMBER_H
#define TVGUIDE_EPISODENUMBER_H

#include <QStringView>

#include <optional>

namespace tvguide {

// The place of a programme in a series, such as season 2, episode 5, part 1 of 2.
struct EpisodeNumber
{
    // Numbers count from 1. A number or total that is not given is 0.
    struct Count
    {
        int number = 0;
        int total = 0;
    };

    Count season;
    Count episode;
    Count part;
};

// Reads the system "xmltv_ns" of XMLTV: up to three counts with dots between them, such as
// "1.4.0/2". A count is empty, a number that counts from 0, or this number, "/" and the total. Returns
// nothing for a text of another form and for a number that is not below its total.
std::optional<EpisodeNumber> readEpisodeNumber(QStringView text);

} // namespace tvguide

#endif
