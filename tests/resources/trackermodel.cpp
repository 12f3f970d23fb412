#include "trackermodel.h"

#include <algorithm>
#include <ranges>
#include <tuple>
#include <utility>

namespace ovelin::tests {

using namespace Qt::StringLiterals;
using Message = SceneResourceTracker::Message;

namespace {

constexpr qsizetype messageCapacity = 100;

// Stands for an item that is neither at a place nor dying, and for a state without a number.
constexpr int stranger = -1;

QString textOf(int value, std::initializer_list<const char *> texts)
{
    return value >= 0 && value < int(texts.size()) ? QString::fromLatin1(texts.begin()[value])
                                                   : QString();
}

QString itemName(int item)
{
    return u"item %1"_s.arg(item);
}

auto asTuple(const TrackerSituation::State &state)
{
    return std::tie(state.status, state.owner, state.resourceCount, state.geometry);
}

auto asTuple(const TrackerSituation::Entry &entry)
{
    return std::tie(entry.url, entry.name, entry.id, entry.type, entry.state);
}

auto asTuple(const std::pair<const int, int> &owner)
{
    return std::tie(owner.first, owner.second);
}

auto asTuple(const Message &message)
{
    return std::tie(message.geometry, message.className, message.objectName, message.status,
                    message.type, message.source, message.id, message.event);
}

auto asTuple(const TrackerSituation::ItemAtPlace &item)
{
    return std::tie(item.item, item.heldState, item.isAllowed);
}

QString described(std::optional<int> number)
{
    return number ? QString::number(*number) : u"none"_s;
}

QString described(const TrackerSituation::State &state)
{
    return u"status %1 owner %2 count %3 geometry %4"_s.arg(
        QString::number(state.status), described(state.owner), QString::number(state.resourceCount),
        QString::number(state.geometry.x()));
}

QString described(const TrackerSituation::Entry &entry)
{
    return u"%1 of state %2: type %3 name \"%4\" URL \"%5\""_s.arg(
        QString::number(entry.id), QString::number(entry.state), QString::number(entry.type),
        entry.name, entry.url.toString());
}

QString described(const std::pair<const int, int> &owner)
{
    return u"item %1 with state %2"_s.arg(owner.first).arg(owner.second);
}

QString described(const Message &message)
{
    return QStringList{message.objectName,
                       message.className,
                       message.geometry,
                       message.status,
                       message.type,
                       message.source,
                       QString::number(message.id),
                       QString::number(message.event)}
        .join(u'/');
}

QString described(const TrackerSituation::ItemAtPlace &item)
{
    return u"item %1 state %2 %3"_s.arg(QString::number(item.item), described(item.heldState),
                                        item.isAllowed ? u"allowed"_s : u"not allowed"_s);
}

template<typename Things>
QString described(const Things &things)
{
    QStringList texts;
    for (const auto &thing : things)
        texts.append(described(thing));
    return texts.join(u"; "_s);
}

template<typename Things>
QString difference(const Things &actual, const Things &expected)
{
    const auto isSame = [](const auto &one, const auto &other) {
        return asTuple(one) == asTuple(other);
    };
    if (std::ranges::equal(actual, expected, isSame))
        return {};
    return u"%1\n  expected %2"_s.arg(described(actual), described(expected));
}

QString returned(int result)
{
    return u"returned %1"_s.arg(result);
}

auto entryWithNumber(TrackerSituation::Tracker &tracker, int number)
{
    return std::ranges::find(tracker.resources, number, &TrackerSituation::Entry::number);
}

// Returns the numbers of the matching entries. Slots may remove some of these entries later.
template<typename Is>
std::vector<int> numbersOf(const TrackerSituation::Tracker &tracker, const Is &is)
{
    std::vector<int> numbers;
    for (const TrackerSituation::Entry &entry : tracker.resources) {
        if (is(entry))
            numbers.push_back(entry.number);
    }
    return numbers;
}

bool contains(TrackerSituation::Tracker &tracker, int number)
{
    return entryWithNumber(tracker, number) != tracker.resources.end();
}

std::optional<int> knownState(const TrackerSituation::Tracker &tracker, int item)
{
    const auto known = tracker.owners.find(item);
    return known == tracker.owners.end() ? std::nullopt : std::optional(known->second);
}

void clear(TrackerSituation::Tracker &tracker)
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
    constexpr int typeCount = 4; // the last type has no enumerator
    ResourceInfo info;
    info.type = static_cast<ResourceInfo::Type>(number % typeCount);
    info.url = QUrl(urls.at(number / typeCount % urls.size()));
    info.name = names.at(number / typeCount / urls.size() % names.size());
    info.id = id;
    return info;
}

ResourceOwnerState::Status TrackerStep::status() const
{
    constexpr int statusCount = 6; // the last status has no enumerator
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
        "WriteOwner",
        "WriteCount",
    };
    return u"%1 tracker %2 place %3 id %4 number %5 flag %6"_s.arg(QLatin1StringView(names[kind]))
        .arg(tracker)
        .arg(place)
        .arg(id)
        .arg(number)
        .arg(flag);
}

