#include "resourcesupport.h"

#include <QMetaMethod>
#include <QTest>

#include <climits>
#include <memory>
#include <type_traits>

using namespace ovelin;
using namespace Qt::StringLiterals;

using OwnerTable = std::unordered_map<IResourceOwner *, QSharedPointer<ResourceOwnerState>>;

static_assert(std::is_base_of_v<QObject, SceneResourceTracker>);
static_assert(std::has_virtual_destructor_v<SceneResourceTracker>);
static_assert(sizeof(SceneResourceTracker) == sizeof(QObject), "the data is in the private object");
static_assert(std::is_default_constructible_v<SceneResourceTracker>);
static_assert(std::is_constructible_v<SceneResourceTracker, QObject *>);
static_assert(!std::is_convertible_v<QObject *, SceneResourceTracker>);
static_assert(!std::is_copy_constructible_v<SceneResourceTracker>);
static_assert(!std::is_copy_assignable_v<SceneResourceTracker>);
static_assert(!std::is_move_constructible_v<SceneResourceTracker>);
static_assert(!std::is_move_assignable_v<SceneResourceTracker>);
static_assert(std::is_same_v<decltype(&SceneResourceTracker::owners),
                             const OwnerTable &(SceneResourceTracker::*)() const>);
static_assert(std::is_same_v<decltype(&SceneResourceTracker::resources),
                             const std::list<ResourceInfo> &(SceneResourceTracker::*)() const>);
static_assert(std::is_same_v<decltype(&sceneResourceTracker), SceneResourceTracker *(*)()>);
static_assert(std::is_same_v<decltype(&setSceneResourceTracker), void (*)(SceneResourceTracker *)>);

namespace {

// Read before main(), before anything can install a tracker.
const SceneResourceTracker *const trackerAtLoad = sceneResourceTracker();

constexpr auto unknownType = static_cast<ResourceInfo::Type>(3);
constexpr auto negativeType = static_cast<ResourceInfo::Type>(-1);

} // namespace

class tst_SceneResourceTracker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // the object and the global pointer
    void constructionStartsEmpty();
    void constructionPassesTheParentOn();
    void noTrackerIsInstalledAtLoad();
    void globalPointerIsOnlyStored();
    void destructionKeepsTheGlobalPointer();
    void metaObjectHasFourSignalsOnly();
    void metaObjectKeepsTheSignalOrder_data();
    void metaObjectKeepsTheSignalOrder();

    // registering
    void registeringAddsAnEntry();
    void registeringDoesNotChangeTheGivenRecord();
    void registeringCountsPerOwner();
    void imagesGoToTheBackAndOthersToTheFront();
    void typeDecidesThePosition_data();
    void typeDecidesThePosition();
    void reRegisteringUpdatesInPlace();
    void reRegisteringKeepsIdStateAndCount();
    void reRegisteringKeepsAnEqualUrl();
    void identifiersAreUniquePerOwnerOnly();
    void registeringKeepsTheStatus();
    void registeringIgnoresTheBlock();
    void registeringTakesANullOwner();
    void registeringForAStateWithoutOwnerAddsAnEntry();
    void registeringSignals();
    void registeringSignalsWithTheLog();

    // unregistering one
    void unregisteringRemovesOneEntry();
    void unregisteringUnknownDoesNothing_data();
    void unregisteringUnknownDoesNothing();
    void unregisteringSignals();
    void unregisteringSignalsWithTheLog();
    void unregisteringAnnouncesBeforeItCounts();
    void unregisteringFollowsTheCountAlone_data();
    void unregisteringFollowsTheCountAlone();
    void unregisteringRemovesTheNamedOwnerOnly();
    void unregisteringRemovesTheNamedOwnerThoughTheTableHasAnotherState();
    void unregisteringReleasesTheStateBeforeItsLastSignal();
    void unregisteringTakesTheFirstMatch();
    void reRegisteringTakesTheFirstMatch();

    // unregistering all
    void unregisteringAllRemovesTheOwner();
    void unregisteringAllSignals();
    void unregisteringAllSignalsWithTheLog();
    void unregisteringAllOfAnOwnerWithoutEntries();
    void unregisteringAllOfAnUnknownOwner();
    void unregisteringAllOfAnOwnerThatItsStateDoesNotName();
    void unregisteringAllKeepsTheCount();
    void unregisteringAllReleasesTheState();

    // statuses and decisions
    void settingAStatusWritesItSilently_data();
    void settingAStatusWritesItSilently();
    void settingAStatusWithoutOwnerDoesNothing();
    void settingAStatusAfterTheOwnerLeft();
    void settingAStatusSignals();
    void settingTheSameStatusAnnouncesAgain();
    void settingAStatusFindsEntriesByOwner();
    void allowingCallsTheOwnerOnly();
    void releasingCallsTheOwnerOnly();
    void decisionsWithoutOwnerDoNothing();

    // blocking and clearing
    void blockingIsStored();
    void clearingEmptiesEverythingSilently();
    void clearingUnblocks();
    void clearingKeepsStatesThatOthersHold();
    void clearingReleasesStates();
    void clearingForgetsOwners();
};

