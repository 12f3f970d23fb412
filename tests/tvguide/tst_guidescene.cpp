#include "guidescene.h"
#include "presentation.h"
#include "resourcepolicy.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <memory>
#include <utility>

using namespace tvguide;
using namespace Qt::StringLiterals;
using namespace std::chrono;

namespace {

constexpr QSize screenSize(1280, 720);
constexpr qint64 budget = 24 * 1024 * 1024;

Instant at(int hour, int minute = 0, int second = 0)
{
    return sys_days(year(2025) / 3 / 14) + hours(hour) + minutes(minute) + seconds(second);
}

Programme programme(const QString &title, Instant start, Instant stop)
{
    Programme programme;
    programme.start = start;
    programme.stop = stop;
    programme.title = title;
    return programme;
}

// A guide from 18:00 to 24:00. Each number gives a channel whose programmes last this many minutes.
Guide guideOf(const std::vector<int> &minutesPerChannel)
{
    std::vector<Channel> channels;
    for (const int length : minutesPerChannel) {
        Channel channel;
        channel.id = channel.name = u"%1 %2"_s.arg(channels.size()).arg(length);
        channel.number = QString::number(channels.size() + 1);
        for (Instant start = at(18); start < at(24); start += minutes(length))
            channel.programmes.push_back(programme(channel.name, start, start + minutes(length)));
        channels.push_back(std::move(channel));
    }
    return Guide(std::move(channels), seconds(0));
}

// A guide of one programme with all details.
Guide guideWithDetails()
{
    Programme shown = programme(u"The house"_s, at(19), at(21));
    shown.subTitle = u"The roof"_s;
    shown.description = u"People build a house."_s;
    shown.episodeNumber = {.season = {2, 0}, .episode = {5, 0}, .part = {1, 2}};
    shown.episodeText = u"S2E5"_s;
    shown.isNew = true;
    shown.isPremiere = true;
    shown.premiere = u"At last"_s;
    shown.ratings = {u"12+"_s, u"PG"_s};
    shown.alsoInSlot = {u"Weather"_s, QString()};
    Channel channel;
    channel.id = channel.name = channel.number = u"1"_s;
    channel.programmes = {shown};
    return Guide({channel}, seconds(0));
}

} // namespace

class tst_GuideScene : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void beginsAtTheRunningProgramme();
    void movesAlongAChannel();
    void staysAtTheEdges();
    void focusKeepsItsTimeOnAnotherChannel();
    void scrollsToTheFocus();
    void showsTheProgrammesInTheGrid();
    void theNumberOfItemsIsBoundedByTheScreen();
    void showsTheFocusOnANarrowCard();
    void handlesTheLatestTimes();
    void removesCardsFarFromTheGrid();
    void clearsPicturesThatHaveLeftTheScreen();
    void createsThePicturesNearTheFocusFirst();
    void followsTheClock();
    void thePanelShowsTheDetails_data();
    void thePanelShowsTheDetails();
    void thePanelOfAPlainProgrammeHasRoomForItsDescription();
    void theEpisodeStandsAboveTheDescription();
    void tagsLeaveHalfOfTheLineToTheFacts();
    void everySizeIsDrawn_data();
    void everySizeIsDrawn();

private:
    std::unique_ptr<ovelin::SceneResourceTracker> m_tracker;
};

void tst_GuideScene::init()
{
    m_tracker = std::make_unique<ovelin::SceneResourceTracker>();
    ovelin::setSceneResourceTracker(m_tracker.get());
}

void tst_GuideScene::cleanup()
{
    QVERIFY(m_tracker->owners().empty());
    ovelin::setSceneResourceTracker(nullptr);
    m_tracker.reset();
}

void tst_GuideScene::beginsAtTheRunningProgramme()
{
    const Guide guide = guideOf({60, 30});
    ResourcePolicy policy(*m_tracker, budget);
    const GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20, 40), policy);
    QCOMPARE(scene.programme(scene.focus()).start, at(20));
    QCOMPARE(scene.gridStart(), at(20, 30));
    QCOMPARE(scene.progress(scene.programme(scene.focus())), 666);
}

