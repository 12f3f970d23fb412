#include "throbberitem.h"

#include <QPainter>
#include <QQuickWindow>

#include <algorithm>

//! [create]
ThrobberItem::ThrobberItem(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(&m_throbber, &ovelin::ThrobberRenderer::updated, this, [this] { update(); });
    connect(this, &ThrobberItem::runningChanged, this, &ThrobberItem::turnWhileSeen);
    connect(this, &ThrobberItem::colorChanged, this, [this] {
        m_throbber.setForegcoundColor(m_color);
        update();
    });
}
//! [create]

//! [throbber]
void ThrobberItem::turnWhileSeen()
{
    const bool isSeen = isVisible() && window() && window()->isVisible();
    if (m_throbber.isRunning() != (m_isWanted && isSeen))
        m_throbber.setRunning(m_isWanted && isSeen);
}

void ThrobberItem::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemSceneChange && data.window) {
        connect(data.window, &QWindow::visibleChanged, this, &ThrobberItem::turnWhileSeen,
                Qt::UniqueConnection);
    }
    if (change == ItemSceneChange || change == ItemVisibleHasChanged)
        turnWhileSeen();
    QQuickPaintedItem::itemChange(change, data);
}

// Paints in the units of the item: the painter may scale lines, unlike glyphs.
void ThrobberItem::paint(QPainter *painter)
{
    m_throbber.draw(*painter);
}
//! [throbber]

void ThrobberItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    constexpr int sidePerPen = 12;
    const QRect rect(QPoint(), newGeometry.size().toSize());
    m_throbber.setRenderRect(rect);
    // With an odd width the pen would paint half a pixel beyond the item.
    m_throbber.setPenWidth(std::min(rect.width(), rect.height()) / sidePerPen / 2 * 2);
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
}
