#include <ovelin/abstractresourceowner.h>
#include <ovelin/brushes.h>
#include <ovelin/platformnativeinterface.h>
#include <ovelin/sceneresourcetracker.h>
#include <ovelin/textrenderer.h>
#include <ovelin/throbberrenderer.h>

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

namespace {

//! [owner]
class Poster : public QObject, public ovelin::AbstractResourceOwner
{
public:
    bool show(const QUrl &url) { return registerImage(1, url); }
    void hide() { unregisterResources(); }

    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override { m_image = QImage(120, 180, QImage::Format_RGB32); }
    void releaseResources() override { m_image = {}; }

    bool hasImage() const { return !m_image.isNull(); }

private:
    QImage m_image;
};
//! [owner]

//! [decide]
// Whoever comes first may have its resources, up to a limit.
void decide(ovelin::SceneResourceTracker &tracker)
{
    using State = ovelin::ResourceOwnerState;
    constexpr int limit = 2;

    int allowed = 0;
    for (const ovelin::ResourceInfo &resource : tracker.resources())
        allowed += resource.ownerState->status == State::CreationAllowed;

    for (const auto &[owner, state] : tracker.owners()) {
        if (state->status != State::CreationRequested)
            continue;
        const bool fits = allowed + state->resourceCount <= limit;
        tracker.setStatus(state, fits ? State::CreationAllowed : State::CreationDenied);
        if (fits) {
            allowed += state->resourceCount;
            tracker.allowResources(state);
        }
    }
}
//! [decide]

QFont sampleFont()
{
    QFont font("DejaVu Sans");
    font.setPixelSize(20);
    return font;
}

QString sampleText()
{
    return "Четыре исследователя поднимаются над тайгой на воздушном шаре.";
}

QImage canvas()
{
    QImage image(480, 240, QImage::Format_RGB32);
    image.fill(Qt::black);
    return image;
}

bool isBlank(const QImage &image)
{
    return image == canvas();
}

} // namespace

class tst_Snippets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resources();
    void messageLog();
    void text();
    void lookingAtALayout();
    void throbber();
    void throbberByHand();
    void gradient();
    void tiledPixmap();
};

void tst_Snippets::resources()
{
    //! [install]
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    QObject::connect(&tracker, &ovelin::SceneResourceTracker::resourceOwnerAdded, &tracker,
                     [&tracker] { decide(tracker); });
    //! [install]

    Poster first;
    Poster second;
    Poster third;
    for (Poster *poster : {&first, &second, &third})
        QVERIFY(poster->show(QUrl("qrc:/poster.png")));
    QVERIFY(first.isResourcesAllowed() && first.hasImage());
    QVERIFY(second.isResourcesAllowed() && second.hasImage());
    QVERIFY(!third.isResourcesAllowed() && !third.hasImage());

    //! [release]
    const auto state = tracker.owners().at(&first);
    tracker.setStatus(state, ovelin::ResourceOwnerState::Cleared);
    tracker.releaseResources(state);
    //! [release]
    QVERIFY(!first.hasImage());

    first.hide();
    QCOMPARE(tracker.owners().size(), 2);
    ovelin::setSceneResourceTracker(nullptr);
}

void tst_Snippets::messageLog()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    QStringList lines;

    //! [log]
    tracker.setMessagesEnabled(true);
    QObject::connect(&tracker, &ovelin::SceneResourceTracker::messagesAdded, &tracker, [&] {
        const auto message = tracker.messages().constLast();
        lines += QString("%1 %2 %3").arg(message.type, message.source, message.status);
    });
    //! [log]

    Poster poster;
    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    QCOMPARE(lines, QStringList("image qrc:/poster.png creation_requested"));
    ovelin::setSceneResourceTracker(nullptr);
}

