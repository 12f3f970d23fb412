#ifndef TVGUIDE_PRESENTATION_H
#define TVGUIDE_PRESENTATION_H

#include "guidepainter.h"
#include "guidescene.h"
#include "resourcepolicy.h"

#include <ovelin/sceneresourcetracker.h>
#include <ovelin/throbberrenderer.h>

namespace tvguide {

// The scene with its painter, its policy and its throbber. Each beat (tick) of the throbber makes some of
// the pictures that are wanted.
class Presentation : public QObject
{
    Q_OBJECT

public:
    Presentation(ovelin::SceneResourceTracker &tracker, const Guide &guide, const Wording &wording,
                 const QSize &size, Instant now, qint64 budget);

    GuideScene &scene() { return m_scene; }
    const GuideScene &scene() const { return m_scene; }
    const ResourcePolicy &policy() const { return m_policy; }

    // Makes one beat at once, for callers without an event loop.
    void beat();
    void setRunning(bool running);

    void paint(QPainter &painter);

Q_SIGNALS:
    void changed();

private:
    void createPictures();
    void updateThrobber();

    ResourcePolicy m_policy;
    GuideScene m_scene;
    ovelin::ThrobberRenderer m_throbber;
    GuidePainter m_painter;
    bool m_isRunning = false;
};

} // namespace tvguide

#endif
