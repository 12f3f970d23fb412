#include "budget.h"
#include "cardlist.h"
#include "focusedcard.h"
#include "languages.h"
#include "loadedposter.h"
#include "logtable.h"
#include "posterrow.h"
#include "ticker.h"

#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <array>

using namespace recipes;

namespace {

constexpr QSize screenSize(480, 120);

QFont sampleFont()
{
    QFont font("DejaVu Sans");
    font.setPixelSize(20);
    return font;
}

template<typename Paint>
QImage painted(const Paint &paint)
{
    QImage image(screenSize, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    paint(painter);
    return image;
}

bool isBlank(const QImage &image, const QRect &area)
{
    const QImage part = image.copy(area);
    QImage blank = part;
    blank.fill(Qt::black);
    return part == blank;
}

// A tracker that is installed as long as it exists.
class InstalledTracker : public ovelin::SceneResourceTracker
{
public:
    InstalledTracker() { ovelin::setSceneResourceTracker(this); }
    ~InstalledTracker() override { ovelin::setSceneResourceTracker(nullptr); }
};

class Item : public QObject, public ovelin::AbstractResourceOwner
{
public:
    explicit Item(const QRect &geometry)
    {
        if (registerResource(1, "item", ovelin::ResourceInfo::PaintedItem))
            describe(*ownerState, geometry);
    }

    QObject *resourceOwnerObject() override { return this; }
    void allowResources() override { holds = true; }
    void releaseResources() override { holds = false; }

    State::Status status() const { return ownerState->status; }

    bool holds = false;
};

constexpr auto allowed = State::CreationAllowed;
constexpr auto denied = State::CreationDenied;
constexpr auto cleared = State::Cleared;

// A red picture in a file.
class RedPoster
{
public:
    RedPoster()
    {
        QImage picture(20, 12, QImage::Format_RGB32);
        picture.fill(Qt::darkRed);
        picture.save(file());
    }

    QUrl url() const { return QUrl::fromLocalFile(file()); }

private:
    QString file() const { return m_folder.filePath("poster.ppm"); }

    QTemporaryDir m_folder;
};

QList<State::Status> statuses(const ovelin::SceneResourceTracker &tracker)
{
    QList<State::Status> result;
    for (const ovelin::ResourceInfo &resource : tracker.resources())
        result += resource.ownerState->status;
    return result;
}

bool decides(const ovelin::SceneResourceTracker &tracker, const QList<State::Status> &expected)
{
    return QTest::qWaitFor([&] { return statuses(tracker) == expected; });
}

// Waits until the posters are shown: `edges` has each x at which red begins or ends in a line of pixels.
bool showsPosters(PosterRow &row, const QList<int> &edges)
{
    return QTest::qWaitFor([&] {
        const QImage image = painted([&row](QPainter &painter) { row.paint(painter); });
        QList<int> found;
        bool wasRed = false;
        for (int x = 0; x < image.width(); ++x) {
            const bool isRed = image.pixelColor(x, 10) == QColor(Qt::darkRed);
            if (isRed != wasRed)
                found += x;
            wasRed = isRed;
        }
        return found == edges;
    });
}

} // namespace

class tst_Recipes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cardList_data();
    void cardList();
    void cardTitleIsOneParagraph();
    void focusedCard();
    void ticker();
    void languages_data();
    void languages();
    void loadedPoster();
    void posterThatIsReleasedWhileItLoads();
    void posterThatIsDestroyedWhileItLoads();
    void logTable();
    void memoryBudget();
    void posterRow();
    void posterRowScrolls();
    void posterRowWithoutATracker();
    void memoryIsReleasedFirst();
    void decisionAllowsOwnersToLeave_data();
    void decisionAllowsOwnersToLeave();
};

