#ifndef OVELIN_TESTS_SUPPORT_SHAPERCALLS_H
#define OVELIN_TESTS_SUPPORT_SHAPERCALLS_H

#include <functional>

namespace ovelin::tests {

// Returns the number of times that Qt calls the text shaper HarfBuzz during an action. Always 0 if Qt was
// built with its own copy of HarfBuzz.
int countShaperCalls(const std::function<void()> &action);

} // namespace ovelin::tests

#endif
