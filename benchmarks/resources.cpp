#include "subsystems.h"

#include "support/comparison.h"

#include <ovelin/sceneresourcetracker.h>

#include <benchmark/benchmark.h>

#include <QObject>
#include <QUrl>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace ovelin::benchmarks {

using namespace Qt::StringLiterals;

namespace {

constexpr int resourcesPerOwner = 4;

// So many resources are walked over in each measurement, whether in one tracker or in many small ones:
// reading the clock then does not count, and the processor's caches hold the same share of the lists.
constexpr int resourcesPerMeasurement = 16384;

class Owner : public IResourceOwner
{
public:
    QObject *resourceOwnerObject() override { return &m_object; }
    void allowResources() override {}
    void releaseResources() override {}

private:
    QObject m_object;
};

ResourceInfo image(int id)
{
    ResourceInfo info;
    info.url = QUrl(u"file:///poster.png"_s);
    info.id = id;
    return info;
}

// A tracker with images; the last one in its list is what is worked on.
class Scene
{
public:
    Scene(int resourceCount, bool messagesEnabled)
        : m_owners(std::size_t(resourceCount / resourcesPerOwner))
    {
        for (Owner &owner : m_owners) {
            for (int id = 0; id < resourcesPerOwner; ++id)
                m_lastState = m_tracker.registerResource(&owner, image(id));
        }
        m_tracker.setMessagesEnabled(messagesEnabled);
    }

    void registerLast() { m_tracker.registerResource(&m_owners.back(), m_last); }
    void unregisterLast() { m_tracker.unregisterResource(&m_owners.back(), m_last.id); }
    void registerAnother() { m_tracker.registerResource(&m_owners.back(), m_another); }
    void unregisterAnother() { m_tracker.unregisterResource(&m_owners.back(), m_another.id); }
    void setLastStatus()
    {
        m_tracker.setStatus(m_lastState, ResourceOwnerState::CreationAllowed);
    }

    // What a tracker without an index has to do at least.
    void walkToLast() const { walkTo(m_last.id); }
    void walkToAnother() const { walkTo(m_another.id); }
    void walkOverOwned() const
    {
        const IResourceOwner *const owner = &m_owners.back();
        const auto &resources = m_tracker.resources();
        benchmark::DoNotOptimize(std::count_if(
            resources.begin(), resources.end(),
            [owner](const ResourceInfo &info) { return info.ownerState->owner == owner; }));
    }

private:
    Q_DISABLE_COPY_MOVE(Scene)

    void walkTo(int id) const
    {
        const IResourceOwner *const owner = &m_owners.back();
        const auto &resources = m_tracker.resources();
        benchmark::DoNotOptimize(std::find_if(
            resources.begin(), resources.end(), [id, owner](const ResourceInfo &info) {
                return info.id == id && info.ownerState->owner == owner;
            }));
    }

    const ResourceInfo m_last = image(resourcesPerOwner - 1);
    const ResourceInfo m_another = image(resourcesPerOwner);
    std::vector<Owner> m_owners;
    SceneResourceTracker m_tracker{nullptr};
    QSharedPointer<ResourceOwnerState> m_lastState;
};

using Scenes = std::vector<std::unique_ptr<Scene>>;

std::shared_ptr<Scenes> makeScenes(int resourceCount, bool messagesEnabled)
{
    auto scenes = std::make_shared<Scenes>();
    for (int count = 0; count < resourcesPerMeasurement; count += resourceCount)
        scenes->push_back(std::make_unique<Scene>(resourceCount, messagesEnabled));
    return scenes;
}

template<typename Operation>
std::function<void()> inEach(const std::shared_ptr<Scenes> &scenes, Operation operation)
{
    return [scenes, operation] {
        for (const auto &scene : *scenes)
            (scene.get()->*operation)();
    };
}

struct Work
{
    const char *name;
    void (Scene::*operation)();
    void (Scene::*bareWalk)() const;
    void (Scene::*undo)() = nullptr;
};

constexpr Work works[] = {
    {"registration", &Scene::registerAnother, &Scene::walkToAnother, &Scene::unregisterAnother},
    {"re-registration", &Scene::registerLast, &Scene::walkToLast},
    {"unregistration", &Scene::unregisterLast, &Scene::walkToLast, &Scene::registerLast},
    {"setStatus", &Scene::setLastStatus, &Scene::walkOverOwned},
};

Comparison compareTracker(const Work &work, int resourceCount, bool messagesEnabled)
{
    const auto scenes = makeScenes(resourceCount, messagesEnabled);
    return {.work = inEach(scenes, work.operation),
            .contenders = {{"bare walk", inEach(scenes, work.bareWalk)}},
            .undoWork = work.undo ? inEach(scenes, work.undo) : std::function<void()>()};
}

} // namespace

void registerResources()
{
    for (const bool messagesEnabled : {false, true}) {
        for (const Work &work : works) {
            for (const int resourceCount : {16, 64, 256, 1024, 4096, 16384}) {
                compare(std::string("tracker: ") + work.name + " among "
                            + std::to_string(resourceCount) + (messagesEnabled ? ", log on" : ""),
                        [=] { return compareTracker(work, resourceCount, messagesEnabled); });
            }
        }
    }
}

} // namespace ovelin::benchmarks
