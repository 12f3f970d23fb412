#include "trackermodel.h"

#include <algorithm>
#include <tuple>

namespace ovelin::tests {

using namespace Qt::StringLiterals;
using Message = SceneResourceTracker::Message;

namespace {

constexpr qsizetype messageCapacity = 100;

// What a state's owner is called when nothing at a place is it.
constexpr int goneItem = -1;

QString textOf(int value, std::initializer_list<const char *> texts)
{
    return value >= 0 && value < int(texts.size()) ? QString::fromLatin1(texts.begin()[value])
                                                   : QString();
}

QString itemName(int item)
{
    return u"item %1"_s.arg(item);
}

auto asTuple(const Message &message)
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
    return u"%1 place %2 id %3 number %4 flag %5"_s.arg(QLatin1StringView(names[kind]))
        .arg(place)
        .arg(id)
        .arg(number)
        .arg(flag);
}

TrackerModel::TrackerModel()
{
    for (ItemAtPlace &item : items)
        item = {.item = itemCount++, .heldState = {}};
}

void TrackerModel::apply(const TrackerStep &step)
{
    emissions.clear();
    ItemAtPlace &item = items[std::size_t(step.place)];
    const std::optional<int> state = usableState(step);
    const bool mayRegister = installed && !registrationBlocked;
    const bool mayUnregister = installed && item.heldState;

    switch (step.kind) {
    case TrackerStep::RegisterDirectly:
        registerResource(item.item, step.info());
        break;
    case TrackerStep::UnregisterDirectly:
        unregisterResource(item.item, step.id);
        break;
    case TrackerStep::UnregisterAllDirectly:
        unregisterResources(item.item);
        break;
    case TrackerStep::RegisterImage:
        if (mayRegister)
            item.heldState =
                registerResource(item.item, image(step.id, step.info().url.toString()));
        break;
    case TrackerStep::Register:
        if (mayRegister) {
            const ResourceInfo info = step.info();
            item.heldState = registerResource(item.item, named(info.id, info.name, info.type));
        }
        break;
    case TrackerStep::Unregister:
        if (!mayUnregister)
            break;
        unregisterResource(item.item, step.id);
        if (states[std::size_t(*item.heldState)].resourceCount == 0)
            item.heldState.reset();
        break;
    case TrackerStep::UnregisterAll:
        if (!mayUnregister)
            break;
        unregisterResources(item.item);
        item.heldState.reset();
        break;
    case TrackerStep::SetStatus:
        if (state)
            setStatus(*state, step.status());
        break;
    case TrackerStep::Allow:
    case TrackerStep::Release:
        if (!state)
            break;
        for (ItemAtPlace &told : items) {
            if (states[std::size_t(*state)].owner == told.item)
                ++(step.kind == TrackerStep::Allow ? told.allowCalls : told.releaseCalls);
        }
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
        clear();
        break;
    case TrackerStep::SetLogEnabled:
        messagesEnabled = step.flag;
        break;
    case TrackerStep::ClearLog:
        messages.clear();
        break;
    case TrackerStep::SetBlocked:
        registrationBlocked = step.flag;
        break;
    case TrackerStep::SetInstalled:
        installed = step.flag;
        break;
    case TrackerStep::Destroy:
        destroy(item);
        break;
    }
}

std::optional<int> TrackerModel::usableState(const TrackerStep &step) const
{
    if (states.empty())
        return std::nullopt;
    const int state = step.number % int(states.size());
    const std::optional<int> owner = states[std::size_t(state)].owner;
    const bool isThere = std::any_of(items.begin(), items.end(),
                                     [&](const ItemAtPlace &item) { return owner == item.item; });
    return owner && !isThere ? std::nullopt : std::optional(state);
}

bool TrackerModel::isAllowed(const ItemAtPlace &item) const
{
    if (!item.heldState)
        return true;
    const int status = states[std::size_t(*item.heldState)].status;
    return status == ResourceOwnerState::CreationAllowed || status == ResourceOwnerState::Ignored;
}

int TrackerModel::registerResource(int item, const ResourceInfo &info)
{
    const auto known = std::find_if(resources.begin(), resources.end(), [&](const Entry &entry) {
        return belongsTo(entry, item) && entry.id == info.id;
    });
    if (known != resources.end()) {
        known->type = info.type;
        known->name = info.name;
        known->url = info.url;
        addMessage(*known, Message::Updated);
        emitSignal("resourcesChanged");
        return known->state;
    }

    const bool added = !owners.contains(item);
    if (added) {
        owners[item] = int(states.size());
        states.push_back({.owner = item, .geometry = {}});
    }
    const int state = owners[item];
    ++states[std::size_t(state)].resourceCount;
    const auto place = info.type == ResourceInfo::Image ? resources.end() : resources.begin();
    const auto entry = resources.insert(place, {info.url, info.name, info.id, info.type, state});
    addMessage(*entry, Message::Registered);
    if (added)
        emitSignal("resourceOwnerAdded");
    emitSignal("resourcesChanged");
    return state;
}

void TrackerModel::unregisterResource(int item, int id)
{
    const auto entry =
        std::find_if(resources.begin(), resources.end(), [&](const Entry &candidate) {
            return belongsTo(candidate, item) && candidate.id == id;
        });
    if (entry == resources.end())
        return;
    addMessage(*entry, Message::Unregistered);
    if (--states[std::size_t(entry->state)].resourceCount == 0 && owners.erase(item) > 0)
        emitSignal("resourceOwnerRemoved");
    resources.erase(entry);
    emitSignal("resourcesChanged");
}

void TrackerModel::unregisterResources(int item)
{
    const std::size_t count = resources.size();
    for (auto entry = resources.begin(); entry != resources.end();) {
        if (belongsTo(*entry, item)) {
            addMessage(*entry, Message::Unregistered);
            entry = resources.erase(entry);
        } else {
            ++entry;
        }
    }
    if (owners.erase(item) > 0)
        emitSignal("resourceOwnerRemoved");
    if (resources.size() != count)
        emitSignal("resourcesChanged");
}

void TrackerModel::setStatus(int state, int status)
{
    const std::optional<int> owner = states[std::size_t(state)].owner;
    if (!owner)
        return;
    states[std::size_t(state)].status = status;
    for (const Entry &entry : resources) {
        if (belongsTo(entry, *owner))
            addMessage(entry, Message::StatusChanged);
    }
}

// The item's states lose it before anything else happens. An item is known by the state it holds even
// when the application took it out of that state.
void TrackerModel::destroy(ItemAtPlace &place)
{
    const int item = place.item;
    if (place.heldState)
        states[std::size_t(*place.heldState)].owner = item;
    std::vector<std::list<Entry>::iterator> leaving;
    for (auto entry = resources.begin(); entry != resources.end(); ++entry) {
        if (belongsTo(*entry, item))
            leaving.push_back(entry);
    }

    if (place.heldState)
        states[std::size_t(*place.heldState)].owner.reset();
    for (const auto entry : leaving)
        states[std::size_t(entry->state)].owner.reset();
    const auto known = owners.find(item);
    const bool isKnown = known != owners.end();
    if (isKnown) {
        states[std::size_t(known->second)].owner.reset();
        owners.erase(known);
    }

    for (const auto entry : leaving) {
        addMessage(*entry, Message::Unregistered);
        resources.erase(entry);
    }
    if (isKnown)
        emitSignal("resourceOwnerRemoved");
    if (!leaving.empty())
        emitSignal("resourcesChanged");
    place = {.item = itemCount++, .heldState = {}};
}

void TrackerModel::clear()
{
    resources.clear();
    owners.clear();
    messages.clear();
    registrationBlocked = false;
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

void TrackerModel::addMessage(const Entry &entry, Message::Event event)
{
    if (!messagesEnabled)
        return;
    messages.append(composed(entry, event));
    emitSignal("messagesAdded");
    if (messages.size() >= messageCapacity)
        messages.clear();
}

// As SignalRecorder writes them down.
void TrackerModel::emitSignal(const char *name)
{
    QStringList idTexts;
    for (const Entry &entry : resources)
        idTexts.append(QString::number(entry.id));
    emissions.append(u"%1 [%2] owners %3 messages %4"_s.arg(
        QLatin1StringView(name), idTexts.join(u' '), QString::number(owners.size()),
        QString::number(messages.size())));
}

TrackerSubject::TrackerSubject()
{
    for (int place = 0; place < placeCount; ++place)
        create(place);
}

void TrackerSubject::create(int place)
{
    const auto at = std::size_t(place);
    m_itemNumbers[at] = m_itemCount++;
    items[at] = std::make_unique<Item>();
    items[at]->setObjectName(itemName(m_itemNumbers[at]));
    items[at]->onAllow = items[at]->onRelease = [this] {
        if (onDecision)
            onDecision();
    };
}

void TrackerSubject::run(const TrackerStep &step, const TrackerModel &model)
{
    recorder.clear();
    Item *const item = items[std::size_t(step.place)].get();
    const ResourceInfo info = step.info();
    const std::optional<int> usable = model.usableState(step);
    const auto state =
        usable ? m_states[std::size_t(*usable)] : QSharedPointer<ResourceOwnerState>();

    switch (step.kind) {
    case TrackerStep::RegisterDirectly:
        tracker.registerResource(item, info);
        break;
    case TrackerStep::UnregisterDirectly:
        tracker.unregisterResource(item, step.id);
        break;
    case TrackerStep::UnregisterAllDirectly:
        tracker.unregisterResources(item);
        break;
    case TrackerStep::RegisterImage:
        item->registerImage(info.id, info.url);
        break;
    case TrackerStep::Register:
        item->registerResource(info.id, info.name, info.type);
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
        m_messagesEnabled = step.flag;
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
    case TrackerStep::Destroy: {
        // Slots find the next item at the place already.
        const std::unique_ptr<Item> dying = std::move(items[std::size_t(step.place)]);
        create(step.place);
        break;
    }
    }
    noteStates();
}

void TrackerSubject::noteStates()
{
    for (const auto &[owner, state] : tracker.owners()) {
        if (stateNumber(state) == -1)
            m_states.push_back(state);
    }
}

// The state's index among those that were seen; -1 for none.
int TrackerSubject::stateNumber(const QSharedPointer<ResourceOwnerState> &state) const
{
    const auto found = std::find(m_states.begin(), m_states.end(), state);
    return found == m_states.end() ? -1 : int(found - m_states.begin());
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
    result.messagesEnabled = m_messagesEnabled;
    result.registrationBlocked = tracker.isRegistrationBlocked();
    result.installed = sceneResourceTracker() == &tracker;
    result.messages = tracker.messages();
    for (const auto &state : m_states) {
        result.states.push_back(
            {state->status, itemNumber(state->owner), state->resourceCount, state->geometry});
    }
    for (const ResourceInfo &info : tracker.resources()) {
        result.resources.push_back(
            {info.url, info.name, info.id, info.type, stateNumber(info.ownerState)});
    }
    for (const auto &[owner, state] : tracker.owners())
        result.owners[itemNumber(owner).value_or(goneItem)] = stateNumber(state);
    for (std::size_t place = 0; place < items.size(); ++place) {
        const Item &item = *items[place];
        const int held = stateNumber(item.state());
        result.items[place] = {m_itemNumbers[place],
                               held == -1 ? std::nullopt : std::optional(held), item.allowCalls,
                               item.releaseCalls};
    }
    return result;
}

QString TrackerSubject::difference(const TrackerModel &expected) const
{
    if (recorder.emissions != expected.emissions)
        return u"signals %1; expected %2"_s.arg(recorder.emissions.join(u", "_s),
                                                expected.emissions.join(u", "_s));

    const TrackerModel actual = model();
    if (actual.registrationBlocked != expected.registrationBlocked)
        return u"blocked %1"_s.arg(actual.registrationBlocked);
    if (actual.installed != expected.installed)
        return u"installed %1"_s.arg(actual.installed);

    const auto asTupleOfEntry = [](const TrackerModel::Entry &entry) {
        return std::tie(entry.url, entry.name, entry.id, entry.type, entry.state);
    };
    if (!std::equal(actual.resources.begin(), actual.resources.end(), expected.resources.begin(),
                    expected.resources.end(), [&](const auto &a, const auto &b) {
                        return asTupleOfEntry(a) == asTupleOfEntry(b);
                    }))
        return u"the entries differ"_s;
    if (actual.owners != expected.owners)
        return u"the owners differ"_s;

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

    if (!std::equal(actual.messages.begin(), actual.messages.end(), expected.messages.begin(),
                    expected.messages.end(),
                    [](const Message &a, const Message &b) { return asTuple(a) == asTuple(b); }))
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

QString TrackerSubject::violation() const
{
    const TrackerModel now = model();
    for (const TrackerModel::Entry &entry : now.resources) {
        if (entry.state == -1)
            return u"an entry without a state that its owner had"_s;
        const std::optional<int> owner = now.states[std::size_t(entry.state)].owner;
        if (!owner)
            continue;
        const auto known = now.owners.find(*owner);
        if (known == now.owners.end())
            return u"an entry of an unknown owner"_s;
        if (known->second != entry.state)
            return u"an entry with a state that is not its owner's"_s;
    }
    for (const auto &[item, state] : now.owners) {
        if (item == goneItem)
            return u"a dangling owner"_s;
        if (state == -1)
            return u"an owner with a state never seen"_s;
        const std::optional<int> owner = now.states[std::size_t(state)].owner;
        if (!owner)
            continue;
        if (*owner != item)
            return u"a state with another owner"_s;
        if (std::none_of(now.resources.begin(), now.resources.end(),
                         [&](const auto &entry) { return entry.state == state; }))
            return u"an owner without entries"_s;
    }
    return {};
}

} // namespace ovelin::tests
