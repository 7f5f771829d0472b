#include "platform/paths.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <unistd.h>

#include "platform/host/host_path.h"
#include "platform/host/machine.h"
#include "platform/text.h"

namespace Platform {

namespace {

std::string ReadProgramLink() {
    char program[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", program, sizeof program);
    return length > 0 ? std::string(program, static_cast<std::size_t>(length)) : std::string();
}

// At the start, before the file can be renamed.
const std::string g_program = ReadProgramLink();

constexpr struct {
    ShellFolder folder;
    const wchar_t* path;
} ShellFolders[] = {
    {ShellFolder::Personal, L"C:\\Users\\Player\\Documents"},
    {ShellFolder::Programs,
     L"C:\\Users\\Player\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs"},
    {ShellFolder::DesktopDirectory, L"C:\\Users\\Player\\Desktop"},
    {ShellFolder::AppData, L"C:\\Users\\Player\\AppData\\Roaming"},
    {ShellFolder::LocalAppData, L"C:\\Users\\Player\\AppData\\Local"},
    {ShellFolder::CommonAppData, L"C:\\ProgramData"},
    {ShellFolder::Windows, L"C:\\Windows"},
    {ShellFolder::System, L"C:\\Windows\\System32"},
    {ShellFolder::ProgramFiles, L"C:\\Program Files"},
    {ShellFolder::Profile, L"C:\\Users\\Player"},
    {ShellFolder::SystemX86, L"C:\\Windows\\SysWOW64"},
    {ShellFolder::ProgramFilesX86, L"C:\\Program Files (x86)"},
    {ShellFolder::ProgramFilesCommon, L"C:\\Program Files\\Common Files"},
};

// The machine's own; all others are the process's.
constexpr struct {
    const wchar_t* name;
    const wchar_t* value;
} Variables[] = {
    {L"APPDATA", L"C:\\Users\\Player\\AppData\\Roaming"},
    {L"LOCALAPPDATA", L"C:\\Users\\Player\\AppData\\Local"},
    {L"ProgramData", L"C:\\ProgramData"},
    {L"ProgramFiles", L"C:\\Program Files"},
    {L"ProgramFiles(x86)", L"C:\\Program Files (x86)"},
    {L"ProgramW6432", L"C:\\Program Files"},
    {L"SystemDrive", L"C:"},
    {L"SystemRoot", L"C:\\Windows"},
    {L"TEMP", L"C:\\Users\\Player\\AppData\\Local\\Temp"},
    {L"TMP", L"C:\\Users\\Player\\AppData\\Local\\Temp"},
    {L"USERNAME", L"Player"},
    {L"USERPROFILE", L"C:\\Users\\Player"},
    {L"windir", L"C:\\Windows"},
};

}  // namespace

std::wstring OwnPath() {
    const std::wstring path = Host::WindowsPathOfProgram(g_program);
    return path.size() <= Host::LongestPath ? path : std::wstring();
}

std::wstring GetShellFolder(ShellFolder folder) {
    for (const auto& known : ShellFolders) {
        if (known.folder == folder) return known.path;
    }
    return {};
}

std::wstring GetSystemFolder() {
    return GetShellFolder(ShellFolder::System);
}

std::wstring GetTempFolder() {
    return GetEnvironmentText(L"TEMP") + L'\\';
}

void RestrictLibrarySearch() {
    // The host's loader takes libraries from the system's folders only.
}

std::wstring GetEnvironmentText(const std::wstring& name) {
    for (const auto& variable : Variables) {
        if (EqualIgnoringCase(name, variable.name)) return variable.value;
    }
    const char* value = std::getenv(Utf8FromWide(name).c_str());
    return value != nullptr ? WideFromUtf8(value) : std::wstring();
}

}  // namespace Platform
