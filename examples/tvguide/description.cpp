#include "description.h"

#include "guidescene.h"
#include "ownerrecord.h"
#include "resourcepolicy.h"
#include "trackerlog.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace tvguide {

namespace {

using namespace Qt::StringLiterals;

QJsonArray describe(const QRect &rect)
{
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QJsonObject describe(const QString &name, const TextBlock &text)
{
    return {{u"name"_s, name},
            {u"box"_s, describe(text.box())},
            {u"lines"_s, QJsonArray::fromStringList(text.displayedLines())},
            {u"elided"_s, text.isShown() && text.isElided()}};
}

QJsonArray describeTexts(const GuideScene &scene)
{
    const DetailPanel &panel = scene.panel();
    QJsonArray texts{describe(u"heading"_s, scene.heading()),
                     describe(u"date"_s, scene.date()),
                     describe(u"clock"_s, scene.clock()),
                     describe(u"panel title"_s, panel.title),
                     describe(u"panel facts"_s, panel.facts),
                     describe(u"panel remaining"_s, panel.remaining),
                     describe(u"panel episode"_s, panel.episode),
                     describe(u"panel description"_s, panel.description)};
    for (const PanelTag &tag : panel.tags)
        texts += describe(u"panel tag"_s, tag.label);
    for (const TimeMark &mark : scene.timeMarks())
        texts += describe(u"time mark"_s, mark.label);
    for (const auto &[index, entry] : scene.channels()) {
        texts += describe(u"channel number"_s, entry.number);
        texts += describe(u"channel name"_s, entry.name);
    }
    return texts;
}

QJsonArray describeCards(const GuideScene &scene)
{
    QJsonArray cards;
    for (const auto &[index, card] : scene.cards()) {
        if (!scene.isInGrid(card.rect))
            continue;
        const Programme &programme = scene.programme(index);
        cards += QJsonObject{
            {u"channel"_s, scene.channel(index).id},
            {u"start"_s, scene.guide().clock().iso(programme.start)},
            {u"stop"_s, scene.guide().clock().iso(programme.stop)},
            {u"rect"_s, describe(card.rect)},
            {u"poster"_s, describe(card.poster->geometry())},
            {u"title"_s, describe(programme.title, card.title)},
            {u"focused"_s, index == scene.focus()},
            {u"running"_s, programme.isRunning(scene.now())},
        };
    }
    return cards;
}

QJsonArray describeMessages(const TrackerLog &log)
{
    QJsonArray messages;
    for (const TrackerLog::Message &message : log.messages()) {
        messages += QJsonObject{
            {u"event"_s, eventName(message.event)},
            {u"object"_s, message.objectName},
            {u"class"_s, message.className},
            {u"status"_s, message.status},
            {u"type"_s, message.type},
            {u"source"_s, message.source},
            {u"geometry"_s, message.geometry},
            {u"id"_s, message.id},
        };
    }
    return messages;
}

QJsonObject describeDecisions(const ResourcePolicy &policy)
{
    const ResourcePolicy::Summary summary = policy.summary();
    return {
        {u"owners"_s, summary.owners},       {u"requested"_s, summary.requested},
        {u"allowed"_s, summary.allowed},     {u"denied"_s, summary.denied},
        {u"cleared"_s, summary.cleared},     {u"ignored"_s, summary.ignored},
        {u"heldBytes"_s, summary.heldBytes}, {u"budget"_s, policy.budget()},
    };
}

} // namespace

QByteArray describe(const GuideScene &scene, const ResourcePolicy &policy, const TrackerLog &log)
{
    const QSize size = scene.layout().size();
    const QJsonObject description{
        {u"size"_s, QJsonArray{size.width(), size.height()}},
        {u"time"_s, scene.guide().clock().iso(scene.now())},
        {u"texts"_s, describeTexts(scene)},
        {u"cards"_s, describeCards(scene)},
        {u"decisions"_s, describeDecisions(policy)},
        {u"messages"_s, describeMessages(log)},
    };
    return QJsonDocument(description).toJson();
}

} // namespace tvguide
