#include "guideinvariants.h"
#include "wording.h"
#include "xmltvreader.h"

#include <QStringDecoder>
#include <QTest>

using namespace tvguide;
using namespace tvguide::tests;
using namespace Qt::StringLiterals;

// Each file in data/ shows one feature of the format and is named after it. The table says what a
// viewer whose language is Russian gets from the file: a line for each channel, a line for each of its
// programmes with start, stop and title, and a line for each further detail.

namespace {

const QString folder = u":/xmltv/"_s;

QStringList describe(const Programme &programme, const WallClock &clock)
{
    QStringList lines{
        u"%1 %2 %3"_s.arg(clock.iso(programme.start), clock.iso(programme.stop), programme.title)};
    const auto add = [&lines](const QString &name, const QString &value) {
        if (!value.isEmpty())
            lines += name + u": "_s + value;
    };
    add(u"sub-title"_s, programme.subTitle);
    add(u"desc"_s, programme.description);
    add(u"category"_s, programme.category);
    add(u"icon"_s, programme.icon.toString());
    add(u"episode"_s, wordingFor(u"en"_s).episodeNumber(programme.episodeNumber));
    add(u"episode text"_s, programme.episodeText);
    add(u"new"_s, programme.isNew ? u"yes"_s : QString());
    add(u"premiere"_s, programme.isPremiere ? u"yes"_s : QString());
    add(u"premiere text"_s, programme.premiere);
    add(u"ratings"_s, programme.ratings.join(u' '));
    add(u"also"_s, programme.alsoInSlot.join(u' '));
    return lines;
}

QStringList describe(const Guide &guide)
{
    QStringList lines;
    for (const Channel &channel : guide.channels()) {
        lines += u"channel %1 %2"_s.arg(channel.number, channel.name);
        for (const Programme &programme : channel.programmes)
            lines += describe(programme, guide.clock());
    }
    return lines;
}

} // namespace

class tst_XmltvFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheFile_data();
    void readsTheFile();
    void readsTheEncodingsThatQtKnows();
};

