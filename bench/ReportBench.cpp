// Structured reports: opening the file that the environment variable VANTOR_REPORT names.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "platform/CodePage.h"
#include "sr/StructuredReport.h"

namespace {

void OpenReport(benchmark::State& state) {
    const char* const path = std::getenv("VANTOR_REPORT");
    if (path == nullptr) {
        state.SkipWithError("VANTOR_REPORT names no report");
        return;
    }
    for (auto _ : state) {
        const VantorWrappers::StructuredReport report(Vantor::Platform::ToHostText(path));
        if (!report.IsValid()) state.SkipWithError("not a report");
    }
}
BENCHMARK(OpenReport)->Unit(benchmark::kMillisecond);

}  // namespace
