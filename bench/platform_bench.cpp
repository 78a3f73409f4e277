// SPDX-License-Identifier: Apache-2.0
// The child process runner against the bare calls: the same program, one run after the other.
#include "platform/zorSystemCommon.h"

#include <chrono>
#include <string>

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane {

namespace {

constexpr int Runs = 1000;

const char* const TRUE_PROGRAM[] = {"/bin/true", nullptr};
const char* const TRUE_COMMAND[] = {"/bin/sh", "-c", "true", nullptr};

/// The limit up to which a runner that closes descriptors one by one would have to go.
rlim_t raiseDescriptorLimit() {
    constexpr rlim_t Wanted = 1'048'576;
    rlimit limit{Wanted, Wanted};
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) { // not permitted: as far as it goes
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    return limit.rlim_cur;
}

bool spawnAndWait(const char* const arguments[]) {
    pid_t child = 0;
    int status = 0;
    return posix_spawn(&child, arguments[0], nullptr, nullptr, const_cast<char* const*>(arguments),
                       environ) == 0 &&
           waitpid(child, &status, 0) == child && status == 0;
}

/// Both sides take turns, so that what else the machine does falls on both.
template <class Runner>
void compare(benchmark::State& state, const char* const bare[], Runner runner) {
    using Clock = std::chrono::steady_clock;
    const rlim_t limit = raiseDescriptorLimit();
    Clock::duration ours{};
    Clock::duration theirs{};
    for (auto _ : state) {
        for (int i = 0; i < Runs; ++i) {
            const auto start = Clock::now();
            const bool spawned = spawnAndWait(bare);
            const auto middle = Clock::now();
            const bool ran = runner() == ZOR_SUCCESS;
            ours += Clock::now() - middle;
            theirs += middle - start;
            if (!spawned || !ran)
                return state.SkipWithError("true could not be run");
        }
    }
    using Milliseconds = std::chrono::duration<double, std::milli>;
    state.counters["descriptors"] = static_cast<double>(limit);
    state.counters["runner_ms"] = Milliseconds(ours).count() / static_cast<double>(state.iterations());
    state.counters["spawn_ms"] = Milliseconds(theirs).count() / static_cast<double>(state.iterations());
    state.counters["ratio"] = Milliseconds(ours) / Milliseconds(theirs);
}

void vectorRun(benchmark::State& state) {
    compare(state, TRUE_PROGRAM, [] { return ZorSystemCommon2(TRUE_PROGRAM, nullptr, true); });
}
BENCHMARK(vectorRun)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

void shellRun(benchmark::State& state) {
    compare(state, TRUE_COMMAND, [] { return ZorSystemCommon("true", nullptr, true); });
}
BENCHMARK(shellRun)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace Zorvane
