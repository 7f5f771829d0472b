#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "system.h"

namespace Server {

/// The bytes of an answer, to be read at any place. One thread at a time.
class Body {
public:
    virtual ~Body() = default;
    /// Empty for a body without an end.
    virtual std::optional<std::uint64_t> Size() const = 0;
    /// Fills the whole buffer with what stands at offset; behind the end, and where a file has
    /// become shorter, with "x".
    virtual void Read(std::uint64_t offset, std::span<char> buffer) const = 0;
    /// The file that the body is a plain image of, or -1.
    virtual int File() const { return -1; }
};

std::unique_ptr<Body> TextBody(std::string text);
std::unique_ptr<Body> FileBody(Descriptor file, std::uint64_t size);
/// Bytes that look random and are the same each time.
std::unique_ptr<Body> JunkBody(std::uint64_t size);
/// Lines of an update list, cut to whole lines; without a size it never ends.
std::unique_ptr<Body> ListBody(std::optional<std::uint64_t> size);

}  // namespace Server
