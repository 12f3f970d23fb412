#include "detailpanel.h"

#include "screenlayout.h"
#include "theme.h"
#include "wording.h"

#include <QFontMetrics>

#include <algorithm>
#include <ranges>
#include <utility>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

const QString separator = u"  ·  "_s;

constexpr int tagPixelSize = 15;
constexpr int tagHeight = 24;
constexpr int tagPadding = 9;
constexpr int tagGap = 8;
constexpr int widestTag = 160;
constexpr int episodeGap = 4;

QString facts(const Programme &programme, const Channel &channel, const WallClock &clock,
              Instant now, const Wording &wording)
{
    QStringList facts{channel.name};
    if (clock.date(programme.start) != clock.date(now))
        facts += wording.date(clock.date(programme.start));
    facts += clock.hoursAndMinutes(programme.start) + u'–' + clock.hoursAndMinutes(programme.stop);
    facts += wording.duration(programme.stop - programme.start);
    if (!programme.category.isEmpty())
        facts += programme.category;
    return facts.join(separator);
}

// Tells how much of a running programme is left, how soon a later one starts, or that the programme is over.
QString remaining(const Programme &programme, Instant now, const Wording &wording)
{
    if (programme.isRunning(now))
        return wording.remaining.arg(wording.duration(programme.stop - now));
    if (programme.start > now)
        return wording.startsIn.arg(wording.duration(programme.start - now));
    return wording.over;
}

QString episode(const Programme &programme, const Wording &wording)
{
    const QString number = wording.episodeNumber(programme.episodeNumber);
    QStringList parts{programme.subTitle, number.isEmpty() ? programme.episodeText : number,
                      programme.premiere, wording.alsoInSlotTitles(programme.alsoInSlot)};
    parts.removeAll(QString());
    return parts.join(separator);
}

std::vector<std::pair<QString, QColor>> tagTexts(const Programme &programme, const Wording &wording)
{
    std::vector<std::pair<QString, QColor>> texts;
    if (programme.isNew)
        texts.emplace_back(wording.isNew, theme::accent);
    if (programme.isPremiere)
        texts.emplace_back(wording.premiere, theme::accent);
    for (const QString &rating : programme.ratings)
        texts.emplace_back(rating, theme::softText);
    return texts;
}

} // namespace

void DetailPanel::show(const Programme &programme, const Channel &channel, const WallClock &clock,
                       Instant now, const Wording &wording, const ScreenLayout &layout)
{
    title.show(wording.title(programme.title),
               {.pixelSize = layout.px(32), .weight = QFont::Bold, .color = theme::text},
               layout.panelTitle);

    QRect factsBox = layout.panelFacts;
    factsBox.setRight(factsBox.right() - showTags(programme, wording, layout));
    facts.show(tvguide::facts(programme, channel, clock, now, wording),
               {.pixelSize = layout.px(20), .color = theme::softText}, factsBox);

    remaining.show(tvguide::remaining(programme, now, wording),
                   {.pixelSize = layout.px(18),
                    .color = theme::accent,
                    .alignment = Qt::AlignRight | Qt::AlignVCenter},
                   layout.panelRemaining);

    QRect rest = layout.panelDescription;
    episode.show(tvguide::episode(programme, wording),
                 {.pixelSize = layout.px(18), .color = theme::softText, .maxLines = 2}, rest);
    if (episode.height() > 0)
        rest.setTop(rest.top() + episode.height() + layout.px(episodeGap));
    description.show(programme.description.isEmpty() ? wording.noDescription
                                                     : programme.description,
                     {.pixelSize = layout.px(19), .color = theme::text}, rest);
}

// Puts the tags at the right end of the line of facts, as many as fit into half of it. Returns the
// width that they take from the facts.
int DetailPanel::showTags(const Programme &programme, const Wording &wording,
                          const ScreenLayout &layout)
{
    tags.clear();
    const QRect line = layout.panelFacts;
    const int padding = layout.px(tagPadding);
    const QFontMetrics metrics(theme::font(layout.px(tagPixelSize)));
    int right = line.right();
    for (const auto &[text, color] : tagTexts(programme, wording) | std::views::reverse) {
        // One pixel more: a width that was rounded down would elide the text.
        const int textWidth = metrics.horizontalAdvance(text) + 1;
        QRect frame(0, line.top(), std::min(textWidth + 2 * padding, layout.px(widestTag)),
                    layout.px(tagHeight));
        frame.moveRight(right);
        if (frame.left() < line.center().x())
            break;
        PanelTag &tag = tags.emplace_back();
        tag.frame = frame;
        tag.color = color;
        tag.label.show(text,
                       {.pixelSize = layout.px(tagPixelSize),
                        .color = color,
                        .alignment = Qt::AlignHCenter | Qt::AlignVCenter,
                        .maxLines = 1},
                       frame.marginsRemoved({padding, 0, padding, 0}));
        right = frame.left() - layout.px(tagGap);
    }
    return line.right() - right;
}

} // namespace tvguide
