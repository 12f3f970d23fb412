#include <ovelin/platformnativeinterface.h>

#include <QGuiApplication>
#include <QPainter>

namespace ovelin {

namespace {

PlatformNativeInterface *installedInterface = nullptr;

using PaintFunction = std::function<void(QPainter &)>;

// The functions that the platform plug-in publishes. Their first argument is the plug-in's native interface.
using CreateTiledPixmap = QPixmap (*)(QPlatformNativeInterface *, const QSize &, PaintFunction);
using SetupPainterForTiledPixmap = void (*)(QPlatformNativeInterface *, const QPixmap &,
                                            QPainter &);
using CreateTiledBuffer = void (*)(QPlatformNativeInterface *);

template<typename Function>
Function platformFunction(const char *name)
{
    return reinterpret_cast<Function>(QGuiApplication::platformFunction(name));
}

} // namespace

/*!
    \class ovelin::PlatformNativeInterface
    \inmodule Ovelin
    \inheaderfile ovelin/platformnativeinterface.h
    \brief Access to the tiled pixmaps that the device's Qt platform plug-in may offer.

    \snippet tst_snippets.cpp tiled

    The guide \l {The platform plug-in's functions} tells what a plug-in has to offer.

    The constructor looks the plug-in's functions up with QGuiApplication::platformFunction(), so
    the QGuiApplication must exist. A plug-in may lack any of the functions: the description of each
    member tells what happens then. Use this class in the GUI thread.

    \since Ovelin 1.0
    \sa {ovelin}{platformNativeInterface()}
*/

/*!
    Looks up the plug-in's functions "createTiledPixmap" and "setupPainterForTiledPixmap".
*/
PlatformNativeInterface::PlatformNativeInterface()
{
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();

    if (const auto create = platformFunction<CreateTiledPixmap>("createTiledPixmap")) {
        createTiledPixmapFn = [native, create](const QSize &size, PaintFunction paint) {
            return create(native, size, std::move(paint));
        };
    }
    const auto setup = platformFunction<SetupPainterForTiledPixmap>("setupPainterForTiledPixmap");
    if (setup) {
        setupPainterForTiledPixmapFn = [native, setup](const QPixmap &pixmap, QPainter &painter) {
            setup(native, pixmap, painter);
        };
    }
}

/*!
    Calls the plug-in's function "createTiledBuffer", which sets up the tiled buffer of the
    platform. Does nothing if the plug-in lacks it. Needs no object of this class.
*/
void PlatformNativeInterface::init()
{
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();
    if (const auto create = platformFunction<CreateTiledBuffer>("createTiledBuffer"))
        create(native);
}

/*!
    Returns true if the plug-in has "createTiledPixmap". The plug-in may have
    "setupPainterForTiledPixmap" without it.
*/
bool PlatformNativeInterface::isTiledPixmapAvailable() const
{
    return static_cast<bool>(createTiledPixmapFn);
}

/*!
    Returns a tiled pixmap of \a size pixels. The plug-in calls \a paint with a painter on that
    pixmap. Returns a null pixmap, and does not call \a paint, if the plug-in lacks
    "createTiledPixmap".
*/
QPixmap PlatformNativeInterface::createTiledPixmap(const QSize &size,
                                                   std::function<void(QPainter &)> paint) const
{
    return createTiledPixmapFn ? createTiledPixmapFn(size, std::move(paint)) : QPixmap();
}

/*!
    Prepares \a painter for the tiled pixmap \a pixmap. Does nothing if the plug-in lacks
    "setupPainterForTiledPixmap".
*/
void PlatformNativeInterface::setupPainterForTiledPixmap(const QPixmap &pixmap,
                                                         QPainter &painter) const
{
    if (setupPainterForTiledPixmapFn)
        setupPainterForTiledPixmapFn(pixmap, painter);
}

/*!
    Returns the installed interface, or null if none is installed. Initially none is.

    \since Ovelin 1.0
    \sa setPlatformNativeInterface(), PlatformNativeInterface
*/
PlatformNativeInterface *platformNativeInterface()
{
    return installedInterface;
}

/*!
    Installs \a interface. Null uninstalls the present one. The application owns both the old and
    the new interface, and uninstalls an interface before destroying it.

    \since Ovelin 1.0
    \sa platformNativeInterface(), PlatformNativeInterface
*/
void setPlatformNativeInterface(PlatformNativeInterface *interface)
{
    installedInterface = interface;
}

} // namespace ovelin
