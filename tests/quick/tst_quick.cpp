#include "installedtracker.h"
#include "posteritem.h"
#include "quickowners.h"
#include "textitem.h"
#include "throbberitem.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickView>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using ovelin::ResourceInfo;
using ovelin::ResourceOwnerState;

namespace {

constexpr int timeout = 120'000; // milliseconds: enough for a busy machine
constexpr QSize sceneSize(300, 200);
constexpr int fontSize = 20;
const QUrl balloon(u"qrc:/gallery/balloon.png"_s);
const QUrl dam(u"qrc:/gallery/dam.png"_s);

QFont sampleFont(qreal ratio)
{
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(qRound(fontSize * ratio));
    return font;
}

QScreen *screenNamed(const QString &name)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    return *std::ranges::find(screens, name, &QScreen::name);
}

// Paints onto a transparent layer, as an item does, and shows the layer over a white window.
QImage painted(qreal ratio, const std::function<void(QPainter &)> &paint)
{
    QImage layer(sceneSize * ratio, QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    QPainter layerPainter(&layer);
    paint(layerPainter);
    layerPainter.end();

    QImage image(layer.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter(&image).drawImage(0, 0, layer);
    return image;
}

// A window with the item that a piece of QML describes.
class Scene
{
public:
    explicit Scene(const QString &qml)
    {
        QQmlComponent component(&m_engine);
        component.setData((u"import QtQuick; import Gallery; "_s + qml).toUtf8(), QUrl());
        item.reset(qobject_cast<QQuickItem *>(component.create()));
        if (!item)
            qFatal("%s", qPrintable(component.errorString()));
        item->setParentItem(window.contentItem());
        window.setScreen(screenNamed(u"coarse"_s));
        window.resize(sceneSize);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qFatal("The window is not shown.");
    }

    qreal ratio() const { return window.effectiveDevicePixelRatio(); }

    // Renders a frame of the window and returns its pixels.
    QImage image()
    {
        QImage image = window.grabWindow().convertToFormat(QImage::Format_RGB32);
        image.setDevicePixelRatio(1);
        return image;
    }

    QImage image(const QRect &area)
    {
        return image().copy(QRect(area.topLeft() * ratio(), area.size() * ratio()));
    }

    bool isBlank(const QRect &area = {QPoint(), sceneSize})
    {
        const QImage part = image(area);
        QImage blank = part;
        blank.fill(Qt::white);
        return part == blank;
    }

private:
    QQmlEngine m_engine;

public:
    QQuickWindow window;
    std::unique_ptr<QQuickItem> item;
};

struct Run
{
    int exitCode = -1;
    QString errors;
};

// Runs the program without a display.
Run run(const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name :
         {"QT_QPA_PLATFORM", "QT_SCREEN_SCALE_FACTORS", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(name));

    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(QUICKGALLERY_COMMAND), arguments);
    if (!process.waitForFinished(timeout) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {.exitCode = process.exitCode(),
            .errors = QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

class tst_Quick : public QObject
{
    Q_OBJECT

public:
    // The test needs no graphics processor, and has two screens.
    static void initMain()
    {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" SCREENS_FILE);
        qputenv("QT_SCREEN_SCALE_FACTORS", "coarse=1;fine=2");
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void textIsLaidOutInDevicePixels_data();
    void textIsLaidOutInDevicePixels();
    void textFitsItsImplicitWidth_data();
    void textFitsItsImplicitWidth();
    void implicitWidthDoesNotDependOnTheWidth();
    void textFollowsChanges();
    void emptyTextTakesNoSpace();
    void fontSizeMayBeInPoints();
    void textFollowsItsScreen();

    void posterAsksForItsPicture();
    void posterObeysTheDecision();
    void posterMayRemoveAnother();
    void posterShowsAnotherPicture();
    void posterWithoutASourceLeaves();
    void posterThatIsDestroyedLeaves();
    void posterWithoutAPictureWarns();
    void posterOutsideOfAWindowKeepsItsPicture();
    void posterWithoutATrackerIsBlank();

    void ownedTextObeysTheDecision();
    void positionsFollowTheParents();
    void decisionFollowsTheFrames();

    void throbberIsPaintedInTheItem();
    void throbberTurns();
    void throbberStopsWhenItIsNotSeen();

    void galleryShowsAllItems();
    void galleryFollowsTheKeys();
    void galleryDrawsAPicture();
    void galleryShowsAnotherFile();
    void galleryRefuses_data();
    void galleryRefuses();

private:
    std::unique_ptr<InstalledTracker> m_tracker;
    QTemporaryDir m_folder;
};

// CTest runs the test twice: without QT_SCALE_FACTOR, and with the factor 2.
void tst_Quick::initTestCase()
{
    const qreal wanted = qEnvironmentVariable("QT_SCALE_FACTOR", u"1"_s).toDouble();
    QCOMPARE(screenNamed(u"coarse"_s)->devicePixelRatio(), wanted);
}

void tst_Quick::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_tracker = std::make_unique<InstalledTracker>();
}

void tst_Quick::cleanup()
{
    m_tracker.reset();
}

void tst_Quick::textIsLaidOutInDevicePixels_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("maximumLineCount");
    QTest::addColumn<bool>("hyphenation");
    QTest::addColumn<bool>("truncated");

    const QString text = u"Четыре исследователя поднимаются над тайгой"_s;
    QTest::newRow("one line") << u"Новости"_s << 200 << 1 << true << false;
    QTest::newRow("one line, cut") << text << 200 << 1 << true << true;
    QTest::newRow("three lines") << text << 200 << 3 << true << false;
    QTest::newRow("three lines, cut") << text << 120 << 3 << true << true;
    QTest::newRow("three lines without hyphens, cut") << text << 200 << 3 << false << true;
    QTest::newRow("markup is text") << u"<b>Новости</b>"_s << 200 << 1 << true << false;
}

void tst_Quick::textIsLaidOutInDevicePixels()
{
    QFETCH(const QString, text);
    QFETCH(const int, width);
    QFETCH(const int, maximumLineCount);
    QFETCH(const bool, hyphenation);
    QFETCH(const bool, truncated);

    Scene scene(u"TextItem { text: '%1'; width: %2; maximumLineCount: %3; hyphenation: %4; "
                "color: '#205080'; font { family: 'DejaVu Sans'; pixelSize: %5 } }"_s.arg(text)
                    .arg(width)
                    .arg(maximumLineCount)
                    .arg(hyphenation ? u"true"_s : u"false"_s)
                    .arg(fontSize));

    ovelin::TextRenderer renderer;
    renderer.setTextFormat(Qt::PlainText);
    renderer.setTextFont(sampleFont(scene.ratio()));
    renderer.setTextWidth(int(width * scene.ratio()));
    renderer.setMaxLineCount(maximumLineCount);
    renderer.setHyphenationEnabled(hyphenation);
    renderer.setText(text);
    renderer.relayout();
    const QImage expected = painted(scene.ratio(), [&renderer](QPainter &painter) {
        painter.setPen(QColor(u"#205080"_s));
        renderer.draw(painter);
    });

    QCOMPARE(scene.image(), expected);
    QVERIFY(!scene.isBlank());
    QCOMPARE(scene.item->implicitHeight(),
             std::ceil(renderer.boundingSize().height() / scene.ratio()));
    QCOMPARE(scene.item->height(), scene.item->implicitHeight());
    QCOMPARE(scene.item->property("truncated").toBool(), truncated);
}

void tst_Quick::textFitsItsImplicitWidth_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("longestParagraph");
    QTest::addColumn<int>("lines");

    QTest::newRow("letter") << u"Я"_s << u"Я"_s << 1;
    QTest::newRow("sentence") << u"Четыре исследователя"_s << u"Четыре исследователя"_s << 1;
    QTest::newRow("kerned") << u"AVATAR To Ty"_s << u"AVATAR To Ty"_s << 1;
    QTest::newRow("paragraphs") << u"one\\nlongest of all\\ntwo"_s << u"longest of all"_s << 3;
}

// A Qt Quick layout sets the width of an item to its implicit width.
void tst_Quick::textFitsItsImplicitWidth()
{
    QFETCH(const QString, text);
    QFETCH(const QString, longestParagraph);
    QFETCH(const int, lines);

    Scene scene(u"TextItem { text: '%1'; maximumLineCount: 3; "
                "font { family: 'DejaVu Sans'; pixelSize: %2 } }"_s.arg(text)
                    .arg(fontSize));
    scene.image();
    const qreal width = scene.item->implicitWidth();
    const QFontMetricsF metrics(sampleFont(scene.ratio()));
    const qreal needed = metrics.horizontalAdvance(longestParagraph) / scene.ratio();
    QVERIFY2(width >= needed && width <= needed + 5, qPrintable(QString::number(width)));
    QCOMPARE(scene.item->width(), width);

    scene.item->setWidth(width);
    scene.image();
    QVERIFY(!scene.item->property("truncated").toBool());
    QCOMPARE(scene.item->implicitWidth(), width);
    QCOMPARE(qRound(scene.item->height() * scene.ratio() / metrics.height()), lines);
}

// A Qt Quick layout may narrow the item. It needs the unchanged implicit width to widen the item again.
void tst_Quick::implicitWidthDoesNotDependOnTheWidth()
{
    Scene scene(u"TextItem { text: 'Четыре исследователя'; maximumLineCount: 3 }"_s);
    scene.image();
    const qreal width = scene.item->implicitWidth();
    const qreal height = scene.item->implicitHeight();
    scene.item->setWidth(80);
    scene.image();
    QCOMPARE(scene.item->implicitWidth(), width);
    QVERIFY(scene.item->implicitHeight() > height);

    scene.item->resetWidth();
    scene.image();
    QCOMPARE(scene.item->width(), width);
    QCOMPARE(scene.item->implicitHeight(), height);
    QVERIFY(!scene.item->property("truncated").toBool());
}

void tst_Quick::textFollowsChanges()
{
    Scene scene(u"TextItem { text: 'Новости'; width: 200; font.pixelSize: 20 }"_s);
    const QSignalSpy truncated(qobject_cast<TextItem *>(scene.item.get()),
                               &TextItem::truncatedChanged);
    QImage before = scene.image();
    const auto changed = [&scene, &before](const char *property, const QVariant &value) {
        scene.item->setProperty(property, value);
        const QImage after = scene.image();
        return std::exchange(before, after) != after;
    };

    QVERIFY(changed("color", QColor(Qt::red)));
    QVERIFY(changed("text", u"Четыре исследователя поднимаются"_s));
    QCOMPARE(truncated.count(), 1);
    QVERIFY(changed("hyphenation", false) == false);
    QVERIFY(changed("maximumLineCount", 3));
    QCOMPARE(truncated.count(), 2);
    QVERIFY(changed("width", 100));
    const qreal height = scene.item->height();
    QVERIFY(changed("font", sampleFont(2)));
    QVERIFY(scene.item->height() > height);
}

void tst_Quick::emptyTextTakesNoSpace()
{
    Scene scene(u"TextItem { text: 'Новости'; width: 40 }"_s);
    scene.image();
    QVERIFY(scene.item->property("truncated").toBool());
    scene.item->setProperty("text", QString());
    QVERIFY(scene.isBlank());
    QCOMPARE(scene.item->implicitWidth(), 0.);
    QCOMPARE(scene.item->implicitHeight(), 0.);
    QVERIFY(!scene.item->property("truncated").toBool());
}

void tst_Quick::fontSizeMayBeInPoints()
{
    Scene scene(u"TextItem { text: 'Новости'; font { family: 'DejaVu Sans'; pointSize: 12 } }"_s);
    QVERIFY(!scene.isBlank());
    const qreal pointsPerInch = 72;
    const qreal expected = 12 * scene.window.screen()->logicalDotsPerInch() / pointsPerInch;
    const qreal lineHeight = QFontMetricsF(sampleFont(scene.ratio())).height() / fontSize;
    QVERIFY(std::abs(scene.item->height() - expected * lineHeight / scene.ratio()) <= 2);
}

void tst_Quick::textFollowsItsScreen()
{
    Scene scene(
        u"TextItem { text: 'Новости'; font { family: 'DejaVu Sans'; pixelSize: %1 } }"_s.arg(
            fontSize));
    const auto expected = [](qreal ratio) {
        return painted(ratio, [ratio](QPainter &painter) {
            ovelin::TextRenderer renderer;
            renderer.setTextFont(sampleFont(ratio));
            renderer.setText(u"Новости"_s);
            renderer.relayout();
            painter.setPen(Qt::black);
            renderer.draw(painter);
        });
    };
    const qreal ratio = scene.ratio();
    QCOMPARE(scene.image(), expected(ratio));

    scene.window.setScreen(screenNamed(u"fine"_s));
    scene.window.resize(sceneSize);
    QCOMPARE(scene.ratio(), 2 * ratio);
    QCOMPARE(scene.image(), expected(2 * ratio));

    // The item moves into another window, which is on the coarse screen.
    Scene other(u"Item {}"_s);
    QCOMPARE(other.ratio(), ratio);
    scene.item->setParentItem(other.item.get());
    QCOMPARE(other.image(), expected(ratio));
}

void tst_Quick::posterAsksForItsPicture()
{
    Scene scene(u"PosterItem { width: 160; height: 90; source: '%1' }"_s.arg(balloon.toString()));
    QCOMPARE(m_tracker->resources().size(), std::size_t(1));
    const ResourceInfo &picture = m_tracker->resources().front();
    QCOMPARE(picture.type, ResourceInfo::Image);
    QCOMPARE(picture.url, balloon);
    QCOMPARE(picture.ownerState->status, ResourceOwnerState::CreationRequested);
    QCOMPARE(picture.ownerState->owner->resourceOwnerObject(), scene.item.get());
    QVERIFY(!scene.item->property("hasPicture").toBool());
    QVERIFY(scene.isBlank());
}

void tst_Quick::posterObeysTheDecision()
{
    Scene scene(u"Item { "
                "PosterLimit { objectName: 'limit'; limit: 1 } "
                "PosterItem { width: 100; height: 90; source: '%1' } "
                "PosterItem { x: 100; width: 100; height: 90; source: '%2' } }"_s.arg(
                    balloon.toString(), dam.toString()));
    const QList<PosterItem *> posters = scene.item->findChildren<PosterItem *>();
    const auto show = [&](bool first, bool second) {
        return QTest::qWaitFor([&] {
                   return posters[0]->hasPicture() == first && posters[1]->hasPicture() == second;
               })
               && scene.isBlank({0, 0, 100, 90}) != first
               && scene.isBlank({100, 0, 100, 90}) != second;
    };
    const auto statuses = [this] {
        QList<ResourceOwnerState::Status> result;
        for (const ResourceInfo &resource : m_tracker->resources())
            result += resource.ownerState->status;
        return result;
    };
    const auto allowed = ResourceOwnerState::CreationAllowed;
    const auto denied = ResourceOwnerState::CreationDenied;
    const auto cleared = ResourceOwnerState::Cleared;
    QObject *limit = scene.item->findChild<QObject *>(u"limit"_s);

    QVERIFY(show(true, false));
    QCOMPARE(statuses(), QList({allowed, denied}));
    const QSignalSpy changes(posters[0], &PosterItem::pictureChanged);
    limit->setProperty("limit", 2);
    QVERIFY(show(true, true));
    QCOMPARE(changes.count(), 0);
    limit->setProperty("limit", 0);
    QVERIFY(show(false, false));
    QCOMPARE(statuses(), QList({cleared, cleared}));

    // When an item gives up its picture, the next item may show its own.
    limit->setProperty("limit", 1);
    QVERIFY(show(true, false));
    posters[0]->setProperty("source", QUrl());
    QVERIFY(show(false, true));
}

void tst_Quick::posterMayRemoveAnother()
{
    const Scene scene(
        u"Item { PosterLimit { limit: 2 } "
        "PosterItem { source: '%1'; onHasPictureChanged: other.source = '' } "
        "PosterItem { id: other; source: '%2' } }"_s.arg(balloon.toString(), dam.toString()));
    const QList<PosterItem *> posters = scene.item->findChildren<PosterItem *>();
    QVERIFY(QTest::qWaitFor([&posters] { return posters[0]->hasPicture(); }));
    QVERIFY(!posters[1]->hasPicture());
}

void tst_Quick::posterShowsAnotherPicture()
{
    Scene scene(u"PosterItem { width: 160; height: 90; source: '%1' }"_s.arg(balloon.toString()));
    const auto state = m_tracker->resources().front().ownerState;
    m_tracker->setStatus(state, ResourceOwnerState::CreationAllowed);
    m_tracker->allowResources(state);
    const QImage before = scene.image();

    scene.item->setProperty("source", dam);
    QCOMPARE(m_tracker->resources().size(), std::size_t(1));
    QCOMPARE(m_tracker->resources().front().url, dam);
    QVERIFY(scene.item->property("hasPicture").toBool());
    QVERIFY(!scene.isBlank());
    QVERIFY(scene.image() != before);

    m_tracker->setStatus(state, ResourceOwnerState::CreationDenied);
    m_tracker->releaseResources(state);
    scene.item->setProperty("source", balloon);
    QVERIFY(!scene.item->property("hasPicture").toBool());
    QVERIFY(scene.isBlank());
}

void tst_Quick::posterWithoutASourceLeaves()
{
    Scene scene(u"Item { PosterLimit { limit: 1 } "
                "PosterItem { width: 160; height: 90; source: '%1' } }"_s.arg(balloon.toString()));
    QVERIFY(QTest::qWaitFor([&scene] { return !scene.isBlank(); }));
    scene.item->findChild<PosterItem *>()->setProperty("source", QUrl());
    QVERIFY(m_tracker->owners().empty());
    QVERIFY(scene.isBlank());
}

void tst_Quick::posterThatIsDestroyedLeaves()
{
    Scene scene(u"PosterItem { objectName: 'poster'; source: '%1' }"_s.arg(balloon.toString()));
    m_tracker->setMessagesEnabled(true);
    scene.item.reset();
    QVERIFY(m_tracker->owners().empty());
    QCOMPARE(m_tracker->messages().size(), 1);
    QCOMPARE(m_tracker->messages().constFirst().objectName, u"poster"_s);
    QVERIFY(m_tracker->messages().constFirst().className.startsWith(u"PosterItem"_s));
}

void tst_Quick::posterWithoutAPictureWarns()
{
    Scene scene(u"PosterItem { source: 'qrc:/gallery/missing.png' }"_s);
    const auto state = m_tracker->resources().front().ownerState;
    m_tracker->setStatus(state, ResourceOwnerState::CreationAllowed);
    const QRegularExpression warning(u"There is no picture in qrc:/gallery/missing.png"_s);
    QTest::ignoreMessage(QtWarningMsg, warning);
    m_tracker->allowResources(state);
    QVERIFY(!scene.item->property("hasPicture").toBool());
}

// Qt Quick calls QQuickItem::releaseResources() when an item leaves its window.
void tst_Quick::posterOutsideOfAWindowKeepsItsPicture()
{
    Scene scene(u"PosterItem { width: 160; height: 90; source: '%1' }"_s.arg(balloon.toString()));
    const auto state = m_tracker->resources().front().ownerState;
    m_tracker->setStatus(state, ResourceOwnerState::CreationAllowed);
    m_tracker->allowResources(state);
    const QImage before = scene.image();

    scene.item->setParentItem(nullptr);
    QVERIFY(scene.isBlank());
    QVERIFY(scene.item->property("hasPicture").toBool());
    scene.item->setParentItem(scene.window.contentItem());
    QCOMPARE(scene.image(), before);
}

void tst_Quick::posterWithoutATrackerIsBlank()
{
    ovelin::setSceneResourceTracker(nullptr);
    Scene scene(u"Item { PosterLimit { limit: 1 } "
                "PosterItem { width: 160; height: 90; source: '%1' } }"_s.arg(balloon.toString()));
    QVERIFY(scene.isBlank());
}

void tst_Quick::ownedTextObeysTheDecision()
{
    Scene scene(u"Item { width: 200; height: 40 }"_s);
    auto *text = new OwnedTextItem;
    text->setParent(scene.item.get());
    text->setParentItem(scene.item.get());
    text->setProperty("text", u"Новости"_s);
    text->setProperty("font", sampleFont(1));
    const auto decide = [this](ResourceOwnerState::Status status) {
        const auto state = m_tracker->resources().front().ownerState;
        m_tracker->setStatus(state, status);
        if (status == ResourceOwnerState::CreationAllowed)
            m_tracker->allowResources(state);
        else
            m_tracker->releaseResources(state);
    };
    QCOMPARE(m_tracker->resources().front().type, ResourceInfo::PaintedItem);
    QVERIFY(scene.isBlank());

    decide(ResourceOwnerState::CreationAllowed);
    const QImage shown = scene.image();
    QVERIFY(!scene.isBlank());
    decide(ResourceOwnerState::Cleared);
    QVERIFY(scene.isBlank());
    text->setProperty("color", QColor(Qt::red));
    QVERIFY(scene.isBlank());

    text->setProperty("color", QColor(Qt::black));
    decide(ResourceOwnerState::CreationAllowed);
    QCOMPARE(scene.image(), shown);
    m_tracker->setMessagesEnabled(true);
    delete text;
    QVERIFY(m_tracker->owners().empty());
    QCOMPARE(m_tracker->messages().constLast().className, u"OwnedTextItem"_s);
    QVERIFY(scene.isBlank());
}

void tst_Quick::positionsFollowTheParents()
{
    const Scene scene(
        u"Item { x: 10; Item { objectName: 'row'; y: 5; "
        "PosterItem { x: 20; width: 100; height: 90; source: '%1' } } }"_s.arg(balloon.toString()));
    const auto state = m_tracker->resources().front().ownerState;
    readPositions(*m_tracker);
    QCOMPARE(state->geometry, QRect(30, 5, 100, 90));
    scene.item->findChild<QQuickItem *>(u"row"_s)->setX(-200);
    readPositions(*m_tracker);
    QCOMPARE(state->geometry, QRect(-170, 5, 100, 90));
}

// Shows that afterAnimating() is emitted in the GUI thread, and that a frame follows when an item moves.
void tst_Quick::decisionFollowsTheFrames()
{
    const Scene scene(
        u"Item { PosterItem { width: 100; height: 90; source: '%1' } }"_s.arg(balloon.toString()));
    const auto state = m_tracker->resources().front().ownerState;
    QTimer decision;
    decision.setSingleShot(true);
    decision.setInterval(0);
    connect(&decision, &QTimer::timeout, this, [this] { readPositions(*m_tracker); });
    connect(
        &scene.window, &QQuickWindow::afterAnimating, &decision,
        [&decision] {
            if (QThread::currentThread() == qApp->thread())
                decision.start();
        },
        Qt::DirectConnection);

    scene.item->setX(40);
    QVERIFY(QTest::qWaitFor([&state] { return state->geometry == QRect(40, 0, 100, 90); }));
}

void tst_Quick::throbberIsPaintedInTheItem()
{
    Scene scene(u"ThrobberItem { width: 64; height: 80; color: 'red'; running: false }"_s);
    const QImage expected = painted(scene.ratio(), [&scene](QPainter &painter) {
        ovelin::ThrobberRenderer throbber;
        throbber.setRenderRect({0, 0, 64, 80});
        throbber.setPenWidth(4);
        throbber.setForegcoundColor(Qt::red);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scene.ratio(), scene.ratio());
        throbber.draw(painter);
    });
    QCOMPARE(scene.image(), expected);
    QVERIFY(!scene.isBlank());
}

void tst_Quick::throbberTurns()
{
    Scene scene(u"ThrobberItem { width: 60; height: 60; color: 'red' }"_s);
    const QImage before = scene.image();
    QVERIFY(QTest::qWaitFor([&] { return scene.image() != before; }));
}

void tst_Quick::throbberStopsWhenItIsNotSeen()
{
    Scene scene(u"Item { ThrobberItem { width: 60; height: 60 } }"_s);
    auto *throbber = scene.item->findChild<ThrobberItem *>();
    QVERIFY(throbber->isTurning());

    throbber->setProperty("running", false);
    QVERIFY(!throbber->isTurning());
    throbber->setProperty("running", true);
    QVERIFY(throbber->isTurning());

    scene.item->setVisible(false);
    QVERIFY(!throbber->isTurning());
    scene.item->setVisible(true);
    QVERIFY(throbber->isTurning());

    scene.window.hide();
    QVERIFY(!throbber->isTurning());
    scene.window.show();
    QVERIFY(throbber->isTurning());

    QQuickWindow hiddenWindow;
    scene.item->setParentItem(hiddenWindow.contentItem());
    QVERIFY(!throbber->isTurning());
    scene.item->setParentItem(scene.window.contentItem());
    QVERIFY(throbber->isTurning());
    scene.item->setParentItem(nullptr);
    QVERIFY(!throbber->isTurning());
}

void tst_Quick::galleryShowsAllItems()
{
    QQuickView view(QUrl(u"qrc:/qt/qml/Gallery/Main.qml"_s));
    QCOMPARE(view.status(), QQuickView::Ready);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));

    const QList<PosterItem *> posters = view.rootObject()->findChildren<PosterItem *>();
    const QList<ThrobberItem *> throbbers = view.rootObject()->findChildren<ThrobberItem *>();
    QCOMPARE(posters.size(), 4);
    QCOMPARE(throbbers.size(), 4);
    QVERIFY(QTest::qWaitFor(
        [&] { return std::ranges::count_if(posters, &PosterItem::hasPicture) == 3; }));
    for (qsizetype i = 0; i < 4; ++i)
        QVERIFY(throbbers[i]->isTurning() != posters[i]->hasPicture());

    // Every text has a height and ends left of the window's right edge.
    const QList<TextItem *> texts = view.rootObject()->findChildren<TextItem *>();
    QCOMPARE(texts.size(), 8);
    for (const TextItem *text : texts) {
        QVERIFY(text->height() > 0);
        QVERIFY(text->mapToScene({text->width(), 0}).x() < view.width());
    }
}

