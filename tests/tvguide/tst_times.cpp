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
    void readsIsoTimes_data();
    void readsIsoTimes();
    void refusesImpossibleIsoTimes_data();
    void refusesImpossibleIsoTimes();
    void assumesAnOffsetOnlyWhereNoneWasWritten();
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
    QTest::newRow("around it spaces") << "  20250314201005 +0300 " << qint64(0);
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

    for (const char *text :
         {"", " ", "x", "2025031", "20251301", "20250230", "20250314246000", "20250314236000",
          "20250314235960", "00000101", "20250314 +2500", "20250314 +0375", "20250314201005 EST",
          "20250314201005 +03", "202503142010055", "-20250314", "2025-03-14T20:10:05"}) {
        QTest::newRow(text) << text;
    }
    QTest::newRow("digits of another script") << QStringLiteral("٢٠٢٥٠٣١٤");
}

void tst_Times::refusesImpossibleXmltvTimes()
{
    QFETCH(const QString, text);
    QVERIFY(!readXmltvTime(text));
}

void tst_Times::readsIsoTimes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("secondsBefore");

    QTest::newRow("offset") << "2025-03-14T20:10:05+03:00" << qint64(0);
    QTest::newRow("Z") << "2025-03-14T17:10:05Z" << qint64(0);
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

void tst_Times::assumesAnOffsetOnlyWhereNoneWasWritten()
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
