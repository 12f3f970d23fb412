#include "episodenumber.h"

#include <QTest>

using namespace tvguide;

class tst_EpisodeNumber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsCounts_data();
    void readsCounts();
    void refusesOtherTexts_data();
    void refusesOtherTexts();
};

void tst_EpisodeNumber::readsCounts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("season");
    QTest::addColumn<QList<int>>("episode");
    QTest::addColumn<QList<int>>("part");

    using Count = QList<int>;
    const Count none{0, 0};
    QTest::newRow("numbers count from 0") << "1.4.0" << Count{2, 0} << Count{5, 0} << Count{1, 0};
    QTest::newRow("totals count from 1")
        << "1/3.4/10.0/2" << Count{2, 3} << Count{5, 10} << Count{1, 2};
    QTest::newRow("last of its total")
        << "0/1.12/13.2/3" << Count{1, 1} << Count{13, 13} << Count{3, 3};
    QTest::newRow("spaces") << " 0 . 12 / 13 . 0/3 " << Count{1, 0} << Count{13, 13} << Count{1, 3};
    QTest::newRow("season alone") << "2.." << Count{3, 0} << none << none;
    QTest::newRow("episode alone") << ".7." << none << Count{8, 0} << none;
    QTest::newRow("part alone") << "..1/3" << none << none << Count{2, 3};
    QTest::newRow("no part") << "1.4" << Count{2, 0} << Count{5, 0} << none;
    QTest::newRow("no dots") << "1" << Count{2, 0} << none << none;
    QTest::newRow("nothing known") << ".." << none << none << none;
    QTest::newRow("empty") << "" << none << none << none;
    QTest::newRow("largest") << "999999999.0.0" << Count{1000000000, 0} << Count{1, 0}
                             << Count{1, 0};
}

void tst_EpisodeNumber::readsCounts()
{
    QFETCH(const QString, text);
    QFETCH(const QList<int>, season);
    QFETCH(const QList<int>, episode);
    QFETCH(const QList<int>, part);

    const auto number = readEpisodeNumber(text);
    QVERIFY(number);
    QCOMPARE(QList<int>({number->season.number, number->season.total}), season);
    QCOMPARE(QList<int>({number->episode.number, number->episode.total}), episode);
    QCOMPARE(QList<int>({number->part.number, number->part.total}), part);
}

void tst_EpisodeNumber::refusesOtherTexts_data()
{
    QTest::addColumn<QString>("text");

    for (const char *text : {"S2E5", "season two", "1.4.0.0", "1,4,0", "-1.4.0", "1.4.0/", "/2..",
                             "1.4.2/2", "0/0..", "1000000000..", "1 2.."})
        QTest::newRow(text) << text;
    QTest::newRow("digits of another script") << QStringLiteral("١.٤.");
}

void tst_EpisodeNumber::refusesOtherTexts()
{
    QFETCH(const QString, text);
    QVERIFY(!readEpisodeNumber(text));
}

QTEST_APPLESS_MAIN(tst_EpisodeNumber)
#include "tst_episodenumber.moc"
