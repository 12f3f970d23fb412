#ifndef PLOTS_MEASURED_H
#define PLOTS_MEASURED_H

#include <QList>
#include <QString>

#include <array>
#include <stdexcept>

// In the order of the file's columns.
enum Contender { Ovelin, Floor, LineLoop, Pango, Document };
inline constexpr int contenderCount = 5;

struct Measurement
{
    QString text;
    QString box;
    int wordCount = 0;
    std::array<double, contenderCount> nanoseconds = {};

    bool operator==(const Measurement &) const = default;
};

struct Measured
{
    QString origin; // "Measured on ..."
    QList<Measurement> rows;
};

// Says what is wrong with the measured times.
class DataError : public std::runtime_error
{
public:
    explicit DataError(const QString &message)
        : std::runtime_error(message.toStdString())
    {
    }
};

// Reads the file that ./dev bench --record writes. Throws a DataError, which names the line if the
// fault is in a line.
Measured readMeasured(const QString &fileName);

#endif
