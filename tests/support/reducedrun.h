#ifndef OVELIN_TESTS_SUPPORT_REDUCEDRUN_H
#define OVELIN_TESTS_SUPPORT_REDUCEDRUN_H

#include <QByteArray>
#include <QtEnvironmentVariables>

namespace ovelin::tests {

// Whether there should be fewer and smaller cases: a run under valgrind takes some fifty times as
// long. OVELIN_TEXT_CASES asks for it under any other slow tool.
inline bool isRunReduced()
{
    return qEnvironmentVariableIsSet("OVELIN_TEXT_CASES")
           || qgetenv("LD_PRELOAD").contains("vgpreload");
}

} // namespace ovelin::tests

#endif
