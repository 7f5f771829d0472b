#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "platform/fonts.h"

namespace DirectGL {

/// The families that the program brings along. Registered and built on the message thread before
/// the first text is made; a format made earlier takes the system's fonts.
class PrivateFontBook {
public:
    explicit PrivateFontBook(Platform::PrivateFonts& fonts) : fonts_(fonts) {}

    /// The bytes are copied. False, with a line in the log, when the system cannot do it.
    [[nodiscard]] bool Register(std::span<const std::byte> file, const std::wstring& family);
    /// Makes the collection of all that was registered; without any it does nothing.
    void Build();
    /// Whether formats take this family from the collection: the very same characters.
    bool Holds(const std::wstring& family) const;

private:
    Platform::PrivateFonts& fonts_;
    std::vector<std::wstring> families_;
    bool built_ = false;
};

}  // namespace DirectGL
