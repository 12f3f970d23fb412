#include "guidescene.h"

#include "resourcepolicy.h"
#include "theme.h"

#include <algorithm>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono;

using TimeSteps = duration<qint64, std::ratio<1800>>;
constexpr seconds timeStep = TimeSteps(1);

// A row skips some programmes shorter than this: their cards would be too narrow to be seen, and a
// guide may have thousands of them.
constexpr minutes shortestCard(2);

// The grid shows at least this much of the programme with the focus.
constexpr minutes leastShown(30);

constexpr int cardGap = 4;
constexpr int narrowestCard = 10;
constexpr int cardPadding = 12;
constexpr int badgeSize = 40;

Instant stepBefore(Instant instant, seconds utcOffset)
{
    return floor<TimeSteps>(instant + utcOffset) - utcOffset;
}

} // namespace

GuideScene::GuideScene(const Guide &guide, const Wording &wording, const QSize &size, Instant now,
                       ResourcePolicy &policy)
    : m_guide(guide)
    , m_wording(wording)
    , m_policy(policy)
    , m_layout(size)
    , m_now(now)
    , m_gridStart(stepBefore(now, guide.clock().utcOffset()))
    , m_focusTime(now)
{
    m_focus.programme = programmeNear(m_focus.channel, now);
    arrange();
}

GuideScene::~GuideScene() = default;

void GuideScene::resize(const QSize &size)
{
    m_layout = ScreenLayout(size);
    arrange();
}

void GuideScene::setTime(Instant now)
{
    // The grid follows the clock unless the viewer has moved it.
    const seconds offset = m_guide.clock().utcOffset();
    if (m_gridStart == stepBefore(m_now, offset))
        m_gridStart = stepBefore(now, offset);
    m_now = now;
    arrange();
}

void GuideScene::moveFocus(Direction direction)
{
    ProgrammeIndex target = m_focus;
    switch (direction) {
    case Direction::Left:
        if (target.programme > 0)
            --target.programme;
        break;
    case Direction::Right:
        if (target.programme + 1 < channel(target).programmes.size())
            ++target.programme;
        break;
    case Direction::Up:
        if (target.channel > 0)
            --target.channel;
        break;
    case Direction::Down:
        if (target.channel + 1 < m_guide.channels().size())
            ++target.channel;
        break;
    }
    if (target == m_focus)
        return;

    if (target.channel != m_focus.channel)
        target.programme = programmeNear(target.channel, m_focusTime);
    else
        m_focusTime = programme(target).isRunning(m_now) ? m_now : programme(target).start;
    m_focus = target;
    arrange();
}

std::size_t GuideScene::programmeNear(std::size_t channel, Instant instant) const
{
    const Channel &on = m_guide.channels()[channel];
    return std::min(on.firstEndingAfter(instant), on.programmes.size() - 1);
}

const Channel &GuideScene::channel(ProgrammeIndex index) const
{
    return m_guide.channels()[index.channel];
}

const Programme &GuideScene::programme(ProgrammeIndex index) const
{
    return channel(index).programmes[index.programme];
}

int GuideScene::progress(const Programme &programme) const
{
    constexpr qint64 whole = 1000;
    const qint64 past = (m_now - programme.start).count();
    return static_cast<int>(
        std::clamp(past * whole / (programme.stop - programme.start).count(), qint64(0), whole));
}

void GuideScene::arrange()
{
    scrollToFocus();
    arrangeHeading();
    arrangePanel();
    arrangeTimeLine();
    arrangeChannels();
    arrangeCards();

    m_policy.setView(m_layout.screen(), m_cards.at(m_focus).rect.center());
    m_policy.decide();
    Q_EMIT changed();
}

void GuideScene::scrollToFocus()
{
    const auto rows = static_cast<std::size_t>(m_layout.rowCount);
    m_firstChannel = std::min(m_firstChannel, m_focus.channel);
    if (m_focus.channel >= m_firstChannel + rows)
        m_firstChannel = m_focus.channel + 1 - rows;
    if (m_firstChannel + rows > m_guide.channels().size())
        m_firstChannel = m_guide.channels().size() - std::min(rows, m_guide.channels().size());

    const seconds offset = m_guide.clock().utcOffset();
    const Programme &focused = programme(m_focus);
    const Instant shownUntil = std::min(focused.stop, focused.start + leastShown);
    if (shownUntil > gridEnd())
        m_gridStart =
            stepBefore(shownUntil - m_layout.visibleDuration() + timeStep - seconds(1), offset);
    if (focused.stop <= m_gridStart)
        m_gridStart = stepBefore(focused.start, offset);
}