void tst_Recipes::cardList_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<QList<int>>("lefts");

    // A card is 200 pixels wide, the gap 12; the area begins at 20 and is 400 wide.
    QTest::newRow("at the beginning") << 0 << QList<int>{20, 232};
    QTest::newRow("half a card further") << 100 << QList<int>{-80, 132, 344};
    QTest::newRow("two pixels of a card") << 410 << QList<int>{-178, 34};
    QTest::newRow("the last card") << 424 << QList<int>{20};
    QTest::newRow("after the end") << 1000 << QList<int>{};
}

void tst_Recipes::cardList()
{
    QFETCH(const int, offset);
    QFETCH(const QList<int>, lefts);
    const QStringList titles{"Новости", "Погода", "Кино"};
    const QRect area(20, 10, 400, 100);

    CardList list(titles, sampleFont());
    list.scrollTo(offset);
    const QImage image = painted([&](QPainter &painter) { list.paint(painter, area); });

    const int firstTitle = offset / 212;
    const QImage expected = painted([&](QPainter &painter) {
        painter.setClipRect(area);
        for (int i = 0; i < lefts.size(); ++i) {
            painter.save();
            painter.translate(lefts[i], area.y());
            Card(titles[firstTitle + i], sampleFont()).paint(painter);
            painter.restore();
        }
    });
    QCOMPARE(image, expected);
    QCOMPARE(isBlank(image, image.rect()), lefts.isEmpty());
}

void tst_Recipes::cardTitleIsOneParagraph()
{
    const auto seen = [](const QString &title) {
        return painted([&](QPainter &painter) { Card(title, sampleFont()).paint(painter); });
    };
    QCOMPARE(seen("Вечерние\nновости"), seen("Вечерние новости"));
}

void tst_Recipes::focusedCard()
{
    const FocusedCard card(Card("Новости", sampleFont()));
    const auto at = [&card](double progress) {
        return painted([&](QPainter &painter) { card.paint(painter, {240, 60}, progress); });
    };

    // 200 x 90 pixels around the centre without focus, 240 x 108 with focus.
    QVERIFY(isBlank(at(0), {0, 0, 140, 120}));
    QVERIFY(!isBlank(at(0), {140, 0, 10, 120}));
    QVERIFY(isBlank(at(1), {0, 0, 120, 120}));
    QVERIFY(!isBlank(at(1), {120, 0, 10, 120}));
    QVERIFY(at(0).pixelColor(150, 60).blue() < at(1).pixelColor(150, 60).blue());
}

void tst_Recipes::ticker()
{
    const QRect area(100, 20, 200, 30);
    Ticker ticker("Последние\nновости", sampleFont(), area);
    const auto seen = [&ticker] {
        return painted([&](QPainter &painter) { ticker.paint(painter); });
    };
    const QImage atFirst = seen();
    QVERIFY(isBlank(atFirst, atFirst.rect()));

    ticker.advance(50);
    QVERIFY(!isBlank(seen(), {250, 20, 50, 30}));
    QVERIFY(isBlank(seen(), {0, 0, 250, 120}));

    // The text moves to the left, and begins at the right again.
    int steps = 1;
    do {
        ticker.advance(50);
        ++steps;
    } while (seen() != atFirst && steps < 50);
    QVERIFY(steps > 5 && steps < 50);
    ticker.advance(50);
    QVERIFY(isBlank(seen(), {0, 0, 250, 120}));
    QVERIFY(!isBlank(seen(), {250, 20, 50, 30}));
}

void tst_Recipes::languages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("displayText");
    QTest::addColumn<int>("left");

    QTest::newRow("Russian") << "два исследователя" << "ru" << "два иссле-\nдователя" << 0;
    QTest::newRow("English") << "two eggs and boxes" << "en" << "two eggs and boxes" << 0;
    QTest::newRow("Hebrew") << "שלום" << "he" << "שלום" << 1;
}

void tst_Recipes::languages()
{
    QFETCH(const QString, text);
    QFETCH(const QString, language);
    QFETCH(const QString, displayText);
    QFETCH(const int, left);

    ovelin::TextRenderer renderer;
    renderer.setTextFont(sampleFont());
    renderer.setTextWidth(language == "en" ? 80 : 130);
    renderer.setMaxLineCount(4);
    setText(renderer, text, language);
    QCOMPARE(renderer.displayText(), displayText);
    QCOMPARE(renderer.alignedTextTopLeft().x() > 0, left > 0);
}

