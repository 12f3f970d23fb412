#include "guide.h"

#include <QTest>

#include <utility>

using namespace tvguide;
using namespace std::chrono;

namespace {

Instant at(int hour, int minute = 0)
{
    return sys_days(year(2025) / 3 / 14) + hours(hour) + minutes(minute);
}

Programme programme(const QString &title, Instant start, Instant stop = Programme::unknownStop)
{
    Programme programme;
    programme.start = start;
    programme.stop = stop;
    programme.title = title;
    return programme;
}

// A programme of a slot that begins at 19:00.
Programme inSlot(int clumpIndex, const QString &title, Instant stop)
{
    Programme slotMember = programme(title, at(19), stop);
    slotMember.clumpIndex = clumpIndex;
    return slotMember;
}

Guide guideOf(std::vector<Programme> programmes, seconds utcOffset = {})
{
    Channel channel;
    channel.id = QStringLiteral("one");
    channel.programmes = std::move(programmes);
    return Guide({channel}, utcOffset);
}

} // namespace

class tst_Guide : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sortsProgrammes();
    void aProgrammeWithoutStopLastsToTheNextStart();
    void theLastProgrammeWithoutStopLastsHalfAnHour();
    void overlappingProgrammesAreCut();
    void keepsTheLastOfProgrammesWithTheSameStart();
    void theFirstProgrammeOfASlotNamesTheOthers();
    void aSlotEndsAtTheLatestStop();
    void aCorrectionInASlotReplacesItsOwnProgramme();
    void channelsWithoutProgrammesAreLeftOut();
    void findsProgrammesByTime();
    void coversTheTimeOfItsProgrammes();
    void suggestsAnEvening();
    void suggestsTheStartOfAGuideWithoutEvening();
};

void tst_Guide::sortsProgrammes()
{
    const Guide guide = guideOf({programme(QStringLiteral("b"), at(20), at(21)),
                                 programme(QStringLiteral("a"), at(19), at(20))});
    QCOMPARE(guide.channels()[0].programmes[0].title, QStringLiteral("a"));
    QCOMPARE(guide.channels()[0].programmes[1].title, QStringLiteral("b"));
}

void tst_Guide::aProgrammeWithoutStopLastsToTheNextStart()
{
    const Guide guide = guideOf({programme(QStringLiteral("a"), at(19)),
                                 programme(QStringLiteral("b"), at(22, 15), at(23))});
    QCOMPARE(guide.channels()[0].programmes[0].stop, at(22, 15));
}

void tst_Guide::theLastProgrammeWithoutStopLastsHalfAnHour()
{
    const Guide guide = guideOf({programme(QStringLiteral("a"), at(19))});
    QCOMPARE(guide.channels()[0].programmes[0].stop, at(19, 30));
}

void tst_Guide::overlappingProgrammesAreCut()
{
    const Guide guide = guideOf({programme(QStringLiteral("long"), at(19), at(22)),
                                 programme(QStringLiteral("inside"), at(20), at(20, 30)),
                                 programme(QStringLiteral("next"), at(20, 15), at(23))});
    const auto &programmes = guide.channels()[0].programmes;
    QCOMPARE(programmes.size(), std::size_t(3));
    QCOMPARE(programmes[0].stop, at(20));
    QCOMPARE(programmes[1].stop, at(20, 15));
    QCOMPARE(programmes[2].stop, at(23));
}

void tst_Guide::keepsTheLastOfProgrammesWithTheSameStart()
{
    const Guide guide = guideOf({programme(QStringLiteral("old"), at(19), at(20)),
                                 programme(QStringLiteral("corrected"), at(19), at(20))});
    QCOMPARE(guide.programmeCount(), std::size_t(1));
    QCOMPARE(guide.channels()[0].programmes[0].title, QStringLiteral("corrected"));
}

