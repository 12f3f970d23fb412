#ifndef TVGUIDE_ENCODING_H
#define TVGUIDE_ENCODING_H

#include <QString>

#include <optional>

QT_BEGIN_NAMESPACE
class QIODevice;
QT_END_NAMESPACE

namespace tvguide {

// Returns why the content of a device cannot be decoded: it is compressed, or it declares an
// encoding that Qt does not know. Returns an empty text for other content. Does not move the
// device.
QString undecodableContent(QIODevice &device);

// Checks the lines that a parser has read from a device whose content is declared as UTF-8. Returns
// the first one that is not UTF-8, counted from 1; nothing if there is none, or for other encodings.
// Moves the device.
std::optional<qint64> wronglyEncodedLine(QIODevice &device);

} // namespace tvguide

#endif
