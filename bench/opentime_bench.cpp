// How many open times are calculated in a second, for tickets of an hour and of a century.

#include "orvelle/reference/opentime.h"
#include "orvelle/reference/settings.h"

#include <benchmark/benchmark.h>

namespace {

/// \param state  the distance of the two moments in hours.
void calcOpenTime(benchmark::State &state) {
    ProgramCopy copy;
    const ProgramCopy::Scope scope(copy);
    subCreateSettings();
    const DateTime start{DateTime::fromDate(2026, 3, 3).days + DateTime::fromTime(9, 0, 0).days};
    const DateTime end{start.days + static_cast<double>(state.range(0)) / 24};
    for (auto _ : state)
        benchmark::DoNotOptimize(fncCalcOpenTime(start, end));
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK(calcOpenTime)->ArgName("hours")->Arg(1)->Arg(24)->Arg(24 * 30)->Arg(24 * 365)->Arg(24 * 36500);

BENCHMARK_MAIN();
