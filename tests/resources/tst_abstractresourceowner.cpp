#include "resourcesupport.h"

#include <QTest>

#include <algorithm>
#include <array>
#include <climits>
#include <memory>
#include <type_traits>

using namespace ovelin;
using namespace Qt::StringLiterals;

static_assert(std::is_base_of_v<IResourceOwner, AbstractResourceOwner>);
static_assert(std::is_abstract_v<AbstractResourceOwner>, "items implement the owner's operations");
static_assert(std::has_virtual_destructor_v<AbstractResourceOwner>);
static_assert(!std::is_copy_constructible_v<Item> && !std::is_copy_assignable_v<Item>);
static_assert(!std::is_move_constructible_v<Item> && !std::is_move_assignable_v<Item>);
static_assert(!std::is_copy_assignable_v<AbstractResourceOwner>);
static_assert(!std::is_move_assignable_v<AbstractResourceOwner>);
static_assert(sizeof(AbstractResourceOwner)
                  == sizeof(IResourceOwner) + sizeof(QSharedPointer<ResourceOwnerState>),
              "the state is all that the base adds");
static_assert(std::is_same_v<decltype(&AbstractResourceOwner::registerImage),
                             bool (AbstractResourceOwner::*)(int, const QUrl &)>);
static_assert(
    std::is_same_v<decltype(&AbstractResourceOwner::registerResource),
                   bool (AbstractResourceOwner::*)(int, const QString &, ResourceInfo::Type)>);
static_assert(std::is_same_v<decltype(&AbstractResourceOwner::isResourcesAllowed),
                             bool (AbstractResourceOwner::*)() const>);

namespace {

const QUrl poster(u"file:///poster.png"_s);

// An item whose QObject is destroyed before its owner base.
class OwnerFirstItem : public AbstractResourceOwner, public QObject
{
public:
    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override {}
    void releaseResources() override {}
};

// Verifies that a tracker has removed its only owner.
void verifyForgotten(const SceneResourceTracker &tracker, const IResourceOwner *owner)
{
    QVERIFY(!refersTo(tracker, owner));
    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
}

} // namespace

class tst_AbstractResourceOwner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    // the base
    void ownerIsAtTheStartOfTheObject();
    void startsWithoutState();

    // registering
    void registeringNeedsATracker();
    void registeringIsRefusedWhileBlocked();
    void refusalKeepsTheState();
    void registersAnImage();
    void registersAResource_data();
    void registersAResource();
    void acceptsAnyIdentifier_data();
    void acceptsAnyIdentifier();
    void registeringAgainUpdates();
    void registeringTakesTheStateReturned();
    void registeringTakesTheStateReturnedThoughTheTableHasNone();
    void registeringTakesTheStateReturnedThoughTheTableHasAnother();
    void eachCallReadsTheInstalledTracker();

    // unregistering
    void unregisteringTheLastResourceDropsTheState();
    void unregisteringUnknownKeepsTheState();
    void unregisteringUnknownDropsAnEmptyState();
    void unregisteringDropsAnEmptyStateThoughTheTrackerHasAnother();
    void unregisteringAllDropsTheState();
    void unregisteringWithoutStateDoesNothing();
    void unregisteringWithoutTrackerKeepsTheState();
    void unregisteringIsNeverBlocked();
    void unregisteringAfterTheTrackerWasCleared();

    // permission
    void isAllowedByItsStatus_data();
    void isAllowedByItsStatus();
    void isAllowedAfterTheApplicationAllowsIt();

    // destruction
    void destroyedWithoutRegistration();
    void leavesTheTrackerWhenDestroyed_data();
    void leavesTheTrackerWhenDestroyed();
    void destructionEmitsSignals();
    void destructionEmitsSignalsWithTheLog();
    void dyingItemIsDescribedWithoutNames();
    void destroyedAfterItsQObject();
    void slotsCannotReachADyingItem_data();
    void slotsCannotReachADyingItem();
    void slotsCannotReachADyingItemInAnyTracker_data();
    void slotsCannotReachADyingItemInAnyTracker();
    void destructionKeepsCountAndStatus();
    void destroyedAfterTheTrackerWasUninstalled();
    void destroyedAfterTheTrackerWasReplaced();
    void destroyedWhileInTwoTrackers();
    void destroyedAfterOneOfItsTrackers_data();
    void destroyedAfterOneOfItsTrackers();
    void destroyedAfterItsTracker();
    void destroyedAfterTheTrackerWasCleared();
    void destroyedAfterTheStateLostItsOwner_data();
    void destroyedAfterTheStateLostItsOwner();
    void destroyedWithEntriesAndACountOfZero();
    void destroyedWithoutEntries();
    void destroyedWhileRegistrationIsBlocked();
    void destructionKeepsOtherItems();
    void dyingItemCannotRegister_data();
    void dyingItemCannotRegister();
    void dyingItemMayUnregister_data();
    void dyingItemMayUnregister();
};