void tst_SceneResourceTracker::constructionStartsEmpty()
{
    const SceneResourceTracker tracker;

    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
    QCOMPARE(tracker.owners().max_load_factor(), 1.0F);
    QVERIFY(tracker.messages().isEmpty());
    QVERIFY(!tracker.isRegistrationBlocked());
    QCOMPARE(tracker.objectName(), u"SceneResourceTracker"_s);
    QCOMPARE(tracker.parent(), nullptr);
    QCOMPARE(sceneResourceTracker(), nullptr);
}

void tst_SceneResourceTracker::constructionPassesTheParentOn()
{
    QPointer<SceneResourceTracker> tracker;
    {
        QObject parent;
        tracker = new SceneResourceTracker(&parent);
        QCOMPARE(tracker->parent(), &parent);
    }
    QVERIFY(tracker.isNull());
}

void tst_SceneResourceTracker::noTrackerIsInstalledAtLoad()
{
    QCOMPARE(trackerAtLoad, nullptr);
}

void tst_SceneResourceTracker::globalPointerIsOnlyStored()
{
    QObject parent;
    SceneResourceTracker first(&parent);
    QPointer<SceneResourceTracker> second = new SceneResourceTracker(&parent);

    setSceneResourceTracker(&first);
    QCOMPARE(sceneResourceTracker(), &first);
    setSceneResourceTracker(second);
    QCOMPARE(sceneResourceTracker(), second.data());
    setSceneResourceTracker(nullptr);
    QCOMPARE(sceneResourceTracker(), nullptr);

    QVERIFY(!second.isNull());
    QCOMPARE(first.parent(), &parent);
    QCOMPARE(second->parent(), &parent);
}

void tst_SceneResourceTracker::destructionKeepsTheGlobalPointer()
{
    auto tracker = std::make_unique<SceneResourceTracker>();
    const auto address = reinterpret_cast<quintptr>(tracker.get());
    setSceneResourceTracker(tracker.get());

    tracker.reset();

    const auto installed = reinterpret_cast<quintptr>(sceneResourceTracker());
    setSceneResourceTracker(nullptr);
    QCOMPARE(installed, address);
}

void tst_SceneResourceTracker::metaObjectHasFourSignalsOnly()
{
    const SceneResourceTracker tracker;
    const QMetaObject *meta = tracker.metaObject();

    QCOMPARE(meta, &SceneResourceTracker::staticMetaObject);
    QCOMPARE(meta->className(), "ovelin::SceneResourceTracker");
    QCOMPARE(meta->superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta->methodCount() - meta->methodOffset(), 4);
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
    QCOMPARE(meta->enumeratorCount(), meta->enumeratorOffset());
    QCOMPARE(meta->classInfoCount(), meta->classInfoOffset());
    QCOMPARE(meta->constructorCount(), 0);
    QVERIFY(tracker.inherits("ovelin::SceneResourceTracker"));
}

void tst_SceneResourceTracker::metaObjectKeepsTheSignalOrder_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("0") << 0 << "resourcesChanged"_ba;
    QTest::newRow("1") << 1 << "resourceOwnerAdded"_ba;
    QTest::newRow("2") << 2 << "resourceOwnerRemoved"_ba;
    QTest::newRow("3") << 3 << "messagesAdded"_ba;
}

void tst_SceneResourceTracker::metaObjectKeepsTheSignalOrder()
{
    QFETCH(const int, index);
    QFETCH(const QByteArray, name);
    const QMetaObject &meta = SceneResourceTracker::staticMetaObject;

    const QMetaMethod method = meta.method(meta.methodOffset() + index);

    QCOMPARE(method.methodSignature(), name + "()");
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
    QCOMPARE(method.parameterCount(), 0);
    QCOMPARE(method.returnMetaType().id(), int(QMetaType::Void));
}

void tst_SceneResourceTracker::registeringAddsAnEntry()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    ResourceInfo info = named(17, u"logo"_s, ResourceInfo::PaintedItem);
    info.url = QUrl(u"http://host/logo.svg"_s);

    const QSharedPointer<ResourceOwnerState> state = tracker.registerResource(&owner, info);

    QCOMPARE(tracker.resources().size(), std::size_t(1));
    const ResourceInfo &entry = tracker.resources().front();
    QCOMPARE(entry.url, info.url);
    QCOMPARE(entry.name, info.name);
    QCOMPARE(entry.id, 17);
    QCOMPARE(entry.type, ResourceInfo::PaintedItem);
    QCOMPARE(entry.ownerState, state);
    QCOMPARE(tracker.owners().size(), std::size_t(1));
    QCOMPARE(tracker.owners().at(&owner), state);
    QVERIFY(state->owner == &owner);
    QCOMPARE(state->status, ResourceOwnerState::CreationRequested);
    QCOMPARE(state->resourceCount, 1);
    QVERIFY(state->geometry.isNull());
    QCOMPARE(owner.allowCalls, 0);
    QCOMPARE(owner.releaseCalls, 0);
}

