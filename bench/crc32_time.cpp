// The CRC-32 of 1 GiB in memory by the launcher's fastest method, for where Google Benchmark is
// missing: Windows programs, and 32-bit ones.
// usage: crc32_time [ROUNDS]
// Prints the method's name and, a line for each round, the seconds that it took and the CRC.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "patch/crc32.h"

int main(int argc, char** argv) {
    // Four times a quarter: a 32-bit process has no room for a whole one.
    constexpr int Parts = 4;
    std::vector<std::uint32_t> words((std::size_t{1} << 28) / sizeof(std::uint32_t));
    std::mt19937 generator(1);
    for (std::uint32_t& word : words)
        word = static_cast<std::uint32_t>(generator());
    for (const Launcher::Crc32Method& method : Launcher::Crc32Methods()) {
        if (!method.isSupported()) continue;
        std::printf("%s\n", method.name);
        break;
    }
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 3;
    for (int round = 0; round < rounds; ++round) {
        const auto began = std::chrono::steady_clock::now();
        Launcher::Crc32 crc;
        for (int part = 0; part < Parts; ++part)
            crc.Update(std::as_bytes(std::span(words)));
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - began;
        std::printf("%.6f %08x\n", elapsed.count(), static_cast<unsigned>(crc.Value()));
    }
    return 0;
}