void tst_AbstractResourceOwner::cleanup()
{
    QCOMPARE(sceneResourceTracker(), nullptr);
}

void tst_AbstractResourceOwner::ownerIsAtTheStartOfTheObject()
{
    const OwnerFirstItem item;
    const AbstractResourceOwner *base = &item;
    const IResourceOwner *owner = &item;

    QCOMPARE(static_cast<const void *>(owner), static_cast<const void *>(base));
    QCOMPARE(static_cast<const void *>(owner), static_cast<const void *>(&item));
}

void tst_AbstractResourceOwner::startsWithoutState()
{
    const InstalledTracker tracker;
    const Item item;

    QVERIFY(item.state().isNull());
    QVERIFY(item.isResourcesAllowed());
    QVERIFY(tracker.owners().empty());
}

void tst_AbstractResourceOwner::registeringNeedsATracker()
{
    Item item;

    QVERIFY(!item.registerImage(1, poster));
    QVERIFY(!item.registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer));
    QVERIFY(item.state().isNull());
    QVERIFY(item.isResourcesAllowed());
}

void tst_AbstractResourceOwner::registeringIsRefusedWhileBlocked()
{
    InstalledTracker tracker;
    tracker.setRegistrationBlocked(true);
    const SignalRecorder recorder(tracker);
    Item item;

    QVERIFY(!item.registerImage(1, poster));
    QVERIFY(!item.registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer));

    QVERIFY(item.state().isNull());
    QVERIFY(tracker.resources().empty());
    QCOMPARE(recorder.emissions, QStringList());
    tracker.setRegistrationBlocked(false);
    QVERIFY(item.registerImage(1, poster));
}

void tst_AbstractResourceOwner::refusalKeepsTheState()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    const auto state = item.state();

    tracker.setRegistrationBlocked(true);
    QVERIFY(!item.registerImage(1, QUrl()));
    QVERIFY(!item.registerResource(2, u"row"_s, ResourceInfo::PaintedItem));
    setSceneResourceTracker(nullptr);
    QVERIFY(!item.registerImage(1, QUrl()));
    setSceneResourceTracker(&tracker);

    QCOMPARE(item.state(), state);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(ids(tracker), QList<int>{1});
    QCOMPARE(tracker.resources().front().url, poster);
}

void tst_AbstractResourceOwner::registersAnImage()
{
    const InstalledTracker tracker;
    Item item;

    QVERIFY(item.registerImage(-3, poster));

    QCOMPARE(tracker.resources().size(), std::size_t(1));
    const ResourceInfo &entry = tracker.resources().front();
    QCOMPARE(entry.url, poster);
    QVERIFY(entry.name.isNull());
    QCOMPARE(entry.id, -3);
    QCOMPARE(entry.type, ResourceInfo::Image);
    QCOMPARE(entry.ownerState, item.state());
    QCOMPARE(tracker.owners().at(&item), item.state());
    QVERIFY(item.state()->owner == &item);
}

void tst_AbstractResourceOwner::registersAResource_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<ResourceInfo::Type>("type");
    QTest::addColumn<QList<int>>("order");

    QTest::newRow("offscreen buffer")
        << u"row"_s << ResourceInfo::OffscreenBuffer << QList<int>{2, 1};
    QTest::newRow("painted item") << u"row"_s << ResourceInfo::PaintedItem << QList<int>{2, 1};
    QTest::newRow("image by name") << u"row"_s << ResourceInfo::Image << QList<int>{1, 2};
    QTest::newRow("unknown") << u"row"_s << static_cast<ResourceInfo::Type>(3) << QList<int>{2, 1};
    QTest::newRow("no name") << QString() << ResourceInfo::PaintedItem << QList<int>{2, 1};
}