void tst_Guide::theFirstProgrammeOfASlotNamesTheOthers()
{
    const Guide guide = guideOf({inSlot(2, QStringLiteral("sport"), at(20)),
                                 inSlot(0, QStringLiteral("news"), at(20)),
                                 inSlot(1, QStringLiteral("weather"), at(20)),
                                 programme(QStringLiteral("film"), at(21), at(23))});
    QCOMPARE(guide.programmeCount(), std::size_t(2));
    const auto &programmes = guide.channels()[0].programmes;
    QCOMPARE(programmes[0].title, QStringLiteral("news"));
    QCOMPARE(programmes[0].alsoInSlot,
             QStringList({QStringLiteral("weather"), QStringLiteral("sport")}));
    QCOMPARE(programmes[0].stop, at(20));
    QCOMPARE(programmes[1].title, QStringLiteral("film"));
    QCOMPARE(programmes[1].alsoInSlot, QStringList());
}

void tst_Guide::aSlotEndsAtTheLatestStop()
{
    const auto stopOf = [](Instant first, Instant second) {
        const Guide guide = guideOf({inSlot(0, QStringLiteral("news"), first),
                                     inSlot(1, QStringLiteral("weather"), second)});
        return guide.channels()[0].programmes[0].stop;
    };
    QCOMPARE(stopOf(at(20), at(20, 15)), at(20, 15));
    QCOMPARE(stopOf(at(20, 15), at(20)), at(20, 15));
    QCOMPARE(stopOf(at(20), Programme::unknownStop), at(20));
    QCOMPARE(stopOf(Programme::unknownStop, at(20)), at(20));
    QCOMPARE(stopOf(Programme::unknownStop, Programme::unknownStop), at(19, 30));
}

void tst_Guide::aCorrectionInASlotReplacesItsOwnProgramme()
{
    const Guide guide = guideOf({inSlot(0, QStringLiteral("news"), at(20)),
                                 inSlot(1, QStringLiteral("old"), at(20)),
                                 inSlot(1, QStringLiteral("corrected"), at(20))});
    const auto &programmes = guide.channels()[0].programmes;
    QCOMPARE(programmes.size(), std::size_t(1));
    QCOMPARE(programmes[0].title, QStringLiteral("news"));
    QCOMPARE(programmes[0].alsoInSlot, QStringList(QStringLiteral("corrected")));
}

void tst_Guide::channelsWithoutProgrammesAreLeftOut()
{
    Channel silent;
    silent.id = QStringLiteral("silent");
    QVERIFY(Guide({silent}, seconds(0)).isEmpty());
}

void tst_Guide::findsProgrammesByTime()
{
    const Guide guide = guideOf({programme(QStringLiteral("a"), at(19), at(20)),
                                 programme(QStringLiteral("b"), at(21), at(22))});
    const Channel &channel = guide.channels()[0];
    QCOMPARE(channel.firstEndingAfter(at(18)), std::size_t(0));
    QCOMPARE(channel.firstEndingAfter(at(19, 59)), std::size_t(0));
    QCOMPARE(channel.firstEndingAfter(at(20)), std::size_t(1));
    QCOMPARE(channel.firstEndingAfter(at(22)), std::size_t(2));
    QVERIFY(channel.hasProgrammeAt(at(19)));
    QVERIFY(!channel.hasProgrammeAt(at(20)));
    QVERIFY(!channel.hasProgrammeAt(at(22)));
}

void tst_Guide::coversTheTimeOfItsProgrammes()
{
    const Guide guide = guideOf({programme(QStringLiteral("a"), at(19), at(20))});
    QVERIFY(guide.covers(at(19)));
    QVERIFY(!guide.covers(at(18, 59)));
    QVERIFY(!guide.covers(at(20)));
    QVERIFY(!Guide().covers(at(19)));
}

void tst_Guide::suggestsAnEvening()
{
    // 20:10 on the viewers' clock, which is three hours ahead of UTC.
    const Guide sameDay = guideOf({programme(QStringLiteral("a"), at(10), at(23))}, hours(3));
    QCOMPARE(sameDay.suggestedTime(), at(17, 10));

    const Guide nextDay =
        guideOf({programme(QStringLiteral("a"), at(18), at(23) + days(1))}, hours(3));
    QCOMPARE(nextDay.suggestedTime(), at(17, 10) + days(1));
}

void tst_Guide::suggestsTheStartOfAGuideWithoutEvening()
{
    const Guide morning = guideOf({programme(QStringLiteral("a"), at(8), at(9))});
    QCOMPARE(morning.suggestedTime(), at(8));
}

QTEST_APPLESS_MAIN(tst_Guide)
#include "tst_guide.moc"