void GuideScene::arrangeHeading()
{
    m_heading.show(m_wording.guide,
                   {.pixelSize = m_layout.px(24),
                    .weight = QFont::Bold,
                    .color = theme::accent,
                    .alignment = Qt::AlignLeft | Qt::AlignVCenter},
                   m_layout.heading);

    m_date.show(m_wording.date(m_guide.clock().date(m_now)),
                {.pixelSize = m_layout.px(20),
                 .color = theme::softText,
                 .alignment = Qt::AlignRight | Qt::AlignVCenter},
                m_layout.date);

    m_clock.show(m_guide.clock().hoursAndMinutes(m_now),
                 {.pixelSize = m_layout.px(36),
                  .weight = QFont::Bold,
                  .color = theme::text,
                  .alignment = Qt::AlignRight | Qt::AlignVCenter},
                 m_layout.clock);
}

void GuideScene::arrangePanel()
{
    const Programme &shown = programme(m_focus);
    if (!m_panel.poster || m_panelProgramme != m_focus) {
        m_panelProgramme = m_focus;
        m_panel.poster = std::make_unique<PosterItem>(
            PosterItem::Shape::Panel, PosterItem::Subject{shown.title, shown.category, shown.icon},
            u"panel"_s);
    }
    m_panel.poster->place(m_layout.panelPoster);

    m_panel.show(shown, channel(m_focus), m_guide.clock(), m_now, m_wording, m_layout);
}

void GuideScene::arrangeTimeLine()
{
    m_timeMarks.clear();
    const int labelWidth = m_layout.px(90);
    for (Instant mark = m_gridStart; mark < gridEnd(); mark += timeStep) {
        TimeMark &timeMark = m_timeMarks.emplace_back();
        timeMark.x = m_layout.x(mark, m_gridStart);
        const QRect box(timeMark.x + m_layout.px(8), m_layout.timeLine.top(), labelWidth,
                        m_layout.timeLine.height() - m_layout.px(4));
        if (box.right() > m_layout.timeLine.right())
            continue;
        timeMark.label.show(m_guide.clock().hoursAndMinutes(mark),
                            {.pixelSize = m_layout.px(18),
                             .color = theme::softText,
                             .alignment = Qt::AlignLeft | Qt::AlignVCenter},
                            box);
    }
}

void GuideScene::arrangeChannels()
{
    const std::size_t end = std::min(m_guide.channels().size(),
                                     m_firstChannel + static_cast<std::size_t>(m_layout.rowCount));
    std::erase_if(m_channels, [&](const auto &entry) {
        return entry.first < m_firstChannel || entry.first >= end;
    });

    for (std::size_t index = m_firstChannel; index < end; ++index)
        arrangeChannel(index);
}

void GuideScene::arrangeChannel(std::size_t index)
{
    const Channel &channel = m_guide.channels()[index];
    ChannelEntry &entry = m_channels[index];
    const bool isFocused = index == m_focus.channel;
    entry.rect = m_layout.railEntry(static_cast<int>(index - m_firstChannel));

    const int numberWidth = m_layout.px(48);
    const int badge = m_layout.px(badgeSize);
    const int gap = m_layout.px(10);
    entry.number.show(channel.number,
                      {.pixelSize = m_layout.px(22),
                       .weight = QFont::Bold,
                       .color = isFocused ? theme::accent : theme::softText,
                       .alignment = Qt::AlignLeft | Qt::AlignVCenter},
                      QRect(entry.rect.left(), entry.rect.top(), numberWidth, entry.rect.height()));

    if (!entry.badge) {
        entry.badge = std::make_unique<PosterItem>(
            PosterItem::Shape::Badge, PosterItem::Subject{channel.name, QString(), channel.icon},
            u"channel %1"_s.arg(channel.number));
    }
    entry.badge->place(
        QRect(entry.rect.left() + numberWidth, entry.rect.center().y() - badge / 2, badge, badge));

    const int nameLeft = entry.badge->geometry().right() + gap;
    entry.name.show(
        channel.name,
        {.pixelSize = m_layout.px(17),
         .weight = isFocused ? QFont::Bold : QFont::Normal,
         .color = theme::text,
         .alignment = Qt::AlignLeft | Qt::AlignVCenter},
        QRect(nameLeft, entry.rect.top(), entry.rect.right() + 1 - nameLeft, entry.rect.height()));
}

void GuideScene::arrangeCards()
{
    for (const auto &[channel, entry] : m_channels)
        arrangeRow(channel);
    arrangeCard(m_focus);
    forgetFarCards();
}

// Finds the programme of each card by its time. A walk through all programmes of the channel would
// cost more than the few cards of a row.
void GuideScene::arrangeRow(std::size_t channelIndex)
{
    const Channel &channel = m_guide.channels()[channelIndex];
    for (Instant from = m_gridStart; from < gridEnd();) {
        const std::size_t index = channel.firstEndingAfter(from);
        if (index == channel.programmes.size() || channel.programmes[index].start >= gridEnd())
            return;
        arrangeCard({channelIndex, index});
        from = std::max(channel.programmes[index].stop, from + shortestCard);
    }
}

