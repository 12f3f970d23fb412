#ifndef OVELIN_RESOURCEINFO_H
#define OVELIN_RESOURCEINFO_H

#include <ovelin/ovelinglobal.h>

#include <QtCore/qrect.h>
#include <QtCore/qsharedpointer.h>
#include <QtCore/qstring.h>
#include <QtCore/qurl.h>

QT_BEGIN_NAMESPACE
class QObject;
QT_END_NAMESPACE

namespace ovelin {

// The functions that the tracker calls on an item. AbstractResourceOwner implements the rest of an owner.
class OVELIN_EXPORT IResourceOwner
{
public:
    virtual ~IResourceOwner();

    virtual QObject *resourceOwnerObject() = 0;
    virtual void allowResources() = 0;
    virtual void releaseResources() = 0;
};

// The record of one owner: the application's decision, and the owner's rectangle in device pixels.
struct OVELIN_EXPORT ResourceOwnerState
{
    enum Status : qint32 {
        CreationRequested = 0,
        CreationAllowed = 1,
        CreationDenied = 2,
        Cleared = 3,
        Ignored = 4,
    };

    Status status = CreationRequested;
    IResourceOwner *owner = nullptr;
    qint32 applicationValue1 = 0;
    qint32 resourceCount = 0;
    qint32 applicationValue2 = 0;
    QRect geometry;
};

// One resource in the tracker's list.
struct OVELIN_EXPORT ResourceInfo
{
    enum Type : qint32 {
        Image = 0,
        OffscreenBuffer = 1,
        PaintedItem = 2,
    };

    QUrl url;
    QString name;
    qint32 id = 0;
    Type type = Image;
    QSharedPointer<ResourceOwnerState> ownerState;
};

} // namespace ovelin

#endif
