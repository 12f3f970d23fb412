#ifndef OVELIN_BENCHMARKS_SUBSYSTEMS_H
#define OVELIN_BENCHMARKS_SUBSYSTEMS_H

namespace ovelin::benchmarks {

// Each function registers the comparisons in the source file of its name, such as text.cpp.
void registerText();
void registerResources();
void registerThrobber();
void registerGraphics();
void registerTextGrid();
void registerScreenful();

} // namespace ovelin::benchmarks

#endif
