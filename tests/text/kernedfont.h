#ifndef OVELIN_TESTS_TEXT_KERNEDFONT_H
#define OVELIN_TESTS_TEXT_KERNEDFONT_H

#include <QByteArray>
#include <QString>

namespace ovelin::tests {

// What a pair of glyphs gains in width, in thousandths of the font's size.
struct Kerning
{
    int beforeSpace = 0;
    int afterSpace = 0;
    int betweenLetters = 0;
};

// Makes a TrueType font of boxes for ASCII, the Russian letters and some marks, all as wide
// as 600 thousandths of its size, and kerned as no font for reading is.
QByteArray kernedFont(const QString &family, const Kerning &kerning);

} // namespace ovelin::tests

#endif
