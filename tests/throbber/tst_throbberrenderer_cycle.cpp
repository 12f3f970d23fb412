#include "throbbersupport.h"

#include "support/properties.h"

#include <utility>
#include <vector>

using namespace ovelin;
using namespace ovelin::tests;

// Compares the throbber with a plain model for random sequences of steps, forwards and backwards.

namespace {

using Step = std::pair<int, int>; // degrees of rotation and of span

// The timer's steps, steps that end exactly at a limit, larger steps, and arbitrary steps.
rc::Gen<int> anyDegrees()
{
    return rc::gen::weightedOneOf<int>({{6, rc::gen::inRange(-10, 90)},
                                        {3, rc::gen::element(5, 25, 55, 275)},
                                        {3, rc::gen::inRange(-1000, 1000)},
                                        {1, rc::gen::arbitrary<int>()}});
}

} // namespace

class tst_ThrobberRendererCycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anyStepsFollowTheRules();
};

void tst_ThrobberRendererCycle::anyStepsFollowTheRules()
{
    const auto anySteps =
        rc::gen::container<std::vector<Step>>(rc::gen::pair(anyDegrees(), anyDegrees()));
    checkProperty(400, [&] {
        const auto throbber = makeThrobber();
        Animation expected;
        for (const auto &[rotation, span] : *anySteps) {
            throbber->addAngles(rotation, span);
            expected.addAngles(rotation, span);
            const Angles drawn = drawnAngles(*throbber);
            RC_ASSERT(drawn.start == expected.angles().start);
            RC_ASSERT(drawn.length == expected.angles().length);
        }
    });
}

QTEST_MAIN(tst_ThrobberRendererCycle)

#include "tst_throbberrenderer_cycle.moc"
