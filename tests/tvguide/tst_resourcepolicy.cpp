#include "ownerrecord.h"
#include "resourcepolicy.h"

#include <ovelin/abstractresourceowner.h>
#include <ovelin/sceneresourcetracker.h>

#include <QTest>

#include <functional>
#include <memory>

using namespace tvguide;
using ovelin::ResourceInfo;
using ovelin::ResourceOwnerState;

namespace {

constexpr QRect screen(0, 0, 1000, 500);
constexpr QPoint focus(100, 100);
constexpr qint32 kibibyte = 1024;

// Follows each decision of the policy, then calls whenTold.
class Item : public QObject, public ovelin::AbstractResourceOwner
{
    Q_OBJECT

public:
    Item(const QRect &geometry, qint32 bytes, qint32 rank = 0)
    {
        registerResource(1, QStringLiteral("poster"), ResourceInfo::PaintedItem);
        ownerState->geometry = geometry;
        neededBytes(*ownerState) = bytes;
        importance(*ownerState) = rank;
    }

    QObject *resourceOwnerObject() override { return this; }

    void allowResources() override
    {
        ++allowed;
        holds = true;
        if (whenTold)
            whenTold();
    }

    void releaseResources() override
    {
        ++released;
        holds = false;
        if (whenTold)
            whenTold();
    }

    ResourceOwnerState::Status status() const { return ownerState->status; }
    void move(const QRect &geometry) { ownerState->geometry = geometry; }

    int allowed = 0;
    int released = 0;
    bool holds = false;
    std::function<void()> whenTold;
};

QRect at(int x, int y = 100)
{
    return {x, y, 10, 10};
}

} // namespace

class tst_ResourcePolicy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void allowsItemsNearTheFocusFirst();
    void allowsImportantItemsFirst();
    void aSmallItemMayFitWhenALargeOneDoesNot();
    void clearsItemsThatLeaveTheScreen();
    void allowsItemsThatComeBack();
    void alwaysAllowsTinyOwnersAndCountsThem();
    void releasedBytesAreGivenToAnotherItem();
    void releasesBeforeItAllows();
    void repeatsNoDecision();
    void decidesOnceForManyRegistrations();
    void decidesFromTheEventLoop();
    void returnsAlthoughAnOwnerRegistersWhenTold();
    void anOwnerMayAskForADecisionWhenTold();
    void anOwnerMayDestroyAnother();
    void anOwnerMayDestroyAnotherThatHasLeft();
    void anOwnerMayClearTheTracker();
    void summarises();

private:
    void look(const QPoint &at = focus)
    {
        m_policy->setView(screen, at);
        m_policy->decide();
    }

    std::unique_ptr<ovelin::SceneResourceTracker> m_tracker;
    std::unique_ptr<ResourcePolicy> m_policy;
};

void tst_ResourcePolicy::init()
{
    m_tracker = std::make_unique<ovelin::SceneResourceTracker>();
    ovelin::setSceneResourceTracker(m_tracker.get());
    m_policy = std::make_unique<ResourcePolicy>(*m_tracker, 100 * kibibyte);
}

void tst_ResourcePolicy::cleanup()
{
    m_policy.reset();
    ovelin::setSceneResourceTracker(nullptr);
    m_tracker.reset();
}

void tst_ResourcePolicy::allowsItemsNearTheFocusFirst()
{
    const Item far(at(900), 60 * kibibyte);
    const Item near(at(120), 60 * kibibyte);
    look();
    QCOMPARE(near.status(), ResourceOwnerState::CreationAllowed);
    QVERIFY(near.holds);
    QCOMPARE(far.status(), ResourceOwnerState::CreationDenied);
    QVERIFY(!far.holds);

    look(QPoint(950, 100));
    QCOMPARE(near.status(), ResourceOwnerState::CreationDenied);
    QVERIFY(!near.holds);
    QCOMPARE(far.status(), ResourceOwnerState::CreationAllowed);
    QVERIFY(far.holds);
}

void tst_ResourcePolicy::allowsImportantItemsFirst()
{
    const Item near(at(120), 60 * kibibyte);
    const Item important(at(900), 60 * kibibyte, 1);
    look();
    QCOMPARE(important.status(), ResourceOwnerState::CreationAllowed);
    QCOMPARE(near.status(), ResourceOwnerState::CreationDenied);
}

void tst_ResourcePolicy::aSmallItemMayFitWhenALargeOneDoesNot()
{
    const Item first(at(100), 60 * kibibyte);
    const Item large(at(200), 60 * kibibyte);
    const Item small(at(300), 40 * kibibyte);
    look();
    QCOMPARE(large.status(), ResourceOwnerState::CreationDenied);
    QCOMPARE(small.status(), ResourceOwnerState::CreationAllowed);
}

void tst_ResourcePolicy::clearsItemsThatLeaveTheScreen()
{
    Item item(at(100), 60 * kibibyte);
    look();
    QVERIFY(item.holds);
    item.move(at(1000));
    look();
    QCOMPARE(item.status(), ResourceOwnerState::Cleared);
    QVERIFY(!item.holds);
    QCOMPARE(item.released, 1);
}

void tst_ResourcePolicy::allowsItemsThatComeBack()
{
    Item item(at(-10), 60 * kibibyte);
    look();
    QCOMPARE(item.status(), ResourceOwnerState::Cleared);
    item.move(at(-9));
    look();
    QCOMPARE(item.status(), ResourceOwnerState::CreationAllowed);
    QVERIFY(item.holds);
}

