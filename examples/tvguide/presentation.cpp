#include "presentation.h"

namespace tvguide {

namespace {

using ovelin::ThrobberRenderer;

// Reading and composing a poster takes a few milliseconds. With this many posters a beat of 17
// milliseconds still has time to paint.
constexpr int picturesPerBeat = 2;

// The angles, in degrees, that ThrobberRenderer adds per beat of its default interval.
constexpr int beatRotation = 3;
constexpr int beatSpan = 6;

} // namespace

Presentation::Presentation(ovelin::SceneResourceTracker &tracker, const Guide &guide,
                           const Wording &wording, const QSize &size, Instant now, qint64 budget)
    : m_policy(tracker, budget)
    , m_scene(guide, wording, size, now, m_policy)
    , m_painter(m_scene, m_throbber)
{
    connect(&m_throbber, &ThrobberRenderer::updated, this, &Presentation::createPictures);
    connect(&m_scene, &GuideScene::changed, this, [this] {
        updateThrobber();
        Q_EMIT changed();
    });
}

void Presentation::beat()
{
    m_throbber.addAngles(beatRotation, beatSpan);
}

void Presentation::setRunning(bool running)
{
    m_isRunning = running;
    updateThrobber();
}

void Presentation::paint(QPainter &painter)
{
    m_painter.paint(painter);
}

void Presentation::createPictures()
{
    m_scene.createPictures(picturesPerBeat);
    updateThrobber();
    Q_EMIT changed();
}

// The throbber stops if no picture is wanted, so that no timer wakes the processor.
void Presentation::updateThrobber()
{
    const bool turns = m_isRunning && m_scene.hasWantedPictures();
    if (m_throbber.isRunning() != turns)
        m_throbber.setRunning(turns);
}

} // namespace tvguide
