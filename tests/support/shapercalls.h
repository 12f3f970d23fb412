#ifndef OVELIN_TESTS_SUPPORT_SHAPERCALLS_H
#define OVELIN_TESTS_SUPPORT_SHAPERCALLS_H

#include <functional>

namespace ovelin::tests {

// Returns how often Qt has a text shaped during an action. Always 0 with a Qt that contains the
// shaper, HarfBuzz, instead of using the system's.
int countShaperCalls(const std::function<void()> &action);

} // namespace ovelin::tests

#endif
