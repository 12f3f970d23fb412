#include "resourcesupport.h"

#include <QTest>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <span>
#include <utility>

using namespace ovelin;
using namespace Qt::StringLiterals;

// The rules for re-entrant slots, and for owners that call the tracker in allowResources() and
// releaseResources(): no pointer dangles, each entry is removed once, each operation announces its
// own changes, and every call ends.

namespace {

using Message = SceneResourceTracker::Message;
using Signal = void (SceneResourceTracker::*)();

// A reaction stops after this many calls, so that a test fails instead of running for ever. A correct tracker
// calls a reaction less often.
constexpr int manyCalls = 200;

// Calls a reaction for each emission of a signal, except those that the reaction causes.
class Reaction
{
public:
    Reaction(const SceneResourceTracker &tracker, Signal signal, std::function<void()> react)
        : m_react(std::move(react))
    {
        QObject::connect(&tracker, signal, &m_context, [this] { run(); });
    }

    void run()
    {
        if (m_running || m_calls == m_limit)
            return;
        m_running = true;
        ++m_calls;
        m_react();
        m_running = false;
    }

    void onlyOnce() { m_limit = 1; }
    int calls() const { return m_calls; }
    bool reachedLimit() const { return m_calls == manyCalls; }

private:
    QObject m_context;
    std::function<void()> m_react;
    bool m_running = false;
    int m_calls = 0;
    int m_limit = manyCalls;
};

// Keeps each message of the log, also when the log is emptied.
class Ledger
{
public:
    explicit Ledger(const SceneResourceTracker &tracker)
    {
        QObject::connect(&tracker, &SceneResourceTracker::messagesAdded, &m_context,
                         [this, &tracker] { entries.append(tracker.messages().constLast()); });
    }

    int count(Message::Event event) const
    {
        return int(std::count_if(entries.cbegin(), entries.cend(), [event](const Message &message) {
            return message.event == event;
        }));
    }

    int count(Message::Event event, int id) const
    {
        return int(
            std::count_if(entries.cbegin(), entries.cend(), [event, id](const Message &message) {
                return message.event == event && message.id == id;
            }));
    }

    QList<int> ids(Message::Event event) const
    {
        QList<int> result;
        for (const Message &message : entries) {
            if (message.event == event)
                result.append(message.id);
        }
        return result;
    }

    QList<Message> entries;

private:
    QObject m_context;
};

// A tracker with the log enabled and three items: a has registered buffer 2 and images 1 and 3, b
// has registered image 4, and c has registered nothing.
struct Scene
{
    Scene()
    {
        tracker.setMessagesEnabled(true);
        a->registerImage(1, QUrl(u"file:///1.png"_s));
        a->registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer);
        a->registerImage(3, QUrl(u"file:///3.png"_s));
        b->registerImage(4, QUrl(u"file:///4.png"_s));
        aState = a->state();
        bState = b->state();
    }

    // Returns the first rule that the lists of the tracker break, or an empty text.
    QString violation() const
    {
        std::set<std::pair<const IResourceOwner *, int>> identifiers;
        for (const ResourceInfo &info : tracker.resources()) {
            if (!info.ownerState)
                return u"an entry without state"_s;
            if (!identifiers.emplace(info.ownerState->owner, info.id).second)
                return u"two entries with an owner's identifier"_s;
            const auto known = tracker.owners().find(info.ownerState->owner);
            if (known == tracker.owners().end())
                return u"an entry of an unknown owner"_s;
            if (known->second != info.ownerState)
                return u"an entry with a state that is not its owner's"_s;
        }
        for (const auto &[owner, state] : tracker.owners()) {
            if (owner != a.get() && owner != b.get() && owner != c.get())
                return u"a dangling owner"_s;
            if (state->owner != owner)
                return u"a state with another owner"_s;
            const auto count =
                std::ranges::count(tracker.resources(), state, &ResourceInfo::ownerState);
            if (count == 0)
                return u"an owner without entries"_s;
            if (state->resourceCount != count)
                return u"a count of %1 for %2 entries"_s.arg(state->resourceCount).arg(count);
        }
        return {};
    }

    // Compares the numbers of signals and messages with the lists of the tracker. Returns the first
    // difference, or an empty text. Requires that nothing was cleared and that the log stayed
    // enabled.
    QString imbalance() const
    {
        if (recorder.count(u"resourceOwnerAdded"_s) - recorder.count(u"resourceOwnerRemoved"_s)
            != qsizetype(tracker.owners().size()))
            return u"owners announced: "_s + recorder.names().join(u' ');
        if (ledger.count(Message::Registered) - ledger.count(Message::Unregistered)
            != int(tracker.resources().size()))
            return u"entries announced: %1 registered, %2 unregistered, %3 left"_s.arg(
                QString::number(ledger.count(Message::Registered)),
                QString::number(ledger.count(Message::Unregistered)),
                QString::number(tracker.resources().size()));
        return {};
    }

    InstalledTracker tracker;
    SignalRecorder recorder{tracker};
    Ledger ledger{tracker};
    std::unique_ptr<Item> a = std::make_unique<Item>();
    std::unique_ptr<Item> b = std::make_unique<Item>();
    std::unique_ptr<Item> c = std::make_unique<Item>();
    QSharedPointer<ResourceOwnerState> aState;
    QSharedPointer<ResourceOwnerState> bState;
    int nextId = 1000;
};

enum class Inside { Tracker, ItemA };

// An operation that emits signals or calls an owner.
struct Operation
{
    const char *name;
    // An application must not destroy an item inside a function of this item.
    Inside inside;
    void (*run)(Scene &);
};

