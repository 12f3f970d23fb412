#include <ovelin/platformnativeinterface.h>

#include <QGuiApplication>
#include <QPainter>

namespace ovelin {

namespace {

PlatformNativeInterface *installedInterface = nullptr;

using PaintFunction = std::function<void(QPainter &)>;

// What the platform plug-in publishes under these names; its own native interface comes first.
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
    \brief Access to the tiled pixmaps that the box's Qt platform plug-in may offer.

    The functions are looked up once, by QGuiApplication::platformFunction(), when an object is
    constructed: construct it when the QGuiApplication exists. A function that the platform lacks is
    no error; isTiledPixmapAvailable() tells, and the members fall back as they say. For the GUI
    thread.

    \since Ovelin 1.0
    \sa {ovelin}{platformNativeInterface()}
*/

/*!
    Looks up the platform's "createTiledPixmap" and "setupPainterForTiledPixmap".
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
    Has the platform set up its tiled buffer, by its "createTiledBuffer"; does nothing on a platform
    without it. Needs no object.
*/
void PlatformNativeInterface::init()
{
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();
    if (const auto create = platformFunction<CreateTiledBuffer>("createTiledBuffer"))
        create(native);
}

/*!
    Returns whether createTiledPixmap() gives pixmaps. Says nothing about
    setupPainterForTiledPixmap(), which a platform may offer alone.
*/
bool PlatformNativeInterface::isTiledPixmapAvailable() const
{
    return static_cast<bool>(createTiledPixmapFn);
}

/*!
    Returns the platform's tiled pixmap of \a size pixels, which it lets \a paint fill with a painter
    of its own; a null pixmap, without \a paint being called, where the platform has none.
*/
QPixmap PlatformNativeInterface::createTiledPixmap(const QSize &size,
                                                   std::function<void(QPainter &)> paint) const
{
    return createTiledPixmapFn ? createTiledPixmapFn(size, std::move(paint)) : QPixmap();
}

/*!
    Has the platform prepare \a painter for \a pixmap, a tiled one; does nothing where the platform
    cannot.
*/
void PlatformNativeInterface::setupPainterForTiledPixmap(const QPixmap &pixmap,
                                                         QPainter &painter) const
{
    if (setupPainterForTiledPixmapFn)
        setupPainterForTiledPixmapFn(pixmap, painter);
}

/*!
    Returns the installed interface, or null while there is none, as at first.

    \since Ovelin 1.0
    \sa setPlatformNativeInterface(), PlatformNativeInterface
*/
PlatformNativeInterface *platformNativeInterface()
{
    return installedInterface;
}

/*!
    Installs \a interface for all; null uninstalls. The application keeps the ownership of both the old
    and the new interface, and uninstalls one before it destroys it.

    \since Ovelin 1.0
    \sa platformNativeInterface(), PlatformNativeInterface
*/
void setPlatformNativeInterface(PlatformNativeInterface *interface)
{
    installedInterface = interface;
}

} // namespace ovelin