void tst_SceneResourceTracker::registeringDoesNotChangeTheGivenRecord()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    ResourceInfo info = image(1);
    const auto foreignState = QSharedPointer<ResourceOwnerState>::create();
    info.ownerState = foreignState;

    const auto state = tracker.registerResource(&owner, info);

    QCOMPARE(info.ownerState, foreignState);
    QVERIFY(state != foreignState);
    QCOMPARE(tracker.resources().front().ownerState, state);
    QCOMPARE(foreignState->resourceCount, 0);
}

void tst_SceneResourceTracker::registeringCountsPerOwner()
{
    SceneResourceTracker tracker;
    PlainOwner first;
    PlainOwner second;

    const auto firstState = tracker.registerResource(&first, image(1));
    const auto secondState = tracker.registerResource(&second, image(1));
    QCOMPARE(tracker.registerResource(&first, image(2)), firstState);
    QCOMPARE(tracker.registerResource(&first, buffer(3)), firstState);

    QCOMPARE(firstState->resourceCount, 3);
    QCOMPARE(secondState->resourceCount, 1);
    QCOMPARE(tracker.owners().size(), std::size_t(2));
    QCOMPARE(tracker.owners().at(&first), firstState);
    QCOMPARE(tracker.owners().at(&second), secondState);
    for (const ResourceInfo &entry : tracker.resources())
        QCOMPARE(entry.ownerState, tracker.owners().at(entry.ownerState->owner));
}

void tst_SceneResourceTracker::imagesGoToTheBackAndOthersToTheFront()
{
    SceneResourceTracker tracker;
    PlainOwner owner;

    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    tracker.registerResource(&owner, buffer(3));
    tracker.registerResource(&owner, buffer(4));

    QCOMPARE(ids(tracker), (QList<int>{4, 3, 1, 2}));
}

void tst_SceneResourceTracker::typeDecidesThePosition_data()
{
    QTest::addColumn<ResourceInfo::Type>("type");
    QTest::addColumn<QList<int>>("order");

    QTest::newRow("image") << ResourceInfo::Image << QList<int>{1, 2};
    QTest::newRow("offscreen buffer") << ResourceInfo::OffscreenBuffer << QList<int>{2, 1};
    QTest::newRow("painted item") << ResourceInfo::PaintedItem << QList<int>{2, 1};
    QTest::newRow("unknown") << unknownType << QList<int>{2, 1};
    QTest::newRow("negative") << negativeType << QList<int>{2, 1};
}

void tst_SceneResourceTracker::typeDecidesThePosition()
{
    QFETCH(const ResourceInfo::Type, type);
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    tracker.registerResource(&other, image(1));

    tracker.registerResource(&owner, named(2, u"name"_s, type));

    QTEST(ids(tracker), "order");
}

void tst_SceneResourceTracker::reRegisteringUpdatesInPlace()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const SignalRecorder recorder(tracker);
    const auto state = tracker.registerResource(&owner, image(7));
    PlainOwner other;
    tracker.registerResource(&other, buffer(8));

    const auto result =
        tracker.registerResource(&owner, named(7, u"item"_s, ResourceInfo::PaintedItem));

    QCOMPARE(result, state);
    QCOMPARE(ids(tracker), (QList<int>{8, 7}));
    const ResourceInfo &entry = tracker.resources().back();
    QCOMPARE(entry.type, ResourceInfo::PaintedItem);
    QCOMPARE(entry.name, u"item"_s);
    QVERIFY(entry.url.isEmpty());
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(recorder.names(),
             (QStringList{u"resourceOwnerAdded"_s, u"resourcesChanged"_s, u"resourceOwnerAdded"_s,
                          u"resourcesChanged"_s, u"resourcesChanged"_s}));
}

void tst_SceneResourceTracker::reRegisteringKeepsIdStateAndCount()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, buffer(1));
    tracker.registerResource(&owner, image(2));
    ResourceInfo info = image(1, u"file:///b.png"_s);
    info.ownerState = QSharedPointer<ResourceOwnerState>::create();

    QCOMPARE(tracker.registerResource(&owner, info), state);

    QCOMPARE(ids(tracker), (QList<int>{1, 2}));
    const ResourceInfo &entry = tracker.resources().front();
    QCOMPARE(entry.type, ResourceInfo::Image);
    QCOMPARE(entry.url, QUrl(u"file:///b.png"_s));
    QVERIFY(entry.name.isNull());
    QCOMPARE(entry.ownerState, state);
    QCOMPARE(state->resourceCount, 2);
    QCOMPARE(tracker.owners().size(), std::size_t(1));
}

void tst_SceneResourceTracker::reRegisteringKeepsAnEqualUrl()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const QUrl first(u"file:///a.png"_s);
    const QUrl equal(u"file:///a.png"_s);
    ResourceInfo info;
    info.url = first;
    tracker.registerResource(&owner, info);

    info.url = equal;
    tracker.registerResource(&owner, info);
    info.url = QUrl();

    // Only this test holds the second URL: the entry kept its first one.
    QVERIFY(equal.isDetached());
    QVERIFY(!first.isDetached());
    QCOMPARE(tracker.resources().front().url, first);
}