void tst_XmltvFiles::readsTheFile_data()
{
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("expectedProblems");

    const auto row = [](const char *file, const QStringList &expected,
                        const QStringList &expectedProblems = {}) {
        QTest::newRow(file) << expected << expectedProblems;
    };
    const QString one = u"channel 1 one"_s;

    // Time zones. The clock of a guide has the zone of its first programme.
    row("zone-bst.xml", {one, u"2001-08-29T00:05:00+01:00 2001-08-29T01:30:00+01:00 Night film"_s});
    row("zone-msk.xml", {one, u"2025-03-14T19:00:00+03:00 2025-03-14T20:00:00+03:00 Вечер"_s});
    row("zone-edt.xml", {one, u"2024-07-04T20:00:00-04:00 2024-07-04T21:00:00-04:00 Fireworks"_s});
    row("zone-half-hour.xml",
        {one, u"2024-01-15T18:00:00+05:30 2024-01-15T19:00:00+05:30 Cricket"_s,
         u"2024-01-15T21:00:00+05:30 2024-01-15T22:00:00+05:30 Fishing"_s});
    row("zone-lower-case.xml",
        {one, u"2024-07-04T20:00:00+02:00 2024-07-04T21:00:00+02:00 Abend"_s});
    row("zone-number.xml", {one, u"2025-03-14T19:00:00+03:00 2025-03-14T20:00:00+03:00 Ahead"_s,
                            u"2025-03-15T02:30:00+03:00 2025-03-15T03:30:00+03:00 Behind"_s});
    row("zone-none.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T20:00:00+00:00 In UTC"_s});
    row("zone-without-a-space.xml",
        {one, u"2025-03-14T19:00:00+01:00 2025-03-14T20:00:00+01:00 Abend"_s});
    row("zone-of-start-and-stop.xml",
        {one, u"2024-10-27T00:30:00+01:00 2024-10-27T02:30:00+01:00 The clock goes back"_s});
    row("zone-unknown.xml", {one, u"2025-03-14T20:00:00+00:00 2025-03-14T21:00:00+00:00 Kept"_s},
        {u"4:80: programme with an impossible start \"20250314190000 QQQ\": the time zone \"QQQ\" "
         "is none of UTC, UT, Z, GMT, WET, WEST, BST, CET, CEST, MET, MEST, EET, EEST, MSK, MSD, "
         "WAT, CAT, SAST, EAT, IDT, PKT, IST, WIB, WITA, HKT, WIT, JST, KST, AWST, ACST, ACDT, "
         "AEST, AEDT, CHST, NZST, NZDT, SST, HST, HDT, AKST, AKDT, PST, PDT, MST, MDT, CST, CDT, "
         "EST, EDT, AST, ADT, NST, NDT"_s,
         u"7:89: programme with an impossible stop \"20250314200000 Europe/Paris\": the time zone "
         "\"Europe/Paris\" is none of UTC, UT, Z, GMT, WET, WEST, BST, CET, CEST, MET, MEST, EET, "
         "EEST, MSK, MSD, WAT, CAT, SAST, EAT, IDT, PKT, IST, WIB, WITA, HKT, WIT, JST, KST, AWST, "
         "ACST, ACDT, AEST, AEDT, CHST, NZST, NZDT, SST, HST, HDT, AKST, AKDT, PST, PDT, MST, MDT, "
         "CST, CDT, EST, EDT, AST, ADT, NST, NDT"_s});

    // A time may leave out its last fields: a missing month or day is 1, a missing hour, minute or second 0.
    row("time-year.xml", {one, u"2025-01-01T00:00:00+00:00 2026-01-01T00:00:00+00:00 All year"_s});
    row("time-month.xml",
        {one, u"2002-09-01T00:00:00+01:00 2002-10-01T00:00:00+01:00 All September"_s});
    row("time-day.xml", {one, u"2025-03-14T00:00:00+03:00 2025-03-15T00:00:00+03:00 All day"_s});
    row("time-hour.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T20:00:00+00:00 An hour"_s});
    row("time-minute.xml",
        {one, u"2000-07-28T17:33:00+01:00 2000-07-28T17:45:00+01:00 Twelve minutes"_s});
    row("time-impossible.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T20:00:00+00:00 Kept"_s},
        {u"4:66: programme with an impossible start \"20250230190000\""_s,
         u"7:50: programme with an impossible start \"20250314250000\""_s});

    // A programme without a stop lasts until the next one on its channel starts. The last one on a channel
    // lasts half an hour.
    row("stop-missing.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T19:45:00+00:00 First"_s,
                             u"2025-03-14T19:45:00+00:00 2025-03-14T20:15:00+00:00 Last"_s});
    row("stop-missing-on-two-channels.xml",
        {one, u"2025-03-14T19:00:00+00:00 2025-03-14T21:00:00+00:00 Long"_s,
         u"2025-03-14T21:00:00+00:00 2025-03-14T22:00:00+00:00 Next"_s, u"channel 2 two"_s,
         u"2025-03-14T19:15:00+00:00 2025-03-14T19:30:00+00:00 Elsewhere"_s});
    row("stop-before-start.xml",
        {one, u"2025-03-14T20:00:00+00:00 2025-03-14T21:00:00+00:00 Kept"_s},
        {u"4:72: programme that stops at \"20250314180000\", not after its start at "
         "\"20250314190000\""_s});
    row("overlap.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T20:00:00+00:00 Cut"_s,
                        u"2025-03-14T20:00:00+00:00 2025-03-14T21:00:00+00:00 Whole"_s});
    row("order.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T20:00:00+00:00 First"_s,
                      u"2025-03-14T20:00:00+00:00 2025-03-14T21:00:00+00:00 Second"_s});

    // Several programmes in one slot.
    row("clump.xml",
        {one, u"2025-03-14T19:00:00+00:00 2025-03-14T19:30:00+00:00 News"_s, u"also: Weather"_s});
    row("clump-in-another-order.xml",
        {one, u"2025-03-14T19:00:00+00:00 2025-03-14T19:30:00+00:00 News"_s,
         u"also: Weather Sport"_s});
    row("clump-with-one-stop.xml",
        {one, u"2025-03-14T19:00:00+00:00 2025-03-14T19:15:00+00:00 News"_s, u"also: Weather"_s,
         u"2025-03-14T20:00:00+00:00 2025-03-14T21:00:00+00:00 Film"_s});
    row("clump-of-one.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T19:30:00+00:00 News"_s});
    row("clump-on-two-channels.xml",
        {one, u"2025-03-14T19:00:00+00:00 2025-03-14T19:30:00+00:00 News"_s, u"channel 2 two"_s,
         u"2025-03-14T19:00:00+00:00 2025-03-14T19:30:00+00:00 Weather"_s});
    row("clump-impossible.xml",
        {one, u"2025-03-14T20:00:00+00:00 2025-03-14T21:00:00+00:00 Kept"_s},
        {u"4:87: programme with an impossible clumpidx \"2/2\": expected one like \"0/2\""_s,
         u"7:89: programme with an impossible clumpidx \"first\": expected one like \"0/2\""_s});
    row("correction.xml", {one, u"2025-03-14T19:00:00+00:00 2025-03-14T19:45:00+00:00 Corrected"_s},
        {u"7:72: programme that replaces an earlier one with the same channel and start"_s});

    // Languages. The viewer's language is preferred.
    const QString evening = u"2025-03-14T19:00:00+00:00 2025-03-14T20:00:00+00:00 "_s;
    row("display-name-languages.xml", {u"channel 1 Первый"_s, evening + u"Программа"_s});
    row("display-name-number.xml", {u"channel 42 Первый"_s, evening + u"Программа"_s});
    row("title-languages.xml", {one, evening + u"Дом"_s});
    row("title-in-other-languages.xml", {one, evening + u"Das Haus"_s});
    row("title-of-a-region.xml", {one, evening + u"Дом"_s});
    row("title-missing.xml", {one, evening, u"desc: A surprise."_s});
    row("desc-languages.xml", {one, evening + u"Дом"_s, u"desc: Люди строят."_s});
    row("desc-on-several-lines.xml",
        {one, evening + u"Дом"_s, u"desc: Люди строят, а кот смотрит."_s});
    row("sub-title.xml", {one, evening + u"The house"_s, u"sub-title: The roof"_s});
    row("sub-title-languages.xml", {one, evening + u"The house"_s, u"sub-title: Крыша"_s});

    // Episodes. The numbers of xmltv_ns count from 0.
    const QString house = evening + u"The house"_s;
    row("episode-onscreen.xml", {one, house, u"episode text: S2E5"_s});
    row("episode-without-a-system.xml", {one, house, u"episode text: #FFEE"_s});
    row("episode-xmltv-ns.xml", {one, house, u"episode: Season 2, episode 5, part 1 of 2"_s});
    row("episode-xmltv-ns-totals.xml",
        {one, house, u"episode: Season 1, episode 13 of 13, part 1 of 3"_s});
    row("episode-xmltv-ns-season.xml", {one, house, u"episode: Season 3"_s});
    row("episode-xmltv-ns-part.xml", {one, house, u"episode: Part 2 of 3"_s});
    row("episode-xmltv-ns-unknown.xml", {one, house});
    row("episode-xmltv-ns-malformed.xml", {one, house, u"episode text: season two"_s});
    row("episode-in-both-systems.xml",
        {one, house, u"episode: Season 2, episode 5"_s, u"episode text: S2E5"_s});
    row("episode-in-other-systems.xml", {one, house});

    // Other elements.
    row("new.xml", {one, house, u"new: yes"_s});
    row("premiere.xml", {one, house, u"premiere: yes"_s});
    row("premiere-text.xml",
        {one, house, u"premiere: yes"_s, u"premiere text: Впервые на канале"_s});
    row("rating.xml", {one, house, u"ratings: PG"_s});
    row("rating-of-two-bodies.xml", {one, house, u"ratings: PG 12"_s});
    row("icon.xml", {one, house, u"icon: qrc:/xmltv/house.png"_s});
    row("elements-of-no-use.xml", {one, house});

    // Channels.
    row("channel-undescribed.xml", {u"channel 1 one.example"_s, evening + u"Film"_s});
    row("channel-described-last.xml", {u"channel 1 First"_s, evening + u"Film"_s});
    row("channel-described-twice.xml", {u"channel 1 First"_s, evening + u"Film"_s},
        {u"7:20: second description of the channel \"one\""_s});
    row("channel-without-programmes.xml", {u"channel 2 Second"_s, evening + u"Film"_s});

    // Encodings.
    row("encoding-iso-8859-1.xml", {one, evening + u"Zürich bei Nacht"_s});
    row("encoding-utf-16.xml", {one, evening + u"Дом"_s});
    row("encoding-unsaid.xml", {one, evening + u"Дом"_s});
    row("encoding-utf-8-with-a-byte-order-mark.xml", {one, evening + u"Дом"_s});
    row("encoding-wrong.xml", {},
        {u"4:1: the text is not UTF-8: declare its encoding or convert the file"_s});
    row("encoding-unknown.xml", {},
        {u"1:1: the encoding \"x-nobody-has-it\" is unknown here: convert the file to UTF-8 "
         "first"_s});

    // Files.
    row("compressed.xml.gz", {}, {u"1:1: the file is compressed with gzip: decompress it first"_s});
    row("broken.xml", {one, evening + u"Before the fault"_s},
        {u"8:30: the file is broken here: Opening and ending tag mismatch."_s});
    row("second-guide.xml", {one, evening + u"First"_s},
        {u"8:4: the file is broken here: Extra content at end of document."_s});
    row("not-a-guide.xml", {}, {u"1:6: expected the element tv, found \"html\""_s});

    row("everything.xml",
        {u"channel 7 Первый маяк"_s,
         u"2025-03-14T19:00:00+03:00 2025-03-14T20:30:00+03:00 Хранители старой пристани"_s,
         u"sub-title: Возвращение смотрителя"_s, u"desc: Кто-то каждую ночь переставляет лодки."_s,
         u"category: Сериал"_s, u"episode: Season 2, episode 5, part 1 of 2"_s,
         u"episode text: S2E5"_s, u"new: yes"_s, u"premiere: yes"_s,
         u"premiere text: Первый показ в эфире"_s, u"ratings: 12+"_s, u"also: Погода"_s});
}

