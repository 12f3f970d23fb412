#include <ovelin/abstractresourceowner.h>

#include "sceneresourcetracker_p.h"

namespace ovelin {

namespace {

// The owners whose destructors are running, linked, the innermost first. A slot can still reach these
// owners, but a resource that one of them registered now would stay in the tracker after its owner.
struct DyingOwner
{
    const IResourceOwner *owner;
    const DyingOwner *outer;
};

const DyingOwner *innermostDyingOwner = nullptr;

bool isDying(const IResourceOwner *owner)
{
    const DyingOwner *dying = innermostDyingOwner;
    while (dying && dying->owner != owner)
        dying = dying->outer;
    return dying;
}

bool registerWithTracker(IResourceOwner *owner, const ResourceInfo &info, StatePointer &heldState)
{
    SceneResourceTracker *tracker = sceneResourceTracker();
    if (!tracker || tracker->isRegistrationBlocked() || isDying(owner))
        return false;

    const StatePointer state = tracker->registerResource(owner, info);
    // A re-entrant slot may have removed the owner, and registered it anew with another state.
    auto *d = SceneResourceTrackerPrivate::get(tracker);
    const StatePointer known = d->knownState(owner);
    heldState = known == state || d->hasEntryOf(state) ? state : known;
    return true;
}

} // namespace

/*!
    \class ovelin::AbstractResourceOwner
    \inmodule Ovelin
    \inheaderfile ovelin/abstractresourceowner.h
    \brief The base class of items that register their resources with the installed tracker.

    \snippet tst_snippets.cpp owner

    The guide \l {The road of a resource} tells who calls the functions of an owner, and when.

    This class registers and unregisters the resources of an item with the tracker that
    sceneResourceTracker() returns at the time of each call. It holds the state of the item, and
    answers whether the item may hold its resources. The item implements resourceOwnerObject(),
    allowResources() and releaseResources(). Owners cannot be copied.

    allowResources() is not called again when an owner that is allowed registers another resource:
    the owner creates that resource itself. Unregistering does not call releaseResources(): the owner
    drops the resource itself.

    \since Ovelin 1.0
    \sa SceneResourceTracker
*/

/*!
    \variable ovelin::AbstractResourceOwner::ownerState
    \brief The state that the tracker returned for the item; null while nothing is registered.
*/

/*!
    Creates an owner that has registered nothing.
*/
AbstractResourceOwner::AbstractResourceOwner() = default;

/*!
    Destroys the owner. Every tracker that still knows the owner, installed or not, removes it and
    its resources with the signals of SceneResourceTracker::unregisterResources().

    Before the first signal, ResourceOwnerState::owner becomes null in all states of this owner, and
    the owner leaves the owners() of the tracker that emits the signal. The messages show the address
    "0x00000000" and no names. While the destructor runs, the owner's functions refuse registrations.
*/
AbstractResourceOwner::~AbstractResourceOwner()
{
    const DyingOwner dying{.owner = this, .outer = innermostDyingOwner};
    innermostDyingOwner = &dying;
    SceneResourceTrackerPrivate::ownerDestroyed(this, ownerState);
    innermostDyingOwner = dying.outer;
}

/*!
    Registers the image at \a url as resource \a id, or updates the owner's resource with this id.

    Returns false and does nothing if no tracker is installed, if the tracker blocks registrations,
    or if the owner is being destroyed. Emits what SceneResourceTracker::registerResource() emits.
*/
bool AbstractResourceOwner::registerImage(int id, const QUrl &url)
{
    return registerWithTracker(
        this, {.url = url, .name = {}, .id = id, .type = ResourceInfo::Image, .ownerState = {}},
        ownerState);
}

/*!
    Registers the resource \a id with \a name and \a type, or updates the owner's resource with this
    id. The type may be any value, even ResourceInfo::Image.

    Returns false and does nothing if no tracker is installed, if the tracker blocks registrations,
    or if the owner is being destroyed. Emits what SceneResourceTracker::registerResource() emits.
*/
bool AbstractResourceOwner::registerResource(int id, const QString &name, ResourceInfo::Type type)
{
    return registerWithTracker(
        this, {.url = {}, .name = name, .id = id, .type = type, .ownerState = {}}, ownerState);
}

/*!
    Unregisters the resource \a id. The item leaves the tracker with its last resource. Does nothing
    if no tracker is installed or nothing is registered. A tracker never blocks this. Emits what
    SceneResourceTracker::unregisterResource() emits.

    Does not call releaseResources(): the item drops the resource itself.
*/
void AbstractResourceOwner::unregisterResource(int id)
{
    SceneResourceTracker *tracker = sceneResourceTracker();
    if (!tracker || !ownerState)
        return;

    const auto *d = SceneResourceTrackerPrivate::get(tracker);
    const StatePointer before = d->knownState(this);
    tracker->unregisterResource(this, id);
    // A re-entrant slot may have dropped the state, or registered the item anew, with another state.
    if (ownerState && ownerState->resourceCount == 0) {
        const StatePointer known = d->knownState(this);
        ownerState = known == before ? StatePointer() : known;
    }
}

/*!
    Unregisters all resources: the item leaves the tracker. Does nothing if no tracker is installed
    or nothing is registered. A tracker never blocks this. Emits what
    SceneResourceTracker::unregisterResources() emits.

    Does not call releaseResources(): the item drops its resources itself.
*/
void AbstractResourceOwner::unregisterResources()
{
    SceneResourceTracker *tracker = sceneResourceTracker();
    if (!tracker || !ownerState)
        return;

    tracker->unregisterResources(this);
    ownerState = SceneResourceTrackerPrivate::get(tracker)->knownState(this);
}

/*!
    Returns true if the item may hold its resources: it has registered none, or its status is
    ResourceOwnerState::CreationAllowed or ResourceOwnerState::Ignored.
*/
bool AbstractResourceOwner::isResourcesAllowed() const
{
    return !ownerState || ownerState->status == ResourceOwnerState::CreationAllowed
           || ownerState->status == ResourceOwnerState::Ignored;
}

} // namespace ovelin