constexpr std::array operations = {
    Operation{"register for a new owner", Inside::Tracker,
              [](Scene &s) { s.tracker.registerResource(s.c.get(), image(50)); }},
    Operation{"register for a known owner", Inside::Tracker,
              [](Scene &s) { s.tracker.registerResource(s.a.get(), image(51)); }},
    Operation{"register again", Inside::Tracker,
              [](Scene &s) { s.tracker.registerResource(s.a.get(), buffer(1)); }},
    Operation{
        "register what is registered", Inside::Tracker,
        [](Scene &s) { s.tracker.registerResource(s.a.get(), s.tracker.resources().front()); }},
    Operation{"register an image by the item", Inside::ItemA,
              [](Scene &s) { s.a->registerImage(52, QUrl(u"file:///52.png"_s)); }},
    Operation{"register by the item", Inside::ItemA,
              [](Scene &s) { s.a->registerResource(53, u"row"_s, ResourceInfo::PaintedItem); }},
    Operation{"unregister one", Inside::Tracker,
              [](Scene &s) { s.tracker.unregisterResource(s.a.get(), 1); }},
    Operation{"unregister the last one", Inside::Tracker,
              [](Scene &s) { s.tracker.unregisterResource(s.b.get(), 4); }},
    Operation{"unregister one by the item", Inside::ItemA,
              [](Scene &s) { s.a->unregisterResource(1); }},
    Operation{"unregister all", Inside::Tracker,
              [](Scene &s) { s.tracker.unregisterResources(s.a.get()); }},
    Operation{"unregister all by the item", Inside::ItemA,
              [](Scene &s) { s.a->unregisterResources(); }},
    Operation{"set a status", Inside::Tracker,
              [](Scene &s) { s.tracker.setStatus(s.aState, ResourceOwnerState::CreationDenied); }},
    Operation{"set a status by an entry", Inside::Tracker,
              [](Scene &s) {
                  s.tracker.setStatus(s.tracker.resources().front().ownerState,
                                      ResourceOwnerState::CreationDenied);
              }},
    Operation{"set a status by the owner table", Inside::Tracker,
              [](Scene &s) {
                  s.tracker.setStatus(s.tracker.owners().at(s.a.get()),
                                      ResourceOwnerState::CreationDenied);
              }},
    Operation{"allow by an entry", Inside::Tracker,
              [](Scene &s) { s.tracker.allowResources(s.tracker.resources().front().ownerState); }},
    Operation{"release by the owner table", Inside::Tracker,
              [](Scene &s) { s.tracker.releaseResources(s.tracker.owners().at(s.a.get())); }},
    Operation{"destroy", Inside::Tracker, [](Scene &s) { s.a.reset(); }},
};

// A reaction to a signal or to a call of an owner.
struct Callback
{
    const char *name;
    bool destroysA;
    // True if Scene::imbalance() must stay empty.
    bool keepsBalance;
    void (*run)(Scene &);
};

constexpr std::array callbacks = {
    Callback{"unregister what is walked", false, true,
             [](Scene &s) {
                 if (!s.tracker.resources().empty()) {
                     const ResourceInfo &info = s.tracker.resources().front();
                     s.tracker.unregisterResource(info.ownerState->owner, info.id);
                 }
             }},
    Callback{"unregister the last entry", false, true,
             [](Scene &s) {
                 if (!s.tracker.resources().empty()) {
                     const ResourceInfo &info = s.tracker.resources().back();
                     s.tracker.unregisterResource(info.ownerState->owner, info.id);
                 }
             }},
    Callback{"unregister 1", false, true,
             [](Scene &s) { s.tracker.unregisterResource(s.a.get(), 1); }},
    Callback{"unregister 2", false, true,
             [](Scene &s) { s.tracker.unregisterResource(s.a.get(), 2); }},
    Callback{"unregister 3", false, true,
             [](Scene &s) { s.tracker.unregisterResource(s.a.get(), 3); }},
    Callback{"unregister the other's", false, true,
             [](Scene &s) { s.tracker.unregisterResource(s.b.get(), 4); }},
    Callback{"unregister one by the item", false, true,
             [](Scene &s) {
                 if (s.a)
                     s.a->unregisterResource(1);
             }},
    Callback{"unregister all", false, true,
             [](Scene &s) { s.tracker.unregisterResources(s.a.get()); }},
    Callback{"unregister all by the item", false, true,
             [](Scene &s) {
                 if (s.a)
                     s.a->unregisterResources();
             }},
    Callback{"unregister all of the other", false, true,
             [](Scene &s) { s.tracker.unregisterResources(s.b.get()); }},
    Callback{"unregister everything", false, true,
             [](Scene &s) {
                 s.tracker.unregisterResources(s.a.get());
                 s.tracker.unregisterResources(s.b.get());
                 s.tracker.unregisterResources(s.c.get());
             }},
    Callback{"register a new image", false, true,
             [](Scene &s) {
                 if (s.a)
                     s.a->registerImage(s.nextId++, QUrl(u"file:///new.png"_s));
             }},
    Callback{"register a new buffer", false, true,
             [](Scene &s) {
                 if (s.a)
                     s.a->registerResource(s.nextId++, u"new"_s, ResourceInfo::OffscreenBuffer);
             }},
    Callback{"register 1 again", false, true,
             [](Scene &s) {
                 if (s.a)
                     s.a->registerResource(1, u"again"_s, ResourceInfo::PaintedItem);
             }},
    Callback{"register 2 again", false, true,
             [](Scene &s) {
                 if (s.a)
                     s.a->registerImage(2, QUrl(u"file:///again.png"_s));
             }},
    Callback{"register for the other", false, true,
             [](Scene &s) {
                 if (s.b)
                     s.b->registerImage(s.nextId++, QUrl(u"file:///new.png"_s));
             }},
    Callback{"register for a new owner", false, true,
             [](Scene &s) { s.c->registerImage(s.nextId++, QUrl(u"file:///new.png"_s)); }},
    Callback{"move to new entries", false, true,
             [](Scene &s) {
                 if (s.a) {
                     s.a->unregisterResources();
                     s.a->registerImage(1, QUrl(u"file:///1.png"_s));
                     s.a->registerImage(s.nextId++, QUrl(u"file:///new.png"_s));
                 }
             }},
    Callback{"set the status", false, true,
             [](Scene &s) { s.tracker.setStatus(s.aState, ResourceOwnerState::Ignored); }},
    Callback{"set the other's status", false, true,
             [](Scene &s) { s.tracker.setStatus(s.bState, ResourceOwnerState::Ignored); }},
    Callback{"decide", false, true,
             [](Scene &s) {
                 s.tracker.allowResources(s.aState);
                 s.tracker.releaseResources(s.bState);
             }},
    Callback{"switch the log off", false, false,
             [](Scene &s) { s.tracker.setMessagesEnabled(false); }},
    Callback{"switch the log off and on", false, true,
             [](Scene &s) {
                 s.tracker.setMessagesEnabled(false);
                 s.tracker.setMessagesEnabled(true);
             }},
    Callback{"clear the log", false, true, [](Scene &s) { s.tracker.clearMessages(); }},
    Callback{"clear", false, false, [](Scene &s) { s.tracker.clear(); }},
    Callback{"clear and register", false, false,
             [](Scene &s) {
                 s.tracker.clear();
                 if (s.a)
                     s.a->registerImage(1, QUrl(u"file:///1.png"_s));
                 s.c->registerImage(1, QUrl(u"file:///1.png"_s));
             }},
    Callback{"uninstall the tracker", false, true,
             [](Scene &) { setSceneResourceTracker(nullptr); }},
    Callback{"block", false, true, [](Scene &s) { s.tracker.setRegistrationBlocked(true); }},
    Callback{"destroy the other", false, true, [](Scene &s) { s.b.reset(); }},
    Callback{"destroy", true, true, [](Scene &s) { s.a.reset(); }},
    Callback{"destroy both", true, true,
             [](Scene &s) {
                 s.b.reset();
                 s.a.reset();
             }},
};