void tst_AbstractResourceOwner::registersAResource()
{
    QFETCH(const QString, name);
    QFETCH(const ResourceInfo::Type, type);
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);

    QVERIFY(item.registerResource(2, name, type));

    QTEST(ids(tracker), "order");
    const ResourceInfo &entry = tracker.resources().front().id == 2 ? tracker.resources().front()
                                                                    : tracker.resources().back();
    QVERIFY(entry.url.isEmpty());
    QCOMPARE(entry.name, name);
    QCOMPARE(entry.type, type);
    QCOMPARE(entry.ownerState, item.state());
    QCOMPARE(item.state()->resourceCount, 2);
}

void tst_AbstractResourceOwner::acceptsAnyIdentifier_data()
{
    QTest::addColumn<int>("id");

    for (const int id : {INT_MIN, -1, 0, INT_MAX})
        QTest::addRow("%d", id) << id;
}

void tst_AbstractResourceOwner::acceptsAnyIdentifier()
{
    QFETCH(const int, id);
    const InstalledTracker tracker;
    Item item;

    QVERIFY(item.registerImage(7, poster));
    QVERIFY(item.registerImage(id, poster));
    QVERIFY(item.registerResource(id, u"row"_s, ResourceInfo::PaintedItem));
    QCOMPARE(tracker.resources().size(), std::size_t(2));
    const auto entry = std::ranges::find(tracker.resources(), id, &ResourceInfo::id);
    QVERIFY(entry != tracker.resources().end());
    QCOMPARE(entry->type, ResourceInfo::PaintedItem);

    item.unregisterResource(id);
    QCOMPARE(tracker.resources().size(), std::size_t(1));
    QCOMPARE(tracker.resources().front().id, 7);
}

void tst_AbstractResourceOwner::registeringAgainUpdates()
{
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    const auto state = item.state();

    QVERIFY(item.registerResource(1, u"row"_s, ResourceInfo::PaintedItem));

    QCOMPARE(item.state(), state);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(ids(tracker), QList<int>{1});
    QVERIFY(tracker.resources().front().url.isEmpty());
    QVERIFY(item.registerImage(1, poster));
    QVERIFY(tracker.resources().front().name.isNull());
    QCOMPARE(tracker.resources().front().type, ResourceInfo::Image);
}

void tst_AbstractResourceOwner::registeringTakesTheStateReturned()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    const QWeakPointer<ResourceOwnerState> former = item.state();
    tracker.clear();
    QVERIFY(!former.isNull());

    item.registerImage(1, poster);

    QVERIFY(former.isNull());
    QCOMPARE(item.state(), tracker.owners().at(&item));
    QCOMPARE(item.state()->resourceCount, 1);
}

void tst_AbstractResourceOwner::registeringTakesTheStateReturnedThoughTheTableHasNone()
{
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    item.registerImage(2, poster);
    const auto state = item.state();
    state->resourceCount = 1;
    item.unregisterResource(1);
    QVERIFY(tracker.owners().empty());
    QVERIFY(item.state().isNull());

    item.registerImage(2, poster); // updates the entry that is still listed

    QCOMPARE(item.state(), state);
    QVERIFY(!item.isResourcesAllowed());
}

void tst_AbstractResourceOwner::registeringTakesTheStateReturnedThoughTheTableHasAnother()
{
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    item.registerImage(2, poster);
    const auto state = item.state();
    state->resourceCount = 1;
    item.unregisterResource(1);
    item.registerImage(3, poster);
    QCOMPARE_NE(item.state(), state);

    item.registerImage(2, poster);

    QCOMPARE(item.state(), state);
    QCOMPARE_NE(tracker.owners().at(&item), state);
}

void tst_AbstractResourceOwner::eachCallReadsTheInstalledTracker()
{
    SceneResourceTracker first;
    SceneResourceTracker second;
    Item item;
    const auto uninstall = qScopeGuard([] { setSceneResourceTracker(nullptr); });

    setSceneResourceTracker(&first);
    item.registerImage(1, poster);
    const auto firstState = item.state();
    setSceneResourceTracker(&second);
    item.registerImage(2, poster);

    QCOMPARE(ids(first), QList<int>{1});
    QCOMPARE(ids(second), QList<int>{2});
    QCOMPARE(item.state(), second.owners().at(&item));
    item.unregisterResource(2);
    QVERIFY(second.resources().empty());
    QCOMPARE(ids(first), QList<int>{1});
    QVERIFY(item.state().isNull());
    QCOMPARE(firstState->resourceCount, 1);
}

