#include "guidepainter.h"

#include "guidescene.h"
#include "theme.h"

#include <ovelin/platformnativeinterface.h>
#include <ovelin/throbberrenderer.h>

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace tvguide {

namespace {

constexpr int progressWhole = 1000;

// A gradient from top to bottom has one colour a row: Qt fills it faster than any texture.
QBrush verticalBrush(int height, const QColor &top, const QColor &bottom)
{
    QLinearGradient gradient(0, 0, 0, height);
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    return gradient;
}

void fillRounded(QPainter &painter, const QRect &rect, int radius, const QBrush &brush)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.setBrushOrigin(rect.topLeft());
    painter.drawRoundedRect(rect, radius, radius);
    painter.setBrushOrigin(0, 0);
}

void paintProgress(QPainter &painter, const QRect &track, int progress)
{
    const int radius = track.height() / 2;
    fillRounded(painter, track, radius, theme::progressTrack);
    QRect done = track;
    done.setWidth(std::max(track.width() * progress / progressWhole, track.height()));
    if (progress > 0)
        fillRounded(painter, done, radius, theme::accent);
}

// Fills a triangle with its tip at base + toTip. It is twice as wide as it is long.
void fillArrow(QPainter &painter, const QPoint &base, const QPoint &toTip)
{
    const QPoint side(toTip.y(), toTip.x());
    QPainterPath path(base + toTip);
    path.lineTo(base + side);
    path.lineTo(base - side);
    path.closeSubpath();
    painter.fillPath(path, theme::softText);
}

} // namespace

GuidePainter::GuidePainter(const GuideScene &scene, ovelin::ThrobberRenderer &throbber)
    : m_scene(scene)
    , m_throbber(throbber)
{
    m_throbber.setForegcoundColor(theme::accent);
    m_throbber.setBackgroundColor(theme::progressTrack);
}

void GuidePainter::makeBrushes()
{
    const ScreenLayout &layout = m_scene.layout();
    if (m_brushes.size == layout.size())
        return;

    const int cardHeight = layout.row(0).height();
    m_brushes.size = layout.size();
    m_brushes.background =
        verticalBrush(layout.size().height(), theme::backgroundTop, theme::backgroundBottom);
    m_brushes.panel = verticalBrush(layout.panel.height(), theme::panelTop, theme::panelBottom);
    m_brushes.card = verticalBrush(cardHeight, theme::cardTop, theme::cardBottom);
    m_brushes.runningCard =
        verticalBrush(cardHeight, theme::runningCardTop, theme::runningCardBottom);
    m_brushes.focusedCard =
        verticalBrush(cardHeight, theme::focusedCardTop, theme::focusedCardBottom);

    if (const ovelin::PlatformNativeInterface *platform = ovelin::platformNativeInterface()) {
        m_brushes.platformBackground = platform->createTiledPixmap(
            layout.size(), [screen = layout.screen(), brush = m_brushes.background](
                               QPainter &painter) { painter.fillRect(screen, brush); });
    }
}

void GuidePainter::paint(QPainter &painter)
{
    makeBrushes();
    painter.setRenderHint(QPainter::Antialiasing);

    paintBackground(painter);
    paintHeading(painter);
    paintPanel(painter);
    paintTimeLine(painter);
    for (const auto &[index, entry] : m_scene.channels())
        paintChannel(painter, entry);

    paintMoreChannels(painter);
    paintCards(painter);
}

void GuidePainter::paintBackground(QPainter &painter) const
{
    if (m_brushes.platformBackground.isNull()) {
        painter.fillRect(m_scene.layout().screen(), m_brushes.background);
        return;
    }
    painter.save();
    ovelin::platformNativeInterface()->setupPainterForTiledPixmap(m_brushes.platformBackground,
                                                                  painter);
    painter.drawPixmap(0, 0, m_brushes.platformBackground);
    painter.restore();
}

void GuidePainter::paintHeading(QPainter &painter) const
{
    m_scene.heading().draw(painter);
    m_scene.date().draw(painter);
    m_scene.clock().draw(painter);
}

