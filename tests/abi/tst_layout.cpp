#include "resources/messagelog_p.h"

#include <ovelin/abstractresourceowner.h>
#include <ovelin/ovelinglobal.h>
#include <ovelin/platformnativeinterface.h>
#include <ovelin/sceneresourcetracker.h>
#include <ovelin/textrenderer.h>
#include <ovelin/throbberrenderer.h>

#include <QTest>
#include <QVersionNumber>

#include <cstddef>
#include <cstring>
#include <type_traits>

// Applications for the device are built apart from the library and access its objects in memory. The numbers
// in this test are compiled into the applications, so they must not change.

using namespace ovelin;
using namespace Qt::StringLiterals;

namespace {

using Message = SceneResourceTracker::Message;

constexpr bool is32Bit = sizeof(void *) == 4;
static_assert(is32Bit || sizeof(void *) == 8);

// Returns `on32Bit` in a 32-bit program, as on the device, and `on64Bit` in a 64-bit program.
constexpr std::size_t bytes(std::size_t on32Bit, std::size_t on64Bit)
{
    return is32Bit ? on32Bit : on64Bit;
}

template<typename Value>
Value readAt(const void *record, std::size_t offset)
{
    Value value;
    std::memcpy(&value, static_cast<const char *>(record) + offset, sizeof value);
    return value;
}

// Records the calls of its virtual functions.
class Item : public QObject, public AbstractResourceOwner
{
public:
    ~Item() override { destroyed = true; }

    QObject *resourceOwnerObject() override
    {
        calls += u"object"_s;
        return this;
    }
    void allowResources() override { calls += u"allow"_s; }
    void releaseResources() override { calls += u"release"_s; }

    QStringList calls;
    static inline bool destroyed = false;
};

// The indices in the virtual table. The destructor has two: one destroys the object, the other also frees its
// memory.
enum Slot { DestroySlot, DeleteSlot, ObjectSlot, AllowSlot, ReleaseSlot };

// Calls a virtual function as compiled code does: by its index, with the object as the only argument. The
// sanitizers would report a call by a pointer of the wrong type.
template<typename Result>
__attribute__((no_sanitize("undefined"))) Result callSlot(IResourceOwner *owner, Slot slot)
{
    using Function = Result (*)(IResourceOwner *);
    const auto table = readAt<const Function *>(owner, 0);
    return table[slot](owner);
}

} // namespace

class tst_Layout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offsetsAndSizes_data();
    void offsetsAndSizes();
    void enumsAreSigned32BitNumbers();
    void stateIsReadInPlace();
    void infoIsReadInPlace();
    void messageIsReadInPlace();
    void interfaceIsAtTheStartOfAnOwner();
    void virtualTableOrder();
    void addresses_data();
    void addresses();
    void versionIsTheProjects();
};

