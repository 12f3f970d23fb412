#ifndef OVELIN_BENCHMARKS_TEXTCONTENDERS_H
#define OVELIN_BENCHMARKS_TEXTCONTENDERS_H

#include "support/comparison.h"

#include <ovelin/textrenderer.h>

#include <vector>

namespace ovelin::benchmarks {

inline constexpr auto floorName = "QStaticText alone (floor)";
inline constexpr auto lineLoopName = "QTextLayout loop";
inline constexpr auto pangoName = "Pango";

// Returns the works that a renderer is compared with: the floor, and other layouts of its text in its box, with
// its font and line limit. Pango is missing if the program was built without it.
std::vector<Contender> textContenders(const TextRenderer &renderer);

} // namespace ovelin::benchmarks

#endif