void tst_SceneResourceTracker::identifiersAreUniquePerOwnerOnly()
{
    SceneResourceTracker tracker;
    PlainOwner first;
    PlainOwner second;
    const auto firstState = tracker.registerResource(&first, image(7, u"file:///1.png"_s));
    const auto secondState = tracker.registerResource(&second, image(7, u"file:///2.png"_s));

    tracker.registerResource(&second, image(7, u"file:///3.png"_s));

    QCOMPARE(ids(tracker), (QList<int>{7, 7}));
    QCOMPARE(tracker.resources().front().url, QUrl(u"file:///1.png"_s));
    QCOMPARE(tracker.resources().front().ownerState, firstState);
    QCOMPARE(tracker.resources().back().url, QUrl(u"file:///3.png"_s));
    QCOMPARE(tracker.resources().back().ownerState, secondState);
}

void tst_SceneResourceTracker::registeringKeepsTheStatus()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.setStatus(state, ResourceOwnerState::CreationDenied);

    tracker.registerResource(&owner, image(2));
    tracker.registerResource(&owner, image(1, u"file:///b.png"_s));

    QCOMPARE(state->status, ResourceOwnerState::CreationDenied);
}

void tst_SceneResourceTracker::registeringIgnoresTheBlock()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    tracker.setRegistrationBlocked(true);

    const auto state = tracker.registerResource(&owner, image(1));

    QVERIFY(state);
    QCOMPARE(ids(tracker), QList<int>{1});
    QVERIFY(tracker.isRegistrationBlocked());
}

void tst_SceneResourceTracker::registeringTakesANullOwner()
{
    SceneResourceTracker tracker;
    SignalRecorder recorder(tracker);

    const auto state = tracker.registerResource(nullptr, image(1));

    QVERIFY(state);
    QCOMPARE(state->owner, nullptr);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(tracker.owners().count(nullptr), std::size_t(1));
    QCOMPARE(recorder.names(), (QStringList{u"resourceOwnerAdded"_s, u"resourcesChanged"_s}));
    recorder.clear();
    tracker.unregisterResource(nullptr, 1);
    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
    QCOMPARE(recorder.names(), (QStringList{u"resourceOwnerRemoved"_s, u"resourcesChanged"_s}));
}

void tst_SceneResourceTracker::registeringForAStateWithoutOwnerAddsAnEntry()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    state->owner = nullptr;

    // The state of the entry names no owner, but the table of owners still contains the owner.
    const auto result = tracker.registerResource(&owner, image(1));

    QCOMPARE(result, state);
    QCOMPARE(ids(tracker), (QList<int>{1, 1}));
    QCOMPARE(state->resourceCount, 2);
    QCOMPARE(state->owner, nullptr);
    QCOMPARE(tracker.owners().size(), std::size_t(1));
}

void tst_SceneResourceTracker::registeringSignals()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const SignalRecorder recorder(tracker);

    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, buffer(2));
    tracker.registerResource(&owner, image(1));

    QCOMPARE(recorder.emissions, (QStringList{
                                     u"resourceOwnerAdded [1] owners 1 messages 0"_s,
                                     u"resourcesChanged [1] owners 1 messages 0"_s,
                                     u"resourcesChanged [2 1] owners 1 messages 0"_s,
                                     u"resourcesChanged [2 1] owners 1 messages 0"_s,
                                 }));
}

void tst_SceneResourceTracker::registeringSignalsWithTheLog()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    const SignalRecorder recorder(tracker);

    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, buffer(2));
    tracker.registerResource(&owner, image(1));

    QCOMPARE(recorder.emissions, (QStringList{
                                     u"messagesAdded [1] owners 1 messages 1"_s,
                                     u"resourceOwnerAdded [1] owners 1 messages 1"_s,
                                     u"resourcesChanged [1] owners 1 messages 1"_s,
                                     u"messagesAdded [2 1] owners 1 messages 2"_s,
                                     u"resourcesChanged [2 1] owners 1 messages 2"_s,
                                     u"messagesAdded [2 1] owners 1 messages 3"_s,
                                     u"resourcesChanged [2 1] owners 1 messages 3"_s,
                                 }));
}

void tst_SceneResourceTracker::unregisteringRemovesOneEntry()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    tracker.registerResource(&other, image(1));

    tracker.unregisterResource(&owner, 1);

    QCOMPARE(ids(tracker), (QList<int>{2, 1}));
    QCOMPARE(tracker.resources().front().ownerState, state);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(tracker.owners().at(&owner), state);
    QCOMPARE(tracker.owners().at(&other)->resourceCount, 1);
}

void tst_SceneResourceTracker::unregisteringUnknownDoesNothing_data()
{
    QTest::addColumn<bool>("knownOwner");
    QTest::addColumn<int>("id");

    QTest::newRow("unknown id") << true << 2;
    QTest::newRow("another owner's id") << true << 9;
    QTest::newRow("unknown owner") << false << 1;
}