struct NamedSignal
{
    const char *name;
    Signal signal;
};

constexpr NamedSignal resourcesChanged{"resourcesChanged", &SceneResourceTracker::resourcesChanged};
constexpr NamedSignal ownerAdded{"resourceOwnerAdded", &SceneResourceTracker::resourceOwnerAdded};
constexpr NamedSignal ownerRemoved{"resourceOwnerRemoved",
                                   &SceneResourceTracker::resourceOwnerRemoved};
constexpr NamedSignal messagesAdded{"messagesAdded", &SceneResourceTracker::messagesAdded};

constexpr std::array trackerSignals = {resourcesChanged, ownerAdded, ownerRemoved, messagesAdded};
constexpr std::array registrationSignals = {resourcesChanged, ownerAdded, messagesAdded};
constexpr std::array unregistrationSignals = {resourcesChanged, ownerRemoved, messagesAdded};

void addSignalRows(std::span<const NamedSignal> emitted)
{
    QTest::addColumn<Signal>("signal");

    for (const NamedSignal &signal : emitted)
        QTest::newRow(signal.name) << signal.signal;
}

// Adds two rows for each signal: one entry is unregistered, all entries are unregistered.
void addUnregistrationRows(std::span<const NamedSignal> emitted)
{
    QTest::addColumn<Signal>("signal");
    QTest::addColumn<bool>("all");

    for (const NamedSignal &signal : emitted) {
        QTest::addRow("%s, one", signal.name) << signal.signal << false;
        QTest::addRow("%s, all", signal.name) << signal.signal << true;
    }
}

void addOperationRows()
{
    QTest::addColumn<const Operation *>("operation");
    QTest::addColumn<const NamedSignal *>("signal");

    for (const Operation &operation : operations) {
        for (const NamedSignal &signal : trackerSignals)
            QTest::addRow("%s, %s", operation.name, signal.name) << &operation << &signal;
    }
}

QList<int> idsOf(const SceneResourceTracker &tracker, const IResourceOwner *owner)
{
    QList<int> result;
    for (const ResourceInfo &info : tracker.resources()) {
        if (info.ownerState->owner == owner)
            result.append(info.id);
    }
    return result;
}

} // namespace

class tst_Reentrancy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    // every operation with every reaction
    void everyReactionToEverySignal_data();
    void everyReactionToEverySignal();
    void everyReactionToADecision_data();
    void everyReactionToADecision();

    // unregistering
    void unregistersAnEntryOnceFromItsOwnMessage();
    void unregistersAnOwnerOnceFromItsOwnMessage();
    void slotMayUnregisterNeighbours_data();
    void slotMayUnregisterNeighbours();
    void slotMayUnregisterAnotherOwner();
    void slotMayUnregisterAnotherOwnerInAWalkOfAnyLength_data();
    void slotMayUnregisterAnotherOwnerInAWalkOfAnyLength();
    void slotMayUnregisterAllInsteadOfOne();
    void lastOwnerIsAnnouncedOnce();
    void keepsEntriesOfSlotsWhileAllIsUnregistered_data();
    void keepsEntriesOfSlotsWhileAllIsUnregistered();
    void keepsAnIdRegisteredAnewWhileAllIsUnregistered();
    void keepsAnIdRegisteredAnewWhileOneIsUnregistered_data();
    void keepsAnIdRegisteredAnewWhileOneIsUnregistered();
    void keepsAnOwnerRegisteredAnewWhileItLeaves();
    void countsOnlyEntriesWithTheNewState();
    void keepsAnOwnerRegisteredAnewAfterItLeft_data();
    void keepsAnOwnerRegisteredAnewAfterItLeft();
    void returnsAlthoughEachSignalRegisters_data();
    void returnsAlthoughEachSignalRegisters();
    void slotMayClearWhileAllIsUnregistered();
    void slotMayDisableTheLog();

    // registering
    void slotMayUnregisterTheNewEntry();
    void slotMayUnregisterTheUpdatedEntry();
    void registersARecordWhoseEntryIsRemoved_data();
    void registersARecordWhoseEntryIsRemoved();
    void registeringWithinARegistration();
    void knownOwnerIsNotAnnouncedForAnother();
    void newOwnerIsAnnouncedThoughAnotherLeaves();
    void changeIsAnnouncedThoughTheSizeIsTheSame();

    // statuses
    void setStatusSkipsRemovedEntries_data();
    void setStatusSkipsRemovedEntries();
    void setStatusStopsWhenNoEntryIsLeft_data();
    void setStatusStopsWhenNoEntryIsLeft();
    void setStatusReturnsAlthoughEachMessageRegisters_data();
    void setStatusReturnsAlthoughEachMessageRegisters();
    void setStatusStopsWhenTheOwnerIsDestroyed();
    void setStatusInASlotOfSetStatus();
    void setStatusTakesAReferenceIntoTheTracker_data();
    void setStatusTakesAReferenceIntoTheTracker();

    // decisions
    void decisionMayDestroyItsOwner_data();
    void decisionMayDestroyItsOwner();
    void decisionMayUnregister_data();
    void decisionMayUnregister();
    void decisionMayDestroyOthers_data();
    void decisionMayDestroyOthers();
    void decisionMaySetStatusAndClear_data();
    void decisionMaySetStatusAndClear();

    // items
    void itemUnregistersAllWhileUnregisteringOne_data();
    void itemUnregistersAllWhileUnregisteringOne();
    void itemKeepsEntriesRegisteredWhileUnregistering_data();
    void itemKeepsEntriesRegisteredWhileUnregistering();
    void itemHoldsTheStateOfTheTracker();
    void itemDestroyedByTheSlotOfItsRegistration_data();
    void itemDestroyedByTheSlotOfItsRegistration();
    void itemDestroyedWhileItIsUnregistered_data();
    void itemDestroyedWhileItIsUnregistered();
    void itemWithoutStateDestroyedWhileItIsUnregistered_data();
    void itemWithoutStateDestroyedWhileItIsUnregistered();
    void slotOfADestructionMayDestroyAnotherItem_data();
    void slotOfADestructionMayDestroyAnotherItem();
};

void tst_Reentrancy::cleanup()
{
    QCOMPARE(sceneResourceTracker(), nullptr);
}

void tst_Reentrancy::everyReactionToEverySignal_data()
{
    addOperationRows();
}

