#include "commandline.h"

#include "screenlayout.h"

#include <QCommandLineParser>
#include <QRegularExpression>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

constexpr int maxFrameCount = 100'000;

class UsageError
{
public:
    explicit UsageError(const QString &cause)
        : m_cause(cause)
    {
    }

    const QString &cause() const { return m_cause; }

private:
    QString m_cause;
};

QSize size(const QString &text)
{
    static const QRegularExpression pattern(u"^(\\d{1,9})[x×](\\d{1,9})$"_s);
    const auto match = pattern.match(text);
    if (!match.hasMatch())
        throw UsageError(u"the size \"%1\" is not of the form 1280x720"_s.arg(text));

    const QSize size(match.capturedView(1).toInt(), match.capturedView(2).toInt());
    constexpr QSize least = ScreenLayout::minimumSize;
    constexpr QSize most = ScreenLayout::maximumSize;
    if (size.expandedTo(least) != size || size.boundedTo(most) != size) {
        throw UsageError(u"the size \"%1\" is not between %2x%3 and %4x%5"_s.arg(text)
                             .arg(least.width())
                             .arg(least.height())
                             .arg(most.width())
                             .arg(most.height()));
    }
    return size;
}

qint64 budget(const QString &text)
{
    static const QRegularExpression pattern(u"^(\\d{1,12})([KMG]?)$"_s,
                                            QRegularExpression::CaseInsensitiveOption);
    const auto match = pattern.match(text);
    if (!match.hasMatch())
        throw UsageError(
            u"the budget \"%1\" is not a number of bytes such as 24M or 512K"_s.arg(text));

    const QString units = u"KMG"_s;
    constexpr int bitsPerUnit = 10;
    const QString unit = match.captured(2).toUpper();
    const qsizetype power = unit.isEmpty() ? 0 : units.indexOf(unit) + 1;
    return match.capturedView(1).toLongLong() << (power * bitsPerUnit);
}

WrittenTime time(const QString &text)
{
    if (const auto time = readIsoTime(text))
        return *time;
    if (const auto time = readXmltvTime(text))
        return *time;
    throw UsageError(u"the time \"%1\" is neither like 2025-03-14T20:10+03:00 "
                     "nor like 20250314201000 +0300"_s.arg(text));
}

int frameCount(const QString &text)
{
    bool isNumber = false;
    const int count = text.toInt(&isNumber);
    if (!isNumber || count < 1 || count > maxFrameCount) {
        throw UsageError(u"the number of frames \"%1\" is not between 1 and %2"_s.arg(
            text, QString::number(maxFrameCount)));
    }
    return count;
}

} // namespace

std::variant<Options, Answer> readCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Shows a television programme guide from an XMLTV file. Without --render, --frames or "
        "--describe it opens a window: the arrow keys move the focus, L shows the log of the "
        "resource tracker, Escape leaves."_s);

    const QCommandLineOption guide(u"guide"_s, u"Read the guide from <file> (XMLTV)."_s, u"file"_s);
    const QCommandLineOption language(
        u"language"_s, u"Prefer texts in this language (default: ru)."_s, u"code"_s, u"ru"_s);
    const QCommandLineOption size(u"size"_s, u"Size of the picture (default: 1280x720)."_s,
                                  u"WxH"_s, u"1280x720"_s);
    const QCommandLineOption at(
        u"at"_s,
        u"The time to show, ISO 8601 or as in XMLTV; without an offset by the clock of the guide. "
        "Default: now, or an evening of the guide if it does not cover the present."_s,
        u"time"_s);
    const QCommandLineOption budget(
        u"budget"_s, u"Memory for posters, in bytes or with K or M (default: 24M)."_s, u"bytes"_s,
        u"24M"_s);
    const QCommandLineOption render(u"render"_s, u"Draw one picture into <file>."_s, u"file.png"_s);
    const QCommandLineOption frames(u"frames"_s, u"Draw a sequence of <n> pictures."_s, u"n"_s);
    const QCommandLineOption output(u"output"_s, u"The folder for the sequence."_s, u"folder"_s);
    const QCommandLineOption describe(
        u"describe"_s, u"Write what is on the screen into <file> as JSON."_s, u"file"_s);
    const QCommandLineOption log(u"log"_s, u"Print the messages of the resource tracker."_s);
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"Print this help."_s);
    const QCommandLineOption versionOption({u"v"_s, u"version"_s}, u"Print the version."_s);
    parser.addOptions({guide, language, size, at, budget, render, frames, output, describe, log,
                       help, versionOption});

    if (!parser.parse(arguments)) {
        QString cause = parser.errorText();
        if (cause.endsWith(u'.'))
            cause.chop(1);
        return Answer{cause, true};
    }
    if (parser.isSet(help)) {
        // The parser takes the name from an application object, which does not exist yet.
        return Answer{parser.helpText().replace("<executable_name>"_L1, "tvguide"_L1).trimmed(),
                      false};
    }
    if (parser.isSet(versionOption))
        return Answer{u"tvguide "_s + QLatin1StringView(TVGUIDE_VERSION), false};

    try {
        if (!parser.positionalArguments().isEmpty()) {
            throw UsageError(
                u"unexpected argument \"%1\""_s.arg(parser.positionalArguments().constFirst()));
        }
        for (const QCommandLineOption &option : {guide, language, render, output, describe}) {
            if (parser.isSet(option) && parser.value(option).isEmpty())
                throw UsageError(u"--%1 needs a value"_s.arg(option.names().constFirst()));
        }
        if (parser.isSet(frames) != parser.isSet(output))
            throw UsageError(u"--frames and --output go together"_s);

        Options options;
        options.guideFile = parser.value(guide);
        options.language = parser.value(language);
        options.size = tvguide::size(parser.value(size));
        if (parser.isSet(at))
            options.time = time(parser.value(at));
        options.budget = tvguide::budget(parser.value(budget));
        options.pictureFile = parser.value(render);
        options.descriptionFile = parser.value(describe);
        if (parser.isSet(frames))
            options.frameCount = frameCount(parser.value(frames));
        options.frameFolder = parser.value(output);
        options.printLog = parser.isSet(log);
        return options;
    } catch (const UsageError &error) {
        return Answer{error.cause(), true};
    }
}

} // namespace tvguide