void tst_SceneResourceTracker::unregisteringUnknownDoesNothing()
{
    QFETCH(const bool, knownOwner);
    QFETCH(const int, id);
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner known;
    PlainOwner unknown;
    PlainOwner other;
    const auto state = tracker.registerResource(&known, image(1));
    tracker.registerResource(&other, image(9));
    const SignalRecorder recorder(tracker);

    tracker.unregisterResource(knownOwner ? &known : &unknown, id);

    QCOMPARE(recorder.emissions, QStringList());
    QCOMPARE(tracker.messages().size(), 2);
    QCOMPARE(ids(tracker), (QList<int>{1, 9}));
    QCOMPARE(state->resourceCount, 1);
}

void tst_SceneResourceTracker::unregisteringSignals()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    const SignalRecorder recorder(tracker);

    tracker.unregisterResource(&owner, 1);
    tracker.unregisterResource(&owner, 2);

    QCOMPARE(recorder.emissions, (QStringList{
                                     u"resourcesChanged [2] owners 1 messages 0"_s,
                                     u"resourceOwnerRemoved [2] owners 0 messages 0"_s,
                                     u"resourcesChanged [] owners 0 messages 0"_s,
                                 }));
}

void tst_SceneResourceTracker::unregisteringSignalsWithTheLog()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    tracker.setMessagesEnabled(true);
    const SignalRecorder recorder(tracker);

    tracker.unregisterResource(&owner, 1);
    tracker.unregisterResource(&owner, 2);

    QCOMPARE(recorder.emissions, (QStringList{
                                     u"messagesAdded [1 2] owners 1 messages 1"_s,
                                     u"resourcesChanged [2] owners 1 messages 1"_s,
                                     u"messagesAdded [2] owners 1 messages 2"_s,
                                     u"resourceOwnerRemoved [2] owners 0 messages 2"_s,
                                     u"resourcesChanged [] owners 0 messages 2"_s,
                                 }));
}

void tst_SceneResourceTracker::unregisteringAnnouncesBeforeItCounts()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.setMessagesEnabled(true);
    QList<int> counts;
    const auto noteCount = [&counts, &state] { counts.append(state->resourceCount); };
    connect(&tracker, &SceneResourceTracker::messagesAdded, this, noteCount);
    connect(&tracker, &SceneResourceTracker::resourceOwnerRemoved, this, noteCount);
    connect(&tracker, &SceneResourceTracker::resourcesChanged, this, noteCount);

    tracker.unregisterResource(&owner, 1);

    QCOMPARE(counts, (QList<int>{1, 0, 0}));
}

void tst_SceneResourceTracker::unregisteringFollowsTheCountAlone_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("ownerLeaves");

    QTest::newRow("the last one") << 1 << true;
    QTest::newRow("raised by the application") << 2 << false;
    QTest::newRow("zeroed by the application") << 0 << false;
    QTest::newRow("negative") << -3 << false;
}

void tst_SceneResourceTracker::unregisteringFollowsTheCountAlone()
{
    QFETCH(const int, count);
    QFETCH(const bool, ownerLeaves);
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    state->resourceCount = count;
    const SignalRecorder recorder(tracker);

    tracker.unregisterResource(&owner, 1);

    QCOMPARE(state->resourceCount, count - 1);
    QCOMPARE(tracker.owners().empty(), ownerLeaves);
    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), ownerLeaves ? 1 : 0);
    QCOMPARE(recorder.count(u"resourcesChanged"_s), 1);
    QVERIFY(tracker.resources().empty());
}

void tst_SceneResourceTracker::unregisteringRemovesTheNamedOwnerOnly()
{
    SceneResourceTracker tracker;
    PlainOwner registered;
    PlainOwner handedTo;
    const auto state = tracker.registerResource(&registered, image(1));
    state->owner = &handedTo;
    const SignalRecorder recorder(tracker);

    tracker.unregisterResource(&registered, 1);
    QCOMPARE(recorder.emissions, QStringList());
    tracker.unregisterResource(&handedTo, 1);

    // The table of owners does not contain the named owner, so no owner is removed.
    QCOMPARE(recorder.emissions, QStringList{u"resourcesChanged [] owners 1 messages 0"_s});
    QCOMPARE(state->resourceCount, 0);
}

void tst_SceneResourceTracker::unregisteringRemovesTheNamedOwnerThoughTheTableHasAnotherState()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    tracker.registerResource(&owner, image(1));
    const auto state = tracker.registerResource(&other, image(2));
    state->owner = &owner;
    const SignalRecorder recorder(tracker);

    tracker.unregisterResource(&owner, 2);

    // The count in the state of the entry is 0, so the owner named in the call leaves.
    QCOMPARE(state->resourceCount, 0);
    QVERIFY(!tracker.owners().contains(&owner));
    QVERIFY(tracker.owners().contains(&other));
    QCOMPARE(recorder.emissions, (QStringList{
                                     u"resourceOwnerRemoved [1 2] owners 1 messages 0"_s,
                                     u"resourcesChanged [1] owners 1 messages 0"_s,
                                 }));
}

