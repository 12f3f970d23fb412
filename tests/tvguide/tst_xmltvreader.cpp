#include "guideinvariants.h"
#include "xmltvreader.h"

#include <QBuffer>
#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace tvguide;
using namespace tvguide::tests;
using namespace Qt::StringLiterals;

namespace {

const QString fileName = u"/guides/tv.xml"_s;

struct Reading
{
    XmltvResult result;
    QStringList problems;

    const std::vector<Channel> &channels() const { return result.guide.channels(); }
    const Programme &programme(std::size_t index = 0) const
    {
        return channels().at(0).programmes.at(index);
    }
};

void requireNone(const QString &violation)
{
    QVERIFY2(violation.isEmpty(), qPrintable(violation));
}

// Reads a guide and checks the rules for all guides and all messages.
Reading readBytes(QByteArray bytes, const QString &language = u"ru"_s)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    Reading reading;
    reading.result = readXmltv(buffer, fileName, language,
                               [&](const QString &line) { reading.problems += line; });
    requireNone(resultViolation(reading.result, int(reading.problems.size())));
    for (const QString &line : std::as_const(reading.problems))
        requireNone(problemViolation(line));
    return reading;
}

Reading readContent(const QString &content, const QString &language = u"ru"_s)
{
    return readBytes("<tv>\n" + content.toUtf8() + "\n</tv>\n", language);
}

// Returns a correct programme with the given content.
QString programme(const QString &content)
{
    return uR"(<programme start="20250314190000 +0300" stop="20250314200000 +0300" channel="a">)"_s
           + content + u"</programme>"_s;
}

} // namespace

class tst_XmltvReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void brokenRulesAreReported();

    void readsChannelsAndProgrammes();
    void keepsTheOrderOfChannels();
    void numbersChannels();
    void aChannelWithoutDescriptionIsNamedByItsId();
    void aChannelMayBeDescribedLast();
    void choosesTheLanguage_data();
    void choosesTheLanguage();
    void usesTheOffsetOfTheFirstProgramme();
    void findsIcons_data();
    void findsIcons();
    void skipsUnknownElements();
    void joinsTextAndElementsInside();
    void readsCharacterReferencesAndSections();
    void skipsFaultyEntries_data();
    void skipsFaultyEntries();
    void quotesTextOfTheFileSafely();
    void quotesTheFaultOfAFileSafely();
    void keepsEntriesBeforeAFault_data();
    void keepsEntriesBeforeAFault();
    void refusesOtherDocuments_data();
    void refusesOtherDocuments();
    void reportsFilesThatCannotBeDecoded_data();
    void reportsFilesThatCannotBeDecoded();
    void keepsEntriesBeforeAWrongByte();
    void reportsUnreadableFiles();
    void readsFiles();
    void survivesEntityExpansion();
    void survivesDeepNesting();
    void boundsTexts();
    void readsManyProgrammes();
};

// The other tests rely on these rules.
void tst_XmltvReader::brokenRulesAreReported()
{
    using std::chrono::seconds;
    const auto lasting = [](int from, int to) {
        Programme programme;
        programme.start = Instant(seconds(from));
        programme.stop = Instant(seconds(to));
        return programme;
    };
    Channel sound;
    sound.id = sound.number = sound.name = u"1"_s;
    sound.programmes = {lasting(0, 10), lasting(10, 20)};
    QCOMPARE(channelViolation(sound), QString());
    QCOMPARE(guideViolation(Guide({sound}, {})), QString());
    QVERIFY(!guideViolation(Guide({sound, sound}, {})).isEmpty());

    for (QString Channel::*text : {&Channel::id, &Channel::number, &Channel::name}) {
        Channel channel = sound;
        (channel.*text).clear();
        QVERIFY(!channelViolation(channel).isEmpty());
    }
    using Programmes = std::vector<Programme>;
    for (const Programmes &programmes :
         {Programmes{}, Programmes{lasting(0, 0)}, Programmes{lasting(0, 10), lasting(9, 20)}}) {
        Channel channel = sound;
        channel.programmes = programmes;
        QVERIFY(!channelViolation(channel).isEmpty());
    }

    const XmltvResult twoLeftOut{.guide = Guide({sound}, {}), .skippedEntries = 2};
    QCOMPARE(resultViolation(twoLeftOut, 2), QString());
    QCOMPARE(resultViolation(twoLeftOut, 3), QString());
    QVERIFY(!resultViolation(twoLeftOut, 1).isEmpty());
    QVERIFY(!resultViolation(twoLeftOut, 4).isEmpty());
    QVERIFY(
        !resultViolation({.guide = Guide({sound, sound}, {}), .skippedEntries = 0}, 0).isEmpty());

    QCOMPARE(problemViolation(u"guide.xml:1:2: «»"_s), QString());
    QVERIFY(!problemViolation(u"\u001b[2J"_s).isEmpty());
    QVERIFY(!problemViolation(u"one\ntwo"_s).isEmpty());
}

