#include "colours.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;
using namespace tvguide::tests;

namespace {

// In milliseconds: enough for a busy machine with an emulator.
constexpr int timeout = 120'000;

struct Run
{
    int exitCode = -1;
    bool isNormalExit = false;
    QString output;
    QString errors;

    QStringList errorLines() const { return errors.split(u'\n', Qt::SkipEmptyParts); }
};

Run run(const QStringList &arguments,
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
{
    QStringList command =
        QString(QLatin1StringView(TVGUIDE_EMULATOR)).split(u'|', Qt::SkipEmptyParts);
    command += QStringLiteral(TVGUIDE_COMMAND);
    command += arguments;

    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(command.takeFirst(), command);
    Run result;
    if (!process.waitForFinished(timeout))
        return result;
    result.isNormalExit = process.exitStatus() == QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.errors = QString::fromUtf8(process.readAllStandardError());
    return result;
}

QByteArray content(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_TvGuide : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsItsHelp();
    void printsItsVersion();
    void refusesBadArguments_data();
    void refusesBadArguments();
    void refusesAWindowWithoutADisplay();
    void refusesUnwritableOutput_data();
    void refusesUnwritableOutput();
    void refusesGuidesWithoutProgrammes_data();
    void refusesGuidesWithoutProgrammes();
    void skipsFaultyEntries();

    void drawsTheEmbeddedGuide();
    void worksWithoutANamedPlatform();
    void drawsTheSameEverywhere();
    void readsTheTimeWithAndWithoutOffset();
    void drawsASequence();
    void usesTheLanguageOfTheOption();
    void printsTheLog();
    void describesTheScreen();
    void staysWithinTheBudget();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QString savedGuide(const QByteArray &bytes)
    {
        const QString fileName = path(u"guide.xml"_s);
        QFile file(fileName);
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        return fileName;
    }

    QJsonObject description(const QStringList &arguments)
    {
        const QString fileName = path(u"description.json"_s);
        if (run(QStringList{u"--describe"_s, fileName} + arguments).exitCode != 0)
            return {};
        return QJsonDocument::fromJson(content(fileName)).object();
    }

    QTemporaryDir m_folder;
};

void tst_TvGuide::printsItsHelp()
{
    const Run help = run({u"--help"_s});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.output.startsWith(u"Usage: tvguide [options]"_s));
    for (const char *option : {"--guide", "--language", "--render", "--size", "--at", "--frames",
                               "--output", "--log", "--budget", "--describe"})
        QVERIFY2(help.output.contains(QLatin1StringView(option)), option);
}

void tst_TvGuide::printsItsVersion()
{
    const Run version = run({u"--version"_s});
    QCOMPARE(version.exitCode, 0);
    QCOMPARE(version.output, u"tvguide 1.0.0\n"_s);
}

void tst_TvGuide::refusesBadArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("cause");

    QTest::newRow("unknown option") << QStringList{u"--colour"_s} << u"colour"_s;
    QTest::newRow("argument") << QStringList{u"guide.xml"_s} << u"guide.xml"_s;
    QTest::newRow("no value") << QStringList{u"--render"_s} << u"render"_s;
    QTest::newRow("empty value") << QStringList{u"--render="_s} << u"render"_s;
    QTest::newRow("frames without output") << QStringList{u"--frames"_s, u"2"_s} << u"--output"_s;
    QTest::newRow("output without frames") << QStringList{u"--output"_s, u"x"_s} << u"--frames"_s;
    for (const char *frames : {"0", "-1", "two", "1000000000000"}) {
        QTest::addRow("frames %s", frames)
            << QStringList{u"--output"_s, u"x"_s, u"--frames"_s, QString::fromLatin1(frames)}
            << u"number of frames"_s;
    }
    for (const char *size : {"0x0", "100000x100000", "1280", "1280x", "-1x-1", "319x180",
                             "1280x4321", "99999999999x720", ""}) {
        QTest::addRow("size %s", size)
            << QStringList{u"--size"_s, QString::fromLatin1(size)} << u"the size"_s;
    }
    for (const char *time : {"", "now", "25:00", "2025-02-30T10:00", "20251301"}) {
        QTest::addRow("time %s", time)
            << QStringList{u"--at"_s, QString::fromLatin1(time)} << u"the time"_s;
    }
    for (const char *budget : {"", "-1", "M", "24MB", "1.5M", "9999999999999"}) {
        QTest::addRow("budget %s", budget)
            << QStringList{u"--budget"_s, QString::fromLatin1(budget)} << u"the budget"_s;
    }
}

