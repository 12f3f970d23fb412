#ifndef TVGUIDE_SCREENLAYOUT_H
#define TVGUIDE_SCREENLAYOUT_H

#include "times.h"

#include <QRect>
#include <QSize>

namespace tvguide {

// The rectangles of the parts of the screen, in pixels. They come from a design of 1280 by 720
// pixels by integer arithmetic, so that they are the same on every processor.
class ScreenLayout
{
public:
    static constexpr QSize minimumSize{320, 180};
    static constexpr QSize maximumSize{7680, 4320};

    explicit ScreenLayout(const QSize &size);

    // Converts a length of the design to pixels of this screen.
    int px(int designPixels) const;

    QSize size() const { return m_size; }
    QRect screen() const { return {QPoint(0, 0), m_size}; }

    QRect heading;
    QRect date;
    QRect clock;

    QRect panel;
    QRect panelPoster;
    QRect panelFacts;
    QRect panelTitle;
    QRect panelProgress;
    QRect panelRemaining;
    QRect panelDescription;

    QRect timeLine;
    QRect rail;
    QRect grid;
    int rowCount = 0;

    QRect row(int index) const;
    QRect railEntry(int index) const;

    // Convert times to pixels on the time line, for a grid that begins at gridStart, and back.
    int x(Instant instant, Instant gridStart) const;
    int width(std::chrono::seconds duration) const;
    std::chrono::seconds visibleDuration() const;

private:
    QSize m_size;
    int m_rowPitch;
    int m_rowHeight;
};

} // namespace tvguide

#endif