void tst_XmltvReader::readsChannelsAndProgrammes()
{
    const Reading reading = readContent(
        uR"(<channel id="a"><display-name>Канал</display-name><icon src="logo.png"/></channel>)"
        uR"(<programme start="20250314190000 +0300" stop="20250314193000 +0300" channel="a">)"
        uR"(<title>Название</title><desc>Описание</desc><category>Кино</category></programme>)"
        uR"(<programme start="20250314193000 +0300" channel="a"><title>Дальше</title></programme>)"_s);

    QCOMPARE(reading.problems, QStringList());
    QCOMPARE(reading.result.skippedEntries, 0);
    QCOMPARE(reading.channels().size(), std::size_t(1));
    QCOMPARE(reading.channels()[0].id, u"a"_s);
    QCOMPARE(reading.channels()[0].name, u"Канал"_s);
    QCOMPARE(reading.channels()[0].icon, QUrl(u"file:///guides/logo.png"_s));
    QCOMPARE(reading.channels()[0].programmes.size(), std::size_t(2));
    QCOMPARE(reading.programme().title, u"Название"_s);
    QCOMPARE(reading.programme().description, u"Описание"_s);
    QCOMPARE(reading.programme().category, u"Кино"_s);
    const WallClock &clock = reading.result.guide.clock();
    QCOMPARE(clock.iso(reading.programme().start), u"2025-03-14T19:00:00+03:00"_s);
    QCOMPARE(clock.iso(reading.programme().stop), u"2025-03-14T19:30:00+03:00"_s);
    QCOMPARE(clock.iso(reading.programme(1).stop), u"2025-03-14T20:00:00+03:00"_s);
}

void tst_XmltvReader::keepsTheOrderOfChannels()
{
    const Reading reading =
        readContent(uR"(<channel id="z"/><channel id="a"/><channel id="m"/>)"
                    uR"(<programme start="2025" channel="a"/><programme start="2025" channel="m"/>)"
                    uR"(<programme start="2025" channel="z"/>)"_s);
    QCOMPARE(reading.channels().size(), std::size_t(3));
    QCOMPARE(reading.channels()[0].id, u"z"_s);
    QCOMPARE(reading.channels()[1].id, u"a"_s);
    QCOMPARE(reading.channels()[2].id, u"m"_s);
}

void tst_XmltvReader::numbersChannels()
{
    const Reading reading = readContent(
        uR"(<channel id="a"><display-name>Первый</display-name></channel>)"
        uR"(<channel id="b"><display-name>42</display-name><display-name>Второй</display-name></channel>)"
        uR"(<programme start="2025" channel="a"/><programme start="2025" channel="b"/>)"_s);
    QCOMPARE(reading.channels()[0].number, u"1"_s);
    QCOMPARE(reading.channels()[1].number, u"42"_s);
    QCOMPARE(reading.channels()[1].name, u"Второй"_s);
}

void tst_XmltvReader::aChannelWithoutDescriptionIsNamedByItsId()
{
    const Reading unknown = readContent(uR"(<programme start="2025" channel="who.example"/>)"_s);
    QCOMPARE(unknown.problems, QStringList());
    QCOMPARE(unknown.channels()[0].name, u"who.example"_s);

    const Reading nameless = readContent(
        uR"(<channel id="a"><display-name/></channel><programme start="2025" channel="a"/>)"_s);
    QCOMPARE(nameless.channels()[0].name, u"a"_s);
}

