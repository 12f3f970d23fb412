#include "trackermodel.h"

#include "support/properties.h"

#include <rapidcheck/state.h>

#include <QTest>

using namespace ovelin;
using namespace ovelin::tests;

// The tracker does what its rules say for any sequence of calls, checked after each of them against a
// plain model: the lists, the counts, the statuses, the log, and the signals in their order.

namespace {

constexpr int highestId = 5; // few, so that calls meet
constexpr int highestNumber = 35;

class StepCommand : public rc::state::Command<TrackerModel, TrackerSubject>
{
public:
    explicit StepCommand(const TrackerStep &step)
        : m_step(step)
    {
    }

    void apply(TrackerModel &model) const override { model.apply(m_step); }

    void run(const TrackerModel &before, TrackerSubject &subject) const override
    {
        subject.run(m_step, before);
        const QString difference = subject.difference(nextState(before));
        if (!difference.isEmpty())
            RC_FAIL(difference.toStdString());
    }

    void show(std::ostream &stream) const override { stream << m_step.described().toStdString(); }

private:
    const TrackerStep m_step;
};

using CommandPointer = std::shared_ptr<const rc::state::Command<TrackerModel, TrackerSubject>>;

rc::Gen<CommandPointer> anyCommand(const TrackerModel &)
{
    const auto step = rc::gen::construct<TrackerStep>(
        rc::gen::map(rc::gen::inRange(0, TrackerStep::kindCount),
                     [](int kind) { return static_cast<TrackerStep::Kind>(kind); }),
        rc::gen::inRange(0, trackerCount), rc::gen::inRange(0, placeCount),
        rc::gen::inRange(0, highestId + 1), rc::gen::inRange(0, highestNumber + 1),
        rc::gen::arbitrary<bool>());
    return rc::gen::map(step, [](const TrackerStep &made) -> CommandPointer {
        return std::make_shared<StepCommand>(made);
    });
}

} // namespace

class tst_SceneResourceTrackerModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithTheModel();
};

void tst_SceneResourceTrackerModel::agreesWithTheModel()
{
    checkProperty(4000, [] {
        const TrackerModel model;
        TrackerSubject subject;
        rc::state::check(model, subject, &anyCommand);
    });
}

QTEST_MAIN(tst_SceneResourceTrackerModel)

#include "tst_sceneresourcetracker_model.moc"