QString TrackerSituation::difference(const TrackerSituation &expected) const
{
    if (installed != expected.installed)
        return u"tracker %1 is installed"_s.arg(described(installed));
    for (std::size_t i = 0; i < trackers.size(); ++i) {
        const Tracker &tracker = trackers[i];
        const Tracker &should = expected.trackers[i];
        if (tracker.registrationBlocked != should.registrationBlocked)
            return u"tracker %1 blocked: %2"_s.arg(i).arg(tracker.registrationBlocked);
        for (const QString &found : {tests::difference(tracker.resources, should.resources),
                                     tests::difference(tracker.owners, should.owners),
                                     tests::difference(tracker.messages, should.messages)}) {
            if (!found.isEmpty())
                return u"tracker %1: "_s.arg(i) + found;
        }
    }
    const QString ofStates = tests::difference(states, expected.states);
    return ofStates.isEmpty() ? tests::difference(items, expected.items) : ofStates;
}

TrackerModel::TrackerModel()
{
    installed = 0;
    for (ItemAtPlace &item : items)
        item = {.item = m_itemCount++, .heldState = {}};
}

void TrackerModel::apply(const TrackerStep &step, const Reactions &reactions)
{
    calls.clear();
    moments.clear();
    m_reactions = reactions;
    m_nextReaction = 0;
    call(step);
    noteMoment(u"the end"_s);
}

void TrackerModel::runSlot(const QString &cause)
{
    noteMoment(cause);
    while (m_nextReaction < m_reactions.size()) {
        const std::optional<TrackerStep> step = m_reactions[m_nextReaction++];
        if (!step)
            break;
        call(*step);
    }
    calls.push_back(std::nullopt);
}

void TrackerModel::noteMoment(const QString &cause)
{
    for (ItemAtPlace &item : items)
        item.isAllowed = isAllowed(item);
    moments.push_back({cause, *this});
}

void TrackerModel::call(const TrackerStep &step)
{
    Tracker &tracker = trackers[std::size_t(step.tracker)];
    ItemAtPlace &itemAtPlace = items[std::size_t(step.place)];
    ItemAtPlace *const dying = dyingItem(step);
    ItemAtPlace &item = dying ? *dying : itemAtPlace;
    const std::optional<int> state = usableState(step);
    if (step.kind == TrackerStep::Destroy && itemAtPlace.runningCalls > 0)
        return;
    calls.push_back(TrackerCall{step, state});

    item.runningCalls += step.isOfTheItem();
    switch (step.kind) {
    case TrackerStep::RegisterDirectly:
        noteMoment(returned(registerResource(tracker, itemAtPlace.item, step.info())));
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
            decide(*state, u"allowed"_s);
        break;
    case TrackerStep::Release:
        if (state)
            decide(*state, u"released"_s);
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
    case TrackerStep::WriteOwner:
        if (state)
            states[std::size_t(*state)].owner = itemAtPlace.item;
        m_writtenInto = true;
        break;
    case TrackerStep::WriteCount:
        if (state)
            states[std::size_t(*state)].resourceCount = step.id;
        m_writtenInto = true;
        break;
    }
    item.runningCalls -= step.isOfTheItem();
}

std::optional<int> TrackerModel::usableState(const TrackerStep &step) const
{
    if (states.empty())
        return std::nullopt;
    // Counts backwards from the newest state.
    const int state = int(states.size()) - 1 - step.number % int(states.size());
    const std::optional<int> owner = states[std::size_t(state)].owner;
    const bool isThere = std::ranges::find(items, owner, &ItemAtPlace::item) != items.end();
    return owner && !isThere ? std::nullopt : std::optional(state);
}

