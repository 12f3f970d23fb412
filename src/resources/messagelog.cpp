#include "messagelog_p.h"

#include "sceneresourcetracker_p.h"

namespace ovelin {

using namespace Qt::StringLiterals;
using Message = SceneResourceTracker::Message;

namespace {

// Reaching it empties the whole log at once: no message ever pays for trimming.
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

// Width and height are worked out in 64 bits: the application may set any rectangle.
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

// An owner that is being destroyed, or that the application took out of its state, has no object to
// describe.
void describeOwner(Message &message, IResourceOwner *owner)
{
    const QObject *object = owner ? owner->resourceOwnerObject() : nullptr;
    message.ownerAddress = addressText(object);
    if (object) {
        message.className = QString::fromUtf8(object->metaObject()->className());
        message.objectName = object->objectName();
    }
}

Message composeMessage(Message::Event event, const ResourceInfo &info)
{
    const ResourceOwnerState &state = *info.ownerState;

    Message message{};
    message.type = typeText(info.type);
    message.status = statusText(state.status);
    message.geometry = geometryText(state.geometry);
    message.source = sourceText(info);
    describeOwner(message, state.owner);
    message.id = info.id;
    message.event = event;
    return message;
}

} // namespace

// A slot of the signal may change everything, the entry included: only the log itself is touched
// after it.
void SceneResourceTrackerPrivate::addMessage(Message::Event event, const ResourceInfo &info)
{
    if (!messagesEnabled)
        return;

    messages.append(composeMessage(event, info));
    Q_Q(SceneResourceTracker);
    Q_EMIT q->messagesAdded();

    if (messages.size() >= messageCapacity)
        messages.clear();
}

/*!
    \class ovelin::SceneResourceTracker::Message
    \inmodule Ovelin
    \inheaderfile ovelin/sceneresourcetracker.h
    \brief One event in the life of a resource, told in ready-made texts.

    \since Ovelin 1.0
    \sa ovelin::SceneResourceTracker::messages()
*/

/*!
    \enum ovelin::SceneResourceTracker::Message::Event

    What a message tells of.

    \value Registered    A new entry was filed.
    \value Updated       An entry was registered again.
    \value StatusChanged The status of the entry's owner was set.
    \value Unregistered  The entry is about to leave the list.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::ownerAddress
    \brief The address of the owner's object as "0x" and at least eight hexadecimal digits, in lower
    case; of a 32-bit address with the top bit set, sixteen digits, the first eight f. "0x00000000"
    for an owner that is gone.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::geometry
    \brief The owner's rectangle as "(x, y, widthxheight)".
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::className
    \brief The class name of the owner's object; empty for an owner that is gone.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::objectName
    \brief The name of the owner's object; empty for an owner that is gone.
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
    \brief What the resource is made from: its URL, its name, or both joined by " | "; empty where it
    has neither.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::id
    \brief The identifier of the resource within its owner.
*/

/*!
    \variable ovelin::SceneResourceTracker::Message::event
    \brief What happened.
*/

/*!
    Returns the log, oldest message first: a copy that later events do not change.

    The log holds at most 99 messages. The hundredth is announced like the others, so a slot that is
    connected directly sees a full hundred, and then the whole log is emptied.

    \sa messagesAdded(), setMessagesEnabled()
*/
QList<SceneResourceTracker::Message> SceneResourceTracker::messages() const
{
    Q_D(const SceneResourceTracker);
    return d->messages;
}

/*!
    Empties the log. Emits nothing; copies that messages() returned stay as they are.
*/
void SceneResourceTracker::clearMessages()
{
    Q_D(SceneResourceTracker);
    d->messages.clear();
}

/*!
    Switches the log on or off, as \a enabled says; it is off at first. What was logged stays
    readable, and what happened while it was off is not made up for. Emits nothing.
*/
void SceneResourceTracker::setMessagesEnabled(bool enabled)
{
    Q_D(SceneResourceTracker);
    d->messagesEnabled = enabled;
}

} // namespace ovelin