void tst_AbstractResourceOwner::unregisteringTheLastResourceDropsTheState()
{
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    item.registerImage(2, poster);
    const auto state = item.state();

    item.unregisterResource(1);
    QCOMPARE(item.state(), state);
    QVERIFY(!item.isResourcesAllowed());
    QCOMPARE(ids(tracker), QList<int>{2});

    item.unregisterResource(2);
    QVERIFY(item.state().isNull());
    QVERIFY(item.isResourcesAllowed());
    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
}

void tst_AbstractResourceOwner::unregisteringUnknownKeepsTheState()
{
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    const auto state = item.state();

    item.unregisterResource(9);

    QCOMPARE(item.state(), state);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(ids(tracker), QList<int>{1});
}

void tst_AbstractResourceOwner::unregisteringUnknownDropsAnEmptyState()
{
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    item.state()->resourceCount = 0;

    item.unregisterResource(9);

    QVERIFY(item.state().isNull());
    QCOMPARE(ids(tracker), QList<int>{1});
}

void tst_AbstractResourceOwner::unregisteringDropsAnEmptyStateThoughTheTrackerHasAnother()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    tracker.unregisterResource(&item, 1);
    tracker.registerResource(&item, image(2));
    QVERIFY(item.state());

    item.unregisterResource(9);

    QVERIFY(item.state().isNull());
    QVERIFY(item.isResourcesAllowed());
    QCOMPARE(ids(tracker), QList<int>{2});
}

void tst_AbstractResourceOwner::unregisteringAllDropsTheState()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    item.registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer);
    const auto state = item.state();
    tracker.setStatus(state, ResourceOwnerState::CreationDenied);
    QVERIFY(!item.isResourcesAllowed());

    item.unregisterResources();

    QVERIFY(item.state().isNull());
    QVERIFY(item.isResourcesAllowed());
    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
    QCOMPARE(state->resourceCount, 2);
    QCOMPARE(state->status, ResourceOwnerState::CreationDenied);
}

void tst_AbstractResourceOwner::unregisteringWithoutStateDoesNothing()
{
    InstalledTracker tracker;
    Item item;
    // Registered with the tracker directly, so that the item holds no state.
    tracker.registerResource(&item, image(1));
    const SignalRecorder recorder(tracker);

    item.unregisterResource(1);
    item.unregisterResources();

    QCOMPARE(recorder.emissions, QStringList());
    QCOMPARE(ids(tracker), QList<int>{1});
    tracker.unregisterResources(&item);
}

void tst_AbstractResourceOwner::unregisteringWithoutTrackerKeepsTheState()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    const auto state = item.state();
    const SignalRecorder recorder(tracker);

    setSceneResourceTracker(nullptr);
    item.unregisterResource(1);
    item.unregisterResources();

    QCOMPARE(item.state(), state);
    QVERIFY(!item.isResourcesAllowed());
    QCOMPARE(recorder.emissions, QStringList());
    QCOMPARE(ids(tracker), QList<int>{1});
}

void tst_AbstractResourceOwner::unregisteringIsNeverBlocked()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    item.registerImage(2, poster);
    item.registerImage(3, poster);
    tracker.setRegistrationBlocked(true);

    item.unregisterResource(1);
    QCOMPARE(ids(tracker), (QList<int>{2, 3}));
    item.unregisterResources();
    QVERIFY(tracker.resources().empty());
    QVERIFY(item.state().isNull());
    QVERIFY(tracker.isRegistrationBlocked());
}

void tst_AbstractResourceOwner::unregisteringAfterTheTrackerWasCleared()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    tracker.clear();
    const SignalRecorder recorder(tracker);

    item.unregisterResource(1);
    QVERIFY(!item.state().isNull());
    item.unregisterResources();
    QVERIFY(item.state().isNull());
    QCOMPARE(recorder.emissions, QStringList());
}

void tst_AbstractResourceOwner::isAllowedByItsStatus_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("allowed");

    QTest::newRow("requested") << 0 << false;
    QTest::newRow("allowed") << 1 << true;
    QTest::newRow("denied") << 2 << false;
    QTest::newRow("cleared") << 3 << false;
    QTest::newRow("ignored") << 4 << true;
    QTest::newRow("5") << 5 << false;
    QTest::newRow("-1") << -1 << false;
}

void tst_AbstractResourceOwner::isAllowedByItsStatus()
{
    QFETCH(const int, status);
    const InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);

    item.state()->status = static_cast<ResourceOwnerState::Status>(status);

    QTEST(item.isResourcesAllowed(), "allowed");
}

