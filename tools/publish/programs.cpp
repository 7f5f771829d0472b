#include "programs.h"

#include <algorithm>
#include <fstream>

namespace Publish {

namespace {

/// The resource that tells a launcher from any other program.
constexpr std::uint16_t MarkerResource = 1;

}  // namespace

const Program* FindProgram(std::string_view path) {
    const auto* found = std::ranges::find(Programs, path, &Program::path);
    return found == Programs.end() ? nullptr : found;
}

std::string_view ProblemWithProgram(const Program& program, const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const Platform::ImageReader reader = [&](std::uint64_t offset, std::span<std::byte> buffer) {
        in.clear();
        in.seekg(static_cast<std::streamoff>(offset));
        in.read(reinterpret_cast<char*>(buffer.data()),
                static_cast<std::streamsize>(buffer.size()));
        return static_cast<std::size_t>(in.gcount());
    };
    // The host build's programs have the same names, and are ELF files.
    const bool isPe = Platform::ReadPeMachine(reader) != 0;
    const std::uint16_t machine =
        isPe ? Platform::ReadPeMachine(reader) : Platform::ReadElfMachine(reader);
    const Platform::ImageSearch marker = isPe ? Platform::FindPeResource(reader, MarkerResource)
                                              : Platform::FindElfResource(reader, MarkerResource);
    const bool isMarked = marker.result == Platform::ResourceSearch::Found;

    if (machine == 0) return "is no program";
    if (program.machine != 0 && machine != program.machine) return "is for another processor";
    if (program.isLauncher && !isMarked) return "is no launcher: it lacks a launcher's mark";
    if (!program.isLauncher && isMarked) return "is a launcher, not a client";
    return {};
}

}  // namespace Publish
