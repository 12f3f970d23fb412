#ifndef OVELIN_BENCHMARKS_SCENE_H
#define OVELIN_BENCHMARKS_SCENE_H

#include <ovelin/sceneresourcetracker.h>

#include <QObject>

#include <vector>

namespace ovelin::benchmarks {

class Owner : public IResourceOwner
{
public:
    QObject *resourceOwnerObject() override { return &m_object; }
    void allowResources() override {}
    void releaseResources() override {}

private:
    QObject m_object;
};

// A tracker with images of several owners. Each operation uses the last image in the tracker's list, or
// another image, which is not in the list.
class Scene
{
public:
    Scene(int resourceCount, bool messagesEnabled);

    void registerLast();
    void unregisterLast();
    void registerAnother();
    void unregisterAnother();
    void setLastStatus();

    // The least that a tracker without an index does: walk along the list to the image, or to the end.
    void walkToLast() const;
    void walkToAnother() const;
    void walkOverOwned() const;

private:
    Q_DISABLE_COPY_MOVE(Scene)

    void walkTo(int id) const;

    const ResourceInfo m_last;
    const ResourceInfo m_another;
    std::vector<Owner> m_owners;
    SceneResourceTracker m_tracker{nullptr};
    QSharedPointer<ResourceOwnerState> m_lastState;
};

} // namespace ovelin::benchmarks

#endif
