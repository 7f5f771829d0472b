#include "platform/late_removal.h"

#include <windows.h>

#include "platform/paths.h"
#include "platform/processes.h"
#include "platform/win32/handles.h"

namespace Platform {

Error RemoveFolderLater(const std::wstring& folder, unsigned seconds) {
    const std::wstring system = GetSystemFolder();
    const std::wstring shell = system + L"\\cmd.exe";
    const std::wstring line = L"\"" + shell + L"\" /c timeout /t " + std::to_wstring(seconds) +
                              L" /nobreak >nul & rd /s /q \"" + folder + L"\"";
    std::uint32_t processId = 0;
    return StartProcess(
        {.application = shell, .commandLine = line, .workingFolder = system, .hidden = true},
        processId);
}

Error RemoveAtReboot(const std::wstring& path) {
    return ErrorUnless(MoveFileExW(path.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT));
}

}  // namespace Platform
