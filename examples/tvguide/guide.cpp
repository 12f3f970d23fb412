#include "guide.h"

#include <algorithm>
#include <numeric>
#include <ranges>
#include <utility>

namespace tvguide {

namespace {

using namespace std::chrono;

// The length of the last programme of a channel if its stop is not given.
constexpr minutes defaultDuration(30);

// Most people watch at this time, and most programmes have begun some minutes before.
constexpr seconds eveningTime = hours(20) + minutes(10);

std::pair<Instant, int> placeOf(const Programme &programme)
{
    return {programme.start, programme.clumpIndex};
}

// Keeps the last of several programmes with the same start and clump index: a later entry of the file
// corrects an earlier one.
void dropCorrected(std::vector<Programme> &programmes)
{
    const auto dropped = std::ranges::unique(programmes | std::views::reverse, {}, placeOf);
    programmes.erase(programmes.begin(), dropped.begin().base());
}

// Keeps the first programme of every slot. The slot ends at the latest stop that is given.
void joinSlots(std::vector<Programme> &programmes)
{
    std::vector<Programme> joined;
    joined.reserve(programmes.size());
    for (Programme &programme : programmes) {
        if (joined.empty() || joined.back().start != programme.start) {
            joined.push_back(std::move(programme));
            continue;
        }
        Programme &first = joined.back();
        first.alsoInSlot += programme.title;
        if (first.stop == Programme::unknownStop)
            first.stop = programme.stop;
        else if (programme.stop != Programme::unknownStop)
            first.stop = std::max(first.stop, programme.stop);
    }
    programmes = std::move(joined);
}

void arrange(std::vector<Programme> &programmes)
{
    std::ranges::stable_sort(programmes, {}, placeOf);
    dropCorrected(programmes);
    joinSlots(programmes);

    for (std::size_t i = 0; i + 1 < programmes.size(); ++i)
        programmes[i].stop = std::min(programmes[i].stop, programmes[i + 1].start);
    if (!programmes.empty() && programmes.back().stop == Programme::unknownStop)
        programmes.back().stop = programmes.back().start + defaultDuration;
}

} // namespace

std::size_t Channel::firstEndingAfter(Instant instant) const
{
    const auto found = std::ranges::upper_bound(programmes, instant, {}, &Programme::stop);
    return static_cast<std::size_t>(found - programmes.begin());
}

bool Channel::hasProgrammeAt(Instant instant) const
{
    const std::size_t index = firstEndingAfter(instant);
    return index < programmes.size() && programmes[index].isRunning(instant);
}

Guide::Guide(std::vector<Channel> channels, std::chrono::seconds utcOffset)
    : m_channels(std::move(channels))
    , m_clock(utcOffset)
{
    for (Channel &channel : m_channels)
        arrange(channel.programmes);
    std::erase_if(m_channels, [](const Channel &channel) { return channel.programmes.empty(); });
}

std::size_t Guide::programmeCount() const
{
    return std::accumulate(
        m_channels.begin(), m_channels.end(), std::size_t(0),
        [](std::size_t sum, const Channel &channel) { return sum + channel.programmes.size(); });
}

bool Guide::covers(Instant instant) const
{
    return std::ranges::any_of(
        m_channels, [instant](const Channel &channel) { return channel.hasProgrammeAt(instant); });
}

Instant Guide::suggestedTime() const
{
    if (isEmpty())
        return {};

    const auto earliest = std::ranges::min_element(
        m_channels, {}, [](const Channel &channel) { return channel.programmes.front().start; });
    const Instant first = earliest->programmes.front().start;

    const seconds offset = m_clock.utcOffset();
    Instant evening = floor<days>(first + offset) + eveningTime - offset;
    if (evening < first)
        evening += days(1);
    return covers(evening) ? evening : first;
}

} // namespace tvguide