void tst_XmltvReader::aChannelMayBeDescribedLast()
{
    const Reading reading =
        readContent(uR"(<programme start="2025" channel="a"/>)"
                    uR"(<channel id="a"><display-name>Канал</display-name></channel>)"_s);
    QCOMPARE(reading.channels().size(), std::size_t(1));
    QCOMPARE(reading.channels()[0].name, u"Канал"_s);
}

void tst_XmltvReader::choosesTheLanguage_data()
{
    QTest::addColumn<QString>("titles");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("title");

    const QString both = uR"(<title lang="en">house</title><title lang="ru">дом</title>)"_s;
    QTest::newRow("preferred") << both << u"ru"_s << u"дом"_s;
    QTest::newRow("other") << both << u"en"_s << u"house"_s;
    QTest::newRow("neither: the first") << both << u"fi"_s << u"house"_s;
    QTest::newRow("region") << uR"(<title>x</title><title lang="ru_RU">дом</title>)"_s << u"ru"_s
                            << u"дом"_s;
    QTest::newRow("case") << uR"(<title>x</title><title lang="RU-ru">дом</title>)"_s << u"ru"_s
                          << u"дом"_s;
    QTest::newRow("another language that begins alike")
        << uR"(<title lang="rus">x</title><title>дом</title>)"_s << u"ru"_s << u"дом"_s;
    QTest::newRow("no language before a foreign one")
        << uR"(<title lang="en">house</title><title>дом</title>)"_s << u"ru"_s << u"дом"_s;
    QTest::newRow("the first of equals")
        << uR"(<title lang="ru">дом</title><title lang="ru">хата</title>)"_s << u"ru"_s << u"дом"_s;
    QTest::newRow("not an empty one")
        << uR"(<title lang="en">house</title><title lang="ru"> </title>)"_s << u"ru"_s
        << u"house"_s;
}

void tst_XmltvReader::choosesTheLanguage()
{
    QFETCH(const QString, titles);
    QFETCH(const QString, language);
    QFETCH(const QString, title);
    QCOMPARE(readContent(programme(titles), language).programme().title, title);
}

void tst_XmltvReader::usesTheOffsetOfTheFirstProgramme()
{
    const Reading reading = readContent(uR"(<programme start="20250314 +0530" channel="a"/>)"
                                        uR"(<programme start="20250315 -0200" channel="a"/>)"_s);
    QCOMPARE(reading.result.guide.clock().utcOffset(), std::chrono::minutes(330));

    const Reading utc = readContent(uR"(<programme start="20250314" channel="a"/>)"_s);
    QCOMPARE(utc.result.guide.clock().utcOffset(), std::chrono::seconds(0));
}

void tst_XmltvReader::findsIcons_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QUrl>("url");

    QTest::newRow("beside the guide") << u"p/a b.png"_s << QUrl(u"file:///guides/p/a%20b.png"_s);
    QTest::newRow("absolute") << u"/p/a.png"_s << QUrl(u"file:///p/a.png"_s);
    QTest::newRow("file") << u"file:///p/a.png"_s << QUrl(u"file:///p/a.png"_s);
    QTest::newRow("remote") << u"https://pictures.example/a.png"_s
                            << QUrl(u"https://pictures.example/a.png"_s);
    QTest::newRow("empty") << u" "_s << QUrl();
}

void tst_XmltvReader::findsIcons()
{
    QFETCH(const QString, source);
    QFETCH(const QUrl, url);
    const Reading reading = readContent(programme(uR"(<icon src="%1"/>)"_s.arg(source)));
    QCOMPARE(reading.programme().icon, url);
}

void tst_XmltvReader::skipsUnknownElements()
{
    const Reading reading = readContent(
        uR"(<news><title>no</title></news><channel id="a"><url>no</url></channel>)"_s
        + programme(u"<credits><actor>no</actor></credits><title>да</title><rating/>"_s));
    QCOMPARE(reading.problems, QStringList());
    QCOMPARE(reading.programme().title, u"да"_s);
}

