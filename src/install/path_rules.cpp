#include "install/path_rules.h"

#include <array>

#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace Launcher {

namespace {

using Platform::ShellFolder;

constexpr std::array ProtectedVariables{L"ProgramFiles", L"ProgramFiles(x86)", L"ProgramW6432",
                                        L"SystemRoot"};

/// The length that the environment's buffer has: a longer value is passed over.
constexpr std::size_t LongestVariable = 259;

constexpr const wchar_t* Separators = L"\\/";

bool IsSeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

bool HasFolderBehindShare(const std::wstring& path) {
    const std::size_t serverEnd = path.find(L'\\', 2);
    if (serverEnd == std::wstring::npos) return false;
    const std::size_t shareEnd = path.find(L'\\', serverEnd + 1);
    return shareEnd != std::wstring::npos && shareEnd + 1 < path.size();
}

bool HasFolderBehindDrive(const std::wstring& path) {
    if (path[1] != L':' || !IsSeparator(path[2])) return false;
    const std::size_t backslash = path.find(L'\\');
    return backslash != std::wstring::npos && backslash + 1 < path.size();
}

}  // namespace

std::wstring WithoutTrailingSeparators(std::wstring path, std::size_t minimumLength) {
    while (path.size() > minimumLength && IsSeparator(path.back()))
        path.pop_back();
    return path;
}

std::wstring NormalisePath(const std::wstring& text) {
    std::wstring path;
    const std::size_t kept =
        text.size() >= 2 && IsSeparator(text[0]) && IsSeparator(text[1]) ? 2 : 1;
    for (const wchar_t character : text) {
        const bool doubled = path.size() >= kept && path.back() == L'\\' && IsSeparator(character);
        if (!doubled) path += IsSeparator(character) ? L'\\' : character;
    }
    return WithoutTrailingSeparators(std::move(path), 3);
}

bool IsSafeFolder(const std::wstring& path) {
    const std::wstring folder = WithoutTrailingSeparators(path, 1);
    if (folder.size() < 4) return false;
    const bool network = folder[0] == L'\\' && folder[1] == L'\\';
    if (network ? !HasFolderBehindShare(folder) : !HasFolderBehindDrive(folder)) return false;
    return !IsKnownShellFolder(folder);
}

bool IsKnownShellFolder(const std::wstring& path) {
    for (const ShellFolder folder : SystemFolders) {
        const std::wstring known = Platform::GetShellFolder(folder);
        if (!known.empty() && Platform::EqualIgnoringCase(path, known)) return true;
    }
    return false;
}

bool IsProtectedLocation(const std::wstring& path) {
    const std::wstring lower = Platform::LowerCase(path);
    for (const wchar_t* variable : ProtectedVariables) {
        const std::wstring value = Platform::GetEnvironmentText(variable);
        if (value.empty() || value.size() > LongestVariable) continue;
        if (lower.starts_with(Platform::LowerCase(value))) return true;
    }
    return false;
}

bool NeedsElevation(const std::wstring& path) {
    if (path.empty()) return false;
    std::wstring folder = path;
    while (!Platform::IsExistingFolder(folder)) {
        const std::size_t cut = folder.find_last_of(Separators);
        if (cut == std::wstring::npos) return IsProtectedLocation(path);
        folder.resize(cut);
    }
    Platform::File probe;
    const Platform::Error error = probe.Open(folder + L"\\.tolvan_wtest.tmp",
                                             {.access = Platform::AccessWrite,
                                              .sharing = Platform::ShareNone,
                                              .disposition = Platform::Disposition::CreateAlways,
                                              .deleteOnClose = true});
    if (error == Platform::Error::AccessDenied || error == Platform::Error::WriteProtected)
        return true;
    return Platform::Succeeded(error) && IsProtectedLocation(path);
}

bool CreateFolderPath(const std::wstring& path) {
    if (path.empty()) return false;
    const Platform::Error error = Platform::MakeFolderPath(path);
    return Platform::Succeeded(error) || error == Platform::Error::FileExists ||
           error == Platform::Error::AlreadyExists;
}

}  // namespace Launcher
