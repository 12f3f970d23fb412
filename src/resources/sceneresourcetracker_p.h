#ifndef OVELIN_SCENERESOURCETRACKER_P_H
#define OVELIN_SCENERESOURCETRACKER_P_H

#include <ovelin/sceneresourcetracker.h>

#include <QtCore/private/qobject_p.h>

#include <QVarLengthArray>

namespace ovelin {

class ResourceWalk;

using StatePointer = QSharedPointer<ResourceOwnerState>;

class SceneResourceTrackerPrivate : public QObjectPrivate
{
    Q_DECLARE_PUBLIC(SceneResourceTracker)

public:
    using Resources = std::list<ResourceInfo>;

    SceneResourceTrackerPrivate();
    ~SceneResourceTrackerPrivate() override;

    static SceneResourceTrackerPrivate *get(SceneResourceTracker *tracker)
    {
        return tracker->d_func();
    }
    static void ownerDestroyed(IResourceOwner *owner, const StatePointer &heldState);

    Resources::iterator find(const IResourceOwner *owner, int id);
    bool isBeingRemoved(Resources::iterator entry) const;
    StatePointer knownState(IResourceOwner *owner) const;
    bool hasEntryOf(const StatePointer &state);

    void update(Resources::iterator entry, const ResourceInfo &info);
    StatePointer addOwner(IResourceOwner *owner);
    void file(const ResourceInfo &info, const StatePointer &state);

    void erase(Resources::iterator entry);
    bool unregisterEntries(ResourceWalk &walk);
    bool keepsOwner(IResourceOwner *owner);

    void addMessage(SceneResourceTracker::Message::Event event, const ResourceInfo &info);

    Resources resources;
    std::unordered_map<IResourceOwner *, StatePointer> owners;
    QList<SceneResourceTracker::Message> messages;
    bool messagesEnabled = false;
    bool registrationBlocked = false;
    ResourceWalk *innermostWalk = nullptr;

private:
    using States = QVarLengthArray<StatePointer, 4>;

    void addStatesOf(IResourceOwner *owner, States &states) const;
    void removeDyingOwner(IResourceOwner *owner, const States &states);

    // All trackers are linked: a destroyed owner leaves each of them, whichever is installed.
    static SceneResourceTrackerPrivate *s_newest;
    SceneResourceTrackerPrivate *m_older;
};

// A walk over the entries that one operation handles: those that were listed when the operation
// began, in the order of the list.
//
// Each message is announced by a signal. A re-entrant slot may erase any of these entries, and may
// start walks of its own. The tracker links its walks and tells all of them when it erases an
// entry, so that no walk uses an erased entry. Two walks never remove the same entry at once.
class ResourceWalk
{
public:
    enum class Purpose { Describe, Remove };
    using Entry = SceneResourceTrackerPrivate::Resources::iterator;

    template<typename IsSelected>
    ResourceWalk(SceneResourceTrackerPrivate *tracker, Purpose purpose,
                 const IsSelected &isSelected);
    ResourceWalk(SceneResourceTrackerPrivate *tracker, Entry removed);
    ~ResourceWalk();

    bool next();
    bool hasCurrent() const;
    Entry current() const;

    ResourceWalk *outer() const { return m_outer; }
    bool removes(Entry entry) const;
    void forget(Entry entry);
    void forgetAll();

private:
    Q_DISABLE_COPY_MOVE(ResourceWalk)

    ResourceWalk(SceneResourceTrackerPrivate *tracker, Purpose purpose);

    SceneResourceTrackerPrivate *const m_tracker;
    ResourceWalk *const m_outer;
    const Purpose m_purpose;
    const Entry m_end; // of the list; stands for an erased entry in m_entries
    QVarLengthArray<Entry, 16> m_entries;
    qsizetype m_index = -1;
};

template<typename IsSelected>
ResourceWalk::ResourceWalk(SceneResourceTrackerPrivate *tracker, Purpose purpose,
                           const IsSelected &isSelected)
    : ResourceWalk(tracker, purpose)
{
    for (auto entry = tracker->resources.begin(); entry != m_end; ++entry) {
        if (isSelected(*entry) && (purpose == Purpose::Describe || !tracker->isBeingRemoved(entry)))
            m_entries.append(entry);
    }
}

} // namespace ovelin

#endif
