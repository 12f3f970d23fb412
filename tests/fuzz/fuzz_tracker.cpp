#include "fuzzing.h"

#include "resources/trackermodel.h"

#include <array>

// Any sequence of calls on two trackers and a few items. What slots call back is made of the same bytes,
// and may call items that are being destroyed. Without such calls everything is as in the model; after
// them the trackers keep their rules, and the model goes on from there.

using namespace ovelin;
using namespace ovelin::tests;

namespace {

constexpr int highestId = 7; // few, so that calls meet
constexpr int highestNumber = 35;
constexpr int mostCalls = 300;
constexpr int deepestCall = 4;

class Script
{
public:
    explicit Script(FuzzedDataProvider &data);

    void run();

private:
    void call();
    void callBack();
    TrackerStep anyStep();

    FuzzedDataProvider &m_data;
    const bool m_callsBack;
    TrackerModel m_model;
    TrackerSubject m_subject;
    QObject m_context;

    std::array<int, placeCount> m_callsInside{}; // of an item that is carrying them out
    int m_depth = 0;
    int m_calls = 0;
    bool m_calledBack = false;
};

Script::Script(FuzzedDataProvider &data)
    : m_data(data)
    , m_callsBack(data.ConsumeBool())
{
    using Signal = void (SceneResourceTracker::*)();
    for (const auto &watched : m_subject.trackers) {
        for (const Signal signal :
             {&SceneResourceTracker::resourcesChanged, &SceneResourceTracker::resourceOwnerAdded,
              &SceneResourceTracker::resourceOwnerRemoved, &SceneResourceTracker::messagesAdded})
            QObject::connect(&watched.tracker, signal, &m_context, [this] { callBack(); });
    }
    m_subject.onDecision = [this] { callBack(); };
}

void Script::run()
{
    while (m_data.remaining_bytes() > 0 && m_calls < mostCalls) {
        m_calledBack = false;
        call();
        requireNone(m_subject.model().violation());
        if (m_calledBack)
            m_model = m_subject.model();
        else
            requireNone(m_subject.difference(m_model));
    }
}

// Destroying an item inside one of its own operations is not the library's to survive.
void Script::call()
{
    const TrackerStep step = anyStep();
    int &callsInside = m_callsInside[std::size_t(step.place)];
    if (step.kind == TrackerStep::Destroy && callsInside > 0)
        return;

    ++m_calls;
    callsInside += step.isOfTheItem();
    m_subject.run(step, m_depth > 0 ? m_subject.model() : m_model);
    callsInside -= step.isOfTheItem();
    if (m_depth == 0)
        m_model.apply(step);
}

void Script::callBack()
{
    if (!m_callsBack || m_depth == deepestCall)
        return;
    ++m_depth;
    while (m_calls < mostCalls && m_data.remaining_bytes() > 0 && m_data.ConsumeBool()) {
        m_calledBack = true;
        call();
    }
    --m_depth;
}

TrackerStep Script::anyStep()
{
    TrackerStep step{};
    step.kind = static_cast<TrackerStep::Kind>(
        m_data.ConsumeIntegralInRange(0, TrackerStep::kindCount - 1));
    step.tracker = m_data.ConsumeIntegralInRange(0, trackerCount - 1);
    step.place = m_data.ConsumeIntegralInRange(0, placeCount - 1);
    step.id = m_data.ConsumeIntegralInRange(0, highestId);
    step.number = m_data.ConsumeIntegralInRange(0, highestNumber);
    step.flag = m_data.ConsumeBool();
    return step;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzedDataProvider data(bytes, size);
    Script(data).run();
    return 0;
}
