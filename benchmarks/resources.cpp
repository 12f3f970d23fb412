#include "subsystems.h"

#include "support/comparison.h"
#include "support/scene.h"

#include <memory>
#include <string>
#include <vector>

namespace ovelin::benchmarks {

namespace {

// Each measurement walks along this many resources, in one large tracker or in several smaller ones. The walk takes
// so long that the time of reading the clock does not matter. The number of resources is the same for all sizes of
// trackers, so that the processor's caches hold the same share of the lists.
constexpr int resourcesPerMeasurement = 16384;

using Scenes = std::vector<std::unique_ptr<Scene>>;

std::shared_ptr<Scenes> makeScenes(int resourceCount, bool messagesEnabled)
{
    auto scenes = std::make_shared<Scenes>();
    for (int count = 0; count < resourcesPerMeasurement; count += resourceCount)
        scenes->push_back(std::make_unique<Scene>(resourceCount, messagesEnabled));
    return scenes;
}

template<typename Member>
std::function<void()> inEach(const std::shared_ptr<Scenes> &scenes, Member member)
{
    return [scenes, member] {
        for (const auto &scene : *scenes)
            (scene.get()->*member)();
    };
}

struct Operation
{
    const char *name;
    void (Scene::*run)();
    void (Scene::*bareWalk)() const;
    void (Scene::*undo)() = nullptr;
};

constexpr Operation operations[] = {
    {"registration", &Scene::registerAnother, &Scene::walkToAnother, &Scene::unregisterAnother},
    {"re-registration", &Scene::registerLast, &Scene::walkToLast},
    {"unregistration", &Scene::unregisterLast, &Scene::walkToLast, &Scene::registerLast},
    {"setStatus", &Scene::setLastStatus, &Scene::walkOverOwned},
};

Comparison compareTracker(const Operation &operation, int resourceCount, bool messagesEnabled)
{
    const auto scenes = makeScenes(resourceCount, messagesEnabled);
    return {.operation = inEach(scenes, operation.run),
            .contenders = {{"bare walk", inEach(scenes, operation.bareWalk)}},
            .undo = operation.undo ? inEach(scenes, operation.undo) : std::function<void()>()};
}

} // namespace

void registerResources()
{
    for (const bool messagesEnabled : {false, true}) {
        for (const Operation &operation : operations) {
            for (const int resourceCount : {16, 64, 256, 1024, 4096, 16384}) {
                compare(std::string("tracker: ") + operation.name + " among "
                            + std::to_string(resourceCount) + (messagesEnabled ? ", log on" : ""),
                        [=] { return compareTracker(operation, resourceCount, messagesEnabled); });
            }
        }
    }
}

} // namespace ovelin::benchmarks
