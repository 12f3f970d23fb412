#include <ovelin/throbberrenderer.h>

#include "support/paintrecorder.h"
#include "throbbersupport.h"

#include <QColor>
#include <QImage>
#include <QMetaMethod>
#include <QPainter>
#include <QPointer>
#include <QRect>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <type_traits>

using namespace std::chrono_literals;

using ovelin::ThrobberRenderer;
using namespace ovelin::tests;

namespace {

constexpr int maxInt = std::numeric_limits<int>::max();
constexpr int minInt = std::numeric_limits<int>::min();

static_assert(std::is_base_of_v<QObject, ThrobberRenderer>);
static_assert(std::has_virtual_destructor_v<ThrobberRenderer>);
static_assert(std::is_constructible_v<ThrobberRenderer, QObject *>);
static_assert(!std::is_copy_constructible_v<ThrobberRenderer>);
static_assert(!std::is_copy_assignable_v<ThrobberRenderer>);
static_assert(!std::is_move_constructible_v<ThrobberRenderer>);
static_assert(sizeof(ThrobberRenderer) == sizeof(QObject) + sizeof(void *),
              "one owning pointer besides the base");
static_assert(
    std::is_same_v<decltype(&ThrobberRenderer::penWidth), int (ThrobberRenderer::*)() const>);
static_assert(std::is_same_v<decltype(&ThrobberRenderer::updateInterval),
                             std::chrono::milliseconds (ThrobberRenderer::*)() const>);
static_assert(
    std::is_same_v<decltype(&ThrobberRenderer::isRunning), bool (ThrobberRenderer::*)() const>);
static_assert(
    std::is_same_v<decltype(&ThrobberRenderer::addAngles), void (ThrobberRenderer::*)(int, int)>);
static_assert(std::is_same_v<decltype(&ThrobberRenderer::setForegcoundColor),
                             void (ThrobberRenderer::*)(const QColor &)>);

template<typename T>
concept SpellsForegroundRight =
    requires(T &t, const QColor &color) { t.setForegroundColor(color); };
static_assert(!SpellsForegroundRight<ThrobberRenderer>, "the exported name is the misspelt one");

// ThrobberRenderer overrides no event handler of QObject. The type of a pointer to a member function names the
// class that declares the function.
struct EventHandlers : ThrobberRenderer
{
    static_assert(std::is_same_v<decltype(&EventHandlers::event), bool (QObject::*)(QEvent *)>);
    static_assert(std::is_same_v<decltype(&EventHandlers::eventFilter),
                                 bool (QObject::*)(QObject *, QEvent *)>);
    static_assert(
        std::is_same_v<decltype(&EventHandlers::timerEvent), void (QObject::*)(QTimerEvent *)>);
    static_assert(
        std::is_same_v<decltype(&EventHandlers::childEvent), void (QObject::*)(QChildEvent *)>);
    static_assert(
        std::is_same_v<decltype(&EventHandlers::customEvent), void (QObject::*)(QEvent *)>);
};

QPen defaultTrackPen()
{
    QPen pen;
    pen.setColor(QColor(255, 255, 255, 30));
    pen.setWidth(10);
    return pen;
}

QPen defaultArcPen()
{
    QPen pen;
    pen.setColor(QColor(255, 255, 255, 255));
    pen.setWidth(10);
    pen.setCapStyle(Qt::RoundCap);
    return pen;
}

// Finds the private timer of a throbber: it is the object whose timer event is being delivered.
class TimerWatcher : public QObject
{
public:
    TimerWatcher() { QCoreApplication::instance()->installEventFilter(this); }

    QTimer *timer() const { return m_timer; }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        if (event->type() == QEvent::Timer) {
            if (auto *timer = qobject_cast<QTimer *>(receiver))
                m_timer = timer;
        }
        return false;
    }

private:
    QPointer<QTimer> m_timer;
};

} // namespace

class tst_ThrobberRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void metaObjectHasOneSignalOnly();
    void isOwnedByItsParent();
    void startsStoppedAtSixtyFramesPerSecond();

    void drawsCircleThenArc();
    void drawsOnlyTheCircleInANullRect();
    void drawsWithTheDefaultPens();
    void drawChangesOnlyThePenOfThePainter();
    void drawingDoesNotAdvance();
    void drawsInTheCallersCoordinates();

    void insetsRenderRectByHalfThePen_data();
    void insetsRenderRectByHalfThePen();
    void setPenWidthSetsBothPens();
    void setPenWidthInsetsTheLastRenderRect();
    void setPenWidthInsetsTheNullRect();
    void refusedPenWidthChangesTheArcRect_data();
    void refusedPenWidthChangesTheArcRect();
    void extremeRectsSaturate_data();
    void extremeRectsSaturate();
    void setBackgroundColorSetsTrackOnly();
    void setForegcoundColorSetsArcOnly();
    void settersEmitNothing();

    void addAnglesEmitsUpdatedOnce_data();
    void addAnglesEmitsUpdatedOnce();
    void updatedComesAfterTheStep();
    void zeroAnglesChangeNothing();
    void firstStepMovesRotationAndSpan();
    void followsTheCycle_data();
    void followsTheCycle();
    void everyFrameFollowsTheRules_data();
    void everyFrameFollowsTheRules();
    void growsFor46TicksAndShrinksFor46();
    void changesThePhaseExactlyAtTheLimits_data();
    void changesThePhaseExactlyAtTheLimits();
    void clampsTheSpan();
    void shrinkingMovesTheStartOfTheArc();
    void easingClampsOutsideTheRange();
    void negativeRotationStaysNegative();
    void extremeStepsWrapAround_data();
    void extremeStepsWrapAround();

    void paintsTrackAndArcAtTheirAngles();
    void paintsTheGapOfTheLongestArc();

    void tickStepsFollowTheInterval_data();
    void tickStepsFollowTheInterval();
    void updateIntervalIsStored_data();
    void updateIntervalIsStored();
    void runsWithAnyInterval_data();
    void runsWithAnyInterval();
    void longUpdateIntervalIsNarrowedAsQTimerDoes();
    void updateIntervalChangesTheNextStep();
    void updateIntervalKeepsTheTimersState();
    void stopsTicking();
    void startingAndStoppingKeepTheFrame();
    void resumesFromTheStoredState();
    void startingAgainRestartsTheTimer();
    void canBeStoppedFromItsSignal();
    void timerHasNoParent();
    void ticksInTheThreadOfTheThrobber();
    void canBeDestroyedWhileRunning();
    void canBeDestroyedByASlot_data();
    void canBeDestroyedByASlot();
};

