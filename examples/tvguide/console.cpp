#include "console.h"

#include <cstdio>

namespace tvguide {

namespace {

void write(std::FILE *stream, const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

} // namespace

void print(const QString &line)
{
    write(stdout, line);
}

void complain(const QString &line)
{
    write(stderr, line);
}

} // namespace tvguide
