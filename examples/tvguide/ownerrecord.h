#ifndef TVGUIDE_OWNERRECORD_H
#define TVGUIDE_OWNERRECORD_H

#include <ovelin/resourceinfo.h>

// The library leaves two numbers in an owner's state to the application. Here the items write into
// them what the policy has to know.
namespace tvguide {

inline qint32 &neededBytes(ovelin::ResourceOwnerState &state)
{
    return state.applicationValue1;
}

// The greater, the sooner it is served.
inline qint32 &importance(ovelin::ResourceOwnerState &state)
{
    return state.applicationValue2;
}

} // namespace tvguide

#endif
