#pragma once

#include <optional>
#include <string>

namespace Platform {

/// The text clipboard of the desktop. Message thread only.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// None when the clipboard holds no text or another program keeps it busy.
    virtual std::optional<std::wstring> ReadText() = 0;
    /// False when the clipboard is busy. The text stays there after the program's end where the
    /// window system keeps it.
    [[nodiscard]] virtual bool WriteText(const std::wstring& text) = 0;
};

}  // namespace Platform
