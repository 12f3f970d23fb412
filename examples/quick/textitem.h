#ifndef GALLERY_TEXTITEM_H
#define GALLERY_TEXTITEM_H

#include <ovelin/textrenderer.h>

#include <QColor>
#include <QFont>
#include <QQuickPaintedItem>

// A text that ovelin lays out. If no width is set, the item is as wide as the text on one line. If a
// width is set, the text wraps at that width. The height follows the lines.
class TextItem : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text MEMBER m_text NOTIFY contentChanged FINAL)
    Q_PROPERTY(QFont font MEMBER m_font NOTIFY contentChanged FINAL)
    Q_PROPERTY(int maximumLineCount MEMBER m_maximumLineCount NOTIFY contentChanged FINAL)
    Q_PROPERTY(bool hyphenation MEMBER m_hyphenation NOTIFY contentChanged FINAL)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY colorChanged FINAL)
    Q_PROPERTY(bool truncated READ isTruncated NOTIFY truncatedChanged FINAL)

public:
    explicit TextItem(QQuickItem *parent = nullptr);

    bool isTruncated() const { return m_isTruncated; }

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void contentChanged();
    void colorChanged();
    void truncatedChanged();

protected:
    void updatePolish() override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    void setTruncated(bool truncated);

    QString m_text;
    QFont m_font;
    int m_maximumLineCount = 1;
    bool m_hyphenation = true;
    QColor m_color = Qt::black;

    ovelin::TextRenderer m_renderer; // in device pixels
    bool m_isTruncated = false;
};

#endif
