#ifndef TVGUIDE_OWNERRECORD_H
#define TVGUIDE_OWNERRECORD_H

#include <ovelin/resourceinfo.h>

// The library leaves two numbers in an owner's state to the application. The items of this program
// write the facts into them by which the policy decides.
namespace tvguide {

inline qint32 &neededBytes(ovelin::ResourceOwnerState &state)
{
    return state.applicationValue1;
}

// Owners with a greater priority are allowed first.
inline qint32 &importance(ovelin::ResourceOwnerState &state)
{
    return state.applicationValue2;
}

} // namespace tvguide

#endif
