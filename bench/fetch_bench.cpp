// Fetches addresses back to back, as fetch jobs do: with checked certificates, hashed while they
// stream. usage: fetch_bench FOLDER < LIST_OF_ADDRESSES

#include <cstdio>
#include <iostream>
#include <string>

#include "patch/crc32.h"
#include "patch/fetch.h"
#include "platform/text.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::wstring folder = Platform::WideFromUtf8(argv[1]);
    Launcher::Crc32 crc;
    const Launcher::FetchSink sink = [&](std::span<const std::byte> bytes) { crc.Update(bytes); };
    int count = 0;
    for (std::string address; std::getline(std::cin, address); ++count) {
        const std::wstring destination = folder + L"\\" + std::to_wstring(count);
        std::wstring error;
        if (!Launcher::FetchFile(Platform::WideFromUtf8(address), destination, {}, {}, &error,
                                 sink)) {
            std::fprintf(stderr, "%s: %s\n", address.c_str(),
                         Platform::Utf8FromWide(error).c_str());
            return 1;
        }
    }
    std::printf("%d files, CRC of all %u\n", count, crc.Value());
    return 0;
}
