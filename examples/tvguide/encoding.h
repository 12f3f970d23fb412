#ifndef TVGUIDE_ENCODING_H
#define TVGUIDE_ENCODING_H

#include <QString>

#include <optional>

QT_BEGIN_NAMESPACE
class QIODevice;
QT_END_NAMESPACE

namespace tvguide {

// Returns why the content of a device cannot be decoded: it is compressed, or it declares an
// encoding that Qt does not know. Returns an empty text for other content. The device stays at its
// place.
QString undecodableContent(QIODevice &device);

// Returns the first line, counted from 1, that a parser has read and that is not in the declared
// encoding, which is UTF-8; nothing for other encodings, where every byte is right. Moves the
// device.
std::optional<qint64> wronglyEncodedLine(QIODevice &device);

} // namespace tvguide

#endif