void tst_ThrobberRenderer::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void tst_ThrobberRenderer::metaObjectHasOneSignalOnly()
{
    const QMetaObject &meta = ThrobberRenderer::staticMetaObject;

    QCOMPARE(meta.className(), "ovelin::ThrobberRenderer");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    QCOMPARE(meta.propertyCount() - meta.propertyOffset(), 0);
    QCOMPARE(meta.enumeratorCount() - meta.enumeratorOffset(), 0);
    QCOMPARE(meta.classInfoCount() - meta.classInfoOffset(), 0);
    QCOMPARE(meta.constructorCount(), 0);

    const QMetaMethod updated = meta.method(meta.methodOffset());
    QCOMPARE(updated, QMetaMethod::fromSignal(&ThrobberRenderer::updated));
    QCOMPARE(updated.methodSignature(), "updated()");
    QCOMPARE(updated.methodType(), QMetaMethod::Signal);
    QCOMPARE(updated.access(), QMetaMethod::Public);
    QCOMPARE(updated.returnMetaType(), QMetaType::fromType<void>());

    const ThrobberRenderer throbber(nullptr);
    QCOMPARE(throbber.metaObject(), &meta);
    QVERIFY(throbber.inherits("ovelin::ThrobberRenderer"));
}

void tst_ThrobberRenderer::isOwnedByItsParent()
{
    const ThrobberRenderer orphan(nullptr);
    QCOMPARE(orphan.parent(), nullptr);

    auto parent = std::make_unique<QObject>();
    const QPointer<ThrobberRenderer> throbber = new ThrobberRenderer(parent.get());
    QCOMPARE(throbber->parent(), parent.get());

    parent.reset();
    QVERIFY(throbber.isNull());
}

void tst_ThrobberRenderer::startsStoppedAtSixtyFramesPerSecond()
{
    const ThrobberRenderer throbber(nullptr);

    QVERIFY(!throbber.isRunning());
    QCOMPARE(throbber.updateInterval(), 17ms);
    QCOMPARE(throbber.penWidth(), 10);
}

void tst_ThrobberRenderer::drawsCircleThenArc()
{
    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect(QRect(0, 0, 100, 100));

    const QList<PaintCall> calls = drawn(throbber);
    QCOMPARE(calls.size(), 2);

    // The call is drawEllipse(const QRect &) with left 5, top 5, right 94 and bottom 94.
    QCOMPARE(calls.at(0).kind, PaintCall::Kind::Ellipse);
    QCOMPARE(calls.at(0).rects, QList<QRectF>{QRectF(5, 5, 90, 90)});

    QCOMPARE(calls.at(1).kind, PaintCall::Kind::Path);
    const QPainterPath arc =
        recorded([](QPainter &painter) { painter.drawArc(QRectF(5, 5, 90, 90), -80, -80); })
            .last()
            .path;
    QVERIFY(!arc.isEmpty());
    QCOMPARE(calls.at(1).path, arc);
}

// QPainter does not pass an empty path to the paint engine.
void tst_ThrobberRenderer::drawsOnlyTheCircleInANullRect()
{
    ThrobberRenderer throbber(nullptr);

    const QList<PaintCall> calls = drawn(throbber);
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.at(0).kind, PaintCall::Kind::Ellipse);
    QCOMPARE(calls.at(0).rects, QList<QRectF>{QRectF(QRect())});
    QCOMPARE(drawnByHand(QRect(), -80, -80).size(), 1);
}

void tst_ThrobberRenderer::drawsWithTheDefaultPens()
{
    const auto throbber = makeThrobber();

    const QList<PaintCall> calls = drawn(*throbber);
    QCOMPARE(calls.size(), 2);

    QCOMPARE(calls.at(0).pen.color(), QColor(255, 255, 255, 30));
    QCOMPARE(calls.at(0).pen.width(), 10);
    QCOMPARE(calls.at(0).pen.capStyle(), QPen().capStyle());
    QCOMPARE(calls.at(0).pen, defaultTrackPen());

    QCOMPARE(calls.at(1).pen.color(), QColor(255, 255, 255, 255));
    QCOMPARE(calls.at(1).pen.width(), 10);
    QCOMPARE(calls.at(1).pen.capStyle(), Qt::RoundCap);
    QCOMPARE(calls.at(1).pen, defaultArcPen());
}

void tst_ThrobberRenderer::drawChangesOnlyThePenOfThePainter()
{
    const auto throbber = makeThrobber();
    PaintRecorder recorder;
    QPainter painter(&recorder);

    const QBrush brush(Qt::green);
    const QBrush background(Qt::yellow);
    const QPoint brushOrigin(3, 4);
    const QTransform transform = QTransform::fromTranslate(11, 12).rotate(30);
    const QFont font(QStringLiteral("Any"), 33);
    const QRect clip(1, 2, 300, 400);

    painter.setPen(QPen(Qt::blue, 3));
    painter.setBrush(brush);
    painter.setBackground(background);
    painter.setBackgroundMode(Qt::OpaqueMode);
    painter.setBrushOrigin(brushOrigin);
    painter.setTransform(transform);
    painter.setFont(font);
    painter.setOpacity(0.5);
    painter.setCompositionMode(QPainter::CompositionMode_Xor);
    painter.setClipRect(clip);
    const QRectF clipped = painter.clipBoundingRect();

    for (const QPainter::RenderHints hints :
         {QPainter::RenderHints(), QPainter::Antialiasing | QPainter::SmoothPixmapTransform}) {
        painter.setRenderHints(painter.renderHints(), false);
        painter.setRenderHints(hints);
        throbber->draw(painter);
        QCOMPARE(painter.renderHints(), hints);
    }

    QCOMPARE(painter.pen(), defaultArcPen());
    QCOMPARE(painter.brush(), brush);
    QCOMPARE(painter.background(), background);
    QCOMPARE(painter.backgroundMode(), Qt::OpaqueMode);
    QCOMPARE(painter.brushOrigin(), brushOrigin);
    QCOMPARE(painter.transform(), transform);
    QCOMPARE(painter.font(), font);
    QCOMPARE(painter.opacity(), 0.5);
    QCOMPARE(painter.compositionMode(), QPainter::CompositionMode_Xor);
    QVERIFY(painter.hasClipping());
    QCOMPARE(painter.clipBoundingRect(), clipped);
    painter.end();

    // draw() also paints with the caller's transform and opacity, and paints the circle with the caller's brush.
    // QPainter draws an arc without a brush.
    QCOMPARE(recorder.calls().size(), 4);
    QCOMPARE(recorder.calls().at(0).brush, brush);
    for (const PaintCall &call : recorder.calls()) {
        QCOMPARE(call.transform, transform);
        QCOMPARE(call.opacity, 0.5);
    }
}

