#ifndef OVELIN_TESTS_TEXT_TESTFONTS_H
#define OVELIN_TESTS_TEXT_TESTFONTS_H

#include <QByteArray>
#include <QFont>
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
QByteArray kernedFont(const Kerning &kerning);

// Every glyph is half an em wide, 10 pixels in a font of 20 pixels, but the ellipsis can be several times as wide.
QByteArray halfEmFont(int charactersInEllipsis = 1);

// Makes a font file available as long as the object exists.
class InstalledFont
{
public:
    explicit InstalledFont(const QByteArray &file);
    ~InstalledFont();

    QString family() const { return m_family; } // empty if Qt cannot read the file
    QFont font(int pixelSize) const;

private:
    Q_DISABLE_COPY_MOVE(InstalledFont)

    int m_id;
    QString m_family;
};

} // namespace ovelin::tests

#endif