void tst_XmltvReader::joinsTextAndElementsInside()
{
    const Reading reading = readContent(programme(u"<title>\n  Имя <b>и</b>\n\t слово </title>"_s));
    QCOMPARE(reading.programme().title, u"Имя и слово"_s);
}

void tst_XmltvReader::readsCharacterReferencesAndSections()
{
    const Reading reading =
        readContent(programme(u"<title>&lt;A&amp;&#x411;&gt; <![CDATA[<b>]]></title>"_s));
    QCOMPARE(reading.programme().title, u"<A&Б> <b>"_s);
}

void tst_XmltvReader::skipsFaultyEntries_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("problem");

    QTest::newRow("no channel") << uR"(<programme start="2025"><title>x</title></programme>)"_s
                                << u"/guides/tv.xml:2:24: programme without channel"_s;
    QTest::newRow("empty channel") << uR"(<programme start="2025" channel=" "/>)"_s
                                   << u"/guides/tv.xml:2:37: programme without channel"_s;
    QTest::newRow("no start") << uR"(<programme channel="a"/>)"_s
                              << uR"(/guides/tv.xml:2:24: programme with an impossible start "")"_s;
    QTest::newRow("impossible start")
        << uR"(<programme start="20250230" channel="a"/>)"_s
        << uR"(/guides/tv.xml:2:41: programme with an impossible start "20250230")"_s;
    QTest::newRow("impossible stop")
        << uR"(<programme start="2025" stop="soon" channel="a"/>)"_s
        << uR"(/guides/tv.xml:2:49: programme with an impossible stop "soon")"_s;
    QTest::newRow("ends before it starts")
        << uR"(<programme start="2025" stop="2024" channel="a"/>)"_s
        << uR"(/guides/tv.xml:2:49: programme that stops at "2024", not after its start at "2025")"_s;
    QTest::newRow("ends when it starts")
        << uR"(<programme start="2025" stop="2025" channel="a"/>)"_s
        << uR"(/guides/tv.xml:2:49: programme that stops at "2025", not after its start at "2025")"_s;
    QTest::newRow("channel without id") << uR"(<channel><display-name>x</display-name></channel>)"_s
                                        << u"/guides/tv.xml:2:9: channel without id"_s;
}

void tst_XmltvReader::skipsFaultyEntries()
{
    QFETCH(const QString, entry);
    QFETCH(const QString, problem);

    const Reading reading = readContent(entry + u'\n' + programme(u"<title>good</title>"_s));
    QCOMPARE(reading.problems, QStringList(problem));
    QCOMPARE(reading.result.skippedEntries, 1);
    QCOMPARE(reading.result.guide.programmeCount(), std::size_t(1));
    QCOMPARE(reading.programme().title, u"good"_s);
}

