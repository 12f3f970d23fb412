#include "resourcesupport.h"

#include <QTest>

#include <array>
#include <bit>
#include <cstddef>
#include <type_traits>

using namespace ovelin;
using namespace Qt::StringLiterals;

// Applications depend on the order and the width of the fields.

static_assert(std::is_same_v<decltype(ResourceInfo::url), QUrl>);
static_assert(std::is_same_v<decltype(ResourceInfo::name), QString>);
static_assert(std::is_same_v<decltype(ResourceInfo::id), qint32>);
static_assert(std::is_same_v<decltype(ResourceInfo::type), ResourceInfo::Type>);
static_assert(
    std::is_same_v<decltype(ResourceInfo::ownerState), QSharedPointer<ResourceOwnerState>>);
static_assert(offsetof(ResourceInfo, url) == 0);
static_assert(offsetof(ResourceInfo, url) < offsetof(ResourceInfo, name));
static_assert(offsetof(ResourceInfo, name) < offsetof(ResourceInfo, id));
static_assert(offsetof(ResourceInfo, id) < offsetof(ResourceInfo, type));
static_assert(offsetof(ResourceInfo, type) < offsetof(ResourceInfo, ownerState));

static_assert(std::is_default_constructible_v<ResourceInfo>);
static_assert(std::is_copy_constructible_v<ResourceInfo>);
static_assert(std::is_copy_assignable_v<ResourceInfo>);
static_assert(std::is_nothrow_move_constructible_v<ResourceInfo>);
static_assert(std::is_nothrow_move_assignable_v<ResourceInfo>);
static_assert(std::is_nothrow_destructible_v<ResourceInfo>);
static_assert(!std::is_polymorphic_v<ResourceInfo>);

static_assert(sizeof(ResourceInfo::Type) == 4);
static_assert(ResourceInfo::Image == 0);
static_assert(ResourceInfo::OffscreenBuffer == 1);
static_assert(ResourceInfo::PaintedItem == 2);

static_assert(std::is_same_v<decltype(ResourceOwnerState::status), ResourceOwnerState::Status>);
static_assert(std::is_same_v<decltype(ResourceOwnerState::owner), IResourceOwner *>);
static_assert(std::is_same_v<decltype(ResourceOwnerState::applicationValue1), qint32>);
static_assert(std::is_same_v<decltype(ResourceOwnerState::resourceCount), qint32>);
static_assert(std::is_same_v<decltype(ResourceOwnerState::applicationValue2), qint32>);
static_assert(std::is_same_v<decltype(ResourceOwnerState::geometry), QRect>);
static_assert(offsetof(ResourceOwnerState, status) == 0);
static_assert(offsetof(ResourceOwnerState, owner) == sizeof(void *));
static_assert(offsetof(ResourceOwnerState, applicationValue1) == 2 * sizeof(void *));
static_assert(offsetof(ResourceOwnerState, resourceCount) == 2 * sizeof(void *) + 4);
static_assert(offsetof(ResourceOwnerState, applicationValue2) == 2 * sizeof(void *) + 8);
static_assert(offsetof(ResourceOwnerState, geometry) == 2 * sizeof(void *) + 12);

static_assert(std::is_trivially_destructible_v<ResourceOwnerState>);
static_assert(!std::is_polymorphic_v<ResourceOwnerState>);

static_assert(sizeof(ResourceOwnerState::Status) == 4);
static_assert(ResourceOwnerState::CreationRequested == 0);
static_assert(ResourceOwnerState::CreationAllowed == 1);
static_assert(ResourceOwnerState::CreationDenied == 2);
static_assert(ResourceOwnerState::Cleared == 3);
static_assert(ResourceOwnerState::Ignored == 4);

static_assert(std::is_abstract_v<IResourceOwner>);
static_assert(std::has_virtual_destructor_v<IResourceOwner>);
static_assert(sizeof(IResourceOwner) == sizeof(void *), "the interface carries no data");
static_assert(
    std::is_same_v<decltype(&IResourceOwner::resourceOwnerObject), QObject *(IResourceOwner::*)()>);
static_assert(
    std::is_same_v<decltype(&IResourceOwner::allowResources), void (IResourceOwner::*)()>);
static_assert(
    std::is_same_v<decltype(&IResourceOwner::releaseResources), void (IResourceOwner::*)()>);

