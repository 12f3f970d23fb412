#ifndef OVELIN_TESTS_RESOURCES_TRACKERMODEL_H
#define OVELIN_TESTS_RESOURCES_TRACKERMODEL_H

#include "resourcesupport.h"

#include <array>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace ovelin::tests {

// A few items use two trackers, of which one at most is installed. Each item has a place of its own; a
// destroyed one is followed by a new one.
constexpr int trackerCount = 2;
constexpr int placeCount = 3;

// One call of a tracker or of an item. A state is any that a tracker ever made, by its number; no
// step uses a state whose owner was destroyed after it left the tracker, and none destroys an item inside
// one of its own functions, as the application must not.
struct TrackerStep
{
    enum Kind {
        RegisterDirectly,
        UnregisterDirectly,
        UnregisterAllDirectly,
        RegisterImage,
        Register,
        Unregister,
        UnregisterAll,
        SetStatus,
        Allow,
        Release,
        SetGeometry,
        TakeOwnerOut,
        Clear,
        SetLogEnabled,
        ClearLog,
        SetBlocked,
        SetInstalled,
        Destroy,
    };
    static constexpr int kindCount = Destroy + 1;

    Kind kind;
    int tracker;
    int place;
    int id;     // of the resource; makes the status and the geometry, too
    int number; // chooses the state; makes the type, the URL and the name
    bool flag;  // what is switched on; whether a dying item is called, while there is one

    ResourceInfo info() const;
    ResourceOwnerState::Status status() const;
    QRect geometry() const;
    bool isOfTheItem() const { return kind >= RegisterImage && kind <= UnregisterAll; }
    QString described() const;
};

// What slots, and items that are told of a decision, call back, in the order in which they are called:
// a slot takes steps up to the next nothing. When all are taken, the others call nothing.
using Reactions = std::vector<std::optional<TrackerStep>>;

// A step, and the state that it uses, if it may use it.
struct TrackerCall
{
    TrackerStep step;
    std::optional<int> state;
};

// What there is to see of the trackers and of the items. Items and states are numbered as they come up.
struct TrackerSituation
{
    struct State
    {
        int status = ResourceOwnerState::CreationRequested;
        std::optional<int> owner;
        int resourceCount = 0;
        QRect geometry;
    };
    struct Entry
    {
        QUrl url;
        QString name;
        int id;
        ResourceInfo::Type type;
        int state;
        // Only the model knows:
        int number = 0;         // of the registration
        bool isLeaving = false; // while the removal is announced
    };
    using Message = SceneResourceTracker::Message; // without the owner's address
    struct Tracker
    {
        std::list<Entry> resources;
        std::map<int, int> owners; // items and their states
        QList<Message> messages;
        bool messagesEnabled = false; // only the model knows
        bool registrationBlocked = false;
    };
    struct ItemAtPlace
    {
        int item;
        std::optional<int> heldState;
        bool isAllowed = true;
        int runningCalls = 0; // of its own functions; only the model knows
    };

    // How it differs from the other one; empty when it does not.
    QString difference(const TrackerSituation &expected) const;

    std::vector<State> states;
    std::array<Tracker, trackerCount> trackers;
    std::optional<int> installed;
    std::array<ItemAtPlace, placeCount> items;
};

// What the trackers and the items should be after each step, and whenever a slot or an item is called in
// it, by the plain rules.
struct TrackerModel : TrackerSituation
{
    struct Moment
    {
        QString cause;
        TrackerSituation situation;
    };

    TrackerModel();

    void apply(const TrackerStep &step, const Reactions &reactions = {});

    // Which rule is broken of those that hold whatever slots have done; empty when none is.
    QString violation() const;

    // Of the last step: itself and what was called back inside it, with nothing where a slot returned; and
    // the moments in between, of which the last one is the end.
    std::vector<std::optional<TrackerCall>> calls;
    std::vector<Moment> moments;

private:
    void call(const TrackerStep &step);
    void runSlot(const QString &cause);
    void noteMoment(const QString &cause);
    std::optional<int> usableState(const TrackerStep &step) const;
    ItemAtPlace *dyingItem(const TrackerStep &step);

    void registerItem(ItemAtPlace &item, const ResourceInfo &info);
    void unregisterItem(ItemAtPlace &item, int id);
    void unregisterItem(ItemAtPlace &item);
    void decide(int state, const QString &decision);
    void destroy(ItemAtPlace &place);

    int registerResource(Tracker &tracker, int item, const ResourceInfo &info);
    void unregisterResource(Tracker &tracker, int item, int id);
    void unregisterResources(Tracker &tracker, int item);
    void setStatus(Tracker &tracker, int state, int status);
    void forget(Tracker &tracker, int item, const std::set<int> &itsStates);
    std::list<Entry>::iterator find(Tracker &tracker, int item, int id) const;
    bool announceRemoval(Tracker &tracker, Entry &entry);
    bool remove(Tracker &tracker, const std::vector<int> &entries);
    bool keepsOwner(const Tracker &tracker, int item);

    bool belongsTo(const Entry &entry, int item) const;
    Message composed(const Entry &entry, Message::Event event) const;
    void addMessage(Tracker &tracker, const Entry &entry, Message::Event event);
    void emitSignal(const Tracker &tracker, const QString &name);
    bool isAllowed(const ItemAtPlace &item) const;

    QString entryViolation(const Tracker &tracker) const;
    QString ownerViolation(const Tracker &tracker) const;

    Reactions m_reactions; // of the last step
    std::size_t m_nextReaction = 0;
    std::deque<ItemAtPlace> m_dying; // the last one began last
    int m_itemCount = 0;
    int m_entryCount = 0;
};

// The trackers and the items themselves.
class TrackerSubject
{
public:
    TrackerSubject();
    ~TrackerSubject();

    // Makes the calls of the model's last step, each where the model made it, and compares the situation at
    // each of the model's moments. Tells the first difference; empty when there is none.
    QString run(const TrackerModel &model);

    std::array<SceneResourceTracker, trackerCount> trackers;

private:
    Q_DISABLE_COPY_MOVE(TrackerSubject)

    void create(int place);
    void destroy(int place);
    AbstractResourceOwner *dyingItem(const TrackerStep &step) const;

    void call(const TrackerCall &call);
    void runSlot(const QString &cause);
    void compare(const QString &cause);

    void noteStates();
    TrackerSituation situation() const;
    TrackerSituation::Tracker situation(const SceneResourceTracker &tracker) const;
    std::optional<int> stateNumber(const QSharedPointer<ResourceOwnerState> &state) const;
    std::optional<int> ownerNumber(const IResourceOwner *owner) const;
    bool hasWrongAddress(const SceneResourceTracker &tracker) const;

    struct State
    {
        QSharedPointer<ResourceOwnerState> state;
        std::optional<int> goneOwner; // which it still points to
    };
    struct NumberedItem
    {
        int number;
        std::unique_ptr<Item> item;
    };

    std::vector<State> m_states;
    std::array<NumberedItem, placeCount> m_items;
    int m_itemCount = 0;
    std::vector<std::pair<int, AbstractResourceOwner *>> m_dying; // the last one began last

    const TrackerModel *m_model = nullptr; // while its calls are made
    std::size_t m_nextCall = 0;
    std::size_t m_nextMoment = 0;
    QString m_difference;
    QObject m_context; // destroyed first, so that no slot runs while the items go
};

} // namespace ovelin::tests

#endif
