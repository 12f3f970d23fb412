#include "fuzzing.h"

#include "tvguide/guideinvariants.h"
#include "xmltvreader.h"

#include <QBuffer>

// Any file. Whatever stands in it, the guide that comes of it is one that can be shown, and each problem
// is told on one line.

using namespace tvguide;
using namespace tvguide::tests;
using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    QByteArray file(reinterpret_cast<const char *>(bytes), qsizetype(size));
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    const XmltvResult result = readXmltv(buffer, u"guide.xml"_s, u"ru"_s, [](const QString &line) {
        requireNone(problemViolation(line));
    });
    requireNone(guideViolation(result.guide));
    for (const Channel &channel : result.guide.channels()) {
        for (const Programme &programme : channel.programmes)
            result.guide.clock().iso(programme.start);
    }
    return 0;
}
