#include "trackermodel.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <tuple>
#include <utility>

namespace ovelin::tests {

using namespace Qt::StringLiterals;
using Message = SceneResourceTracker::Message;

namespace {

constexpr qsizetype messageCapacity = 100;

QString textOf(int value, std::initializer_list<const char *> texts)
{
    return value >= 0 && value < int(texts.size()) ? QString::fromLatin1(texts.begin()[value])
                                                   : QString();
}

QString itemName(int item)
{
    return u"item %1"_s.arg(item);
}

auto asTupleOfEntry(const TrackerModel::Entry &entry)
{
    return std::tie(entry.url, entry.name, entry.id, entry.type, entry.state);
}

auto asTupleOfMessage(const Message &message)
{
    return std::tie(message.geometry, message.className, message.objectName, message.status,
                    message.type, message.source, message.id, message.event);
}

QString described(const QList<Message> &messages)
{
    QStringList texts;
    for (const Message &message : messages) {
        texts.append(QStringList{message.objectName, message.className, message.geometry,
                                 message.status, message.type, message.source,
                                 QString::number(message.id), QString::number(message.event)}
                         .join(u'/'));
    }
    return texts.join(u"; "_s);
}

auto entryWithNumber(TrackerModel::Tracker &tracker, int number)
{
    return std::ranges::find(tracker.resources, number, &TrackerModel::Entry::number);
}

bool contains(TrackerModel::Tracker &tracker, int number)
{
    return entryWithNumber(tracker, number) != tracker.resources.end();
}

std::optional<int> knownState(const TrackerModel::Tracker &tracker, int item)
{
    const auto known = tracker.owners.find(item);
    return known == tracker.owners.end() ? std::nullopt : std::optional(known->second);
}

void clear(TrackerModel::Tracker &tracker)
{
    tracker.resources.clear();
    tracker.owners.clear();
    tracker.messages.clear();
    tracker.registrationBlocked = false;
}

} // namespace

ResourceInfo TrackerStep::info() const
{
    const QStringList urls{QString(), u"file:///a.png"_s, u"http://b/c%20d.png"_s};
    const QStringList names{QString(), u"row"_s, u"column"_s};
    constexpr int typeCount = 4; // the last one has no name
    ResourceInfo info;
    info.type = static_cast<ResourceInfo::Type>(number % typeCount);
    info.url = QUrl(urls.at(number / typeCount % urls.size()));
    info.name = names.at(number / typeCount / urls.size() % names.size());
    info.id = id;
    return info;
}

ResourceOwnerState::Status TrackerStep::status() const
{
    constexpr int statusCount = 6; // the last one has no name
    return static_cast<ResourceOwnerState::Status>(id % statusCount);
}

QRect TrackerStep::geometry() const
{
    return {id, -id, id, 2 * id};
}

QString TrackerStep::described() const
{
    static constexpr const char *names[kindCount] = {
        "RegisterDirectly",
        "UnregisterDirectly",
        "UnregisterAllDirectly",
        "RegisterImage",
        "Register",
        "Unregister",
        "UnregisterAll",
        "SetStatus",
        "Allow",
        "Release",
        "SetGeometry",
        "TakeOwnerOut",
        "Clear",
        "SetLogEnabled",
        "ClearLog",
        "SetBlocked",
        "SetInstalled",
        "Destroy",
    };
    return u"%1 tracker %2 place %3 id %4 number %5 flag %6"_s.arg(QLatin1StringView(names[kind]))
        .arg(tracker)
        .arg(place)
        .arg(id)
        .arg(number)
        .arg(flag);
}

TrackerModel::TrackerModel()
{
    for (ModelItem &item : items)
        item = {.item = itemCount++, .heldState = {}};
}

void TrackerModel::apply(const TrackerStep &step, const Reactions &reactions)
{
    for (Tracker &tracker : trackers)
        tracker.emissions.clear();
    calls.clear();
    m_reactions = reactions;
    m_nextReaction = 0;
    call(step);
}

void TrackerModel::runSlot()
{
    while (m_nextReaction < m_reactions.size()) {
        const std::optional<TrackerStep> step = m_reactions[m_nextReaction++];
        if (!step)
            break;
        call(*step);
    }
    calls.push_back(std::nullopt);
}

void TrackerModel::call(const TrackerStep &step)
{
    Tracker &tracker = trackers[std::size_t(step.tracker)];
    ModelItem &itemAtPlace = items[std::size_t(step.place)];
    ModelItem *const dying = dyingItem(step);
    ModelItem &item = dying ? *dying : itemAtPlace;
    const std::optional<int> state = usableState(step);
    if (step.kind == TrackerStep::Destroy && itemAtPlace.runningCalls > 0)
        return;
    calls.push_back(TrackerCall{step, state});

    item.runningCalls += step.isOfTheItem();
    switch (step.kind) {
    case TrackerStep::RegisterDirectly:
        registerResource(tracker, itemAtPlace.item, step.info());
        break;
    case TrackerStep::UnregisterDirectly:
        unregisterResource(tracker, item.item, step.id);
        break;
    case TrackerStep::UnregisterAllDirectly:
        unregisterResources(tracker, item.item);
        break;
    case TrackerStep::RegisterImage:
        registerItem(item, image(step.id, step.info().url.toString()));
        break;
    case TrackerStep::Register:
        registerItem(item, named(step.id, step.info().name, step.info().type));
        break;
    case TrackerStep::Unregister:
        unregisterItem(item, step.id);
        break;
    case TrackerStep::UnregisterAll:
        unregisterItem(item);
        break;
    case TrackerStep::SetStatus:
        if (state)
            setStatus(tracker, *state, step.status());
        break;
    case TrackerStep::Allow:
        if (state)
            decide(*state, &ModelItem::allowCalls);
        break;
    case TrackerStep::Release:
        if (state)
            decide(*state, &ModelItem::releaseCalls);
        break;
    case TrackerStep::SetGeometry:
        if (state)
            states[std::size_t(*state)].geometry = step.geometry();
        break;
    case TrackerStep::TakeOwnerOut:
        if (state)
            states[std::size_t(*state)].owner.reset();
        break;
    case TrackerStep::Clear:
        clear(tracker);
        break;
    case TrackerStep::SetLogEnabled:
        tracker.messagesEnabled = step.flag;
        break;
    case TrackerStep::ClearLog:
        tracker.messages.clear();
        break;
    case TrackerStep::SetBlocked:
        tracker.registrationBlocked = step.flag;
        break;
    case TrackerStep::SetInstalled:
        installed = step.flag ? std::optional(step.tracker) : std::nullopt;
        break;
    case TrackerStep::Destroy:
        destroy(itemAtPlace);
        break;
    }
    item.runningCalls -= step.isOfTheItem();
}

std::optional<int> TrackerModel::usableState(const TrackerStep &step) const
{
    if (states.empty())
        return std::nullopt;
    const int state = step.number % int(states.size());
    const std::optional<int> owner = states[std::size_t(state)].owner;
    const bool isThere = std::ranges::find(items, owner, &ModelItem::item) != items.end();
    return owner && !isThere ? std::nullopt : std::optional(state);
}

// The item that the step calls instead of the one at the place; null for none.
TrackerModel::ModelItem *TrackerModel::dyingItem(const TrackerStep &step)
{
    if (!step.flag || m_dying.empty())
        return nullptr;
    return &*std::next(m_dying.begin(), step.place % std::ptrdiff_t(m_dying.size()));
}

bool TrackerModel::isAllowed(const ModelItem &item) const
{
    if (!item.heldState)
        return true;
    const int status = states[std::size_t(*item.heldState)].status;
    return status == ResourceOwnerState::CreationAllowed || status == ResourceOwnerState::Ignored;
}

void TrackerModel::registerItem(ModelItem &item, const ResourceInfo &info)
{
    const bool isDying = std::ranges::find(m_dying, item.item, &ModelItem::item) != m_dying.end();
    if (!installed || isDying)
        return;
    Tracker &tracker = trackers[std::size_t(*installed)];
    if (tracker.registrationBlocked)
        return;
    registerResource(tracker, item.item, info);
    item.heldState = knownState(tracker, item.item);
    ++registrations;
}

// The item gives up a state in which nothing is left, for another one if it was registered anew.
void TrackerModel::unregisterItem(ModelItem &item, int id)
{
    if (!installed || !item.heldState)
        return;
    Tracker &tracker = trackers[std::size_t(*installed)];
    const std::optional<int> before = knownState(tracker, item.item);
    unregisterResource(tracker, item.item, id);
    if (!item.heldState || states[std::size_t(*item.heldState)].resourceCount > 0)
        return;
    const std::optional<int> now = knownState(tracker, item.item);
    item.heldState = now == before ? std::nullopt : now;
}

void TrackerModel::unregisterItem(ModelItem &item)
{
    if (!installed || !item.heldState)
        return;
    Tracker &tracker = trackers[std::size_t(*installed)];
    unregisterResources(tracker, item.item);
    item.heldState = knownState(tracker, item.item);
}

void TrackerModel::decide(int state, int ModelItem::*toldCalls)
{
    const auto told = std::ranges::find(items, states[std::size_t(state)].owner, &ModelItem::item);
    if (told == items.end())
        return;
    ++(*told.*toldCalls);
    runSlot();
}

void TrackerModel::registerResource(Tracker &tracker, int item, const ResourceInfo &info)
{
    const auto known = std::ranges::find_if(tracker.resources, [&](const Entry &entry) {
        return belongsTo(entry, item) && entry.id == info.id && !entry.isLeaving;
    });
    if (known != tracker.resources.end()) {
        known->type = info.type;
        known->name = info.name;
        known->url = info.url;
        addMessage(tracker, *known, Message::Updated);
        emitSignal(tracker, "resourcesChanged");
        return;
    }

    const bool added = !tracker.owners.contains(item);
    if (added) {
        tracker.owners[item] = int(states.size());
        states.push_back({.owner = item, .geometry = {}});
    }
    const int state = tracker.owners[item];
    ++states[std::size_t(state)].resourceCount;
    const auto place =
        info.type == ResourceInfo::Image ? tracker.resources.end() : tracker.resources.begin();
    const auto entry = tracker.resources.insert(
        place, {info.url, info.name, info.id, info.type, state, m_entryCount++});
    addMessage(tracker, *entry, Message::Registered);
    if (added)
        emitSignal(tracker, "resourceOwnerAdded");
    emitSignal(tracker, "resourcesChanged");
}

// A slot may clear the tracker while the entry is leaving it, and register the item with another state.
void TrackerModel::unregisterResource(Tracker &tracker, int item, int id)
{
    const auto entry = std::ranges::find_if(tracker.resources, [&](const Entry &candidate) {
        return belongsTo(candidate, item) && candidate.id == id && !candidate.isLeaving;
    });
    if (entry == tracker.resources.end())
        return;
    const int number = entry->number;
    const int state = entry->state;
    entry->isLeaving = true;
    addMessage(tracker, *entry, Message::Unregistered);
    if (!contains(tracker, number))
        return;
    if (--states[std::size_t(state)].resourceCount == 0 && knownState(tracker, item) == state) {
        tracker.owners.erase(item);
        emitSignal(tracker, "resourceOwnerRemoved");
    }
    if (!contains(tracker, number))
        return;
    tracker.resources.erase(entry);
    emitSignal(tracker, "resourcesChanged");
}

void TrackerModel::unregisterResources(Tracker &tracker, int item)
{
    std::vector<int> entries;
    for (const Entry &entry : tracker.resources) {
        if (belongsTo(entry, item) && !entry.isLeaving)
            entries.push_back(entry.number);
    }
    const bool removed = remove(tracker, entries);
    if (!keepsOwner(tracker, item) && tracker.owners.erase(item) > 0)
        emitSignal(tracker, "resourceOwnerRemoved");
    if (removed)
        emitSignal(tracker, "resourcesChanged");
}

// Whether it removed any: slots may have removed all of them.
bool TrackerModel::remove(Tracker &tracker, const std::vector<int> &entries)
{
    bool removed = false;
    for (const int number : entries) {
        const auto entry = entryWithNumber(tracker, number);
        if (entry == tracker.resources.end())
            continue;
        entry->isLeaving = true;
        addMessage(tracker, *entry, Message::Unregistered);
        if (!contains(tracker, number))
            continue;
        tracker.resources.erase(entry);
        removed = true;
    }
    return removed;
}

// A slot may have registered something for an item that was to leave: the item stays, and its count is
// that of what is there.
bool TrackerModel::keepsOwner(const Tracker &tracker, int item)
{
    const std::optional<int> state = knownState(tracker, item);
    if (!state || states[std::size_t(*state)].owner != item)
        return false;
    const auto isItsOwn = [&](const Entry &entry) { return entry.state == *state; };
    const auto stays = [&](const Entry &entry) { return isItsOwn(entry) && !entry.isLeaving; };
    if (std::ranges::none_of(tracker.resources, stays))
        return false;
    states[std::size_t(*state)].resourceCount =
        int(std::ranges::count_if(tracker.resources, isItsOwn));
    return true;
}

void TrackerModel::setStatus(Tracker &tracker, int state, int status)
{
    const std::optional<int> owner = states[std::size_t(state)].owner;
    if (!owner)
        return;
    states[std::size_t(state)].status = status;

    std::vector<int> entries;
    for (const Entry &entry : tracker.resources) {
        if (belongsTo(entry, *owner))
            entries.push_back(entry.number);
    }
    for (const int number : entries) {
        const auto entry = entryWithNumber(tracker, number);
        if (entry != tracker.resources.end())
            addMessage(tracker, *entry, Message::StatusChanged);
    }
}

// The item's states lose it before anything else happens. An item is known by its states even when the
// application took it out of them. Slots find the next item at the place already.
void TrackerModel::destroy(ModelItem &place)
{
    const int item = place.item;
    std::set<int> itsStates;
    if (place.heldState)
        itsStates.insert(*place.heldState);
    for (const Tracker &tracker : trackers) {
        for (const Entry &entry : tracker.resources) {
            if (belongsTo(entry, item))
                itsStates.insert(entry.state);
        }
        if (const std::optional<int> known = knownState(tracker, item))
            itsStates.insert(*known);
    }

    m_dying.push_back(std::exchange(place, {.item = itemCount++, .heldState = {}}));
    for (const int state : itsStates)
        states[std::size_t(state)].owner.reset();
    for (Tracker &tracker : std::views::reverse(trackers)) // the last one that was made begins
        forget(tracker, item, itsStates);
    m_dying.pop_back();
}

void TrackerModel::forget(Tracker &tracker, int item, const std::set<int> &itsStates)
{
    std::vector<int> entries;
    for (const Entry &entry : tracker.resources) {
        if (itsStates.contains(entry.state) && !entry.isLeaving)
            entries.push_back(entry.number);
    }
    const bool isKnown = tracker.owners.erase(item) > 0;
    const bool removed = remove(tracker, entries);
    if (isKnown)
        emitSignal(tracker, "resourceOwnerRemoved");
    if (removed)
        emitSignal(tracker, "resourcesChanged");
}

bool TrackerModel::belongsTo(const Entry &entry, int item) const
{
    return states[std::size_t(entry.state)].owner == item;
}

Message TrackerModel::composed(const Entry &entry, Message::Event event) const
{
    const State &state = states[std::size_t(entry.state)];
    const QString url = entry.url.toString();
    const QString separator = url.isEmpty() || entry.name.isEmpty() ? QString() : u" | "_s;

    Message message{};
    message.geometry = u"(%1, %2, %3x%4)"_s.arg(state.geometry.x())
                           .arg(state.geometry.y())
                           .arg(state.geometry.width())
                           .arg(state.geometry.height());
    message.className = state.owner ? u"QObject"_s : QString();
    message.objectName = state.owner ? itemName(*state.owner) : QString();
    message.status = textOf(state.status, {"creation_requested", "creation_allowed",
                                           "creation_denied", "cleared", "ignored"});
    message.type = textOf(entry.type, {"image", "offscreen_buffer", "painted_item"});
    message.source = url + separator + entry.name;
    message.id = entry.id;
    message.event = event;
    return message;
}

void TrackerModel::addMessage(Tracker &tracker, const Entry &entry, Message::Event event)
{
    if (!tracker.messagesEnabled)
        return;
    tracker.messages.append(composed(entry, event));
    emitSignal(tracker, "messagesAdded");
    if (tracker.messages.size() >= messageCapacity)
        tracker.messages.clear();
}

// Written down as SignalRecorder does it.
void TrackerModel::emitSignal(Tracker &tracker, const char *name)
{
    QStringList idTexts;
    for (const Entry &entry : tracker.resources)
        idTexts.append(QString::number(entry.id));
    tracker.emissions.append(u"%1 [%2] owners %3 messages %4"_s.arg(
        QLatin1StringView(name), idTexts.join(u' '), QString::number(tracker.owners.size()),
        QString::number(tracker.messages.size())));
    runSlot();
}

QString TrackerModel::violation() const
{
    for (const Tracker &tracker : trackers) {
        for (const QString &violation : {entryViolation(tracker), ownerViolation(tracker)}) {
            if (!violation.isEmpty())
                return violation;
        }
        if (tracker.messages.size() >= messageCapacity)
            return u"a log that should have been emptied"_s;
    }
    return {};
}

// The tracker does nothing through a state that has lost its owner: its entries are nobody's.
QString TrackerModel::entryViolation(const Tracker &tracker) const
{
    std::set<std::pair<int, int>> identifiers;
    for (const Entry &entry : tracker.resources) {
        const std::optional<int> owner = states[std::size_t(entry.state)].owner;
        if (!owner)
            continue;
        const auto known = tracker.owners.find(*owner);
        if (known == tracker.owners.end())
            return u"an entry of an unknown owner"_s;
        if (known->second != entry.state)
            return u"an entry with a state that is not its owner's"_s;
        if (!identifiers.emplace(*owner, entry.id).second)
            return u"two entries with an owner's identifier"_s;
    }
    return {};
}

QString TrackerModel::ownerViolation(const Tracker &tracker) const
{
    for (const auto &[item, number] : tracker.owners) {
        const State &state = states[std::size_t(number)];
        if (state.owner && *state.owner != item)
            return u"a state with another owner"_s;
        const auto count = std::ranges::count(tracker.resources, number, &Entry::state);
        if (state.owner && count == 0)
            return u"an owner without entries"_s;
        if (state.resourceCount != count)
            return u"a count of %1 for %2 entries"_s.arg(state.resourceCount).arg(count);
    }
    return {};
}

TrackerSubject::TrackerSubject()
{
    using Signal = void (SceneResourceTracker::*)();
    for (const auto &watched : trackers) {
        for (const Signal signal :
             {&SceneResourceTracker::resourcesChanged, &SceneResourceTracker::resourceOwnerAdded,
              &SceneResourceTracker::resourceOwnerRemoved, &SceneResourceTracker::messagesAdded})
            QObject::connect(&watched.tracker, signal, &m_context, [this] { makeCalls(); });
    }
    setSceneResourceTracker(&trackers.front().tracker);
    for (int place = 0; place < placeCount; ++place)
        create(place);
}

TrackerSubject::~TrackerSubject()
{
    setSceneResourceTracker(nullptr);
}

void TrackerSubject::create(int place)
{
    const auto at = std::size_t(place);
    m_itemNumbers[at] = m_itemCount++;
    items[at] = std::make_unique<Item>();
    items[at]->setObjectName(itemName(m_itemNumbers[at]));
    items[at]->onAllow = items[at]->onRelease = [this] { makeCalls(); };
}

// Slots find the next item at the place already.
void TrackerSubject::destroy(int place)
{
    std::unique_ptr<Item> dying = std::move(items[std::size_t(place)]);
    create(place);
    m_dying.push_back(dying.get());
    dying.reset();
    m_dying.pop_back();
}

// The item that the step calls instead of the one at the place: it still has its functions as an
// owner. Null for none.
AbstractResourceOwner *TrackerSubject::dyingItem(const TrackerStep &step) const
{
    if (!step.flag || m_dying.empty())
        return nullptr;
    return m_dying[std::size_t(step.place) % m_dying.size()];
}

void TrackerSubject::run(const TrackerCalls &calls)
{
    for (Watched &watched : trackers)
        watched.recorder.clear();
    m_calls = calls;
    m_nextCall = 0;
    makeCalls();
}

// A state that comes up is seen by the first slot behind.
void TrackerSubject::makeCalls()
{
    noteStates();
    while (m_nextCall < m_calls.size()) {
        const std::optional<TrackerCall> next = m_calls[m_nextCall++];
        if (!next)
            return;
        call(*next);
    }
}

void TrackerSubject::call(const TrackerCall &call)
{
    const TrackerStep &step = call.step;
    Watched &called = trackers[std::size_t(step.tracker)];
    SceneResourceTracker &tracker = called.tracker;
    Item *const itemAtPlace = items[std::size_t(step.place)].get();
    AbstractResourceOwner *const dying = dyingItem(step);
    AbstractResourceOwner *const item = dying ? dying : itemAtPlace;
    const ResourceInfo info = step.info();
    const auto state =
        call.state ? m_states[std::size_t(*call.state)] : QSharedPointer<ResourceOwnerState>();

    switch (step.kind) {
    case TrackerStep::RegisterDirectly:
        tracker.registerResource(itemAtPlace, info); // which must not be dying
        break;
    case TrackerStep::UnregisterDirectly:
        tracker.unregisterResource(item, step.id);
        break;
    case TrackerStep::UnregisterAllDirectly:
        tracker.unregisterResources(item);
        break;
    case TrackerStep::RegisterImage:
        m_registrations += item->registerImage(info.id, info.url);
        break;
    case TrackerStep::Register:
        m_registrations += item->registerResource(info.id, info.name, info.type);
        break;
    case TrackerStep::Unregister:
        item->unregisterResource(step.id);
        break;
    case TrackerStep::UnregisterAll:
        item->unregisterResources();
        break;
    case TrackerStep::SetStatus:
        if (state)
            tracker.setStatus(state, step.status());
        break;
    case TrackerStep::Allow:
        if (state)
            tracker.allowResources(state);
        break;
    case TrackerStep::Release:
        if (state)
            tracker.releaseResources(state);
        break;
    case TrackerStep::SetGeometry:
        if (state)
            state->geometry = step.geometry();
        break;
    case TrackerStep::TakeOwnerOut:
        if (state)
            state->owner = nullptr;
        break;
    case TrackerStep::Clear:
        tracker.clear();
        break;
    case TrackerStep::SetLogEnabled:
        called.messagesEnabled = step.flag;
        tracker.setMessagesEnabled(step.flag);
        break;
    case TrackerStep::ClearLog:
        tracker.clearMessages();
        break;
    case TrackerStep::SetBlocked:
        tracker.setRegistrationBlocked(step.flag);
        break;
    case TrackerStep::SetInstalled:
        setSceneResourceTracker(step.flag ? &tracker : nullptr);
        break;
    case TrackerStep::Destroy:
        destroy(step.place);
        break;
    }
}

void TrackerSubject::noteStates()
{
    for (const Watched &watched : trackers) {
        for (const auto &[owner, state] : watched.tracker.owners()) {
            if (stateNumber(state) == unseenState)
                m_states.push_back(state);
        }
    }
}

// The state's index among those that were seen.
int TrackerSubject::stateNumber(const QSharedPointer<ResourceOwnerState> &state) const
{
    const auto found = std::ranges::find(m_states, state);
    return found == m_states.end() ? unseenState : int(found - m_states.begin());
}

std::optional<int> TrackerSubject::itemNumber(const IResourceOwner *owner) const
{
    if (!owner)
        return std::nullopt;
    for (std::size_t place = 0; place < items.size(); ++place) {
        if (items[place].get() == owner)
            return m_itemNumbers[place];
    }
    return goneItem;
}

TrackerModel TrackerSubject::model() const
{
    TrackerModel result;
    result.itemCount = m_itemCount;
    result.installed.reset();
    result.registrations = m_registrations;
    for (const auto &state : m_states) {
        result.states.push_back(
            {state->status, itemNumber(state->owner), state->resourceCount, state->geometry});
    }
    for (std::size_t i = 0; i < trackers.size(); ++i) {
        result.trackers[i] = model(trackers[i]);
        if (sceneResourceTracker() == &trackers[i].tracker)
            result.installed = int(i);
    }
    for (std::size_t place = 0; place < items.size(); ++place) {
        const Item &item = *items[place];
        const int held = stateNumber(item.state());
        result.items[place] = {m_itemNumbers[place],
                               held == unseenState ? std::nullopt : std::optional(held),
                               item.allowCalls, item.releaseCalls};
    }
    return result;
}

TrackerModel::Tracker TrackerSubject::model(const Watched &watched) const
{
    TrackerModel::Tracker result;
    for (const ResourceInfo &info : watched.tracker.resources()) {
        result.resources.push_back(
            {info.url, info.name, info.id, info.type, stateNumber(info.ownerState)});
    }
    for (const auto &[owner, state] : watched.tracker.owners())
        result.owners[itemNumber(owner).value_or(goneItem)] = stateNumber(state);
    result.messages = watched.tracker.messages();
    result.messagesEnabled = watched.messagesEnabled;
    result.registrationBlocked = watched.tracker.isRegistrationBlocked();
    result.emissions = watched.recorder.emissions;
    return result;
}

QString TrackerSubject::difference(const TrackerModel &expected) const
{
    const TrackerModel actual = model();
    if (actual.installed != expected.installed)
        return u"tracker %1 is installed"_s.arg(actual.installed.value_or(-1));
    if (actual.registrations != expected.registrations)
        return u"%1 registrations; expected %2"_s.arg(actual.registrations)
            .arg(expected.registrations);
    for (std::size_t i = 0; i < trackers.size(); ++i) {
        const QString found = difference(actual.trackers[i], expected.trackers[i]);
        if (!found.isEmpty())
            return u"tracker %1: %2"_s.arg(QString::number(i), found);
    }

    if (actual.states.size() != expected.states.size())
        return u"%1 states; expected %2"_s.arg(actual.states.size()).arg(expected.states.size());
    for (std::size_t i = 0; i < actual.states.size(); ++i) {
        const auto &state = actual.states[i];
        const auto &should = expected.states[i];
        if (state.status != should.status || state.resourceCount != should.resourceCount
            || state.geometry != should.geometry
            || state.owner.has_value() != should.owner.has_value())
            return u"state %1: status %2, count %3; expected status %4, count %5"_s.arg(i)
                .arg(state.status)
                .arg(state.resourceCount)
                .arg(should.status)
                .arg(should.resourceCount);
    }

    for (std::size_t place = 0; place < items.size(); ++place) {
        const auto &item = actual.items[place];
        const auto &should = expected.items[place];
        if (item.item != should.item || item.heldState != should.heldState)
            return u"place %1: state %2 held; expected %3"_s.arg(place)
                .arg(item.heldState.value_or(-1))
                .arg(should.heldState.value_or(-1));
        if (item.allowCalls != should.allowCalls || item.releaseCalls != should.releaseCalls)
            return u"place %1: decisions differ"_s.arg(place);
        if (items[place]->isResourcesAllowed() != expected.isAllowed(should))
            return u"place %1: not as allowed as it should be"_s.arg(place);
    }

    return {};
}

QString TrackerSubject::difference(const TrackerModel::Tracker &actual,
                                   const TrackerModel::Tracker &expected) const
{
    if (actual.emissions != expected.emissions)
        return u"signals %1; expected %2"_s.arg(actual.emissions.join(u", "_s),
                                                expected.emissions.join(u", "_s));
    if (actual.registrationBlocked != expected.registrationBlocked)
        return u"blocked %1"_s.arg(actual.registrationBlocked);
    if (!std::ranges::equal(actual.resources, expected.resources, {}, asTupleOfEntry,
                            asTupleOfEntry))
        return u"the entries differ"_s;
    if (actual.owners != expected.owners)
        return u"the owners differ"_s;
    if (!std::ranges::equal(actual.messages, expected.messages, {}, asTupleOfMessage,
                            asTupleOfMessage))
        return u"messages %1\n   expected %2"_s.arg(described(actual.messages),
                                                    described(expected.messages));
    for (const Message &message : actual.messages) {
        const QString address = objectAddress(message.objectName);
        if (!address.isEmpty() && message.ownerAddress != address)
            return u"a message from %1, not from %2"_s.arg(message.ownerAddress, address);
    }
    return {};
}

// As a message shows it; empty for an object that is not there any more.
QString TrackerSubject::objectAddress(const QString &objectName) const
{
    if (objectName.isEmpty())
        return u"0x00000000"_s;
    for (const auto &item : items) {
        if (item->objectName() == objectName)
            return u"0x%1"_s.arg(quintptr(item->resourceOwnerObject()), 8, 16, QChar(u'0'));
    }
    return {};
}

} // namespace ovelin::tests
