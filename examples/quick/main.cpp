// Shows the gallery, or a QML file of yours.

#include "installedtracker.h"

#include <QCommandLineParser>
#include <QFont>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickView>
#include <QTimer>

#include <chrono>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

enum ExitCode { Success = 0, UsageOrOutputError = 1, NothingToShow = 2 };

// Long enough to decide which pictures are shown, and to let the throbber's arc grow.
constexpr auto timeBeforePicture = 500ms;

void print(std::FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

ExitCode refuse(const QString &cause, ExitCode code)
{
    print(stderr, u"quickgallery: "_s + cause);
    return code;
}

int show(const QUrl &source, const QString &pictureFile)
{
    const InstalledTracker tracker;
    QQuickView view(source);
    if (!view.rootObject())
        return refuse(u"%1 cannot be shown"_s.arg(source.toDisplayString()), NothingToShow);

    QObject::connect(view.engine(), &QQmlEngine::quit, qApp, &QCoreApplication::quit);
    view.setTitle(u"ovelin – gallery"_s);
    view.show();
    if (!pictureFile.isEmpty()) {
        QTimer::singleShot(timeBeforePicture, &view, [&view, pictureFile] {
            QCoreApplication::exit(
                view.grabWindow().save(pictureFile)
                    ? Success
                    : refuse(u"%1: cannot be written"_s.arg(pictureFile), UsageOrOutputError));
        });
    }
    return QGuiApplication::exec();
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape) an unforeseen exception may end the program
int main(int argc, char *argv[])
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Shows what ovelin paints in Qt Quick."_s);
    const QCommandLineOption render(u"render"_s, u"Draw one picture into <file>."_s, u"file.png"_s);
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"Print this help."_s);
    parser.addOptions({render, help});
    parser.addPositionalArgument(u"file.qml"_s, u"Show this file instead of the gallery."_s,
                                 u"[file.qml]"_s);

    // Faults of the arguments are reported before Qt needs a display.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    if (!parser.parse(arguments))
        return refuse(parser.errorText() + u" Try --help."_s, UsageOrOutputError);
    if (parser.isSet(help)) {
        print(stdout, parser.helpText().replace("<executable_name>"_L1, "quickgallery"_L1));
        return Success;
    }

    // Drawing into a file needs no display.
    if (parser.isSet(render)) {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    }
    const QGuiApplication application(argc, argv);
    QGuiApplication::setFont(QFont(u"DejaVu Sans"_s));

    const QString file = parser.positionalArguments().value(0);
    return show(file.isEmpty() ? QUrl(u"qrc:/qt/qml/Gallery/Main.qml"_s)
                               : QUrl::fromUserInput(file, u"."_s, QUrl::AssumeLocalFile),
                parser.value(render));
}
