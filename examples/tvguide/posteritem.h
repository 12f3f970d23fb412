#ifndef TVGUIDE_POSTERITEM_H
#define TVGUIDE_POSTERITEM_H

#include <ovelin/abstractresourceowner.h>

#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QUrl>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace tvguide {

// A picture on the screen: the poster of a programme or the sign of a channel. The item registers
// two resources, the picture itself and the buffer with the picture as the screen shows it. The
// item creates them when the policy allows it.
class PosterItem : public QObject, public ovelin::AbstractResourceOwner
{
    Q_OBJECT

public:
    enum class Shape {
        Card,  // fades out towards the text on its left
        Panel, // does not fade
        Badge, // the round sign of a channel
    };

    struct Subject
    {
        QString title;
        QString category;
        QUrl icon;
    };

    PosterItem(Shape shape, const Subject &subject, const QString &name);
    ~PosterItem() override;

    // Sets the rectangle of the item; items outside of the screen have one too.
    void place(const QRect &geometry);
    QRect geometry() const { return m_geometry; }

    // True if the policy allows the picture and create() has not made it yet.
    bool isWanted() const { return m_isWanted; }
    void create();
    const QPixmap &picture() const { return m_buffer; }

    ovelin::ResourceOwnerState::Status status() const;

    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override;
    void releaseResources() override;

private:
    enum ResourceId { Source = 1, Buffer = 2 };

    void registerResources();
    void registerSource();
    void describeToApplication();
    void loadSource();
    void compose();
    void paintItem(QPainter &painter, const QRect &rect) const;

    const Shape m_shape;
    const Subject m_subject;
    QRect m_geometry;
    QSize m_sourceSize;
    QImage m_source;
    QPixmap m_buffer;
    bool m_isWanted = false;
};

} // namespace tvguide

#endif