void tst_Reentrancy::everyReactionToEverySignal()
{
    QFETCH(const Operation *const, operation);
    QFETCH(const NamedSignal *const, signal);

    for (const Callback &callback : callbacks) {
        if (callback.destroysA && operation->inside == Inside::ItemA)
            continue;
        for (const bool once : {true, false}) {
            Scene scene;
            Reaction reaction(scene.tracker, signal->signal, [&] { callback.run(scene); });
            if (once)
                reaction.onlyOnce();

            operation->run(scene);

            QVERIFY2(!reaction.reachedLimit(), callback.name);
            QVERIFY2(scene.violation().isEmpty(),
                     qPrintable(QLatin1StringView(callback.name) + u": "_s + scene.violation()));
            if (callback.keepsBalance)
                QVERIFY2(scene.imbalance().isEmpty(), qPrintable(QLatin1StringView(callback.name)
                                                                 + u": "_s + scene.imbalance()));
        }
    }
}

void tst_Reentrancy::everyReactionToADecision_data()
{
    QTest::addColumn<const Callback *>("callback");

    for (const Callback &callback : callbacks)
        QTest::newRow(callback.name) << &callback;
}

void tst_Reentrancy::everyReactionToADecision()
{
    QFETCH(const Callback *const, callback);

    for (const bool allow : {true, false}) {
        Scene scene;
        bool reacting = false;
        int reactions = 0;
        const auto react = [&] {
            if (reacting)
                return;
            reacting = true;
            ++reactions;
            callback->run(scene);
            // cppcheck-suppress redundantAssignment ; the callback may call this function
            reacting = false;
        };
        scene.a->onAllow = react;
        scene.a->onRelease = react;
        const QSharedPointer<ResourceOwnerState> &state =
            scene.tracker.resources().front().ownerState;

        if (allow)
            scene.tracker.allowResources(state);
        else
            scene.tracker.releaseResources(state);

        QCOMPARE(reactions, 1);
        QCOMPARE(scene.violation(), QString());
        if (callback->keepsBalance)
            QCOMPARE(scene.imbalance(), QString());
    }
}

void tst_Reentrancy::unregistersAnEntryOnceFromItsOwnMessage()
{
    // The slot's own call must cause no message: a message would run the slot again, up to manyCalls times. The
    // counter must outlive the scene, because the destructor of the scene emits signals.
    int depth = 0;
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    connect(&scene.tracker, &SceneResourceTracker::messagesAdded, this, [&] {
        if (++depth < manyCalls)
            scene.tracker.unregisterResource(scene.b.get(), 4);
    });

    scene.tracker.unregisterResource(scene.b.get(), 4);

    QCOMPARE(depth, 1);
    QCOMPARE(scene.ledger.count(Message::Unregistered, 4), 1);
    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), 1);
    QCOMPARE(recorder.count(u"resourcesChanged"_s), 1);
    QCOMPARE(scene.bState->resourceCount, 0);
    QCOMPARE(ids(scene.tracker), (QList<int>{2, 1, 3}));
    QCOMPARE(scene.violation(), QString());
}

void tst_Reentrancy::unregistersAnOwnerOnceFromItsOwnMessage()
{
    int calls = 0;
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    connect(&scene.tracker, &SceneResourceTracker::messagesAdded, this, [&] {
        if (++calls < manyCalls)
            scene.tracker.unregisterResources(scene.a.get());
    });

    scene.tracker.unregisterResources(scene.a.get());

    QCOMPARE(calls, 3);
    for (const int id : {1, 2, 3})
        QCOMPARE(scene.ledger.count(Message::Unregistered, id), 1);
    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), 1);
    QVERIFY(recorder.count(u"resourcesChanged"_s) >= 1);
    QCOMPARE(ids(scene.tracker), QList<int>{4});
    QCOMPARE(scene.violation(), QString());
}

void tst_Reentrancy::slotMayUnregisterNeighbours_data()
{
    QTest::addColumn<int>("unregistered");

    // The list holds the entries 2, 1, 3, 4.
    QTest::newRow("the one walked") << 2;
    QTest::newRow("the next one") << 1;
    QTest::newRow("the last one") << 3;
}

void tst_Reentrancy::slotMayUnregisterNeighbours()
{
    QFETCH(const int, unregistered);
    Scene scene;
    Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                      [&] { scene.tracker.unregisterResource(scene.a.get(), unregistered); });
    reaction.onlyOnce();

    scene.tracker.unregisterResources(scene.a.get());

    for (const int id : {1, 2, 3})
        QCOMPARE(scene.ledger.count(Message::Unregistered, id), 1);
    QCOMPARE(ids(scene.tracker), QList<int>{4});
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::slotMayUnregisterAnotherOwner()
{
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.unregisterResource(scene.b.get(), 4); });

    scene.tracker.unregisterResources(scene.a.get());

    QCOMPARE(scene.ledger.count(Message::Unregistered), 4);
    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), 2);
    QCOMPARE(recorder.count(u"resourcesChanged"_s), 2);
    QVERIFY(scene.tracker.resources().empty());
    QVERIFY(scene.tracker.owners().empty());
}

void tst_Reentrancy::slotMayUnregisterAnotherOwnerInAWalkOfAnyLength_data()
{
    QTest::addColumn<int>("count");

    // A ResourceWalk has room for 16 entries. More entries need memory from the heap.
    for (const int count : {1, 15, 16, 17, 32, 33})
        QTest::addRow("%d", count) << count;
}

void tst_Reentrancy::slotMayUnregisterAnotherOwnerInAWalkOfAnyLength()
{
    QFETCH(const int, count);
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    PlainOwner other;
    for (int id = 1; id <= count; ++id)
        tracker.registerResource(&owner, image(id));
    tracker.registerResource(&other, image(0));
    const Reaction reaction(tracker, &SceneResourceTracker::messagesAdded,
                            [&] { tracker.unregisterResource(&other, 0); });

    tracker.unregisterResources(&owner);

    QCOMPARE(reaction.calls(), count);
    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
}

void tst_Reentrancy::slotMayUnregisterAllInsteadOfOne()
{
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.unregisterResources(scene.a.get()); });

    scene.tracker.unregisterResource(scene.a.get(), 1);

    for (const int id : {1, 2, 3})
        QCOMPARE(scene.ledger.count(Message::Unregistered, id), 1);
    QCOMPARE(ids(scene.tracker), QList<int>{4});
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::lastOwnerIsAnnouncedOnce()
{
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::resourceOwnerRemoved, [&] {
        scene.tracker.unregisterResources(scene.b.get());
        scene.tracker.unregisterResource(scene.b.get(), 4);
    });

    scene.tracker.unregisterResource(scene.b.get(), 4);

    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), 1);
    QCOMPARE(scene.ledger.count(Message::Unregistered, 4), 1);
    QCOMPARE(ids(scene.tracker), (QList<int>{2, 1, 3}));
}