void tst_XmltvReader::quotesTextOfTheFileSafely()
{
    const Reading reading = readContent(
        uR"(<programme start="&#10;&#x9b;31m%1" channel="a"/>)"_s.arg(QString(10'000, u'9')));
    QCOMPARE(reading.problems.size(), 1);
    QVERIFY(reading.problems[0].size() < 120);
    for (const QChar c : reading.problems[0])
        QVERIFY(c.isPrint());
}

// The message of Qt contains text from the file, with control characters.
void tst_XmltvReader::quotesTheFaultOfAFileSafely()
{
    for (const QByteArray &name : {QByteArray("a\x1b"), QByteArray(1000, 'a')}) {
        const Reading reading =
            readBytes("<?xml version='1.0' " + name + QByteArray("\0='1'?>\n<tv/>\n", 14));
        QCOMPARE(reading.problems.size(), 1);
        QVERIFY(reading.problems[0].contains(u": a"_s));
        QVERIFY(reading.problems[0].size() < 300);
        for (const QChar c : reading.problems[0])
            QVERIFY(c.isPrint());
    }
}

void tst_XmltvReader::keepsEntriesBeforeAFault_data()
{
    QTest::addColumn<QString>("fault");

    QTest::newRow("ends early") << u"<programme start='2026' channel='a'><title>half"_s;
    QTest::newRow("wrong end tag") << u"</programme>"_s;
    QTest::newRow("bare ampersand") << u"<title>a & b</title>"_s;
    QTest::newRow("unknown entity") << u"<title>&nbsp;</title>"_s;
    QTest::newRow("inside a programme")
        << u"<programme start='2026' channel='a'><title>a</desc></programme>"_s;
}

void tst_XmltvReader::keepsEntriesBeforeAFault()
{
    QFETCH(const QString, fault);
    const Reading reading =
        readBytes("<tv>\n" + programme(u"<title>good</title>"_s).toUtf8() + "\n" + fault.toUtf8());
    QCOMPARE(reading.problems.size(), 1);
    QVERIFY2(reading.problems[0].startsWith(u"/guides/tv.xml:3:"_s),
             qPrintable(reading.problems[0]));
    QCOMPARE(reading.result.guide.programmeCount(), std::size_t(1));
    QCOMPARE(reading.programme().title, u"good"_s);
}

void tst_XmltvReader::refusesOtherDocuments_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("hello");
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    QTest::newRow("other root") << QByteArray("<html><tv/></html>");
    QTest::newRow("not UTF-8") << QByteArray("<tv>\xff\xfe\x80</tv>");
}

void tst_XmltvReader::refusesOtherDocuments()
{
    QFETCH(const QByteArray, bytes);
    const Reading reading = readBytes(bytes);
    QCOMPARE(reading.problems.size(), 1);
    QVERIFY2(reading.problems[0].startsWith(fileName + u":1:"_s), qPrintable(reading.problems[0]));
    QVERIFY(reading.result.guide.isEmpty());
}

void tst_XmltvReader::reportsFilesThatCannotBeDecoded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("problem");

    QTest::newRow("gzip") << QByteArray("\x1f\x8b\x08")
                          << u"1:1: the file is compressed with gzip: decompress it first"_s;
    QTest::newRow("bzip2") << QByteArray("BZh91AY")
                           << u"1:1: the file is compressed with bzip2: decompress it first"_s;
    QTest::newRow("xz") << QByteArray("\xfd"
                                      "7zXZ\0",
                                      6)
                        << u"1:1: the file is compressed with xz: decompress it first"_s;
    QTest::newRow("zip") << QByteArray("PK\x03\x04")
                         << u"1:1: the file is compressed with zip: decompress it first"_s;

    const QString unknown =
        u"1:1: the encoding \"x-none\" is unknown here: convert the file to UTF-8 first"_s;
    QTest::newRow("encoding") << QByteArray("<?xml version=\"1.0\" encoding=\"x-none\"?><tv/>")
                              << unknown;
    QTest::newRow("encoding in single quotes")
        << QByteArray("<?xml version='1.0' encoding = 'x-none'?><tv/>") << unknown;
    QTest::newRow("encoding after a byte order mark")
        << QByteArray("\xef\xbb\xbf<?xml version='1.0' encoding='x-none'?><tv/>") << unknown;

    const QString notUtf8 = u": the text is not UTF-8: declare its encoding or convert the file"_s;
    QTest::newRow("wrong byte in line 1") << QByteArray("<tv>\xff</tv>") << u"1:1"_s + notUtf8;
    QTest::newRow("wrong byte in line 3") << QByteArray("<tv>\n\n\xff</tv>") << u"3:1"_s + notUtf8;
    QTest::newRow("wrong byte in a file that says UTF-8")
        << QByteArray("<?xml version='1.0' encoding='utf-8'?>\n<tv>\xff</tv>")
        << u"2:1"_s + notUtf8;
    QTest::newRow("fault of the markup in an encoding without wrong bytes")
        << QByteArray("<?xml version='1.0' encoding='iso-8859-1'?>\n<tv>\xff</tw>")
        << u"2:10: the file is broken here: Opening and ending tag mismatch."_s;
}