void tst_AbstractResourceOwner::isAllowedAfterTheApplicationAllowsIt()
{
    InstalledTracker tracker;
    Item item;
    item.registerImage(1, poster);
    QVERIFY(!item.isResourcesAllowed());
    const QSharedPointer<ResourceOwnerState> &state = tracker.resources().front().ownerState;

    // allowResources() alone changes no status.
    tracker.allowResources(state);
    QVERIFY(!item.isResourcesAllowed());
    QCOMPARE(item.allowCalls, 1);

    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);
    QVERIFY(item.isResourcesAllowed());
    tracker.setStatus(state, ResourceOwnerState::CreationDenied);
    QVERIFY(!item.isResourcesAllowed());
    tracker.setStatus(state, ResourceOwnerState::Ignored);
    QVERIFY(item.isResourcesAllowed());
}

void tst_AbstractResourceOwner::destroyedWithoutRegistration()
{
    InstalledTracker tracker;
    tracker.setMessagesEnabled(true);
    const SignalRecorder recorder(tracker);
    {
        const Item never;
    }
    QCOMPARE(recorder.emissions, QStringList());
    {
        Item formerly;
        formerly.registerImage(1, poster);
        formerly.unregisterResources();
    }
    QCOMPARE(recorder.count(u"messagesAdded"_s), 2);
    QCOMPARE(recorder.count(u"resourceOwnerRemoved"_s), 1);
    QCOMPARE(recorder.count(u"resourcesChanged"_s), 2);
}

void tst_AbstractResourceOwner::leavesTheTrackerWhenDestroyed_data()
{
    QTest::addColumn<bool>("log");

    QTest::newRow("log off") << false;
    QTest::newRow("log on") << true;
}

void tst_AbstractResourceOwner::leavesTheTrackerWhenDestroyed()
{
    QFETCH(const bool, log);
    InstalledTracker tracker;
    tracker.setMessagesEnabled(log);
    auto item = std::make_unique<Item>();
    const IResourceOwner *address = item.get();
    item->registerImage(1, poster);
    item->registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer);
    const auto state = item->state();

    item.reset();

    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
    QVERIFY(!refersTo(tracker, address));
    QCOMPARE(state->owner, nullptr);
    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);
    tracker.allowResources(state);
    tracker.releaseResources(state);
    QCOMPARE(state->status, ResourceOwnerState::CreationRequested);
}

void tst_AbstractResourceOwner::destructionEmitsSignals()
{
    const InstalledTracker tracker;
    Item other;
    other.registerImage(5, poster);
    auto item = std::make_unique<Item>();
    item->registerImage(1, poster);
    item->registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer);
    const SignalRecorder recorder(tracker);

    item.reset();

    QCOMPARE(recorder.emissions, (QStringList{
                                     u"resourceOwnerRemoved [5] owners 1 messages 0"_s,
                                     u"resourcesChanged [5] owners 1 messages 0"_s,
                                 }));
}

void tst_AbstractResourceOwner::destructionEmitsSignalsWithTheLog()
{
    InstalledTracker tracker;
    Item other;
    other.registerImage(5, poster);
    auto item = std::make_unique<Item>();
    item->registerImage(1, poster);
    item->registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer);
    tracker.setMessagesEnabled(true);
    const SignalRecorder recorder(tracker);

    item.reset();

    QCOMPARE(recorder.names(), (QStringList{u"messagesAdded"_s, u"messagesAdded"_s,
                                            u"resourceOwnerRemoved"_s, u"resourcesChanged"_s}));
    QCOMPARE(recorder.emissions.at(2), u"resourceOwnerRemoved [5] owners 1 messages 2"_s);
    QCOMPARE(recorder.emissions.at(3), u"resourcesChanged [5] owners 1 messages 2"_s);
}