void tst_TvGuide::refusesBadArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(const QString, cause);

    if (!arguments.contains(u"--render"_s))
        arguments = QStringList{u"--render"_s, path(u"refused.png"_s)} + arguments;
    const Run refused = run(arguments);
    QVERIFY(refused.isNormalExit);
    QCOMPARE(refused.exitCode, 1);
    QCOMPARE(refused.output, QString());
    QCOMPARE(refused.errorLines().size(), 1);
    QVERIFY2(refused.errors.startsWith(u"tvguide: "_s), qPrintable(refused.errors));
    QVERIFY2(refused.errors.contains(cause), qPrintable(refused.errors));
    QVERIFY(!QFile::exists(path(u"refused.png"_s)));
}

void tst_TvGuide::refusesAWindowWithoutADisplay()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"QT_QPA_PLATFORM"_s);
    environment.remove(u"DISPLAY"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    const Run nowhere = run({}, environment);
    QVERIFY(nowhere.isNormalExit);
    QCOMPARE(nowhere.exitCode, 1);
    QCOMPARE(nowhere.errorLines().size(), 1);
    QVERIFY(nowhere.errors.contains(u"--render"_s));

    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    QCOMPARE(run({}, environment).exitCode, 1);
}

void tst_TvGuide::refusesUnwritableOutput_data()
{
    QTest::addColumn<QStringList>("arguments");

    const QString file = path(u"file"_s);
    QVERIFY(QFile(file).open(QIODevice::WriteOnly));
    QTest::newRow("picture") << QStringList{u"--render"_s, path(u"missing/x.png"_s)};
    QTest::newRow("picture onto a folder") << QStringList{u"--render"_s, m_folder.path()};
    QTest::newRow("description") << QStringList{u"--describe"_s, path(u"missing/x.json"_s)};
    QTest::newRow("sequence") << QStringList{u"--frames"_s, u"2"_s, u"--output"_s,
                                             file + u"/folder"_s};
}

void tst_TvGuide::refusesUnwritableOutput()
{
    QFETCH(const QStringList, arguments);
    const Run refused = run(arguments);
    QVERIFY(refused.isNormalExit);
    QCOMPARE(refused.exitCode, 1);
    QCOMPARE(refused.errorLines().size(), 1);
    QVERIFY2(refused.errors.contains(arguments.last()), qPrintable(refused.errors));
}

void tst_TvGuide::refusesGuidesWithoutProgrammes_data()
{
    QTest::addColumn<QByteArray>("guide");
    QTest::addColumn<QString>("place");

    QTest::newRow("empty") << QByteArray() << u":1:"_s;
    QTest::newRow("other document") << QByteArray("<html></html>") << u":1:6: "_s;
    QTest::newRow("broken at once") << QByteArray("<tv>\n<programme") << u":2:"_s;
    QTest::newRow("only faulty entries")
        << QByteArray("<tv>\n<programme start='x' channel='a'/></tv>") << u":2:"_s;
    QTest::newRow("compressed") << QByteArray("\x1f\x8b\x08") << u":1:1: "_s;
    QTest::newRow("unknown encoding")
        << QByteArray("<?xml version='1.0' encoding='x-none'?><tv/>") << u":1:1: "_s;
    QTest::newRow("no programmes") << QByteArray("<tv><channel id='a'/></tv>") << QString();
}

