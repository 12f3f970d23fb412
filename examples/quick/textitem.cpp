#include "textitem.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QQuickWindow>

#include <algorithm>
#include <cmath>

namespace {

//! [natural width]
// Returns the width that the longest paragraph needs on one line, in device pixels.
int naturalWidth(const ovelin::TextRenderer &renderer)
{
    if (!renderer.isValid())
        return 0;
    const QFontMetricsF metrics(renderer.textFont());
    int width = 0;
    const QStringList paragraphs = renderer.textLines();
    for (const QString &paragraph : paragraphs)
        width = std::max(width, ovelin::TextRenderer::fineTextWidth(paragraph, metrics));
    return width;
}
//! [natural width]

} // namespace

TextItem::TextItem(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    m_renderer.setTextFormat(Qt::PlainText);
    connect(this, &TextItem::contentChanged, this, &QQuickItem::polish);
    connect(this, &TextItem::colorChanged, this, [this] { update(); });
}

//! [polish]
// The GUI thread calls this before a frame, once for any number of changes.
void TextItem::updatePolish()
{
    const qreal ratio = window()->effectiveDevicePixelRatio();
    QFont font = m_font;
    font.setPixelSize(qRound(QFontInfo(m_font).pixelSize() * ratio));
    m_renderer.setTextFont(font);
    m_renderer.setMaxLineCount(m_maximumLineCount);
    m_renderer.setHyphenationEnabled(m_hyphenation);
    m_renderer.setText(m_text);
    if (m_renderer.isNeedRelayout())
        setImplicitWidth(std::ceil(naturalWidth(m_renderer) / ratio));

    const int textWidth = std::max(1, int(width() * ratio));
    if (textWidth != m_renderer.textWidth())
        m_renderer.setTextWidth(textWidth);
    m_renderer.relayout();
    // An empty text is not laid out: the renderer still has the previous layout.
    const int height = m_renderer.isValid() ? m_renderer.boundingSize().height() : 0;
    setImplicitHeight(std::ceil(height / ratio));
    setTruncated(m_renderer.isValid() && m_renderer.isTextElided());
    update();
}
//! [polish]

//! [paint]
// The render thread may call this. The GUI thread waits meanwhile.
void TextItem::paint(QPainter *painter)
{
    painter->resetTransform(); // from the item's units to device pixels
    painter->setPen(m_color);
    m_renderer.draw(*painter);
}
//! [paint]

void TextItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    if (newGeometry.width() != oldGeometry.width())
        polish();
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
}

//! [change]
void TextItem::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged)
        polish();
    QQuickPaintedItem::itemChange(change, data);
}
//! [change]

void TextItem::setTruncated(bool truncated)
{
    if (truncated == m_isTruncated)
        return;
    m_isTruncated = truncated;
    Q_EMIT truncatedChanged();
}
