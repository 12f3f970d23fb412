#include <ovelin/platformnativeinterface.h>

#include "graphics/platformplugin/tiledplatform.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QRegularExpression>
#include <QTest>

#include <functional>
#include <memory>
#include <type_traits>

using ovelin::PlatformNativeInterface;
using ovelin::tests::TiledPlatform;
using ovelin::tests::tiledPlatform;

namespace {

static_assert(!std::is_polymorphic_v<PlatformNativeInterface>);
static_assert(!std::is_base_of_v<QObject, PlatformNativeInterface>);
static_assert(std::is_nothrow_destructible_v<PlatformNativeInterface>);
static_assert(std::is_default_constructible_v<PlatformNativeInterface>);
static_assert(sizeof(PlatformNativeInterface) == 2 * sizeof(std::function<void()>),
              "the two callables and nothing else");
static_assert(std::is_same_v<decltype(&PlatformNativeInterface::init), void (*)()>);
static_assert(std::is_same_v<decltype(&PlatformNativeInterface::createTiledPixmap),
                             QPixmap (PlatformNativeInterface::*)(
                                 const QSize &, std::function<void(QPainter &)>) const>);
static_assert(std::is_same_v<decltype(&PlatformNativeInterface::setupPainterForTiledPixmap),
                             void (PlatformNativeInterface::*)(const QPixmap &, QPainter &) const>);

constexpr char createTiledPixmapName[] = "createTiledPixmap";
constexpr char setupPainterName[] = "setupPainterForTiledPixmap";
constexpr char createTiledBufferName[] = "createTiledBuffer";

constexpr QSize tileSize(64, 48);

PlatformNativeInterface *const installedAtLoad = ovelin::platformNativeInterface();

// Constructed before the platform plug-in is loaded.
const PlatformNativeInterface *earlyInterface = nullptr;

void paintNothing(QPainter &) {}

} // namespace

// Runs on the tests' own platform, which offers a chosen subset of the three functions, and on platforms that
// have none of them.
class tst_PlatformNativeInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void runsOnTheChosenPlatform();
    void installedInstanceIsWhatWasSet();
    void installingDoesNotTakeOwnership();

    void isAvailableIfThePlatformHasCreateTiledPixmap();
    void createTiledPixmapForwardsOrGivesNull();
    void createTiledPixmapLeavesPaintingToThePlatform();
    void createTiledPixmapPassesAnEmptyFunction();
    void createTiledPixmapKeepsTheCallersFunction();
    void setupPainterForwardsOrDoesNothing();
    void initCallsCreateTiledBuffer();

    void looksUpEachFunctionOnceByItsName();
    void keepsTheFunctionsOfItsConstruction_data();
    void keepsTheFunctionsOfItsConstruction();
    void keepsTheNativeInterfaceOfItsConstruction();
    void initUsesThePresentNativeInterface();
    void findsNothingWithoutANativeInterface();
    void findsNothingBeforeThePlatformIsLoaded();
    void copiesCallTheSameFunctions();

private:
    bool offers(const char *name) const { return m_platform && m_platform->offered.contains(name); }

    TiledPlatform *m_platform = nullptr;
    QList<QByteArray> m_offered;
};

void tst_PlatformNativeInterface::initTestCase()
{
    m_platform = tiledPlatform();
    if (m_platform)
        m_offered = m_platform->offered;
}

void tst_PlatformNativeInterface::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    if (m_platform)
        m_platform->forgetCalls();
}

void tst_PlatformNativeInterface::cleanup()
{
    ovelin::setPlatformNativeInterface(nullptr);
    if (m_platform) {
        m_platform->offered = m_offered;
        m_platform->paints = true;
        m_platform->nativeInterface = m_platform->nativeInterfaces[0];
    }
}

void tst_PlatformNativeInterface::runsOnTheChosenPlatform()
{
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM").split(':').first();
    QCOMPARE(QGuiApplication::platformName().toLatin1(), chosen);
    QCOMPARE(m_platform != nullptr, chosen == "tiled");
    for (const char *name : {createTiledPixmapName, setupPainterName, createTiledBufferName})
        QCOMPARE(QGuiApplication::platformFunction(name) != nullptr, offers(name));
}

void tst_PlatformNativeInterface::installedInstanceIsWhatWasSet()
{
    QCOMPARE(installedAtLoad, nullptr);
    QCOMPARE(ovelin::platformNativeInterface(), nullptr);

    PlatformNativeInterface first;
    PlatformNativeInterface second;
    QCOMPARE(ovelin::platformNativeInterface(), nullptr);

    ovelin::setPlatformNativeInterface(&first);
    QCOMPARE(ovelin::platformNativeInterface(), &first);
    QCOMPARE(ovelin::platformNativeInterface(), &first);

    ovelin::setPlatformNativeInterface(&second);
    QCOMPARE(ovelin::platformNativeInterface(), &second);

    ovelin::setPlatformNativeInterface(nullptr);
    QCOMPARE(ovelin::platformNativeInterface(), nullptr);
}

