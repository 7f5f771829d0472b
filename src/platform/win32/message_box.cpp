#include "platform/message_box.h"

#include <windows.h>

namespace Platform {

void ShowErrorBox(const std::wstring& caption, const std::wstring& text) {
    MessageBoxW(nullptr, text.c_str(), caption.c_str(), MB_OK | MB_ICONERROR);
}

}  // namespace Platform