void tst_AbstractResourceOwner::dyingItemIsDescribedWithoutNames()
{
    InstalledTracker tracker;
    auto item = std::make_unique<Item>();
    item->setObjectName(u"poster"_s);
    item->registerImage(1, poster);
    item->registerResource(2, u"row"_s, ResourceInfo::OffscreenBuffer);
    item->state()->geometry = QRect(1, 2, 3, 4);
    tracker.setStatus(item->state(), ResourceOwnerState::CreationAllowed);
    tracker.setMessagesEnabled(true);

    item.reset();

    const QList<SceneResourceTracker::Message> messages = tracker.messages();
    QCOMPARE(messages.size(), 2);
    for (const SceneResourceTracker::Message &message : messages) {
        QCOMPARE(message.event, SceneResourceTracker::Message::Unregistered);
        QCOMPARE(message.ownerAddress, u"0x00000000"_s);
        QVERIFY(message.className.isEmpty());
        QVERIFY(message.objectName.isEmpty());
        QCOMPARE(message.geometry, u"(1, 2, 3x4)"_s);
        QCOMPARE(message.status, u"creation_allowed"_s);
    }
    QCOMPARE(messages.at(0).id, 2);
    QCOMPARE(messages.at(0).type, u"offscreen_buffer"_s);
    QCOMPARE(messages.at(0).source, u"row"_s);
    QCOMPARE(messages.at(1).id, 1);
    QCOMPARE(messages.at(1).type, u"image"_s);
    QCOMPARE(messages.at(1).source, u"file:///poster.png"_s);
}

void tst_AbstractResourceOwner::destroyedAfterItsQObject()
{
    InstalledTracker tracker;
    tracker.setMessagesEnabled(true);
    auto item = std::make_unique<OwnerFirstItem>();
    item->registerImage(1, poster);

    item.reset();

    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
    QCOMPARE(tracker.messages().constLast().ownerAddress, u"0x00000000"_s);
}

namespace {

using Signal = void (SceneResourceTracker::*)();

void addSignalRows()
{
    QTest::addColumn<Signal>("signal");

    QTest::newRow("messagesAdded") << &SceneResourceTracker::messagesAdded;
    QTest::newRow("resourceOwnerRemoved") << &SceneResourceTracker::resourceOwnerRemoved;
    QTest::newRow("resourcesChanged") << &SceneResourceTracker::resourcesChanged;
}

} // namespace

void tst_AbstractResourceOwner::slotsCannotReachADyingItem_data()
{
    addSignalRows();
}

void tst_AbstractResourceOwner::slotsCannotReachADyingItem()
{
    QFETCH(const Signal, signal);
    InstalledTracker tracker;
    auto item = std::make_unique<Item>();
    item->registerImage(1, poster);
    item->registerImage(2, poster);
    tracker.setMessagesEnabled(true);
    const auto state = item->state();
    int calls = 0;
    connect(&tracker, signal, this, [&] {
        ++calls;
        QCOMPARE(state->owner, nullptr);
        tracker.allowResources(state);
        tracker.releaseResources(state);
        tracker.setStatus(state, ResourceOwnerState::CreationAllowed);
        for (const auto &[owner, ownerState] : tracker.owners())
            tracker.allowResources(ownerState);
        for (const ResourceInfo &info : tracker.resources())
            tracker.releaseResources(info.ownerState);
    });

    item.reset();

    QVERIFY(calls > 0);
    QCOMPARE(state->status, ResourceOwnerState::CreationRequested);
    QVERIFY(tracker.owners().empty());
}

void tst_AbstractResourceOwner::slotsCannotReachADyingItemInAnyTracker_data()
{
    addSignalRows();
}

void tst_AbstractResourceOwner::slotsCannotReachADyingItemInAnyTracker()
{
    QFETCH(const Signal, signal);
    std::array<SceneResourceTracker, 2> trackers;
    auto item = std::make_unique<Item>();
    IResourceOwner *const address = item.get();
    QList<QSharedPointer<ResourceOwnerState>> states;
    int calls = 0;
    for (SceneResourceTracker &tracker : trackers) {
        states.append(tracker.registerResource(address, image(1)));
        tracker.setMessagesEnabled(true);
        connect(&tracker, signal, this, [&] {
            ++calls;
            for (SceneResourceTracker &reached : trackers) {
                for (const auto &state : std::as_const(states)) {
                    QCOMPARE(state->owner, nullptr);
                    reached.setStatus(state, ResourceOwnerState::CreationAllowed);
                    reached.allowResources(state);
                }
                reached.unregisterResource(address, 1);
                reached.unregisterResources(address);
            }
        });
    }

    item.reset();

    QVERIFY(calls > 0);
    for (const SceneResourceTracker &tracker : trackers)
        verifyForgotten(tracker, address);
}

void tst_AbstractResourceOwner::destructionKeepsCountAndStatus()
{
    InstalledTracker tracker;
    auto item = std::make_unique<Item>();
    item->registerImage(1, poster);
    item->registerImage(2, poster);
    const auto state = item->state();
    tracker.setStatus(state, ResourceOwnerState::CreationDenied);

    item.reset();

    QCOMPARE(state->resourceCount, 2);
    QCOMPARE(state->status, ResourceOwnerState::CreationDenied);
}

