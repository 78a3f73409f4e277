// SPDX-License-Identifier: Apache-2.0
// How the time for a row grows with the number of rows: a ratio of 1 is none at all. Small is 10,000 rows,
// large 100,000, or 1,000,000 with --million, which takes minutes and many gigabytes.
#include "model/core_records.h"
#include "model/windows_records.h"
#include "sampleRows.h"
#include "sideBySide.h"
#include "storage/lookup.h"

#include <array>
#include <cstring>
#include <memory>
#include <vector>

namespace Zorvane::Bench {

namespace {

constexpr std::size_t SMALL = 10'000;
std::size_t g_large = 100'000;

void readInto(CZor& zor, std::string& document) {
    if (zor.readXml(reinterpret_cast<unsigned char*>(document.data()), static_cast<int>(document.size())) !=
        0)
        std::abort();
}

void fill(CWindowsRegion& region, ID id) {
    region.setId(id);
    region.setName("region " + std::to_string(id));
    region.setFromDb();
}

// One table full: regions, of ten a plex, on a hundred disks a thousand plexes, which count among the rows.
void addRegions(CZor& zor, std::size_t rows) {
    const auto plexes = static_cast<ID>(rows / 11);
    for (ID id = 1; id <= plexes; ++id) {
        auto* plex = new CWindowsPlex;
        plex->setId(id);
        zor.m_vWindowsPlex.push_back(plex);
        if (id % 10 == 0) {
            auto* disk = new CWindowsDisk;
            disk->setId(id / 10);
            zor.m_vWindowsDisk.push_back(disk);
        }
        for (ID part = 0; part < 10; ++part) {
            auto* region = new CWindowsRegion;
            fill(*region, (id - 1) * 10 + part + 1);
            region->setWindowsPlexId(id, true);
            region->setWindowsDiskId(id / 10 + 1, true);
            zor.m_vWindowsRegion.push_back(region);
        }
    }
}

// `makeRun` prepares what one size needs and gives the run; a run gives the seconds that it took.
template <class MakeRun>
void compareSizes(benchmark::State& state, MakeRun makeRun) {
    keepHeapWarm();
    const auto perRowOf = [&](std::size_t rows, int rounds) {
        auto run = makeRun(rows);
        std::vector<double> times;
        run();
        for (int i = 0; i < rounds; ++i)
            times.push_back(run() / static_cast<double>(rows));
        return median(times);
    };
    for ([[maybe_unused]] auto _ : state) {
        const double small = perRowOf(SMALL, 15);
        const double large = perRowOf(g_large, 3);
        state.counters["ratio"] = large / small;
        state.counters["target"] = 1.3;
        state.counters["small_us"] = small * 1e6;
        state.counters["large_us"] = large * 1e6;
        state.counters["rows"] = static_cast<double>(g_large);
    }
}

void reading(benchmark::State& state) {
    compareSizes(state, [](std::size_t rows) {
        return [document = mixedDocument(rows)]() mutable {
            CZor zor;
            return timeOf([&] { readInto(zor, document); });
        };
    });
}

// All rows of one table, whose identifiers one index holds.
void readingOneTable(benchmark::State& state) {
    compareSizes(state, [](std::size_t rows) {
        CZor zor;
        addRegions(zor, rows);
        return [document = documentOf(zor)]() mutable {
            CZor read;
            return timeOf([&] { readInto(read, document); });
        };
    });
}

// Every row replaces the one of its identifier.
void readingAgain(benchmark::State& state) {
    compareSizes(state, [](std::size_t rows) {
        auto zor = std::make_shared<CZor>();
        addRegions(*zor, rows);
        return [zor, document = documentOf(*zor)]() mutable {
            return timeOf([&] { readInto(*zor, document); });
        };
    });
}

void writing(benchmark::State& state) {
    compareSizes(state, [](std::size_t rows) {
        auto zor = std::make_shared<CZor>();
        addMixedRows(*zor, rows);
        return [zor] {
            unsigned char* xml = nullptr;
            int len = 0;
            const double time = timeOf([&] { zor->writeXml(&xml, &len, FOR_ALL); });
            delete[] xml;
            return time;
        };
    });
}

void copying(benchmark::State& state) {
    compareSizes(state, [](std::size_t rows) {
        auto zor = std::make_shared<CZor>();
        addMixedRows(*zor, rows);
        return [zor] {
            CZor copy;
            return timeOf([&] { copy = *zor; });
        };
    });
}

// What the processor's memory alone makes of it: as many rows that are nothing but bytes.
void copyingPlainRows(benchmark::State& state) {
    using Row = std::array<char, sizeof(CWindowsRegion)>;
    using Rows = std::vector<std::unique_ptr<Row>>;
    compareSizes(state, [](std::size_t rows) {
        auto plain = std::make_shared<Rows>();
        for (std::size_t i = 0; i < rows; ++i)
            plain->push_back(std::make_unique<Row>());
        return [plain] {
            Rows copy;
            return timeOf([&] {
                copy.reserve(plain->size());
                for (const auto& row : *plain)
                    copy.push_back(std::make_unique<Row>(*row));
            });
        };
    });
    state.counters.erase("target");
}

// Every other row goes.
void removeAfterRequest(benchmark::State& state) {
    compareSizes(state, [](std::size_t rows) {
        auto zor = std::make_shared<CZor>();
        addRegions(*zor, rows);
        bool isNew = false;
        for (CWindowsRegion* region : zor->m_vWindowsRegion)
            region->setFromDb(isNew = !isNew);
        return [zor] {
            CZor copy(*zor);
            return timeOf([&] { copy.removeAfterRequest(FOR_INSERT); });
        };
    });
}

// From all plexes to their regions, and from these to the disks and back to the plexes.
void walkingRelations(benchmark::State& state) {
    compareSizes(state, [](std::size_t rows) {
        auto zor = std::make_shared<CZor>();
        addRegions(*zor, rows);
        return [zor] {
            const std::vector<CWindowsPlex*> plexes(zor->m_vWindowsPlex.begin(), zor->m_vWindowsPlex.end());
            return timeOf([&] {
                const auto regions = FindReferring<CWindowsRegion>(*zor, plexes);
                benchmark::DoNotOptimize(FindReferred<CWindowsDisk>(*zor, regions).size());
                benchmark::DoNotOptimize(FindReferred<CWindowsPlex>(*zor, regions).size());
            });
        };
    });
}

BENCHMARK(reading)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(readingOneTable)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(readingAgain)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(writing)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(copyingPlainRows)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(copying)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(removeAfterRequest)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(walkingRelations)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace Zorvane::Bench

int main(int argc, char** argv) {
    if (argc > 1 && std::strcmp(argv[1], "--million") == 0) {
        Zorvane::Bench::g_large = 1'000'000;
        argv[1] = argv[0];
        --argc;
        ++argv;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
