#ifndef TVGUIDE_GUIDEPAINTER_H
#define TVGUIDE_GUIDEPAINTER_H

#include <QBrush>
#include <QPixmap>
#include <QSize>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace ovelin {
class ThrobberRenderer;
}

namespace tvguide {

class GuideScene;
class TextBlock;
struct ChannelEntry;
struct ProgrammeCard;
struct ProgrammeIndex;

// Paints a scene. The brushes are made once for a size of the screen.
class GuidePainter
{
public:
    GuidePainter(const GuideScene &scene, ovelin::ThrobberRenderer &throbber);

    void paint(QPainter &painter);

private:
    struct Brushes
    {
        QSize size;
        // The background on a platform with tiled pixmaps; null on other platforms.
        QPixmap platformBackground;
        QBrush background;
        QBrush panel;
        QBrush card;
        QBrush runningCard;
        QBrush focusedCard;
    };

    void makeBrushes();
    void paintBackground(QPainter &painter) const;
    void paintHeading(QPainter &painter) const;
    void paintPanel(QPainter &painter);
    void paintTimeLine(QPainter &painter) const;
    void paintChannel(QPainter &painter, const ChannelEntry &entry) const;
    void paintCards(QPainter &painter);
    void paintCard(QPainter &painter, ProgrammeIndex index, const ProgrammeCard &card);
    void paintCardText(QPainter &painter, const ProgrammeCard &card) const;
    void paintMoreChannels(QPainter &painter) const;
    void paintFocusRing(QPainter &painter, const QRect &card) const;
    void paintNow(QPainter &painter) const;
    void paintThrobber(QPainter &painter, const QRect &area, int size, int penWidth);
    int rowsBottom() const;
    const QBrush &cardBrush(ProgrammeIndex index) const;

    const GuideScene &m_scene;
    ovelin::ThrobberRenderer &m_throbber;
    Brushes m_brushes;
};

} // namespace tvguide

#endif