void tst_TvGuide::refusesGuidesWithoutProgrammes()
{
    QFETCH(const QByteArray, guide);
    QFETCH(const QString, place);

    const QString fileName = savedGuide(guide);
    const Run refused = run({u"--guide"_s, fileName, u"--render"_s, path(u"refused.png"_s)});
    QVERIFY(refused.isNormalExit);
    QCOMPARE(refused.exitCode, 2);
    QVERIFY2(refused.errors.contains(fileName + place), qPrintable(refused.errors));
    QVERIFY(!QFile::exists(path(u"refused.png"_s)));

    const QString missing = path(u"missing.xml"_s);
    const Run unreadable = run({u"--guide"_s, missing, u"--render"_s, path(u"refused.png"_s)});
    QCOMPARE(unreadable.exitCode, 2);
    QVERIFY(unreadable.errorLines().constFirst().startsWith(missing));
}

void tst_TvGuide::skipsFaultyEntries()
{
    const QString fileName =
        savedGuide("<tv>\n"
                   "<programme start='20250314'><title>x</title></programme>\n"
                   "<programme start='20250399' channel='a'/>\n"
                   "<programme start='20250314190000' channel='a'><title>good</title></programme>\n"
                   "<programme");
    const Run faulty = run({u"--guide"_s, fileName, u"--render"_s, path(u"faulty.png"_s)});
    QCOMPARE(faulty.exitCode, 0);
    QCOMPARE(faulty.errorLines().size(), 3);
    for (int line = 2; line <= 3; ++line) {
        const QRegularExpression place(
            u"^%1:%2:\\d+: "_s.arg(QRegularExpression::escape(fileName), QString::number(line)));
        QVERIFY(place.match(faulty.errorLines()[line - 2]).hasMatch());
    }
    QVERIFY(faulty.errorLines()[2].startsWith(fileName + u":5:"_s));
    QVERIFY(faulty.output.contains(u"1 channels, 1 programmes, 2 faulty entries left out"_s));
    QVERIFY(!QImage(path(u"faulty.png"_s)).isNull());
}

void tst_TvGuide::drawsTheEmbeddedGuide()
{
    const QString fileName = path(u"still.png"_s);
    const Run drawn = run({u"--render"_s, fileName});
    QCOMPARE(drawn.errors, QString());
    QCOMPARE(drawn.exitCode, 0);
    QVERIFY(drawn.output.contains(fileName));

    const QRegularExpression times(
        u"layout \\d+\\.\\d ms, posters \\d+\\.\\d ms, painting \\d+\\.\\d ms"_s);
    QVERIFY(times.match(drawn.output).hasMatch());
    const auto decided =
        QRegularExpression(u"tracker +(\\d+) owners: (\\d+) allowed"_s).match(drawn.output);
    QVERIFY(decided.capturedView(1).toInt() > 15);
    QVERIFY(decided.capturedView(2).toInt() > 10);
    const auto guide =
        QRegularExpression(u"(\\d+) channels, (\\d+) programmes, 0 faulty"_s).match(drawn.output);
    QVERIFY(guide.capturedView(1).toInt() >= 6);
    QVERIFY(guide.capturedView(2).toInt() >= 60);

    const QImage picture(fileName);
    QCOMPARE(picture.size(), QSize(1280, 720));
    QVERIFY(colours(picture) > 5000);
    // Looks for the colours of the ring around the focus, the mark of the present time, and bright letters.
    const auto has = [&picture](auto &&matches) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (matches(picture.pixelColor(x, y)))
                    return true;
            }
        }
        return false;
    };
    QVERIFY(has([](const QColor &c) { return c == QColor(0xff, 0xb8, 0x4d); }));
    QVERIFY(has([](const QColor &c) { return c.red() > 200 && c.green() < 110; }));
    QVERIFY(has([](const QColor &c) { return c == QColor(0xf4, 0xf5, 0xfb); }));
}

