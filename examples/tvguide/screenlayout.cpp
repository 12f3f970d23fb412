#include "screenlayout.h"

#include <algorithm>

namespace tvguide {

namespace {

constexpr QSize design(1280, 720);

// Television sets hide the edge of the picture.
constexpr int sideMargin = 48;
constexpr int topMargin = 26;
constexpr int bottomMargin = 26;

constexpr int headingHeight = 44;
constexpr int panelTop = 82;
constexpr int panelHeight = 220;
constexpr int panelPadding = 18;
constexpr int timeLineTop = 310;
constexpr int gridTop = 346;
constexpr int rowPitch = 70;
constexpr int rowHeight = 62;
constexpr int railWidth = 208;
constexpr int railGap = 12;

constexpr int hourWidth = 400;
constexpr int secondsPerHour = 3600;

// In pixels: outside of every screen, and small enough that sums do not overflow an int.
constexpr qint64 farAway = 1'000'000;

} // namespace

ScreenLayout::ScreenLayout(const QSize &size)
    : m_size(size)
    , m_rowPitch(px(rowPitch))
    , m_rowHeight(px(rowHeight))
{
    const int left = px(sideMargin);
    const int width = m_size.width() - 2 * left;
    const int right = left + width;

    const int clockWidth = px(130);
    const int dateWidth = px(320);
    heading = QRect(left, px(topMargin), width - clockWidth - dateWidth, px(headingHeight));
    clock = QRect(right - clockWidth, px(topMargin), clockWidth, px(headingHeight));
    date = QRect(clock.left() - dateWidth, px(topMargin), dateWidth, px(headingHeight));

    panel = QRect(left, px(panelTop), width, px(panelHeight));
    const QRect inside = panel.marginsRemoved(
        QMargins(px(panelPadding), px(panelPadding), px(panelPadding), px(panelPadding)));
    panelPoster = QRect(inside.topLeft(), QSize(inside.height() * 16 / 9, inside.height()));
    const int textLeft = panelPoster.right() + 1 + px(28);
    const int textWidth = inside.right() + 1 - px(8) - textLeft;
    const auto line = [&](int top, int height) {
        return QRect(textLeft, inside.top() + px(top), textWidth, px(height));
    };
    panelTitle = line(-4, 42);
    panelFacts = line(40, 28);
    const int remainingWidth = std::min(px(260), textWidth / 2);
    panelRemaining = line(66, 26);
    panelRemaining.setLeft(panelRemaining.right() + 1 - remainingWidth);
    panelProgress = line(76, 6);
    panelProgress.setRight(panelRemaining.left() - px(20));
    panelDescription = line(98, 90);

    timeLine = QRect(left + px(railWidth + railGap), px(timeLineTop),
                     right - left - px(railWidth + railGap), px(gridTop - timeLineTop));
    const int gridBottom = m_size.height() - px(bottomMargin);
    const int rowGap = m_rowPitch - m_rowHeight;
    rowCount = std::max(1, (gridBottom - px(gridTop) + rowGap) / m_rowPitch);
    const int gridHeight = rowCount * m_rowPitch - rowGap;
    grid = QRect(timeLine.left(), px(gridTop), timeLine.width(), gridHeight);
    rail = QRect(left, grid.top(), px(railWidth), gridHeight);
}

// Scales by the width or the height of the screen, whichever gives the smaller scale.
int ScreenLayout::px(int designPixels) const
{
    const bool narrow = m_size.width() * design.height() <= m_size.height() * design.width();
    const int actual = narrow ? m_size.width() : m_size.height();
    const int designed = narrow ? design.width() : design.height();
    return (designPixels * actual + designed / 2) / designed;
}

QRect ScreenLayout::row(int index) const
{
    return {grid.left(), grid.top() + index * m_rowPitch, grid.width(), m_rowHeight};
}

QRect ScreenLayout::railEntry(int index) const
{
    return {rail.left(), rail.top() + index * m_rowPitch, rail.width(), m_rowHeight};
}

int ScreenLayout::x(Instant instant, Instant gridStart) const
{
    return grid.left() + width(instant - gridStart);
}

int ScreenLayout::width(std::chrono::seconds duration) const
{
    const qint64 pixels = duration.count() * px(hourWidth) / secondsPerHour;
    return static_cast<int>(std::clamp(pixels, -farAway, farAway));
}

std::chrono::seconds ScreenLayout::visibleDuration() const
{
    return std::chrono::seconds(qint64(grid.width()) * secondsPerHour / px(hourWidth));
}

} // namespace tvguide
