#include "testfonts.h"

#include <QDataStream>
#include <QFontDatabase>
#include <QIODevice>
#include <QList>
#include <QMap>

#include <algorithm>
#include <bit>
#include <numeric>

namespace ovelin::tests {

namespace {

// The tables and their fields are those of OpenType fonts. All numbers are big endian.

struct Proportions
{
    quint16 unitsPerEm;
    quint16 glyphWidth;
    quint16 ellipsisWidth;
    qint16 ascent;
    qint16 descent;
};

constexpr quint16 spaceGlyph = 1;
constexpr quint16 ellipsisGlyph = 165;
constexpr quint16 glyphCount = 171;

struct CharacterRange
{
    quint32 first;
    quint32 last;
    quint32 firstGlyph;
};

// All other characters have glyph 0.
constexpr CharacterRange characterRanges[] = {
    {0x20, 0x7e, 1},       {0xa0, 0xa0, 166},       {0xab, 0xab, 96},
    {0xbb, 0xbb, 97},      {0x130, 0x130, 167},     {0x401, 0x401, 168},
    {0x410, 0x451, 98},    {0x2014, 0x2014, 164},   {0x2026, 0x2026, ellipsisGlyph},
    {0xfffd, 0xfffd, 169}, {0x1f600, 0x1f600, 170},
};

template<typename... Fields>
QByteArray packed(Fields... fields)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << fields);
    return bytes;
}

QByteArray headTable(const Proportions &font)
{
    constexpr quint32 version = 0x00010000;
    constexpr quint32 magic = 0x5f0f3cf5;
    constexpr quint16 smallestSize = 6;
    constexpr qint16 longOffsets = 1;
    return packed(version, version, quint32(0), magic, quint16(0), font.unitsPerEm, qint64(0),
                  qint64(0), qint16(0), font.descent, qint16(font.glyphWidth), font.ascent,
                  quint16(0), smallestSize, qint16(2), longOffsets, qint16(0));
}

QByteArray hheaTable(const Proportions &font)
{
    return packed(quint32(0x00010000), font.ascent, font.descent, qint16(0),
                  std::max(font.glyphWidth, font.ellipsisWidth), qint64(0), qint64(0), quint32(0),
                  quint16(0), glyphCount);
}

QByteArray maxpTable()
{
    return packed(quint32(0x00010000), glyphCount) + QByteArray(26, '\0');
}

QByteArray hmtxTable(const Proportions &font)
{
    QByteArray metrics = packed(font.glyphWidth, qint16(0)).repeated(glyphCount);
    const QByteArray ellipsis = packed(font.ellipsisWidth, qint16(0));
    return metrics.replace(ellipsisGlyph * ellipsis.size(), ellipsis.size(), ellipsis);
}

// A rectangle, because Qt gives no width to a glyph without an outline.
QByteArray glyph()
{
    constexpr qint16 left = 50;
    constexpr qint16 right = 450;
    constexpr qint16 top = 700;
    constexpr qint16 width = right - left;
    constexpr qint16 height = top;
    constexpr quint8 onCurve = 1;
    constexpr qint16 none = 0;
    return packed(qint16(1), left, none, right, top, quint16(3), quint16(0))
           + QByteArray(4, char(onCurve)) + packed(left, width, none, qint16(-width))
           + packed(none, none, height, none) + QByteArray(2, '\0');
}

QByteArray glyfTable()
{
    return glyph().repeated(glyphCount);
}

QByteArray locaTable()
{
    const auto glyphSize = quint32(glyph().size());
    QByteArray offsets;
    for (quint32 index = 0; index <= glyphCount; ++index)
        offsets += packed(index * glyphSize);
    return offsets;
}

QByteArray cmapTable()
{
    QByteArray groups;
    for (const auto &[first, last, glyph] : characterRanges)
        groups += packed(first, last, glyph);
    constexpr quint32 offset = 12;
    constexpr quint32 headSize = 16;
    const quint32 size = headSize + quint32(groups.size());
    return packed(quint16(0), quint16(1), quint16(3), quint16(10), offset, quint16(12), quint16(0),
                  size, quint32(0), quint32(std::size(characterRanges)))
           + groups;
}

QByteArray nameTable(const QString &family)
{
    QByteArray names;
    QDataStream stream(&names, QIODevice::WriteOnly);
    for (const QChar c : family)
        stream << c.unicode();
    constexpr quint16 offset = 18;
    constexpr quint16 english = 0x409;
    return packed(quint16(0), quint16(1), offset, quint16(3), quint16(1), english, quint16(1),
                  quint16(names.size()), quint16(0))
           + names;
}

