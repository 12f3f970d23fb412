#include "support/scene.h"

#include <benchmark/benchmark.h>

#include <QUrl>

#include <algorithm>

namespace ovelin::benchmarks {

using namespace Qt::StringLiterals;

namespace {

constexpr int resourcesPerOwner = 4;

ResourceInfo image(int id)
{
    ResourceInfo info;
    info.url = QUrl(u"file:///poster.png"_s);
    info.id = id;
    return info;
}

} // namespace

Scene::Scene(int resourceCount, bool messagesEnabled)
    : m_last(image(resourcesPerOwner - 1))
    , m_another(image(resourcesPerOwner))
    , m_owners(std::size_t(resourceCount / resourcesPerOwner))
{
    for (Owner &owner : m_owners) {
        for (int id = 0; id < resourcesPerOwner; ++id)
            m_lastState = m_tracker.registerResource(&owner, image(id));
    }
    m_tracker.setMessagesEnabled(messagesEnabled);
}

void Scene::registerLast()
{
    m_tracker.registerResource(&m_owners.back(), m_last);
}

void Scene::unregisterLast()
{
    m_tracker.unregisterResource(&m_owners.back(), m_last.id);
}

void Scene::registerAnother()
{
    m_tracker.registerResource(&m_owners.back(), m_another);
}

void Scene::unregisterAnother()
{
    m_tracker.unregisterResource(&m_owners.back(), m_another.id);
}

void Scene::setLastStatus()
{
    m_tracker.setStatus(m_lastState, ResourceOwnerState::CreationAllowed);
}

void Scene::walkToLast() const
{
    walkTo(m_last.id);
}

void Scene::walkToAnother() const
{
    walkTo(m_another.id);
}

void Scene::walkTo(int id) const
{
    const IResourceOwner *const owner = &m_owners.back();
    const auto &resources = m_tracker.resources();
    benchmark::DoNotOptimize(std::ranges::find_if(resources, [id, owner](const ResourceInfo &info) {
        return info.id == id && info.ownerState->owner == owner;
    }));
}

void Scene::walkOverOwned() const
{
    const IResourceOwner *const owner = &m_owners.back();
    const auto &resources = m_tracker.resources();
    benchmark::DoNotOptimize(std::ranges::count_if(
        resources, [owner](const ResourceInfo &info) { return info.ownerState->owner == owner; }));
}

} // namespace ovelin::benchmarks
