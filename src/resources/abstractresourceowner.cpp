#include <ovelin/abstractresourceowner.h>

#include "sceneresourcetracker_p.h"

namespace ovelin {

namespace {

// Returns the owner's state, or null when there is no tracker that takes registrations.
QSharedPointer<ResourceOwnerState> registerWithTracker(IResourceOwner *owner,
                                                       const ResourceInfo &info)
{
    SceneResourceTracker *tracker = sceneResourceTracker();
    if (!tracker || tracker->isRegistrationBlocked())
        return {};

    const auto state = tracker->registerResource(owner, info);
    // A slot may have removed the owner and registered it anew.
    const auto known = tracker->owners().find(owner);
    return known == tracker->owners().end() ? state : known->second;
}

} // namespace

/*!
    \class ovelin::AbstractResourceOwner
    \inmodule Ovelin
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
    Destroys the owner. If it is still registered with the installed tracker, that one forgets it and
    its resources as unregisterResources() does, with the same signals; messages show it without
    address and names, and states that the application keeps have no owner from then on.

    An item that was registered with another tracker than the installed one leaves that one no signal;
    unregister it before another tracker is installed.
*/
AbstractResourceOwner::~AbstractResourceOwner()
{
    if (SceneResourceTracker *tracker = sceneResourceTracker())
        SceneResourceTrackerPrivate::get(tracker)->removeDyingOwner(this, ownerState.data());
    else if (ownerState)
        ownerState->owner = nullptr;
}

/*!
    Registers the image at \a url as resource \a id, or updates the resource that has this id.

    Returns false, and does nothing, when no tracker is installed or registration is blocked. Signals
    as for SceneResourceTracker::registerResource().
*/
bool AbstractResourceOwner::registerImage(int id, const QUrl &url)
{
    const auto state = registerWithTracker(
        this, {.url = url, .name = {}, .id = id, .type = ResourceInfo::Image, .ownerState = {}});
    if (!state)
        return false;

    ownerState = state;
    return true;
}

/*!
    Registers the resource \a id of kind \a type by its \a name, or updates the resource that has this
    id. Any type is passed on, ResourceInfo::Image included.

    Returns false, and does nothing, when no tracker is installed or registration is blocked. Signals
    as for SceneResourceTracker::registerResource().
*/
bool AbstractResourceOwner::registerResource(int id, const QString &name, ResourceInfo::Type type)
{
    const auto state = registerWithTracker(
        this, {.url = {}, .name = name, .id = id, .type = type, .ownerState = {}});
    if (!state)
        return false;

    ownerState = state;
    return true;
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

    tracker->unregisterResource(this, id);
    // A slot may have dropped the state already.
    if (ownerState && ownerState->resourceCount == 0)
        ownerState.reset();
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
    // The item stays when a slot registered something for it in the meantime.
    if (tracker->owners().find(this) == tracker->owners().end())
        ownerState.reset();
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