void tst_Reentrancy::keepsEntriesOfSlotsWhileAllIsUnregistered_data()
{
    QTest::addColumn<ResourceInfo::Type>("type");

    QTest::newRow("image") << ResourceInfo::Image;
    QTest::newRow("offscreen buffer") << ResourceInfo::OffscreenBuffer;
}

void tst_Reentrancy::keepsEntriesOfSlotsWhileAllIsUnregistered()
{
    QFETCH(const ResourceInfo::Type, type);
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded, [&] {
        scene.tracker.registerResource(scene.a.get(), named(scene.nextId++, u"new"_s, type));
    });

    scene.tracker.unregisterResources(scene.a.get());

    // Each of the three messages registered one entry.
    QCOMPARE(reaction.calls(), 3);
    QCOMPARE(idsOf(scene.tracker, scene.a.get()).size(), 3);
    QVERIFY(scene.tracker.owners().contains(scene.a.get()));
    QCOMPARE(scene.tracker.owners().at(scene.a.get())->resourceCount, 3);
    for (const int id : {1, 2, 3})
        QCOMPARE(scene.ledger.count(Message::Unregistered, id), 1);
    QCOMPARE(scene.ledger.count(Message::Unregistered), 3);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());

    // The entries that stayed can be unregistered.
    scene.tracker.setMessagesEnabled(false);
    scene.tracker.unregisterResources(scene.a.get());
    QVERIFY(!refersTo(scene.tracker, scene.a.get()));
}

void tst_Reentrancy::keepsAnIdRegisteredAnewWhileAllIsUnregistered()
{
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded, [&] {
        const int id = scene.ledger.entries.constLast().id;
        scene.tracker.registerResource(scene.a.get(),
                                       named(id, u"new"_s, ResourceInfo::PaintedItem));
    });

    scene.tracker.unregisterResources(scene.a.get());

    QCOMPARE(reaction.calls(), 3);
    for (const int id : {1, 2, 3}) {
        QCOMPARE(scene.ledger.count(Message::Unregistered, id), 1);
        QCOMPARE(idsOf(scene.tracker, scene.a.get()).count(id), 1);
    }
    for (const ResourceInfo &info : scene.tracker.resources()) {
        if (info.ownerState->owner == scene.a.get())
            QCOMPARE(info.name, u"new"_s);
    }
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::keepsAnIdRegisteredAnewWhileOneIsUnregistered_data()
{
    QTest::addColumn<bool>("last");

    QTest::newRow("one of several") << false;
    QTest::newRow("the last one") << true;
}

void tst_Reentrancy::keepsAnIdRegisteredAnewWhileOneIsUnregistered()
{
    QFETCH(const bool, last);
    Scene scene;
    Item *item = last ? scene.b.get() : scene.a.get();
    const int id = last ? 4 : 1;
    Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded, [&] {
        scene.tracker.registerResource(item, named(id, u"new"_s, ResourceInfo::PaintedItem));
    });
    reaction.onlyOnce();

    scene.tracker.unregisterResource(item, id);

    QCOMPARE(scene.ledger.count(Message::Unregistered, id), 1);
    QCOMPARE(idsOf(scene.tracker, item).count(id), 1);
    QCOMPARE(scene.tracker.resources().front().id, id);
    QCOMPARE(scene.tracker.resources().front().name, u"new"_s);
    QCOMPARE(scene.tracker.owners().at(item)->resourceCount, last ? 1 : 3);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::keepsAnOwnerRegisteredAnewWhileItLeaves()
{
    Scene scene;
    Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded, [&] {
        scene.tracker.unregisterResources(scene.b.get());
        scene.tracker.registerResource(scene.b.get(), image(80));
    });
    reaction.onlyOnce();

    scene.tracker.unregisterResource(scene.b.get(), 4);

    // The owner left the tracker and was registered again with another state.
    QCOMPARE(idsOf(scene.tracker, scene.b.get()), QList<int>{80});
    QCOMPARE(scene.tracker.owners().at(scene.b.get())->resourceCount, 1);
    QCOMPARE(scene.ledger.count(Message::Unregistered, 4), 1);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

// While the last entry of an owner is removed, slots register the owner again, remove all its
// entries, and register it again.
void tst_Reentrancy::countsOnlyEntriesWithTheNewState()
{
    Scene scene;
    Item *const b = scene.b.get();
    Reaction onLeaving(scene.tracker, &SceneResourceTracker::resourceOwnerRemoved, [&] {
        scene.tracker.registerResource(b, image(5));
        Reaction onMessage(scene.tracker, &SceneResourceTracker::messagesAdded,
                           [&] { scene.tracker.registerResource(b, image(6)); });
        onMessage.onlyOnce();
        scene.tracker.unregisterResources(b);
    });
    onLeaving.onlyOnce();

    scene.tracker.unregisterResource(b, 4);

    QCOMPARE(idsOf(scene.tracker, b), QList<int>{6});
    QCOMPARE(scene.tracker.owners().at(b)->resourceCount, 1);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::keepsAnOwnerRegisteredAnewAfterItLeft_data()
{
    addUnregistrationRows(std::array{ownerRemoved, resourcesChanged});
}

void tst_Reentrancy::keepsAnOwnerRegisteredAnewAfterItLeft()
{
    QFETCH(const Signal, signal);
    QFETCH(const bool, all);
    Scene scene;
    const Reaction reaction(scene.tracker, signal, [&] {
        scene.tracker.registerResource(scene.b.get(),
                                       named(4, u"new"_s, ResourceInfo::PaintedItem));
    });

    if (all)
        scene.tracker.unregisterResources(scene.b.get());
    else
        scene.tracker.unregisterResource(scene.b.get(), 4);

    QCOMPARE(reaction.calls(), 1);
    QCOMPARE(ids(scene.tracker), (QList<int>{4, 2, 1, 3}));
    QCOMPARE(scene.tracker.resources().front().name, u"new"_s);
    const auto state = scene.tracker.owners().at(scene.b.get());
    QVERIFY(state != scene.bState);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::returnsAlthoughEachSignalRegisters_data()
{
    addOperationRows();
}

void tst_Reentrancy::returnsAlthoughEachSignalRegisters()
{
    QFETCH(const Operation *const, operation);
    QFETCH(const NamedSignal *const, signal);
    Scene scene;
    const Reaction reaction(scene.tracker, signal->signal, [&] {
        for (Item *item : {scene.a.get(), scene.b.get(), scene.c.get()}) {
            if (item) {
                item->registerImage(scene.nextId++, QUrl(u"file:///new.png"_s));
                item->registerResource(scene.nextId++, u"new"_s, ResourceInfo::PaintedItem);
            }
        }
    });

    operation->run(scene);

    QVERIFY(!reaction.reachedLimit());
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::slotMayClearWhileAllIsUnregistered()
{
    Scene scene;
    const int before = int(scene.ledger.entries.size());
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.clear(); });

    scene.tracker.unregisterResources(scene.a.get());

    QCOMPARE(int(scene.ledger.entries.size()), before + 1);
    QVERIFY(scene.tracker.resources().empty());
    QVERIFY(scene.tracker.owners().empty());
}

void tst_Reentrancy::slotMayDisableTheLog()
{
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.setMessagesEnabled(false); });
    scene.tracker.clearMessages();

    scene.tracker.setStatus(scene.aState, ResourceOwnerState::Ignored);
    QCOMPARE(scene.tracker.messages().size(), 1);
    QCOMPARE(scene.aState->status, ResourceOwnerState::Ignored);

    scene.tracker.setMessagesEnabled(true);
    scene.tracker.unregisterResources(scene.a.get());
    QCOMPARE(scene.tracker.messages().size(), 2);
    QCOMPARE(ids(scene.tracker), QList<int>{4});
}

