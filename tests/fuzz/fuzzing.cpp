#include "fuzzing.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <limits>

int anyInt(FuzzedDataProvider &data)
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int edges[] = {lowest, lowest + 1, -1, 0, 1, 2, highest - 1, highest};
    switch (data.ConsumeIntegralInRange(0, 3)) {
    case 0:
        return data.PickValueInArray(edges);
    case 1:
        return data.ConsumeIntegral<int>();
    default:
        return data.ConsumeIntegralInRange<qint16>(-100, 2000);
    }
}

void requireNone(const QString &violation)
{
    if (violation.isEmpty())
        return;
    std::fprintf(stderr, "Violation: %s\n", qPrintable(violation));
    std::abort();
}

// The application is static: it exists until the fuzzer ends the process by exit().
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt would log a warning for each of the many invalid values.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    static QGuiApplication application(*argc, *argv);
    return 0;
}

// Fontconfig does not free all of its memory.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}