void tst_ThrobberRenderer::drawingDoesNotAdvance()
{
    const auto throbber = makeThrobber();
    const QSignalSpy updated(throbber.get(), &ThrobberRenderer::updated);
    throbber->addAngles(30, 60);

    const Angles first = drawnAngles(*throbber);
    QCOMPARE_NE(first, noArc);
    QCOMPARE(drawnAngles(*throbber), first);
    QCOMPARE(updated.size(), 1);
}

void tst_ThrobberRenderer::drawsInTheCallersCoordinates()
{
    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect(QRect(-30, 17, 40, 60));

    const QList<PaintCall> calls = drawn(throbber);
    const QList<PaintCall> expected = drawnByHand(QRect(-25, 22, 30, 50), -80, -80);
    QCOMPARE(calls.size(), 2);
    QCOMPARE(calls.at(0).rects, expected.at(0).rects);
    QCOMPARE(calls.at(1).path, expected.at(1).path);
}

void tst_ThrobberRenderer::insetsRenderRectByHalfThePen_data()
{
    QTest::addColumn<int>("penWidth");
    QTest::addColumn<QRect>("renderRect");
    QTest::addColumn<QRect>("arcRect");

    const QRect square(0, 0, 100, 100);
    const auto corners = [](int left, int top, int right, int bottom) {
        return QRect(QPoint(left, top), QPoint(right, bottom));
    };
    QTest::newRow("cosmetic") << 0 << square << square;
    QTest::newRow("hair") << 1 << square << square;
    QTest::newRow("even") << 2 << square << corners(1, 1, 98, 98);
    QTest::newRow("odd, rounded down") << 3 << square << corners(1, 1, 98, 98);
    QTest::newRow("four") << 4 << square << corners(2, 2, 97, 97);
    QTest::newRow("five") << 5 << square << corners(2, 2, 97, 97);
    QTest::newRow("default") << 10 << square << corners(5, 5, 94, 94);
    QTest::newRow("eleven") << 11 << square << corners(5, 5, 94, 94);
    QTest::newRow("as wide as the rect") << 100 << square << corners(50, 50, 49, 49);
    QTest::newRow("wider than the rect") << 140 << square << corners(70, 70, 29, 29);
    QTest::newRow("all sides differ")
        << 7 << corners(-20, 31, 140, 99) << corners(-17, 34, 137, 96);
    QTest::newRow("null") << 6 << QRect() << corners(3, 3, -4, -4);
}

void tst_ThrobberRenderer::insetsRenderRectByHalfThePen()
{
    QFETCH(const int, penWidth);
    QFETCH(const QRect, renderRect);
    QFETCH(const QRect, arcRect);
    const QList<PaintCall> expected = drawnByHand(arcRect, -80, -80);

    ThrobberRenderer penFirst(nullptr);
    penFirst.setPenWidth(penWidth);
    penFirst.setRenderRect(renderRect);

    ThrobberRenderer rectFirst(nullptr);
    rectFirst.setRenderRect(renderRect);
    rectFirst.setPenWidth(penWidth);

    for (ThrobberRenderer *throbber : {&penFirst, &rectFirst}) {
        QCOMPARE(throbber->penWidth(), penWidth);
        const QList<PaintCall> calls = drawn(*throbber);
        QCOMPARE(calls.size(), expected.size());
        QCOMPARE(calls.first().rects, expected.first().rects);
        QCOMPARE(calls.last().path, expected.last().path);
    }
}

void tst_ThrobberRenderer::setPenWidthSetsBothPens()
{
    const auto throbber = makeThrobber();
    throbber->setPenWidth(7);

    QPen trackPen = defaultTrackPen();
    trackPen.setWidth(7);
    QPen arcPen = defaultArcPen();
    arcPen.setWidth(7);

    const QList<PaintCall> calls = drawn(*throbber);
    QCOMPARE(calls.size(), 2);
    QCOMPARE(throbber->penWidth(), 7);
    QCOMPARE(calls.at(0).pen, trackPen);
    QCOMPARE(calls.at(1).pen, arcPen);
}

// The inset is computed from the given rectangle, not from the previous inset.
void tst_ThrobberRenderer::setPenWidthInsetsTheLastRenderRect()
{
    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect(QRect(0, 0, 50, 50));
    throbber.setRenderRect(QRect(10, 20, 100, 80));
    throbber.setPenWidth(40);
    throbber.setPenWidth(2);

    QCOMPARE(drawn(throbber).first().rects, QList<QRectF>{QRectF(11, 21, 98, 78)});
}

void tst_ThrobberRenderer::setPenWidthInsetsTheNullRect()
{
    ThrobberRenderer throbber(nullptr);
    throbber.setPenWidth(10);

    const QList<PaintCall> expected = drawnByHand(QRect(QPoint(5, 5), QPoint(-6, -6)), -80, -80);
    QCOMPARE(drawn(throbber).size(), 2);
    QCOMPARE(drawn(throbber).first().rects, expected.first().rects);
    QCOMPARE(drawn(throbber).last().path, expected.last().path);
}

void tst_ThrobberRenderer::refusedPenWidthChangesTheArcRect_data()
{
    QTest::addColumn<int>("penWidth");
    QTest::addColumn<QRect>("arcRect"); // in the render rectangle QRect(0, 0, 100, 100)

    const auto outset = [](int by) { return QRect(0, 0, 100, 100).adjusted(-by, -by, by, by); };
    QTest::newRow("-1") << -1 << outset(0);
    QTest::newRow("-2") << -2 << outset(1);
    QTest::newRow("-5") << -5 << outset(2);
    QTest::newRow("-10") << -10 << outset(5);
    QTest::newRow("far below zero") << -1'000'000'001 << outset(500'000'000);
    QTest::newRow("wider than Qt allows") << 40'000 << outset(-20'000);
    QTest::newRow("greatest") << maxInt << outset(-1'073'741'823);
}

void tst_ThrobberRenderer::refusedPenWidthChangesTheArcRect()
{
    QFETCH(const int, penWidth);
    QFETCH(const QRect, arcRect);

    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect(QRect(0, 0, 100, 100));

    // Each of the two pens warns.
    static const QRegularExpression refused(QStringLiteral("QPen::setWidth"));
    QTest::ignoreMessage(QtWarningMsg, refused);
    QTest::ignoreMessage(QtWarningMsg, refused);
    throbber.setPenWidth(penWidth);

    QList<PaintCall> calls = drawn(throbber);
    QCOMPARE(throbber.penWidth(), 10);
    QCOMPARE(calls.first().pen, defaultTrackPen());
    QCOMPARE(calls.first().rects, drawnByHand(arcRect, -80, -80).first().rects);
    QCOMPARE(calls.last().pen, defaultArcPen());
    QCOMPARE(calls.last().path, drawnByHand(arcRect, -80, -80).last().path);

    // The refused call left the pens 10 wide. So the next rectangle is inset by 5.
    throbber.setRenderRect(QRect(0, 0, 100, 100));
    QCOMPARE(drawn(throbber).first().rects, QList<QRectF>{QRectF(5, 5, 90, 90)});
}