void tst_Reentrancy::slotMayUnregisterTheNewEntry()
{
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.unregisterResource(scene.c.get(), 50); });

    const auto state = scene.tracker.registerResource(scene.c.get(), image(50));

    QVERIFY(state);
    QCOMPARE(state->resourceCount, 0);
    QVERIFY(!refersTo(scene.tracker, scene.c.get()));
    QCOMPARE(scene.ledger.count(Message::Unregistered, 50), 1);
    QCOMPARE(recorder.count(u"resourceOwnerAdded"_s), 1);
    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), 1);
    QCOMPARE(recorder.count(u"resourcesChanged"_s), 2);
}

void tst_Reentrancy::slotMayUnregisterTheUpdatedEntry()
{
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.unregisterResources(scene.b.get()); });

    const auto state = scene.tracker.registerResource(scene.b.get(), image(4));

    QCOMPARE(state, scene.bState);
    QVERIFY(!refersTo(scene.tracker, scene.b.get()));
    QCOMPARE(scene.ledger.count(Message::Updated, 4), 1);
    QCOMPARE(scene.ledger.count(Message::Unregistered, 4), 1);
    QCOMPARE(recorder.count(u"resourceOwnerAdded"_s), 0);
    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), 1);
    QCOMPARE(recorder.count(u"resourcesChanged"_s), 2);
}

void tst_Reentrancy::registersARecordWhoseEntryIsRemoved_data()
{
    QTest::addColumn<bool>("update");

    QTest::newRow("another owner") << false;
    QTest::newRow("the same owner") << true;
}

void tst_Reentrancy::registersARecordWhoseEntryIsRemoved()
{
    QFETCH(const bool, update);
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    PlainOwner other;
    tracker.registerResource(&owner, buffer(1));
    const Reaction reaction(tracker, &SceneResourceTracker::messagesAdded,
                            [&] { tracker.clear(); });

    // The second argument is an entry of the tracker. Only the tracker holds this entry and its state.
    const auto state =
        tracker.registerResource(update ? &owner : &other, tracker.resources().front());

    QVERIFY(state);
    QVERIFY(state->owner == (update ? &owner : &other));
    QCOMPARE(state->resourceCount, 1);
    QVERIFY(tracker.resources().empty());
}

void tst_Reentrancy::registeringWithinARegistration()
{
    Scene scene;
    Item another;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.registerResource(&another, image(60)); });

    scene.tracker.registerResource(scene.c.get(), image(50));

    QCOMPARE(recorder.count(u"resourceOwnerAdded"_s), 2);
    QCOMPARE(recorder.count(u"resourcesChanged"_s), 2);
    QCOMPARE(ids(scene.tracker), (QList<int>{2, 1, 3, 4, 50, 60}));
}

void tst_Reentrancy::knownOwnerIsNotAnnouncedForAnother()
{
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.registerResource(scene.c.get(), image(60)); });

    scene.tracker.registerResource(scene.a.get(), image(50));

    QCOMPARE(recorder.names(),
             (QStringList{u"messagesAdded"_s, u"messagesAdded"_s, u"resourceOwnerAdded"_s,
                          u"resourcesChanged"_s, u"resourcesChanged"_s}));
}

void tst_Reentrancy::newOwnerIsAnnouncedThoughAnotherLeaves()
{
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.unregisterResources(scene.b.get()); });

    scene.tracker.registerResource(scene.c.get(), image(50));

    QCOMPARE(recorder.names(),
             (QStringList{u"messagesAdded"_s, u"messagesAdded"_s, u"resourceOwnerRemoved"_s,
                          u"resourcesChanged"_s, u"resourceOwnerAdded"_s, u"resourcesChanged"_s}));
}

void tst_Reentrancy::changeIsAnnouncedThoughTheSizeIsTheSame()
{
    Scene scene;
    const SignalRecorder recorder(scene.tracker);
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.registerResource(scene.a.get(), image(60)); });

    scene.tracker.unregisterResources(scene.b.get());

    QCOMPARE(ids(scene.tracker), (QList<int>{2, 1, 3, 60}));
    QCOMPARE(recorder.names(),
             (QStringList{u"messagesAdded"_s, u"messagesAdded"_s, u"resourcesChanged"_s,
                          u"resourceOwnerRemoved"_s, u"resourcesChanged"_s}));
}

void tst_Reentrancy::setStatusSkipsRemovedEntries_data()
{
    QTest::addColumn<int>("removed");
    QTest::addColumn<QList<int>>("expectedIds");

    QTest::newRow("the one walked") << 2 << QList<int>{2, 1, 3};
    QTest::newRow("the next one") << 1 << QList<int>{2, 3};
    QTest::newRow("the last one") << 3 << QList<int>{2, 1};
}

void tst_Reentrancy::setStatusSkipsRemovedEntries()
{
    QFETCH(const int, removed);
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.tracker.unregisterResource(scene.a.get(), removed); });

    scene.tracker.setStatus(scene.aState, ResourceOwnerState::CreationDenied);

    QTEST(scene.ledger.ids(Message::StatusChanged), "expectedIds");
    QCOMPARE(scene.violation(), QString());
}

void tst_Reentrancy::setStatusStopsWhenNoEntryIsLeft_data()
{
    QTest::addColumn<bool>("cleared");

    QTest::newRow("cleared") << true;
    QTest::newRow("unregistered") << false;
}

