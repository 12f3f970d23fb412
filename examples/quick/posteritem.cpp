#include "posteritem.h"

#include <QQmlFile>
#include <QQmlInfo>
#include <QQuickWindow>
#include <QSGImageNode>

PosterItem::PosterItem(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(this, &PosterItem::sourceChanged, this, &PosterItem::registerPicture);
}

// Unregisters while the item still has its class and its name, which the tracker's log shows.
PosterItem::~PosterItem()
{
    m_owner.unregisterResources();
}

//! [register]
void PosterItem::registerPicture()
{
    setPicture({});
    if (m_source.isEmpty())
        m_owner.unregisterResources();
    else if (m_owner.registerImage(1, m_source) && m_owner.isResourcesAllowed())
        readPicture(); // the item was allowed to hold its previous picture
}
//! [register]

void PosterItem::readPicture()
{
    const QImage picture(QQmlFile::urlToLocalFileOrQrc(m_source));
    if (picture.isNull())
        qmlWarning(this) << "There is no picture in " << m_source.toDisplayString();
    setPicture(picture);
}

void PosterItem::setPicture(const QImage &picture)
{
    m_picture = picture;
    m_isNodeStale = true;
    update();
    Q_EMIT pictureChanged();
}

//! [node]
// The render thread may call this. A node that is deleted deletes its texture.
QSGNode *PosterItem::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    auto *imageNode = static_cast<QSGImageNode *>(node);
    if (m_isNodeStale) {
        delete imageNode;
        imageNode = nullptr;
        m_isNodeStale = false;
    }
    if (m_picture.isNull())
        return nullptr;

    if (!imageNode) {
        imageNode = window()->createImageNode();
        imageNode->setOwnsTexture(true);
        imageNode->setTexture(window()->createTextureFromImage(m_picture));
        imageNode->setFiltering(QSGTexture::Linear);
    }
    imageNode->setRect(boundingRect());
    return imageNode;
}
//! [node]