void tst_ThrobberRenderer::extremeRectsSaturate_data()
{
    QTest::addColumn<QRect>("renderRect");
    QTest::addColumn<int>("penWidth");

    const QPoint least(minInt, minInt);
    const QPoint greatest(maxInt, maxInt);
    for (const int penWidth : {minInt, -3, 3, maxInt}) {
        QTest::addRow("everything, pen %d", penWidth) << QRect(least, greatest) << penWidth;
        QTest::addRow("inside out, pen %d", penWidth) << QRect(greatest, least) << penWidth;
        QTest::addRow("far left, pen %d", penWidth) << QRect(least, least) << penWidth;
        QTest::addRow("far right, pen %d", penWidth) << QRect(greatest, greatest) << penWidth;
        QTest::addRow("here, pen %d", penWidth) << QRect(0, 0, 100, 100) << penWidth;
    }
}

// The edges saturate at the least and the greatest int. The arc's rectangle may be wider than an int can count.
void tst_ThrobberRenderer::extremeRectsSaturate()
{
    QFETCH(const QRect, renderRect);
    QFETCH(const int, penWidth);

    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect(renderRect);
    if (penWidth < 0 || penWidth == maxInt) {
        static const QRegularExpression refused(QStringLiteral("QPen::setWidth"));
        QTest::ignoreMessage(QtWarningMsg, refused);
        QTest::ignoreMessage(QtWarningMsg, refused);
    }
    throbber.setPenWidth(penWidth);

    QImage canvas(10, 10, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    throbber.draw(painter);

    const int half = penWidth / 2;
    const auto moved = [](int edge, int by) {
        return int(std::clamp<qint64>(qint64(edge) + by, minInt, maxInt));
    };
    const QPoint topLeft(moved(renderRect.left(), half), moved(renderRect.top(), half));
    const QPoint bottomRight(moved(renderRect.right(), -half), moved(renderRect.bottom(), -half));
    const QRectF circle(topLeft, QPointF(bottomRight) + QPointF(1, 1));
    const auto byHand = recorded([&](QPainter &hand) {
        hand.drawEllipse(QRect(topLeft, bottomRight));
        hand.drawArc(circle, -80, -80);
    });
    QCOMPARE(drawn(throbber).first().rects, byHand.first().rects);
    QCOMPARE(drawn(throbber).last().path, byHand.last().path);
}

void tst_ThrobberRenderer::setBackgroundColorSetsTrackOnly()
{
    const auto throbber = makeThrobber();
    throbber->setBackgroundColor(QColor(1, 2, 3, 4));

    QPen trackPen = defaultTrackPen();
    trackPen.setColor(QColor(1, 2, 3, 4));
    const QList<PaintCall> calls = drawn(*throbber);
    QCOMPARE(calls.at(0).pen, trackPen);
    QCOMPARE(calls.at(1).pen, defaultArcPen());
}

void tst_ThrobberRenderer::setForegcoundColorSetsArcOnly()
{
    const auto throbber = makeThrobber();
    throbber->setForegcoundColor(QColor(5, 6, 7, 8));

    QPen arcPen = defaultArcPen();
    arcPen.setColor(QColor(5, 6, 7, 8));
    const QList<PaintCall> calls = drawn(*throbber);
    QCOMPARE(calls.at(0).pen, defaultTrackPen());
    QCOMPARE(calls.at(1).pen, arcPen);
}

void tst_ThrobberRenderer::settersEmitNothing()
{
    ThrobberRenderer throbber(nullptr);
    const QSignalSpy updated(&throbber, &ThrobberRenderer::updated);

    throbber.setPenWidth(4);
    throbber.setBackgroundColor(Qt::red);
    throbber.setForegcoundColor(Qt::green);
    throbber.setRenderRect(wideRect);
    throbber.setUpdateInterval(40ms);
    throbber.setRunning(true);
    throbber.setRunning(false);

    QCOMPARE(updated.size(), 0);
}

void tst_ThrobberRenderer::addAnglesEmitsUpdatedOnce_data()
{
    QTest::addColumn<int>("before"); // steps of the span, in degrees
    QTest::addColumn<int>("rotation");
    QTest::addColumn<int>("span");

    QTest::newRow("growing") << 0 << 3 << 6;
    QTest::newRow("standing still") << 0 << 0 << 0;
    QTest::newRow("backwards") << 0 << -3 << -6;
    QTest::newRow("reaching the longest") << 270 << 3 << 6;
    QTest::newRow("shrinking") << 275 << 3 << 6;
    QTest::newRow("reaching the shortest") << 275 << 3 << 275;
}

void tst_ThrobberRenderer::addAnglesEmitsUpdatedOnce()
{
    QFETCH(const int, before);
    QFETCH(const int, rotation);
    QFETCH(const int, span);

    ThrobberRenderer throbber(nullptr);
    throbber.addAngles(0, before);

    const QSignalSpy updated(&throbber, &ThrobberRenderer::updated);
    throbber.addAngles(rotation, span);
    QCOMPARE(updated.size(), 1);
}

void tst_ThrobberRenderer::updatedComesAfterTheStep()
{
    const auto throbber = makeThrobber();
    Animation expected;
    QList<Angles> seen;
    connect(throbber.get(), &ThrobberRenderer::updated, this,
            [&] { seen.append(drawnAngles(*throbber)); });

    QList<Angles> steps;
    for (const int span : {6, 269, 6, 275, 6}) {
        throbber->addAngles(3, span);
        expected.addAngles(3, span);
        steps.append(expected.angles());
    }
    QCOMPARE(seen, steps);
}

void tst_ThrobberRenderer::zeroAnglesChangeNothing()
{
    const auto throbber = makeThrobber();
    const QSignalSpy updated(throbber.get(), &ThrobberRenderer::updated);

    for (const int before : {0, 100, 175, 100, 175}) {
        throbber->addAngles(7, before);
        const Angles frame = drawnAngles(*throbber);
        const qsizetype emitted = updated.size();

        throbber->addAngles(0, 0);
        QCOMPARE(drawnAngles(*throbber), frame);
        QCOMPARE(updated.size(), emitted + 1);
    }
}

void tst_ThrobberRenderer::firstStepMovesRotationAndSpan()
{
    const auto throbber = makeThrobber();
    QCOMPARE(drawnAngles(*throbber), (Angles{reducedToTurn(-80), -80}));

    throbber->addAngles(3, 6);

    // In 1/16 degree: the rotation is 48; the span is 176, which is eased to 84.2.
    QCOMPARE(drawnAngles(*throbber), (Angles{reducedToTurn(-(48 + 80)), -84}));
}

void tst_ThrobberRenderer::followsTheCycle_data()
{
    QTest::addColumn<int>("ticks");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("length");

    // Computed without the library and without Qt. Each tick adds 3 degrees of rotation and 6 of span.
    QTest::newRow("rest") << 0 << -80 << -80;
    QTest::newRow("first") << 1 << -128 << -84;
    QTest::newRow("second") << 2 << -176 << -96;
    QTest::newRow("tenth") << 10 << -560 << -498;
    QTest::newRow("half grown") << 23 << -1184 << -2295;
    QTest::newRow("last growing") << 45 << -2240 << -4477;
    QTest::newRow("longest") << 46 << -2288 << -4480;
    QTest::newRow("first shrinking") << 47 << -2336 << -4475;
    QTest::newRow("tail moving") << 60 << -3686 << -3658;
    QTest::newRow("half shrunk") << 69 << -5450 << -2264;
    QTest::newRow("last shrinking") << 91 << -8836 << -82;
    QTest::newRow("tail offset added to the rotation") << 92 << -3152 << -80;
    QTest::newRow("growing again") << 93 << -3200 << -84;
    QTest::newRow("longest again") << 138 << -5360 << -4480;
    QTest::newRow("second cycle's end") << 184 << -464 << -80;
}

void tst_ThrobberRenderer::followsTheCycle()
{
    QFETCH(const int, ticks);
    QFETCH(const int, start);
    QFETCH(const int, length);

    const auto throbber = makeThrobber();
    for (int tick = 0; tick < ticks; ++tick)
        throbber->addAngles(3, 6);

    QCOMPARE(drawnAngles(*throbber), (Angles{reducedToTurn(start), length}));
}

void tst_ThrobberRenderer::everyFrameFollowsTheRules_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<int>("span");

    QTest::newRow("default") << 3 << 6;
    QTest::newRow("backwards") << -3 << 6;
    QTest::newRow("one degree") << 1 << 1;
    QTest::newRow("span only") << 0 << 6;
    QTest::newRow("rotation only") << 3 << 0;
    QTest::newRow("coarse") << 90 << 180;
    QTest::newRow("whole swings") << 11 << 275;
    QTest::newRow("beyond a swing") << 11 << 276;
    QTest::newRow("more than a turn") << 361 << 725;
    QTest::newRow("more than a turn back") << -721 << 100;
    QTest::newRow("growing downwards") << 3 << -6;
}

