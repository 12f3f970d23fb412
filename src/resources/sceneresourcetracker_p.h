#ifndef OVELIN_SCENERESOURCETRACKER_P_H
#define OVELIN_SCENERESOURCETRACKER_P_H

#include <ovelin/sceneresourcetracker.h>

#include <QtCore/private/qobject_p.h>

#include <QVarLengthArray>

namespace ovelin {

class ResourceWalk;

class SceneResourceTrackerPrivate : public QObjectPrivate
{
    Q_DECLARE_PUBLIC(SceneResourceTracker)

public:
    using Resources = std::list<ResourceInfo>;

    SceneResourceTrackerPrivate();
    ~SceneResourceTrackerPrivate() override;

    static void ownerDestroyed(IResourceOwner *owner,
                               const QSharedPointer<ResourceOwnerState> &heldState);

    Resources::iterator find(const IResourceOwner *owner, int id);
    bool isBeingRemoved(Resources::iterator entry) const;
    bool isKnown(IResourceOwner *owner, const QSharedPointer<ResourceOwnerState> &state) const;

    void update(Resources::iterator entry, const ResourceInfo &info);
    QSharedPointer<ResourceOwnerState> stateOf(IResourceOwner *owner);
    void file(const ResourceInfo &info, const QSharedPointer<ResourceOwnerState> &state);

    void erase(Resources::iterator entry);
    bool unregisterEntries(ResourceWalk &walk);
    bool keepsOwner(IResourceOwner *owner);

    void addMessage(SceneResourceTracker::Message::Event event, const ResourceInfo &info);

    Resources resources;
    std::unordered_map<IResourceOwner *, QSharedPointer<ResourceOwnerState>> owners;
    QList<SceneResourceTracker::Message> messages;
    bool messagesEnabled = false;
    bool registrationBlocked = false;
    ResourceWalk *innermostWalk = nullptr;

private:
    using States = QVarLengthArray<QSharedPointer<ResourceOwnerState>, 4>;

    static void setOwner(const States &states, IResourceOwner *owner);
    void addStatesOf(IResourceOwner *owner, States &states) const;
    void removeDyingOwner(IResourceOwner *owner, const States &states);

    // All trackers there are: an item that dies must not stay in one that is not installed just then.
    static SceneResourceTrackerPrivate *s_newest;
    SceneResourceTrackerPrivate *m_older = nullptr;
    SceneResourceTrackerPrivate *m_newer = nullptr;
};

// The entries that one operation handles, in the order of the list, as they were when it began.
//
// Each message is announced by a signal, and a slot may call the tracker again: it may erase any of
// these entries, and begin walks of its own. The tracker keeps its walks in a chain and takes an
// entry that it erases out of all of them, so that none ever touches what is gone. An entry that is
// being removed belongs to the walk that has it in hand: no other removes it a second time.
class ResourceWalk
{
public:
    enum class Purpose { Describe, Remove };
    using Entry = SceneResourceTrackerPrivate::Resources::iterator;

    ResourceWalk(SceneResourceTrackerPrivate *tracker, const IResourceOwner *owner,
                 Purpose purpose);
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

    SceneResourceTrackerPrivate *const m_tracker;
    ResourceWalk *const m_outer;
    const Purpose m_purpose;
    const Entry m_gone;
    QVarLengthArray<Entry, 16> m_entries;
    qsizetype m_index = -1;
};

} // namespace ovelin

#endif
