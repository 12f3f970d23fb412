#ifndef OVELIN_TESTS_SUPPORT_PROPERTIES_H
#define OVELIN_TESTS_SUPPORT_PROPERTIES_H

#include "reducedrun.h"

#include <rapidcheck.h>

#include <QTest>

#include <sstream>

namespace ovelin::tests {

// Tries a property with random cases. Fails the test with the smallest case found that breaks the property.
// The cases are the same in every run; RC_PARAMS="seed=2" in the environment gives others.
template<typename Property>
void checkProperty(int caseCount, Property &&property)
{
    constexpr int reduction = 20;
    if (!qEnvironmentVariableIsSet("RC_PARAMS"))
        qputenv("RC_PARAMS", "seed=1");
    rc::detail::TestParams params = rc::detail::configuration().testParams;
    params.maxSuccess = isRunReduced() ? caseCount / reduction : caseCount;

    const rc::detail::TestResult result = rc::detail::checkTestable(
        std::forward<Property>(property), rc::detail::TestMetadata(), params);
    std::ostringstream message;
    rc::detail::printResultMessage(result, message);
    QVERIFY2(result.is<rc::detail::SuccessResult>(), message.str().c_str());
}

} // namespace ovelin::tests

#endif