// Returns the dying item whose function the step calls, or null if the step calls the item at the place.
TrackerModel::ItemAtPlace *TrackerModel::dyingItem(const TrackerStep &step)
{
    if (!step.flag || m_dying.empty())
        return nullptr;
    return &m_dying[std::size_t(step.place) % m_dying.size()];
}

bool TrackerModel::isAllowed(const ItemAtPlace &item) const
{
    if (!item.heldState)
        return true;
    const int status = states[std::size_t(*item.heldState)].status;
    return status == ResourceOwnerState::CreationAllowed || status == ResourceOwnerState::Ignored;
}

void TrackerModel::registerItem(ItemAtPlace &item, const ResourceInfo &info)
{
    const bool isDying = std::ranges::find(m_dying, item.item, &ItemAtPlace::item) != m_dying.end();
    const bool mayRegister =
        installed && !isDying && !trackers[std::size_t(*installed)].registrationBlocked;
    if (mayRegister) {
        Tracker &tracker = trackers[std::size_t(*installed)];
        const int state = registerResource(tracker, item.item, info);
        // A re-entrant slot may have removed the item.
        const std::optional<int> known = knownState(tracker, item.item);
        item.heldState = known == state || hasEntryOf(tracker, state) ? state : known;
    }
    noteMoment(returned(mayRegister));
}

// The item drops a state whose count is 0. A slot may have registered the item with another state.
void TrackerModel::unregisterItem(ItemAtPlace &item, int id)
{
    if (!installed || !item.heldState)
        return;
    Tracker &tracker = trackers[std::size_t(*installed)];
    const std::optional<int> before = knownState(tracker, item.item);
    unregisterResource(tracker, item.item, id);
    if (!item.heldState || states[std::size_t(*item.heldState)].resourceCount != 0)
        return;
    const std::optional<int> now = knownState(tracker, item.item);
    item.heldState = now == before ? std::nullopt : now;
}

void TrackerModel::unregisterItem(ItemAtPlace &item)
{
    if (!installed || !item.heldState)
        return;
    Tracker &tracker = trackers[std::size_t(*installed)];
    unregisterResources(tracker, item.item);
    item.heldState = knownState(tracker, item.item);
}

void TrackerModel::decide(int state, const QString &decision)
{
    if (const std::optional<int> owner = states[std::size_t(state)].owner)
        runSlot(u"item %1 %2"_s.arg(QString::number(*owner), decision));
}