void tst_Layout::offsetsAndSizes_data()
{
    QTest::addColumn<std::size_t>("actual");
    QTest::addColumn<std::size_t>("expected");

#define OFFSET(record, field, on32Bit, on64Bit)                                                    \
    QTest::newRow(#record "::" #field) << offsetof(record, field) << bytes(on32Bit, on64Bit)
#define SIZE(type, on32Bit, on64Bit)                                                               \
    QTest::newRow("size of " #type) << sizeof(type) << bytes(on32Bit, on64Bit)

    OFFSET(ResourceOwnerState, status, 0, 0);
    OFFSET(ResourceOwnerState, owner, 4, 8);
    OFFSET(ResourceOwnerState, applicationValue1, 8, 16);
    OFFSET(ResourceOwnerState, resourceCount, 12, 20);
    OFFSET(ResourceOwnerState, applicationValue2, 16, 24);
    OFFSET(ResourceOwnerState, geometry, 20, 28);
    SIZE(ResourceOwnerState, 36, 48);

    OFFSET(ResourceInfo, url, 0, 0);
    OFFSET(ResourceInfo, name, 4, 8);
    OFFSET(ResourceInfo, id, 16, 32);
    OFFSET(ResourceInfo, type, 20, 36);
    OFFSET(ResourceInfo, ownerState, 24, 40);
    SIZE(ResourceInfo, 32, 56);

    OFFSET(Message, ownerAddress, 0, 0);
    OFFSET(Message, geometry, 12, 24);
    OFFSET(Message, className, 24, 48);
    OFFSET(Message, objectName, 36, 72);
    OFFSET(Message, status, 48, 96);
    OFFSET(Message, type, 60, 120);
    OFFSET(Message, source, 72, 144);
    OFFSET(Message, id, 84, 168);
    OFFSET(Message, event, 88, 172);
    SIZE(Message, 92, 176);

    // Types that an application has as members or derives from.
    SIZE(IResourceOwner, 4, 8);
    SIZE(AbstractResourceOwner, 12, 24);
    SIZE(SceneResourceTracker, 8, 16);
    SIZE(ThrobberRenderer, 12, 24);
    SIZE(TextRenderer, 8, 16);
    SIZE(PlatformNativeInterface, 32, 64);

#undef OFFSET
#undef SIZE
}

void tst_Layout::offsetsAndSizes()
{
    QFETCH(const std::size_t, actual);
    QFETCH(const std::size_t, expected);
    QCOMPARE(actual, expected);
}

void tst_Layout::enumsAreSigned32BitNumbers()
{
    static_assert(std::is_same_v<std::underlying_type_t<ResourceInfo::Type>, qint32>);
    static_assert(std::is_same_v<std::underlying_type_t<ResourceOwnerState::Status>, qint32>);
    static_assert(std::is_same_v<std::underlying_type_t<Message::Event>, qint32>);
    QCOMPARE(sizeof(ResourceInfo::Type), std::size_t(4));
    QCOMPARE(sizeof(ResourceOwnerState::Status), std::size_t(4));
    QCOMPARE(sizeof(Message::Event), std::size_t(4));
}

void tst_Layout::stateIsReadInPlace()
{
    SceneResourceTracker tracker;
    Item item;
    IResourceOwner *owner = &item;
    ResourceInfo info;
    info.id = 1;
    const auto state = tracker.registerResource(owner, info);
    info.id = 2;
    tracker.registerResource(owner, info);
    tracker.setStatus(state, ResourceOwnerState::Cleared);

    const void *record = state.data();
    QCOMPARE(readAt<qint32>(record, 0), ResourceOwnerState::Cleared);
    QCOMPARE(readAt<IResourceOwner *>(record, bytes(4, 8)), owner);
    QCOMPARE(readAt<qint32>(record, bytes(8, 16)), 0);
    QCOMPARE(readAt<qint32>(record, bytes(12, 20)), 2);
    QCOMPARE(readAt<qint32>(record, bytes(16, 24)), 0);

    // Left, top, right, bottom: the null rectangle has right and bottom -1.
    const std::size_t geometry = bytes(20, 28);
    QCOMPARE(readAt<qint32>(record, geometry), 0);
    QCOMPARE(readAt<qint32>(record, geometry + 4), 0);
    QCOMPARE(readAt<qint32>(record, geometry + 8), -1);
    QCOMPARE(readAt<qint32>(record, geometry + 12), -1);

    tracker.unregisterResources(owner);
}

void tst_Layout::infoIsReadInPlace()
{
    SceneResourceTracker tracker;
    Item item;
    ResourceInfo info;
    info.id = -7;
    info.type = ResourceInfo::PaintedItem;
    const auto state = tracker.registerResource(&item, info);

    const void *record = &tracker.resources().front();
    QCOMPARE(readAt<qint32>(record, bytes(16, 32)), -7);
    QCOMPARE(readAt<qint32>(record, bytes(20, 36)), ResourceInfo::PaintedItem);
    // The first member of a shared pointer is the address of the object.
    QCOMPARE(readAt<ResourceOwnerState *>(record, bytes(24, 40)), state.data());

    tracker.unregisterResources(&item);
}

void tst_Layout::messageIsReadInPlace()
{
    SceneResourceTracker tracker;
    tracker.setMessagesEnabled(true);
    Item item;
    ResourceInfo info;
    info.id = 300;
    tracker.registerResource(&item, info);

    const auto messages = tracker.messages();
    QCOMPARE(messages.size(), 1);
    const void *record = &messages.front();
    QCOMPARE(readAt<qint32>(record, bytes(84, 168)), 300);
    QCOMPARE(readAt<qint32>(record, bytes(88, 172)), Message::Registered);

    tracker.unregisterResources(&item);
}

void tst_Layout::interfaceIsAtTheStartOfAnOwner()
{
    Item item;
    AbstractResourceOwner *owner = &item;
    QCOMPARE(static_cast<void *>(static_cast<IResourceOwner *>(owner)), static_cast<void *>(owner));
}

void tst_Layout::virtualTableOrder()
{
    auto *item = new Item;
    IResourceOwner *owner = item;

    QCOMPARE(callSlot<QObject *>(owner, ObjectSlot), static_cast<QObject *>(item));
    QCOMPARE(item->calls, QStringList{u"object"_s});
    callSlot<void>(owner, AllowSlot);
    QCOMPARE(item->calls.constLast(), u"allow"_s);
    callSlot<void>(owner, ReleaseSlot);
    QCOMPARE(item->calls.constLast(), u"release"_s);
    QCOMPARE(item->calls.size(), 3);

    Item::destroyed = false;
    callSlot<void>(owner, DeleteSlot);
    QVERIFY(Item::destroyed);
}

void tst_Layout::addresses_data()
{
    QTest::addColumn<quintptr>("address");
    QTest::addColumn<QString>("text");

    QTest::newRow("null") << quintptr(0) << u"0x00000000"_s;
    QTest::newRow("padded") << quintptr(0x1a2b) << u"0x00001a2b"_s;
    QTest::newRow("highest below the top bit") << quintptr(0x7ffffff8) << u"0x7ffffff8"_s;
    // Programs on the device have no such addresses. In any 32-bit program, addressText() extends the sign.
    QTest::newRow("32 bits, top bit")
        << quintptr(0x80000010) << (is32Bit ? u"0xffffffff80000010"_s : u"0x80000010"_s);
    QTest::newRow("32 bits, highest")
        << quintptr(0xfffffffc) << (is32Bit ? u"0xfffffffffffffffc"_s : u"0xfffffffc"_s);
    if constexpr (!is32Bit) {
        QTest::newRow("wider than 32 bits")
            << static_cast<quintptr>(Q_UINT64_C(0x7fff12345678)) << u"0x7fff12345678"_s;
        QTest::newRow("64 bits, top bit")
            << static_cast<quintptr>(Q_UINT64_C(0x8000000000000010)) << u"0x8000000000000010"_s;
    }
}

void tst_Layout::addresses()
{
    QFETCH(const quintptr, address);
    QFETCH(const QString, text);
    QCOMPARE(addressText(reinterpret_cast<const void *>(address)), text);
}

void tst_Layout::versionIsTheProjects()
{
    QCOMPARE(QByteArray(OVELIN_VERSION_STR), QByteArray(OVELIN_PROJECT_VERSION));
    const QVersionNumber version =
        QVersionNumber::fromString(QLatin1StringView(OVELIN_VERSION_STR));
    QCOMPARE(version.segmentCount(), 3);
    QCOMPARE(OVELIN_VERSION,
             version.majorVersion() << 16 | version.minorVersion() << 8 | version.microVersion());
}

QTEST_GUILESS_MAIN(tst_Layout)
#include "tst_layout.moc"
