// SPDX-License-Identifier: Apache-2.0
// Traces that are off: one statement beside a disabled statement of the library that writes the files, a
// document read with open channels beside the same with the channels disabled, and whether a changed level
// counts at the next statement.
#include "bench/sampleRows.h"
#include "bench/sideBySide.h"
#include "logging/Trace.h"
#include "model/CZor.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>

namespace Zorvane {
namespace {

namespace fs = std::filesystem;

constexpr int ROUNDS = 15;

// Both channels, open on log files in a folder of their own.
class Channels {
  public:
    Channels() {
        std::string name = (fs::temp_directory_path() / "zor-bench-XXXXXX").string();
        m_folder = ::mkdtemp(name.data());
        configure(m_folder / "kvn.toml", 1);
        ::setenv("KVN_CONF", (m_folder / "kvn.toml").c_str(), 1);
        m_log = std::make_unique<CZorLog>(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR, ZOR_COMMAND_ORIGINATOR);
        g_libLog = m_log.get();
    }
    Channels(const Channels&) = delete;
    Channels& operator=(const Channels&) = delete;
    ~Channels() {
        g_libLog = nullptr;
        m_log.reset();
        fs::remove_all(m_folder);
    }

    void configure(const fs::path& file, int level) const {
        std::ofstream(file) << "[logging]\ndirectory = \"" << m_folder.string() << "\"\ndebug = " << level
                            << "\n";
    }
    [[nodiscard]] fs::path file() const { return m_folder / "kvn.toml"; }

  private:
    fs::path m_folder;
    std::unique_ptr<CZorLog> m_log;
};

void silentStatement(benchmark::State& state) {
    constexpr int statements = 2'000'000;
    const Channels channels;
    spdlog::logger other("other", std::make_shared<spdlog::sinks::null_sink_st>());
    other.set_level(spdlog::level::info);
    const std::string name = "ledger01.corp.example";
    Bench::Medians medians;
    for ([[maybe_unused]] auto _ : state)
        medians = Bench::runByTurns(
            ROUNDS,
            [&] {
                return Bench::timeOf([&] {
                    for (int i = 0; i < statements; ++i)
                        g_libLog->WriteDebugMsg(DEBUG_FLAGS, LEVEL_TRACE, "bench:statement()",
                                                "Entering, line=", i, ", name=", name);
                });
            },
            [&] {
                return Bench::timeOf([&] {
                    for (int i = 0; i < statements; ++i)
                        other.debug("Entering, line={}{}{}", i, ", name=", name);
                });
            });
    Bench::report(state, medians, 1.5);
    state.counters["ours_ns"] = medians.ours / statements * 1e9;
    state.counters["spdlog_ns"] = medians.theirs / statements * 1e9;
}
BENCHMARK(silentStatement)->Iterations(1)->Unit(benchmark::kMillisecond);

void reading(benchmark::State& state) {
    Bench::keepHeapWarm();
    const std::string document = Bench::mixedDocument(100'000);
    const Channels channels;
    const auto read = [&] {
        return Bench::timeOf([&] {
            CZor zor;
            std::string bytes = document; // the reader takes them as its own
            zor.readXml(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size()),
                        FOR_ALL);
            zor.clear(true);
        });
    };
    Bench::Medians medians;
    for ([[maybe_unused]] auto _ : state)
        medians = Bench::runByTurns(
            5,
            [&] {
                g_libLog->enable();
                return read();
            },
            [&] {
                g_libLog->disable();
                return read();
            });
    Bench::report(state, medians, 1.03);
}
BENCHMARK(reading)->Iterations(1)->Unit(benchmark::kMillisecond);

void changedLevel(benchmark::State& state) {
    constexpr int changes = 200;
    const Channels channels;
    const fs::path next = channels.file().string() + ".new";
    const auto countSeen = [&](const std::function<void(int)>& change) {
        int seen = 0;
        for (int i = 0; i < changes; ++i) {
            const int level = 2 + i % 4;
            change(level);
            seen += g_libLog->passesDebug(level) && !g_libLog->passesDebug(level + 1) ? 1 : 0;
        }
        return seen;
    };
    for ([[maybe_unused]] auto _ : state) {
        state.counters["rewritten_seen"] =
            countSeen([&](int level) { channels.configure(channels.file(), level); });
        state.counters["renamed_seen"] = countSeen([&](int level) {
            channels.configure(next, level);
            fs::rename(next, channels.file());
        });
    }
    state.counters["of"] = changes;
}
BENCHMARK(changedLevel)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zorvane