void tst_GuideScene::movesAlongAChannel()
{
    const Guide guide = guideOf({60});
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    scene.moveFocus(Direction::Right);
    QCOMPARE(scene.programme(scene.focus()).start, at(21));
    scene.moveFocus(Direction::Left);
    scene.moveFocus(Direction::Left);
    QCOMPARE(scene.programme(scene.focus()).start, at(19));
}

void tst_GuideScene::staysAtTheEdges()
{
    const Guide guide = guideOf({360});
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    for (const Direction direction :
         {Direction::Left, Direction::Right, Direction::Up, Direction::Down}) {
        scene.moveFocus(direction);
        QCOMPARE(scene.focus(), ProgrammeIndex());
    }
}

void tst_GuideScene::focusKeepsItsTimeOnAnotherChannel()
{
    const Guide guide = guideOf({60, 360, 30});
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20, 10), policy);
    scene.moveFocus(Direction::Right);
    scene.moveFocus(Direction::Down);
    scene.moveFocus(Direction::Down);
    QCOMPARE(scene.focus().channel, std::size_t(2));
    QCOMPARE(scene.programme(scene.focus()).start, at(21));
}

void tst_GuideScene::scrollsToTheFocus()
{
    const Guide guide = guideOf(std::vector<int>(20, 30));
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    for (int step = 0; step < 40; ++step) {
        scene.moveFocus(step % 2 ? Direction::Down : Direction::Right);
        const ProgrammeCard &card = scene.cards().at(scene.focus());
        QVERIFY(scene.layout().grid.contains(card.rect));
    }
    for (int step = 0; step < 40; ++step) {
        scene.moveFocus(step % 2 ? Direction::Up : Direction::Left);
        const ProgrammeCard &card = scene.cards().at(scene.focus());
        QVERIFY(scene.layout().grid.contains(card.rect));
    }
}

void tst_GuideScene::showsTheProgrammesInTheGrid()
{
    const Guide guide = guideOf({60, 30});
    ResourcePolicy policy(*m_tracker, budget);
    const GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    QCOMPARE(scene.channels().size(), std::size_t(2));

    const auto &[index, first] = *scene.cards().begin();
    QCOMPARE(scene.programme(index).start, at(20));
    QCOMPARE(first.rect.left(), scene.layout().grid.left());
    QCOMPARE(first.title.displayedLines(), QStringList(u"0 60"_s));
    int visible = 0;
    for (const auto &[card, shown] : scene.cards())
        visible += card.channel == 1 && scene.isInGrid(shown.rect);
    // The grid shows 2 hours and 25 minutes: five programmes of 30 minutes, the last one cut.
    QCOMPARE(visible, 5);
}

void tst_GuideScene::theNumberOfItemsIsBoundedByTheScreen()
{
    std::vector<Channel> channels(300);
    for (Channel &channel : channels) {
        channel.id = u"many"_s;
        for (int i = 0; i < 3000; ++i)
            channel.programmes.push_back(programme(u"x"_s, at(20, 0, i), at(20, 0, i + 1)));
    }
    const Guide guide(std::move(channels), seconds(0));
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20, 10), policy);
    for (const Direction direction :
         {Direction::Down, Direction::Right, Direction::Right, Direction::Up, Direction::Left})
        scene.moveFocus(direction);
    QCOMPARE(scene.channels().size(), std::size_t(scene.layout().rowCount));
    QVERIFY(scene.cards().size() < 500);
}

void tst_GuideScene::showsTheFocusOnANarrowCard()
{
    Channel channel;
    channel.id = u"x"_s;
    for (int i = 0; i < 100; ++i)
        channel.programmes.push_back(programme(u"x"_s, at(20, 0, i), at(20, 0, i + 1)));
    const Guide guide({channel}, seconds(0));
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20, 0, 50), policy);
    scene.moveFocus(Direction::Right);
    QCOMPARE(scene.programme(scene.focus()).start, at(20, 0, 51));
    QVERIFY(scene.cards().at(scene.focus()).rect.width() >= 8);
}

