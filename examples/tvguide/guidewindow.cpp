#include "guidewindow.h"

#include "presentation.h"
#include "theme.h"
#include "trackerlog.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

constexpr int logMargin = 32;
constexpr int logPixelSize = 12;
constexpr QColor logShade(0x07, 0x09, 0x14, 0xe8);

// On a Russian keyboard the L key types another letter.
bool isLogKey(const QKeyEvent &event)
{
    return event.key() == Qt::Key_L || event.text().toLower() == u"д"_s;
}

} // namespace

GuideWindow::GuideWindow(Presentation &presentation, const TrackerLog &log)
    : m_presentation(presentation)
    , m_log(log)
    , m_startTime(presentation.scene().now())
    , m_shownSince(std::chrono::steady_clock::now())
{
    setTitle(u"ovelin – tvguide"_s);
    setMinimumSize(ScreenLayout::minimumSize);
    setMaximumSize(ScreenLayout::maximumSize);
    resize(presentation.scene().layout().size());

    connect(&presentation, &Presentation::changed, this, qOverload<>(&QPaintDeviceWindow::update));
    connect(&m_clock, &QTimer::timeout, this, &GuideWindow::advanceClock);
    m_clock.start(std::chrono::seconds(1));
    presentation.setRunning(true);
}

void GuideWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_presentation.paint(painter);
    if (m_isLogShown)
        paintLog(painter);
}

void GuideWindow::resizeEvent(QResizeEvent *event)
{
    const QSize size =
        event->size().expandedTo(ScreenLayout::minimumSize).boundedTo(ScreenLayout::maximumSize);
    if (size != m_presentation.scene().layout().size())
        m_presentation.scene().resize(size);
}

void GuideWindow::keyPressEvent(QKeyEvent *event)
{
    GuideScene &scene = m_presentation.scene();
    if (isLogKey(*event)) {
        m_isLogShown = !m_isLogShown;
        update();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Left:
        scene.moveFocus(Direction::Left);
        break;
    case Qt::Key_Right:
        scene.moveFocus(Direction::Right);
        break;
    case Qt::Key_Up:
        scene.moveFocus(Direction::Up);
        break;
    case Qt::Key_Down:
        scene.moveFocus(Direction::Down);
        break;
    case Qt::Key_Escape:
        close();
        break;
    default:
        QRasterWindow::keyPressEvent(event);
    }
}

void GuideWindow::paintLog(QPainter &painter) const
{
    const QRect area =
        QRect(QPoint(0, 0), size()).marginsRemoved({logMargin, logMargin, logMargin, logMargin});
    painter.fillRect(area, logShade);

    QFont font = theme::font(logPixelSize);
    font.setFamily(u"DejaVu Sans Mono"_s);
    painter.setFont(font);
    painter.setPen(theme::text);
    const int lineHeight = QFontMetrics(font).lineSpacing();
    const QRect inside = area.marginsRemoved({lineHeight, lineHeight, lineHeight, lineHeight});
    const int messages = std::max(0, inside.height() / lineHeight - 1);
    painter.setClipRect(inside);
    int baseline = inside.top() + lineHeight;
    const QStringList lines = m_log.table(static_cast<std::size_t>(messages));
    for (const QString &line : lines) {
        painter.drawText(inside.left(), baseline, line);
        baseline += lineHeight;
    }
}

// The clock on the screen may begin with any time of day. From then on it runs as fast as the real clock.
void GuideWindow::advanceClock()
{
    using namespace std::chrono;
    const seconds elapsed = floor<seconds>(steady_clock::now() - m_shownSince);
    const Instant shown = m_presentation.scene().now();
    if (floor<minutes>(shown) != floor<minutes>(m_startTime + elapsed))
        m_presentation.scene().setTime(m_startTime + elapsed);
}

} // namespace tvguide
