#ifndef OVELIN_TESTS_SUPPORT_REDUCEDRUN_H
#define OVELIN_TESTS_SUPPORT_REDUCEDRUN_H

#include <QByteArray>
#include <QtEnvironmentVariables>

#include <optional>

namespace ovelin::tests {

constexpr int usualTextCases = 1000;

// How many cases of a row of texts the user asks for.
inline std::optional<int> wantedTextCases()
{
    bool isSet = false;
    const int cases = qEnvironmentVariableIntValue("OVELIN_TEXT_CASES", &isSet);
    return isSet ? std::optional(cases) : std::nullopt;
}

// Whether there should be fewer and smaller cases: a run under valgrind takes some fifty times as
// long. OVELIN_TEXT_CASES, set to less than usual, asks for it under any other slow tool.
inline bool isRunReduced()
{
    return wantedTextCases().value_or(usualTextCases) < usualTextCases
           || qgetenv("LD_PRELOAD").contains("vgpreload");
}

} // namespace ovelin::tests

#endif
