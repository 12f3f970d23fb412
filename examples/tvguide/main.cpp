#include "commandline.h"
#include "console.h"
#include "guidewindow.h"
#include "headless.h"
#include "presentation.h"
#include "trackerlog.h"
#include "xmltvreader.h"

#include <ovelin/platformnativeinterface.h>

#include <QElapsedTimer>
#include <QGuiApplication>

#include <memory>
#include <variant>

using namespace tvguide;
using namespace Qt::StringLiterals;

namespace {

enum ExitCode { Success = 0, UsageOrOutputError = 1, NothingToShow = 2 };

constexpr QLatin1StringView embeddedGuide(":/tvguide/guide.xml");

int refuse(const QString &cause)
{
    complain(u"tvguide: "_s + cause);
    return UsageOrOutputError;
}

// Installs the library's two global objects and removes them in its destructor.
class Globals
{
public:
    Globals()
    {
        ovelin::PlatformNativeInterface::init();
        ovelin::setPlatformNativeInterface(&m_platform);
        ovelin::setSceneResourceTracker(&tracker);
    }

    ~Globals()
    {
        ovelin::setSceneResourceTracker(nullptr);
        ovelin::setPlatformNativeInterface(nullptr);
    }

    ovelin::SceneResourceTracker tracker;

private:
    Q_DISABLE_COPY_MOVE(Globals)

    ovelin::PlatformNativeInterface m_platform;
};

// Drawing into files needs no display. The variable QT_QPA_PLATFORM has precedence.
void choosePlatform(const Options &options)
{
    if (!options.needsWindow() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

// True if a window can be shown. Without a display Qt would end the process, and on a platform that
// shows nothing the window would wait for ever.
bool hasDisplay()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.isEmpty()) {
        return !qEnvironmentVariableIsEmpty("DISPLAY")
               || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    }
    return !platform.startsWith("offscreen") && !platform.startsWith("minimal");
}

Instant timeToShow(const Options &options, const Guide &guide)
{
    if (options.time)
        return options.time->instant(guide.clock().utcOffset());
    const Instant now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    return guide.covers(now) ? now : guide.suggestedTime();
}

int run(const Options &options, const XmltvResult &read)
{
    Globals globals;
    std::unique_ptr<TrackerLog> log;
    if (options.printLog || options.needsWindow() || !options.descriptionFile.isEmpty())
        log = std::make_unique<TrackerLog>(globals.tracker);

    QElapsedTimer timer;
    timer.start();
    Presentation presentation(globals.tracker, read.guide, wordingFor(options.language),
                              options.size, timeToShow(options, read.guide), options.budget);
    const qint64 arranging = timer.nsecsElapsed();

    int exitCode = Success;
    if (options.needsWindow()) {
        GuideWindow window(presentation, *log);
        window.show();
        exitCode = QGuiApplication::exec();
    } else {
        const QString failure = drawToFiles(presentation, options, log.get(), arranging);
        if (!failure.isEmpty())
            return refuse(failure);
        print(u"guide     %1 channels, %2 programmes, %3 faulty entries left out"_s
                  .arg(read.guide.channels().size())
                  .arg(read.guide.programmeCount())
                  .arg(read.skippedEntries));
    }
    if (options.printLog)
        print(log->table(TrackerLog::capacity).join(u'\n'));
    return exitCode;
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape) an unforeseen exception may end the program
int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);

    // Faults of the arguments and of the guide are reported before Qt needs a display.
    const auto commandLine = readCommandLine(arguments);
    if (const auto *answer = std::get_if<Answer>(&commandLine)) {
        if (answer->isError)
            return refuse(answer->text + u"; try --help"_s);
        print(answer->text);
        return Success;
    }

    const auto &options = std::get<Options>(commandLine);
    const QString guideFile =
        options.guideFile.isEmpty() ? QString(embeddedGuide) : options.guideFile;
    const XmltvResult read = readXmltv(guideFile, options.language, complain);
    if (read.guide.isEmpty()) {
        complain(u"tvguide: %1: no programme that could be shown"_s.arg(guideFile));
        return NothingToShow;
    }

    if (options.needsWindow() && !hasDisplay()) {
        return refuse(u"there is no display for a window; draw with --render FILE.png, "
                      "or name a platform in QT_QPA_PLATFORM"_s);
    }
    choosePlatform(options);
    const QGuiApplication application(argc, argv);
    return run(options, read);
}