void tst_GuideScene::handlesTheLatestTimes()
{
    const Instant begin = sys_days(year(1) / 1 / 1);
    const Instant end = sys_days(year(9999) / 12 / 31) + hours(23);
    Channel channel;
    channel.id = u"x"_s;
    channel.programmes = {programme(u"eternity"_s, begin, end),
                          programme(u"afterwards"_s, end, end + hours(1))};
    const Guide guide({channel}, hours(14));
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    QVERIFY(scene.isInGrid(scene.cards().at(scene.focus()).rect));
    scene.moveFocus(Direction::Right);
    QCOMPARE(scene.programme(scene.focus()).title, u"afterwards"_s);
    QVERIFY(scene.layout().grid.contains(scene.cards().at(scene.focus()).rect.topLeft()));
    scene.moveFocus(Direction::Left);
    QCOMPARE(scene.programme(scene.focus()).title, u"eternity"_s);
    QVERIFY(scene.isInGrid(scene.cards().at(scene.focus()).rect));
}

void tst_GuideScene::removesCardsFarFromTheGrid()
{
    const Guide guide = guideOf(std::vector<int>(200, 30));
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    for (int step = 0; step < 199; ++step)
        scene.moveFocus(Direction::Down);
    QVERIFY(scene.cards().size() < 100);
    QVERIFY(m_tracker->owners().size() < 120);
}

void tst_GuideScene::clearsPicturesThatHaveLeftTheScreen()
{
    const Guide guide = guideOf(std::vector<int>(20, 30));
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    while (scene.createPictures(10)) {
    }
    const ProgrammeIndex first = scene.focus();
    QVERIFY(!scene.cards().at(first).poster->picture().isNull());

    for (int step = 0; step < 6; ++step)
        scene.moveFocus(Direction::Down);
    const PosterItem &poster = *scene.cards().at(first).poster;
    QCOMPARE(poster.status(), ovelin::ResourceOwnerState::Cleared);
    QVERIFY(poster.picture().isNull());
    QVERIFY(policy.summary().cleared > 0);

    for (int step = 0; step < 6; ++step)
        scene.moveFocus(Direction::Up);
    QCOMPARE(poster.status(), ovelin::ResourceOwnerState::CreationAllowed);
    QVERIFY(poster.isWanted());
}

void tst_GuideScene::createsThePicturesNearTheFocusFirst()
{
    const Guide guide = guideOf(std::vector<int>(5, 30));
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    QVERIFY(scene.hasWantedPictures());
    // Seven pictures: one for the panel, five for the channels, and one for the programme that has the focus.
    QVERIFY(scene.createPictures(7));
    QVERIFY(!scene.panel().poster->isWanted());
    for (const auto &[index, card] : scene.cards())
        QCOMPARE(card.poster->isWanted(), index != scene.focus());
    while (scene.createPictures(1)) {
    }
    QVERIFY(!scene.hasWantedPictures());
}

void tst_GuideScene::followsTheClock()
{
    const Guide guide = guideOf({60});
    ResourcePolicy policy(*m_tracker, budget);
    GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20, 29), policy);
    QCOMPARE(scene.gridStart(), at(20));
    scene.setTime(at(20, 30));
    QCOMPARE(scene.gridStart(), at(20, 30));
    QCOMPARE(scene.clock().displayedLines(), QStringList(u"20:30"_s));
}

void tst_GuideScene::thePanelShowsTheDetails_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("tags");
    QTest::addColumn<QString>("episode");

    QTest::newRow("Russian")
        << u"ru"_s << QStringList{u"новое"_s, u"премьера"_s, u"12+"_s, u"PG"_s}
        << u"The roof  ·  Сезон 2, серия 5, часть 1 из 2  ·  At last  ·  Также: Weather, Без названия"_s;
    QTest::newRow("English")
        << u"en"_s << QStringList{u"new"_s, u"premiere"_s, u"12+"_s, u"PG"_s}
        << u"The roof  ·  Season 2, episode 5, part 1 of 2  ·  At last  ·  Also: Weather, Untitled"_s;
}

