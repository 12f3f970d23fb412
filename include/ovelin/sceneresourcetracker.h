#ifndef OVELIN_SCENERESOURCETRACKER_H
#define OVELIN_SCENERESOURCETRACKER_H

#include <ovelin/ovelinglobal.h>
#include <ovelin/resourceinfo.h>

#include <QtCore/qlist.h>
#include <QtCore/qobject.h>
#include <QtCore/qsharedpointer.h>
#include <QtCore/qstring.h>

#include <list>
#include <unordered_map>

namespace ovelin {

class SceneResourceTrackerPrivate;

// The list of the pictures that items hold or ask for. Guide: "The road of a resource".
class OVELIN_EXPORT SceneResourceTracker : public QObject
{
    Q_OBJECT

public:
    // One event of the log, as texts that can be shown as they are.
    struct OVELIN_EXPORT Message
    {
        enum Event : qint32 {
            Registered = 1,
            Updated = 2,
            StatusChanged = 3,
            Unregistered = 4,
        };

        QString ownerAddress;
        QString geometry;
        QString className;
        QString objectName;
        QString status;
        QString type;
        QString source;
        qint32 id;
        Event event;

#if defined(OVELIN_BUILD) && !defined(Q_QDOC)
        // The library compiles this destructor once, out of line, and exports it. Programs use the
        // implicit destructor: a declared one would take away the implicit move operations.
        ~Message();
#endif
    };

    explicit SceneResourceTracker(QObject *parent = nullptr);
    ~SceneResourceTracker() override;

    const std::unordered_map<IResourceOwner *, QSharedPointer<ResourceOwnerState>> &owners() const;
    const std::list<ResourceInfo> &resources() const;

    bool isRegistrationBlocked() const;
    void setRegistrationBlocked(bool blocked);

    QSharedPointer<ResourceOwnerState> registerResource(IResourceOwner *owner,
                                                        const ResourceInfo &info);
    void unregisterResource(IResourceOwner *owner, int id);
    void unregisterResources(IResourceOwner *owner);

    void setStatus(const QSharedPointer<ResourceOwnerState> &state,
                   ResourceOwnerState::Status status);
    void allowResources(const QSharedPointer<ResourceOwnerState> &state);
    void releaseResources(const QSharedPointer<ResourceOwnerState> &state);
    void clear();

    QList<ovelin::SceneResourceTracker::Message> messages() const;
    void clearMessages();
    void setMessagesEnabled(bool enabled);

Q_SIGNALS:
    void resourcesChanged();
    void resourceOwnerAdded();
    void resourceOwnerRemoved();
    void messagesAdded();

private:
    Q_DECLARE_PRIVATE(SceneResourceTracker)
    Q_DISABLE_COPY_MOVE(SceneResourceTracker)
};

OVELIN_EXPORT SceneResourceTracker *sceneResourceTracker();
OVELIN_EXPORT void setSceneResourceTracker(SceneResourceTracker *tracker);

} // namespace ovelin

Q_DECLARE_TYPEINFO(ovelin::SceneResourceTracker::Message, Q_RELOCATABLE_TYPE);

#endif