void tst_SceneResourceTracker::unregisteringReleasesTheStateBeforeItsLastSignal()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const QWeakPointer<ResourceOwnerState> state = tracker.registerResource(&owner, image(1));
    bool heldWhenOwnerLeft = false;
    bool heldAtTheEnd = true;
    connect(&tracker, &SceneResourceTracker::resourceOwnerRemoved, this,
            [&] { heldWhenOwnerLeft = !state.isNull(); });
    connect(&tracker, &SceneResourceTracker::resourcesChanged, this,
            [&] { heldAtTheEnd = !state.isNull(); });

    tracker.unregisterResource(&owner, 1);

    QVERIFY(heldWhenOwnerLeft);
    QVERIFY(!heldAtTheEnd);
}

namespace {

// Registers a buffer in front of an image with the same id for the same owner. This is possible
// while the state of the image names no owner.
QSharedPointer<ResourceOwnerState> registerTwice(SceneResourceTracker &tracker,
                                                 IResourceOwner *owner, int id)
{
    const auto state = tracker.registerResource(owner, image(id));
    state->owner = nullptr;
    tracker.registerResource(owner, buffer(id));
    state->owner = owner;
    return state;
}

} // namespace

void tst_SceneResourceTracker::unregisteringTakesTheFirstMatch()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = registerTwice(tracker, &owner, 5);
    QCOMPARE(ids(tracker), (QList<int>{5, 5}));

    tracker.unregisterResource(&owner, 5);

    QCOMPARE(ids(tracker), QList<int>{5});
    QCOMPARE(tracker.resources().front().type, ResourceInfo::Image);
    QCOMPARE(state->resourceCount, 1);
}

void tst_SceneResourceTracker::reRegisteringTakesTheFirstMatch()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = registerTwice(tracker, &owner, 5);

    tracker.registerResource(&owner, named(5, u"new"_s, ResourceInfo::PaintedItem));

    QCOMPARE(tracker.resources().size(), std::size_t(2));
    QCOMPARE(tracker.resources().front().name, u"new"_s);
    QCOMPARE(tracker.resources().back().type, ResourceInfo::Image);
    QCOMPARE(state->resourceCount, 2);
}

void tst_SceneResourceTracker::unregisteringAllRemovesTheOwner()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&other, image(2));
    tracker.registerResource(&owner, buffer(3));
    tracker.registerResource(&other, buffer(4));
    tracker.registerResource(&owner, image(5));

    tracker.unregisterResources(&owner);

    QCOMPARE(ids(tracker), (QList<int>{4, 2}));
    QVERIFY(!refersTo(tracker, &owner));
    QCOMPARE(tracker.owners().at(&other)->resourceCount, 2);
    QCOMPARE(owner.releaseCalls, 0);
}

void tst_SceneResourceTracker::unregisteringAllSignals()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&other, image(2));
    tracker.registerResource(&owner, buffer(3));
    const SignalRecorder recorder(tracker);

    tracker.unregisterResources(&owner);

    QCOMPARE(recorder.emissions, (QStringList{
                                     u"resourceOwnerRemoved [2] owners 1 messages 0"_s,
                                     u"resourcesChanged [2] owners 1 messages 0"_s,
                                 }));
}

void tst_SceneResourceTracker::unregisteringAllSignalsWithTheLog()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&other, image(2));
    tracker.registerResource(&owner, buffer(3));
    tracker.setMessagesEnabled(true);
    const SignalRecorder recorder(tracker);

    tracker.unregisterResources(&owner);

    // Each entry is announced, then removed, before the next entry is announced.
    QCOMPARE(recorder.emissions, (QStringList{
                                     u"messagesAdded [3 1 2] owners 2 messages 1"_s,
                                     u"messagesAdded [1 2] owners 2 messages 2"_s,
                                     u"resourceOwnerRemoved [2] owners 1 messages 2"_s,
                                     u"resourcesChanged [2] owners 1 messages 2"_s,
                                 }));
}

void tst_SceneResourceTracker::unregisteringAllOfAnOwnerWithoutEntries()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    state->resourceCount = 2;
    tracker.unregisterResource(&owner, 1);
    QVERIFY(tracker.resources().empty());
    QCOMPARE(tracker.owners().size(), std::size_t(1));
    const SignalRecorder recorder(tracker);

    tracker.unregisterResources(&owner);

    QCOMPARE(recorder.emissions, QStringList{u"resourceOwnerRemoved [] owners 0 messages 0"_s});
}

void tst_SceneResourceTracker::unregisteringAllOfAnUnknownOwner()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    PlainOwner unknown;
    tracker.registerResource(&owner, image(1));
    const SignalRecorder recorder(tracker);

    tracker.unregisterResources(&unknown);

    QCOMPARE(recorder.emissions, QStringList());
    QCOMPARE(ids(tracker), QList<int>{1});
}

