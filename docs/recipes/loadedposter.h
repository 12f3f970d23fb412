#ifndef RECIPES_LOADEDPOSTER_H
#define RECIPES_LOADEDPOSTER_H

#include <ovelin/abstractresourceowner.h>

#include <QCoreApplication>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QUrl>

namespace recipes {

//! [poster]
class LoadedPoster : public QObject, public ovelin::AbstractResourceOwner
{
    Q_OBJECT

public:
    explicit LoadedPoster(const QUrl &file)
        : m_file(file)
    {
        registerImage(1, file);
    }

    const QImage &image() const { return m_image; }
    bool isLoading() const { return m_isLoading; } // show a throbber

    QObject *resourceOwnerObject() override { return this; }

    void allowResources() override
    {
        m_isLoading = true;
        const auto read = [poster = QPointer(this), load = ++m_load, file = m_file.toLocalFile()] {
            const QImage image(file); // in another thread
            const auto deliver = [poster, load, image] {
                if (poster)
                    poster->take(load, image);
            };
            QMetaObject::invokeMethod(qApp, deliver, Qt::QueuedConnection); // in the GUI thread
        };
        QThreadPool::globalInstance()->start(read);
    }

    void releaseResources() override
    {
        ++m_load; // a picture that is still being read will be dropped
        m_isLoading = false;
        m_image = {};
    }

Q_SIGNALS:
    void loaded();

private:
    void take(int load, const QImage &image)
    {
        if (load != m_load)
            return;
        m_isLoading = false;
        m_image = image;
        Q_EMIT loaded();
    }

    const QUrl m_file;
    QImage m_image;
    int m_load = 0;
    bool m_isLoading = false;
};
//! [poster]

} // namespace recipes

#endif
