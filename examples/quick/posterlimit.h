#ifndef GALLERY_POSTERLIMIT_H
#define GALLERY_POSTERLIMIT_H

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QTimer>

namespace ovelin {
class SceneResourceTracker;
}

// The application's decision: no more items hold pictures than the limit permits, and those that
// registered first go first.
class PosterLimit : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int limit MEMBER m_limit NOTIFY limitChanged FINAL)

public:
    explicit PosterLimit(QObject *parent = nullptr);

Q_SIGNALS:
    void limitChanged();

private:
    void decide();

    QPointer<ovelin::SceneResourceTracker> m_tracker;
    QTimer m_timer;
    int m_limit = 0;
};

#endif
