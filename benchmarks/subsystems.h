#ifndef OVELIN_BENCHMARKS_SUBSYSTEMS_H
#define OVELIN_BENCHMARKS_SUBSYSTEMS_H

namespace ovelin::benchmarks {

// Each function registers the comparisons of a subsystem.
void registerText();
void registerResources();
void registerThrobber();
void registerGraphics();
void registerTextGrid();
void registerScreenful();

} // namespace ovelin::benchmarks

#endif
