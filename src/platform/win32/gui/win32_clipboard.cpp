#include "platform/win32/gui/win32_clipboard.h"

#include <cstring>
#include <memory>

namespace Platform::Win32 {

namespace {

/// The clipboard while this program has it open.
class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner) : open_(OpenClipboard(owner) != FALSE) {}
    ~OpenedClipboard() {
        if (open_) CloseClipboard();
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;
    explicit operator bool() const { return open_; }

private:
    bool open_;
};

struct FreeMemory {
    using pointer = HGLOBAL;
    void operator()(HGLOBAL memory) const { GlobalFree(memory); }
};
using Memory = std::unique_ptr<void, FreeMemory>;

/// Text in the shape that the clipboard wants, with a zero at its end.
Memory CopyText(const std::wstring& text) {
    const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
    Memory memory(GlobalAlloc(GMEM_MOVEABLE, size));
    void* place = memory ? GlobalLock(memory.get()) : nullptr;
    if (!place) return nullptr;
    std::memcpy(place, text.c_str(), size);
    GlobalUnlock(memory.get());
    return memory;
}

}  // namespace

Win32Clipboard::Win32Clipboard()
    : owner_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             GetModuleHandleW(nullptr), nullptr)) {}

Win32Clipboard::~Win32Clipboard() {
    if (owner_) DestroyWindow(owner_);
}

std::optional<std::wstring> Win32Clipboard::ReadText() {
    const OpenedClipboard opened(owner_);
    if (!opened) return std::nullopt;
    const HANDLE memory = GetClipboardData(CF_UNICODETEXT);
    const auto* text = memory ? static_cast<const wchar_t*>(GlobalLock(memory)) : nullptr;
    if (!text) return std::nullopt;
    // Another program wrote it: it may lack the zero.
    std::wstring result(text, wcsnlen(text, GlobalSize(memory) / sizeof(wchar_t)));
    GlobalUnlock(memory);
    return result;
}

bool Win32Clipboard::WriteText(const std::wstring& text) {
    Memory memory = CopyText(text);
    const OpenedClipboard opened(owner_);
    if (!opened || !memory || !EmptyClipboard()) return false;
    if (!SetClipboardData(CF_UNICODETEXT, memory.get())) return false;
    // It belongs to the system now.
    static_cast<void>(memory.release());
    return true;
}

}  // namespace Platform::Win32
