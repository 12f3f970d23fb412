#include "messagelog_p.h"

#include "sceneresourcetracker_p.h"

namespace ovelin {

using namespace Qt::StringLiterals;
using Message = SceneResourceTracker::Message;

namespace {

// The number of messages at which the log is emptied. It bounds the memory of the log, and emptying
// all of it at once is cheaper than removing the oldest message each time.
constexpr qsizetype messageCapacity = 100;

QString typeText(ResourceInfo::Type type)
{
    switch (type) {
    case ResourceInfo::Image:
        return u"image"_s;
    case ResourceInfo::OffscreenBuffer:
        return u"offscreen_buffer"_s;
    case ResourceInfo::PaintedItem:
        return u"painted_item"_s;
    }
    return {};
}

QString statusText(ResourceOwnerState::Status status)
{
    switch (status) {
    case ResourceOwnerState::CreationRequested:
        return u"creation_requested"_s;
    case ResourceOwnerState::CreationAllowed:
        return u"creation_allowed"_s;
    case ResourceOwnerState::CreationDenied:
        return u"creation_denied"_s;
    case ResourceOwnerState::Cleared:
        return u"cleared"_s;
    case ResourceOwnerState::Ignored:
        return u"ignored"_s;
    }
    return {};
}

// The width and the height of a rectangle that the application sets may exceed 32 bits.
QString geometryText(const QRect &geometry)
{
    const qint64 width = qint64(geometry.right()) - geometry.left() + 1;
    const qint64 height = qint64(geometry.bottom()) - geometry.top() + 1;
    return u"(%1, %2, %3x%4)"_s.arg(QString::number(geometry.x()), QString::number(geometry.y()),
                                    QString::number(width), QString::number(height));
}

QString sourceText(const ResourceInfo &info)
{
    if (info.url.isEmpty())
        return info.name;
    if (info.name.isEmpty())
        return info.url.toString();
    return info.url.toString() + " | "_L1 + info.name;
}

// A state has no owner if its owner was destroyed, or if the application has written null into it.
void describeOwner(Message &message, IResourceOwner *owner)
{
    const QObject *object = owner ? owner->resourceOwnerObject() : nullptr;
    message.ownerAddress = addressText(object);
    if (object) {
        message.className = QString::fromUtf8(object->metaObject()->className());
        message.objectName = object->objectName();
    }
}

// The owner is asked last: it may call the tracker and thereby erase the entry that `info` refers to.
Message composed(Message::Event event, const ResourceInfo &info)
{
    const ResourceOwnerState &state = *info.ownerState;

    Message message = {};
    message.type = typeText(info.type);
    message.status = statusText(state.status);
    message.geometry = geometryText(state.geometry);
    message.source = sourceText(info);
    message.id = info.id;
    message.event = event;
    describeOwner(message, state.owner);
    return message;
}

} // namespace

// A slot of messagesAdded() may erase the entry that `info` refers to. So `info` is not used after the signal.
void SceneResourceTrackerPrivate::addMessage(Message::Event event, const ResourceInfo &info)
{
    if (!messagesEnabled)
        return;

    messages.append(composed(event, info));
    Q_Q(SceneResourceTracker);
    Q_EMIT q->messagesAdded();

    if (messages.size() >= messageCapacity)
        messages.clear();
}

/*!
    \class ovelin::SceneResourceTracker::Message
    \inmodule Ovelin
    \inheaderfile ovelin/sceneresourcetracker.h
    \brief One event in the life of a resource, described in texts.

    \since Ovelin 1.0
    \sa ovelin::SceneResourceTracker::messages()
*/

SceneResourceTracker::Message::~Message() = default;

/*!
    \enum ovelin::SceneResourceTracker::Message::Event

    The kind of event.

    \value Registered    A new entry was added.
    \value Updated       An entry was registered again.
    \value StatusChanged The status of the entry's owner was set.
    \value Unregistered  The entry is about to be removed.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::ownerAddress
    \brief The address of the owner's object: "0x" and at least eight hexadecimal digits in lower
    case. Examples: "0x0001a2b0"; "0xffffffff80000010" for the 32-bit address 80000010, whose top
    bit is set; "0x00000000" if the state has no owner.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::geometry
    \brief The owner's rectangle as "(x, y, widthxheight)".
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::className
    \brief The class name of the owner's object; empty if the state has no owner.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::objectName
    \brief The name of the owner's object; empty if the state has no owner.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::status
    \brief The owner's status: "creation_requested", "creation_allowed", "creation_denied",
    "cleared" or "ignored"; empty for any other value.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::type
    \brief The kind of the resource: "image", "offscreen_buffer" or "painted_item"; empty for any
    other value.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::source
    \brief The source of the resource: its URL, its name, or both joined by " | "; empty if the
    resource has neither.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::id
    \brief The identifier of the resource within its owner.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::event
    \brief The kind of event.
*/

/*!
    Returns a copy of the log, oldest message first.

    The log holds at most 99 messages. When the hundredth message is added, a directly connected
    slot sees all hundred; then the tracker empties the log.

    \sa messagesAdded(), setMessagesEnabled()
*/
QList<SceneResourceTracker::Message> SceneResourceTracker::messages() const
{
    Q_D(const SceneResourceTracker);
    return d->messages;
}

/*!
    Empties the log. Emits nothing. Copies that messages() returned do not change.
*/
void SceneResourceTracker::clearMessages()
{
    Q_D(SceneResourceTracker);
    d->messages.clear();
}

/*!
    Enables the log if \a enabled is true, and disables it otherwise. Initially the log is disabled.
    Disabling the log keeps its messages. Events that happen while the log is disabled are not recorded.
    Emits nothing.
*/
void SceneResourceTracker::setMessagesEnabled(bool enabled)
{
    Q_D(SceneResourceTracker);
    d->messagesEnabled = enabled;
}

} // namespace ovelin
