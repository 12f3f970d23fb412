#include "shapercalls.h"

#include <dlfcn.h>

namespace {

int shaperCalls = 0;

using Shape = int(void *font, void *buffer, const void *features, unsigned featureCount,
                  const char *const *shapers);

} // namespace

// The loader looks for symbols in the program first. So Qt Gui calls this function instead of HarfBuzz's.
extern "C" __attribute__((visibility("default"))) int hb_shape_full(void *font, void *buffer,
                                                                    const void *features,
                                                                    unsigned featureCount,
                                                                    const char *const *shapers)
{
    static auto *const shape = reinterpret_cast<Shape *>(dlsym(RTLD_NEXT, "hb_shape_full"));
    ++shaperCalls;
    return shape(font, buffer, features, featureCount, shapers);
}

namespace ovelin::tests {

int countShaperCalls(const std::function<void()> &action)
{
    const int before = shaperCalls;
    action();
    return shaperCalls - before;
}

} // namespace ovelin::tests