void tst_SceneResourceTracker::unregisteringAllOfAnOwnerThatItsStateDoesNotName()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    state->owner = nullptr;
    const SignalRecorder recorder(tracker);

    tracker.unregisterResources(&owner);

    QCOMPARE(recorder.emissions, QStringList{u"resourceOwnerRemoved [1] owners 0 messages 0"_s});
    QCOMPARE(state->resourceCount, 1);
}

void tst_SceneResourceTracker::unregisteringAllKeepsTheCount()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    tracker.setStatus(state, ResourceOwnerState::Ignored);

    tracker.unregisterResources(&owner);

    QCOMPARE(state->resourceCount, 2);
    QCOMPARE(state->status, ResourceOwnerState::Ignored);
    const auto fresh = tracker.registerResource(&owner, image(1));
    QVERIFY(fresh != state);
    QCOMPARE(fresh->resourceCount, 1);
    QCOMPARE(fresh->status, ResourceOwnerState::CreationRequested);
    QCOMPARE(state->resourceCount, 2);
}

void tst_SceneResourceTracker::unregisteringAllReleasesTheState()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const QWeakPointer<ResourceOwnerState> state = tracker.registerResource(&owner, image(1));
    bool held = true;
    connect(&tracker, &SceneResourceTracker::resourceOwnerRemoved, this,
            [&] { held = !state.isNull(); });

    tracker.unregisterResources(&owner);

    QVERIFY(!held);
}

void tst_SceneResourceTracker::settingAStatusWritesItSilently_data()
{
    QTest::addColumn<ResourceOwnerState::Status>("status");

    QTest::newRow("requested") << ResourceOwnerState::CreationRequested;
    QTest::newRow("allowed") << ResourceOwnerState::CreationAllowed;
    QTest::newRow("denied") << ResourceOwnerState::CreationDenied;
    QTest::newRow("cleared") << ResourceOwnerState::Cleared;
    QTest::newRow("ignored") << ResourceOwnerState::Ignored;
    QTest::newRow("unknown") << static_cast<ResourceOwnerState::Status>(5);
    QTest::newRow("negative") << static_cast<ResourceOwnerState::Status>(-1);
}

void tst_SceneResourceTracker::settingAStatusWritesItSilently()
{
    QFETCH(const ResourceOwnerState::Status, status);
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    const auto state = tracker.registerResource(&owner, image(1));
    const auto otherState = tracker.registerResource(&other, image(1));
    state->status = static_cast<ResourceOwnerState::Status>(77);
    const SignalRecorder recorder(tracker);

    tracker.setStatus(state, status);

    QCOMPARE(state->status, status);
    QCOMPARE(otherState->status, ResourceOwnerState::CreationRequested);
    QCOMPARE(recorder.emissions, QStringList());
    QVERIFY(tracker.messages().isEmpty());
    QCOMPARE(owner.allowCalls, 0);
    QCOMPARE(owner.releaseCalls, 0);
}

void tst_SceneResourceTracker::settingAStatusWithoutOwnerDoesNothing()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    state->owner = nullptr;
    const SignalRecorder recorder(tracker);

    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);

    QCOMPARE(state->status, ResourceOwnerState::CreationRequested);
    QCOMPARE(recorder.emissions, QStringList());
}

void tst_SceneResourceTracker::settingAStatusAfterTheOwnerLeft()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.unregisterResources(&owner);
    const SignalRecorder recorder(tracker);

    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);

    QCOMPARE(state->status, ResourceOwnerState::CreationAllowed);
    QCOMPARE(recorder.emissions, QStringList());
}

void tst_SceneResourceTracker::settingAStatusSignals()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    PlainOwner other;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&other, image(2));
    tracker.registerResource(&owner, buffer(3));
    tracker.setMessagesEnabled(true);
    const SignalRecorder recorder(tracker);
    QList<int> statuses;
    connect(&tracker, &SceneResourceTracker::messagesAdded, this,
            [&] { statuses.append(state->status); });

    tracker.setStatus(state, ResourceOwnerState::Cleared);

    QCOMPARE(recorder.emissions, (QStringList{
                                     u"messagesAdded [3 1 2] owners 2 messages 1"_s,
                                     u"messagesAdded [3 1 2] owners 2 messages 2"_s,
                                 }));
    QCOMPARE(statuses, (QList<int>{3, 3}));
    const QList<SceneResourceTracker::Message> messages = tracker.messages();
    QCOMPARE(messages.at(0).id, 3);
    QCOMPARE(messages.at(1).id, 1);
}

void tst_SceneResourceTracker::settingTheSameStatusAnnouncesAgain()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    tracker.setMessagesEnabled(true);

    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);
    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);

    QCOMPARE(tracker.messages().size(), 4);
}

void tst_SceneResourceTracker::settingAStatusFindsEntriesByOwner()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto former = tracker.registerResource(&owner, image(1));
    tracker.unregisterResources(&owner);
    const auto present = tracker.registerResource(&owner, image(2));
    tracker.setMessagesEnabled(true);

    tracker.setStatus(former, ResourceOwnerState::CreationDenied);

    QCOMPARE(former->status, ResourceOwnerState::CreationDenied);
    QCOMPARE(present->status, ResourceOwnerState::CreationRequested);
    QCOMPARE(tracker.messages().size(), 1);
    QCOMPARE(tracker.messages().constFirst().id, 2);
    QCOMPARE(tracker.messages().constFirst().status, u"creation_requested"_s);
}

