#include "colours.h"
#include "ownerrecord.h"
#include "posteritem.h"

#include <ovelin/sceneresourcetracker.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace tvguide;
using namespace tvguide::tests;
using namespace Qt::StringLiterals;
using ovelin::ResourceInfo;
using ovelin::ResourceOwnerState;
using ovelin::SceneResourceTracker;

namespace {

constexpr QRect place(40, 30, 160, 90);

} // namespace

class tst_PosterItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void registersASourceAndABuffer();
    void registersALocalPictureByItsUrl();
    void writesItsBytesForThePolicy();
    void holdsNothingBeforeItIsAllowed();
    void createsAndReleases();
    void leavesTheTrackerWhenDestroyed();
    void aMoveChangesNothingElse();
    void aNewSizeMakesANewBuffer();
    void aBrokenPictureIsReplacedByAPaintedOne();
    void refusesFilesWithoutPicture_data();
    void refusesFilesWithoutPicture();
    void paintsTheSameForTheSameTitle();
    void fadesCardsTowardsTheText();
    void worksWithoutATracker();

private:
    QString savedPicture(const QSize &size)
    {
        const QString fileName = m_folder.filePath(u"poster.png"_s);
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::red);
        image.save(fileName);
        return fileName;
    }

    // cppcheck-suppress constParameterReference ; owners are looked up by a pointer that is not
    // const
    static QSharedPointer<ResourceOwnerState> stateOf(PosterItem &item)
    {
        return ovelin::sceneResourceTracker()->owners().at(&item);
    }

    void allow(PosterItem &item)
    {
        m_tracker->setStatus(stateOf(item), ResourceOwnerState::CreationAllowed);
        m_tracker->allowResources(stateOf(item));
    }

    std::unique_ptr<SceneResourceTracker> m_tracker;
    QTemporaryDir m_folder;
};

void tst_PosterItem::init()
{
    m_tracker = std::make_unique<SceneResourceTracker>();
    ovelin::setSceneResourceTracker(m_tracker.get());
}

void tst_PosterItem::cleanup()
{
    ovelin::setSceneResourceTracker(nullptr);
    m_tracker.reset();
}

void tst_PosterItem::registersASourceAndABuffer()
{
    PosterItem item(PosterItem::Shape::Card, {u"Заголовок"_s, {}, {}}, u"card"_s);
    QVERIFY(m_tracker->resources().empty());
    item.place(place);

    const auto &resources = m_tracker->resources();
    QCOMPARE(resources.size(), std::size_t(2));
    QCOMPARE(resources.front().type, ResourceInfo::OffscreenBuffer);
    QCOMPARE(resources.front().name, u"160x90"_s);
    QCOMPARE(resources.back().type, ResourceInfo::PaintedItem);
    QCOMPARE(resources.back().name, u"Заголовок"_s);
    QCOMPARE(item.status(), ResourceOwnerState::CreationRequested);
}

void tst_PosterItem::registersALocalPictureByItsUrl()
{
    const QUrl url = QUrl::fromLocalFile(savedPicture({320, 180}));
    PosterItem item(PosterItem::Shape::Card, {u"x"_s, {}, url}, u"card"_s);
    item.place(place);
    QCOMPARE(m_tracker->resources().back().type, ResourceInfo::Image);
    QCOMPARE(m_tracker->resources().back().url, url);
}

void tst_PosterItem::writesItsBytesForThePolicy()
{
    PosterItem painted(PosterItem::Shape::Card, {u"x"_s, {}, {}}, u"painted"_s);
    painted.place(place);
    QCOMPARE(stateOf(painted)->geometry, place);
    QCOMPARE(neededBytes(*stateOf(painted)), 160 * 90 * 4);

    // A file is loaded as a picture of 640 by 360 pixels at most.
    const QUrl url = QUrl::fromLocalFile(savedPicture({1280, 720}));
    PosterItem loaded(PosterItem::Shape::Panel, {u"x"_s, {}, url}, u"loaded"_s);
    loaded.place(place);
    QCOMPARE(neededBytes(*stateOf(loaded)), 160 * 90 * 4 + 640 * 360 * 4);
    QVERIFY(importance(*stateOf(loaded)) > importance(*stateOf(painted)));
}

void tst_PosterItem::holdsNothingBeforeItIsAllowed()
{
    PosterItem item(PosterItem::Shape::Card, {u"x"_s, {}, {}}, u"card"_s);
    item.place(place);
    QVERIFY(!item.isWanted());
    QVERIFY(item.picture().isNull());
    allow(item);
    QVERIFY(item.isWanted());
    QVERIFY(item.picture().isNull());
}

void tst_PosterItem::createsAndReleases()
{
    PosterItem item(PosterItem::Shape::Panel, {u"x"_s, {}, {}}, u"panel"_s);
    item.place(place);
    allow(item);
    item.create();
    QVERIFY(!item.isWanted());
    QCOMPARE(item.picture().size(), place.size());
    QVERIFY(colours(item.picture().toImage()) > 100);

    // A second permission asks for nothing: the item has its picture already.
    allow(item);
    QVERIFY(!item.isWanted());

    m_tracker->releaseResources(stateOf(item));
    QVERIFY(!item.isWanted());
    QVERIFY(item.picture().isNull());
}