int TrackerModel::registerResource(Tracker &tracker, int item, const ResourceInfo &info)
{
    const auto known = find(tracker, item, info.id);
    if (known != tracker.resources.end()) {
        known->type = info.type;
        known->name = info.name;
        known->url = info.url;
        const int state = known->state;
        addMessage(tracker, *known, Message::Updated);
        emitSignal(tracker, u"resourcesChanged"_s);
        return state;
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
        emitSignal(tracker, u"resourceOwnerAdded"_s);
    emitSignal(tracker, u"resourcesChanged"_s);
    return state;
}

// Skips an entry that is leaving.
std::list<TrackerModel::Entry>::iterator TrackerModel::find(Tracker &tracker, int item,
                                                            int id) const
{
    return std::ranges::find_if(tracker.resources, [&](const Entry &entry) {
        return belongsTo(entry, item) && entry.id == id && !entry.isLeaving;
    });
}

// Returns true if the entry is still listed: a re-entrant slot may clear the tracker.
bool TrackerModel::announceRemoval(Tracker &tracker, Entry &entry)
{
    const int number = entry.number;
    entry.isLeaving = true;
    addMessage(tracker, entry, Message::Unregistered);
    return contains(tracker, number);
}

// A re-entrant slot may remove the item while the entry is leaving, and register it with another
// state.
void TrackerModel::unregisterResource(Tracker &tracker, int item, int id)
{
    const auto entry = find(tracker, item, id);
    if (entry == tracker.resources.end())
        return;
    const int number = entry->number;
    const int state = entry->state;
    const std::optional<int> knownBefore = knownState(tracker, item);
    if (!announceRemoval(tracker, *entry))
        return;
    if (--states[std::size_t(state)].resourceCount == 0 && knownState(tracker, item) == knownBefore
        && tracker.owners.erase(item) > 0)
        emitSignal(tracker, u"resourceOwnerRemoved"_s);
    if (!contains(tracker, number))
        return;
    tracker.resources.erase(entry);
    emitSignal(tracker, u"resourcesChanged"_s);
}

void TrackerModel::unregisterResources(Tracker &tracker, int item)
{
    const auto isItsOwn = [&](const Entry &entry) {
        return belongsTo(entry, item) && !entry.isLeaving;
    };
    const bool removed = remove(tracker, numbersOf(tracker, isItsOwn));
    if (!keepsOwner(tracker, item) && tracker.owners.erase(item) > 0)
        emitSignal(tracker, u"resourceOwnerRemoved"_s);
    if (removed)
        emitSignal(tracker, u"resourcesChanged"_s);
}

// Returns true if it removed an entry: re-entrant slots may remove all of them first.
bool TrackerModel::remove(Tracker &tracker, const std::vector<int> &entries)
{
    bool removed = false;
    for (const int number : entries) {
        const auto entry = entryWithNumber(tracker, number);
        if (entry == tracker.resources.end() || !announceRemoval(tracker, *entry))
            continue;
        tracker.resources.erase(entry);
        removed = true;
    }
    return removed;
}

// Returns true if a re-entrant slot has registered an entry for the item. The item then stays an owner, and its
// count becomes the number of listed entries.
bool TrackerModel::keepsOwner(const Tracker &tracker, int item)
{
    const std::optional<int> state = knownState(tracker, item);
    if (!state || states[std::size_t(*state)].owner != item)
        return false;
    if (!hasEntryOf(tracker, *state))
        return false;
    states[std::size_t(*state)].resourceCount =
        int(std::ranges::count(tracker.resources, *state, &Entry::state));
    return true;
}

bool TrackerModel::hasEntryOf(const Tracker &tracker, int state)
{
    return std::ranges::any_of(tracker.resources, [&](const Entry &entry) {
        return entry.state == state && !entry.isLeaving;
    });
}

void TrackerModel::setStatus(Tracker &tracker, int state, int status)
{
    const std::optional<int> owner = states[std::size_t(state)].owner;
    if (!owner)
        return;
    states[std::size_t(state)].status = status;

    const auto isItsOwn = [&](const Entry &entry) { return belongsTo(entry, *owner); };
    for (const int number : numbersOf(tracker, isItsOwn)) {
        const auto entry = entryWithNumber(tracker, number);
        if (entry != tracker.resources.end())
            addMessage(tracker, *entry, Message::StatusChanged);
    }
}

// Before the first slot runs, all states of the item lose their owner, even a state into which the application has
// written another owner. Slots already find the next item at the place.
void TrackerModel::destroy(ItemAtPlace &place)
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
        for (const auto &[owner, state] : tracker.owners) {
            if (owner == item || states[std::size_t(state)].owner == item)
                itsStates.insert(state);
        }
    }

    m_dying.push_back(std::exchange(place, {.item = m_itemCount++, .heldState = {}}));
    for (const int state : itsStates)
        states[std::size_t(state)].owner.reset();
    for (Tracker &tracker :
         std::views::reverse(trackers)) // the library uses this order without promising it
        forget(tracker, item, itsStates);
    m_dying.pop_back();
}

void TrackerModel::forget(Tracker &tracker, int item, const std::set<int> &itsStates)
{
    const auto isItsOwn = [&](const Entry &entry) {
        return itsStates.contains(entry.state) && !entry.isLeaving;
    };
    const bool isKnown = tracker.owners.erase(item) > 0;
    const bool removed = remove(tracker, numbersOf(tracker, isItsOwn));
    if (isKnown)
        emitSignal(tracker, u"resourceOwnerRemoved"_s);
    if (removed)
        emitSignal(tracker, u"resourcesChanged"_s);
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
    emitSignal(tracker, u"messagesAdded"_s);
    if (tracker.messages.size() >= messageCapacity)
        tracker.messages.clear();
}

void TrackerModel::emitSignal(const Tracker &tracker, const QString &name)
{
    runSlot(u"tracker %1 %2"_s.arg(QString::number(&tracker - trackers.data()), name));
}