void tst_Recipes::loadedPoster()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("poster.ppm");
    QImage picture(12, 18, QImage::Format_RGB32);
    picture.fill(Qt::darkRed);
    QVERIFY(picture.save(file));
    const InstalledTracker tracker;
    LoadedPoster poster(QUrl::fromLocalFile(file));
    QSignalSpy loaded(&poster, &LoadedPoster::loaded);

    poster.allowResources();
    QVERIFY(poster.isLoading());
    QVERIFY(poster.image().isNull());
    QVERIFY(loaded.wait());
    QVERIFY(!poster.isLoading());
    QCOMPARE(poster.image().size(), picture.size());

    poster.releaseResources();
    QVERIFY(poster.image().isNull());
}

void tst_Recipes::posterThatIsReleasedWhileItLoads()
{
    const InstalledTracker tracker;
    LoadedPoster poster(QUrl::fromLocalFile("none.png"));
    const QSignalSpy loaded(&poster, &LoadedPoster::loaded);
    poster.allowResources();
    poster.releaseResources();
    QVERIFY(!poster.isLoading());
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    QCOMPARE(loaded.count(), 0);
}

void tst_Recipes::posterThatIsDestroyedWhileItLoads()
{
    const InstalledTracker tracker;
    {
        LoadedPoster poster(QUrl::fromLocalFile("none.png"));
        poster.allowResources();
    }
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    QVERIFY(tracker.owners().empty());
}

void tst_Recipes::logTable()
{
    InstalledTracker tracker;
    printLog(tracker);
    // The picture on the recipe's page shows lines like these.
    QTest::ignoreMessage(QtDebugMsg, "registered   creation_requested recipes::LoadedPoster  image"
                                     "            file:///poster.png");
    QTest::ignoreMessage(QtDebugMsg, "status       creation_allowed   recipes::LoadedPoster  image"
                                     "            file:///poster.png");
    LoadedPoster poster(QUrl::fromLocalFile("/poster.png"));
    tracker.setStatus(tracker.owners().at(&poster), State::CreationAllowed);
    tracker.disconnect();
}