void tst_XmltvFiles::readsTheFile()
{
    QFETCH(const QStringList, expected);
    QFETCH(const QStringList, expectedProblems);

    const QString fileName = folder + QString::fromLatin1(QTest::currentDataTag());
    QStringList problems;
    const XmltvResult result = readXmltv(fileName, u"ru"_s, [&](const QString &line) {
        QVERIFY2(line.startsWith(fileName + u':'), qPrintable(line));
        QCOMPARE(problemViolation(line), QString());
        problems += line.sliced(fileName.size() + 1);
    });
    QCOMPARE(describe(result.guide), expected);
    QCOMPARE(problems, expectedProblems);
    QCOMPARE(resultViolation(result, int(problems.size())), QString());
}

// Qt decodes windows-1251 only if Qt was built with ICU.
void tst_XmltvFiles::readsTheEncodingsThatQtKnows()
{
    QStringList problems;
    const XmltvResult result = readXmltv(folder + u"encoding-windows-1251.xml"_s, u"ru"_s,
                                         [&problems](const QString &line) { problems += line; });
    if (QStringDecoder("windows-1251").isValid()) {
        QCOMPARE(problems, QStringList());
        QCOMPARE(result.guide.channels().at(0).programmes.at(0).title, u"Дом"_s);
    } else {
        QCOMPARE(problems, QStringList(u":/xmltv/encoding-windows-1251.xml:1:1: the encoding "
                                       "\"windows-1251\" is unknown here: convert the file to "
                                       "UTF-8 first"_s));
        QVERIFY(result.guide.isEmpty());
    }
}

QTEST_GUILESS_MAIN(tst_XmltvFiles)
#include "tst_xmltvfiles.moc"
