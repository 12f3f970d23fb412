#include "times.h"

#include <QTest>

using namespace tvguide;
using namespace std::chrono;

namespace {

// 2025-03-14T17:10:05Z
const Instant evening = sys_days(year(2025) / 3 / 14) + hours(17) + minutes(10) + seconds(5);

} // namespace

class tst_Times : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsXmltvTimes_data();
    void readsXmltvTimes();
    void refusesImpossibleXmltvTimes_data();
    void refusesImpossibleXmltvTimes();
    void readsNamesOfTimeZones_data();
    void readsNamesOfTimeZones();
    void findsUnknownTimeZones_data();
    void findsUnknownTimeZones();
    void readsIsoTimes_data();
    void readsIsoTimes();
    void refusesImpossibleIsoTimes_data();
    void refusesImpossibleIsoTimes();
    void assumesAnOffsetOnlyForTimesWithoutOffset();
    void showsTheClockOfTheGuide();
};

void tst_Times::readsXmltvTimes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("secondsBefore");

    QTest::newRow("offset ahead") << "20250314201005 +0300" << qint64(0);
    QTest::newRow("offset behind") << "20250314121005 -0500" << qint64(0);
    QTest::newRow("half hour") << "20250314224005 +0530" << qint64(0);
    QTest::newRow("no offset is UTC") << "20250314171005" << qint64(0);
    QTest::newRow("UTC by name") << "20250314171005 UTC" << qint64(0);
    QTest::newRow("no space") << "20250314201005+0300" << qint64(0);
    QTest::newRow("colon") << "20250314201005 +03:00" << qint64(0);
    QTest::newRow("no seconds") << "202503142010 +0300" << qint64(5);
    QTest::newRow("no minutes") << "2025031420 +0300" << qint64(10 * 60 + 5);
    QTest::newRow("day") << "20250314" << qint64(17 * 3600 + 10 * 60 + 5);
    QTest::newRow("month") << "202503" << qint64(13 * 86400 + 17 * 3600 + 10 * 60 + 5);
    QTest::newRow("year") << "2025" << qint64(72 * 86400 + 17 * 3600 + 10 * 60 + 5);
    QTest::newRow("spaces around it") << "  20250314201005 +0300 " << qint64(0);
}

void tst_Times::readsXmltvTimes()
{
    QFETCH(const QString, text);
    QFETCH(const qint64, secondsBefore);

    const auto time = readXmltvTime(text);
    QVERIFY(time);
    QCOMPARE((evening - time->instant(seconds(0))).count(), secondsBefore);
}

void tst_Times::refusesImpossibleXmltvTimes_data()
{
    QTest::addColumn<QString>("text");

    for (const char *text : {"",
                             " ",
                             "x",
                             "2025031",
                             "20251301",
                             "20250230",
                             "20250314246000",
                             "20250314236000",
                             "20250314235960",
                             "00000101",
                             "20250314 +2500",
                             "20250314 +0375",
                             "20250314201005 QQQ",
                             "20250314201005 E",
                             "20250314201005 EST5EDT",
                             "20250314201005 EST EST",
                             "20250314201005 +03",
                             "202503142010055",
                             "-20250314",
                             "2025-03-14T20:10:05"}) {
        QTest::newRow(text) << text;
    }
    QTest::newRow("digits of another script") << QStringLiteral("٢٠٢٥٠٣١٤");
}

void tst_Times::refusesImpossibleXmltvTimes()
{
    QFETCH(const QString, text);
    QVERIFY(!readXmltvTime(text));
}

void tst_Times::readsNamesOfTimeZones_data()
{
    QTest::addColumn<QString>("offset");

    QTest::newRow("UTC") << "+0000";
    QTest::newRow("UT") << "+0000";
    QTest::newRow("Z") << "+0000";
    QTest::newRow("GMT") << "+0000";
    QTest::newRow("WET") << "+0000";
    QTest::newRow("WEST") << "+0100";
    QTest::newRow("BST") << "+0100";
    QTest::newRow("CET") << "+0100";
    QTest::newRow("CEST") << "+0200";
    QTest::newRow("MET") << "+0100";
    QTest::newRow("MEST") << "+0200";
    QTest::newRow("EET") << "+0200";
    QTest::newRow("EEST") << "+0300";
    QTest::newRow("MSK") << "+0300";
    QTest::newRow("MSD") << "+0400";
    QTest::newRow("WAT") << "+0100";
    QTest::newRow("CAT") << "+0200";
    QTest::newRow("SAST") << "+0200";
    QTest::newRow("EAT") << "+0300";
    QTest::newRow("IDT") << "+0300";
    QTest::newRow("PKT") << "+0500";
    QTest::newRow("IST") << "+0530";
    QTest::newRow("WIB") << "+0700";
    QTest::newRow("WITA") << "+0800";
    QTest::newRow("HKT") << "+0800";
    QTest::newRow("WIT") << "+0900";
    QTest::newRow("JST") << "+0900";
    QTest::newRow("KST") << "+0900";
    QTest::newRow("AWST") << "+0800";
    QTest::newRow("ACST") << "+0930";
    QTest::newRow("ACDT") << "+1030";
    QTest::newRow("AEST") << "+1000";
    QTest::newRow("AEDT") << "+1100";
    QTest::newRow("CHST") << "+1000";
    QTest::newRow("NZST") << "+1200";
    QTest::newRow("NZDT") << "+1300";
    QTest::newRow("SST") << "-1100";
    QTest::newRow("HST") << "-1000";
    QTest::newRow("HDT") << "-0900";
    QTest::newRow("AKST") << "-0900";
    QTest::newRow("AKDT") << "-0800";
    QTest::newRow("PST") << "-0800";
    QTest::newRow("PDT") << "-0700";
    QTest::newRow("MST") << "-0700";
    QTest::newRow("MDT") << "-0600";
    QTest::newRow("CST") << "-0600";
    QTest::newRow("CDT") << "-0500";
    QTest::newRow("EST") << "-0500";
    QTest::newRow("EDT") << "-0400";
    QTest::newRow("AST") << "-0400";
    QTest::newRow("ADT") << "-0300";
    QTest::newRow("NST") << "-0330";
    QTest::newRow("NDT") << "-0230";
    QTest::newRow("cest") << "+0200";
}

