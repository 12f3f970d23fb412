#ifndef SNIPPETS_QUICKOWNERS_H
#define SNIPPETS_QUICKOWNERS_H

#include "textitem.h"

#include <ovelin/abstractresourceowner.h>
#include <ovelin/sceneresourcetracker.h>

#include <QQuickItem>
#include <QSGNode>

//! [text]
// A text that keeps its painting only while the application allows it.
class OwnedTextItem : public TextItem
{
    Q_OBJECT

public:
    OwnedTextItem() { m_owner.registerResource(1, {}, ovelin::ResourceInfo::PaintedItem); }
    ~OwnedTextItem() override { m_owner.unregisterResources(); }

protected:
    // The render thread may call this.
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override
    {
        if (m_owner.isResourcesAllowed())
            return TextItem::updatePaintNode(node, data);
        delete node;
        return nullptr;
    }

private:
    class Owner : public ovelin::AbstractResourceOwner
    {
    public:
        explicit Owner(OwnedTextItem *item)
            : m_item(item)
        {
        }

        QObject *resourceOwnerObject() override { return m_item; }
        void allowResources() override { m_item->update(); }
        void releaseResources() override { m_item->update(); }

    private:
        OwnedTextItem *m_item;
    };

    Owner m_owner{this};
};
//! [text]

//! [positions]
// Reads where the owners are in the window. Call this before a decision, in the GUI thread.
inline void readPositions(const ovelin::SceneResourceTracker &tracker)
{
    for (const auto &[owner, state] : tracker.owners()) {
        const auto *item = qobject_cast<QQuickItem *>(owner->resourceOwnerObject());
        if (item)
            state->geometry = item->mapRectToScene(item->boundingRect()).toAlignedRect();
    }
}
//! [positions]

#endif
