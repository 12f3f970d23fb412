#ifndef GALLERY_INSTALLEDTRACKER_H
#define GALLERY_INSTALLEDTRACKER_H

#include <ovelin/sceneresourcetracker.h>

//! [tracker]
// A tracker that is installed as long as it exists. Create it before the items and destroy it after them.
class InstalledTracker : public ovelin::SceneResourceTracker
{
    Q_OBJECT

public:
    InstalledTracker() { ovelin::setSceneResourceTracker(this); }
    ~InstalledTracker() override { ovelin::setSceneResourceTracker(nullptr); }
};
//! [tracker]

#endif
