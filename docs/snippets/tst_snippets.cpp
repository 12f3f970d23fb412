#include <ovelin/abstractresourceowner.h>
#include <ovelin/brushes.h>
#include <ovelin/platformnativeinterface.h>
#include <ovelin/sceneresourcetracker.h>
#include <ovelin/textrenderer.h>
#include <ovelin/throbberrenderer.h>

#include <QFontMetricsF>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QtMath>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

namespace {

//! [owner]
class Poster : public QObject, public ovelin::AbstractResourceOwner
{
public:
    bool show(const QUrl &url) { return registerImage(1, url); }
    void hide()
    {
        m_image = {};
        unregisterResources();
    }

    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override { m_image = QImage(120, 180, QImage::Format_RGB32); }
    void releaseResources() override { m_image = {}; }

    bool hasImage() const { return !m_image.isNull(); }

private:
    QImage m_image;
};
//! [owner]

class ChangingPoster : public Poster
{
public:
    //! [change]
    void change(const QUrl &url)
    {
        releaseResources(); // drops the old picture
        if (registerImage(1, url) && isResourcesAllowed())
            allowResources(); // creates the new one
    }
    //! [change]
};

//! [decide]
using StatePointer = QSharedPointer<ovelin::ResourceOwnerState>;

// True if the tracker still lists the state: an owner that was told before may have removed the state.
bool isListed(const ovelin::SceneResourceTracker &tracker, const StatePointer &state)
{
    const auto known = tracker.owners().find(state->owner);
    return known != tracker.owners().end() && known->second == state;
}

// Allows owners their resources until the limit is reached.
void decide(ovelin::SceneResourceTracker &tracker)
{
    using State = ovelin::ResourceOwnerState;
    constexpr int limit = 2; // resources

    // A copy, because an owner that is told may unregister itself, which changes owners().
    QList<StatePointer> requests;
    int allowed = 0;
    for (const auto &[owner, state] : tracker.owners()) {
        if (state->status == State::CreationRequested)
            requests.append(state);
        else if (state->status == State::CreationAllowed)
            allowed += state->resourceCount;
    }

    for (const StatePointer &state : std::as_const(requests)) {
        if (!isListed(tracker, state))
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
    void releasing();
    void hiding();
    void anotherPicture();
    void anotherPictureThatIsNotAllowed();
    void newRecordAfterLeaving();
    void entries();
    void decisionsAllowOwnersToLeave_data();
    void decisionsAllowOwnersToLeave();
    void firstRegistration();
    void refusedRegistration();
    void messageLog();
    void text();
    void textFromElsewhere();
    void newlinesAndTheLineLimit();
    void newlinesOnOneLine();
    void heightOfLines_data();
    void heightOfLines();
    void emptyText();
    void pixelRatio();
    void lookingAtALayout();
    void throbber();
    void throbberByHand();
    void gradientDown();
    void gradientAcross();
    void gradientRepeated();
    void tiledPixmap();
    void version();
};

void tst_Snippets::resources()
{
    //! [install]
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);

    // The event loop makes one decision for any number of changes.
    QTimer decision;
    decision.setSingleShot(true);
    decision.setInterval(0);
    QObject::connect(&tracker, &ovelin::SceneResourceTracker::resourcesChanged, &decision,
                     qOverload<>(&QTimer::start));
    QObject::connect(&decision, &QTimer::timeout, &tracker, [&tracker] { decide(tracker); });
    //! [install]

    std::array<Poster, 3> posters;
    for (Poster &poster : posters)
        QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    const auto imageCount = [&] { return std::ranges::count_if(posters, &Poster::hasImage); };
    QCOMPARE(imageCount(), 0);
    QVERIFY(QTest::qWaitFor([&] { return imageCount() > 0; }));
    QCOMPARE(imageCount(), 2);
    for (const Poster &poster : posters)
        QCOMPARE(poster.isResourcesAllowed(), poster.hasImage());
    ovelin::setSceneResourceTracker(nullptr);
}

void tst_Snippets::releasing()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    Poster poster;
    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    decide(tracker);
    QVERIFY(poster.hasImage());

    //! [release]
    const auto state = tracker.owners().at(&poster);
    tracker.setStatus(state, ovelin::ResourceOwnerState::Cleared);
    tracker.releaseResources(state);
    //! [release]
    QVERIFY(!poster.hasImage());
    QVERIFY(!poster.isResourcesAllowed());
    ovelin::setSceneResourceTracker(nullptr);
}

