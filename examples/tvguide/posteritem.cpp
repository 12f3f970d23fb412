#include "posteritem.h"

#include "ownerrecord.h"
#include "posterart.h"

#include <ovelin/brushes.h>

#include <QFileInfo>
#include <QImageReader>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <limits>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;
using ovelin::ResourceInfo;
using ovelin::ResourceOwnerState;

// Posters come in any size. Pictures above the first limit, in pixels, are scaled down while they
// are read. Pictures above one of the other limits, in pixels and bytes, would need too much memory
// or time and are not read.
constexpr QSize maxSourceSize(640, 360);
constexpr qint64 maxSourcePixels = 40'000'000;
constexpr qint64 maxFileSize = 16LL * 1024 * 1024;

constexpr int bytesPerPixel = 4;

qint64 bytes(const QSize &size)
{
    return size.isEmpty() ? 0 : qint64(size.width()) * size.height() * bytesPerPixel;
}

QString localPath(const QUrl &url)
{
    if (url.isLocalFile())
        return url.toLocalFile();
    if (url.scheme() == "qrc"_L1)
        return u':' + url.path();
    return {};
}

// Returns the size of the picture in memory; an empty size without a readable picture.
QSize sourceSize(const QUrl &url)
{
    const QFileInfo file(localPath(url));
    // Reading from a pipe or a device might never end.
    if (!file.isFile() || file.size() > maxFileSize)
        return {};
    const QSize size = QImageReader(file.filePath()).size();
    if (size.isEmpty() || qint64(size.width()) * size.height() > maxSourcePixels)
        return {};
    const QSize scaled = size.scaled(maxSourceSize, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    return scaled.width() < size.width() ? scaled : size;
}

// Returns the largest rectangle in the middle of the source with the target's aspect ratio.
QRect covering(const QSize &source, const QSize &target)
{
    QRect part(QPoint(0, 0), target.scaled(source, Qt::KeepAspectRatio));
    part.moveCenter(QRect(QPoint(0, 0), source).center());
    return part;
}

int importanceOf(PosterItem::Shape shape)
{
    switch (shape) {
    case PosterItem::Shape::Panel:
        return 2;
    case PosterItem::Shape::Badge:
        return 1;
    case PosterItem::Shape::Card:
        break;
    }
    return 0;
}

void keepOnlyInside(QPainter &painter, const QRect &rect, int radius)
{
    QPixmap mask(rect.size());
    mask.fill(Qt::transparent);
    QPainter maskPainter(&mask);
    maskPainter.setRenderHint(QPainter::Antialiasing);
    maskPainter.setPen(Qt::NoPen);
    maskPainter.setBrush(Qt::black);
    maskPainter.drawRoundedRect(rect, radius, radius);
    maskPainter.end();

    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawPixmap(0, 0, mask);
}

void fadeToTheLeft(QPainter &painter, const QRect &rect)
{
    QLinearGradient fade(0, 0, rect.width(), 0);
    fade.setColorAt(0, Qt::transparent);
    fade.setColorAt(0.7, QColor(0, 0, 0, 190));
    fade.setColorAt(1, QColor(0, 0, 0, 220));
    // A texture is cheaper for a gradient that runs across: Qt would compute the colours of every row.
    const QSize strip(rect.width(), ovelin::chooseGradientLength(rect.height()));
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(rect, ovelin::createTexturedBrush(strip, fade));
}

} // namespace

PosterItem::PosterItem(Shape shape, const Subject &subject, const QString &name)
    : m_shape(shape)
    , m_subject(subject)
    , m_sourceSize(sourceSize(subject.icon))
{
    setObjectName(name);
}

// Unregisters here, before the base classes do, so that the log still gets the item's name and
// class.
PosterItem::~PosterItem()
{
    unregisterResources();
}

void PosterItem::place(const QRect &geometry)
{
    const bool isNew = !ownerState;
    const bool isResized = geometry.size() != m_geometry.size();
    m_geometry = geometry;
    if (isNew || isResized)
        registerResources();
    describeToApplication();
    if (isResized && isResourcesAllowed() && ownerState)
        allowResources();
}

void PosterItem::registerResources()
{
    m_buffer = QPixmap();
    registerSource();
    registerResource(Buffer, u"%1x%2"_s.arg(m_geometry.width()).arg(m_geometry.height()),
                     ResourceInfo::OffscreenBuffer);
}

void PosterItem::registerSource()
{
    if (m_sourceSize.isEmpty())
        registerResource(Source, m_subject.title, ResourceInfo::PaintedItem);
    else
        registerImage(Source, m_subject.icon);
}

void PosterItem::describeToApplication()
{
    if (!ownerState)
        return;
    ownerState->geometry = m_geometry;
    importance(*ownerState) = importanceOf(m_shape);
    const qint64 needed = bytes(m_geometry.size()) + bytes(m_sourceSize);
    neededBytes(*ownerState) =
        static_cast<qint32>(std::min<qint64>(needed, std::numeric_limits<qint32>::max()));
}

void PosterItem::allowResources()
{
    m_isWanted = m_buffer.isNull();
}

void PosterItem::releaseResources()
{
    m_isWanted = false;
    m_buffer = QPixmap();
    m_source = QImage();
}

ResourceOwnerState::Status PosterItem::status() const
{
    return ownerState ? ownerState->status : ResourceOwnerState::Ignored;
}

void PosterItem::create()
{
    m_isWanted = false;
    if (!m_sourceSize.isEmpty() && m_source.isNull())
        loadSource();
    compose();
}

void PosterItem::loadSource()
{
    QImageReader reader(localPath(m_subject.icon));
    reader.setScaledSize(m_sourceSize);
    m_source = reader.read();
    if (!m_source.isNull())
        return;

    // The file has changed or is broken: a painted item replaces the picture.
    m_sourceSize = QSize();
    registerSource();
    describeToApplication();
}

void PosterItem::compose()
{
    const QRect rect(QPoint(0, 0), m_geometry.size());
    m_buffer = QPixmap(rect.size());
    m_buffer.fill(Qt::transparent);

    QPainter painter(&m_buffer);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_source.isNull())
        painter.drawImage(rect, m_source, covering(m_source.size(), rect.size()));
    else
        paintItem(painter, rect);

    switch (m_shape) {
    case Shape::Card:
        fadeToTheLeft(painter, rect);
        keepOnlyInside(painter, rect, rect.height() / 8);
        break;
    case Shape::Panel:
        keepOnlyInside(painter, rect, rect.height() / 14);
        break;
    case Shape::Badge:
        break;
    }
}

void PosterItem::paintItem(QPainter &painter, const QRect &rect) const
{
    if (m_shape == Shape::Badge) {
        paintChannelBadge(painter, rect, m_subject.title);
        return;
    }
    paintPosterArt(painter, rect, m_subject.title, m_subject.category);
    if (m_shape == Shape::Panel)
        paintPosterInitial(painter, rect, m_subject.title);
}

} // namespace tvguide
