#include "fuzzing.h"

#include "resources/trackermodel.h"

// Makes random calls of two trackers and a few items, also from re-entrant slots and by items that are being
// destroyed. Compares the trackers with a model of their rules after each call.

using namespace ovelin;
using namespace ovelin::tests;

namespace {

constexpr int highestId = 7; // low, so that several calls use the same id
constexpr int highestNumber = 35;
constexpr int mostSteps = 300;
constexpr int mostReactions = 20;

TrackerStep anyStep(FuzzedDataProvider &data, TrackerStep::Kind last)
{
    TrackerStep step{};
    step.kind = static_cast<TrackerStep::Kind>(data.ConsumeIntegralInRange(0, int(last)));
    step.tracker = data.ConsumeIntegralInRange(0, trackerCount - 1);
    step.place = data.ConsumeIntegralInRange(0, placeCount - 1);
    step.id = data.ConsumeIntegralInRange(0, highestId);
    step.number = data.ConsumeIntegralInRange(0, highestNumber);
    step.flag = data.ConsumeBool();
    return step;
}

Reactions anyReactions(FuzzedDataProvider &data, TrackerStep::Kind last)
{
    Reactions reactions(data.ConsumeIntegralInRange<std::size_t>(0, mostReactions));
    for (auto &reaction : reactions) {
        if (data.ConsumeBool())
            reaction = anyStep(data, last);
    }
    return reactions;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzedDataProvider data(bytes, size);
    const bool hasReactions = data.ConsumeBool();
    const bool writesIntoStates = data.ConsumeBool();
    const auto last = writesIntoStates ? TrackerStep::last : TrackerStep::lastThatKeepsRules;
    TrackerModel model;
    TrackerSubject subject;
    for (int steps = 0; steps < mostSteps && data.remaining_bytes() > 0; ++steps) {
        const TrackerStep step = anyStep(data, last);
        model.apply(step, hasReactions ? anyReactions(data, last) : Reactions());
        requireNone(subject.run(model));
        requireNone(model.violation());
    }
    return 0;
}