// The instance is not on the heap: deleting it would crash.
void tst_PlatformNativeInterface::installingDoesNotTakeOwnership()
{
    const PlatformNativeInterface replacement;
    PlatformNativeInterface interface;
    ovelin::setPlatformNativeInterface(&interface);
    ovelin::setPlatformNativeInterface(&interface);
    ovelin::setPlatformNativeInterface(nullptr);
    QCOMPARE(interface.isTiledPixmapAvailable(), replacement.isTiledPixmapAvailable());
    QCOMPARE(interface.createTiledPixmap(tileSize, paintNothing).isNull(),
             !interface.isTiledPixmapAvailable());
}

void tst_PlatformNativeInterface::isAvailableIfThePlatformHasCreateTiledPixmap()
{
    const PlatformNativeInterface interface;
    QCOMPARE(interface.isTiledPixmapAvailable(), offers(createTiledPixmapName));
}

void tst_PlatformNativeInterface::createTiledPixmapForwardsOrGivesNull()
{
    const PlatformNativeInterface interface;
    int painted = 0;
    const QPixmap pixmap = interface.createTiledPixmap(tileSize, [&](QPainter &painter) {
        ++painted;
        painter.fillRect(1, 2, 3, 4, Qt::red);
    });

    if (!offers(createTiledPixmapName)) {
        QVERIFY(pixmap.isNull());
        QCOMPARE(painted, 0);
        QVERIFY(!m_platform || m_platform->createPixmapCalls.isEmpty());
        return;
    }

    QCOMPARE(m_platform->createPixmapCalls.size(), 1);
    const TiledPlatform::CreatePixmapCall &call = m_platform->createPixmapCalls.first();
    QVERIFY(call.nativeInterface);
    QCOMPARE(call.nativeInterface, QGuiApplication::platformNativeInterface());
    QCOMPARE(call.size, tileSize);
    QVERIFY(call.canPaint);
    QCOMPARE(painted, 1);
    QCOMPARE(m_platform->setupPainterCalls.size(), 0);
    QCOMPARE(m_platform->createBufferCalls.size(), 0);

    // The result is the pixmap of the platform.
    QCOMPARE(pixmap.cacheKey(), call.cacheKey);
    QCOMPARE(pixmap.size(), tileSize);
    QImage expected(tileSize, QImage::Format_RGB32);
    expected.fill(TiledPlatform::background);
    QPainter painter(&expected);
    painter.fillRect(1, 2, 3, 4, Qt::red);
    painter.end();
    QCOMPARE(pixmap.toImage().convertToFormat(QImage::Format_RGB32), expected);
}

void tst_PlatformNativeInterface::createTiledPixmapLeavesPaintingToThePlatform()
{
    const PlatformNativeInterface interface;
    if (m_platform)
        m_platform->paints = false;

    int painted = 0;
    const QPixmap pixmap = interface.createTiledPixmap(tileSize, [&](QPainter &) { ++painted; });
    QCOMPARE(pixmap.isNull(), !offers(createTiledPixmapName));
    QCOMPARE(painted, 0);
}

void tst_PlatformNativeInterface::createTiledPixmapPassesAnEmptyFunction()
{
    const PlatformNativeInterface interface;
    const QPixmap pixmap = interface.createTiledPixmap(QSize(5, 7), nullptr);

    QCOMPARE(pixmap.isNull(), !offers(createTiledPixmapName));
    if (offers(createTiledPixmapName)) {
        QCOMPARE(pixmap.size(), QSize(5, 7));
        QCOMPARE(m_platform->createPixmapCalls.size(), 1);
        QVERIFY(!m_platform->createPixmapCalls.first().canPaint);
    }
}

// The platform gets a copy of the function. The caller can use its own function again.
void tst_PlatformNativeInterface::createTiledPixmapKeepsTheCallersFunction()
{
    const PlatformNativeInterface interface;
    int painted = 0;
    const std::function<void(QPainter &)> paint = [&painted](QPainter &) { ++painted; };

    for (int round = 0; round < 3; ++round) {
        const QPixmap pixmap = interface.createTiledPixmap(tileSize, paint);
        QCOMPARE(pixmap.isNull(), !offers(createTiledPixmapName));
        QVERIFY(paint);
    }
    QCOMPARE(painted, offers(createTiledPixmapName) ? 3 : 0);
}

