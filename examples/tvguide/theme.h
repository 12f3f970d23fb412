#ifndef TVGUIDE_THEME_H
#define TVGUIDE_THEME_H

#include <QColor>
#include <QFont>

// The colours and the font of the screen.
namespace tvguide::theme {

inline constexpr QColor backgroundTop(0x12, 0x17, 0x2e);
inline constexpr QColor backgroundBottom(0x07, 0x09, 0x14);
inline constexpr QColor panelTop(0x26, 0x2f, 0x55);
inline constexpr QColor panelBottom(0x18, 0x1e, 0x3a);
inline constexpr QColor rowTrack(0xff, 0xff, 0xff, 0x0a);
inline constexpr QColor cardTop(0x22, 0x29, 0x48);
inline constexpr QColor cardBottom(0x1a, 0x20, 0x3a);
inline constexpr QColor runningCardTop(0x2f, 0x3a, 0x66);
inline constexpr QColor runningCardBottom(0x25, 0x2e, 0x54);
inline constexpr QColor focusedCardTop(0x47, 0x57, 0x9a);
inline constexpr QColor focusedCardBottom(0x33, 0x40, 0x7a);

inline constexpr QColor text(0xf4, 0xf5, 0xfb);
inline constexpr QColor softText(0xb4, 0xbc, 0xd8);
inline constexpr QColor pastText(0x8a, 0x92, 0xb0);

inline constexpr QColor accent(0xff, 0xb8, 0x4d);
inline constexpr QColor now(0xff, 0x6a, 0x5c, 0xd0);
inline constexpr QColor progressTrack(0xff, 0xff, 0xff, 0x2e);
inline constexpr QColor line(0xff, 0xff, 0xff, 0x16);

// Without hinting, texts have the same width on all machines, whatever their settings.
inline QFont font(int pixelSize, QFont::Weight weight = QFont::Normal)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    return font;
}

} // namespace tvguide::theme

#endif