QString TrackerModel::violation() const
{
    for (const Tracker &tracker : trackers) {
        if (tracker.messages.size() >= messageCapacity)
            return u"a log that should have been emptied"_s;
        if (m_writtenInto)
            continue;
        for (const QString &violation : {entryViolation(tracker), ownerViolation(tracker)}) {
            if (!violation.isEmpty())
                return violation;
        }
    }
    return {};
}

// The rules do not apply to an entry whose state names no owner.
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
    const auto watch = [this](std::size_t number, auto signal, const QString &name) {
        const QString cause = u"tracker %1 %2"_s.arg(QString::number(number), name);
        QObject::connect(&trackers[number], signal, &m_context, [this, cause] { runSlot(cause); });
    };
    for (std::size_t number = 0; number < trackers.size(); ++number) {
        watch(number, &SceneResourceTracker::resourcesChanged, u"resourcesChanged"_s);
        watch(number, &SceneResourceTracker::resourceOwnerAdded, u"resourceOwnerAdded"_s);
        watch(number, &SceneResourceTracker::resourceOwnerRemoved, u"resourceOwnerRemoved"_s);
        watch(number, &SceneResourceTracker::messagesAdded, u"messagesAdded"_s);
    }
    setSceneResourceTracker(trackers.data());
    for (int place = 0; place < placeCount; ++place)
        create(place);
}

TrackerSubject::~TrackerSubject()
{
    setSceneResourceTracker(nullptr);
}

void TrackerSubject::create(int place)
{
    const int number = m_itemCount++;
    auto item = std::make_unique<Item>();
    item->setObjectName(itemName(number));
    item->onAllow = [this, number] { runSlot(u"item %1 allowed"_s.arg(number)); };
    item->onRelease = [this, number] { runSlot(u"item %1 released"_s.arg(number)); };
    m_items[std::size_t(place)] = {number, std::move(item)};
}

// Slots already find the next item at the place. A later item may get the address of the destroyed item, so the
// states that still name the destroyed item are marked.
void TrackerSubject::destroy(int place)
{
    NumberedItem dying = std::move(m_items[std::size_t(place)]);
    const IResourceOwner *const owner = dying.item.get();
    create(place);
    m_dying.emplace_back(dying.number, dying.item.get());
    dying.item.reset();
    m_dying.pop_back();
    for (State &state : m_states) {
        if (state.state->owner == owner && !state.goneOwner)
            state.goneOwner = dying.number;
    }
}

// Returns the dying item whose function the step calls, or null if the step calls the item at the place. The
// functions of the item's owner base can still be called.
AbstractResourceOwner *TrackerSubject::dyingItem(const TrackerStep &step) const
{
    if (!step.flag || m_dying.empty())
        return nullptr;
    return m_dying[std::size_t(step.place) % m_dying.size()].second;
}

QString TrackerSubject::run(const TrackerModel &model)
{
    m_model = &model;
    m_nextCall = 1;
    m_nextMoment = 0;
    m_difference.clear();
    call(*model.calls.front());
    compare(u"the end"_s);
    m_model = nullptr;
    return m_difference;
}

void TrackerSubject::runSlot(const QString &cause)
{
    compare(cause);
    while (m_model && m_difference.isEmpty() && m_nextCall < m_model->calls.size()) {
        const std::optional<TrackerCall> next = m_model->calls[m_nextCall++];
        if (!next)
            return;
        call(*next);
    }
}

void TrackerSubject::compare(const QString &cause)
{
    noteStates();
    if (!m_model || !m_difference.isEmpty())
        return;
    const TrackerModel::Moment &expected = m_model->moments[m_nextMoment++];
    QString found = cause == expected.cause ? situation().difference(expected.situation)
                                            : u"expected "_s + expected.cause;
    if (std::ranges::any_of(trackers, [this](const auto &each) { return hasWrongAddress(each); }))
        found = u"a message with a wrong address"_s;
    if (!found.isEmpty())
        m_difference = cause + u": "_s + found;
}

