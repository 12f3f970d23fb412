#include "paintrecorder.h"

#include <QGuiApplication>
#include <QPaintEngine>
#include <QPainter>
#include <QScreen>

namespace ovelin::tests {

namespace {

constexpr int fallbackDpi = 96;
constexpr double millimetresPerInch = 25.4;
constexpr int colorDepth = 32;

// Converts also rectangles whose width exceeds an int, for which QRect::toRectF() overflows.
QRectF toRectF(const QRect &rect)
{
    return {QPointF(rect.topLeft()), QPointF(rect.bottomRight()) + QPointF(1, 1)};
}

class RecordingEngine : public QPaintEngine
{
public:
    // With AllFeatures, QPainter passes each call on instead of replacing it with simpler calls.
    explicit RecordingEngine(QList<PaintCall> &calls)
        : QPaintEngine(AllFeatures)
        , m_calls(calls)
    {
    }

    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState &) override {}

    void drawLines(const QLine *lines, int count) override
    {
        PaintCall &call = record(PaintCall::Kind::Lines);
        for (int i = 0; i < count; ++i)
            call.lines.append(QLineF(lines[i]));
    }

    void drawLines(const QLineF *lines, int count) override
    {
        record(PaintCall::Kind::LinesF).lines = QList<QLineF>(lines, lines + count);
    }

    void drawRects(const QRect *rects, int count) override
    {
        PaintCall &call = record(PaintCall::Kind::Rects);
        for (int i = 0; i < count; ++i)
            call.rects.append(toRectF(rects[i]));
    }

    void drawRects(const QRectF *rects, int count) override
    {
        record(PaintCall::Kind::RectsF).rects = QList<QRectF>(rects, rects + count);
    }

    void drawEllipse(const QRect &rect) override
    {
        record(PaintCall::Kind::Ellipse).rects = {toRectF(rect)};
    }

    void drawEllipse(const QRectF &rect) override
    {
        record(PaintCall::Kind::EllipseF).rects = {rect};
    }

    void drawPath(const QPainterPath &path) override { record(PaintCall::Kind::Path).path = path; }

    void drawPoints(const QPoint *points, int count) override
    {
        record(PaintCall::Kind::Points).points = toFloating(points, count);
    }

    void drawPoints(const QPointF *points, int count) override
    {
        record(PaintCall::Kind::PointsF).points = QList<QPointF>(points, points + count);
    }

    void drawPolygon(const QPoint *points, int count, PolygonDrawMode) override
    {
        record(PaintCall::Kind::Polygon).points = toFloating(points, count);
    }

    void drawPolygon(const QPointF *points, int count, PolygonDrawMode) override
    {
        record(PaintCall::Kind::PolygonF).points = QList<QPointF>(points, points + count);
    }

    void drawPixmap(const QRectF &target, const QPixmap &pixmap, const QRectF &) override
    {
        PaintCall &call = record(PaintCall::Kind::Pixmap);
        call.rects = {target};
        call.pixmap = pixmap;
    }

    void drawTiledPixmap(const QRectF &target, const QPixmap &pixmap,
                         const QPointF &offset) override
    {
        PaintCall &call = record(PaintCall::Kind::TiledPixmap);
        call.rects = {target};
        call.pixmap = pixmap;
        call.position = offset;
    }

    void drawImage(const QRectF &target, const QImage &image, const QRectF &,
                   Qt::ImageConversionFlags) override
    {
        PaintCall &call = record(PaintCall::Kind::Image);
        call.rects = {target};
        call.image = image;
    }

    void drawTextItem(const QPointF &position, const QTextItem &item) override
    {
        PaintCall &call = record(PaintCall::Kind::Text);
        call.position = position;
        call.text = item.text();
        call.font = item.font();
    }

private:
    PaintCall &record(PaintCall::Kind kind)
    {
        PaintCall &call = m_calls.emplaceBack();
        call.kind = kind;
        call.pen = painter()->pen();
        call.brush = painter()->brush();
        call.font = painter()->font();
        call.transform = painter()->worldTransform();
        call.opacity = painter()->opacity();
        return call;
    }

    static QList<QPointF> toFloating(const QPoint *points, int count)
    {
        QList<QPointF> result;
        for (int i = 0; i < count; ++i)
            result.append(QPointF(points[i]));
        return result;
    }

    QList<PaintCall> &m_calls;
};

} // namespace

PaintRecorder::PaintRecorder(const QSize &size)
    : m_size(size)
    , m_engine(std::make_unique<RecordingEngine>(m_calls))
{
}

PaintRecorder::~PaintRecorder() = default;

QList<PaintCall> PaintRecorder::calls() const
{
    return m_calls;
}

QList<PaintCall> PaintRecorder::calls(PaintCall::Kind kind) const
{
    QList<PaintCall> result;
    for (const PaintCall &call : m_calls) {
        if (call.kind == kind)
            result.append(call);
    }
    return result;
}

QList<PaintCall::Kind> PaintRecorder::kinds() const
{
    QList<PaintCall::Kind> result;
    for (const PaintCall &call : m_calls)
        result.append(call.kind);
    return result;
}

void PaintRecorder::clear()
{
    m_calls.clear();
}

QPaintEngine *PaintRecorder::paintEngine() const
{
    return m_engine.get();
}

int PaintRecorder::metric(PaintDeviceMetric metric) const
{
    // The resolution of a QImage. With another resolution, QPainter would discard the layout of a static text.
    const QScreen *screen = QGuiApplication::primaryScreen();
    const int dpi = screen ? qRound(screen->logicalDotsPerInchX()) : fallbackDpi;

    switch (metric) {
    case PdmWidth:
        return m_size.width();
    case PdmHeight:
        return m_size.height();
    case PdmWidthMM:
        return qRound(m_size.width() * millimetresPerInch / dpi);
    case PdmHeightMM:
        return qRound(m_size.height() * millimetresPerInch / dpi);
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return dpi;
    case PdmDepth:
        return colorDepth;
    case PdmDevicePixelRatio:
        return 1;
    case PdmDevicePixelRatioScaled:
        return qRound(devicePixelRatioFScale());
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    case PdmDevicePixelRatioF_EncodedA:
    case PdmDevicePixelRatioF_EncodedB:
        return encodeMetricF(metric, 1);
#endif
    default:
        return QPaintDevice::metric(metric);
    }
}

} // namespace ovelin::tests