void tst_AbstractResourceOwner::destroyedAfterTheTrackerWasUninstalled()
{
    InstalledTracker tracker;
    tracker.setMessagesEnabled(true);
    Item other;
    other.registerImage(5, poster);
    auto item = std::make_unique<Item>();
    const IResourceOwner *address = item.get();
    item->registerImage(1, poster);
    const auto state = item->state();
    SignalRecorder recorder(tracker);

    setSceneResourceTracker(nullptr);
    item.reset();

    QCOMPARE(state->owner, nullptr);
    QVERIFY(!refersTo(tracker, address));
    QCOMPARE(ids(tracker), QList<int>{5});
    QCOMPARE(recorder.names(),
             (QStringList{u"messagesAdded"_s, u"resourceOwnerRemoved"_s, u"resourcesChanged"_s}));
    QCOMPARE(tracker.messages().constLast().ownerAddress, u"0x00000000"_s);
}

void tst_AbstractResourceOwner::destroyedAfterTheTrackerWasReplaced()
{
    SceneResourceTracker former;
    InstalledTracker present;
    setSceneResourceTracker(&former);
    auto item = std::make_unique<Item>();
    const IResourceOwner *address = item.get();
    item->registerImage(1, poster);
    const auto state = item->state();

    setSceneResourceTracker(&present);
    item.reset();

    QCOMPARE(state->owner, nullptr);
    verifyForgotten(former, address);
}

void tst_AbstractResourceOwner::destroyedWhileInTwoTrackers()
{
    SceneResourceTracker former;
    InstalledTracker present;
    setSceneResourceTracker(&former);
    auto item = std::make_unique<Item>();
    const IResourceOwner *address = item.get();
    item->registerImage(1, poster);
    const auto formerState = item->state();
    setSceneResourceTracker(&present);
    item->registerImage(2, poster);
    const auto presentState = item->state();
    QVERIFY(formerState != presentState);

    item.reset();

    verifyForgotten(former, address);
    verifyForgotten(present, address);
    QCOMPARE(presentState->owner, nullptr);
    QCOMPARE(formerState->owner, nullptr);
}

void tst_AbstractResourceOwner::destroyedAfterOneOfItsTrackers_data()
{
    QTest::addColumn<int>("gone");

    QTest::newRow("the oldest") << 0;
    QTest::newRow("the middle one") << 1;
    QTest::newRow("the newest") << 2;
}

void tst_AbstractResourceOwner::destroyedAfterOneOfItsTrackers()
{
    QFETCH(const int, gone);
    std::array trackers = {std::make_unique<SceneResourceTracker>(),
                           std::make_unique<SceneResourceTracker>(),
                           std::make_unique<SceneResourceTracker>()};
    auto item = std::make_unique<Item>();
    for (const auto &tracker : trackers)
        tracker->registerResource(item.get(), image(1));

    trackers.at(size_t(gone)).reset();
    item.reset();

    for (const auto &tracker : trackers) {
        if (tracker) {
            QVERIFY(tracker->resources().empty());
            QVERIFY(tracker->owners().empty());
        }
    }
}

void tst_AbstractResourceOwner::destroyedAfterItsTracker()
{
    auto item = std::make_unique<Item>();
    {
        const InstalledTracker tracker;
        item->registerImage(1, poster);
    }
    const auto state = item->state();
    QVERIFY(!state.isNull());

    item.reset();

    QCOMPARE(state->owner, nullptr);
}

void tst_AbstractResourceOwner::destroyedAfterTheTrackerWasCleared()
{
    InstalledTracker tracker;
    auto item = std::make_unique<Item>();
    item->registerImage(1, poster);
    const auto state = item->state();
    tracker.clear();
    const SignalRecorder recorder(tracker);

    item.reset();

    QCOMPARE(state->owner, nullptr);
    QCOMPARE(recorder.emissions, QStringList());
}

void tst_AbstractResourceOwner::destroyedAfterTheStateLostItsOwner_data()
{
    QTest::addColumn<bool>("held");

    QTest::newRow("which the item held") << true;
    QTest::newRow("which only the tracker held") << false;
}

