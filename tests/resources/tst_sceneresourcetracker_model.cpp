#include "trackermodel.h"

#include "support/properties.h"

#include <rapidcheck/state.h>

#include <QTest>

using namespace ovelin;
using namespace ovelin::tests;
using namespace Qt::StringLiterals;

// Makes random sequences of calls, also inside slots, and compares the tracker with a plain model
// in each slot and after each call: the lists, the counts, the statuses, the log, and the order of
// signals.

namespace {

constexpr int highestId = 5;      // low, so that calls often use the same id
constexpr int highestNumber = 35; // 0 to 35 give all combinations of 4 types, 3 URLs and 3 names
constexpr double reactionScale = 0.2; // up to 20 reactions to a step

class StepCommand : public rc::state::Command<TrackerModel, TrackerSubject>
{
public:
    StepCommand(const TrackerStep &step, const Reactions &reactions)
        : m_step(step)
        , m_reactions(reactions)
    {
    }

    void apply(TrackerModel &model) const override { model.apply(m_step, m_reactions); }

    void run(const TrackerModel &before, TrackerSubject &subject) const override
    {
        const TrackerModel after = nextState(before);
        for (const QString &fault : {subject.run(after), after.violation()}) {
            if (!fault.isEmpty())
                RC_FAIL(fault.toStdString());
        }
    }

    void show(std::ostream &stream) const override
    {
        stream << m_step.described().toStdString();
        for (const auto &reaction : m_reactions)
            stream << "\n    " << (reaction ? reaction->described().toStdString() : "return");
    }

private:
    const TrackerStep m_step;
    const Reactions m_reactions;
};

using CommandPointer = std::shared_ptr<const rc::state::Command<TrackerModel, TrackerSubject>>;

rc::Gen<TrackerStep::Kind> anyKind(TrackerStep::Kind first, TrackerStep::Kind last)
{
    return rc::gen::map(rc::gen::inRange(int(first), last + 1),
                        [](int kind) { return static_cast<TrackerStep::Kind>(kind); });
}

// RapidCheck narrows ranges in its small cases. Small cases would then contain only registrations.
rc::Gen<TrackerStep> anyStep(TrackerStep::Kind last)
{
    const auto kind = rc::gen::weightedOneOf<TrackerStep::Kind>(
        {{6, anyKind(TrackerStep::RegisterDirectly, TrackerStep::UnregisterAll)},
         {3, anyKind(TrackerStep::SetStatus, TrackerStep::TakeOwnerOut)},
         {2, anyKind(TrackerStep::Clear, last)}});
    return rc::gen::resize(rc::kNominalSize,
                           rc::gen::construct<TrackerStep>(
                               kind, rc::gen::inRange(0, trackerCount),
                               rc::gen::inRange(0, placeCount), rc::gen::inRange(0, highestId + 1),
                               rc::gen::inRange(0, highestNumber + 1), rc::gen::arbitrary<bool>()));
}

rc::Gen<std::optional<TrackerStep>> anyReaction(TrackerStep::Kind last)
{
    const auto called =
        rc::gen::map(anyStep(last), [](const TrackerStep &step) { return std::optional(step); });
    return rc::gen::oneOf(rc::gen::just(std::optional<TrackerStep>()), called);
}

rc::Gen<CommandPointer> anyCommand(TrackerStep::Kind last)
{
    const auto reactions =
        rc::gen::scale(reactionScale, rc::gen::container<Reactions>(anyReaction(last)));
    return rc::gen::map(rc::gen::pair(anyStep(last), reactions),
                        [](const std::pair<TrackerStep, Reactions> &made) -> CommandPointer {
                            return std::make_shared<StepCommand>(made.first, made.second);
                        });
}

// Tracker 0 lists items 0 and 1 with one entry each. Tracker 1 lists item 0 with two entries.
TrackerModel filledModel()
{
    TrackerModel model;
    TrackerStep step{};
    step.kind = TrackerStep::RegisterDirectly;
    for (const auto &[tracker, place, id] :
         {std::array{0, 0, 1}, {0, 1, 1}, {1, 0, 1}, {1, 0, 2}}) {
        step.tracker = tracker;
        step.place = place;
        step.id = id;
        model.apply(step);
    }
    return model;
}

using Break = void (*)(TrackerModel &);

} // namespace

