#ifndef GALLERY_POSTERITEM_H
#define GALLERY_POSTERITEM_H

#include <ovelin/abstractresourceowner.h>

#include <QImage>
#include <QQuickItem>
#include <QUrl>

// A picture that the item holds only while the application allows it.
class PosterItem : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QUrl source MEMBER m_source NOTIFY sourceChanged FINAL)
    Q_PROPERTY(bool hasPicture READ hasPicture NOTIFY pictureChanged FINAL)

public:
    explicit PosterItem(QQuickItem *parent = nullptr);
    ~PosterItem() override;

    bool hasPicture() const { return !m_picture.isNull(); }

Q_SIGNALS:
    void sourceChanged();
    void pictureChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    //! [owner]
    // A member, not a base class: QQuickItem has a releaseResources() too, which Qt Quick calls when
    // the item leaves a window. One function would override both.
    class Owner : public ovelin::AbstractResourceOwner
    {
    public:
        explicit Owner(PosterItem *item)
            : m_item(item)
        {
        }

        QObject *resourceOwnerObject() override { return m_item; }
        void allowResources() override { m_item->readPicture(); }
        void releaseResources() override { m_item->setPicture({}); }

    private:
        PosterItem *m_item;
    };
    //! [owner]

    void registerPicture();
    void readPicture();
    void setPicture(const QImage &picture);

    Owner m_owner{this};
    QUrl m_source;
    QImage m_picture;
    bool m_isNodeStale = false;
};

#endif
