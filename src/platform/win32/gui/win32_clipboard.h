#pragma once

#include <windows.h>

#include "platform/clipboard.h"

namespace Platform::Win32 {

/// Owns a window that nobody sees: the clipboard takes text from owners of a window only.
class Win32Clipboard final : public Clipboard {
public:
    Win32Clipboard();
    ~Win32Clipboard() override;
    Win32Clipboard(const Win32Clipboard&) = delete;
    Win32Clipboard& operator=(const Win32Clipboard&) = delete;

    std::optional<std::wstring> ReadText() override;
    bool WriteText(const std::wstring& text) override;

private:
    HWND owner_;
};

}  // namespace Platform::Win32