void tst_SceneResourceTracker::allowingCallsTheOwnerOnly()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    PlainOwner other;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&other, image(2));
    const SignalRecorder recorder(tracker);

    tracker.allowResources(state);

    QCOMPARE(owner.allowCalls, 1);
    QCOMPARE(owner.releaseCalls, 0);
    QCOMPARE(other.allowCalls, 0);
    QCOMPARE(state->status, ResourceOwnerState::CreationRequested);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(recorder.emissions, QStringList());
    QCOMPARE(tracker.messages().size(), 2);
    QCOMPARE(ids(tracker), (QList<int>{1, 2}));
}

void tst_SceneResourceTracker::releasingCallsTheOwnerOnly()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    PlainOwner other;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&other, image(2));
    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);
    const SignalRecorder recorder(tracker);

    tracker.releaseResources(state);

    QCOMPARE(owner.releaseCalls, 1);
    QCOMPARE(owner.allowCalls, 0);
    QCOMPARE(other.releaseCalls, 0);
    QCOMPARE(state->status, ResourceOwnerState::CreationAllowed);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(recorder.emissions, QStringList());
    QCOMPARE(tracker.messages().size(), 3);
    QCOMPARE(ids(tracker), (QList<int>{1, 2}));
}

void tst_SceneResourceTracker::decisionsWithoutOwnerDoNothing()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    state->owner = nullptr;
    const SignalRecorder recorder(tracker);

    tracker.allowResources(state);
    tracker.releaseResources(state);

    QCOMPARE(owner.allowCalls, 0);
    QCOMPARE(owner.releaseCalls, 0);
    QCOMPARE(recorder.emissions, QStringList());
}

void tst_SceneResourceTracker::blockingIsStored()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    const SignalRecorder recorder(tracker);

    tracker.setRegistrationBlocked(true);
    QVERIFY(tracker.isRegistrationBlocked());
    tracker.setRegistrationBlocked(true);
    QVERIFY(tracker.isRegistrationBlocked());
    tracker.setRegistrationBlocked(false);
    QVERIFY(!tracker.isRegistrationBlocked());

    QCOMPARE(recorder.emissions, QStringList());
    QVERIFY(tracker.messages().isEmpty());
}

void tst_SceneResourceTracker::clearingEmptiesEverythingSilently()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    PlainOwner other;
    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&other, buffer(2));
    owner.objectQueries = 0;
    const SignalRecorder recorder(tracker);

    tracker.clear();

    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
    QVERIFY(tracker.messages().isEmpty());
    QCOMPARE(recorder.emissions, QStringList());
    QCOMPARE(owner.objectQueries, 0);
    QCOMPARE(owner.allowCalls, 0);
    QCOMPARE(owner.releaseCalls, 0);
    // The log is still enabled.
    tracker.registerResource(&owner, image(1));
    QCOMPARE(tracker.messages().size(), 1);
}

void tst_SceneResourceTracker::clearingUnblocks()
{
    SceneResourceTracker tracker;
    tracker.setRegistrationBlocked(true);
    const SignalRecorder recorder(tracker);

    tracker.clear();

    QVERIFY(!tracker.isRegistrationBlocked());
    QCOMPARE(recorder.emissions, QStringList());
    // clear() does not enable the log.
    PlainOwner owner;
    tracker.registerResource(&owner, image(1));
    QVERIFY(tracker.messages().isEmpty());
}

void tst_SceneResourceTracker::clearingKeepsStatesThatOthersHold()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));
    tracker.setStatus(state, ResourceOwnerState::CreationDenied);

    tracker.clear();

    QCOMPARE(state->status, ResourceOwnerState::CreationDenied);
    QCOMPARE(state->resourceCount, 2);
}

void tst_SceneResourceTracker::clearingReleasesStates()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const QWeakPointer<ResourceOwnerState> state = tracker.registerResource(&owner, image(1));

    tracker.clear();

    QVERIFY(state.isNull());
}

void tst_SceneResourceTracker::clearingForgetsOwners()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const auto state = tracker.registerResource(&owner, image(1));
    tracker.clear();
    const SignalRecorder recorder(tracker);

    tracker.unregisterResource(&owner, 1);
    tracker.unregisterResources(&owner);
    QCOMPARE(recorder.emissions, QStringList());

    const auto fresh = tracker.registerResource(&owner, image(1));
    QVERIFY(fresh != state);
    QCOMPARE(fresh->resourceCount, 1);
    QCOMPARE(recorder.names(), (QStringList{u"resourceOwnerAdded"_s, u"resourcesChanged"_s}));
}

QTEST_GUILESS_MAIN(tst_SceneResourceTracker)

#include "tst_sceneresourcetracker.moc"