void tst_TvGuide::worksWithoutANamedPlatform()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"QT_QPA_PLATFORM"_s);
    environment.remove(u"DISPLAY"_s);
    const QString fileName = path(u"unnamed.png"_s);
    QCOMPARE(run({u"--render"_s, fileName}, environment).exitCode, 0);
    QVERIFY(!QImage(fileName).isNull());
}

void tst_TvGuide::drawsTheSameEverywhere()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    QCOMPARE(run({u"--render"_s, path(u"here.png"_s)}, environment).exitCode, 0);
    environment.insert(u"TZ"_s, u"Asia/Kamchatka"_s);
    environment.insert(u"LC_ALL"_s, u"de_DE.UTF-8"_s);
    environment.insert(u"QT_SCALE_FACTOR"_s, u"2"_s);
    environment.insert(u"QT_FONT_DPI"_s, u"200"_s);
    QCOMPARE(run({u"--render"_s, path(u"there.png"_s)}, environment).exitCode, 0);
    QCOMPARE(content(path(u"here.png"_s)), content(path(u"there.png"_s)));
}

void tst_TvGuide::readsTheTimeWithAndWithoutOffset()
{
    QByteArray first;
    for (const char *time : {"2025-03-14T20:40+03:00", "2025-03-14T20:40", "2025-03-14T17:40:00Z",
                             "20250314204000 +0300", "202503142040"}) {
        const QString fileName = path(u"time.png"_s);
        const Run drawn = run({u"--render"_s, fileName, u"--at"_s, QString::fromLatin1(time)});
        QVERIFY2(drawn.output.contains(u"2025-03-14T20:40:00+03:00"_s), time);
        if (first.isEmpty())
            first = content(fileName);
        QCOMPARE(content(fileName), first);
    }
}

void tst_TvGuide::drawsASequence()
{
    const QString folder = path(u"a/b/frames"_s);
    const Run drawn =
        run({u"--frames"_s, u"10"_s, u"--output"_s, folder, u"--size"_s, u"640x360"_s});
    QCOMPARE(drawn.exitCode, 0);
    const QStringList files = QDir(folder).entryList({u"*.png"_s}, QDir::Files, QDir::Name);
    QCOMPARE(files.size(), 10);
    QCOMPARE(files.first(), u"frame-00000.png"_s);

    // The throbber turns and pictures arrive; from the ninth frame on the focus is elsewhere.
    std::set<QByteArray> different;
    for (const QString &file : files)
        different.insert(content(QDir(folder).filePath(file)));
    QVERIFY(different.size() >= 9);
}

void tst_TvGuide::usesTheLanguageOfTheOption()
{
    const QString fileName = savedGuide(
        "<tv><programme start='20250314190000' channel='a'><title lang='en'>House</title>"
        "<title lang='ru'>Дом</title></programme></tv>");
    const QStringList arguments{u"--guide"_s, fileName, u"--at"_s, u"2025-03-14T19:10"_s};
    const auto shows = [](const QJsonObject &description, const QString &text) {
        const QJsonArray texts = description[u"texts"].toArray();
        return std::any_of(texts.begin(), texts.end(), [&text](const QJsonValue &shown) {
            return shown[u"lines"].toArray().contains(text);
        });
    };
    const QJsonObject russian = description(arguments);
    QVERIFY(shows(russian, u"Дом"_s));
    QVERIFY(shows(russian, u"Программа передач"_s));
    const QJsonObject english = description(arguments + QStringList{u"--language"_s, u"en"_s});
    QVERIFY(shows(english, u"House"_s));
    QVERIFY(shows(english, u"Programme guide"_s));
}

