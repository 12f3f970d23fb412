#include "headless.h"

#include "commandline.h"
#include "console.h"
#include "description.h"
#include "presentation.h"
#include "trackerlog.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>

#include <array>
#include <functional>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

// A single picture shows the screen this many beats, a sixth of a second, after it was opened. By
// then the pictures near the focus have been made, and throbbers turn in the places of others.
constexpr int stillBeats = 10;

// In a sequence of frames the focus makes the next step of the walk after every eighth frame.
constexpr int framesPerStep = 8;
constexpr std::array walk{Direction::Right, Direction::Down, Direction::Right, Direction::Down,
                          Direction::Left,  Direction::Down, Direction::Down,  Direction::Right};

struct Durations
{
    qint64 arranging = 0;
    qint64 pictures = 0;
    qint64 painting = 0;
};

// Runs an action and adds its duration to a sum.
void measure(qint64 &nanoseconds, const std::function<void()> &action)
{
    QElapsedTimer timer;
    timer.start();
    action();
    nanoseconds += timer.nsecsElapsed();
}

QString milliseconds(qint64 nanoseconds)
{
    return u"%1 ms"_s.arg(double(nanoseconds) / 1e6, 0, 'f', 1);
}

QImage paint(Presentation &presentation)
{
    QImage image(presentation.scene().layout().size(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    presentation.paint(painter);
    return image;
}

// Writes a file. In a folder that allows a temporary file, the file appears complete or not at all. Returns
// the cause of a failure.
QString write(const QString &fileName, const std::function<QString(QIODevice &)> &writeContent)
{
    QSaveFile file(fileName);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return u"%1: cannot be written: %2"_s.arg(fileName, file.errorString());
    const QString failure = writeContent(file);
    if (!failure.isEmpty() || !file.commit()) {
        return u"%1: cannot be written: %2"_s.arg(fileName,
                                                  failure.isEmpty() ? file.errorString() : failure);
    }
    return {};
}

QString writePicture(const QString &fileName, const QImage &image)
{
    return write(fileName, [&image](QIODevice &file) {
        QImageWriter writer(&file, "png");
        return writer.write(image) ? QString() : writer.errorString();
    });
}

QString writeBytes(const QString &fileName, const QByteArray &bytes)
{
    return write(fileName, [&bytes](QIODevice &file) {
        return file.write(bytes) == bytes.size() ? QString() : file.errorString();
    });
}

QString frameFile(const QString &folder, int frame)
{
    constexpr int digits = 5;
    return QDir(folder).filePath(u"frame-%1.png"_s.arg(frame, digits, 10, QLatin1Char('0')));
}

QString drawStill(Presentation &presentation, const QString &fileName, Durations &durations)
{
    measure(durations.pictures, [&] {
        for (int beat = 0; beat < stillBeats; ++beat)
            presentation.beat();
    });
    QImage image;
    measure(durations.painting, [&] { image = paint(presentation); });
    if (fileName.isEmpty())
        return {};
    const QString failure = writePicture(fileName, image);
    if (failure.isEmpty())
        print(u"picture   %1"_s.arg(QDir::toNativeSeparators(fileName)));
    return failure;
}

QString drawSequence(Presentation &presentation, const Options &options, Durations &durations)
{
    if (!QDir().mkpath(options.frameFolder))
        return u"%1: the folder cannot be created"_s.arg(options.frameFolder);

    std::size_t step = 0;
    for (int frame = 0; frame < options.frameCount; ++frame) {
        if (frame > 0 && frame % framesPerStep == 0) {
            const Direction direction = walk[step++ % walk.size()];
            measure(durations.arranging, [&] { presentation.scene().moveFocus(direction); });
        }
        QImage image;
        measure(durations.painting, [&] { image = paint(presentation); });
        const QString failure = writePicture(frameFile(options.frameFolder, frame), image);
        if (!failure.isEmpty())
            return failure;
        measure(durations.pictures, [&] { presentation.beat(); });
    }
    print(u"pictures  %1 to %2"_s.arg(frameFile(options.frameFolder, 0),
                                      frameFile(options.frameFolder, options.frameCount - 1)));
    return {};
}

void printSummary(const Presentation &presentation, const Durations &durations)
{
    constexpr double bytesPerMebibyte = 1024.0 * 1024.0;
    const GuideScene &scene = presentation.scene();
    const ResourcePolicy::Summary decided = presentation.policy().summary();
    print(u"shown     %1, %2x%3"_s.arg(scene.guide().clock().iso(scene.now()))
              .arg(scene.layout().size().width())
              .arg(scene.layout().size().height()));
    print(u"time      layout %1, posters %2, painting %3"_s.arg(milliseconds(durations.arranging),
                                                                milliseconds(durations.pictures),
                                                                milliseconds(durations.painting)));
    print(u"tracker   %1 owners: %2 allowed, %3 denied, %4 cleared, %5 too small to decide; "
          "%6 of %7 MiB"_s.arg(decided.owners)
              .arg(decided.allowed)
              .arg(decided.denied)
              .arg(decided.cleared)
              .arg(decided.ignored)
              .arg(double(decided.heldBytes) / bytesPerMebibyte, 0, 'f', 1)
              .arg(double(presentation.policy().budget()) / bytesPerMebibyte, 0, 'f', 1));
}

} // namespace

QString drawToFiles(Presentation &presentation, const Options &options, const TrackerLog *log,
                    qint64 arrangingNanoseconds)
{
    Durations durations{.arranging = arrangingNanoseconds};
    QString failure;
    if (options.frameCount > 0)
        failure = drawSequence(presentation, options, durations);
    if (failure.isEmpty() && (options.frameCount == 0 || !options.pictureFile.isEmpty()))
        failure = drawStill(presentation, options.pictureFile, durations);
    if (failure.isEmpty() && log && !options.descriptionFile.isEmpty()) {
        failure = writeBytes(options.descriptionFile,
                             describe(presentation.scene(), presentation.policy(), *log));
    }
    if (failure.isEmpty())
        printSummary(presentation, durations);
    return failure;
}

} // namespace tvguide
