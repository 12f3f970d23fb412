#ifndef GALLERY_THROBBERITEM_H
#define GALLERY_THROBBERITEM_H

#include <ovelin/throbberrenderer.h>

#include <QColor>
#include <QQuickPaintedItem>

// A busy indicator. Its timer runs only while the indicator is visible.
class ThrobberItem : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool running MEMBER m_isWanted NOTIFY runningChanged FINAL)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged FINAL)

public:
    explicit ThrobberItem(QQuickItem *parent = nullptr);

    bool isTurning() const { return m_throbber.isRunning(); }

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void runningChanged();
    void colorChanged();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    void turnWhileSeen();

    bool m_isWanted = true;
    QColor m_color = Qt::white;
    ovelin::ThrobberRenderer m_throbber;
};

#endif
