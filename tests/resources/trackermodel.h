#ifndef OVELIN_TESTS_RESOURCES_TRACKERMODEL_H
#define OVELIN_TESTS_RESOURCES_TRACKERMODEL_H

#include "resourcesupport.h"

#include <array>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace ovelin::tests {

// A few items use one tracker, each at a place of its own. A destroyed item is followed by a new one.
constexpr int placeCount = 3;

// One call of the tracker or of an item. A state is any that the tracker ever made, by its number; no
// step uses a state whose owner was destroyed after it left the tracker, as the application must not.
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
    int place;
    int id;
    int number; // of the state, the status, the type, the geometry
    bool flag;

    ResourceInfo info() const;
    ResourceOwnerState::Status status() const;
    QRect geometry() const;
    bool isOfTheItem() const { return kind >= RegisterImage && kind <= UnregisterAll; }
    QString described() const;
};

// What the tracker and the items should be after each step, by the plain rules: no slot calls back.
// Items and states are numbered as they come up.
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
    };
    struct ItemAtPlace
    {
        int item;
        std::optional<int> heldState;
        int allowCalls = 0;
        int releaseCalls = 0;
    };
    using Message = SceneResourceTracker::Message; // without the owner's address

    TrackerModel();

    void apply(const TrackerStep &step);

    // The state that the step uses, if it may be used.
    std::optional<int> usableState(const TrackerStep &step) const;
    bool isAllowed(const ItemAtPlace &item) const;

    std::vector<State> states;
    std::list<Entry> resources;
    std::map<int, int> owners;
    QList<Message> messages;
    bool messagesEnabled = false;
    bool registrationBlocked = false;
    bool installed = true;
    std::array<ItemAtPlace, placeCount> items;
    int itemCount = 0;
    QStringList emissions; // of the last step

private:
    int registerResource(int item, const ResourceInfo &info);
    void unregisterResource(int item, int id);
    void unregisterResources(int item);
    void setStatus(int state, int status);
    void destroy(ItemAtPlace &item);
    void clear();

    bool belongsTo(const Entry &entry, int item) const;
    Message composed(const Entry &entry, Message::Event event) const;
    void addMessage(const Entry &entry, Message::Event event);
    void emitSignal(const char *name);
};

// The tracker and the items themselves.
class TrackerSubject
{
public:
    TrackerSubject();

    // The model is what holds before the step.
    void run(const TrackerStep &step, const TrackerModel &model);

    // How the subject differs from the model after a step; empty when it does not.
    QString difference(const TrackerModel &model) const;
    // Which rule the tracker's lists break, whatever slots have done.
    QString violation() const;
    // The subject as it is now, for the steps after one in which slots called back.
    TrackerModel model() const;

    InstalledTracker tracker;
    SignalRecorder recorder{tracker};
    std::array<std::unique_ptr<Item>, placeCount> items;
    std::function<void()> onDecision; // called by an item that is told to allow or release

private:
    void create(int place);
    void noteStates();
    int stateNumber(const QSharedPointer<ResourceOwnerState> &state) const;
    std::optional<int> itemNumber(const IResourceOwner *owner) const;
    QString objectAddress(const QString &objectName) const;

    std::vector<QSharedPointer<ResourceOwnerState>> m_states;
    std::array<int, placeCount> m_itemNumbers{};
    int m_itemCount = 0;
    bool m_messagesEnabled = false;
};

} // namespace ovelin::tests

#endif