// Shows that unregistering does not call releaseResources(), as the guide says.
void tst_Snippets::hiding()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    Poster poster;
    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    decide(tracker);
    poster.unregisterResources();
    QVERIFY(poster.hasImage());

    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    poster.hide();
    QVERIFY(!poster.hasImage());
    QVERIFY(tracker.owners().empty());
    ovelin::setSceneResourceTracker(nullptr);
}

void tst_Snippets::anotherPicture()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    ChangingPoster poster;
    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    decide(tracker);

    poster.releaseResources();
    QVERIFY(poster.show(QUrl("qrc:/another.png")));
    decide(tracker);
    QVERIFY(poster.isResourcesAllowed());
    QVERIFY(!poster.hasImage()); // allowResources() was not called again

    poster.change(QUrl("qrc:/third.png"));
    QVERIFY(poster.hasImage());
    QCOMPARE(tracker.resources().front().url, QUrl("qrc:/third.png"));
    ovelin::setSceneResourceTracker(nullptr);
}

void tst_Snippets::anotherPictureThatIsNotAllowed()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    ChangingPoster poster;
    poster.change(QUrl("qrc:/poster.png"));
    QVERIFY(!poster.hasImage());
    ovelin::setSceneResourceTracker(nullptr);

    ChangingPoster refused;
    refused.change(QUrl("qrc:/poster.png"));
    QVERIFY(!refused.hasImage());
}

void tst_Snippets::newRecordAfterLeaving()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    Poster poster;
    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    decide(tracker);
    tracker.owners().at(&poster)->geometry = {10, 20, 120, 180};

    poster.hide();
    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    const auto state = tracker.owners().at(&poster);
    QCOMPARE(state->status, ovelin::ResourceOwnerState::CreationRequested);
    QCOMPARE(state->geometry, QRect());
    ovelin::setSceneResourceTracker(nullptr);
}

void tst_Snippets::entries()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    Poster poster;
    QVERIFY(poster.show(QUrl("qrc:/poster.png")));

    QStringList locations;
    //! [entries]
    for (const ovelin::ResourceInfo &resource : tracker.resources()) {
        if (resource.type == ovelin::ResourceInfo::Image)
            locations += resource.url.toString();
    }
    //! [entries]
    QCOMPARE(locations, QStringList("qrc:/poster.png"));
    ovelin::setSceneResourceTracker(nullptr);
}

namespace {

using Posters = std::vector<std::unique_ptr<Poster>>;

// Unregisters or destroys owners when it is allowed.
class RestlessPoster : public Poster
{
public:
    using Reaction = void (*)(Posters &posters, Poster &self);

    RestlessPoster(Posters &posters, Reaction react)
        : m_posters(posters)
        , m_react(react)
    {
    }

    void allowResources() override { m_react(m_posters, *this); }

private:
    Posters &m_posters;
    const Reaction m_react;
};

void hideSelf(Posters &, Poster &self)
{
    self.hide();
}

// cppcheck-suppress constParameterReference ; a Reaction has these parameters
void hideAll(Posters &posters, Poster &)
{
    for (const auto &poster : posters)
        poster->hide();
}

void hideAllAndDestroyOthers(Posters &posters, Poster &self)
{
    hideAll(posters, self);
    std::erase_if(posters, [&self](const auto &poster) { return poster.get() != &self; });
}

} // namespace

void tst_Snippets::decisionsAllowOwnersToLeave_data()
{
    QTest::addColumn<RestlessPoster::Reaction>("react");
    QTest::addColumn<std::size_t>("ownersLeft");

    // Two of eight posters fit the limit.
    QTest::newRow("each leaves when it is told") << &hideSelf << std::size_t(6);
    QTest::newRow("the first removes all") << &hideAll << std::size_t(0);
    QTest::newRow("the first destroys the others") << &hideAllAndDestroyOthers << std::size_t(0);
}

void tst_Snippets::decisionsAllowOwnersToLeave()
{
    QFETCH(const RestlessPoster::Reaction, react);
    QFETCH(const std::size_t, ownersLeft);

    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    Posters posters;
    for (int i = 0; i < 8; ++i)
        QVERIFY(posters.emplace_back(std::make_unique<RestlessPoster>(posters, react))
                    ->show(QUrl("qrc:/poster.png")));

    decide(tracker);
    QCOMPARE(tracker.owners().size(), ownersLeft);
    posters.clear();
    ovelin::setSceneResourceTracker(nullptr);
}

