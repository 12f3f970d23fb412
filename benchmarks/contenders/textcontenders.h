#ifndef OVELIN_BENCHMARKS_TEXTCONTENDERS_H
#define OVELIN_BENCHMARKS_TEXTCONTENDERS_H

#include "support/canvas.h"
#include "support/comparison.h"

#include <ovelin/textrenderer.h>

#include <memory>
#include <vector>

namespace ovelin::benchmarks {

inline constexpr auto floorName = "QStaticText alone (floor)";
inline constexpr auto lineLoopName = "QTextLayout loop";
inline constexpr auto pangoName = "Pango";
inline constexpr auto documentName = "QTextDocument";

// Returns the operations that a renderer is compared with: the floor, and other layouts of its text in its box, with
// its font and line limit. QTextDocument has no line limit. Pango is missing if the program was built
// without it.
std::vector<Contender> textContenders(const TextRenderer &renderer);

// Returns the same contenders with the text laid out already: they only paint the text, where the renderer
// would paint it.
std::vector<Contender> textPainters(const TextRenderer &renderer,
                                    const std::shared_ptr<Canvas> &canvas);

} // namespace ovelin::benchmarks

#endif
