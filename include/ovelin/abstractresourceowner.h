#ifndef OVELIN_ABSTRACTRESOURCEOWNER_H
#define OVELIN_ABSTRACTRESOURCEOWNER_H

#include <ovelin/ovelinglobal.h>
#include <ovelin/resourceinfo.h>

#include <QtCore/qsharedpointer.h>

QT_BEGIN_NAMESPACE
class QString;
class QUrl;
QT_END_NAMESPACE

namespace ovelin {

// The base class of items that register their pictures. Guide: "The road of a resource".
class OVELIN_EXPORT AbstractResourceOwner : public IResourceOwner
{
public:
    AbstractResourceOwner();
    ~AbstractResourceOwner() override;

    bool registerImage(int id, const QUrl &url);
    bool registerResource(int id, const QString &name, ResourceInfo::Type type);
    void unregisterResource(int id);
    void unregisterResources();

    bool isResourcesAllowed() const;

protected:
    QSharedPointer<ResourceOwnerState> ownerState;

private:
    Q_DISABLE_COPY_MOVE(AbstractResourceOwner)
};

} // namespace ovelin

#endif