namespace {

// Returns the index of a virtual function in its table. The first word of a member pointer holds
// the offset in the table. On some platforms its lowest bit marks virtual functions.
template<typename MemberFunction>
std::size_t tableIndex(MemberFunction function)
{
    const auto words = std::bit_cast<std::array<std::size_t, 2>>(function);
    return words[0] / sizeof(void *);
}

using Copy = ResourceInfo (*)(const ResourceInfo &);

ResourceInfo filledInfo()
{
    ResourceInfo info;
    info.url = QUrl(u"file:///poster.png"_s);
    info.name = u"poster"_s;
    info.id = -5;
    info.type = ResourceInfo::PaintedItem;
    info.ownerState = QSharedPointer<ResourceOwnerState>::create();
    return info;
}

ResourceInfo copyConstructed(const ResourceInfo &info)
{
    return ResourceInfo(info);
}

ResourceInfo copyAssigned(const ResourceInfo &info)
{
    ResourceInfo result = filledInfo();
    // cppcheck-suppress redundantInitialization ; assignment must overwrite every field
    result = info;
    return result;
}

ResourceInfo moved(const ResourceInfo &info)
{
    ResourceInfo source(info);
    ResourceInfo result;
    result = std::move(source);
    return ResourceInfo(std::move(result));
}

} // namespace

class tst_ResourceInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultIsAnImageWithoutOwner();
    void copyTakesEveryField_data();
    void copyTakesEveryField();
    void copiesShareTheOwnerState();
    void destructionReleasesTheOwnerState();
    void newStateHoldsItsInitialValues();
    void defaultStateHasNoOwnerAndNoResources();
    void libraryKeepsValuesOfTheApplication();
    void stateLivesAsLongAsItIsHeld();
    void stateLivesWhileOnlyTheTrackerHoldsIt();
    void interfaceTableKeepsItsOrder();
    void ownersAreComparedByIdentity();
    void trackerNeverDestroysAnOwner();
};

void tst_ResourceInfo::defaultIsAnImageWithoutOwner()
{
    const ResourceInfo info;

    QVERIFY(info.url.isEmpty());
    QVERIFY(info.name.isNull());
    QCOMPARE(info.id, 0);
    QCOMPARE(info.type, ResourceInfo::Image);
    QVERIFY(info.ownerState.isNull());
}

void tst_ResourceInfo::copyTakesEveryField_data()
{
    QTest::addColumn<Copy>("copy");

    QTest::newRow("copy construction") << &copyConstructed;
    QTest::newRow("copy assignment") << &copyAssigned;
    QTest::newRow("move") << &moved;
}

void tst_ResourceInfo::copyTakesEveryField()
{
    QFETCH(Copy, copy);

    const ResourceInfo original = filledInfo();
    const ResourceInfo result = copy(original);

    QCOMPARE(result.url, original.url);
    QCOMPARE(result.name, original.name);
    QCOMPARE(result.id, original.id);
    QCOMPARE(result.type, original.type);
    QCOMPARE(result.ownerState, original.ownerState);
}

void tst_ResourceInfo::copiesShareTheOwnerState()
{
    const ResourceInfo original = filledInfo();
    const ResourceInfo copy(original);

    copy.ownerState->status = ResourceOwnerState::CreationDenied;

    QCOMPARE(original.ownerState->status, ResourceOwnerState::CreationDenied);
}

void tst_ResourceInfo::destructionReleasesTheOwnerState()
{
    QWeakPointer<ResourceOwnerState> state;
    {
        const ResourceInfo info = filledInfo();
        state = info.ownerState;
        QVERIFY(!state.isNull());
    }
    QVERIFY(state.isNull());
}

void tst_ResourceInfo::newStateHoldsItsInitialValues()
{
    SceneResourceTracker tracker;
    PlainOwner owner;

    const QSharedPointer<ResourceOwnerState> state = tracker.registerResource(&owner, image(1));

    QCOMPARE(state->status, ResourceOwnerState::CreationRequested);
    QVERIFY(state->owner == &owner);
    QCOMPARE(state->applicationValue1, 0);
    QCOMPARE(state->resourceCount, 1);
    QCOMPARE(state->applicationValue2, 0);
    QCOMPARE(state->geometry.left(), 0);
    QCOMPARE(state->geometry.top(), 0);
    QCOMPARE(state->geometry.right(), -1);
    QCOMPARE(state->geometry.bottom(), -1);
    QCOMPARE(state->geometry.width(), 0);
    QCOMPARE(state->geometry.height(), 0);
}