void tst_GuideScene::thePanelShowsTheDetails()
{
    QFETCH(const QString, language);
    QFETCH(const QStringList, tags);
    QFETCH(const QString, episode);

    const Guide guide = guideWithDetails();
    ResourcePolicy policy(*m_tracker, budget);
    const GuideScene scene(guide, wordingFor(language), screenSize, at(20), policy);
    QStringList shownTags;
    for (const PanelTag &tag : scene.panel().tags)
        shownTags.prepend(tag.label.displayedLines().join(u'\n'));
    QCOMPARE(shownTags, tags);
    QCOMPARE(scene.panel().episode.text(), episode);
}

void tst_GuideScene::thePanelOfAPlainProgrammeHasRoomForItsDescription()
{
    const Guide guide = guideOf({60});
    ResourcePolicy policy(*m_tracker, budget);
    const GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    QVERIFY(scene.panel().tags.empty());
    QCOMPARE(scene.panel().episode.text(), QString());
    QCOMPARE(scene.panel().facts.box(), scene.layout().panelFacts);
    QCOMPARE(scene.panel().description.box(), scene.layout().panelDescription);
}

void tst_GuideScene::theEpisodeStandsAboveTheDescription()
{
    const Guide guide = guideWithDetails();
    ResourcePolicy policy(*m_tracker, budget);
    const GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);
    const DetailPanel &panel = scene.panel();
    QCOMPARE(panel.episode.box().topLeft(), scene.layout().panelDescription.topLeft());
    QCOMPARE(panel.episode.displayedLines().size(), 2);
    QVERIFY(panel.description.box().top() >= panel.episode.box().top() + panel.episode.height());
    QCOMPARE(panel.description.box().bottom(), scene.layout().panelDescription.bottom());
    QVERIFY(!panel.description.displayedLines().isEmpty());
}

void tst_GuideScene::tagsLeaveHalfOfTheLineToTheFacts()
{
    Channel channel;
    channel.id = channel.name = channel.number = u"1"_s;
    channel.programmes = {programme(u"x"_s, at(20), at(21))};
    for (int i = 0; i < 16; ++i)
        channel.programmes[0].ratings += u"A rather long rating %1"_s.arg(i);
    const Guide guide({channel}, seconds(0));
    ResourcePolicy policy(*m_tracker, budget);
    const GuideScene scene(guide, wordingFor(u"ru"_s), screenSize, at(20), policy);

    const QRect line = scene.layout().panelFacts;
    int end = line.right();
    QCOMPARE(scene.panel().tags.size(), std::size_t(2));
    for (const PanelTag &tag : scene.panel().tags) {
        QVERIFY(line.contains(tag.frame));
        QVERIFY(tag.frame.contains(tag.label.box()));
        QCOMPARE_LE(tag.frame.right(), end);
        end = tag.frame.left() - 1;
    }
    QCOMPARE_LE(scene.panel().facts.box().right(), end);
    QVERIFY(scene.panel().facts.box().width() >= line.width() / 2);
}

void tst_GuideScene::everySizeIsDrawn_data()
{
    QTest::addColumn<QSize>("size");

    for (const QSize size : {ScreenLayout::minimumSize, QSize(640, 360), QSize(720, 576),
                             QSize(320, 4320), QSize(7680, 180), QSize(1920, 1080)})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

void tst_GuideScene::everySizeIsDrawn()
{
    QFETCH(const QSize, size);

    const Guide guide = guideOf({60, 5, 360});
    Presentation presentation(*m_tracker, guide, wordingFor(u"ru"_s), size, at(20), budget);
    presentation.beat();
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::green);
    QPainter painter(&image);
    presentation.paint(painter);
    painter.end();
    for (int y = 0; y < size.height(); y += size.height() / 16) {
        for (int x = 0; x < size.width(); x += size.width() / 16)
            QVERIFY(image.pixel(x, y) != QColor(Qt::green).rgb());
    }
}

QTEST_MAIN(tst_GuideScene)
#include "tst_guidescene.moc"
