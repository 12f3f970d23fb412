#include <ovelin/abstractresourceowner.h>

#include "sceneresourcetracker_p.h"

namespace ovelin {

namespace {

using StatePointer = QSharedPointer<ResourceOwnerState>;

// The state by which the tracker knows the owner at this moment: slots that an operation called may
// have removed the owner, or registered it anew. Null for an owner that is not there.
StatePointer knownState(const SceneResourceTracker *tracker, IResourceOwner *owner)
{
    const auto known = tracker->owners().find(owner);
    return known == tracker->owners().end() ? StatePointer() : known->second;
}

// The owners whose destructors run, the last one first. A slot can still reach them, but what they
// registered now would outlive them in the tracker.
class DyingOwner
{
public:
    explicit DyingOwner(const IResourceOwner *owner)
        : m_owner(owner)
        , m_outer(s_innermost)
    {
        s_innermost = this;
    }
    ~DyingOwner() { s_innermost = m_outer; }

    static bool contains(const IResourceOwner *owner)
    {
        const DyingOwner *dying = s_innermost;
        while (dying && dying->m_owner != owner)
            dying = dying->m_outer;
        return dying;
    }

private:
    Q_DISABLE_COPY_MOVE(DyingOwner)

    static DyingOwner *s_innermost;

    const IResourceOwner *const m_owner;
    DyingOwner *const m_outer;
};

DyingOwner *DyingOwner::s_innermost = nullptr;

bool registerWithTracker(IResourceOwner *owner, const ResourceInfo &info, StatePointer &heldState)
{
    SceneResourceTracker *tracker = sceneResourceTracker();
    if (!tracker || tracker->isRegistrationBlocked() || DyingOwner::contains(owner))
        return false;

    tracker->registerResource(owner, info);
    heldState = knownState(tracker, owner);
    return true;
}

} // namespace

/*!
    \class ovelin::AbstractResourceOwner
    \inmodule Ovelin
    \inheaderfile ovelin/abstractresourceowner.h
    \brief The base class of items that file their resources with the installed tracker.

    It does the bookkeeping of IResourceOwner: it registers and unregisters resources with the tracker
    that sceneResourceTracker() returns at the time of each call, keeps the item's state, and tells
    whether the item may hold its resources. The item itself implements resourceOwnerObject(),
    allowResources() and releaseResources(). Owners cannot be copied.

    \since Ovelin 1.0
    \sa SceneResourceTracker
*/

/*!
    \variable ovelin::AbstractResourceOwner::ownerState
    \brief The item's record in the tracker; null while nothing is registered.
*/

/*!
    Creates an owner without resources.
*/
AbstractResourceOwner::AbstractResourceOwner() = default;

/*!
    Destroys the owner. Every tracker where it is still registered, installed or not, forgets it and its
    resources as SceneResourceTracker::unregisterResources() does, with the same signals, the owner
    having left owners() before the first of them. Before any signal the states that the owner and the
    trackers hold lose it as their owner; the application may hold these still. Messages show it without
    address and names. Meanwhile the owner's own functions refuse to register anything.
*/
AbstractResourceOwner::~AbstractResourceOwner()
{
    const DyingOwner dying(this);
    SceneResourceTrackerPrivate::ownerDestroyed(this, ownerState);
}

/*!
    Registers the image at \a url as resource \a id, or updates the resource that has this id.

    Returns false, and does nothing, when no tracker is installed, when registration is blocked, and
    while the owner is being destroyed. Signals as for SceneResourceTracker::registerResource().
*/
bool AbstractResourceOwner::registerImage(int id, const QUrl &url)
{
    return registerWithTracker(
        this, {.url = url, .name = {}, .id = id, .type = ResourceInfo::Image, .ownerState = {}},
        ownerState);
}

/*!
    Registers the resource \a id of kind \a type by its \a name, or updates the resource that has this
    id. Any type is passed on, ResourceInfo::Image included.

    Returns false, and does nothing, when no tracker is installed, when registration is blocked, and
    while the owner is being destroyed. Signals as for SceneResourceTracker::registerResource().
*/
bool AbstractResourceOwner::registerResource(int id, const QString &name, ResourceInfo::Type type)
{
    return registerWithTracker(
        this, {.url = {}, .name = name, .id = id, .type = type, .ownerState = {}}, ownerState);
}

/*!
    Unregisters the resource \a id; with the last one the item leaves the tracker. Does nothing when
    no tracker is installed or nothing is registered. Never blocked. Signals as for
    SceneResourceTracker::unregisterResource().
*/
void AbstractResourceOwner::unregisterResource(int id)
{
    SceneResourceTracker *tracker = sceneResourceTracker();
    if (!tracker || !ownerState)
        return;

    const StatePointer before = knownState(tracker, this);
    tracker->unregisterResource(this, id);
    // A slot may have dropped the state already, or registered the item anew with another one.
    if (ownerState && ownerState->resourceCount == 0) {
        const StatePointer known = knownState(tracker, this);
        ownerState = known == before ? StatePointer() : known;
    }
}

/*!
    Unregisters all resources: the item leaves the tracker. Does nothing when no tracker is installed
    or nothing is registered. Never blocked. Signals as for
    SceneResourceTracker::unregisterResources().
*/
void AbstractResourceOwner::unregisterResources()
{
    SceneResourceTracker *tracker = sceneResourceTracker();
    if (!tracker || !ownerState)
        return;

    tracker->unregisterResources(this);
    ownerState = knownState(tracker, this);
}

/*!
    Returns whether the item may hold its resources: it has none registered, or its status is
    ResourceOwnerState::CreationAllowed or ResourceOwnerState::Ignored.
*/
bool AbstractResourceOwner::isResourcesAllowed() const
{
    return !ownerState || ownerState->status == ResourceOwnerState::CreationAllowed
           || ownerState->status == ResourceOwnerState::Ignored;
}

} // namespace ovelin
