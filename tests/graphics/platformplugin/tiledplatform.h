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

// How the tests' own platform behaves, and what it was asked for. It lives in the plug-in; a test
// program reaches it through tiledPlatform() and may change the behaviour as it goes.
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

    QList<QByteArray> offered; // by their names
    bool paints = true;        // whether createTiledPixmap calls the painting function

    // The native interface of the moment is one of these, or none.
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

// Null on every other platform.
inline TiledPlatform *tiledPlatform()
{
    const auto function = reinterpret_cast<TiledPlatformFunction>(
        QGuiApplication::platformFunction(tiledPlatformFunction));
    return function ? function() : nullptr;
}

} // namespace ovelin::tests

#endif
