#ifndef TVGUIDE_GUIDESCENE_H
#define TVGUIDE_GUIDESCENE_H

#include "detailpanel.h"
#include "guide.h"
#include "posteritem.h"
#include "screenlayout.h"
#include "textblock.h"
#include "wording.h"

#include <QObject>

#include <deque>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace ovelin {
class SceneResourceTracker;
}

namespace tvguide {

class ResourcePolicy;

// The index of a channel in the guide, and of a programme on this channel.
struct ProgrammeIndex
{
    std::size_t channel = 0;
    std::size_t programme = 0;

    auto operator<=>(const ProgrammeIndex &) const = default;
};

struct ProgrammeCard
{
    QRect rect;
    TextBlock title;
    std::unique_ptr<PosterItem> poster;
};

struct ChannelEntry
{
    QRect rect;
    TextBlock number;
    TextBlock name;
    std::unique_ptr<PosterItem> badge;
};

struct TimeMark
{
    int x = 0;
    TextBlock label;
};

enum class Direction { Left, Right, Up, Down };

// The content of the screen: the channels and programmes with their rectangles, texts and pictures,
// and the focus.
class GuideScene : public QObject
{
    Q_OBJECT

public:
    GuideScene(const Guide &guide, const Wording &wording, const QSize &size, Instant now,
               ResourcePolicy &policy);
    ~GuideScene() override;

    void resize(const QSize &size);
    void setTime(Instant now);
    void moveFocus(Direction direction);

    // Makes at most `limit` of the wanted pictures: first the panel's and the channels', then those of the
    // cards nearest to the focus. Returns true if more pictures are wanted. One call per frame keeps each
    // frame short.
    bool createPictures(int limit);
    bool hasWantedPictures() const;

    const Guide &guide() const { return m_guide; }
    const ScreenLayout &layout() const { return m_layout; }
    Instant now() const { return m_now; }
    Instant gridStart() const { return m_gridStart; }
    ProgrammeIndex focus() const { return m_focus; }

    const Channel &channel(ProgrammeIndex index) const;
    const Programme &programme(ProgrammeIndex index) const;

    // The parts that a painter and a description need. The cards include some that have left the
    // screen; isInGrid() is true for the cards on the screen.
    const std::map<ProgrammeIndex, ProgrammeCard> &cards() const { return m_cards; }
    bool isInGrid(const QRect &card) const { return m_layout.grid.intersects(card); }
    const std::map<std::size_t, ChannelEntry> &channels() const { return m_channels; }
    const std::deque<TimeMark> &timeMarks() const { return m_timeMarks; }
    const DetailPanel &panel() const { return m_panel; }
    const TextBlock &heading() const { return m_heading; }
    const TextBlock &date() const { return m_date; }
    const TextBlock &clock() const { return m_clock; }

    // Returns the part of a running programme that is over, in thousandths.
    int progress(const Programme &programme) const;

Q_SIGNALS:
    void changed();

private:
    void arrange();
    void scrollToFocus();
    void arrangeHeading();
    void arrangePanel();
    void arrangeTimeLine();
    void arrangeChannels();
    void arrangeChannel(std::size_t index);
    void arrangeCards();
    void arrangeRow(std::size_t channel);
    void arrangeCard(ProgrammeIndex index);
    void forgetFarCards();
    QRect cardRect(ProgrammeIndex index) const;
    QRect cardPosterRect(ProgrammeIndex index) const;
    std::vector<PosterItem *> pictures() const;
    Instant gridEnd() const { return m_gridStart + m_layout.visibleDuration(); }
    std::size_t programmeNear(std::size_t channel, Instant instant) const;

    const Guide &m_guide;
    const Wording m_wording;
    ResourcePolicy &m_policy;
    ScreenLayout m_layout;
    Instant m_now;
    Instant m_gridStart;
    std::size_t m_firstChannel = 0;
    ProgrammeIndex m_focus;
    // A focus that moves to another channel goes to the programme at this time.
    Instant m_focusTime;

    TextBlock m_heading;
    TextBlock m_date;
    TextBlock m_clock;
    DetailPanel m_panel;
    ProgrammeIndex m_panelProgramme;
    std::map<std::size_t, ChannelEntry> m_channels;
    std::deque<TimeMark> m_timeMarks;
    std::map<ProgrammeIndex, ProgrammeCard> m_cards;
};

} // namespace tvguide

#endif