void tst_XmltvReader::reportsFilesThatCannotBeDecoded()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, problem);
    const Reading reading = readBytes(bytes);
    QCOMPARE(reading.problems, QStringList(fileName + u':' + problem));
    QVERIFY(reading.result.guide.isEmpty());
}

void tst_XmltvReader::keepsEntriesBeforeAWrongByte()
{
    // The parser decodes fewer than 100,000 bytes at once, so it reads the entry before it meets the wrong byte.
    const QByteArray blank(100'000, '\n');
    const Reading reading =
        readBytes("<tv>" + programme(u"<title>good</title>"_s).toUtf8() + blank + "\xff</tv>");
    QCOMPARE(reading.problems,
             QStringList(u"/guides/tv.xml:100001:1: the text is not UTF-8: declare its encoding "
                         "or convert the file"_s));
    QCOMPARE(reading.result.guide.programmeCount(), std::size_t(1));
    QCOMPARE(reading.programme().title, u"good"_s);
}

void tst_XmltvReader::reportsUnreadableFiles()
{
    const QTemporaryDir folder;
    for (const QString &name : {folder.filePath(u"missing.xml"_s), folder.path()}) {
        QStringList problems;
        const XmltvResult result =
            readXmltv(name, u"ru"_s, [&](const QString &line) { problems += line; });
        QVERIFY(result.guide.isEmpty());
        QCOMPARE(problems.size(), 1);
        QVERIFY2(problems[0].startsWith(name + u": cannot be read: "_s), qPrintable(problems[0]));
    }
}

void tst_XmltvReader::readsFiles()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"%1 %2 guide.xml"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<tv>\n<channel/>\n" + programme(u"<title>x</title>"_s).toUtf8() + "</tv>");
    file.close();

    QStringList problems;
    const XmltvResult result =
        readXmltv(file.fileName(), u"ru"_s, [&](const QString &line) { problems += line; });
    QCOMPARE(result.guide.programmeCount(), std::size_t(1));
    QCOMPARE(problems, QStringList(file.fileName() + u":2:10: channel without id"_s));
}

void tst_XmltvReader::survivesEntityExpansion()
{
    QByteArray document = "<!DOCTYPE tv [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name <= 'j'; ++name) {
        const QByteArray reference = QByteArray("&") + char(name - 1) + ';';
        document += QByteArray("<!ENTITY ") + name + " \"" + reference.repeated(10) + "\">";
    }
    document += "]><tv><programme start='2025' channel='a'><title>&j;</title></programme></tv>";

    const Reading reading = readBytes(document);
    QCOMPARE(reading.problems.size(), 1);
    QVERIFY(reading.result.guide.isEmpty());
}

void tst_XmltvReader::survivesDeepNesting()
{
    constexpr int depth = 200'000;
    const QString nest = u"<a>"_s.repeated(depth) + u"word"_s + u"</a>"_s.repeated(depth);
    const Reading reading = readContent(nest + programme(u"<title>%1</title>"_s.arg(nest) + nest));
    QCOMPARE(reading.problems, QStringList());
    QCOMPARE(reading.programme().title, u"word"_s);
}

void tst_XmltvReader::boundsTexts()
{
    const Reading reading =
        readContent(programme(u"<title>%1</title>"_s.arg(QString(1'000'000, u'я'))));
    QVERIFY(reading.programme().title.size() <= 4000);
}

void tst_XmltvReader::readsManyProgrammes()
{
    constexpr int count = 100'000;
    QString content;
    const QDateTime begin(QDate(2025, 1, 1), QTime(0, 0), QTimeZone::UTC);
    for (int i = 0; i < count; ++i) {
        content += uR"(<programme start="%1" channel="%2"/>)"_s.arg(
            begin.addSecs(i).toString(u"yyyyMMddHHmmss"), QString::number(i % 3));
    }
    const Reading reading = readContent(content);
    QCOMPARE(reading.problems, QStringList());
    QCOMPARE(reading.result.guide.programmeCount(), std::size_t(count));
}

QTEST_GUILESS_MAIN(tst_XmltvReader)
#include "tst_xmltvreader.moc"