void tst_ThrobberRenderer::everyFrameFollowsTheRules()
{
    QFETCH(const int, rotation);
    QFETCH(const int, span);

    const auto throbber = makeThrobber();
    Animation expected;
    for (int step = 0; step < 600; ++step) {
        throbber->addAngles(rotation, span);
        expected.addAngles(rotation, span);
        QCOMPARE(drawnAngles(*throbber), expected.angles());
    }
}

void tst_ThrobberRenderer::growsFor46TicksAndShrinksFor46()
{
    const auto throbber = makeThrobber();
    const auto lengthAfterTick = [&] {
        throbber->addAngles(3, 6);
        return -drawnAngles(*throbber).length;
    };

    int length = 80;
    for (int cycle = 0; cycle < 3; ++cycle) {
        for (int tick = 0; tick < 46; ++tick) {
            const int longer = lengthAfterTick();
            QCOMPARE_GT(longer, length);
            length = longer;
        }
        QCOMPARE(length, 4480);

        for (int tick = 0; tick < 46; ++tick) {
            const int shorter = lengthAfterTick();
            QCOMPARE_LT(shorter, length);
            length = shorter;
        }
        QCOMPARE(length, 80);
    }
}

void tst_ThrobberRenderer::changesThePhaseExactlyAtTheLimits_data()
{
    QTest::addColumn<QList<int>>("spans"); // steps in degrees
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("tail"); // the start angle, clockwise, in 1/16 degree

    // The longest arc is 275 degrees longer than the shortest. A step to or beyond one limit changes the phase. A
    // step of at least 275 degrees in the new phase reaches the other limit.
    QTest::newRow("longest reached") << QList<int>{275} << 4480 << 80;
    QTest::newRow("longest reached, shrinks") << QList<int>{275, 275} << 80 << 80 + 4400;
    QTest::newRow("one degree less still grows") << QList<int>{274, 275} << 4480 << 80;
    QTest::newRow("one degree more shrinks") << QList<int>{276, 275} << 80 << 80 + 4400;
    QTest::newRow("shortest reached, grows") << QList<int>{275, 275, 275} << 4480 << 80 + 4400;
    QTest::newRow("one degree less still shrinks") << QList<int>{275, 274, 1} << 80 << 80 + 4400;
    QTest::newRow("overshoot is clamped, its tail is not")
        << QList<int>{275, 300} << 80 << 80 + 4800;
}

void tst_ThrobberRenderer::changesThePhaseExactlyAtTheLimits()
{
    QFETCH(const QList<int>, spans);
    QFETCH(const int, length);
    QFETCH(const int, tail);

    const auto throbber = makeThrobber();
    for (const int span : spans)
        throbber->addAngles(0, span);

    QCOMPARE(drawnAngles(*throbber), (Angles{reducedToTurn(-tail), -length}));
}

// A step beyond a limit ends at the limit, where the next step starts.
void tst_ThrobberRenderer::clampsTheSpan()
{
    const auto throbber = makeThrobber();

    throbber->addAngles(0, 1000);
    QCOMPARE(drawnAngles(*throbber).length, -4480);
    throbber->addAngles(0, 137);
    QCOMPARE(drawnAngles(*throbber).length, -2295); // 4480 - 137 * 16, eased

    throbber->addAngles(0, 1000);
    QCOMPARE(drawnAngles(*throbber).length, -80);
    throbber->addAngles(0, 137);
    QCOMPARE(drawnAngles(*throbber).length, -2264); // 80 + 137 * 16, eased
}

void tst_ThrobberRenderer::shrinkingMovesTheStartOfTheArc()
{
    const auto throbber = makeThrobber();
    throbber->addAngles(0, 275);
    QCOMPARE(drawnAngles(*throbber).start, reducedToTurn(-80));

    // The offset of the tail is eased like the span. When the arc stops shrinking, the offset is 275 degrees.
    throbber->addAngles(0, 100);
    QCOMPARE(drawnAngles(*throbber).start, reducedToTurn(-1130));
    throbber->addAngles(0, 175);
    QCOMPARE(drawnAngles(*throbber).start, reducedToTurn(-(4400 + 80)));

    // The offset stays while the arc grows, and increases while the arc shrinks again.
    throbber->addAngles(0, 275);
    QCOMPARE(drawnAngles(*throbber).start, reducedToTurn(-(4400 + 80)));
    throbber->addAngles(0, 275);
    QCOMPARE(drawnAngles(*throbber).start, reducedToTurn(-(2 * 4400 + 80)));
}

