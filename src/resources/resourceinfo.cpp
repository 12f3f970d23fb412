#include <ovelin/resourceinfo.h>

namespace ovelin {

/*!
    \class ovelin::IResourceOwner
    \inmodule Ovelin
    \inheaderfile ovelin/resourceinfo.h
    \brief The interface through which the tracker reaches the item that owns resources.

    Items on the screen implement it, as a rule by deriving from AbstractResourceOwner. The tracker
    compares owners by their pointers, never owns them and never destroys one: an owner leaves the
    tracker before it is destroyed.

    \since Ovelin 1.0
    \sa AbstractResourceOwner, SceneResourceTracker
*/

/*!
    Destroys the owner. Only the application does so; the tracker never does.
*/
IResourceOwner::~IResourceOwner() = default;

/*!
    \fn QObject *ovelin::IResourceOwner::resourceOwnerObject()

    Returns the object that stands for the owner in the tracker's messages, which show its address,
    class name and object name. Must not return null, nor call the tracker.
*/

/*!
    \fn void ovelin::IResourceOwner::allowResources()

    Called by SceneResourceTracker::allowResources(): the owner may create its resources now. It may
    call the tracker back, and may be destroyed from inside this call.
*/

/*!
    \fn void ovelin::IResourceOwner::releaseResources()

    Called by SceneResourceTracker::releaseResources(): the owner gives its resources up. It may call
    the tracker back, and may be destroyed from inside this call.
*/

/*!
    \class ovelin::ResourceOwnerState
    \inmodule Ovelin
    \inheaderfile ovelin/resourceinfo.h
    \brief What is known of one owner of resources: one record, shared by all who look at it.

    The tracker creates the record when an owner that it does not know registers its first resource.
    The tracker's table of owners, each of the owner's entries, the owner itself and the application
    hold it through QSharedPointer; it lives as long as one of them does. An owner that leaves the
    tracker leaves its last status and count in the record.

    \since Ovelin 1.0
*/

/*!
    \enum ovelin::ResourceOwnerState::Status

    The application's decision about an owner, set by SceneResourceTracker::setStatus().

    \value CreationRequested The owner waits for a decision; the only status that ovelin itself sets.
    \value CreationAllowed   The owner may hold its resources.
    \value CreationDenied    The owner may not create its resources.
    \value Cleared           The owner had resources and was told to give them up.
    \value Ignored           The owner's resources are not managed; it may hold them.
*/

/*!
    \variable ovelin::ResourceOwnerState::status
    \brief The owner's present status.
*/

/*!
    \variable ovelin::ResourceOwnerState::owner
    \brief The owner, not owned; null when the record has none, and then nothing is done through it.

    An owner that is destroyed while it is registered is taken out of its record. One that left the
    tracker before is still named here: do not use its record with
    SceneResourceTracker::allowResources() and SceneResourceTracker::releaseResources() any more.
*/

/*!
    \variable ovelin::ResourceOwnerState::applicationValue1
    \brief For the application's own use; ovelin neither reads nor writes it. Initially 0.
*/

/*!
    \variable ovelin::ResourceOwnerState::resourceCount
    \brief The number of the owner's resources in the tracker, as single registrations and single
    unregistrations count them. SceneResourceTracker::unregisterResources() leaves it as it is.
*/

/*!
    \variable ovelin::ResourceOwnerState::applicationValue2
    \brief For the application's own use; ovelin neither reads nor writes it. Initially 0.
*/

/*!
    \variable ovelin::ResourceOwnerState::geometry
    \brief The owner's rectangle on the screen in device pixels, written by the application and shown
    in the tracker's messages. Initially the null rectangle.
*/

/*!
    \class ovelin::ResourceInfo
    \inmodule Ovelin
    \inheaderfile ovelin/resourceinfo.h
    \brief One resource that an owner intends to create.

    A new record is an image with the number 0, without URL, name and owner's record.

    \since Ovelin 1.0
    \sa ovelin::SceneResourceTracker::registerResource()
*/

/*!
    \enum ovelin::ResourceInfo::Type

    The kind of a resource.

    \value Image           An image with a location.
    \value OffscreenBuffer A buffer that the owner paints into.
    \value PaintedItem     An item whose painted result is kept.
*/

/*!
    \variable ovelin::ResourceInfo::url
    \brief The location of an image; empty for the other kinds.
*/

/*!
    \variable ovelin::ResourceInfo::name
    \brief The name of a resource that is no image; null for images.
*/

/*!
    \variable ovelin::ResourceInfo::id
    \brief The identifier that the owner chose; unique within that owner only.
*/

/*!
    \variable ovelin::ResourceInfo::type
    \brief The kind of the resource.
*/

/*!
    \variable ovelin::ResourceInfo::ownerState
    \brief The owner's record: null in what an owner hands to the tracker, never null in what the
    tracker stores. Copies of a ResourceInfo share it.
*/

} // namespace ovelin
