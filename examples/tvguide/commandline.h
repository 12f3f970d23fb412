#ifndef TVGUIDE_COMMANDLINE_H
#define TVGUIDE_COMMANDLINE_H

#include "times.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace tvguide {

struct Options
{
    QString guideFile;
    QString language;
    QSize size;
    std::optional<WrittenTime> time;
    qint64 budget = 0;

    QString pictureFile;
    QString descriptionFile;
    int frameCount = 0;
    QString frameFolder;
    bool printLog = false;

    bool needsWindow() const
    {
        return pictureFile.isEmpty() && descriptionFile.isEmpty() && frameCount == 0;
    }
};

// The text to print before the program ends: the help, the version, or an error in the arguments.
struct Answer
{
    QString text;
    bool isError;
};

std::variant<Options, Answer> readCommandLine(const QStringList &arguments);

} // namespace tvguide

#endif
