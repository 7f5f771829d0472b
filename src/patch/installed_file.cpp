#include "patch/installed_file.h"

#include <algorithm>

#include "patch/crc32.h"
#include "patch/file_wrapper.h"
#include "platform/files.h"

namespace Launcher {
namespace {

/// Up to this size a file is read in one piece: that takes no longer than two reads of its ends.
constexpr std::uint64_t SmallFileSize = 4096;

bool ReadExactly(Platform::File& file, std::uint64_t offset, std::span<std::byte> bytes) {
    std::size_t got = 0;
    return Platform::Succeeded(file.ReadAt(offset, bytes, got)) && got == bytes.size();
}

std::optional<std::uint32_t> HashRange(Platform::File& file, std::uint64_t offset,
                                       std::uint64_t length, const std::stop_token& stop,
                                       std::span<std::byte> buffer) {
    Crc32 crc;
    while (length > 0) {
        if (stop.stop_requested()) return std::nullopt;
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), length));
        std::size_t got = 0;
        if (!Platform::Succeeded(file.ReadAt(offset, buffer.first(wanted), got)) || got == 0) {
            return std::nullopt;
        }
        crc.Update(buffer.first(got));
        offset += got;
        length -= got;
    }
    return crc.Value();
}

std::optional<std::uint32_t> HashLargeFile(Platform::File& file, std::uint64_t size,
                                           HashDepth depth, const std::stop_token& stop,
                                           std::span<std::byte> buffer) {
    WrapperHeader header;
    const auto payloadSize =
        ReadExactly(file, 0, header) ? WrappedPayloadSize(header, size) : std::nullopt;
    if (!payloadSize) return HashRange(file, 0, size, stop, buffer);
    WrapperTrailer trailer;
    if (depth == HashDepth::Trailer &&
        ReadExactly(file, WrapperHeaderSize + *payloadSize, trailer)) {
        return StoredCrc(trailer);
    }
    return HashRange(file, WrapperHeaderSize, *payloadSize, stop, buffer);
}

std::uint32_t HashBytes(std::span<const std::byte> file, HashDepth depth) {
    if (file.size() < WrapperOverhead) return Crc32Of(file);
    WrapperHeader header;
    std::ranges::copy(file.first<WrapperHeaderSize>(), header.begin());
    const auto payloadSize = WrappedPayloadSize(header, file.size());
    if (!payloadSize) return Crc32Of(file);
    if (depth == HashDepth::Trailer) {
        WrapperTrailer trailer;
        std::ranges::copy(file.last<WrapperTrailerSize>(), trailer.begin());
        return StoredCrc(trailer);
    }
    return Crc32Of(file.subspan(WrapperHeaderSize, static_cast<std::size_t>(*payloadSize)));
}

}  // namespace

std::optional<InstalledFile> HashInstalledFile(const std::wstring& path, HashDepth depth,
                                               const std::stop_token& stop,
                                               std::span<std::byte> buffer) {
    Platform::File file;
    std::uint64_t size = 0;
    if (stop.stop_requested() || !Platform::Succeeded(file.Open(path, {})) ||
        !Platform::Succeeded(file.GetSize(size))) {
        return std::nullopt;
    }
    if (size > std::min<std::uint64_t>(SmallFileSize, buffer.size())) {
        const auto crc = HashLargeFile(file, size, depth, stop, buffer);
        return crc ? std::optional(InstalledFile{*crc, size}) : std::nullopt;
    }
    const auto content = buffer.first(static_cast<std::size_t>(size));
    if (!ReadExactly(file, 0, content)) return std::nullopt;
    return InstalledFile{HashBytes(content, depth), size};
}

}  // namespace Launcher