void tst_TvGuide::printsTheLog()
{
    const QString fileName = path(u"log.png"_s);
    QVERIFY(!run({u"--render"_s, fileName}).output.contains(u"creation_requested"_s));

    const QString output = run({u"--render"_s, fileName, u"--log"_s}).output;
    const QRegularExpression heading(
        u"^event +status +type +id +object +class +geometry +source$"_s,
        QRegularExpression::MultilineOption);
    QVERIFY(heading.match(output).hasMatch());
    QVERIFY(output.contains(u"registered"_s));
    QVERIFY(output.contains(u"creation_allowed"_s));
    QVERIFY(output.contains(u"tvguide::PosterItem"_s));

    // The tracker keeps fewer than 100 messages, the program more. A high picture causes more than 100.
    const QString many =
        run({u"--render"_s, fileName, u"--size"_s, u"1920x2400"_s, u"--log"_s}).output;
    QVERIFY(many.count(u"tvguide::PosterItem"_s) > 100);
}

void tst_TvGuide::describesTheScreen()
{
    const QStringList once{u"--describe"_s, path(u"once.json"_s)};
    const QStringList twice{u"--describe"_s, path(u"twice.json"_s), u"--render"_s,
                            path(u"described.png"_s)};
    QCOMPARE(run(once).exitCode, 0);
    QCOMPARE(run(twice).exitCode, 0);
    QVERIFY(!content(path(u"once.json"_s)).isEmpty());
    QCOMPARE(content(path(u"once.json"_s)), content(path(u"twice.json"_s)));

    const QJsonObject shown = QJsonDocument::fromJson(content(path(u"once.json"_s))).object();
    QCOMPARE(shown[u"size"].toArray(), QJsonArray({1280, 720}));
    QCOMPARE(shown[u"time"].toString(), u"2025-03-14T20:10:00+03:00"_s);

    const QJsonArray texts = shown[u"texts"].toArray();
    const auto isDescription = [](const QJsonValue &text) {
        return text[u"name"] == u"panel description"_s;
    };
    const auto found = std::find_if(texts.begin(), texts.end(), isDescription);
    QVERIFY(found != texts.end());
    const QJsonValue text = *found;
    const QJsonArray lines = text[u"lines"].toArray();
    QVERIFY(lines.size() > 2);
    QVERIFY(std::any_of(lines.begin(), lines.end(),
                        [](const QJsonValue &line) { return line.toString().endsWith(u'-'); }));
    QCOMPARE(text[u"elided"].toBool(), true);
    QVERIFY(lines.last().toString().endsWith(u'…'));

    const QJsonArray cards = shown[u"cards"].toArray();
    QVERIFY(cards.size() > 12);
    QCOMPARE(std::count_if(cards.begin(), cards.end(),
                           [](const QJsonValue &card) { return card[u"focused"].toBool(); }),
             1);
    for (const QJsonValue &card : cards)
        QCOMPARE(card[u"rect"].toArray().size(), 4);
    QVERIFY(shown[u"decisions"][u"allowed"].toInt() > 10);
    QVERIFY(shown[u"messages"].toArray().size() > 50);
}

void tst_TvGuide::staysWithinTheBudget()
{
    const QJsonValue ample = description({})[u"decisions"];
    QCOMPARE(ample[u"budget"].toInt(), 24 * 1024 * 1024);
    QCOMPARE(ample[u"denied"].toInt(), 0);

    const QJsonValue tight = description({u"--budget"_s, u"300K"_s})[u"decisions"];
    QCOMPARE(tight[u"budget"].toInt(), 300 * 1024);
    QVERIFY(tight[u"denied"].toInt() > 0);
    QVERIFY(tight[u"allowed"].toInt() > 0);
    QVERIFY(tight[u"heldBytes"].toInt() <= 300 * 1024);

    QCOMPARE(description({u"--budget"_s, u"0"_s})[u"decisions"][u"allowed"].toInt(), 0);
}

QTEST_MAIN(tst_TvGuide)
#include "tst_tvguide.moc"
