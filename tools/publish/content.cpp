#include "content.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <span>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <vector>

#include "patch/crc32.h"
#include "patch/file_wrapper.h"
#include "platform/host/descriptor.h"

namespace Publish {

namespace {

using Platform::Host::Descriptor;

constexpr std::size_t BlockSize = std::size_t{256} * 1024;

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& reason) {
    throw std::runtime_error(file.string() + ": " + reason);
}

[[noreturn]] void FailBySystem(const std::filesystem::path& file) {
    Fail(file, std::generic_category().message(errno));
}

std::int64_t Nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

Stamp ToStamp(const struct stat& status) {
    return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
            Nanoseconds(status.st_mtim), Nanoseconds(status.st_ctim)};
}

/// A file that is read from its begin to its end.
class Input {
public:
    explicit Input(const std::filesystem::path& path)
        : path_(path), file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), begin_(ReadStamp()) {}

    std::uint64_t Size() const { return begin_.size; }

    /// Fills the buffer, unless the file ends before.
    std::size_t Read(std::span<std::byte> buffer) {
        std::size_t done = 0;
        while (done < buffer.size()) {
            const ssize_t count = ::read(file_.Get(), buffer.data() + done, buffer.size() - done);
            if (count < 0) FailBySystem(path_);
            if (count == 0) break;
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

    void Rewind() {
        if (::lseek(file_.Get(), 0, SEEK_SET) != 0) FailBySystem(path_);
    }

    void CheckUnchanged(std::uint64_t bytesRead) const {
        if (bytesRead != begin_.size || ReadStamp() != begin_) {
            Fail(path_, "changed while it was read");
        }
    }

    /// The payload's size when the file is wrapped; the file is at its begin before and after.
    std::optional<std::uint64_t> WrappedPayload() {
        Launcher::WrapperHeader header{};
        const std::size_t count = Read(header);
        Rewind();
        if (count < header.size()) return std::nullopt;
        return Launcher::WrappedPayloadSize(header, begin_.size);
    }

private:
    Stamp ReadStamp() const {
        struct stat status {};
        if (!file_ || ::fstat(file_.Get(), &status) != 0) FailBySystem(path_);
        return ToStamp(status);
    }

    const std::filesystem::path& path_;
    Descriptor file_;
    Stamp begin_;
};

/// A new file, or nothing when only the CRC is wanted.
class Output {
public:
    explicit Output(const std::filesystem::path& path) : path_(path) {
        if (path.empty()) return;
        // Nobody writes into a published file again: it may be shared with other releases.
        file_ = Descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0444));
        if (!file_) FailBySystem(path);
    }

    void Write(std::span<const std::byte> bytes) {
        while (file_ && !bytes.empty()) {
            const ssize_t count = ::write(file_.Get(), bytes.data(), bytes.size());
            if (count < 0) FailBySystem(path_);
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }

private:
    const std::filesystem::path& path_;
    Descriptor file_;
};

std::vector<std::byte>& ThreadBlock() {
    thread_local std::vector<std::byte> block(BlockSize);
    return block;
}

/// Copies what is left of the input, at most limit bytes, and runs the CRC over it.
std::uint64_t Copy(Input& input, Output& output, std::uint64_t limit, Launcher::Crc32& crc,
                   const BytesRead& progress) {
    std::vector<std::byte>& block = ThreadBlock();
    std::uint64_t done = 0;
    while (done < limit) {
        const std::span<std::byte> room(
            block.data(),
            static_cast<std::size_t>(std::min<std::uint64_t>(BlockSize, limit - done)));
        const std::span<std::byte> bytes = room.first(input.Read(room));
        if (bytes.empty()) break;
        crc.Update(bytes);
        output.Write(bytes);
        done += bytes.size();
        progress(bytes.size());
    }
    return done;
}

Content WriteUnchanged(Input& input, Output& output, const BytesRead& progress) {
    Launcher::Crc32 crc;
    input.CheckUnchanged(Copy(input, output, input.Size() + 1, crc, progress));
    return {input.Size(), crc.Value()};
}

Content Wrap(Input& input, Output& output, const BytesRead& progress) {
    Launcher::Crc32 crc;
    output.Write(Launcher::MakeWrapperHeader(input.Size()));
    input.CheckUnchanged(Copy(input, output, input.Size() + 1, crc, progress));
    output.Write(Launcher::MakeWrapperTrailer(crc.Value()));
    return {input.Size() + Launcher::WrapperOverhead, crc.Value()};
}

Content CopyWrapped(const std::filesystem::path& source, Input& input, Output& output,
                    std::uint64_t payload, const BytesRead& progress) {
    Launcher::WrapperHeader header{};
    Launcher::WrapperTrailer trailer{};
    Launcher::Crc32 crc;
    std::uint64_t done = input.Read(header);
    output.Write(header);
    done += Copy(input, output, payload, crc, progress);
    done += input.Read(trailer);
    output.Write(trailer);
    input.CheckUnchanged(done);
    if (Launcher::StoredCrc(trailer) != crc.Value()) {
        Fail(source, "is wrapped already, but its payload does not have the CRC in its trailer");
    }
    return {input.Size(), crc.Value()};
}

bool SameBytes(Input& left, Input& right, std::uint64_t count, const BytesRead& progress) {
    std::vector<std::byte>& block = ThreadBlock();
    const std::span<std::byte> leftBlock(block.data(), BlockSize / 2);
    const std::span<std::byte> rightBlock(block.data() + BlockSize / 2, BlockSize / 2);
    while (count > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, BlockSize / 2));
        if (left.Read(leftBlock.first(wanted)) != wanted) return false;
        if (right.Read(rightBlock.first(wanted)) != wanted) return false;
        if (std::memcmp(leftBlock.data(), rightBlock.data(), wanted) != 0) return false;
        count -= wanted;
        progress(wanted);
    }
    return true;
}

}  // namespace

Stamp StampOf(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) FailBySystem(file);
    return ToStamp(status);
}

bool WouldEqual(const std::filesystem::path& source, Form form,
                const std::filesystem::path& published, const BytesRead& progress) {
    Input input(source);
    Input output(published);
    if (form == Form::Plain || input.WrappedPayload()) {
        return input.Size() == output.Size() && SameBytes(input, output, input.Size(), progress);
    }
    Launcher::WrapperHeader header{};
    return input.Size() + Launcher::WrapperOverhead == output.Size() &&
           output.Read(header) == header.size() &&
           header == Launcher::MakeWrapperHeader(input.Size()) &&
           SameBytes(input, output, input.Size(), progress);
}

Content Write(const std::filesystem::path& source, Form form, const std::filesystem::path& target,
              const BytesRead& progress) {
    Input input(source);
    Output output(target);
    if (form == Form::Plain) return WriteUnchanged(input, output, progress);
    const auto payload = input.WrappedPayload();
    return payload ? CopyWrapped(source, input, output, *payload, progress)
                   : Wrap(input, output, progress);
}

}  // namespace Publish
