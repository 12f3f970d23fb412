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

// A few items use two trackers. At most one tracker is installed. Each item has a place, which a
// new item takes when the item is destroyed. An item is dying while its destructor runs.
constexpr int trackerCount = 2;
constexpr int placeCount = 3;

// One call of a tracker or of an item. States are numbered in the order in which trackers create
// them. As an application must, steps use no state that names a destroyed owner, and destroy no
// item inside one of its own functions.
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
        // The application writes into a state. TrackerModel::violation() checks less afterwards.
        WriteOwner,
        WriteCount,
    };
    static constexpr Kind lastThatKeepsRules = Destroy;
    static constexpr Kind last = WriteCount;
    static constexpr int kindCount = last + 1;

    Kind kind;
    int tracker;
    int place;
    int id;     // of the resource; the status, the geometry and the count are computed from it
    int number; // the state, the type, the URL and the name are computed from it
    bool flag;  // the value to set; if true, a dying item is called instead of the one at the place

    ResourceInfo info() const;
    ResourceOwnerState::Status status() const;
    QRect geometry() const;
    bool isOfTheItem() const { return kind >= RegisterImage && kind <= UnregisterAll; }
    QString described() const;
};

// The steps that slots and called items make, in the order of the calls. Each slot makes the steps
// up to the next empty one. A slot that finds no step left makes none.
using Reactions = std::vector<std::optional<TrackerStep>>;

// A step and the number of the state that it uses, if it uses one.
struct TrackerCall
{
    TrackerStep step;
    std::optional<int> state;
};

// The observable state of the trackers and of the items. Items and states are numbered in the order
// of their creation.
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
        // The model alone uses these two:
        int number = 0;         // of the registration
        bool isLeaving = false; // while the removal is announced
    };
    using Message = SceneResourceTracker::Message; // without the owner's address
    struct Tracker
    {
        std::list<Entry> resources;
        std::map<int, int> owners; // items and their states
        QList<Message> messages;
        bool messagesEnabled = false; // the model alone uses it
        bool registrationBlocked = false;
    };
    struct ItemAtPlace
    {
        int item;
        std::optional<int> heldState;
        bool isAllowed = true;
        int runningCalls = 0; // of the functions of the item; the model alone uses it
    };

    // Returns the first difference, or an empty text.
    QString difference(const TrackerSituation &expected) const;

    std::vector<State> states;
    std::array<Tracker, trackerCount> trackers;
    std::optional<int> installed;
    std::array<ItemAtPlace, placeCount> items;
};

// Computes by plain rules the situation after each step, and at each call of a slot or of an item.
struct TrackerModel : TrackerSituation
{
    struct Moment
    {
        QString cause;
        TrackerSituation situation;
    };

    TrackerModel();

    void apply(const TrackerStep &step, const Reactions &reactions = {});

    // Returns the first broken rule, or an empty text. Re-entrant slots cannot break the rules. An application that
    // writes into states can break all rules but the cap of the log. Only the cap is checked afterwards.
    QString violation() const;

    // The calls of the last step: the step, then the calls of its slots; an empty call ends a slot.
    // Moments are recorded at the beginning of each slot, after calls that return a value, and at
    // the end.
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
    static bool hasEntryOf(const Tracker &tracker, int state);

    bool belongsTo(const Entry &entry, int item) const;
    Message composed(const Entry &entry, Message::Event event) const;
    void addMessage(Tracker &tracker, const Entry &entry, Message::Event event);
    void emitSignal(const Tracker &tracker, const QString &name);
    bool isAllowed(const ItemAtPlace &item) const;

    QString entryViolation(const Tracker &tracker) const;
    QString ownerViolation(const Tracker &tracker) const;

    Reactions m_reactions; // of the last step
    std::size_t m_nextReaction = 0;
    std::deque<ItemAtPlace> m_dying; // the innermost destructor last
    int m_itemCount = 0;
    int m_entryCount = 0;
    bool m_writtenInto = false; // true if the application has written an owner or a count
};

// The real trackers and items.
class TrackerSubject
{
public:
    TrackerSubject();
    ~TrackerSubject();

    // Makes the calls of the model's last step in the same slots, and compares the situation at
    // each of the model's moments. Returns the first difference, or an empty text.
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
        std::optional<int> goneOwner; // the destroyed item that the state still names
    };
    struct NumberedItem
    {
        int number;
        std::unique_ptr<Item> item;
    };

    std::vector<State> m_states;
    std::array<NumberedItem, placeCount> m_items;
    int m_itemCount = 0;
    std::vector<std::pair<int, AbstractResourceOwner *>> m_dying; // the innermost destructor last

    const TrackerModel *m_model = nullptr; // while its calls are made
    std::size_t m_nextCall = 0;
    std::size_t m_nextMoment = 0;
    QString m_difference;
    QObject m_context; // destroyed first, so that no slot runs while items are destroyed
};

} // namespace ovelin::tests

#endif
