#include "body.h"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace Server {

namespace {

constexpr char Filler = 'x';

class Text final : public Body {
public:
    explicit Text(std::string text) : text_(std::move(text)) {}

    std::optional<std::uint64_t> Size() const override { return text_.size(); }

    void Read(std::uint64_t offset, std::span<char> buffer) const override {
        const std::size_t start = std::min<std::size_t>(offset, text_.size());
        const std::size_t count = std::min(buffer.size(), text_.size() - start);
        std::memcpy(buffer.data(), text_.data() + start, count);
        std::ranges::fill(buffer.subspan(count), Filler);
    }

private:
    std::string text_;
};

class FileImage final : public Body {
public:
    FileImage(Descriptor file, std::uint64_t size) : file_(std::move(file)), size_(size) {}

    std::optional<std::uint64_t> Size() const override { return size_; }
    int File() const override { return file_.Get(); }

    void Read(std::uint64_t offset, std::span<char> buffer) const override {
        std::size_t done = 0;
        while (done < buffer.size()) {
            const ssize_t count = ::pread(file_.Get(), buffer.data() + done, buffer.size() - done,
                                          static_cast<off_t>(offset + done));
            if (count <= 0) break;
            done += static_cast<std::size_t>(count);
        }
        std::ranges::fill(buffer.subspan(done), Filler);
    }

private:
    Descriptor file_;
    std::uint64_t size_;
};

class Junk final : public Body {
public:
    explicit Junk(std::uint64_t size) : size_(size) {}

    std::optional<std::uint64_t> Size() const override { return size_; }

    void Read(std::uint64_t offset, std::span<char> buffer) const override {
        for (char& byte : buffer) {
            byte = static_cast<char>(Mix(offset / 8) >> (offset % 8 * 8));
            ++offset;
        }
    }

private:
    static std::uint64_t Mix(std::uint64_t value) {
        value = (value + 1) * 0x9E3779B97F4A7C15;
        value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
        value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
        return value ^ (value >> 31);
    }

    std::uint64_t size_;
};

class List final : public Body {
public:
    explicit List(std::optional<std::uint64_t> size) : size_(size) {
        if (size_) *size_ -= *size_ % LineSize;
    }

    std::optional<std::uint64_t> Size() const override { return size_; }

    void Read(std::uint64_t offset, std::span<char> buffer) const override {
        while (!buffer.empty()) {
            const std::string line = Line(offset / LineSize);
            const std::size_t start = offset % LineSize;
            const std::size_t count = std::min(buffer.size(), LineSize - start);
            std::memcpy(buffer.data(), line.data() + start, count);
            buffer = buffer.subspan(count);
            offset += count;
        }
    }

private:
    /// Every line has the same length, so that a place in the list tells its line.
    static std::string Line(std::uint64_t number) {
        std::string digits = std::to_string(number % 1'000'000'000'000);
        digits.insert(0, 12 - digits.size(), '0');
        return "made/up/" + digits + ".dat=1234567890\t65556\n";
    }

    static constexpr std::size_t LineSize = 8 + 12 + 4 + 1 + 10 + 1 + 5 + 1;

    std::optional<std::uint64_t> size_;
};

}  // namespace

std::unique_ptr<Body> TextBody(std::string text) {
    return std::make_unique<Text>(std::move(text));
}

std::unique_ptr<Body> FileBody(Descriptor file, std::uint64_t size) {
    return std::make_unique<FileImage>(std::move(file), size);
}

std::unique_ptr<Body> JunkBody(std::uint64_t size) {
    return std::make_unique<Junk>(size);
}

std::unique_ptr<Body> ListBody(std::optional<std::uint64_t> size) {
    return std::make_unique<List>(size);
}

}  // namespace Server
