// SPDX-License-Identifier: Apache-2.0
// What a container costs beside plain memory: a ratio of 3 means that the container takes three times as long as
// a plain vector of structs with as many strings.
#include "model/CZor.h"
#include "model/TableDescriptor.h"

#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace Zorvane {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t ROWS = 100'000;
constexpr const char* TEXT = "a text of a row, longer than strings hold in themselves";

// Rows over all vectors, each text of each row filled.
void fill(CZor& rows) {
    const auto vectors = allVectors();
    for (std::size_t i = 0; i < ROWS; ++i) {
        const VectorDescriptor& vector = vectors[i % vectors.size()];
        BaseTable* row = vector.table().create();
        row->setId(static_cast<ID>(i + 1));
        for (const Field& field : vector.table().fields)
            if (field.kind == FieldKind::Text)
                row->*field.text = TEXT;
        vector.rows(rows).records().push_back(row);
    }
}

// The same content without the model: per row a number and as many texts and other values.
struct PlainRow {
    ID id = 0;
    std::vector<std::string> texts;
    std::vector<long> numbers;
};

std::vector<PlainRow> plainRows() {
    const auto vectors = allVectors();
    std::vector<PlainRow> rows(ROWS);
    for (std::size_t i = 0; i < ROWS; ++i) {
        rows[i].id = static_cast<ID>(i + 1);
        for (const Field& field : vectors[i % vectors.size()].table().fields)
            if (field.kind == FieldKind::Text)
                rows[i].texts.emplace_back(TEXT);
            else
                rows[i].numbers.push_back(0);
    }
    return rows;
}

double seconds(Clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

// The time of one run; what it returns is destroyed outside of it.
template <class Run>
double timeOf(Run run) {
    const auto start = Clock::now();
    auto result = run();
    const double time = seconds(Clock::now() - start);
    benchmark::DoNotOptimize(&result);
    return time;
}

// Runs both by turns, so that a busy machine slows both, and reports the quotient of the sums.
template <class Container, class Plain>
void compare(benchmark::State& state, Container container, Plain plain) {
    double ours = 0, theirs = 0;
    for ([[maybe_unused]] auto _ : state) {
        ours += container();
        theirs += plain();
    }
    state.counters["ratio"] = ours / theirs;
    state.counters["container_ms"] = benchmark::Counter(ours * 1000, benchmark::Counter::kAvgIterations);
    state.counters["plain_ms"] = benchmark::Counter(theirs * 1000, benchmark::Counter::kAvgIterations);
}

void copying(benchmark::State& state) {
    CZor rows;
    fill(rows);
    const std::vector<PlainRow> plain = plainRows();
    compare(
        state, [&] { return timeOf([&] { return std::make_unique<CZor>(rows); }); },
        [&] { return timeOf([&] { return std::make_unique<std::vector<PlainRow>>(plain); }); });
    rows.clear(true);
}

void clearing(benchmark::State& state) {
    CZor rows;
    fill(rows);
    const std::vector<PlainRow> plain = plainRows();
    compare(
        state,
        [&] {
            CZor copy(rows);
            return timeOf([&] { return copy.clear(true), 0; });
        },
        [&] {
            std::vector<PlainRow> copy(plain);
            return timeOf([&] { return copy.clear(), 0; });
        });
}

// Beside copying, which is the yardstick, not beside a dump of the plain rows.
void dumping(benchmark::State& state) {
    CZor rows;
    fill(rows);
    const std::vector<PlainRow> plain = plainRows();
    compare(
        state,
        [&] {
            return timeOf([&] {
                std::ostringstream text;
                rows.dump(text);
                return text.str().size();
            });
        },
        [&] { return timeOf([&] { return std::make_unique<std::vector<PlainRow>>(plain); }); });
}

} // namespace

BENCHMARK(copying)->Unit(benchmark::kMillisecond);
BENCHMARK(clearing)->Unit(benchmark::kMillisecond);
BENCHMARK(dumping)->Unit(benchmark::kMillisecond);

} // namespace Zorvane