// Shows that an item has no record before its registration returns, as the guide says.
void tst_Snippets::firstRegistration()
{
    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    tracker.setMessagesEnabled(true);
    Poster poster;
    int slotCalls = 0;
    const auto look = [&] {
        const bool isRequested =
            tracker.owners().at(&poster)->status == ovelin::ResourceOwnerState::CreationRequested;
        const bool isAllowed = poster.isResourcesAllowed();
        poster.hide();
        slotCalls += isRequested && isAllowed && tracker.resources().size() == 1;
    };
    using Tracker = ovelin::SceneResourceTracker;
    for (const auto signal :
         {&Tracker::messagesAdded, &Tracker::resourceOwnerAdded, &Tracker::resourcesChanged})
        connect(&tracker, signal, &tracker, look);

    QVERIFY(poster.show(QUrl("qrc:/poster.png")));
    tracker.disconnect();
    QCOMPARE(slotCalls, 3);
    QVERIFY(!poster.isResourcesAllowed());
    QCOMPARE(tracker.messages().constFirst().geometry, "(0, 0, 0x0)");
    ovelin::setSceneResourceTracker(nullptr);
}

void tst_Snippets::refusedRegistration()
{
    Poster withoutTracker;
    QVERIFY(!withoutTracker.show(QUrl("qrc:/poster.png")));
    QVERIFY(withoutTracker.isResourcesAllowed());

    ovelin::SceneResourceTracker tracker;
    ovelin::setSceneResourceTracker(&tracker);
    tracker.setRegistrationBlocked(true);
    Poster blocked;
    QVERIFY(!blocked.show(QUrl("qrc:/poster.png")));
    QVERIFY(blocked.isResourcesAllowed());
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

    description.relayout();    // after a change
    description.draw(painter); // for each frame
    //! [text]

    painter.end();
    QVERIFY(!isBlank(image));
    QVERIFY(description.displayText().contains('\n'));
}

void tst_Snippets::textFromElsewhere()
{
    const QString title = "<b>Новости</b>";
    ovelin::TextRenderer text;
    text.setTextFont(sampleFont());
    const auto painted = [&text](const QString &shown) {
        text.setText(shown);
        text.relayout();
        QImage image = canvas();
        QPainter painter(&image);
        painter.setPen(Qt::white);
        text.draw(painter);
        return image;
    };
    const QImage asMarkup = painted(title);

    //! [elsewhere]
    text.setTextFormat(Qt::PlainText);
    text.setText(title.simplified());
    //! [elsewhere]

    QVERIFY(!isBlank(asMarkup));
    QVERIFY(painted(title) != asMarkup);
}

// Shows that a text with newlines may exceed the line limit, as the guide says.
void tst_Snippets::newlinesAndTheLineLimit()
{
    const QString text = "long evening three\nlong two long";
    ovelin::TextRenderer renderer;
    renderer.setTextFont(sampleFont());
    renderer.setTextWidth(116);
    renderer.setMaxLineCount(3);
    const double lineHeight = QFontMetricsF(sampleFont()).height();
    const auto lines = [&] { return qRound(renderer.boundingSize().height() / lineHeight); };

    renderer.setText(text);
    QCOMPARE(lines(), 4);
    renderer.setText(text.simplified());
    QCOMPARE(lines(), 3);
}

// Shows that nothing parts the words at a newline if the limit is 1, as the guide says.
void tst_Snippets::newlinesOnOneLine()
{
    const auto width = [](const QString &text) {
        ovelin::TextRenderer renderer;
        renderer.setTextFont(sampleFont());
        renderer.setText(text);
        return renderer.boundingSize().width();
    };
    QCOMPARE(width("Один\nДва"), width("ОдинДва"));
}

void tst_Snippets::heightOfLines_data()
{
    QTest::addColumn<int>("pixelSize");

    for (const int pixelSize : {11, 13, 20, 24, 31})
        QTest::addRow("%d pixels", pixelSize) << pixelSize;
}

void tst_Snippets::heightOfLines()
{
    QFETCH(const int, pixelSize);
    QFont font = sampleFont();
    font.setPixelSize(pixelSize);
    const int lineCount = 4;

    //! [height]
    const int height = lineCount * qCeil(QFontMetricsF(font).height());
    //! [height]

    ovelin::TextRenderer renderer;
    renderer.setTextFont(font);
    renderer.setTextWidth(200);
    renderer.setMaxLineCount(lineCount);
    renderer.setText("один\nдва\nтри\nчетыре");
    QCOMPARE(renderer.boundingSize().height(), height);
}