void GuideScene::arrangeCard(ProgrammeIndex index)
{
    const Programme &shown = programme(index);
    ProgrammeCard &card = m_cards[index];
    card.rect = cardRect(index);
    if (!card.poster) {
        card.poster = std::make_unique<PosterItem>(
            PosterItem::Shape::Card, PosterItem::Subject{shown.title, shown.category, shown.icon},
            u"card %1 %2"_s.arg(channel(index).number,
                                m_guide.clock().hoursAndMinutes(shown.start)));
    }
    card.poster->place(cardPosterRect(index));

    const bool isFocused = index == m_focus;
    const bool isPast = shown.stop <= m_now;
    const int padding = m_layout.px(cardPadding);
    QRect inside = card.rect.intersected(m_layout.grid).marginsRemoved({padding, 0, padding, 0});
    // The title may cover the left half of the picture, which fades out.
    inside.setRight(inside.right() - card.poster->geometry().width() / 2);

    card.title.show(m_wording.title(shown.title),
                    {.pixelSize = m_layout.px(18),
                     .weight = isFocused ? QFont::Bold : QFont::Normal,
                     .color = isPast && !isFocused ? theme::pastText : theme::text,
                     .alignment = Qt::AlignLeft | Qt::AlignVCenter,
                     .maxLines = 2},
                    inside);
}

QRect GuideScene::cardRect(ProgrammeIndex index) const
{
    const Programme &shown = programme(index);
    const int row = static_cast<int>(qint64(index.channel) - qint64(m_firstChannel));
    QRect rect = m_layout.row(row);
    rect.setLeft(m_layout.x(shown.start, m_gridStart));
    rect.setRight(m_layout.x(shown.stop, m_gridStart) - 1 - m_layout.px(cardGap));
    if (rect.width() < m_layout.px(narrowestCard))
        rect.setWidth(m_layout.px(narrowestCard));
    return rect;
}

// Returns a rectangle at the right end of the visible part of the card. Its width depends on the
// length of the programme alone, so that scrolling does not change it.
QRect GuideScene::cardPosterRect(ProgrammeIndex index) const
{
    const QRect card = cardRect(index);
    const QRect grid = m_layout.grid;
    const int cardWidth = m_layout.width(programme(index).stop - programme(index).start);
    QRect poster(0, card.top(), std::clamp(cardWidth * 2 / 5, 1, card.height() * 16 / 9),
                 card.height());
    poster.moveRight(isInGrid(card) ? std::min(card.right(), grid.right()) : card.right());

    // A card outside of the grid is not painted, but its rectangle may be on the screen, behind the panel or
    // the channels. So the rectangle of its picture moves off the screen, and the policy clears the picture.
    if (card.right() < grid.left())
        poster.translate(-m_layout.size().width(), 0);
    else if (card.left() > grid.right())
        poster.translate(m_layout.size().width(), 0);
    if (card.bottom() < grid.top())
        poster.translate(0, -m_layout.size().height());
    else if (card.top() > grid.bottom())
        poster.translate(0, m_layout.size().height());
    return poster;
}

// Forgets cards that are farther from the grid than its width or height. Nearer cards stay, without their
// pictures: viewers often come back.
void GuideScene::forgetFarCards()
{
    const QSize reach = m_layout.grid.size();
    const QRect neighbourhood =
        m_layout.grid.marginsAdded({reach.width(), reach.height(), reach.width(), reach.height()});
    std::erase_if(m_cards, [&](auto &entry) {
        auto &[index, card] = entry;
        card.rect = cardRect(index);
        card.poster->place(cardPosterRect(index));
        return !neighbourhood.intersects(card.rect);
    });
}

std::vector<PosterItem *> GuideScene::pictures() const
{
    std::vector<PosterItem *> items{m_panel.poster.get()};
    for (const auto &[index, entry] : m_channels)
        items.push_back(entry.badge.get());

    std::vector<PosterItem *> posters;
    posters.reserve(m_cards.size());
    for (const auto &[index, card] : m_cards)
        posters.push_back(card.poster.get());
    const QPoint focus = m_cards.at(m_focus).rect.center();
    std::ranges::stable_sort(posters, {}, [focus](const PosterItem *poster) {
        return (poster->geometry().center() - focus).manhattanLength();
    });
    items.insert(items.end(), posters.begin(), posters.end());
    return items;
}

bool GuideScene::hasWantedPictures() const
{
    return std::ranges::any_of(pictures(), &PosterItem::isWanted);
}

bool GuideScene::createPictures(int limit)
{
    for (PosterItem *item : pictures()) {
        if (limit == 0)
            break;
        if (!item->isWanted())
            continue;
        item->create();
        --limit;
    }
    m_policy.decide();
    return hasWantedPictures();
}

} // namespace tvguide
