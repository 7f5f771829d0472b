// The CRC-32 of 1 GiB in memory, by each method that this processor has and by ISA-L.
// Quote ratios of one run: crc32_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only

#include <benchmark/benchmark.h>
#include <isa-l/crc.h>
#include <random>
#include <vector>

#include "patch/crc32.h"

namespace {

constexpr std::size_t Size = std::size_t{1} << 30;

std::span<const std::byte> Bytes() {
    static const std::vector<std::uint64_t> words = [] {
        std::vector<std::uint64_t> random(Size / sizeof(std::uint64_t));
        std::mt19937_64 generator(1);
        for (std::uint64_t& word : random)
            word = generator();
        return random;
    }();
    return std::as_bytes(std::span(words));
}

std::uint32_t OfIsaL() {
    return crc32_gzip_refl(0, reinterpret_cast<const unsigned char*>(Bytes().data()), Size);
}

template <typename Function>
void Measure(benchmark::State& state, Function crc) {
    if (crc() != OfIsaL()) return state.SkipWithError("the two differ");
    for (auto _ : state)
        benchmark::DoNotOptimize(crc());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Size));
}

const bool registered = [] {
    benchmark::RegisterBenchmark("ISA-L", [](benchmark::State& state) { Measure(state, OfIsaL); });
    benchmark::RegisterBenchmark("Launcher::Crc32", [](benchmark::State& state) {
        Measure(state, [] { return Launcher::Crc32Of(Bytes()); });
    });
    for (const Launcher::Crc32Method& method : Launcher::Crc32Methods()) {
        if (!method.isSupported()) continue;
        benchmark::RegisterBenchmark(method.name, [method](benchmark::State& state) {
            Measure(state, [&] { return ~method.advance(0xFFFFFFFF, Bytes()); });
        });
    }
    return true;
}();

}  // namespace
