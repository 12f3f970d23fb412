#ifndef OVELIN_TESTS_FUZZ_FUZZING_H
#define OVELIN_TESTS_FUZZ_FUZZING_H

#include <fuzzer/FuzzedDataProvider.h>

#include <QString>

// What the fuzzers share.

// Any integer; those at the edges, and the usual ones, more often.
int anyInt(FuzzedDataProvider &data);

// Ends the run, as a crash does, when a rule is broken.
void requireNone(const QString &violation);

#endif