void tst_ResourceInfo::defaultStateHasNoOwnerAndNoResources()
{
    const ResourceOwnerState state;

    QCOMPARE(state.status, ResourceOwnerState::CreationRequested);
    QCOMPARE(state.owner, nullptr);
    QCOMPARE(state.applicationValue1, 0);
    QCOMPARE(state.resourceCount, 0);
    QCOMPARE(state.applicationValue2, 0);
    QVERIFY(state.geometry.isNull());
}

void tst_ResourceInfo::libraryKeepsValuesOfTheApplication()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    PlainOwner owner;
    const QSharedPointer<ResourceOwnerState> state = tracker.registerResource(&owner, image(1));
    const QRect geometry(10, 20, 300, 200);
    state->applicationValue1 = 0x11223344;
    state->applicationValue2 = -7;
    state->geometry = geometry;

    tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, buffer(2));
    tracker.registerResource(&owner, buffer(3));
    tracker.setStatus(state, ResourceOwnerState::CreationAllowed);
    tracker.allowResources(state);
    tracker.releaseResources(state);
    tracker.unregisterResource(&owner, 1);
    tracker.unregisterResources(&owner);
    tracker.clear();

    QCOMPARE(state->applicationValue1, 0x11223344);
    QCOMPARE(state->applicationValue2, -7);
    QCOMPARE(state->geometry, geometry);
}

void tst_ResourceInfo::stateLivesAsLongAsItIsHeld()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    QSharedPointer<ResourceOwnerState> held = tracker.registerResource(&owner, image(1));
    const QWeakPointer<ResourceOwnerState> state = held;
    tracker.setStatus(held, ResourceOwnerState::CreationDenied);

    tracker.unregisterResources(&owner);

    QVERIFY(!state.isNull());
    QCOMPARE(held->status, ResourceOwnerState::CreationDenied);
    QCOMPARE(held->resourceCount, 1);
    held.reset();
    QVERIFY(state.isNull());
}

void tst_ResourceInfo::stateLivesWhileOnlyTheTrackerHoldsIt()
{
    SceneResourceTracker tracker;
    PlainOwner owner;
    const QWeakPointer<ResourceOwnerState> state = tracker.registerResource(&owner, image(1));
    tracker.registerResource(&owner, image(2));

    QVERIFY(!state.isNull());
    tracker.unregisterResource(&owner, 1);
    QVERIFY(!state.isNull());
    tracker.unregisterResource(&owner, 2);
    QVERIFY(state.isNull());
}

void tst_ResourceInfo::interfaceTableKeepsItsOrder()
{
    // The destructor takes the first two entries of the table.
    QCOMPARE(tableIndex(&IResourceOwner::resourceOwnerObject), std::size_t(2));
    QCOMPARE(tableIndex(&IResourceOwner::allowResources), std::size_t(3));
    QCOMPARE(tableIndex(&IResourceOwner::releaseResources), std::size_t(4));
}

void tst_ResourceInfo::ownersAreComparedByIdentity()
{
    SceneResourceTracker tracker;
    PlainOwner first;
    PlainOwner second;

    const auto firstState = tracker.registerResource(&first, image(1));
    const auto secondState = tracker.registerResource(&second, image(1));

    QVERIFY(firstState != secondState);
    QCOMPARE(ids(tracker), (QList<int>{1, 1}));
    tracker.unregisterResource(&second, 1);
    QCOMPARE(tracker.resources().front().ownerState, firstState);
    QCOMPARE(tracker.owners().size(), std::size_t(1));
}

void tst_ResourceInfo::trackerNeverDestroysAnOwner()
{
    class CountedOwner : public PlainOwner
    {
    public:
        explicit CountedOwner(int *destructions)
            : m_destructions(destructions)
        {
        }
        ~CountedOwner() override { ++*m_destructions; }

    private:
        int *m_destructions;
    };

    int destructions = 0;
    {
        CountedOwner owner(&destructions);
        {
            SceneResourceTracker tracker;
            tracker.registerResource(&owner, image(1));
            tracker.unregisterResource(&owner, 1);
            tracker.registerResource(&owner, image(1));
            tracker.unregisterResources(&owner);
            tracker.registerResource(&owner, image(1));
            tracker.clear();
            tracker.registerResource(&owner, image(1));
        }
        QCOMPARE(destructions, 0);
    }
    QCOMPARE(destructions, 1);
}

QTEST_GUILESS_MAIN(tst_ResourceInfo)

#include "tst_resourceinfo.moc"