// Shows what a renderer reports for an empty text, as the guide says.
void tst_Snippets::emptyText()
{
    ovelin::TextRenderer renderer;
    renderer.setTextFont(sampleFont());
    renderer.relayout();
    QVERIFY(!renderer.isValid());
    QVERIFY(renderer.boundingSize().height() > 0);

    renderer.setText(sampleText());
    const int height = renderer.boundingSize().height();
    renderer.setText({});
    QCOMPARE(renderer.boundingSize(), QSize(0, height));
    QCOMPARE(renderer.displayText(), sampleText());
    QVERIFY(!renderer.isValid());
}

void tst_Snippets::pixelRatio()
{
    ovelin::TextRenderer text;
    text.setTextFont(sampleFont());
    text.setText(sampleText());
    text.relayout();
    const auto painted = [&text](double ratio) {
        QImage image = canvas();
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        painter.setPen(Qt::white);
        //! [ratio]
        painter.scale(1 / ratio, 1 / ratio);
        text.draw(painter);
        //! [ratio]
        painter.end();
        image.setDevicePixelRatio(1);
        return image;
    };
    QVERIFY(!isBlank(painted(1)));
    QCOMPARE(painted(1.5), painted(1));
    QCOMPARE(painted(2), painted(1));
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

void tst_Snippets::gradientDown()
{
    const QRect panel(40, 30, 400, 100);
    QImage image = canvas();
    QPainter painter(&image);

    //! [down]
    QLinearGradient gradient(0, 0, 0, panel.height());
    gradient.setColorAt(0, Qt::darkBlue);
    gradient.setColorAt(1, Qt::white);
    const QBrush brush(gradient);

    painter.setBrushOrigin(panel.topLeft());
    painter.fillRect(panel, brush);
    //! [down]

    painter.end();
    QVERIFY(image.pixelColor(panel.topLeft()).red() < 8);
    QVERIFY(image.pixelColor(panel.bottomLeft()).red() > 247);
    QCOMPARE(image.pixel(panel.bottomLeft()), image.pixel(panel.bottomRight()));
}

void tst_Snippets::gradientAcross()
{
    const QRect panel(40, 30, 400, 100);
    QImage image = canvas();
    QPainter painter(&image);

    //! [across]
    const int thickness = 8;
    QLinearGradient gradient(0, 0, panel.width(), 0);
    gradient.setColorAt(0, Qt::darkBlue);
    gradient.setColorAt(1, Qt::white);
    const QBrush brush = ovelin::createTexturedBrush({panel.width(), thickness}, gradient);

    painter.setBrushOrigin(panel.topLeft());
    painter.fillRect(panel, brush);
    //! [across]

    QImage expected = canvas();
    painter.end();
    painter.begin(&expected);
    painter.setBrushOrigin(panel.topLeft());
    painter.fillRect(panel, gradient);
    painter.end();
    QCOMPARE(image, expected);
}

void tst_Snippets::gradientRepeated()
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
    // Once, after the QGuiApplication was constructed:
    ovelin::PlatformNativeInterface::init();
    ovelin::PlatformNativeInterface platform;
    ovelin::setPlatformNativeInterface(&platform);

    // To make a background:
    QPixmap background;
    if (platform.isTiledPixmapAvailable()) {
        background = platform.createTiledPixmap(size, paintBackground);
    } else {
        background = QPixmap(size);
        QPainter painter(&background);
        paintBackground(painter);
    }
    //! [tiled]

    QImage image = canvas();
    QPainter painter(&image);
    //! [paint tiled]
    painter.save();
    platform.setupPainterForTiledPixmap(background, painter);
    painter.drawPixmap(0, 0, background);
    painter.restore();
    //! [paint tiled]
    painter.end();

    QCOMPARE(image.copy(QRect(QPoint(), size)), background.toImage());
    QCOMPARE(background.size(), size);
    QCOMPARE(background.toImage().pixelColor(0, 0), QColor(Qt::darkBlue));
    ovelin::setPlatformNativeInterface(nullptr);
}

void tst_Snippets::version()
{
    QString version;
    //! [version]
#if OVELIN_VERSION < 0x010000
#  error "This program needs ovelin 1.0."
#endif
    version = OVELIN_VERSION_STR;
    //! [version]
    QCOMPARE(version.section('.', 0, 0).toInt(), OVELIN_VERSION >> 16);
}

QTEST_MAIN(tst_Snippets)
#include "tst_snippets.moc"