void GuidePainter::paintPanel(QPainter &painter)
{
    const ScreenLayout &layout = m_scene.layout();
    const DetailPanel &panel = m_scene.panel();
    fillRounded(painter, layout.panel, layout.px(14), m_brushes.panel);

    const QRect poster = layout.panelPoster;
    if (panel.poster->picture().isNull())
        fillRounded(painter, poster, layout.px(12), theme::rowTrack);
    else
        painter.drawPixmap(poster.topLeft(), panel.poster->picture());
    if (panel.poster->isWanted())
        paintThrobber(painter, poster, layout.px(64), layout.px(6));

    panel.title.draw(painter);
    for (const PanelTag &tag : panel.tags) {
        painter.setPen(QPen(tag.color, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(tag.frame, layout.px(6), layout.px(6));
        tag.label.draw(painter);
    }
    panel.facts.draw(painter);
    panel.remaining.draw(painter);
    panel.episode.draw(painter);
    panel.description.draw(painter);
    paintProgress(painter, layout.panelProgress,
                  m_scene.progress(m_scene.programme(m_scene.focus())));
}

void GuidePainter::paintTimeLine(QPainter &painter) const
{
    const ScreenLayout &layout = m_scene.layout();
    for (const TimeMark &mark : m_scene.timeMarks()) {
        painter.setPen(QPen(theme::line, 1));
        painter.drawLine(mark.x, layout.timeLine.top() + layout.px(6), mark.x, rowsBottom());
        mark.label.draw(painter);
    }
    for (const auto &[index, entry] : m_scene.channels()) {
        const QRect track(layout.grid.left(), entry.rect.top(), layout.grid.width(),
                          entry.rect.height());
        fillRounded(painter, track, layout.px(8), theme::rowTrack);
    }
}

// Returns the bottom of the last channel: a guide may have fewer channels than the screen has rows.
int GuidePainter::rowsBottom() const
{
    return m_scene.channels().rbegin()->second.rect.bottom();
}

void GuidePainter::paintChannel(QPainter &painter, const ChannelEntry &entry) const
{
    entry.number.draw(painter);
    if (!entry.badge->picture().isNull())
        painter.drawPixmap(entry.badge->geometry().topLeft(), entry.badge->picture());
    entry.name.draw(painter);
}

const QBrush &GuidePainter::cardBrush(ProgrammeIndex index) const
{
    if (index == m_scene.focus())
        return m_brushes.focusedCard;
    return m_scene.programme(index).isRunning(m_scene.now()) ? m_brushes.runningCard
                                                             : m_brushes.card;
}

// The mark of the present time covers the cards, but neither the focused card nor any title.
void GuidePainter::paintCards(QPainter &painter)
{
    const QRect grid = m_scene.layout().grid;
    painter.save();
    painter.setClipRect(grid);
    for (const auto &[index, card] : m_scene.cards()) {
        if (m_scene.isInGrid(card.rect))
            paintCard(painter, index, card);
    }
    painter.restore();

    paintNow(painter);
    const ProgrammeCard &focused = m_scene.cards().at(m_scene.focus());
    paintCard(painter, m_scene.focus(), focused);
    for (const auto &[index, card] : m_scene.cards()) {
        if (m_scene.isInGrid(card.rect))
            paintCardText(painter, card);
    }
    paintFocusRing(painter, focused.rect.intersected(grid));
}

void GuidePainter::paintCard(QPainter &painter, ProgrammeIndex index, const ProgrammeCard &card)
{
    const ScreenLayout &layout = m_scene.layout();
    const QRect shown = card.rect.intersected(layout.grid);
    fillRounded(painter, shown, layout.px(8), cardBrush(index));

    const QRect poster = card.poster->geometry();
    const QRect seen = poster.intersected(shown);
    if (!card.poster->picture().isNull())
        painter.drawPixmap(seen, card.poster->picture(), seen.translated(-poster.topLeft()));
    if (card.poster->isWanted() && seen.width() > layout.px(36))
        paintThrobber(painter, seen, layout.px(28), layout.px(4));
}

void GuidePainter::paintCardText(QPainter &painter, const ProgrammeCard &card) const
{
    const ScreenLayout &layout = m_scene.layout();
    const int reach = layout.px(4);
    const int middle = card.rect.center().y();
    // A small arrow marks a programme that begins before the grid or ends after it.
    if (card.rect.left() < layout.grid.left())
        fillArrow(painter, QPoint(layout.grid.left() + reach, middle), QPoint(-reach, 0));
    if (card.rect.right() > layout.grid.right())
        fillArrow(painter, QPoint(layout.grid.right() - reach, middle), QPoint(reach, 0));
    card.title.draw(painter);
}

void GuidePainter::paintMoreChannels(QPainter &painter) const
{
    const ScreenLayout &layout = m_scene.layout();
    const int reach = layout.px(6);
    const QPoint base(layout.grid.center().x(), rowsBottom() + 2 * reach);
    if (m_scene.channels().rbegin()->first + 1 < m_scene.guide().channels().size())
        fillArrow(painter, base, QPoint(0, reach));
}

void GuidePainter::paintFocusRing(QPainter &painter, const QRect &card) const
{
    const ScreenLayout &layout = m_scene.layout();
    constexpr int glowSteps = 4;
    painter.setBrush(Qt::NoBrush);
    for (int i = glowSteps; i >= 0; --i) {
        QColor color = theme::accent;
        if (i > 0)
            color.setAlpha(56 / i);
        const int margin = layout.px(2 + 2 * i);
        const int width = std::max(1, layout.px(i == 0 ? 3 : 2));
        painter.setPen(QPen(color, width));
        painter.drawRoundedRect(card.marginsAdded({margin, margin, margin, margin}),
                                layout.px(8) + margin, layout.px(8) + margin);
    }
}

void GuidePainter::paintNow(QPainter &painter) const
{
    const ScreenLayout &layout = m_scene.layout();
    const int x = layout.x(m_scene.now(), m_scene.gridStart());
    if (x < layout.grid.left() || x > layout.grid.right())
        return;

    const int width = std::max(1, layout.px(2));
    const int head = layout.px(6);
    const QRect line(x, layout.timeLine.bottom() - head, width,
                     rowsBottom() - layout.timeLine.bottom() + head);
    painter.fillRect(line, theme::now);
    QPainterPath marker(QPointF(x - head + width / 2.0, line.top() - head));
    marker.lineTo(x + head + width / 2.0, line.top() - head);
    marker.lineTo(x + width / 2.0, line.top() + head / 2.0);
    marker.closeSubpath();
    painter.fillPath(marker, theme::now);
}

// One throbber serves all rectangles, so that all of them show the same angle.
void GuidePainter::paintThrobber(QPainter &painter, const QRect &area, int size, int penWidth)
{
    QRect circle(0, 0, size, size);
    circle.moveCenter(area.center());
    m_throbber.setPenWidth(std::max(1, penWidth));
    m_throbber.setRenderRect(circle);
    painter.setBrush(Qt::NoBrush);
    m_throbber.draw(painter);
}

} // namespace tvguide
