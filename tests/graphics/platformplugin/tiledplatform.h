#ifndef OVELIN_TESTS_TILEDPLATFORM_H
#define OVELIN_TESTS_TILEDPLATFORM_H

#include <QByteArray>
#include <QColor>
#include <QGuiApplication>
#include <QList>
#include <QSize>

#include <array>

class QPainter;
class QPixmap;
class QPlatformNativeInterface;

namespace ovelin::tests {

// The settings of the tests' platform plug-in, and a record of its calls. The object belongs to
// the plug-in. A test gets it from tiledPlatform(), and may change the settings at any time.
struct TiledPlatform
{
    struct CreatePixmapCall
    {
        QPlatformNativeInterface *nativeInterface = nullptr;
        QSize size;
        bool canPaint = false;
        qint64 cacheKey = 0; // of the pixmap returned
    };

    struct SetupPainterCall
    {
        QPlatformNativeInterface *nativeInterface = nullptr;
        const QPixmap *pixmap = nullptr;
        QPainter *painter = nullptr;
    };

    static constexpr QColor background{0, 0, 255};  // of a created pixmap, before it is painted on
    static constexpr double preparedOpacity = 0.25; // of a painter that was set up

    QList<QByteArray> offered; // the names of the functions
    bool paints = true;        // true if createTiledPixmap calls the painting function

    // The present native interface is one of these, or none.
    std::array<QPlatformNativeInterface *, 2> nativeInterfaces = {};
    QPlatformNativeInterface *nativeInterface = nullptr;

    QList<QByteArray> lookups;
    QList<CreatePixmapCall> createPixmapCalls;
    QList<SetupPainterCall> setupPainterCalls;
    QList<QPlatformNativeInterface *> createBufferCalls;

    void forgetCalls()
    {
        lookups.clear();
        createPixmapCalls.clear();
        setupPainterCalls.clear();
        createBufferCalls.clear();
    }
};

inline constexpr char tiledPlatformFunction[] = "tiledPlatform";
using TiledPlatformFunction = TiledPlatform *(*)();

// Returns null on every other platform.
inline TiledPlatform *tiledPlatform()
{
    const auto function = reinterpret_cast<TiledPlatformFunction>(
        QGuiApplication::platformFunction(tiledPlatformFunction));
    return function ? function() : nullptr;
}

} // namespace ovelin::tests

#endif
