// SPDX-License-Identifier: Apache-2.0
// A METHOD_EXECUTE with three parameters packed and unpacked, beside copying its bytes there and back. The
// parameters are short (a conversion's own) or fill the packet.
#include "bench/sideBySide.h"
#include "ops/packets.h"

#include <cstring>
#include <string>

namespace Zorvane {
namespace {

constexpr int ROUNDS = 15;
constexpr int PACKETS = 200'000;

MethodExecute requestWith(std::size_t textSize) {
    MethodExecute request;
    request.count = 3;
    char* place = request.parameters.text.data();
    for (const char letter : {'a', 'b', 'c'}) {
        std::memset(place, letter, textSize);
        place += textSize;
        *place++ = '\0';
    }
    return request;
}

void methodExecute(benchmark::State& state) {
    MethodExecute request = requestWith(static_cast<std::size_t>(state.range(0)));
    MethodExecute received;
    std::array<unsigned char, PACKET_BUFFER_SIZE> buffer{};
    std::array<unsigned char, PACKET_BUFFER_SIZE> copy{};
    const int length = request.walk(&Pack, buffer.data());
    const auto size = static_cast<std::size_t>(length);
    Bench::Medians medians;
    for ([[maybe_unused]] auto _ : state)
        medians = Bench::runByTurns(
            ROUNDS,
            [&] {
                return Bench::timeOf([&] {
                    for (int i = 0; i < PACKETS; ++i) {
                        benchmark::DoNotOptimize(request.walk(&Pack, buffer.data()));
                        benchmark::DoNotOptimize(received.walk(&Unack, buffer.data()));
                        benchmark::ClobberMemory();
                    }
                });
            },
            [&] {
                return Bench::timeOf([&] {
                    for (int i = 0; i < PACKETS; ++i) {
                        std::memcpy(copy.data(), buffer.data(), size);
                        benchmark::ClobberMemory();
                        std::memcpy(buffer.data(), copy.data(), size);
                        benchmark::ClobberMemory();
                    }
                });
            });
    Bench::report(state, medians, 3);
    state.counters["bytes"] = length;
    state.counters["ours_ns"] = medians.ours / PACKETS * 1e9;
    state.counters["copy_ns"] = medians.theirs / PACKETS * 1e9;
}
BENCHMARK(methodExecute)->Arg(20)->Arg(1340)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zorvane
