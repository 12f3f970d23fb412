#include <ovelin/sceneresourcetracker.h>

#include "sceneresourcetracker_p.h"

#include <algorithm>
#include <utility>

namespace ovelin {

namespace {

SceneResourceTracker *installedTracker = nullptr;

auto isOf(const IResourceOwner *owner)
{
    return [owner](const ResourceInfo &info) { return info.ownerState->owner == owner; };
}

} // namespace

ResourceWalk::ResourceWalk(SceneResourceTrackerPrivate *tracker, Purpose purpose)
    : m_tracker(tracker)
    , m_outer(std::exchange(tracker->innermostWalk, this))
    , m_purpose(purpose)
    , m_end(tracker->resources.end())
{
}

ResourceWalk::ResourceWalk(SceneResourceTrackerPrivate *tracker, Entry removed)
    : ResourceWalk(tracker, Purpose::Remove)
{
    m_entries.append(removed);
}

ResourceWalk::~ResourceWalk()
{
    m_tracker->innermostWalk = m_outer;
}

// Steps to the next entry that is not erased. Returns false after the last one.
bool ResourceWalk::next()
{
    do {
        ++m_index;
    } while (m_index < m_entries.size() && !hasCurrent());
    return m_index < m_entries.size();
}

// True if the current entry is not erased.
bool ResourceWalk::hasCurrent() const
{
    return current() != m_end;
}

ResourceWalk::Entry ResourceWalk::current() const
{
    return m_entries[m_index];
}

// True if the walk removes its entries, and the entry is the current one.
bool ResourceWalk::removes(Entry entry) const
{
    return m_purpose == Purpose::Remove && m_index >= 0 && m_index < m_entries.size()
           && current() == entry;
}

// Notes that the entry is erased. The search starts at the current entry, which is usually the one
// sought, so that a walk stays linear.
void ResourceWalk::forget(Entry entry)
{
    const auto found = std::find(m_entries.begin() + m_index, m_entries.end(), entry);
    if (found != m_entries.end())
        *found = m_end;
}

void ResourceWalk::forgetAll()
{
    std::ranges::fill(m_entries, m_end);
}

SceneResourceTrackerPrivate *SceneResourceTrackerPrivate::s_newest = nullptr;

SceneResourceTrackerPrivate::SceneResourceTrackerPrivate()
    : m_older(std::exchange(s_newest, this))
{
}

SceneResourceTrackerPrivate::~SceneResourceTrackerPrivate()
{
    SceneResourceTrackerPrivate **link = &s_newest;
    while (*link != this)
        link = &(*link)->m_older;
    *link = m_older;
}

// Skips an entry that is being removed: if a re-entrant slot registers the id of this entry, a new
// entry is added.
SceneResourceTrackerPrivate::Resources::iterator
SceneResourceTrackerPrivate::find(const IResourceOwner *owner, int id)
{
    auto entry = resources.begin();
    while (entry != resources.end()
           && (entry->id != id || entry->ownerState->owner != owner || isBeingRemoved(entry)))
        ++entry;
    return entry;
}

bool SceneResourceTrackerPrivate::isBeingRemoved(Resources::iterator entry) const
{
    for (const ResourceWalk *walk = innermostWalk; walk; walk = walk->outer()) {
        if (walk->removes(entry))
            return true;
    }
    return false;
}

// Returns the state of an owner that the table of owners contains, and null for any other owner.
StatePointer SceneResourceTrackerPrivate::knownState(IResourceOwner *owner) const
{
    const auto known = owners.find(owner);
    return known == owners.end() ? StatePointer() : known->second;
}

// True if an entry that is not being removed has the state.
bool SceneResourceTrackerPrivate::hasEntryOf(const StatePointer &state)
{
    for (auto entry = resources.begin(); entry != resources.end(); ++entry) {
        if (entry->ownerState == state && !isBeingRemoved(entry))
            return true;
    }
    return false;
}

void SceneResourceTrackerPrivate::update(Resources::iterator entry, const ResourceInfo &info)
{
    entry->type = info.type;
    entry->name = info.name;
    // cppcheck-suppress duplicateConditionalAssign ; an equal URL keeps its shared data
    if (entry->url != info.url)
        entry->url = info.url;
    addMessage(SceneResourceTracker::Message::Updated, *entry);
}

StatePointer SceneResourceTrackerPrivate::addOwner(IResourceOwner *owner)
{
    const StatePointer state(new ResourceOwnerState);
    state->owner = owner;
    owners.emplace(owner, state);
    return state;
}

// Appends an image, and puts any other resource in front of all entries.
void SceneResourceTrackerPrivate::file(const ResourceInfo &info, const StatePointer &state)
{
    const auto position = info.type == ResourceInfo::Image ? resources.end() : resources.begin();
    const auto entry = resources.insert(position, info);
    entry->ownerState = state;
    addMessage(SceneResourceTracker::Message::Registered, *entry);
}

void SceneResourceTrackerPrivate::erase(Resources::iterator entry)
{
    for (ResourceWalk *walk = innermostWalk; walk; walk = walk->outer())
        walk->forget(entry);
    resources.erase(entry);
}

// Announces and erases the entries of the walk. Returns true if it erased one: re-entrant slots may
// erase all of them first.
bool SceneResourceTrackerPrivate::unregisterEntries(ResourceWalk &walk)
{
    bool removed = false;
    while (walk.next()) {
        addMessage(SceneResourceTracker::Message::Unregistered, *walk.current());
        if (walk.hasCurrent()) {
            erase(walk.current());
            removed = true;
        }
    }
    return removed;
}

// Returns true if the owner stays although its entries were unregistered, because a re-entrant slot
// has registered another entry. In this case counts the entries with the owner's state anew,
// including an entry that an outer operation is removing.
bool SceneResourceTrackerPrivate::keepsOwner(IResourceOwner *owner)
{
    const auto known = knownState(owner);
    if (!known || known->owner != owner || !hasEntryOf(known))
        return false;

    known->resourceCount = int(std::ranges::count(resources, known, &ResourceInfo::ownerState));
    return true;
}

// Removes the owner from all trackers. The derived part of the owner is destroyed already, so
// nothing may call the owner: all its states get a null owner before the first slot runs.
void SceneResourceTrackerPrivate::ownerDestroyed(IResourceOwner *owner,
                                                 const StatePointer &heldState)
{
    States states;
    if (heldState)
        states.append(heldState);
    for (auto *tracker = s_newest; tracker; tracker = tracker->m_older)
        tracker->addStatesOf(owner, states);
    for (const auto &state : std::as_const(states))
        state->owner = nullptr;
    for (auto *tracker = s_newest; tracker; tracker = tracker->m_older)
        tracker->removeDyingOwner(owner, states);
}

void SceneResourceTrackerPrivate::addStatesOf(IResourceOwner *owner, States &states) const
{
    for (const auto &[key, state] : owners) {
        if ((key == owner || state->owner == owner) && !states.contains(state))
            states.append(state);
    }
    for (const ResourceInfo &info : resources) {
        if (info.ownerState->owner == owner && !states.contains(info.ownerState))
            states.append(info.ownerState);
    }
}

// The states do not name the owner any more: an entry is recognised by its state.
void SceneResourceTrackerPrivate::removeDyingOwner(IResourceOwner *owner, const States &states)
{
    ResourceWalk walk(this, ResourceWalk::Purpose::Remove, [&states](const ResourceInfo &info) {
        return states.contains(info.ownerState);
    });
    const bool known = owners.erase(owner) > 0;

    Q_Q(SceneResourceTracker);
    const bool removed = unregisterEntries(walk);
    if (known)
        Q_EMIT q->resourceOwnerRemoved();
    if (removed)
        Q_EMIT q->resourcesChanged();
}

/*!
    \class ovelin::SceneResourceTracker
    \inmodule Ovelin
    \inheaderfile ovelin/sceneresourcetracker.h
    \brief The registry of the graphic resources that the items on the screen create.

    \snippet tst_snippets.cpp install

    The guide \l {The road of a resource} has the function \c decide(), a picture of the calls and a table of
    the signals.

    The tracker keeps one list of all resources and one shared ResourceOwnerState per owner. It
    makes no decisions. When a signal announces a change, the application reads owners() and
    resources(), sets statuses with setStatus(), and calls owners with allowResources() and
    releaseResources().

    resources() begins with the offscreen buffers and painted items, newest first. The images
    follow, oldest first. An entry that is registered again keeps its place, whatever its new type.

    The tracker belongs to the GUI thread. It does not own its owners. It calls an owner in
    allowResources() and releaseResources(), and to describe the owner in a message. Finding an
    entry takes time in proportion to the number of entries; finding an owner does not.

    \section1 Re-entrant slots and owners

    The tracker emits each signal inside the operation that causes it, and calls an owner inside
    allowResources() and releaseResources(). A directly connected slot, and an owner that is called,
    may call every function of the tracker and of any owner, and may destroy other owners:

    \list
    \li Every entry is removed once. While its removal is announced, no registration and no
        unregistration finds it.
    \li An operation handles the entries that were listed when it began. It leaves out those that a
        slot removes meanwhile. It emits the signals for its own changes only.
    \li An entry that a slot registers for an owner while the owner's entries are unregistered stays
        registered, and its owner stays too.
    \li If a slot calls clear() during unregisterResource(), that function emits no further signals. A
        registration emits its signals even if a slot has already removed the new entry.
    \endlist

    A slot or an owner that is called must not destroy the tracker, must not destroy an owner inside
    one of that owner's own functions, and must not call registerResource() for an owner that is
    being destroyed. An owner may destroy itself in IResourceOwner::allowResources() and
    IResourceOwner::releaseResources().

    While one tracker announces that an owner was destroyed, another tracker may still list the
    address of this owner in owners(). The state there has no owner any more. Do not use that
    address.

    \since Ovelin 1.0
    \sa {ovelin}{sceneResourceTracker()}, AbstractResourceOwner
*/

/*!
    \fn void ovelin::SceneResourceTracker::resourcesChanged()

    Emitted when the list of resources has changed, except by clear(), and after every registration,
    even one that only updates an entry. This is the last signal of an operation.
*/

/*!
    \fn void ovelin::SceneResourceTracker::resourceOwnerAdded()

    Emitted when an owner has registered its first resource: the entry is in the list, and
    resourcesChanged() follows.
*/

/*!
    \fn void ovelin::SceneResourceTracker::resourceOwnerRemoved()

    Emitted when an owner has left owners(), before resourcesChanged(). In unregisterResource() the
    owner's last entry is still in the list at that moment. In unregisterResources() all entries of
    the owner have left the list, except one that an outer operation is removing.
*/

/*!
    \fn void ovelin::SceneResourceTracker::messagesAdded()

    Emitted once for each message that is appended to the log, before the other signals of the same
    operation. The log may be empty again when a slot with a queued connection runs.

    \sa messages()
*/

/*!
    Creates a tracker with the object name "SceneResourceTracker" as a child of \a parent, which may
    be null. It is not installed: call setSceneResourceTracker().
*/
SceneResourceTracker::SceneResourceTracker(QObject *parent)
    : QObject(*new SceneResourceTrackerPrivate, parent)
{
    setObjectName(QStringLiteral("SceneResourceTracker"));
}

/*!
    Destroys the tracker. Uninstall an installed tracker first: setSceneResourceTracker(nullptr).
*/
SceneResourceTracker::~SceneResourceTracker() = default;

/*!
    Returns the owners that have resources in this tracker, each with its state, in no order;
    resources() has an order. The reference is valid as long as the tracker exists; registrations and
    unregistrations change what it refers to.
*/
const std::unordered_map<IResourceOwner *, QSharedPointer<ResourceOwnerState>> &
SceneResourceTracker::owners() const
{
    Q_D(const SceneResourceTracker);
    return d->owners;
}

/*!
    Returns all resources: offscreen buffers and painted items, newest first, then images, oldest
    first. The reference is valid as long as the tracker exists.
*/
const std::list<ResourceInfo> &SceneResourceTracker::resources() const
{
    Q_D(const SceneResourceTracker);
    return d->resources;
}

/*!
    Returns true if AbstractResourceOwner refuses registrations. Returns false after construction and
    after clear().
*/
bool SceneResourceTracker::isRegistrationBlocked() const
{
    Q_D(const SceneResourceTracker);
    return d->registrationBlocked;
}

/*!
    Makes AbstractResourceOwner refuse registrations, and updates of resources, if \a blocked is true,
    and accept them otherwise. The tracker's own registerResource() always registers. Emits nothing.
*/
void SceneResourceTracker::setRegistrationBlocked(bool blocked)
{
    Q_D(SceneResourceTracker);
    d->registrationBlocked = blocked;
}

/*!
    Adds the resource \a info of \a owner, which must not be null, and returns the owner's state.

    If the owner already has a resource with the same id, this function replaces the type, the name
    and the URL of that entry instead; the entry keeps its place. A new owner gets a state with the
    status ResourceOwnerState::CreationRequested. The status of a known owner does not change.

    Emits, in this order: messagesAdded() if the log is enabled, resourceOwnerAdded() for a new
    owner, resourcesChanged().
*/
QSharedPointer<ResourceOwnerState> SceneResourceTracker::registerResource(IResourceOwner *owner,
                                                                          const ResourceInfo &info)
{
    Q_D(SceneResourceTracker);
    StatePointer state;
    bool ownerAdded = false;

    const auto entry = d->find(owner, info.id);
    if (entry != d->resources.end()) {
        state = entry->ownerState;
        d->update(entry, info);
    } else {
        state = d->knownState(owner);
        ownerAdded = !state;
        if (ownerAdded)
            state = d->addOwner(owner);
        ++state->resourceCount;
        d->file(info, state);
    }

    if (ownerAdded)
        Q_EMIT resourceOwnerAdded();
    Q_EMIT resourcesChanged();
    return state;
}

/*!
    Removes the resource \a id of \a owner. The owner leaves owners() with its last resource, that
    is when ResourceOwnerState::resourceCount becomes 0. Does nothing if the owner has no resource
    \a id. Does not call the owner's releaseResources().

    Emits, in this order: messagesAdded() if the log is enabled, and resourceOwnerRemoved() if the
    owner left, both while the entry is still in the list; then resourcesChanged() without the
    entry.
*/
void SceneResourceTracker::unregisterResource(IResourceOwner *owner, int id)
{
    Q_D(SceneResourceTracker);
    const auto entry = d->find(owner, id);
    if (entry == d->resources.end())
        return;

    // Weak, so that the state is released before the last signal.
    const QWeakPointer<ResourceOwnerState> knownBefore = d->knownState(owner);
    ResourceWalk walk(d, entry);
    walk.next();
    d->addMessage(Message::Unregistered, *entry);
    if (!walk.hasCurrent())
        return;

    --entry->ownerState->resourceCount;
    // A re-entrant slot may have removed the owner, and registered it anew with another state.
    if (entry->ownerState->resourceCount == 0 && d->knownState(owner) == knownBefore
        && d->owners.erase(owner) > 0)
        Q_EMIT resourceOwnerRemoved();
    if (!walk.hasCurrent())
        return;

    d->erase(entry);
    Q_EMIT resourcesChanged();
}

/*!
    Removes all resources of \a owner, and the owner. ResourceOwnerState::resourceCount does not
    change, unless a slot registers a resource of the owner meanwhile. An owner that has left and
    registers again gets a new state. Does not call the owner's releaseResources().

    Emits, in this order: messagesAdded() for each resource while it is still in the list, if the
    log is enabled; resourceOwnerRemoved() if the owner was in owners(); resourcesChanged() if a
    resource was removed.
*/
void SceneResourceTracker::unregisterResources(IResourceOwner *owner)
{
    Q_D(SceneResourceTracker);
    ResourceWalk walk(d, ResourceWalk::Purpose::Remove, isOf(owner));
    const bool removed = d->unregisterEntries(walk);

    if (!d->keepsOwner(owner) && d->owners.erase(owner) > 0)
        Q_EMIT resourceOwnerRemoved();
    if (removed)
        Q_EMIT resourcesChanged();
}

/*!
    Sets the status in \a state, which must not be null, to \a status. Does nothing if the state has
    no owner. Stores any value; a value without an enumerator has an empty text in messages.

    Emits messagesAdded() for each of the owner's resources if the log is enabled, even if the
    status is the same as before. Emits no other signal.
*/
void SceneResourceTracker::setStatus(const QSharedPointer<ResourceOwnerState> &state,
                                     ResourceOwnerState::Status status)
{
    if (!state->owner)
        return;
    state->status = status;

    Q_D(SceneResourceTracker);
    if (!d->messagesEnabled)
        return;
    ResourceWalk walk(d, ResourceWalk::Purpose::Describe, isOf(state->owner));
    while (walk.next())
        d->addMessage(Message::StatusChanged, *walk.current());
}

/*!
    Calls IResourceOwner::allowResources() of the owner in \a state, which must not be null: the
    owner may create its resources. Does nothing if the state has no owner. Changes no status and
    emits nothing: call setStatus() first.

    Do not call this function from a loop over owners() or resources(). The owner may unregister itself,
    which invalidates the iterators of both. Copy the states first, and skip a state that owners() no longer
    has when its turn comes: an owner that was called earlier may have removed or destroyed the owner of this
    state. The guide has \l {The application decides}{the code}. The same holds for releaseResources().
*/
void SceneResourceTracker::allowResources(const QSharedPointer<ResourceOwnerState> &state)
{
    if (state->owner)
        state->owner->allowResources();
}

/*!
    Calls IResourceOwner::releaseResources() of the owner in \a state, which must not be null: the
    owner releases its resources. Does nothing if the state has no owner. Changes no status and
    emits nothing: call setStatus() first.
*/
void SceneResourceTracker::releaseResources(const QSharedPointer<ResourceOwnerState> &state)
{
    if (state->owner)
        state->owner->releaseResources();
}

/*!
    Removes all resources, owners and messages, and lets owners register again. Emits nothing, calls
    no owner, and leaves the log enabled or disabled as it was. States that others hold do not change.
*/
void SceneResourceTracker::clear()
{
    Q_D(SceneResourceTracker);
    for (ResourceWalk *walk = d->innermostWalk; walk; walk = walk->outer())
        walk->forgetAll();
    d->resources.clear();
    d->owners.clear();
    clearMessages();
    d->registrationBlocked = false;
}

/*!
    Returns the installed tracker, or null if none is installed. Initially none is.

    \since Ovelin 1.0
    \sa setSceneResourceTracker(), SceneResourceTracker
*/
SceneResourceTracker *sceneResourceTracker()
{
    return installedTracker;
}

/*!
    Installs \a tracker for all owners. Null uninstalls the present one. The application owns both
    the old and the new tracker, and uninstalls a tracker before destroying it.

    \since Ovelin 1.0
    \sa sceneResourceTracker(), SceneResourceTracker
*/
void setSceneResourceTracker(SceneResourceTracker *tracker)
{
    installedTracker = tracker;
}

} // namespace ovelin
