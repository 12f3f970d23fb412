#include <ovelin/sceneresourcetracker.h>

#include "sceneresourcetracker_p.h"

#include <algorithm>

namespace ovelin {

namespace {

SceneResourceTracker *installedTracker = nullptr;

} // namespace

ResourceWalk::ResourceWalk(SceneResourceTrackerPrivate *tracker, const IResourceOwner *owner,
                           Purpose purpose)
    : m_tracker(tracker)
    , m_outer(tracker->innermostWalk)
    , m_purpose(purpose)
    , m_gone(tracker->resources.end())
{
    for (auto entry = tracker->resources.begin(); entry != m_gone; ++entry) {
        const bool taken = purpose == Purpose::Remove && tracker->isBeingRemoved(entry);
        if (entry->ownerState->owner == owner && !taken)
            m_entries.append(entry);
    }
    tracker->innermostWalk = this;
}

ResourceWalk::ResourceWalk(SceneResourceTrackerPrivate *tracker, Entry removed)
    : m_tracker(tracker)
    , m_outer(tracker->innermostWalk)
    , m_purpose(Purpose::Remove)
    , m_gone(tracker->resources.end())
    , m_entries{removed}
{
    tracker->innermostWalk = this;
}

ResourceWalk::~ResourceWalk()
{
    m_tracker->innermostWalk = m_outer;
}

// Steps to the next entry that is still there; false behind the last one.
bool ResourceWalk::next()
{
    do {
        ++m_index;
    } while (m_index < m_entries.size() && !hasCurrent());
    return m_index < m_entries.size();
}

bool ResourceWalk::hasCurrent() const
{
    return current() != m_gone;
}

ResourceWalk::Entry ResourceWalk::current() const
{
    return m_entries[m_index];
}

bool ResourceWalk::removes(Entry entry) const
{
    return m_purpose == Purpose::Remove && m_index >= 0 && m_index < m_entries.size()
           && current() == entry;
}

// Looks from the current entry on, which it is as a rule: a walk over all entries stays linear.
void ResourceWalk::forget(Entry entry)
{
    const auto found = std::find(m_entries.begin() + m_index, m_entries.end(), entry);
    if (found != m_entries.end())
        *found = m_gone;
}

void ResourceWalk::forgetAll()
{
    std::ranges::fill(m_entries, m_gone);
}

SceneResourceTrackerPrivate *SceneResourceTrackerPrivate::s_newest = nullptr;

SceneResourceTrackerPrivate::SceneResourceTrackerPrivate()
    : m_older(s_newest)
{
    if (m_older)
        m_older->m_newer = this;
    s_newest = this;
}

SceneResourceTrackerPrivate::~SceneResourceTrackerPrivate()
{
    if (m_older)
        m_older->m_newer = m_newer;
    (m_newer ? m_newer->m_older : s_newest) = m_older;
}

// An entry that is being removed counts as gone already: what a slot registers under its id in the
// meantime is a new entry, which stays.
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

bool SceneResourceTrackerPrivate::isKnown(IResourceOwner *owner,
                                          const QSharedPointer<ResourceOwnerState> &state) const
{
    const auto known = owners.find(owner);
    return known != owners.end() && known->second == state;
}

void SceneResourceTrackerPrivate::update(Resources::iterator entry, const ResourceInfo &info)
{
    entry->type = info.type;
    entry->name = info.name;
    // cppcheck-suppress duplicateConditionalAssign ; an equal URL keeps the data that it shares
    if (entry->url != info.url)
        entry->url = info.url;
    addMessage(SceneResourceTracker::Message::Updated, *entry);
}

// Returns the state of an owner, which enters the table of owners if it is not there yet.
QSharedPointer<ResourceOwnerState> SceneResourceTrackerPrivate::stateOf(IResourceOwner *owner)
{
    const auto known = owners.find(owner);
    if (known != owners.end())
        return known->second;

    const QSharedPointer<ResourceOwnerState> state(new ResourceOwnerState);
    state->owner = owner;
    owners.emplace(owner, state);
    return state;
}

// Images wait at the back, oldest first; what is painted stands in front of them, newest first.
void SceneResourceTrackerPrivate::file(const ResourceInfo &info,
                                       const QSharedPointer<ResourceOwnerState> &state)
{
    const auto place = info.type == ResourceInfo::Image ? resources.end() : resources.begin();
    const auto entry = resources.insert(place, info);
    entry->ownerState = state;
    addMessage(SceneResourceTracker::Message::Registered, *entry);
}

void SceneResourceTrackerPrivate::erase(Resources::iterator entry)
{
    for (ResourceWalk *walk = innermostWalk; walk; walk = walk->outer())
        walk->forget(entry);
    resources.erase(entry);
}

// Returns whether any entry was removed: a slot may have removed them all before.
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

// Returns whether an owner whose entries were unregistered stays after all, because a slot registered
// something for it; its count then starts anew. An entry with a former state may still be leaving.
bool SceneResourceTrackerPrivate::keepsOwner(IResourceOwner *owner)
{
    const auto known = owners.find(owner);
    if (known == owners.end() || known->second->owner != owner)
        return false;

    int count = 0;
    bool keeps = false;
    for (auto entry = resources.begin(); entry != resources.end(); ++entry) {
        if (entry->ownerState != known->second)
            continue;
        ++count;
        keeps = keeps || !isBeingRemoved(entry);
    }
    if (keeps)
        known->second->resourceCount = count;
    return keeps;
}

// The item's own part is destroyed already: it can no longer be asked for its object. Its states in
// all trackers lose it before the first slot runs.
void SceneResourceTrackerPrivate::ownerDestroyed(
    IResourceOwner *owner, const QSharedPointer<ResourceOwnerState> &heldState)
{
    States states;
    if (heldState)
        states.append(heldState);
    for (auto *tracker = s_newest; tracker; tracker = tracker->m_older)
        tracker->addStatesOf(owner, states);
    setOwner(states, nullptr);
    for (auto *tracker = s_newest; tracker; tracker = tracker->m_older)
        tracker->removeDyingOwner(owner, states);
}

void SceneResourceTrackerPrivate::addStatesOf(IResourceOwner *owner, States &states) const
{
    const auto known = owners.find(owner);
    if (known != owners.end())
        states.append(known->second);
    for (const ResourceInfo &info : resources) {
        if (info.ownerState->owner == owner && !states.contains(info.ownerState))
            states.append(info.ownerState);
    }
}

void SceneResourceTrackerPrivate::setOwner(const States &states, IResourceOwner *owner)
{
    for (const auto &state : states)
        state->owner = owner;
}

// The entries are found by the owner, which the application may have taken out of some of its states.
void SceneResourceTrackerPrivate::removeDyingOwner(IResourceOwner *owner, const States &states)
{
    setOwner(states, owner);
    ResourceWalk walk(this, owner, ResourceWalk::Purpose::Remove);
    setOwner(states, nullptr);
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
    \brief The registry in which the items on the screen file the graphic resources they create.

    The tracker keeps one list of all resources and one shared ResourceOwnerState per owner. It
    decides nothing: the application reads owners() and resources() when a signal tells of a change,
    sets statuses with setStatus() and tells owners what to do with allowResources() and
    releaseResources().

    resources() shows offscreen buffers and painted items first, newest first, and then the images,
    oldest first. An entry that is registered again keeps its place, whatever its new type.

    The tracker belongs to the GUI thread. It holds owners as plain pointers, which it neither owns
    nor dereferences except to call them in allowResources() and releaseResources() and to describe
    them in messages. Finding an entry takes a walk over the list; owners are found by a hash.

    \section1 Slots and owners that call back

    Signals are emitted from inside the operation that causes them, and a decision reaches its owner
    from inside allowResources() and releaseResources(). A slot that is connected directly, and an owner
    that is told of a decision, may call every function of the tracker and of any owner, and may destroy
    other items:

    \list
    \li every entry is handled once: an entry whose removal is being announced is not removed, found
        or announced a second time;
    \li an operation handles the entries that were there when it began, leaves out those that a slot
        removed in between, and announces what it changed itself;
    \li what a slot registers for an owner whose resources are just being unregistered stays
        registered, and then its owner stays too;
    \li an unregistration whose entry a slot removed by clear() ends without further signals; a
        registration announces itself even when a slot has already removed what it filed.
    \endlist

    Neither may destroy the tracker, nor an item that is executing one of its own operations, nor call
    registerResource() for an item that is being destroyed; the item's own functions refuse it. An owner
    that is told of a decision may destroy itself. IResourceOwner::resourceOwnerObject() must not call
    back: it is asked while a message is being written.

    While one tracker announces that an item is destroyed, another may still list it in owners(), with a
    state that has no owner any more: it must not be called by that address.

    \since Ovelin 1.0
    \sa {ovelin}{sceneResourceTracker()}, AbstractResourceOwner
*/

/*!
    \fn void ovelin::SceneResourceTracker::resourcesChanged()

    Emitted when the list of resources was changed, and after every registration, also one that only
    updated an entry. The last signal of the operation that caused it.
*/

/*!
    \fn void ovelin::SceneResourceTracker::resourceOwnerAdded()

    Emitted when an owner registered its first resource, after the entry is in the list and before
    resourcesChanged().
*/

/*!
    \fn void ovelin::SceneResourceTracker::resourceOwnerRemoved()

    Emitted when an owner left owners(), before resourcesChanged(). After unregisterResource() the
    owner's last entry is still in the list at that moment; after unregisterResources() none is, but for
    one whose removal is just being announced.
*/

/*!
    \fn void ovelin::SceneResourceTracker::messagesAdded()

    Emitted once for each message appended to the log, before the other signals of the operation that
    the message tells of. With a queued connection expect the log to have been emptied in between.

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
    Destroys the tracker. An installed tracker must be uninstalled before, with
    setSceneResourceTracker(nullptr).
*/
SceneResourceTracker::~SceneResourceTracker() = default;

/*!
    Returns the owners that have resources here, each with its state. The reference is good until the
    tracker is destroyed; its content changes with every registration and unregistration.
*/
const std::unordered_map<IResourceOwner *, QSharedPointer<ResourceOwnerState>> &
SceneResourceTracker::owners() const
{
    Q_D(const SceneResourceTracker);
    return d->owners;
}

/*!
    Returns all resources: buffers and painted items, newest first, then images, oldest first. The
    reference is good until the tracker is destroyed.
*/
const std::list<ResourceInfo> &SceneResourceTracker::resources() const
{
    Q_D(const SceneResourceTracker);
    return d->resources;
}

/*!
    Returns whether owners are refused new registrations; false after construction and after clear().
*/
bool SceneResourceTracker::isRegistrationBlocked() const
{
    Q_D(const SceneResourceTracker);
    return d->registrationBlocked;
}

/*!
    Sets whether owners are refused new registrations to \a blocked. AbstractResourceOwner obeys it;
    registerResource() itself does not look at it. Emits nothing.
*/
void SceneResourceTracker::setRegistrationBlocked(bool blocked)
{
    Q_D(SceneResourceTracker);
    d->registrationBlocked = blocked;
}

/*!
    Files the resource \a info of \a owner, which must not be null, and returns the owner's state.

    When the owner already has a resource with that id, the entry's type, name and URL are replaced
    and it keeps its place. Otherwise a new entry is added, and an owner that was unknown gets a state
    with the status ResourceOwnerState::CreationRequested. A known owner's status stays as it is.

    Emits, in this order: messagesAdded() if the log is enabled, resourceOwnerAdded() for a new owner,
    resourcesChanged().
*/
QSharedPointer<ResourceOwnerState> SceneResourceTracker::registerResource(IResourceOwner *owner,
                                                                          const ResourceInfo &info)
{
    Q_D(SceneResourceTracker);
    QSharedPointer<ResourceOwnerState> state;
    bool ownerAdded = false;

    const auto entry = d->find(owner, info.id);
    if (entry != d->resources.end()) {
        state = entry->ownerState;
        d->update(entry, info);
    } else {
        const auto ownerCount = d->owners.size();
        state = d->stateOf(owner);
        ownerAdded = d->owners.size() != ownerCount;
        ++state->resourceCount;
        d->file(info, state);
    }

    if (ownerAdded)
        Q_EMIT resourceOwnerAdded();
    Q_EMIT resourcesChanged();
    return state;
}

/*!
    Removes the resource \a id of \a owner, and the owner with its last resource. Does nothing when
    there is no such resource.

    Emits, in this order: messagesAdded() if the log is enabled, and resourceOwnerRemoved() if the
    owner left, both while the entry is still in the list; resourcesChanged() without it.
*/
void SceneResourceTracker::unregisterResource(IResourceOwner *owner, int id)
{
    Q_D(SceneResourceTracker);
    const auto entry = d->find(owner, id);
    if (entry == d->resources.end())
        return;

    ResourceWalk walk(d, entry);
    walk.next();
    d->addMessage(Message::Unregistered, *entry);
    if (!walk.hasCurrent())
        return;

    const auto &state = entry->ownerState;
    --state->resourceCount;
    // A slot may have removed the owner, or registered it anew with another state.
    if (state->resourceCount == 0 && d->isKnown(owner, state)) {
        d->owners.erase(owner);
        Q_EMIT resourceOwnerRemoved();
    }
    if (!walk.hasCurrent())
        return;

    d->erase(entry);
    Q_EMIT resourcesChanged();
}

/*!
    Removes all resources of \a owner, and the owner. Leaves ResourceOwnerState::resourceCount as it
    is; an owner that registers again gets a new state.

    Emits, in this order: messagesAdded() for each resource while it is still in the list, if the log
    is enabled; resourceOwnerRemoved() if the owner was known; resourcesChanged() if there was
    anything to remove.
*/
void SceneResourceTracker::unregisterResources(IResourceOwner *owner)
{
    Q_D(SceneResourceTracker);
    ResourceWalk walk(d, owner, ResourceWalk::Purpose::Remove);
    const bool removed = d->unregisterEntries(walk);

    if (!d->keepsOwner(owner) && d->owners.erase(owner) > 0)
        Q_EMIT resourceOwnerRemoved();
    if (removed)
        Q_EMIT resourcesChanged();
}

/*!
    Sets the status in \a state, which must not be null, to \a status; does nothing when the state has
    no owner. Any value is stored; one without a name shows as an empty text in messages.

    Emits messagesAdded() for each of the owner's resources if the log is enabled, also when the
    status was the same before, and no other signal.
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
    ResourceWalk walk(d, state->owner, ResourceWalk::Purpose::Describe);
    while (walk.next())
        d->addMessage(Message::StatusChanged, *walk.current());
}

/*!
    Tells the owner in \a state, which must not be null, that it may create its resources. Does
    nothing when the state has no owner. Changes no status and emits nothing: call setStatus() before.
*/
void SceneResourceTracker::allowResources(const QSharedPointer<ResourceOwnerState> &state)
{
    if (state->owner)
        state->owner->allowResources();
}

/*!
    Tells the owner in \a state, which must not be null, to give its resources up. Does nothing when
    the state has no owner. Changes no status and emits nothing: call setStatus() before.
*/
void SceneResourceTracker::releaseResources(const QSharedPointer<ResourceOwnerState> &state)
{
    if (state->owner)
        state->owner->releaseResources();
}

/*!
    Forgets all resources, owners and messages, and lets owners register again. Emits nothing and
    tells no owner; whether the log is enabled stays as it is. States that others hold survive as they
    are.
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
    Returns the installed tracker, or null while there is none, as at first.

    \since Ovelin 1.0
    \sa setSceneResourceTracker(), SceneResourceTracker
*/
SceneResourceTracker *sceneResourceTracker()
{
    return installedTracker;
}

/*!
    Installs \a tracker for all owners; null uninstalls. The application keeps the ownership of both
    the old and the new tracker, and uninstalls a tracker before it destroys it.

    \since Ovelin 1.0
    \sa sceneResourceTracker(), SceneResourceTracker
*/
void setSceneResourceTracker(SceneResourceTracker *tracker)
{
    installedTracker = tracker;
}

} // namespace ovelin
