#ifndef OVELIN_TESTS_RESOURCES_TRACKERMODEL_H
#define OVELIN_TESTS_RESOURCES_TRACKERMODEL_H

#include "resourcesupport.h"

#include <array>
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

// What an owner is called that is at no place.
constexpr int goneItem = -1;
// What a state is called that no owner was seen with.
constexpr int unseenState = -1;

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
    int id;
    int number; // of the state, the status, the type, the geometry
    bool flag;  // what is switched on; whether a dying item is called, while there is one

    ResourceInfo info() const;
    ResourceOwnerState::Status status() const;
    QRect geometry() const;
    bool isOfTheItem() const { return kind >= RegisterImage && kind <= UnregisterAll; }
    QString described() const;
};

// What slots, and items that are told of a decision, call back, in the order in which they are called:
// a slot takes steps up to the next nothing. Behind the last one they call nothing any more.
using Reactions = std::vector<std::optional<TrackerStep>>;

// A step, and the state that it uses, if it may use it.
struct TrackerCall
{
    TrackerStep step;
    std::optional<int> state;
};
// A step and what was called back inside it; nothing where a slot returned.
using TrackerCalls = std::vector<std::optional<TrackerCall>>;

// What the trackers and the items should be after each step, by the plain rules. Items and states are
// numbered as they come up.
struct TrackerModel
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
        int number = 0;         // of its registration
        bool isLeaving = false; // while its removal is announced
    };
    using Message = SceneResourceTracker::Message; // without the owner's address
    struct Tracker
    {
        std::list<Entry> resources;
        std::map<int, int> owners; // items and their states
        QList<Message> messages;
        bool messagesEnabled = false;
        bool registrationBlocked = false;
        QStringList emissions; // of the last step
    };
    struct ModelItem
    {
        int item;
        std::optional<int> heldState;
        int allowCalls = 0;
        int releaseCalls = 0;
        int runningCalls = 0; // of its own functions
    };

    TrackerModel();

    void apply(const TrackerStep &step, const Reactions &reactions = {});

    bool isAllowed(const ModelItem &item) const;

    // Which rule is broken of those that hold whatever slots have done; empty when none is.
    QString violation() const;

    std::vector<State> states;
    std::array<Tracker, trackerCount> trackers;
    std::optional<int> installed = 0;
    std::array<ModelItem, placeCount> items;
    int itemCount = 0;
    int registrations = 0; // that items were told to have succeeded
    TrackerCalls calls;    // of the last step

private:
    void call(const TrackerStep &step);
    void runSlot();
    std::optional<int> usableState(const TrackerStep &step) const;
    ModelItem *dyingItem(const TrackerStep &step);

    void registerItem(ModelItem &item, const ResourceInfo &info);
    void unregisterItem(ModelItem &item, int id);
    void unregisterItem(ModelItem &item);
    void decide(int state, int ModelItem::*toldCalls);
    void destroy(ModelItem &place);

    void registerResource(Tracker &tracker, int item, const ResourceInfo &info);
    void unregisterResource(Tracker &tracker, int item, int id);
    void unregisterResources(Tracker &tracker, int item);
    void setStatus(Tracker &tracker, int state, int status);
    void forget(Tracker &tracker, int item, const std::set<int> &itsStates);
    bool remove(Tracker &tracker, const std::vector<int> &entries);
    bool keepsOwner(const Tracker &tracker, int item);

    bool belongsTo(const Entry &entry, int item) const;
    Message composed(const Entry &entry, Message::Event event) const;
    void addMessage(Tracker &tracker, const Entry &entry, Message::Event event);
    void emitSignal(Tracker &tracker, const char *name);

    QString entryViolation(const Tracker &tracker) const;
    QString ownerViolation(const Tracker &tracker) const;

    Reactions m_reactions; // of the last step
    std::size_t m_nextReaction = 0;
    std::list<ModelItem> m_dying; // the last one began last
    int m_entryCount = 0;
};

// The trackers and the items themselves.
class TrackerSubject
{
public:
    TrackerSubject();
    ~TrackerSubject();

    // Makes the first call, and the others from inside slots.
    void run(const TrackerCalls &calls);

    // How the subject differs from the model after a step; empty when it does not.
    QString difference(const TrackerModel &model) const;

    struct Watched
    {
        SceneResourceTracker tracker;
        SignalRecorder recorder{tracker};
        bool messagesEnabled = false;
    };
    std::array<Watched, trackerCount> trackers;
    std::array<std::unique_ptr<Item>, placeCount> items;

private:
    Q_DISABLE_COPY_MOVE(TrackerSubject)

    void create(int place);
    void destroy(int place);
    AbstractResourceOwner *dyingItem(const TrackerStep &step) const;
    void makeCalls();
    void call(const TrackerCall &call);
    void noteStates();
    TrackerModel model() const;
    TrackerModel::Tracker model(const Watched &watched) const;
    QString difference(const TrackerModel::Tracker &actual,
                       const TrackerModel::Tracker &expected) const;
    int stateNumber(const QSharedPointer<ResourceOwnerState> &state) const;
    std::optional<int> itemNumber(const IResourceOwner *owner) const;
    QString objectAddress(const QString &objectName) const;

    std::vector<QSharedPointer<ResourceOwnerState>> m_states;
    std::array<int, placeCount> m_itemNumbers{};
    int m_itemCount = 0;
    std::vector<AbstractResourceOwner *> m_dying; // the last one began last
    int m_registrations = 0;
    TrackerCalls m_calls;
    std::size_t m_nextCall = 0;
    QObject m_context; // of the slots, which go first
};

} // namespace ovelin::tests

#endif