void tst_ThrobberRenderer::easingClampsOutsideTheRange()
{
    const auto throbber = makeThrobber();

    // While growing, a span below the shortest is stored, but drawn as the shortest.
    throbber->addAngles(0, -100);
    QCOMPARE(drawnAngles(*throbber).length, -80);
    throbber->addAngles(0, 100);
    QCOMPARE(drawnAngles(*throbber).length, -80);
    throbber->addAngles(0, 137);
    QCOMPARE(drawnAngles(*throbber).length, -2264);

    // While shrinking, negative steps give a span beyond the longest and a negative tail offset.
    throbber->addAngles(0, 275);
    throbber->addAngles(0, -100);
    QCOMPARE(drawnAngles(*throbber), (Angles{reducedToTurn(-80), -4480}));
    throbber->addAngles(0, 100);
    QCOMPARE(drawnAngles(*throbber), (Angles{reducedToTurn(-80), -4480}));
}

// Angles are truncated towards zero. After -370 degrees of rotation the start is 79.9, truncated to 79 (in 1/16
// degree). After 350 degrees, which is two turns more, it would be -5680.1, truncated to -5680, which is 80 in one turn.
void tst_ThrobberRenderer::negativeRotationStaysNegative()
{
    const auto throbber = makeThrobber();
    Animation expected;
    const auto step = [&](int rotation, int span) {
        throbber->addAngles(rotation, span);
        expected.addAngles(rotation, span);
    };

    step(0, 275);
    step(-370, 6);
    QCOMPARE(expected.rotation, -160.0);
    QCOMPARE(expected.start(), 79);
    QCOMPARE(drawnAngles(*throbber), expected.angles());

    step(-720, 0);
    QCOMPARE(drawnAngles(*throbber), expected.angles());
    step(-350, 0);
    QCOMPARE(expected.rotation, 0.0);
    QCOMPARE(drawnAngles(*throbber), expected.angles());
    step(15, 0);
    QCOMPARE(drawnAngles(*throbber), expected.angles());
}

void tst_ThrobberRenderer::extremeStepsWrapAround_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<int>("span");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("length");

    // 2^31 sixteenths of a degree are 372827 turns and 128 units.
    QTest::newRow("greatest rotation") << maxInt << 0 << 16 - 80 << -80;
    QTest::newRow("least rotation") << minInt << 0 << -80 << -80;
    QTest::newRow("next to the least") << minInt + 1 << 0 << -16 - 80 << -80;
    QTest::newRow("first to wrap") << (1 << 27) << 0 << 128 - 80 << -80;
    QTest::newRow("last not to wrap") << (1 << 27) - 1 << 0 << -(128 - 16) - 80 << -80;
    QTest::newRow("greatest span") << 0 << maxInt << -80 << -80;
    QTest::newRow("least span") << 0 << minInt << -80 << -80;
    QTest::newRow("span that just fits") << 0 << (1 << 27) - 1 << -80 << -4480;
    QTest::newRow("span that wraps to negative") << 0 << (1 << 27) << -80 << -80;
}

void tst_ThrobberRenderer::extremeStepsWrapAround()
{
    QFETCH(const int, rotation);
    QFETCH(const int, span);
    QFETCH(const int, start);
    QFETCH(const int, length);

    const auto throbber = makeThrobber();
    throbber->addAngles(rotation, span);
    QCOMPARE(drawnAngles(*throbber), (Angles{reducedToTurn(start), length}));

    // Repeated extreme steps stay within the limits.
    Animation expected;
    expected.addAngles(rotation, span);
    for (int step = 0; step < 50; ++step) {
        throbber->addAngles(rotation, span);
        expected.addAngles(rotation, span);
        QCOMPARE(drawnAngles(*throbber), expected.angles());
    }
}

namespace {

constexpr QSize canvasSize(100, 100);
constexpr double ringRadius = 45; // half of 100 pixels minus the pen width

QImage painted(ThrobberRenderer &throbber)
{
    QImage canvas(canvasSize, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    throbber.draw(painter);
    return canvas;
}

// The degrees count clockwise from three o'clock, as the indicator turns.
QColor colorOnRing(const QImage &canvas, double degrees, double radius = ringRadius)
{
    const double radians = degrees * std::acos(-1.0) / 180;
    const QPointF point = QPointF(50, 50) + radius * QPointF(std::cos(radians), std::sin(radians));
    return canvas.pixelColor(static_cast<int>(point.x()), static_cast<int>(point.y()));
}

} // namespace

void tst_ThrobberRenderer::paintsTrackAndArcAtTheirAngles()
{
    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect(QRect(QPoint(0, 0), canvasSize));
    throbber.setBackgroundColor(Qt::blue);
    throbber.setForegcoundColor(Qt::red);

    // The first arc reaches from 5 to 10 degrees. Its round caps are some 6 degrees long.
    const QImage resting = painted(throbber);
    for (int degrees = 3; degrees <= 12; ++degrees)
        QCOMPARE(colorOnRing(resting, degrees), QColor(Qt::red));
    for (int degrees = 20; degrees <= 350; degrees += 5) {
        QCOMPARE(colorOnRing(resting, degrees), QColor(Qt::blue));
        QCOMPARE(colorOnRing(resting, degrees, ringRadius - 7).alpha(), 0);
    }
    QCOMPARE(resting.pixelColor(50, 50).alpha(), 0);
    QCOMPARE(resting.pixelColor(2, 2).alpha(), 0);
    QCOMPARE(resting.pixelColor(97, 97).alpha(), 0);

    // Now the arc reaches from 95 to 95 + 142 degrees: it has turned by 90 degrees and is half grown.
    throbber.addAngles(90, 137);
    const QImage turned = painted(throbber);
    for (int degrees = 95; degrees <= 95 + 140; degrees += 5)
        QCOMPARE(colorOnRing(turned, degrees), QColor(Qt::red));
    for (int degrees = 250; degrees <= 360 + 80; degrees += 5)
        QCOMPARE(colorOnRing(turned, degrees), QColor(Qt::blue));
}

void tst_ThrobberRenderer::paintsTheGapOfTheLongestArc()
{
    ThrobberRenderer throbber(nullptr);
    throbber.setRenderRect(QRect(QPoint(0, 0), canvasSize));
    throbber.addAngles(0, 275);

    // The arc begins at 5 degrees and spans 280.
    const QImage canvas = painted(throbber);
    for (int degrees = 5; degrees <= 285; degrees += 5)
        QCOMPARE(colorOnRing(canvas, degrees), QColor(255, 255, 255, 255));
    for (int degrees = 295; degrees <= 355; degrees += 5) {
        QCOMPARE(colorOnRing(canvas, degrees).alpha(), 30);
        QCOMPARE(colorOnRing(canvas, degrees).red(), 255);
    }
}

void tst_ThrobberRenderer::tickStepsFollowTheInterval_data()
{
    QTest::addColumn<std::chrono::milliseconds>("interval");
    QTest::addColumn<int>("rotation");
    QTest::addColumn<int>("span");

    QTest::newRow("0 ms") << 0ms << 0 << 0;
    QTest::newRow("1 ms") << 1ms << 0 << 0;
    QTest::newRow("2 ms") << 2ms << 0 << 0;
    QTest::newRow("3 ms") << 3ms << 0 << 1;
    QTest::newRow("5 ms") << 5ms << 0 << 1;
    QTest::newRow("6 ms") << 6ms << 1 << 2;
    QTest::newRow("11 ms") << 11ms << 1 << 3;
    QTest::newRow("12 ms") << 12ms << 2 << 4;
    QTest::newRow("16 ms") << 16ms << 2 << 5;
    QTest::newRow("17 ms") << 17ms << 3 << 6;
    QTest::newRow("25 ms") << 25ms << 4 << 9;
    QTest::newRow("50 ms") << 50ms << 9 << 18;
    QTest::newRow("99 ms") << 99ms << 17 << 35;
    // The interval is divided by the period first. These quotients are slightly too small in floating point: 175 ms
    // have a span of 62 degrees instead of 63, and 350 ms have 62 and 125 degrees instead of 63 and 126.
    QTest::newRow("175 ms") << 175ms << 31 << 62;
    QTest::newRow("350 ms") << 350ms << 62 << 125;
    QTest::newRow("1000 ms") << 1000ms << 180 << 360;
}

void tst_ThrobberRenderer::tickStepsFollowTheInterval()
{
    QFETCH(const std::chrono::milliseconds, interval);
    QFETCH(const int, rotation);
    QFETCH(const int, span);

    const auto throbber = makeThrobber();
    throbber->setUpdateInterval(interval);

    Animation expected;
    QList<Angles> seen;
    QList<Angles> steps;
    connect(throbber.get(), &ThrobberRenderer::updated, this, [&] {
        expected.addAngles(rotation, span);
        steps.append(expected.angles());
        seen.append(drawnAngles(*throbber));
    });

    const int ticks = interval < 100ms ? 8 : 1;
    throbber->setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return seen.size() >= ticks; }));
    throbber->setRunning(false);
    QCOMPARE(seen, steps);

    Animation ticking;
    ticking.tick(interval);
    QCOMPARE(steps.first(), ticking.angles());
}

