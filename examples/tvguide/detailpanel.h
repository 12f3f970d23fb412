#ifndef TVGUIDE_DETAILPANEL_H
#define TVGUIDE_DETAILPANEL_H

#include "guide.h"
#include "posteritem.h"
#include "textblock.h"

#include <memory>
#include <vector>

namespace tvguide {

class ScreenLayout;
struct Wording;

// A word in a frame, such as a rating.
struct PanelTag
{
    QRect frame;
    QColor color;
    TextBlock label;
};

// The details of one programme. Tags and an episode line take room only if the guide has them.
struct DetailPanel
{
    TextBlock title;
    std::vector<PanelTag> tags;
    TextBlock facts;
    TextBlock remaining;
    TextBlock episode;
    TextBlock description;
    std::unique_ptr<PosterItem> poster;

    void show(const Programme &programme, const Channel &channel, const WallClock &clock,
              Instant now, const Wording &wording, const ScreenLayout &layout);

private:
    int showTags(const Programme &programme, const Wording &wording, const ScreenLayout &layout);
};

} // namespace tvguide

#endif