QByteArray postTable()
{
    return packed(quint32(0x00030000)) + QByteArray(28, '\0');
}

int kerningOf(quint16 left, quint16 right, const Kerning &kerning)
{
    if (right == spaceGlyph)
        return kerning.beforeSpace;
    return left == spaceGlyph ? kerning.afterSpace : kerning.betweenLetters;
}

QByteArray kernTable(const Kerning &kerning)
{
    QByteArray pairs;
    quint16 count = 0;
    for (quint16 left = 1; left < glyphCount; ++left) {
        for (quint16 right = 1; right < glyphCount; ++right) {
            const int value = kerningOf(left, right, kerning);
            // All pairs would exceed the table's 16-bit size: only every fifth pair of letters is kerned.
            if (value == 0 || (right != spaceGlyph && left != spaceGlyph && (left + right) % 5 > 0))
                continue;
            pairs += packed(left, right, qint16(value));
            ++count;
        }
    }
    const quint16 searched = std::bit_floor(count);
    constexpr quint16 headSize = 14;
    constexpr quint16 horizontal = 1;
    return packed(quint16(0), quint16(1), quint16(0), quint16(headSize + pairs.size()), horizontal,
                  count, quint16(6 * searched), quint16(std::bit_width(searched) - 1),
                  quint16(6 * (count - searched)))
           + pairs;
}

quint32 checksum(const QByteArray &table)
{
    quint32 sum = 0;
    QDataStream stream(table);
    for (quint32 word = 0; !stream.atEnd();) {
        stream >> word;
        sum += word;
    }
    return sum;
}

// QMap sorts the tables by name, as the font's directory needs them.
using Tables = QMap<QByteArray, QByteArray>;

Tables tablesWithoutKerning(const QString &family, const Proportions &font)
{
    return {
        {"cmap", cmapTable()},     {"glyf", glyfTable()},       {"head", headTable(font)},
        {"hhea", hheaTable(font)}, {"hmtx", hmtxTable(font)},   {"loca", locaTable()},
        {"maxp", maxpTable()},     {"name", nameTable(family)}, {"post", postTable()},
    };
}

QByteArray fontFile(const Tables &tables)
{
    const auto count = quint16(tables.size());
    const quint16 searched = std::bit_floor(count);
    QByteArray directory =
        packed(quint32(0x00010000), count, quint16(16 * searched),
               quint16(std::bit_width(searched) - 1), quint16(16 * (count - searched)));
    QByteArray contents;
    const qsizetype directorySize = directory.size() + 16 * tables.size();
    for (auto [name, table] : tables.asKeyValueRange()) {
        QByteArray padded = table;
        padded.resize((table.size() + 3) / 4 * 4, '\0');
        directory += name
                     + packed(checksum(padded), quint32(directorySize + contents.size()),
                              quint32(table.size()));
        contents += padded;
    }
    return directory + contents;
}

} // namespace

QByteArray kernedFont(const Kerning &kerning)
{
    const QString family = QStringLiteral("Kerned %1 %2 %3")
                               .arg(kerning.beforeSpace)
                               .arg(kerning.afterSpace)
                               .arg(kerning.betweenLetters);
    constexpr Proportions thousandths{.unitsPerEm = 1000,
                                      .glyphWidth = 600,
                                      .ellipsisWidth = 600,
                                      .ascent = 800,
                                      .descent = -200};
    Tables tables = tablesWithoutKerning(family, thousandths);
    tables.insert("kern", kernTable(kerning));
    return fontFile(tables);
}

QByteArray halfEmFont(int charactersInEllipsis)
{
    // With 1024 units per em, half an em at 20 pixels is exactly 10 pixels. With 1000 units Qt computes 9.98.
    const Proportions powersOfTwo{.unitsPerEm = 1024,
                                  .glyphWidth = 512,
                                  .ellipsisWidth = quint16(512 * charactersInEllipsis),
                                  .ascent = 768,
                                  .descent = -256};
    const QString family = QStringLiteral("Half em %1").arg(charactersInEllipsis);
    return fontFile(tablesWithoutKerning(family, powersOfTwo));
}

InstalledFont::InstalledFont(const QByteArray &file)
    : m_id(QFontDatabase::addApplicationFontFromData(file))
    , m_family(QFontDatabase::applicationFontFamilies(m_id).value(0))
{
}

InstalledFont::~InstalledFont()
{
    QFontDatabase::removeApplicationFont(m_id);
}

QFont InstalledFont::font(int pixelSize) const
{
    QFont font(m_family);
    font.setPixelSize(pixelSize);
    return font;
}

} // namespace ovelin::tests