void tst_ThrobberRenderer::updateIntervalIsStored_data()
{
    QTest::addColumn<std::chrono::milliseconds>("interval");

    QTest::newRow("0 ms") << 0ms;
    QTest::newRow("1 ms") << 1ms;
    QTest::newRow("17 ms") << 17ms;
    QTest::newRow("an hour") << std::chrono::milliseconds(1h);
    QTest::newRow("greatest") << std::chrono::milliseconds(maxInt);
#if QT_VERSION < QT_VERSION_CHECK(6, 10, 0)
    // From Qt 6.10 on, QTimer warns of negative intervals.
    QTest::newRow("negative") << -1ms;
    QTest::newRow("least") << std::chrono::milliseconds(minInt);
#endif
}

void tst_ThrobberRenderer::updateIntervalIsStored()
{
    QFETCH(const std::chrono::milliseconds, interval);

    ThrobberRenderer throbber(nullptr);
    throbber.setUpdateInterval(interval);
    QCOMPARE(throbber.updateInterval(), interval);
    QVERIFY(!throbber.isRunning());
}

void tst_ThrobberRenderer::runsWithAnyInterval_data()
{
    updateIntervalIsStored_data();
}

void tst_ThrobberRenderer::runsWithAnyInterval()
{
    QFETCH(const std::chrono::milliseconds, interval);
    if (interval < 0ms) {
        const QRegularExpression refused(QStringLiteral("negative interval"));
        QTest::ignoreMessage(QtWarningMsg, refused);
    }

    ThrobberRenderer throbber(nullptr);
    throbber.setUpdateInterval(interval);
    throbber.setRunning(true);
    QCOMPARE(throbber.isRunning(), interval >= 0ms);
    QCoreApplication::processEvents();
    throbber.setRunning(false);
    QVERIFY(!throbber.isRunning());
}

void tst_ThrobberRenderer::longUpdateIntervalIsNarrowedAsQTimerDoes()
{
    for (const auto interval : {std::chrono::milliseconds((1LL << 32) + 17),
                                std::chrono::milliseconds((5LL << 32) + 1)}) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 10, 0)
        // From Qt 6.10 on, QTimer clamps the interval instead of narrowing it, and warns.
        const QRegularExpression clamped(QStringLiteral("^QTimer::setInterval: interval exceeds"));
        QTest::ignoreMessage(QtWarningMsg, clamped);
        QTest::ignoreMessage(QtWarningMsg, clamped);
#endif
        QTimer reference;
        reference.setInterval(interval);

        ThrobberRenderer throbber(nullptr);
        throbber.setUpdateInterval(interval);
        QCOMPARE(throbber.updateInterval(), reference.intervalAsDuration());
    }
}

void tst_ThrobberRenderer::updateIntervalChangesTheNextStep()
{
    const auto throbber = makeThrobber();
    Animation expected;
    QList<Angles> seen;
    QList<Angles> steps;
    connect(throbber.get(), &ThrobberRenderer::updated, this, [&] {
        expected.tick(throbber->updateInterval());
        steps.append(expected.angles());
        seen.append(drawnAngles(*throbber));
        throbber->setUpdateInterval(throbber->updateInterval() == 17ms ? 30ms : 17ms);
    });

    throbber->setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return seen.size() >= 6; }));
    throbber->setRunning(false);
    QCOMPARE(seen, steps);
}

void tst_ThrobberRenderer::updateIntervalKeepsTheTimersState()
{
    ThrobberRenderer throbber(nullptr);
    throbber.setUpdateInterval(20ms);
    QVERIFY(!throbber.isRunning());

    throbber.setRunning(true);
    throbber.setUpdateInterval(30ms);
    QVERIFY(throbber.isRunning());
    QCOMPARE(throbber.updateInterval(), 30ms);
}