void tst_AbstractResourceOwner::destroyedAfterTheStateLostItsOwner()
{
    QFETCH(const bool, held);
    InstalledTracker tracker;
    tracker.setMessagesEnabled(true);
    auto item = std::make_unique<Item>();
    const IResourceOwner *address = item.get();
    if (held)
        item->registerImage(1, poster);
    else
        tracker.registerResource(item.get(), image(1));
    tracker.owners().at(item.get())->owner = nullptr;

    item.reset();

    verifyForgotten(tracker, address);
}

void tst_AbstractResourceOwner::destroyedWithEntriesAndACountOfZero()
{
    const InstalledTracker tracker;
    auto item = std::make_unique<Item>();
    const IResourceOwner *address = item.get();
    item->registerImage(1, poster);
    // The item drops its state although the tracker still holds an entry.
    item->state()->resourceCount = 0;
    item->unregisterResource(9);
    QVERIFY(item->state().isNull());
    QVERIFY(refersTo(tracker, address));

    item.reset();

    verifyForgotten(tracker, address);
}

void tst_AbstractResourceOwner::destroyedWithoutEntries()
{
    InstalledTracker tracker;
    auto item = std::make_unique<Item>();
    const auto state = tracker.registerResource(item.get(), image(1));
    state->resourceCount = 2;
    tracker.unregisterResource(item.get(), 1);
    QCOMPARE(tracker.owners().size(), std::size_t(1));
    const SignalRecorder recorder(tracker);

    item.reset();

    QCOMPARE(state->owner, nullptr);
    QCOMPARE(recorder.emissions, QStringList{u"resourceOwnerRemoved [] owners 0 messages 0"_s});
}

void tst_AbstractResourceOwner::destroyedWhileRegistrationIsBlocked()
{
    InstalledTracker tracker;
    auto item = std::make_unique<Item>();
    item->registerImage(1, poster);
    tracker.setRegistrationBlocked(true);

    item.reset();

    QVERIFY(tracker.resources().empty());
    QVERIFY(tracker.owners().empty());
    QVERIFY(tracker.isRegistrationBlocked());
}

void tst_AbstractResourceOwner::destructionKeepsOtherItems()
{
    InstalledTracker tracker;
    tracker.setMessagesEnabled(true);
    Item other;
    other.registerImage(1, poster);
    other.registerImage(2, poster);
    auto item = std::make_unique<Item>();
    item->registerImage(1, poster);

    item.reset();

    QCOMPARE(ids(tracker), (QList<int>{1, 2}));
    QCOMPARE(tracker.owners().at(&other), other.state());
    QCOMPARE(other.state()->resourceCount, 2);
    QVERIFY(other.state()->owner == &other);
    QCOMPARE(other.releaseCalls, 0);
}

void tst_AbstractResourceOwner::dyingItemCannotRegister_data()
{
    addSignalRows();
}

void tst_AbstractResourceOwner::dyingItemCannotRegister()
{
    QFETCH(const Signal, signal);
    InstalledTracker tracker;
    tracker.setMessagesEnabled(true);
    auto item = std::make_unique<Item>();
    AbstractResourceOwner *address = item.get();
    item->registerImage(1, poster);
    item->registerImage(2, poster);
    constexpr int manyCalls = 100;
    int calls = 0;
    bool acting = false;
    connect(&tracker, signal, this, [&] {
        if (acting || calls == manyCalls)
            return;
        acting = true;
        address->registerImage(100 + calls++, poster);
        acting = false;
    });

    item.reset();

    QVERIFY(calls > 0);
    QVERIFY(calls < manyCalls);
    verifyForgotten(tracker, address);
}

void tst_AbstractResourceOwner::dyingItemMayUnregister_data()
{
    addSignalRows();
}

// Only the trackers hold the states of the dying item. The older tracker still lists the item.
void tst_AbstractResourceOwner::dyingItemMayUnregister()
{
    QFETCH(const Signal, signal);
    SceneResourceTracker former;
    InstalledTracker present;
    present.setMessagesEnabled(true);
    auto item = std::make_unique<Item>();
    AbstractResourceOwner *address = item.get();
    setSceneResourceTracker(&former);
    item->registerImage(1, poster);
    setSceneResourceTracker(&present);
    item->registerImage(2, poster);
    item->registerImage(3, poster);
    int calls = 0;
    connect(&present, signal, this, [&] {
        ++calls;
        address->unregisterResource(2);
        address->unregisterResources();
    });

    item.reset();

    QVERIFY(calls > 0);
    verifyForgotten(former, address);
    verifyForgotten(present, address);
}

QTEST_GUILESS_MAIN(tst_AbstractResourceOwner)

#include "tst_abstractresourceowner.moc"
