#ifndef OVELIN_TESTS_FUZZ_FUZZING_H
#define OVELIN_TESTS_FUZZ_FUZZING_H

#include <fuzzer/FuzzedDataProvider.h>

#include <QString>

// Returns any integer; the limits of int and common values more often.
int anyInt(FuzzedDataProvider &data);

// Aborts the process, which the fuzzer reports, if the violation is not empty.
void requireNone(const QString &violation);

#endif
