#include "platform/paths.h"

#include <windows.h>

#include <shlobj.h>

#include "platform/win32/handles.h"

namespace Platform {

std::wstring OwnPath() {
    wchar_t buffer[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    return length < MAX_PATH ? std::wstring(buffer, length) : std::wstring();
}

std::wstring GetShellFolder(ShellFolder folder) {
    wchar_t buffer[MAX_PATH];
    const HRESULT result = SHGetFolderPathW(nullptr, static_cast<int>(folder), nullptr, 0, buffer);
    return result == S_OK ? buffer : std::wstring();
}

std::wstring GetSystemFolder() {
    wchar_t buffer[MAX_PATH];
    const UINT length = GetSystemDirectoryW(buffer, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return L"C:\\Windows\\System32";
    return std::wstring(buffer, length);
}

std::wstring GetTempFolder() {
    wchar_t buffer[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, buffer);
    return length <= MAX_PATH ? std::wstring(buffer, length) : std::wstring();
}

Error ChangeCurrentFolder(const std::wstring& folder) {
    return ErrorUnless(SetCurrentDirectoryW(folder.c_str()));
}

void RestrictLibrarySearch() {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_USER_DIRS);
}

std::wstring GetEnvironmentText(const std::wstring& name) {
    std::wstring value;
    for (DWORD room = MAX_PATH;;) {
        value.resize(room);
        const DWORD length = GetEnvironmentVariableW(name.c_str(), value.data(), room);
        if (length < room) {
            value.resize(length);
            return value;
        }
        room = length;  // what it takes with the terminating zero
    }
}

}  // namespace Platform