void tst_PlatformNativeInterface::setupPainterForwardsOrDoesNothing()
{
    const PlatformNativeInterface interface;
    QPixmap pixmap(tileSize);
    pixmap.fill(Qt::green);
    const qint64 cacheKey = pixmap.cacheKey();

    QImage canvas(tileSize, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    painter.setPen(Qt::red);
    painter.setOpacity(0.75);
    interface.setupPainterForTiledPixmap(pixmap, painter);

    QCOMPARE(pixmap.cacheKey(), cacheKey);
    QVERIFY(painter.isActive());
    QCOMPARE(painter.pen(), QPen(Qt::red));
    QCOMPARE(painter.brush(), QBrush());
    QCOMPARE(painter.transform(), QTransform());
    QCOMPARE(painter.compositionMode(), QPainter::CompositionMode_SourceOver);

    if (!offers(setupPainterName)) {
        QCOMPARE(painter.opacity(), 0.75);
        QVERIFY(!m_platform || m_platform->setupPainterCalls.isEmpty());
        return;
    }

    QCOMPARE(painter.opacity(), TiledPlatform::preparedOpacity);
    QCOMPARE(m_platform->setupPainterCalls.size(), 1);
    const TiledPlatform::SetupPainterCall &call = m_platform->setupPainterCalls.first();
    QVERIFY(call.nativeInterface);
    QCOMPARE(call.nativeInterface, QGuiApplication::platformNativeInterface());
    QCOMPARE(call.pixmap, &pixmap);
    QCOMPARE(call.painter, &painter);
    QCOMPARE(m_platform->createPixmapCalls.size(), 0);
    QCOMPARE(m_platform->createBufferCalls.size(), 0);
}

void tst_PlatformNativeInterface::initCallsCreateTiledBuffer()
{
    PlatformNativeInterface::init();

    if (m_platform) {
        QCOMPARE(m_platform->createBufferCalls.size(), offers(createTiledBufferName) ? 1 : 0);
        QCOMPARE(m_platform->createPixmapCalls.size(), 0);
        QCOMPARE(m_platform->setupPainterCalls.size(), 0);
        for (const QPlatformNativeInterface *passed : m_platform->createBufferCalls) {
            QVERIFY(passed);
            QCOMPARE(passed, QGuiApplication::platformNativeInterface());
        }
    }

    // Each call of init() calls createTiledBuffer(). Constructing an instance does not.
    PlatformNativeInterface::init();
    const PlatformNativeInterface interface;
    if (offers(createTiledBufferName))
        QCOMPARE(m_platform->createBufferCalls.size(), 2);
}

void tst_PlatformNativeInterface::looksUpEachFunctionOnceByItsName()
{
    if (!m_platform)
        QSKIP("Only the platform of the tests records look-ups.");

    const PlatformNativeInterface interface;
    QCOMPARE(m_platform->lookups, (QList<QByteArray>{createTiledPixmapName, setupPainterName}));

    QPixmap canvas(tileSize);
    QPainter painter(&canvas);
    const QPixmap pixmap = interface.createTiledPixmap(tileSize, paintNothing);
    interface.setupPainterForTiledPixmap(pixmap, painter);
    QCOMPARE(interface.isTiledPixmapAvailable(), offers(createTiledPixmapName));
    QCOMPARE(m_platform->lookups.size(), 2);

    m_platform->lookups.clear();
    PlatformNativeInterface::init();
    QCOMPARE(m_platform->lookups, QList<QByteArray>{createTiledBufferName});
}

void tst_PlatformNativeInterface::keepsTheFunctionsOfItsConstruction_data()
{
    QTest::addColumn<QList<QByteArray>>("offeredLater");

    QTest::newRow("nothing") << QList<QByteArray>{};
    QTest::newRow("everything") << QList<QByteArray>{createTiledPixmapName, setupPainterName,
                                                     createTiledBufferName};
}

void tst_PlatformNativeInterface::keepsTheFunctionsOfItsConstruction()
{
    QFETCH(const QList<QByteArray>, offeredLater);
    if (!m_platform)
        QSKIP("Only the platform of the tests can change its functions.");

    const PlatformNativeInterface interface;
    m_platform->offered = offeredLater;

    const bool created = m_offered.contains(createTiledPixmapName);
    QCOMPARE(interface.isTiledPixmapAvailable(), created);
    const QPixmap pixmap = interface.createTiledPixmap(tileSize, paintNothing);
    QCOMPARE(pixmap.isNull(), !created);
    QCOMPARE(m_platform->createPixmapCalls.size(), created ? 1 : 0);

    QPixmap canvas(tileSize);
    QPainter painter(&canvas);
    interface.setupPainterForTiledPixmap(canvas, painter);
    QCOMPARE(m_platform->setupPainterCalls.size(), m_offered.contains(setupPainterName) ? 1 : 0);

    // init() looks createTiledBuffer() up each time.
    PlatformNativeInterface::init();
    QCOMPARE(m_platform->createBufferCalls.size(), offers(createTiledBufferName) ? 1 : 0);
}

void tst_PlatformNativeInterface::keepsTheNativeInterfaceOfItsConstruction()
{
    if (!m_platform)
        QSKIP("Only the platform of the tests can change its native interface.");

    const PlatformNativeInterface interface;
    m_platform->nativeInterface = m_platform->nativeInterfaces[1];

    QPixmap canvas(tileSize);
    QPainter painter(&canvas);
    const QPixmap pixmap = interface.createTiledPixmap(tileSize, paintNothing);
    interface.setupPainterForTiledPixmap(canvas, painter);

    QCOMPARE(pixmap.isNull(), !offers(createTiledPixmapName));
    for (const TiledPlatform::CreatePixmapCall &call : m_platform->createPixmapCalls)
        QCOMPARE(call.nativeInterface, m_platform->nativeInterfaces[0]);
    for (const TiledPlatform::SetupPainterCall &call : m_platform->setupPainterCalls)
        QCOMPARE(call.nativeInterface, m_platform->nativeInterfaces[0]);
}

void tst_PlatformNativeInterface::initUsesThePresentNativeInterface()
{
    if (!m_platform)
        QSKIP("Only the platform of the tests can change its native interface.");

    QList<QPlatformNativeInterface *> expected;
    for (QPlatformNativeInterface *current : m_platform->nativeInterfaces) {
        m_platform->nativeInterface = current;
        PlatformNativeInterface::init();
        if (offers(createTiledBufferName))
            expected.append(current);
    }
    QCOMPARE(m_platform->createBufferCalls, expected);
}

void tst_PlatformNativeInterface::findsNothingWithoutANativeInterface()
{
    if (!m_platform)
        QSKIP("Only the platform of the tests can have no native interface.");

    m_platform->nativeInterface = nullptr;
    const PlatformNativeInterface interface;
    PlatformNativeInterface::init();
    m_platform->nativeInterface = m_platform->nativeInterfaces[0];

    QVERIFY(!interface.isTiledPixmapAvailable());
    QVERIFY(interface.createTiledPixmap(tileSize, paintNothing).isNull());
    QCOMPARE(m_platform->createBufferCalls.size(), 0);
}

void tst_PlatformNativeInterface::findsNothingBeforeThePlatformIsLoaded()
{
    QVERIFY(earlyInterface);
    QVERIFY(!earlyInterface->isTiledPixmapAvailable());

    int painted = 0;
    QVERIFY(earlyInterface->createTiledPixmap(tileSize, [&](QPainter &) { ++painted; }).isNull());
    QCOMPARE(painted, 0);

    QPixmap canvas(tileSize);
    QPainter painter(&canvas);
    earlyInterface->setupPainterForTiledPixmap(canvas, painter);
    QCOMPARE(painter.opacity(), 1.0);
    QVERIFY(!m_platform || m_platform->createPixmapCalls.isEmpty());
    QVERIFY(!m_platform || m_platform->setupPainterCalls.isEmpty());
}

// The stored functions do not depend on the instance that created them.
void tst_PlatformNativeInterface::copiesCallTheSameFunctions()
{
    auto original = std::make_unique<PlatformNativeInterface>();
    const PlatformNativeInterface copy(*original);
    original.reset();

    QPixmap canvas(tileSize);
    QPainter painter(&canvas);
    QCOMPARE(copy.isTiledPixmapAvailable(), offers(createTiledPixmapName));
    QCOMPARE(copy.createTiledPixmap(tileSize, paintNothing).isNull(),
             !offers(createTiledPixmapName));
    copy.setupPainterForTiledPixmap(canvas, painter);
    QCOMPARE(painter.opacity(), offers(setupPainterName) ? TiledPlatform::preparedOpacity : 1.0);
}

int main(int argc, char **argv)
{
    // Qt warns of calls before the application is constructed, which this test makes on purpose.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const PlatformNativeInterface early;
    PlatformNativeInterface::init();
    // cppcheck-suppress danglingLifetime ; both exist until the end of the program
    earlyInterface = &early;
    qInstallMessageHandler(nullptr);

    const QGuiApplication application(argc, argv);
    tst_PlatformNativeInterface test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_platformnativeinterface.moc"
