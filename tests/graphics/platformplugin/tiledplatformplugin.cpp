#include "tiledplatform.h"

#include <QImage>
#include <qpa/qplatformbackingstore.h>
#include <qpa/qplatformintegration.h>
#include <qpa/qplatformintegrationplugin.h>
#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformscreen.h>
#include <qpa/qplatformwindow.h>
#include <qpa/qwindowsysteminterface.h>
#include <QPainter>
#include <QPixmap>
#include <QtGui/private/qgenericunixeventdispatcher_p.h>

#include <functional>
#include <memory>

namespace ovelin::tests {

namespace {

TiledPlatform platform;

// The three functions, with the signatures of the device's platform.

QPixmap createTiledPixmap(QPlatformNativeInterface *nativeInterface, const QSize &size,
                          std::function<void(QPainter &)> paint)
{
    QPixmap pixmap(size);
    pixmap.fill(TiledPlatform::background);
    if (paint && platform.paints) {
        QPainter painter(&pixmap);
        paint(painter);
    }
    platform.createPixmapCalls.append(
        {nativeInterface, size, static_cast<bool>(paint), pixmap.cacheKey()});
    return pixmap;
}

void setupPainterForTiledPixmap(QPlatformNativeInterface *nativeInterface, const QPixmap &pixmap,
                                QPainter &painter)
{
    painter.setOpacity(TiledPlatform::preparedOpacity);
    platform.setupPainterCalls.append({nativeInterface, &pixmap, &painter});
}

void createTiledBuffer(QPlatformNativeInterface *nativeInterface)
{
    platform.createBufferCalls.append(nativeInterface);
}

struct NamedFunction
{
    const char *name;
    QFunctionPointer function;
};

//! [functions]
const NamedFunction tiledFunctions[] = {
    {"createTiledPixmap", reinterpret_cast<QFunctionPointer>(createTiledPixmap)},
    {"setupPainterForTiledPixmap", reinterpret_cast<QFunctionPointer>(setupPainterForTiledPixmap)},
    {"createTiledBuffer", reinterpret_cast<QFunctionPointer>(createTiledBuffer)},
};
//! [functions]

TiledPlatform *thisPlatform()
{
    return &platform;
}

class NativeInterface : public QPlatformNativeInterface
{
public:
    QFunctionPointer platformFunction(const QByteArray &name) const override
    {
        if (name == tiledPlatformFunction)
            return reinterpret_cast<QFunctionPointer>(thisPlatform);

        platform.lookups.append(name);
        if (!platform.offered.contains(name))
            return nullptr;
        for (const NamedFunction &candidate : tiledFunctions) {
            if (name == candidate.name)
                return candidate.function;
        }
        return nullptr;
    }
};

class Screen : public QPlatformScreen
{
public:
    explicit Screen(QImage::Format format)
        : m_format(format)
    {
    }

    QRect geometry() const override { return QRect(0, 0, 1280, 720); }
    int depth() const override { return QImage::toPixelFormat(m_format).bitsPerPixel(); }
    QImage::Format format() const override { return m_format; }

private:
    QImage::Format m_format;
};

class BackingStore : public QPlatformBackingStore
{
public:
    using QPlatformBackingStore::QPlatformBackingStore;

    QPaintDevice *paintDevice() override { return &m_image; }
    void flush(QWindow *, const QRegion &, const QPoint &) override {}
    void resize(const QSize &size, const QRegion &) override
    {
        m_image = QImage(size, QImage::Format_ARGB32_Premultiplied);
    }

private:
    QImage m_image;
};

class Integration : public QPlatformIntegration
{
public:
    explicit Integration(QImage::Format screenFormat)
        : m_screen(new Screen(screenFormat))
    {
        platform.nativeInterfaces = {&m_nativeInterfaces[0], &m_nativeInterfaces[1]};
        platform.nativeInterface = platform.nativeInterfaces[0];
    }

    ~Integration() override { QWindowSystemInterface::handleScreenRemoved(m_screen); }

    void initialize() override { QWindowSystemInterface::handleScreenAdded(m_screen); }

    QPlatformNativeInterface *nativeInterface() const override { return platform.nativeInterface; }

    QPlatformWindow *createPlatformWindow(QWindow *window) const override
    {
        return new QPlatformWindow(window);
    }

    QPlatformBackingStore *createPlatformBackingStore(QWindow *window) const override
    {
        return new BackingStore(window);
    }

    QAbstractEventDispatcher *createEventDispatcher() const override
    {
        return createUnixEventDispatcher();
    }

private:
    Screen *m_screen; // owned by Qt after initialize()
    std::array<NativeInterface, 2> m_nativeInterfaces;
};

QImage::Format screenFormatNamed(QStringView name)
{
    if (name == u"argb32")
        return QImage::Format_ARGB32_Premultiplied;
    if (name == u"rgb16")
        return QImage::Format_RGB16;
    return QImage::Format_RGB32;
}

} // namespace

// Example of parameters: "tiled:offer=createTiledPixmap+createTiledBuffer:format=argb32". "offer"
// lists the functions to offer, by default none. "format" is the pixel format of the screen, by
// default rgb32.
class TiledPlatformPlugin : public QPlatformIntegrationPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QPlatformIntegrationFactoryInterface_iid FILE "tiledplatform.json")

public:
    QPlatformIntegration *create(const QString &, const QStringList &parameters) override
    {
        auto screenFormat = QImage::Format_RGB32;
        for (const QString &parameter : parameters) {
            const QString value = parameter.section(u'=', 1);
            if (parameter.startsWith(u"offer="))
                platform.offered = value.toLatin1().split('+');
            else if (parameter.startsWith(u"format="))
                screenFormat = screenFormatNamed(value);
        }
        return new Integration(screenFormat);
    }
};

} // namespace ovelin::tests

#include "tiledplatformplugin.moc"
