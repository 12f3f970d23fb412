#ifndef TVGUIDE_OWNERRECORD_H
#define TVGUIDE_OWNERRECORD_H

#include <ovelin/resourceinfo.h>

// An owner's state has two numbers that the library leaves to the application. The items of this
// program store in these numbers what the policy decides by.
namespace tvguide {

inline qint32 &neededBytes(ovelin::ResourceOwnerState &state)
{
    return state.applicationValue1;
}

// Owners of greater importance are allowed first.
inline qint32 &importance(ovelin::ResourceOwnerState &state)
{
    return state.applicationValue2;
}

} // namespace tvguide

#endif
