#ifndef OVELIN_TESTS_FUZZ_FUZZING_H
#define OVELIN_TESTS_FUZZ_FUZZING_H

#include <fuzzer/FuzzedDataProvider.h>

#include <QString>

// What the fuzzers share.

// An integer of which the edges are as likely as all that lies between.
int anyInt(FuzzedDataProvider &data);

// Ends the run, as a crash does, when a rule is broken.
void requireNone(const QString &violation);

#endif
