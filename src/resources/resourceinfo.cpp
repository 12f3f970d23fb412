#include <ovelin/resourceinfo.h>

namespace ovelin {

/*!
    \class ovelin::IResourceOwner
    \inmodule Ovelin
    \inheaderfile ovelin/resourceinfo.h
    \brief The interface through which the tracker calls the item that owns resources.

    \snippet tst_snippets.cpp owner

    Items on the screen implement this interface, usually by deriving from AbstractResourceOwner.
    The tracker compares owners by their addresses. It neither owns nor destroys them: an owner must
    leave the tracker before it is destroyed.

    \since Ovelin 1.0
    \sa AbstractResourceOwner, SceneResourceTracker
*/

/*!
    Destroys the owner. Only the application destroys owners.
*/
IResourceOwner::~IResourceOwner() = default;

/*!
    \fn QObject *ovelin::IResourceOwner::resourceOwnerObject()

    Returns the object that describes the owner in the tracker's messages, which show its address,
    its class name and its object name. Must not return null. The message is added to the log after this call.
*/

/*!
    \fn void ovelin::IResourceOwner::allowResources()

    Creates the resources of the owner: SceneResourceTracker::allowResources() calls this function.
    It may call the tracker, and may destroy the owner.
*/

/*!
    \fn void ovelin::IResourceOwner::releaseResources()

    Releases the resources of the owner: SceneResourceTracker::releaseResources() calls this
    function. It may call the tracker, and may destroy the owner.
*/

/*!
    \class ovelin::ResourceOwnerState
    \inmodule Ovelin
    \inheaderfile ovelin/resourceinfo.h
    \brief The state of one owner of resources, shared by the tracker, the owner and the
    application.

    \image resource-statuses.png The statuses, and the changes between them that are usual

    The guide \l {The road of a resource} explains the statuses. The recipe
    \l {How do I keep pictures within a memory budget?} uses applicationValue1.

    The tracker creates a state when a new owner registers its first resource. The tracker's table
    of owners, each of the owner's entries, the owner and the application hold the state through
    QSharedPointer. A state keeps its last status and count when its owner leaves the tracker.

    \since Ovelin 1.0
*/

/*!
    \enum ovelin::ResourceOwnerState::Status

    The application's decision about an owner, set by SceneResourceTracker::setStatus().

    \value CreationRequested The owner waits for a decision. A new owner has this status.
    \value CreationAllowed   The owner may hold its resources.
    \value CreationDenied    The owner asked, and may not create its resources.
    \value Cleared           The owner held its resources, and had to release them.
    \value Ignored           The application leaves the owner alone: the owner may hold its resources.
*/

/*!
    \variable ovelin::ResourceOwnerState::status
    \brief The status of the owner.
*/

/*!
    \variable ovelin::ResourceOwnerState::owner
    \brief The owner that this state belongs to, or null. The state does not own the owner.

    If an AbstractResourceOwner is destroyed while a tracker knows it, the pointer becomes null.
    It does not become null when an owner leaves the tracker: after that owner is destroyed, do not
    call SceneResourceTracker::allowResources() and SceneResourceTracker::releaseResources() with
    this state.
*/

/*!
    \variable ovelin::ResourceOwnerState::applicationValue1
    \brief A value for the application. The library neither reads nor writes it. Initially 0.
*/

/*!
    \variable ovelin::ResourceOwnerState::resourceCount
    \brief The number of the owner's resources in the tracker. registerResource() and
    unregisterResource() of the tracker update it. unregisterResources() leaves it as it is, unless a
    slot registers a resource of the owner meanwhile.
*/

/*!
    \variable ovelin::ResourceOwnerState::applicationValue2
    \brief A value for the application. The library neither reads nor writes it. Initially 0.
*/

/*!
    \variable ovelin::ResourceOwnerState::geometry
    \brief The owner's rectangle on the screen in device pixels, initially the null rectangle. The
    owner or the application writes it. The library only shows it in messages.
*/

/*!
    \class ovelin::ResourceInfo
    \inmodule Ovelin
    \inheaderfile ovelin/resourceinfo.h
    \brief One resource that an owner intends to create.

    \snippet tst_snippets.cpp entries

    The guide \l {The road of a resource} tells how an entry comes and goes.

    A default-constructed ResourceInfo is an image with the id 0, an empty URL, a null name and no
    owner's state.

    \since Ovelin 1.0
    \sa ovelin::SceneResourceTracker::registerResource()
*/

/*!
    \enum ovelin::ResourceInfo::Type

    The kind of a resource.

    \value Image           An image with a URL.
    \value OffscreenBuffer A buffer that the owner paints into.
    \value PaintedItem     An item whose painting is kept.
*/

/*!
    \variable ovelin::ResourceInfo::url
    \brief The location of an image; usually empty for the other types.
*/

/*!
    \variable ovelin::ResourceInfo::name
    \brief The name of a resource; null if registerImage() registered the resource.
*/

/*!
    \variable ovelin::ResourceInfo::id
    \brief The identifier that the owner has chosen, unique only within that owner.
*/

/*!
    \variable ovelin::ResourceInfo::type
    \brief The kind of the resource.
*/

/*!
    \variable ovelin::ResourceInfo::ownerState
    \brief The state of the owner; never null in the tracker's list. The tracker ignores the state in
    a ResourceInfo that is passed to registerResource(). Copies of a ResourceInfo share the state.
*/

} // namespace ovelin
