#ifndef OVELIN_THROBBERRENDERER_H
#define OVELIN_THROBBERRENDERER_H

#include <ovelin/ovelinglobal.h>

#include <QtCore/qobject.h>

#include <chrono>
#include <memory>

QT_BEGIN_NAMESPACE
class QColor;
class QPainter;
class QRect;
QT_END_NAMESPACE

namespace ovelin {

struct ThrobberRendererPrivate;

// A busy indicator. Lengths are in pixels of the painter, angles in degrees. Guide: "The throbber's cycle".
class OVELIN_EXPORT ThrobberRenderer : public QObject
{
    Q_OBJECT

public:
    explicit ThrobberRenderer(QObject *parent = nullptr);
    ~ThrobberRenderer() override;

    int penWidth() const;
    void setPenWidth(int width);

    void setBackgroundColor(const QColor &color);
    void setForegcoundColor(const QColor &color);
    void setRenderRect(const QRect &rect);

    std::chrono::milliseconds updateInterval() const;
    void setUpdateInterval(std::chrono::milliseconds interval);

    bool isRunning() const;
    void setRunning(bool running);

    void addAngles(int rotationDegrees, int spanDegrees);
    void draw(QPainter &painter);

Q_SIGNALS:
    void updated();

private:
    Q_DISABLE_COPY_MOVE(ThrobberRenderer)

    std::unique_ptr<ThrobberRendererPrivate> d;
};

} // namespace ovelin

#endif