void TrackerSubject::call(const TrackerCall &call)
{
    const TrackerStep &step = call.step;
    SceneResourceTracker &tracker = trackers[std::size_t(step.tracker)];
    Item *const itemAtPlace = m_items[std::size_t(step.place)].item.get();
    AbstractResourceOwner *const dying = dyingItem(step);
    AbstractResourceOwner *const item = dying ? dying : itemAtPlace;
    const ResourceInfo info = step.info();
    const auto state = call.state ? m_states[std::size_t(*call.state)].state
                                  : QSharedPointer<ResourceOwnerState>();

    switch (step.kind) {
    case TrackerStep::RegisterDirectly: // never for a dying item
        compare(
            returned(stateNumber(tracker.registerResource(itemAtPlace, info)).value_or(stranger)));
        break;
    case TrackerStep::UnregisterDirectly:
        tracker.unregisterResource(item, step.id);
        break;
    case TrackerStep::UnregisterAllDirectly:
        tracker.unregisterResources(item);
        break;
    case TrackerStep::RegisterImage:
        compare(returned(item->registerImage(info.id, info.url)));
        break;
    case TrackerStep::Register:
        compare(returned(item->registerResource(info.id, info.name, info.type)));
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
    case TrackerStep::WriteOwner:
        if (state) {
            state->owner = itemAtPlace;
            m_states[std::size_t(*call.state)].goneOwner.reset();
        }
        break;
    case TrackerStep::WriteCount:
        if (state)
            state->resourceCount = step.id;
        break;
    }
}

// Numbers the new states. The first slot after the creation of a state finds the state in a table of owners.
void TrackerSubject::noteStates()
{
    for (const SceneResourceTracker &tracker : trackers) {
        for (const auto &[owner, state] : tracker.owners()) {
            if (!stateNumber(state))
                m_states.push_back({state, {}});
        }
    }
}

std::optional<int>
TrackerSubject::stateNumber(const QSharedPointer<ResourceOwnerState> &state) const
{
    const auto found = std::ranges::find(m_states, state, &State::state);
    return found == m_states.end() ? std::nullopt : std::optional(int(found - m_states.begin()));
}

std::optional<int> TrackerSubject::ownerNumber(const IResourceOwner *owner) const
{
    if (!owner)
        return std::nullopt;
    for (const auto &[number, item] : m_items) {
        if (item.get() == owner)
            return number;
    }
    for (const auto &[number, item] : m_dying) {
        if (item == owner)
            return number;
    }
    return stranger;
}

TrackerSituation TrackerSubject::situation() const
{
    TrackerSituation result;
    for (const auto &[state, goneOwner] : m_states) {
        const bool isGone = state->owner && goneOwner;
        result.states.push_back({state->status, isGone ? goneOwner : ownerNumber(state->owner),
                                 state->resourceCount, state->geometry});
    }
    for (std::size_t i = 0; i < trackers.size(); ++i) {
        result.trackers[i] = situation(trackers[i]);
        if (sceneResourceTracker() == &trackers[i])
            result.installed = int(i);
    }
    for (std::size_t place = 0; place < m_items.size(); ++place) {
        const auto &[number, item] = m_items[place];
        result.items[place] = {number, stateNumber(item->state()), item->isResourcesAllowed()};
    }
    return result;
}

TrackerSituation::Tracker TrackerSubject::situation(const SceneResourceTracker &tracker) const
{
    TrackerSituation::Tracker result;
    for (const ResourceInfo &info : tracker.resources()) {
        result.resources.push_back({info.url, info.name, info.id, info.type,
                                    stateNumber(info.ownerState).value_or(stranger)});
    }
    for (const auto &[owner, state] : tracker.owners())
        result.owners[ownerNumber(owner).value_or(stranger)] =
            stateNumber(state).value_or(stranger);
    result.messages = tracker.messages();
    result.registrationBlocked = tracker.isRegistrationBlocked();
    return result;
}

// True if the address in the last message is wrong. The address of a destroyed object is not checked.
bool TrackerSubject::hasWrongAddress(const SceneResourceTracker &tracker) const
{
    if (tracker.messages().isEmpty())
        return false;
    const Message message = tracker.messages().constLast();
    quintptr address = 0;
    if (!message.objectName.isEmpty()) {
        const auto isNamed = [&](const NumberedItem &numbered) {
            return numbered.item->objectName() == message.objectName;
        };
        const auto named = std::ranges::find_if(m_items, isNamed);
        if (named == m_items.end())
            return false;
        address = quintptr(named->item->resourceOwnerObject());
    }
    return message.ownerAddress != u"0x%1"_s.arg(address, 8, 16, QChar(u'0'));
}

} // namespace ovelin::tests
