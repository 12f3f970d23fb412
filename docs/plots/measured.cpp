#include "measured.h"

#include <QFile>
#include <QStringList>

#include <cmath>

namespace {

constexpr auto header = "text,box,words,ovelin,floor,loop,Pango,QTextDocument";
constexpr int timesBegin = 3;

DataError notANumber(const QString &column, const QString &field)
{
    return DataError(QString("%1: \"%2\" is not a number above 0").arg(column, field));
}

Measurement parseRow(const QString &line)
{
    const QStringList columns = QString(header).split(',');
    const QStringList fields = line.split(',');
    if (fields.size() != columns.size()) {
        throw DataError(QString("%1 fields instead of %2").arg(fields.size()).arg(columns.size()));
    }
    // toInt() and toDouble() return 0 for a field that is not a number.
    Measurement row{fields[0], fields[1], fields[2].toInt()};
    if (row.wordCount <= 0)
        throw notANumber(columns[2], fields[2]);
    for (int i = 0; i < contenderCount; ++i) {
        const QString &field = fields[timesBegin + i];
        const double time = field.toDouble();
        if (!std::isfinite(time) || time <= 0)
            throw notANumber(columns[timesBegin + i], field);
        row.nanoseconds[std::size_t(i)] = time;
    }
    return row;
}

Measured parse(const QStringList &lines, int &lineNumber)
{
    Measured measured;
    bool hasHeader = false;
    for (const QString &line : lines) {
        ++lineNumber;
        if (line.startsWith("# Measured"))
            measured.origin = line.mid(2);
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        if (hasHeader)
            measured.rows.append(parseRow(line));
        else if (line == header)
            hasHeader = true;
        else
            throw DataError(QString("the columns are not %1").arg(header));
    }
    if (measured.rows.isEmpty())
        throw DataError("there are no times");
    return measured;
}

} // namespace

Measured readMeasured(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QFile::ReadOnly))
        throw DataError(file.errorString());
    int lineNumber = 0;
    try {
        return parse(QString::fromUtf8(file.readAll()).split('\n'), lineNumber);
    } catch (const DataError &error) {
        throw DataError(QString("line %1: %2").arg(lineNumber).arg(error.what()));
    }
}
