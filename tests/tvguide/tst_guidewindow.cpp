#include "guidewindow.h"
#include "presentation.h"
#include "trackerlog.h"

#include <QTest>

#include <memory>
#include <utility>

using namespace tvguide;
using namespace Qt::StringLiterals;
using namespace std::chrono;

class tst_GuideWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void arrowsMoveTheFocus();
    void picturesAppearWithoutInput();
    void theSceneTakesTheSizeOfTheWindow();
    void theKeyLShowsTheLogOnALatinAndARussianKeyboard();
    void escapeCloses();

private:
    GuideScene &scene() { return m_presentation->scene(); }

    Guide m_guide;
    std::unique_ptr<ovelin::SceneResourceTracker> m_tracker;
    std::unique_ptr<TrackerLog> m_log;
    std::unique_ptr<Presentation> m_presentation;
    std::unique_ptr<GuideWindow> m_window;
};

void tst_GuideWindow::init()
{
    constexpr qint64 budget = 24 * 1024 * 1024;
    const Instant begin = sys_days(year(2025) / 3 / 14) + hours(20);
    std::vector<Channel> channels(2);
    for (Channel &channel : channels) {
        for (int i = 0; i < 4; ++i) {
            Programme programme;
            programme.start = begin + i * minutes(30);
            programme.stop = programme.start + minutes(30);
            channel.programmes.push_back(programme);
        }
    }
    m_guide = Guide(std::move(channels), seconds(0));

    m_tracker = std::make_unique<ovelin::SceneResourceTracker>();
    ovelin::setSceneResourceTracker(m_tracker.get());
    m_log = std::make_unique<TrackerLog>(*m_tracker);
    m_presentation = std::make_unique<Presentation>(*m_tracker, m_guide, wordingFor(u"ru"_s),
                                                    QSize(640, 360), begin, budget);
    m_window = std::make_unique<GuideWindow>(*m_presentation, *m_log);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_GuideWindow::cleanup()
{
    m_window.reset();
    m_presentation.reset();
    m_log.reset();
    ovelin::setSceneResourceTracker(nullptr);
    m_tracker.reset();
}

void tst_GuideWindow::arrowsMoveTheFocus()
{
    QTest::keyClick(m_window.get(), Qt::Key_Right);
    QCOMPARE(scene().focus(), (ProgrammeIndex{0, 1}));
    QTest::keyClick(m_window.get(), Qt::Key_Down);
    QCOMPARE(scene().focus(), (ProgrammeIndex{1, 1}));
    QTest::keyClick(m_window.get(), Qt::Key_Left);
    QCOMPARE(scene().focus(), (ProgrammeIndex{1, 0}));
    QTest::keyClick(m_window.get(), Qt::Key_Up);
    QCOMPARE(scene().focus(), (ProgrammeIndex{0, 0}));
}

void tst_GuideWindow::picturesAppearWithoutInput()
{
    QVERIFY(QTest::qWaitFor([this] { return !scene().hasWantedPictures(); }));
    QVERIFY(!scene().panel().poster->picture().isNull());
}

void tst_GuideWindow::theSceneTakesTheSizeOfTheWindow()
{
    m_window->resize(800, 600);
    QVERIFY(QTest::qWaitFor([this] { return scene().layout().size() == QSize(800, 600); }));
}

void tst_GuideWindow::theKeyLShowsTheLogOnALatinAndARussianKeyboard()
{
    QVERIFY(!m_window->isLogShown());
    QTest::keyClick(m_window.get(), Qt::Key_L);
    QVERIFY(m_window->isLogShown());
    QTest::sendKeyEvent(QTest::Click, m_window.get(), Qt::Key(0x0414), u"д"_s, Qt::NoModifier);
    QVERIFY(!m_window->isLogShown());
}

void tst_GuideWindow::escapeCloses()
{
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QVERIFY(!m_window->isVisible());
}

QTEST_MAIN(tst_GuideWindow)
#include "tst_guidewindow.moc"