void tst_Times::readsNamesOfTimeZones()
{
    QFETCH(const QString, offset);

    const QString wall = QStringLiteral("20250314201005 ");
    const QString inZone = wall + QString::fromLatin1(QTest::currentDataTag());
    QVERIFY(readXmltvTime(inZone));
    QCOMPARE(*readXmltvTime(inZone)->utcOffset, *readXmltvTime(wall + offset)->utcOffset);
    QCOMPARE(unknownTimeZone(inZone), QString());
}

void tst_Times::findsUnknownTimeZones_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("zone");

    QTest::newRow("unknown") << "20250314201005 QQQ" << "QQQ";
    QTest::newRow("short time") << "202503 QQQ" << "QQQ";
    QTest::newRow("name of a place") << "20250314201005 Europe/Paris" << "Europe/Paris";
    QTest::newRow("no space") << "20250314201005QQQ" << "QQQ";
    QTest::newRow("known") << "20250314201005 BST" << "";
    QTest::newRow("number") << "20250314201005 +2500" << "";
    QTest::newRow("none") << "20250314201005" << "";
    QTest::newRow("no time") << "soon" << "";
}

void tst_Times::findsUnknownTimeZones()
{
    QFETCH(const QString, text);
    QFETCH(const QString, zone);
    QCOMPARE(unknownTimeZone(text), zone);
}

void tst_Times::readsIsoTimes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("secondsBefore");

    QTest::newRow("offset") << "2025-03-14T20:10:05+03:00" << qint64(0);
    QTest::newRow("Z") << "2025-03-14T17:10:05Z" << qint64(0);
    QTest::newRow("name of a time zone") << "2025-03-14T20:10:05 MSK" << qint64(0);
    QTest::newRow("no offset") << "2025-03-14T17:10:05" << qint64(0);
    QTest::newRow("space for T") << "2025-03-14 17:10:05" << qint64(0);
    QTest::newRow("no seconds") << "2025-03-14T17:10" << qint64(5);
    QTest::newRow("day") << "2025-03-14" << qint64(17 * 3600 + 10 * 60 + 5);
}

void tst_Times::readsIsoTimes()
{
    QFETCH(const QString, text);
    QFETCH(const qint64, secondsBefore);

    const auto time = readIsoTime(text);
    QVERIFY(time);
    QCOMPARE((evening - time->instant(seconds(0))).count(), secondsBefore);
}

void tst_Times::refusesImpossibleIsoTimes_data()
{
    QTest::addColumn<QString>("text");

    for (const char *text :
         {"", "today", "2025-02-30", "2025-03-14T", "2025-03-14T24:00", "2025-03-14T20:60",
          "2025-3-14", "20250314201005", "2025-03-14T20:10+15:00"}) {
        QTest::newRow(text) << text;
    }
}

void tst_Times::refusesImpossibleIsoTimes()
{
    QFETCH(const QString, text);
    QVERIFY(!readIsoTime(text));
}

void tst_Times::assumesAnOffsetOnlyForTimesWithoutOffset()
{
    QCOMPARE(readIsoTime(u"2025-03-14T20:10:05")->instant(hours(3)), evening);
    QCOMPARE(readIsoTime(u"2025-03-14T17:10:05Z")->instant(hours(3)), evening);
}

void tst_Times::showsTheClockOfTheGuide()
{
    const WallClock moscow(hours(3));
    QCOMPARE(moscow.hoursAndMinutes(evening), QStringLiteral("20:10"));
    QCOMPARE(moscow.iso(evening), QStringLiteral("2025-03-14T20:10:05+03:00"));

    const WallClock behind(-hours(3) - minutes(30));
    QCOMPARE(behind.iso(evening), QStringLiteral("2025-03-14T13:40:05-03:30"));

    const WallClock farAhead(hours(14));
    QCOMPARE(farAhead.date(evening), QDate(2025, 3, 15));
    QCOMPARE(farAhead.hoursAndMinutes(evening), QStringLiteral("07:10"));

    const Instant longAgo = sys_days(year(1) / 1 / 1) + hours(1);
    QCOMPARE(WallClock().iso(longAgo), QStringLiteral("0001-01-01T01:00:00+00:00"));
}

QTEST_APPLESS_MAIN(tst_Times)
#include "tst_times.moc"
