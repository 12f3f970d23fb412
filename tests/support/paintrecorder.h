#ifndef OVELIN_TESTS_SUPPORT_PAINTRECORDER_H
#define OVELIN_TESTS_SUPPORT_PAINTRECORDER_H

#include <QBrush>
#include <QFont>
#include <QImage>
#include <QLineF>
#include <QList>
#include <QObject>
#include <QPaintDevice>
#include <QPainterPath>
#include <QPen>
#include <QPixmap>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QTransform>

#include <memory>

class QPaintEngine;

namespace ovelin::tests {

// One call of the paint engine, with the painter's state at that moment. Calls with integers and with floating
// point numbers have kinds of their own, as QPainter has overloads for both. An arc is recorded as a Path, a
// static text as one Text for each line and font.
struct PaintCall
{
    Q_GADGET

public:
    enum class Kind {
        Lines,
        LinesF,
        Rects,
        RectsF,
        Ellipse,
        EllipseF,
        Path,
        Points,
        PointsF,
        Polygon,
        PolygonF,
        Pixmap,
        TiledPixmap,
        Image,
        Text,
    };
    Q_ENUM(Kind)

    Kind kind = Kind::Lines;

    QPen pen;
    QBrush brush;
    QFont font;
    QTransform transform;
    qreal opacity = 1;

    QList<QLineF> lines;
    QList<QRectF> rects; // for an ellipse, a pixmap or an image: the one rectangle drawn into
    QList<QPointF> points;
    QPainterPath path;
    QPointF position; // Text: the start of the base line; TiledPixmap: the offset
    QString text;
    QPixmap pixmap;
    QImage image;
};

// A paint device that records every call and paints nothing.
class PaintRecorder : public QPaintDevice
{
public:
    explicit PaintRecorder(const QSize &size = QSize(1000, 1000));
    ~PaintRecorder() override;

    QList<PaintCall> calls() const;
    QList<PaintCall> calls(PaintCall::Kind kind) const;
    QList<PaintCall::Kind> kinds() const;
    void clear();

    QPaintEngine *paintEngine() const override;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    QSize m_size;
    std::unique_ptr<QPaintEngine> m_engine;
    QList<PaintCall> m_calls;
};

} // namespace ovelin::tests

#endif