void tst_ResourcePolicy::alwaysAllowsTinyOwnersAndCountsThem()
{
    const Item tiny(at(5000), 5 * kibibyte);
    const Item exact(at(100), 95 * kibibyte);
    look();
    QCOMPARE(tiny.status(), ResourceOwnerState::Ignored);
    QVERIFY(tiny.holds);
    QCOMPARE(exact.status(), ResourceOwnerState::CreationAllowed);

    const Item another(at(5000), 5 * kibibyte);
    look();
    QVERIFY(another.holds);
    QCOMPARE(exact.status(), ResourceOwnerState::CreationDenied);
}

void tst_ResourcePolicy::releasedBytesAreGivenToAnotherItem()
{
    auto near = std::make_unique<Item>(at(100), 60 * kibibyte);
    const Item far(at(900), 60 * kibibyte);
    look();
    QCOMPARE(far.status(), ResourceOwnerState::CreationDenied);

    near.reset();
    m_policy->decide();
    QCOMPARE(far.status(), ResourceOwnerState::CreationAllowed);
    QVERIFY(far.holds);
}

void tst_ResourcePolicy::releasesBeforeItAllows()
{
    Item left(at(100), 60 * kibibyte);
    Item right(at(900), 60 * kibibyte);
    look();
    bool bothHeld = false;
    right.whenTold = [&] { bothHeld = bothHeld || (left.holds && right.holds); };
    left.whenTold = right.whenTold;
    for (const int x : {900, 100, 900})
        look(QPoint(x, 100));
    QVERIFY(right.holds);
    QVERIFY(!bothHeld);
}

void tst_ResourcePolicy::repeatsNoDecision()
{
    const Item item(at(100), 60 * kibibyte);
    look();
    look();
    look(QPoint(300, 300));
    QCOMPARE(item.allowed, 1);
    QCOMPARE(item.released, 0);
}

void tst_ResourcePolicy::decidesOnceForManyRegistrations()
{
    look();
    const Item far(at(900), 60 * kibibyte);
    const Item near(at(120), 60 * kibibyte);
    QCOMPARE(far.status(), ResourceOwnerState::CreationRequested);
    m_policy->decide();
    QCOMPARE(far.allowed, 0);
    QCOMPARE(near.allowed, 1);
}

void tst_ResourcePolicy::decidesFromTheEventLoop()
{
    look();
    const Item item(at(100), 60 * kibibyte);
    QCOMPARE(item.status(), ResourceOwnerState::CreationRequested);
    QVERIFY(QTest::qWaitFor([&] { return item.holds; }));
    QCOMPARE(item.status(), ResourceOwnerState::CreationAllowed);
}

void tst_ResourcePolicy::returnsAlthoughAnOwnerRegistersWhenTold()
{
    Item item(at(100), 60 * kibibyte);
    int changes = 0;
    // After every decision the item changes so that the opposite decision is right.
    item.whenTold = [&] {
        ++changes;
        item.registerResource(1, QString::number(changes), ResourceInfo::PaintedItem);
        item.move(item.holds ? at(2000) : at(100));
    };
    look();
    QVERIFY(changes > 0);
    QVERIFY(changes < 10);

    // The changes go on, and the event loop still runs.
    const int before = changes;
    QVERIFY(QTest::qWaitFor([&] { return changes > before; }));
    item.whenTold = nullptr;
    m_policy->decide();
}

void tst_ResourcePolicy::anOwnerMayAskForADecisionWhenTold()
{
    Item first(at(100), 20 * kibibyte);
    const Item second(at(200), 20 * kibibyte);
    first.whenTold = [&] { m_policy->decide(); };
    look();
    QCOMPARE(first.allowed, 1);
    QCOMPARE(second.allowed, 1);
}

void tst_ResourcePolicy::anOwnerMayDestroyAnother()
{
    Item first(at(100), 20 * kibibyte);
    auto second = std::make_unique<Item>(at(200), 20 * kibibyte);
    const Item third(at(300), 20 * kibibyte);
    first.whenTold = [&] { second.reset(); };
    look();
    QVERIFY(first.holds);
    QVERIFY(third.holds);
    QCOMPARE(m_tracker->owners().size(), std::size_t(2));
}

void tst_ResourcePolicy::anOwnerMayDestroyAnotherThatHasLeft()
{
    Item first(at(100), 20 * kibibyte);
    auto second = std::make_unique<Item>(at(200), 20 * kibibyte);
    first.whenTold = [&] {
        if (second)
            second->unregisterResources();
        second.reset();
    };
    look();
    QVERIFY(first.holds);
    QCOMPARE(m_tracker->owners().size(), std::size_t(1));
}

void tst_ResourcePolicy::anOwnerMayClearTheTracker()
{
    Item first(at(100), 20 * kibibyte);
    const Item second(at(200), 20 * kibibyte);
    first.whenTold = [&] { m_tracker->clear(); };
    look();
    QVERIFY(first.holds);
    QVERIFY(!second.holds);
}

void tst_ResourcePolicy::summarises()
{
    const Item near(at(100), 60 * kibibyte);
    const Item far(at(900), 60 * kibibyte);
    const Item gone(at(5000), 60 * kibibyte);
    const Item tiny(at(200), 5 * kibibyte);
    look();
    const Item late(at(200), 60 * kibibyte);

    const ResourcePolicy::Summary summary = m_policy->summary();
    QCOMPARE(summary.owners, 5);
    QCOMPARE(summary.requested, 1);
    QCOMPARE(summary.allowed, 1);
    QCOMPARE(summary.denied, 1);
    QCOMPARE(summary.cleared, 1);
    QCOMPARE(summary.ignored, 1);
    QCOMPARE(summary.heldBytes, 65 * kibibyte);
    QCOMPARE(m_policy->budget(), 100 * kibibyte);
}

QTEST_GUILESS_MAIN(tst_ResourcePolicy)
#include "tst_resourcepolicy.moc"
