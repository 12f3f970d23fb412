#ifndef OVELIN_PLATFORMNATIVEINTERFACE_H
#define OVELIN_PLATFORMNATIVEINTERFACE_H

#include <ovelin/ovelinglobal.h>

#include <QtGui/qpixmap.h>

#include <functional>

QT_BEGIN_NAMESPACE
class QPainter;
class QSize;
QT_END_NAMESPACE

namespace ovelin {

// Tiled pixmaps of the platform plug-in. Guide: "The platform plug-in's functions".
class OVELIN_EXPORT PlatformNativeInterface
{
public:
    PlatformNativeInterface();

    static void init();

    bool isTiledPixmapAvailable() const;
    QPixmap createTiledPixmap(const QSize &size, std::function<void(QPainter &)> paint) const;
    void setupPainterForTiledPixmap(const QPixmap &pixmap, QPainter &painter) const;

private:
    std::function<QPixmap(const QSize &, std::function<void(QPainter &)>)> createTiledPixmapFn;
    std::function<void(const QPixmap &, QPainter &)> setupPainterForTiledPixmapFn;
};

OVELIN_EXPORT PlatformNativeInterface *platformNativeInterface();
OVELIN_EXPORT void setPlatformNativeInterface(PlatformNativeInterface *interface);

} // namespace ovelin

#endif
