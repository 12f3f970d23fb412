#ifndef OVELIN_TESTS_RESOURCESUPPORT_H
#define OVELIN_TESTS_RESOURCESUPPORT_H

#include <ovelin/abstractresourceowner.h>
#include <ovelin/resourceinfo.h>
#include <ovelin/sceneresourcetracker.h>

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

// An owner that does not derive from AbstractResourceOwner.
class PlainOwner : public ovelin::IResourceOwner
{
public:
    QObject *resourceOwnerObject() override
    {
        ++objectQueries;
        return &object;
    }
    void allowResources() override { ++allowCalls; }
    void releaseResources() override { ++releaseCalls; }

    QObject object;
    int objectQueries = 0;
    int allowCalls = 0;
    int releaseCalls = 0;
};

// An item as applications write it. The QObject is the first base, so that the address of the
// object differs from the address of the owner.
class Item : public QObject, public ovelin::AbstractResourceOwner
{
public:
    QObject *resourceOwnerObject() override
    {
        ++objectQueries;
        return this;
    }

    // The reaction may destroy the item, so a copy of the reaction is called.
    void allowResources() override
    {
        ++allowCalls;
        if (const auto reaction = onAllow)
            reaction();
    }
    void releaseResources() override
    {
        ++releaseCalls;
        if (const auto reaction = onRelease)
            reaction();
    }

    QSharedPointer<ovelin::ResourceOwnerState> state() const { return ownerState; }

    std::function<void()> onAllow;
    std::function<void()> onRelease;
    int objectQueries = 0;
    int allowCalls = 0;
    int releaseCalls = 0;
};

// A tracker that is installed as long as it exists.
class InstalledTracker : public ovelin::SceneResourceTracker
{
public:
    InstalledTracker() { ovelin::setSceneResourceTracker(this); }
    ~InstalledTracker() override { ovelin::setSceneResourceTracker(nullptr); }
};

inline ovelin::ResourceInfo image(int id, const QString &url = QStringLiteral("file:///a.png"))
{
    ovelin::ResourceInfo info;
    info.url = QUrl(url);
    info.id = id;
    return info;
}

inline ovelin::ResourceInfo named(int id, const QString &name, ovelin::ResourceInfo::Type type)
{
    ovelin::ResourceInfo info;
    info.name = name;
    info.id = id;
    info.type = type;
    return info;
}

inline ovelin::ResourceInfo buffer(int id)
{
    return named(id, QStringLiteral("buffer"), ovelin::ResourceInfo::OffscreenBuffer);
}

inline QList<int> ids(const ovelin::SceneResourceTracker &tracker)
{
    QList<int> result;
    for (const ovelin::ResourceInfo &info : tracker.resources())
        result.append(info.id);
    return result;
}

inline bool refersTo(const ovelin::SceneResourceTracker &tracker,
                     const ovelin::IResourceOwner *owner)
{
    for (const ovelin::ResourceInfo &info : tracker.resources()) {
        if (info.ownerState->owner == owner)
            return true;
    }
    for (const auto &[key, state] : tracker.owners()) {
        if (key == owner || state->owner == owner)
            return true;
    }
    return false;
}

// Records every signal of a tracker, with the ids of the entries and the numbers of owners and
// messages during the signal. Example: "resourcesChanged [2 1] owners 1 messages 0".
class SignalRecorder
{
public:
    explicit SignalRecorder(const ovelin::SceneResourceTracker &tracker)
        : m_tracker(tracker)
    {
        using ovelin::SceneResourceTracker;
        connect(&SceneResourceTracker::resourcesChanged, QStringLiteral("resourcesChanged"));
        connect(&SceneResourceTracker::resourceOwnerAdded, QStringLiteral("resourceOwnerAdded"));
        connect(&SceneResourceTracker::resourceOwnerRemoved,
                QStringLiteral("resourceOwnerRemoved"));
        connect(&SceneResourceTracker::messagesAdded, QStringLiteral("messagesAdded"));
    }

    // Returns the names of the signals only.
    QStringList names() const
    {
        QStringList result;
        for (const QString &emission : emissions)
            result.append(emission.section(QLatin1Char(' '), 0, 0));
        return result;
    }

    qsizetype count(const QString &name) const { return names().count(name); }

    void clear() { emissions.clear(); }

    QStringList emissions;

private:
    void connect(void (ovelin::SceneResourceTracker::*signal)(), const QString &name)
    {
        QObject::connect(&m_tracker, signal, &m_context, [this, name] { record(name); });
    }

    void record(const QString &name)
    {
        QStringList idTexts;
        for (const int id : ids(m_tracker))
            idTexts.append(QString::number(id));
        emissions.append(QStringLiteral("%1 [%2] owners %3 messages %4")
                             .arg(name, idTexts.join(QLatin1Char(' ')),
                                  QString::number(m_tracker.owners().size()),
                                  QString::number(m_tracker.messages().size())));
    }

    const ovelin::SceneResourceTracker &m_tracker;
    QObject m_context;
};

#endif