void tst_Recipes::memoryBudget()
{
    InstalledTracker tracker;
    // Each picture takes 40,000 bytes.
    std::array<Item, 3> items{Item({0, 0, 100, 100}), Item({200, 0, 100, 100}),
                              Item({400, 0, 100, 100})};
    const auto holders = [&items] {
        return QList<bool>{items[0].holds, items[1].holds, items[2].holds};
    };

    decide(tracker, 80'000, {50, 50});
    QCOMPARE(holders(), QList<bool>({true, true, false}));
    decide(tracker, 80'000, {450, 50});
    QCOMPARE(holders(), QList<bool>({false, true, true}));
    decide(tracker, 79'999, {450, 50});
    QCOMPARE(holders(), QList<bool>({false, false, true}));
    QCOMPARE(items[0].status(), State::Cleared);
    decide(tracker, 0, {450, 50});
    QCOMPARE(holders(), QList<bool>({false, false, false}));

    const Item never({600, 0, 100, 100});
    decide(tracker, 0, {450, 50});
    QCOMPARE(never.status(), State::CreationDenied);
}

void tst_Recipes::posterRow()
{
    InstalledTracker tracker;
    const RedPoster poster;
    PosterRow row(tracker, {0, 0, 400, 112}, QList<QUrl>(4, poster.url()));
    const QSignalSpy changed(&row, &PosterRow::changed);

    // The decision is made by the event loop.
    const auto requested = State::CreationRequested;
    QCOMPARE(statuses(tracker), QList({requested, requested, requested, requested}));
    QVERIFY(QTest::qWaitFor([&] { return statuses(tracker).constFirst() != requested; }));
    QCOMPARE(statuses(tracker), QList({allowed, allowed, denied, denied}));
    QVERIFY(!changed.isEmpty());
    const QImage throbbers = painted([&row](QPainter &painter) { row.paint(painter); });
    QVERIFY(!isBlank(throbbers, {76, 32, 48, 48}));
    QVERIFY(!isBlank(throbbers, {288, 32, 48, 48}));
    QVERIFY(showsPosters(row, {0, 200, 212, 400}));

    const Item late({500, 0, 100, 100});
    QVERIFY(QTest::qWaitFor([&] { return late.status() == denied; }));
}

void tst_Recipes::posterRowScrolls()
{
    InstalledTracker tracker;
    const RedPoster poster;
    PosterRow row(tracker, {0, 0, 400, 112}, QList<QUrl>(4, poster.url()));
    QVERIFY(showsPosters(row, {0, 200, 212, 400}));

    // The first card leaves the screen, the third one enters it.
    row.scrollTo(212);
    QVERIFY(decides(tracker, {cleared, allowed, allowed, denied}));
    QVERIFY(showsPosters(row, {0, 200, 212, 400}));
    row.scrollTo(0);
    QVERIFY(decides(tracker, {allowed, allowed, cleared, denied}));
}

void tst_Recipes::posterRowWithoutATracker()
{
    ovelin::SceneResourceTracker notInstalled;
    PosterRow row(notInstalled, {0, 0, 400, 112}, {QUrl("file:///poster.png")});
    row.scrollTo(10);
    QVERIFY(notInstalled.owners().empty());
    const QImage image = painted([&row](QPainter &painter) { row.paint(painter); });
    QVERIFY(isBlank(image, image.rect()));
}

void tst_Recipes::memoryIsReleasedFirst()
{
    class Recorded : public Item
    {
    public:
        Recorded(const QRect &geometry, QStringList &calls)
            : Item(geometry)
            , m_calls(calls)
        {
        }

        void allowResources() override { m_calls += "allow"; }
        void releaseResources() override { m_calls += "release"; }

    private:
        QStringList &m_calls;
    };

    InstalledTracker tracker;
    QStringList calls;
    const Recorded left({0, 0, 10, 10}, calls);
    const Recorded right({100, 0, 10, 10}, calls);
    allowOnScreen(tracker, {0, 0, 50, 50});
    allowOnScreen(tracker, {100, 0, 50, 50});
    allowOnScreen(tracker, {100, 0, 50, 50});
    QCOMPARE(calls, QStringList({"allow", "release", "allow"}));
}

void tst_Recipes::decisionAllowsOwnersToLeave_data()
{
    QTest::addColumn<bool>("returns");
    QTest::addColumn<std::size_t>("ownersLeft");

    QTest::newRow("for good") << false << std::size_t(1);
    QTest::newRow("and to return with a new state") << true << std::size_t(2);
}

void tst_Recipes::decisionAllowsOwnersToLeave()
{
    // An item that removes the other item when its own resources are allowed.
    class Jealous : public Item
    {
    public:
        explicit Jealous(std::array<Jealous, 2> &items)
            : Item({0, 0, 10, 10})
            , m_items(items)
        {
        }

        void allowResources() override
        {
            Item::allowResources();
            QFETCH(const bool, returns);
            Jealous &other = m_items[this == m_items.data() ? 1 : 0];
            other.unregisterResources();
            if (returns)
                other.registerResource(1, "item", ovelin::ResourceInfo::PaintedItem);
        }

    private:
        std::array<Jealous, 2> &m_items;
    };

    QFETCH(const std::size_t, ownersLeft);
    InstalledTracker tracker;
    std::array<Jealous, 2> items{Jealous(items), Jealous(items)};
    allowOnScreen(tracker, {0, 0, 100, 100});
    QCOMPARE(tracker.owners().size(), ownersLeft);
    QVERIFY(items[0].holds != items[1].holds);
}

QTEST_MAIN(tst_Recipes)
#include "tst_recipes.moc"