void tst_Snippets::text()
{
    const QRect box(20, 20, 200, 100);
    QImage image = canvas();
    QPainter painter(&image);
    painter.setPen(Qt::white);

    //! [text]
    ovelin::TextRenderer description;
    description.setTextFont(sampleFont()); // its size must be set in pixels
    description.setTextTopLeft(box.topLeft());
    description.setTextWidth(box.width());
    description.setAvailableHeight(box.height());
    description.setMaxLineCount(3);
    description.setTextAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    description.setText(sampleText());

    description.relayout();    // when something has changed
    description.draw(painter); // as often as it is to be seen
    //! [text]

    painter.end();
    QVERIFY(!isBlank(image));
    QVERIFY(description.displayText().contains('\n'));
}

void tst_Snippets::lookingAtALayout()
{
    ovelin::TextRenderer description;
    description.setTextFont(sampleFont());
    description.setTextWidth(200);
    description.setMaxLineCount(3);
    description.setText(sampleText());

    //! [inspect]
    description.relayout();
    const QStringList lines = description.displayText().split('\n');
    for (const QString &line : lines)
        qInfo("|%s|", qPrintable(line));
    qInfo("elided: %d, size: %dx%d", description.isTextElided(), description.boundingSize().width(),
          description.boundingSize().height());
    //! [inspect]
    QVERIFY(lines.size() > 1);
}

void tst_Snippets::throbber()
{
    QImage image = canvas();
    QPainter painter(&image);
    int repaints = 0;
    const auto repaint = [&repaints] { ++repaints; };

    //! [throbber]
    ovelin::ThrobberRenderer throbber;
    throbber.setRenderRect(QRect(20, 20, 120, 120));
    QObject::connect(&throbber, &ovelin::ThrobberRenderer::updated, repaint);
    throbber.setRunning(true);

    // and where the window paints:
    painter.setRenderHint(QPainter::Antialiasing);
    throbber.draw(painter);
    //! [throbber]

    painter.end();
    QVERIFY(!isBlank(image));
    QVERIFY(QTest::qWaitFor([&repaints] { return repaints > 0; }));
}

void tst_Snippets::throbberByHand()
{
    ovelin::ThrobberRenderer throbber;
    const QSignalSpy updated(&throbber, &ovelin::ThrobberRenderer::updated);

    //! [byhand]
    const int rotation = 3; // degrees
    const int growth = 6;
    throbber.addAngles(rotation, growth);
    //! [byhand]

    QCOMPARE(updated.count(), 1);
}

void tst_Snippets::gradient()
{
    const QRect panel(0, 0, 480, 40);
    QImage image = canvas();
    QPainter painter(&image);

    //! [gradient]
    const int length = ovelin::chooseGradientLength(panel.width());
    QLinearGradient gradient(0, 0, length, 0);
    gradient.setColorAt(0, Qt::darkBlue);
    gradient.setColorAt(1, Qt::white);
    const QBrush brush = ovelin::createTexturedBrush(length, gradient);

    painter.fillRect(panel, brush);
    //! [gradient]

    painter.end();
    QCOMPARE(length, 48);
    QCOMPARE(image.pixel(0, 0), image.pixel(length, 0));
    QVERIFY(image.pixel(0, 0) != image.pixel(length - 1, 0));
}

void tst_Snippets::tiledPixmap()
{
    const QSize size(64, 64);
    const auto paintBackground = [size](QPainter &painter) {
        painter.fillRect(QRect(QPoint(), size), Qt::darkBlue);
    };

    //! [tiled]
    // Once, behind the QGuiApplication:
    ovelin::PlatformNativeInterface::init();
    ovelin::PlatformNativeInterface platform;
    ovelin::setPlatformNativeInterface(&platform);

    // Where a background is needed:
    QPixmap background;
    if (platform.isTiledPixmapAvailable()) {
        background = platform.createTiledPixmap(size, paintBackground);
    } else {
        background = QPixmap(size);
        QPainter painter(&background);
        paintBackground(painter);
    }
    //! [tiled]

    QCOMPARE(background.size(), size);
    QCOMPARE(background.toImage().pixelColor(0, 0), QColor(Qt::darkBlue));
    ovelin::setPlatformNativeInterface(nullptr);
}

QTEST_MAIN(tst_Snippets)
#include "tst_snippets.moc"
