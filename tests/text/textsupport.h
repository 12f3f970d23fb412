#ifndef OVELIN_TESTS_TEXT_TEXTSUPPORT_H
#define OVELIN_TESTS_TEXT_TEXTSUPPORT_H

#include "support/reducedrun.h"

#include <QDataStream>
#include <QFont>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QList>
#include <QString>

#include <cmath>

namespace ovelin::tests {

constexpr char16_t lineSeparator = u'\u2028';
constexpr char16_t ellipsis = u'\u2026';

inline QFont pixelFont(int pixelSize = 20)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixelSize);
    return font;
}

inline QFont spacedFont(QFont::SpacingType type, double spacing)
{
    QFont font = pixelFont();
    font.setLetterSpacing(type, spacing);
    return font;
}

// No setter accepts a size of 0, but a font that is read from a stream may have it.
inline QFont fontOfZeroPixels()
{
    const QByteArray size = QByteArrayLiteral("\1\2\3\4");
    QByteArray bytes;
    QDataStream writer(&bytes, QDataStream::WriteOnly);
    writer << pixelFont(0x01020304);
    bytes.replace(size, QByteArray(size.size(), '\0'));

    QFont font;
    QDataStream reader(bytes);
    reader >> font;
    return font;
}

// Without DejaVu Sans, Qt would silently use another font, and the expected widths would be wrong.
inline bool isTestFontInstalled()
{
    return QFontInfo(pixelFont()).family() == QStringLiteral("DejaVu Sans");
}

inline double advance(const QString &text, const QFont &font = pixelFont())
{
    return QFontMetricsF(font).horizontalAdvance(text);
}

// Returns the text with U+FFFD for each lone half of a surrogate pair, as the library shows it.
inline QString withWholeCharacters(const QString &text)
{
    QString result;
    for (const char32_t c : text.toUcs4())
        result +=
            QChar::fromUcs4(QChar::isSurrogate(c) ? char32_t(QChar::ReplacementCharacter) : c);
    return result;
}

// The advance in whole pixels with the two pixels of margin.
inline int fineWidth(const QString &text, const QFont &font = pixelFont())
{
    return static_cast<int>(std::ceil(advance(text, font))) + 2;
}

// The least whole width of a box in which a line of this advance fits: a line as wide as the box overflows.
inline int leastWidthThatFits(double advance)
{
    return static_cast<int>(std::floor(advance)) + 1;
}

// The greatest whole width of a box that a line of this advance overflows.
inline int greatestWidthThatOverflows(double advance)
{
    return static_cast<int>(std::floor(advance));
}

} // namespace ovelin::tests

#endif
