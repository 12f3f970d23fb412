#ifndef OVELIN_TESTS_SUPPORT_REDUCEDRUN_H
#define OVELIN_TESTS_SUPPORT_REDUCEDRUN_H

#include <QByteArray>
#include <QtEnvironmentVariables>

namespace ovelin::tests {

// The cases of a row of texts; OVELIN_TEXT_CASES sets another number.
constexpr int usualTextCases = 1000;

// Whether there should be fewer and smaller cases: a run under valgrind takes some fifty times as
// long. OVELIN_TEXT_CASES, set to less than usual, asks for it under any other slow tool.
inline bool isRunReduced()
{
    bool isSet = false;
    const int cases = qEnvironmentVariableIntValue("OVELIN_TEXT_CASES", &isSet);
    return (isSet && cases < usualTextCases) || qgetenv("LD_PRELOAD").contains("vgpreload");
}

} // namespace ovelin::tests

#endif