class tst_SceneResourceTrackerModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithTheModel_data();
    void agreesWithTheModel();

    // the rules that re-entrant slots cannot break
    void brokenRuleIsReported_data();
    void brokenRuleIsReported();
    void stateWithoutOwnerBreaksNoRule();
    void applicationMayBreakRules_data();
    void applicationMayBreakRules();

    void strangerInATrackerIsADifference();
};

void tst_SceneResourceTrackerModel::agreesWithTheModel_data()
{
    QTest::addColumn<TrackerStep::Kind>("last");

    QTest::newRow("the application leaves states to the tracker")
        << TrackerStep::lastThatKeepsRules;
    QTest::newRow("the application writes owners and counts into states") << TrackerStep::last;
}

void tst_SceneResourceTrackerModel::agreesWithTheModel()
{
    QFETCH(const TrackerStep::Kind, last);

    checkProperty(3000, [last] {
        const TrackerModel model;
        TrackerSubject subject;
        rc::state::check(model, subject, [last](const TrackerModel &) { return anyCommand(last); });
    });
}

void tst_SceneResourceTrackerModel::brokenRuleIsReported_data()
{
    QTest::addColumn<Break>("breakRule");
    const auto addRow = [](const char *violation, Break breakRule) {
        QTest::newRow(violation) << breakRule;
    };

    addRow("an entry of an unknown owner",
           [](TrackerModel &model) { model.trackers[1].owners.erase(0); });
    addRow("an entry with a state that is not its owner's", [](TrackerModel &model) {
        model.trackers[1].resources.front().state = model.trackers[0].owners.at(0);
    });
    addRow("two entries with an owner's identifier", [](TrackerModel &model) {
        model.trackers[1].resources.front().id = model.trackers[1].resources.back().id;
    });
    addRow("a state with another owner", [](TrackerModel &model) {
        model.trackers[1].owners[1] = model.trackers[1].owners.at(0);
    });
    addRow("an owner without entries",
           [](TrackerModel &model) { model.trackers[1].resources.clear(); });
    addRow("a count of 3 for 2 entries", [](TrackerModel &model) {
        ++model.states[std::size_t(model.trackers[1].owners.at(0))].resourceCount;
    });
    addRow("a log that should have been emptied",
           [](TrackerModel &model) { model.trackers[1].messages.resize(100); });
}

void tst_SceneResourceTrackerModel::brokenRuleIsReported()
{
    QFETCH(const Break, breakRule);
    TrackerModel model = filledModel();
    QCOMPARE(model.violation(), QString());

    breakRule(model);

    QCOMPARE(model.violation(), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_SceneResourceTrackerModel::stateWithoutOwnerBreaksNoRule()
{
    TrackerModel model = filledModel();

    model.states[std::size_t(model.trackers[1].owners.at(0))].owner.reset();
    QCOMPARE(model.violation(), QString());

    // The entries of the state without an owner are still listed.
    model.trackers[1].owners.erase(0);
    QCOMPARE(model.violation(), QString());
}

void tst_SceneResourceTrackerModel::applicationMayBreakRules_data()
{
    QTest::addColumn<TrackerStep::Kind>("write");

    QTest::newRow("another owner") << TrackerStep::WriteOwner;
    QTest::newRow("another count") << TrackerStep::WriteCount;
}

void tst_SceneResourceTrackerModel::applicationMayBreakRules()
{
    QFETCH(const TrackerStep::Kind, write);
    TrackerModel model = filledModel();
    TrackerStep step{};
    step.kind = write;
    step.place = 2;
    step.id = 5;

    model.apply(step);
    QCOMPARE(model.violation(), QString());

    // The cap of the log is still checked.
    model.trackers[1].messages.resize(100);
    QCOMPARE(model.violation(), u"a log that should have been emptied"_s);
}

void tst_SceneResourceTrackerModel::strangerInATrackerIsADifference()
{
    TrackerStep step{};
    step.kind = TrackerStep::ClearLog;
    TrackerModel model;
    model.apply(step);
    TrackerSubject subject;
    QCOMPARE(subject.run(model), QString());

    Item stranger;
    subject.trackers[1].registerResource(&stranger, image(1));
    QVERIFY(subject.run(model).startsWith(u"the end: tracker 1: "_s));
}

QTEST_MAIN(tst_SceneResourceTrackerModel)

#include "tst_sceneresourcetracker_model.moc"
