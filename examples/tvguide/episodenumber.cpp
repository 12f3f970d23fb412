#include "episodenumber.h"

#include <QRegularExpression>

namespace tvguide {

namespace {

std::optional<EpisodeNumber::Count> readCount(QStringView text)
{
    // A number of nine digits fits an int, and so does the number plus 1.
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        QStringLiteral(R"(\s*(?:(?<index>\d{1,9})\s*(?:/\s*(?<total>\d{1,9})\s*)?)?)")));
    const auto match = pattern.matchView(text);
    if (!match.hasMatch())
        return std::nullopt;

    EpisodeNumber::Count count;
    if (match.hasCaptured(u"index"))
        count.number = match.capturedView(u"index").toInt() + 1;
    if (match.hasCaptured(u"total")) {
        count.total = match.capturedView(u"total").toInt();
        if (count.number > count.total)
            return std::nullopt;
    }
    return count;
}

} // namespace

std::optional<EpisodeNumber> readEpisodeNumber(QStringView text)
{
    EpisodeNumber result;
    EpisodeNumber::Count *const counts[] = {&result.season, &result.episode, &result.part};
    std::size_t given = 0;
    for (const QStringView part : text.tokenize(u'.')) {
        if (given == std::size(counts))
            return std::nullopt;
        const auto count = readCount(part);
        if (!count)
            return std::nullopt;
        *counts[given++] = *count;
    }
    return result;
}

} // namespace tvguide