void tst_Quick::galleryFollowsTheKeys()
{
    QQuickView view(QUrl(u"qrc:/qt/qml/Gallery/Main.qml"_s));
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const QSignalSpy quit(view.engine(), &QQmlEngine::quit);
    const QList<PosterItem *> posters = view.rootObject()->findChildren<PosterItem *>();
    const QList<TextItem *> texts = view.rootObject()->findChildren<TextItem *>();
    const auto pictures = [&] { return std::ranges::count_if(posters, &PosterItem::hasPicture); };
    const auto hasTextOf = [&texts](qreal width) {
        return QTest::qWaitFor(
            [&] { return std::ranges::find(texts, width, &QQuickItem::width) != texts.end(); });
    };

    QTest::keyClick(&view, Qt::Key_Down);
    QVERIFY(QTest::qWaitFor([&] { return pictures() == 2; }));
    QTest::keyClick(&view, Qt::Key_Up);
    QTest::keyClick(&view, Qt::Key_Up);
    QVERIFY(QTest::qWaitFor([&] { return pictures() == 4; }));

    QVERIFY(hasTextOf(360));
    QTest::keyClick(&view, Qt::Key_Right);
    QVERIFY(hasTextOf(380));
    QTest::keyClick(&view, Qt::Key_Left);
    QVERIFY(hasTextOf(360));

    QTest::keyClick(&view, Qt::Key_Escape);
    QCOMPARE(quit.count(), 1);
}

