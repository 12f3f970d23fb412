#include "encoding.h"

#include <QByteArray>
#include <QIODevice>
#include <QRegularExpression>
#include <QStringDecoder>

#include <array>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

struct Compression
{
    QByteArrayView mark;
    QLatin1StringView name;
};

// Guides are offered for download in these formats. The mark is how a file of the format begins, as the
// description of the format says.
const std::array compressions{
    Compression{"\x1f\x8b", "gzip"_L1},
    Compression{"BZh", "bzip2"_L1},
    Compression{"\xfd"
                "7zXZ",
                "xz"_L1},
    Compression{"PK\x03\x04", "zip"_L1},
};

// Returns the name of the encoding that the first line of an XML file declares; "UTF-8" without a
// declaration.
QByteArray declaredEncoding(QIODevice &device)
{
    // In bytes. A declaration has some 60.
    constexpr qint64 longestDeclaration = 256;
    static const QRegularExpression pattern(
        uR"(^(?:\xef\xbb\xbf)?<\?xml[^>]*\sencoding\s*=\s*["']([\w.:-]+)["'])"_s);
    const QString beginning = QString::fromLatin1(device.peek(longestDeclaration));
    const auto match = pattern.match(beginning);
    return match.hasMatch() ? match.captured(1).toLatin1() : "UTF-8"_ba;
}

} // namespace

QString undecodableContent(QIODevice &device)
{
    constexpr qint64 longestMark = 8;
    const QByteArray beginning = device.peek(longestMark);
    for (const Compression &compression : compressions) {
        if (beginning.startsWith(compression.mark))
            return u"the file is compressed with %1: decompress it first"_s.arg(compression.name);
    }

    const QByteArray encoding = declaredEncoding(device);
    if (!QStringDecoder(encoding.constData()).isValid()) {
        return u"the encoding \"%1\" is unknown here: convert the file to UTF-8 first"_s.arg(
            QLatin1StringView(encoding));
    }
    return {};
}

std::optional<qint64> wronglyEncodedLine(QIODevice &device)
{
    const qint64 end = device.pos();
    if (!device.seek(0)
        || QStringConverter::encodingForName(declaredEncoding(device).constData())
               != QStringConverter::Utf8) {
        return std::nullopt;
    }

    QStringDecoder decoder(QStringConverter::Utf8);
    for (qint64 line = 1; device.pos() < end; ++line) {
        static_cast<void>(QString(decoder.decode(device.readLine())));
        if (decoder.hasError())
            return line;
    }
    return std::nullopt;
}

} // namespace tvguide