void tst_ThrobberRenderer::stopsTicking()
{
    ThrobberRenderer throbber(nullptr);
    ThrobberRenderer other(nullptr);
    const QSignalSpy updated(&throbber, &ThrobberRenderer::updated);
    const QSignalSpy otherUpdated(&other, &ThrobberRenderer::updated);

    throbber.setRunning(true);
    QVERIFY(throbber.isRunning());
    QVERIFY(QTest::qWaitFor([&] { return updated.size() >= 2; }));

    throbber.setRunning(false);
    QVERIFY(!throbber.isRunning());
    const qsizetype ticks = updated.size();

    // The ticks of the other throbber show that the stopped one had time to tick.
    other.setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return otherUpdated.size() >= 5; }));
    QCOMPARE(updated.size(), ticks);
}

void tst_ThrobberRenderer::startingAndStoppingKeepTheFrame()
{
    const auto throbber = makeThrobber();
    for (const int before : {100, 175, 100, 175}) {
        throbber->addAngles(13, before);
        const Angles frame = drawnAngles(*throbber);

        throbber->setRunning(true);
        QCOMPARE(drawnAngles(*throbber), frame);
        throbber->setRunning(true);
        QCOMPARE(drawnAngles(*throbber), frame);
        throbber->setRunning(false);
        QCOMPARE(drawnAngles(*throbber), frame);
        throbber->setRunning(false);
        QCOMPARE(drawnAngles(*throbber), frame);
    }
}

void tst_ThrobberRenderer::resumesFromTheStoredState()
{
    const auto throbber = makeThrobber();
    Animation expected;
    const QSignalSpy updated(throbber.get(), &ThrobberRenderer::updated);
    QList<Angles> seen;
    QList<Angles> steps;
    connect(throbber.get(), &ThrobberRenderer::updated, this, [&] {
        expected.addAngles(3, 6);
        steps.append(expected.angles());
        seen.append(drawnAngles(*throbber));
    });

    for (int round = 1; round <= 3; ++round) {
        throbber->setRunning(true);
        QVERIFY(QTest::qWaitFor([&] { return updated.size() >= 3 * round; }));
        throbber->setRunning(false);
        throbber->addAngles(3, 6);
    }
    QCOMPARE(seen, steps);
}

void tst_ThrobberRenderer::startingAgainRestartsTheTimer()
{
    TimerWatcher watcher;
    ThrobberRenderer throbber(nullptr);
    const QSignalSpy updated(&throbber, &ThrobberRenderer::updated);

    QTimer *timer = nullptr;
    connect(&throbber, &ThrobberRenderer::updated, this, [&] { timer = watcher.timer(); });
    throbber.setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return updated.size() >= 1; }));
    QVERIFY(timer);

    // A timer gets another id when it is restarted.
    const int firstId = timer->timerId();
    throbber.setRunning(true);
    QVERIFY(throbber.isRunning());
    QCOMPARE_NE(timer->timerId(), firstId);

    const qsizetype ticks = updated.size();
    QVERIFY(QTest::qWaitFor([&] { return updated.size() > ticks; }));
    throbber.setRunning(false);
}

void tst_ThrobberRenderer::canBeStoppedFromItsSignal()
{
    ThrobberRenderer throbber(nullptr);
    ThrobberRenderer other(nullptr);
    const QSignalSpy updated(&throbber, &ThrobberRenderer::updated);
    const QSignalSpy otherUpdated(&other, &ThrobberRenderer::updated);
    connect(&throbber, &ThrobberRenderer::updated, this, [&] { throbber.setRunning(false); });

    throbber.setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return updated.size() == 1; }));
    other.setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return otherUpdated.size() >= 3; }));
    QCOMPARE(updated.size(), 1);
    QVERIFY(!throbber.isRunning());
}

void tst_ThrobberRenderer::timerHasNoParent()
{
    TimerWatcher watcher;
    QObject parent;
    auto *throbber = new ThrobberRenderer(&parent);
    QPointer<QTimer> timer;
    connect(throbber, &ThrobberRenderer::updated, this, [&] { timer = watcher.timer(); });

    throbber->setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return !timer.isNull(); }));
    QCOMPARE(timer->parent(), nullptr);
    QCOMPARE(timer->thread(), throbber->thread());
    QCOMPARE(timer->interval(), 17);
    QVERIFY(timer->isActive());
    QVERIFY(!timer->isSingleShot());
    QVERIFY(throbber->children().isEmpty());

    throbber->setRunning(false);
    QVERIFY(!timer->isActive());

    delete throbber;
    QVERIFY(timer.isNull());
}

void tst_ThrobberRenderer::ticksInTheThreadOfTheThrobber()
{
    QThread worker;
    worker.start();
    ThrobberRenderer throbber(nullptr);
    std::atomic<QThread *> tickedIn = nullptr;
    connect(
        &throbber, &ThrobberRenderer::updated, &throbber,
        [&] { tickedIn = QThread::currentThread(); }, Qt::DirectConnection);

    // The timer stays behind, in the thread that created the throbber.
    throbber.moveToThread(&worker);
    throbber.setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return tickedIn.load(); }));
    throbber.setRunning(false);
    QMetaObject::invokeMethod(
        &throbber, [&] { throbber.moveToThread(thread()); }, Qt::BlockingQueuedConnection);
    worker.quit();
    QVERIFY(worker.wait());

    QCOMPARE(tickedIn.load(), &worker);
}

void tst_ThrobberRenderer::canBeDestroyedWhileRunning()
{
    ThrobberRenderer other(nullptr);
    const QSignalSpy otherUpdated(&other, &ThrobberRenderer::updated);
    int ticks = 0;
    {
        ThrobberRenderer throbber(nullptr);
        connect(&throbber, &ThrobberRenderer::updated, this, [&] { ++ticks; });
        throbber.setRunning(true);
        QVERIFY(QTest::qWaitFor([&] { return ticks >= 1; }));
    }
    const int ticksOfALife = ticks;

    other.setRunning(true);
    QVERIFY(QTest::qWaitFor([&] { return otherUpdated.size() >= 3; }));
    QCOMPARE(ticks, ticksOfALife);
}

void tst_ThrobberRenderer::canBeDestroyedByASlot_data()
{
    QTest::addColumn<bool>("byTheTimer");

    QTest::newRow("of a step by hand") << false;
    QTest::newRow("of a tick") << true;
}

void tst_ThrobberRenderer::canBeDestroyedByASlot()
{
    QFETCH(const bool, byTheTimer);

    const QPointer<ThrobberRenderer> throbber = new ThrobberRenderer(nullptr);
    connect(throbber, &ThrobberRenderer::updated, this, [throbber] { delete throbber; });

    if (byTheTimer)
        throbber->setRunning(true);
    else
        throbber->addAngles(3, 6);

    QVERIFY(QTest::qWaitFor([&] { return throbber.isNull(); }));
}

QTEST_MAIN(tst_ThrobberRenderer)

#include "tst_throbberrenderer.moc"