void tst_Quick::galleryDrawsAPicture()
{
    const QString file = m_folder.filePath(u"gallery.png"_s);
    const Run drawn = run({u"--render"_s, file});
    QCOMPARE(drawn.errors, QString());
    QCOMPARE(drawn.exitCode, 0);
    QCOMPARE(QImage(file).size(), QSize(960, 420) * screenNamed(u"coarse"_s)->devicePixelRatio());
}

void tst_Quick::galleryShowsAnotherFile()
{
    QFile qml(m_folder.filePath(u"text.qml"_s));
    QVERIFY(qml.open(QIODevice::WriteOnly));
    qml.write("import QtQuick; import Gallery; TextItem { text: 'News'; width: 80; height: 40 }");
    qml.close();

    const QString picture = m_folder.filePath(u"text.png"_s);
    const Run drawn = run({u"--render"_s, picture, qml.fileName()});
    QCOMPARE(drawn.errors, QString());
    QCOMPARE(drawn.exitCode, 0);
    QCOMPARE(QImage(picture).size(), QSize(80, 40) * screenNamed(u"coarse"_s)->devicePixelRatio());
}

void tst_Quick::galleryRefuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");

    QFile broken(m_folder.filePath(u"broken.qml"_s));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("import QtQuick; Unknown {}");

    QTest::newRow("unknown option") << QStringList(u"--bogus"_s) << 1 << u"Unknown option"_s;
    QTest::newRow("unwritable picture")
        << QStringList{u"--render"_s, m_folder.filePath(u"none/gallery.png"_s)} << 1
        << u"cannot be written"_s;
    const QString picture = m_folder.filePath(u"refused.png"_s);
    QTest::newRow("QML that does not load")
        << QStringList{u"--render"_s, picture, broken.fileName()} << 2
        << u"Unknown is not a type"_s;
    QTest::newRow("missing QML") << QStringList{u"--render"_s, picture,
                                                m_folder.filePath(u"missing.qml"_s)}
                                 << 2 << u"missing.qml cannot be shown"_s;
}

void tst_Quick::galleryRefuses()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const int, exitCode);
    QFETCH(const QString, error);

    const Run refused = run(arguments);
    QCOMPARE(refused.exitCode, exitCode);
    QVERIFY2(refused.errors.contains(error), qPrintable(refused.errors));
}

QTEST_MAIN(tst_Quick)
#include "tst_quick.moc"