void tst_Reentrancy::setStatusStopsWhenNoEntryIsLeft()
{
    QFETCH(const bool, cleared);
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded, [&] {
        if (cleared)
            scene.tracker.clear();
        else
            scene.tracker.unregisterResources(scene.a.get());
    });

    scene.tracker.setStatus(scene.aState, ResourceOwnerState::CreationDenied);

    QCOMPARE(scene.ledger.ids(Message::StatusChanged), QList<int>{2});
    QCOMPARE(scene.aState->status, ResourceOwnerState::CreationDenied);
}

void tst_Reentrancy::setStatusReturnsAlthoughEachMessageRegisters_data()
{
    QTest::addColumn<ResourceInfo::Type>("type");
    QTest::addColumn<bool>("clearFirst");

    QTest::newRow("image") << ResourceInfo::Image << false;
    QTest::newRow("offscreen buffer") << ResourceInfo::OffscreenBuffer << false;
    QTest::newRow("image after clearing") << ResourceInfo::Image << true;
    QTest::newRow("offscreen buffer after clearing") << ResourceInfo::OffscreenBuffer << true;
}

void tst_Reentrancy::setStatusReturnsAlthoughEachMessageRegisters()
{
    QFETCH(const ResourceInfo::Type, type);
    QFETCH(const bool, clearFirst);
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded, [&] {
        if (clearFirst)
            scene.tracker.clear();
        scene.tracker.registerResource(scene.a.get(), named(scene.nextId++, u"new"_s, type));
    });

    scene.tracker.setStatus(scene.aState, ResourceOwnerState::CreationDenied);

    QVERIFY(!reaction.reachedLimit());
    QCOMPARE(scene.ledger.count(Message::StatusChanged, 2), 1);
    for (const int id : {1, 3})
        QCOMPARE(scene.ledger.count(Message::StatusChanged, id), clearFirst ? 0 : 1);
    QCOMPARE(scene.violation(), QString());
}

void tst_Reentrancy::setStatusStopsWhenTheOwnerIsDestroyed()
{
    Scene scene;
    const Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                            [&] { scene.a.reset(); });

    scene.tracker.setStatus(scene.aState, ResourceOwnerState::CreationDenied);

    QCOMPARE(scene.ledger.ids(Message::StatusChanged), QList<int>{2});
    QCOMPARE(scene.ledger.ids(Message::Unregistered), (QList<int>{2, 1, 3}));
    QCOMPARE(scene.aState->owner, nullptr);
    QCOMPARE(ids(scene.tracker), QList<int>{4});
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::setStatusInASlotOfSetStatus()
{
    Scene scene;
    Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded,
                      [&] { scene.tracker.setStatus(scene.aState, ResourceOwnerState::Ignored); });
    reaction.onlyOnce();

    scene.tracker.setStatus(scene.aState, ResourceOwnerState::CreationDenied);

    QCOMPARE(scene.ledger.ids(Message::StatusChanged), (QList<int>{2, 2, 1, 3, 1, 3}));
    QStringList statuses;
    for (const Message &message : scene.ledger.entries.last(6))
        statuses.append(message.status);
    QCOMPARE(statuses, (QStringList{u"creation_denied"_s, u"ignored"_s, u"ignored"_s, u"ignored"_s,
                                    u"ignored"_s, u"ignored"_s}));
    QCOMPARE(scene.aState->status, ResourceOwnerState::Ignored);
}

void tst_Reentrancy::setStatusTakesAReferenceIntoTheTracker_data()
{
    QTest::addColumn<bool>("table");

    QTest::newRow("an entry's") << false;
    QTest::newRow("the owner table's") << true;
}

void tst_Reentrancy::setStatusTakesAReferenceIntoTheTracker()
{
    QFETCH(const bool, table);
    SceneResourceTracker tracker;
    PlainOwner owner;
    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    tracker.setMessagesEnabled(true);
    int messages = 0;
    connect(&tracker, &SceneResourceTracker::messagesAdded, this, [&] {
        ++messages;
        tracker.clear();
    });

    // Only the tracker holds the state.
    tracker.setStatus(table ? tracker.owners().at(&owner) : tracker.resources().front().ownerState,
                      ResourceOwnerState::CreationDenied);

    QCOMPARE(messages, 1);
    QVERIFY(tracker.resources().empty());
}

namespace {

using Decision = void (SceneResourceTracker::*)(const QSharedPointer<ResourceOwnerState> &);

void addDecisionRows()
{
    QTest::addColumn<Decision>("decision");

    QTest::newRow("allowResources") << &SceneResourceTracker::allowResources;
    QTest::newRow("releaseResources") << &SceneResourceTracker::releaseResources;
}

void reactToDecisions(Item &item, const std::function<void()> &reaction)
{
    item.onAllow = reaction;
    item.onRelease = reaction;
}

} // namespace

void tst_Reentrancy::decisionMayDestroyItsOwner_data()
{
    addDecisionRows();
}

