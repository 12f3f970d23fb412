#ifndef OVELIN_TESTS_TEXT_KERNEDFONT_H
#define OVELIN_TESTS_TEXT_KERNEDFONT_H

#include <QByteArray>
#include <QString>

namespace ovelin::tests {

// The change of the distance between two glyphs, in thousandths of the font's size.
struct Kerning
{
    int beforeSpace = 0;
    int afterSpace = 0;
    int betweenLetters = 0;
};

// Both functions return a TrueType font whose glyphs are rectangles. The font has ASCII, the Russian
// letters, « » — … İ, the no-break space, U+FFFD and U+1F600.

// Every glyph is 0.6 em wide. The kerning may be stronger than in any font for reading.
QByteArray kernedFont(const QString &family, const Kerning &kerning);

// Every glyph is half an em wide: 10 pixels in a font of 20 pixels.
QByteArray halfEmFont(const QString &family);

} // namespace ovelin::tests

#endif
