#ifndef OVELIN_TESTS_SUPPORT_REDUCEDRUN_H
#define OVELIN_TESTS_SUPPORT_REDUCEDRUN_H

#include <QByteArray>
#include <QtEnvironmentVariables>

#include <optional>

namespace ovelin::tests {

constexpr int usualTextCases = 1000;

// Returns the number of random texts in OVELIN_TEXT_CASES, or nothing if the user has not set it.
inline std::optional<int> wantedTextCases()
{
    bool isSet = false;
    const int cases = qEnvironmentVariableIntValue("OVELIN_TEXT_CASES", &isSet);
    return isSet ? std::optional(cases) : std::nullopt;
}

// True if tests should try fewer and smaller cases: under valgrind, where a test takes some fifty times as
// long, and if OVELIN_TEXT_CASES is below the usual number.
inline bool isRunReduced()
{
    return wantedTextCases().value_or(usualTextCases) < usualTextCases
           || qgetenv("LD_PRELOAD").contains("vgpreload");
}

} // namespace ovelin::tests

#endif