void tst_PosterItem::leavesTheTrackerWhenDestroyed()
{
    auto item = std::make_unique<PosterItem>(PosterItem::Shape::Card,
                                             PosterItem::Subject{u"x"_s, {}, {}}, u"card"_s);
    item->place(place);
    m_tracker->setMessagesEnabled(true);
    item.reset();
    QVERIFY(m_tracker->owners().empty());
    QVERIFY(m_tracker->resources().empty());
    // The log still has the name of an item that is destroyed.
    QCOMPARE(m_tracker->messages().size(), 2);
    QCOMPARE(m_tracker->messages().constFirst().objectName, u"card"_s);
    QCOMPARE(m_tracker->messages().constFirst().className, u"tvguide::PosterItem"_s);
}

void tst_PosterItem::aMoveChangesNothingElse()
{
    PosterItem item(PosterItem::Shape::Card, {u"x"_s, {}, {}}, u"card"_s);
    item.place(place);
    allow(item);
    item.create();

    const QSignalSpy changes(m_tracker.get(), &SceneResourceTracker::resourcesChanged);
    item.place(place.translated(7, 5));
    QCOMPARE(stateOf(item)->geometry, place.translated(7, 5));
    QVERIFY(!item.picture().isNull());
    QCOMPARE(changes.count(), 0);
}

void tst_PosterItem::aNewSizeMakesANewBuffer()
{
    PosterItem item(PosterItem::Shape::Card, {u"x"_s, {}, {}}, u"card"_s);
    item.place(place);
    allow(item);
    item.create();

    item.place({0, 0, 80, 45});
    QCOMPARE(m_tracker->resources().size(), std::size_t(2));
    QCOMPARE(m_tracker->resources().front().name, u"80x45"_s);
    QVERIFY(item.isWanted());
    QVERIFY(item.picture().isNull());
    item.create();
    QCOMPARE(item.picture().size(), QSize(80, 45));
}

void tst_PosterItem::aBrokenPictureIsReplacedByAPaintedOne()
{
    const QString fileName = savedPicture({320, 180});
    PosterItem item(PosterItem::Shape::Panel, {u"x"_s, {}, QUrl::fromLocalFile(fileName)},
                    u"panel"_s);
    item.place(place);
    allow(item);
    QVERIFY(QFile::remove(fileName));

    item.create();
    QVERIFY(colours(item.picture().toImage()) > 100);
    QCOMPARE(m_tracker->resources().size(), std::size_t(2));
    QCOMPARE(m_tracker->resources().back().type, ResourceInfo::PaintedItem);
    QCOMPARE(neededBytes(*stateOf(item)), 160 * 90 * 4);
}

void tst_PosterItem::refusesFilesWithoutPicture_data()
{
    QTest::addColumn<QUrl>("url");

    const QString text = m_folder.filePath(u"text.png"_s);
    QFile file(text);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("not a picture");

    QTest::newRow("none") << QUrl();
    QTest::newRow("remote") << QUrl(u"https://pictures.example/a.png"_s);
    QTest::newRow("missing") << QUrl::fromLocalFile(m_folder.filePath(u"missing.png"_s));
    QTest::newRow("folder") << QUrl::fromLocalFile(m_folder.path());
    QTest::newRow("endless device") << QUrl::fromLocalFile(u"/dev/zero"_s);
    QTest::newRow("text") << QUrl::fromLocalFile(text);
    QTest::newRow("invalid") << QUrl(u"http://[bad"_s);
}

void tst_PosterItem::refusesFilesWithoutPicture()
{
    QFETCH(const QUrl, url);
    PosterItem item(PosterItem::Shape::Card, {u"x"_s, {}, url}, u"card"_s);
    item.place(place);
    QCOMPARE(m_tracker->resources().back().type, ResourceInfo::PaintedItem);
}

void tst_PosterItem::paintsTheSameForTheSameTitle()
{
    const auto picture = [this](const QString &title) {
        PosterItem item(PosterItem::Shape::Panel, {title, u"Кино"_s, {}}, u"panel"_s);
        item.place(place);
        allow(item);
        item.create();
        return item.picture().toImage();
    };
    QCOMPARE(picture(u"Один"_s), picture(u"Один"_s));
    QVERIFY(picture(u"Один"_s) != picture(u"Другой"_s));
}

void tst_PosterItem::fadesCardsTowardsTheText()
{
    const QUrl url = QUrl::fromLocalFile(savedPicture({320, 180}));
    PosterItem item(PosterItem::Shape::Card, {u"x"_s, {}, url}, u"card"_s);
    item.place(place);
    allow(item);
    item.create();
    const QImage picture = item.picture().toImage();
    const int middle = place.height() / 2;
    QVERIFY(picture.pixelColor(1, middle).alpha() < 16);
    QVERIFY(picture.pixelColor(place.width() / 2, middle).alpha() > 64);
    QVERIFY(picture.pixelColor(place.width() - 2, middle).alpha() > 192);
    // Round corners.
    QCOMPARE(picture.pixelColor(place.width() - 1, 0).alpha(), 0);
}

void tst_PosterItem::worksWithoutATracker()
{
    ovelin::setSceneResourceTracker(nullptr);
    PosterItem item(PosterItem::Shape::Card, {u"x"_s, {}, {}}, u"card"_s);
    item.place(place);
    item.place({0, 0, 80, 45});
    QVERIFY(!item.isWanted());
}

QTEST_MAIN(tst_PosterItem)
#include "tst_posteritem.moc"
