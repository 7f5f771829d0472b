#pragma once

#include <string>

namespace Platform {

/// Shows an error box without owner, with the error icon, and waits for its button.
/// On the host it is also written to standard error and to the machine's run folder, and without a
/// display that is all.
void ShowErrorBox(const std::wstring& caption, const std::wstring& text);

}  // namespace Platform