void tst_Reentrancy::decisionMayDestroyItsOwner()
{
    QFETCH(const Decision, decision);
    Scene scene;
    reactToDecisions(*scene.a, [&scene] { scene.a.reset(); });

    (scene.tracker.*decision)(scene.tracker.resources().front().ownerState);

    QVERIFY(!scene.a);
    QCOMPARE(scene.aState->owner, nullptr);
    QCOMPARE(ids(scene.tracker), QList<int>{4});
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::decisionMayUnregister_data()
{
    addDecisionRows();
}

void tst_Reentrancy::decisionMayUnregister()
{
    QFETCH(const Decision, decision);
    Scene scene;
    reactToDecisions(*scene.a, [&scene] {
        scene.a->unregisterResource(1);
        scene.a->unregisterResources();
        scene.a->registerImage(8, QUrl());
    });

    (scene.tracker.*decision)(scene.tracker.resources().front().ownerState);

    QCOMPARE(ids(scene.tracker), (QList<int>{4, 8}));
    QCOMPARE(scene.a->state(), scene.tracker.owners().at(scene.a.get()));
    QVERIFY(scene.a->state() != scene.aState);
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::decisionMayDestroyOthers_data()
{
    addDecisionRows();
}

void tst_Reentrancy::decisionMayDestroyOthers()
{
    QFETCH(const Decision, decision);
    Scene scene;
    reactToDecisions(*scene.a, [&scene] { scene.b.reset(); });

    (scene.tracker.*decision)(scene.aState);

    QCOMPARE(ids(scene.tracker), (QList<int>{2, 1, 3}));
    QCOMPARE(scene.bState->owner, nullptr);
    QCOMPARE(scene.violation(), QString());
}

void tst_Reentrancy::decisionMaySetStatusAndClear_data()
{
    addDecisionRows();
}

void tst_Reentrancy::decisionMaySetStatusAndClear()
{
    QFETCH(const Decision, decision);
    Scene scene;
    reactToDecisions(*scene.a, [&scene] {
        scene.tracker.setStatus(scene.aState, ResourceOwnerState::Cleared);
        scene.tracker.clear();
        scene.aState.reset();
        scene.a->unregisterResources();
    });

    // The reaction releases all pointers to the state, also the argument, which is in the tracker's list.
    (scene.tracker.*decision)(scene.tracker.resources().front().ownerState);

    QCOMPARE(scene.ledger.ids(Message::StatusChanged), (QList<int>{2, 1, 3}));
    QVERIFY(scene.tracker.resources().empty());
    QVERIFY(scene.a->isResourcesAllowed());
}

void tst_Reentrancy::itemUnregistersAllWhileUnregisteringOne_data()
{
    addSignalRows(unregistrationSignals);
}

void tst_Reentrancy::itemUnregistersAllWhileUnregisteringOne()
{
    QFETCH(const Signal, signal);
    Scene scene;
    const Reaction reaction(scene.tracker, signal, [&] { scene.b->unregisterResources(); });

    scene.b->unregisterResource(4);

    QVERIFY(scene.b->state().isNull());
    QVERIFY(scene.b->isResourcesAllowed());
    QCOMPARE(scene.ledger.count(Message::Unregistered, 4), 1);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::itemKeepsEntriesRegisteredWhileUnregistering_data()
{
    addUnregistrationRows(unregistrationSignals);
}

void tst_Reentrancy::itemKeepsEntriesRegisteredWhileUnregistering()
{
    QFETCH(const Signal, signal);
    QFETCH(const bool, all);
    Scene scene;
    Reaction reaction(scene.tracker, signal, [&] { scene.b->registerImage(70, QUrl()); });
    reaction.onlyOnce();

    if (all)
        scene.b->unregisterResources();
    else
        scene.b->unregisterResource(4);

    QCOMPARE(reaction.calls(), 1);
    QCOMPARE(idsOf(scene.tracker, scene.b.get()), QList<int>{70});
    QVERIFY(scene.tracker.owners().contains(scene.b.get()));
    QCOMPARE(scene.b->state(), scene.tracker.owners().at(scene.b.get()));
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());

    // The item can still leave the tracker.
    scene.b->unregisterResources();
    QVERIFY(!refersTo(scene.tracker, scene.b.get()));
    QVERIFY(scene.b->state().isNull());
}

void tst_Reentrancy::itemHoldsTheStateOfTheTracker()
{
    Scene scene;
    Reaction reaction(scene.tracker, &SceneResourceTracker::messagesAdded, [&] {
        scene.tracker.unregisterResources(scene.c.get());
        scene.c->registerImage(60, QUrl());
    });
    reaction.onlyOnce();

    QVERIFY(scene.c->registerImage(50, QUrl()));

    QCOMPARE(idsOf(scene.tracker, scene.c.get()), QList<int>{60});
    QCOMPARE(scene.c->state(), scene.tracker.owners().at(scene.c.get()));
}

void tst_Reentrancy::itemDestroyedByTheSlotOfItsRegistration_data()
{
    addSignalRows(registrationSignals);
}

void tst_Reentrancy::itemDestroyedByTheSlotOfItsRegistration()
{
    QFETCH(const Signal, signal);
    Scene scene;
    const IResourceOwner *address = scene.c.get();
    const Reaction reaction(scene.tracker, signal, [&] { scene.c.reset(); });

    const auto state = scene.tracker.registerResource(scene.c.get(), image(50));

    QVERIFY(!scene.c);
    QVERIFY(state);
    QCOMPARE(state->owner, nullptr);
    QVERIFY(!refersTo(scene.tracker, address));
    QCOMPARE(ids(scene.tracker), (QList<int>{2, 1, 3, 4}));
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::itemDestroyedWhileItIsUnregistered_data()
{
    addUnregistrationRows(unregistrationSignals);
}

void tst_Reentrancy::itemDestroyedWhileItIsUnregistered()
{
    QFETCH(const Signal, signal);
    QFETCH(const bool, all);
    Scene scene;
    const IResourceOwner *address = scene.b.get();
    const Reaction reaction(scene.tracker, signal, [&] { scene.b.reset(); });

    if (all)
        scene.tracker.unregisterResources(scene.b.get());
    else
        scene.tracker.unregisterResource(scene.b.get(), 4);

    QVERIFY(!scene.b);
    QCOMPARE(scene.bState->owner, nullptr);
    QVERIFY(!refersTo(scene.tracker, address));
    QCOMPARE(ids(scene.tracker), (QList<int>{2, 1, 3}));
    QCOMPARE(scene.ledger.count(Message::Unregistered, 4), 1);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::itemWithoutStateDestroyedWhileItIsUnregistered_data()
{
    // resourcesChanged() is left out: when it is emitted, the tracker does not know the owner any
    // more.
    addSignalRows(std::array{messagesAdded, ownerRemoved});
}

void tst_Reentrancy::itemWithoutStateDestroyedWhileItIsUnregistered()
{
    QFETCH(const Signal, signal);
    Scene scene;
    // Registered with the tracker directly: the item does not hold the state.
    const auto state = scene.tracker.registerResource(scene.c.get(), image(50));
    const Reaction reaction(scene.tracker, signal, [&] { scene.c.reset(); });

    scene.tracker.unregisterResource(scene.c.get(), 50);

    QVERIFY(!scene.c);
    QCOMPARE(state->owner, nullptr);
    QCOMPARE(scene.violation(), QString());
    QCOMPARE(scene.imbalance(), QString());
}

void tst_Reentrancy::slotOfADestructionMayDestroyAnotherItem_data()
{
    addSignalRows(unregistrationSignals);
}

void tst_Reentrancy::slotOfADestructionMayDestroyAnotherItem()
{
    QFETCH(const Signal, signal);
    Scene scene;
    const Reaction reaction(scene.tracker, signal, [&] { scene.b.reset(); });

    scene.a.reset();

    QVERIFY(!scene.b);
    QVERIFY(scene.tracker.resources().empty());
    QVERIFY(scene.tracker.owners().empty());
    for (const int id : {1, 2, 3, 4})
        QCOMPARE(scene.ledger.count(Message::Unregistered, id), 1);
    QCOMPARE(scene.imbalance(), QString());
}

QTEST_GUILESS_MAIN(tst_Reentrancy)

#include "tst_reentrancy.moc"
