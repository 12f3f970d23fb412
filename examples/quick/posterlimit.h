#ifndef GALLERY_POSTERLIMIT_H
#define GALLERY_POSTERLIMIT_H

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QTimer>

namespace ovelin {
class SceneResourceTracker;
}

// Decides which items may hold pictures: those that registered first, as many as the limit permits.
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
