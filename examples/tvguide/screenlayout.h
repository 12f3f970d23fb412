#ifndef TVGUIDE_SCREENLAYOUT_H
#define TVGUIDE_SCREENLAYOUT_H

#include "times.h"

#include <QRect>
#include <QSize>

namespace tvguide {

// Where the parts of the screen are. All of it is reckoned in whole numbers from a design of
// 1280 by 720: the same on every processor.
class ScreenLayout
{
public:
    static constexpr QSize minimumSize{320, 180};
    static constexpr QSize maximumSize{7680, 4320};

    explicit ScreenLayout(const QSize &size);

    // A length of the design, on this screen.
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

    // Places on the time line, for a grid that begins at the given time.
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
