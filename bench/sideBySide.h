// SPDX-License-Identifier: Apache-2.0
// Two ways of doing the same work, held side by side: what a benchmark reports is the quotient, since times
// alone move with the machine.
#pragma once

#include <algorithm>
#include <ctime>
#include <vector>

#include <benchmark/benchmark.h>
#include <malloc.h>

namespace Zorvane::Bench {

/// From here on malloc keeps the memory that it was given back, for both sides: the first touch of a page
/// costs more than what is done with it, and would decide every figure.
inline void keepHeapWarm() {
    static const bool isKept = [] {
        constexpr int never = 2'000'000'000;
        mallopt(M_MMAP_MAX, 0);
        mallopt(M_TRIM_THRESHOLD, never);
        mallopt(M_TOP_PAD, 64 << 20);
        return true;
    }();
    (void)isKept;
}

/// Processor time of this process, in seconds: what other programs do meanwhile counts less than on the
/// clock.
inline double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <class Run>
double timeOf(Run run) {
    const double start = processorSeconds();
    run();
    return processorSeconds() - start;
}

inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct Medians {
    double ours = 0, theirs = 0; ///< seconds
    double ratio = 0;            ///< of ours to theirs, in neighbouring runs
};

/// Each side once to warm up, then by turns. A side is called with nothing, and gives the time it took in
/// seconds, so that it can prepare and tidy up outside of it.
template <class Ours, class Theirs>
Medians runByTurns(int rounds, Ours ours, Theirs theirs) {
    std::vector<double> oursTimes, theirsTimes, ratios;
    ours();
    theirs();
    for (int i = 0; i < rounds; ++i) {
        oursTimes.push_back(ours());
        theirsTimes.push_back(theirs());
        ratios.push_back(oursTimes.back() / theirsTimes.back());
    }
    return {median(oursTimes), median(theirsTimes), median(ratios)};
}

/// What a reader wants to see in one line: the ratio and what it must not exceed.
inline void report(benchmark::State& state, const Medians& medians, double target) {
    state.counters["ratio"] = medians.ratio;
    if (target > 0)
        state.counters["target"] = target;
    state.counters["ours_ms"] = medians.ours * 1000;
    state.counters["bare_ms"] = medians.theirs * 1000;
}

} // namespace Zorvane::Bench
