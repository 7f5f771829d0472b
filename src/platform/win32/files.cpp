#include "platform/files.h"

#include <windows.h>

#include <algorithm>
#include <shlobj.h>
#include <utility>

#include "platform/steps.h"
#include "platform/win32/handles.h"

namespace Platform {

namespace {

constexpr std::size_t LargestTransfer = 1U << 30;  // one call counts in 32 bits

HANDLE AsHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

std::uint64_t Join(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32) | low;
}

DWORD AccessRights(unsigned access) {
    DWORD rights = 0;
    if (access & AccessRead) rights |= GENERIC_READ;
    if (access & AccessWrite) rights |= GENERIC_WRITE;
    if (access & AccessDelete) rights |= DELETE;
    return rights;
}

DWORD SharingRights(unsigned sharing) {
    DWORD rights = 0;
    if (sharing & ShareRead) rights |= FILE_SHARE_READ;
    if (sharing & ShareWrite) rights |= FILE_SHARE_WRITE;
    if (sharing & ShareDelete) rights |= FILE_SHARE_DELETE;
    return rights;
}

DWORD CreationOf(Disposition disposition) {
    switch (disposition) {
        case Disposition::CreateNew:
            return CREATE_NEW;
        case Disposition::CreateAlways:
            return CREATE_ALWAYS;
        case Disposition::OpenExisting:
            break;
    }
    return OPEN_EXISTING;
}

DWORD FlagsOf(const OpenOptions& options) {
    DWORD flags = options.deleteOnClose ? FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE
                                        : FILE_ATTRIBUTE_NORMAL;
    if (options.folder) flags |= FILE_FLAG_BACKUP_SEMANTICS;
    return flags;
}

bool IsDotEntry(const wchar_t* name) {
    return name[0] == L'.' && (name[1] == 0 || (name[1] == L'.' && name[2] == 0));
}

/// "\\\\?\\C:\\x" and "\\\\?\\UNC\\server\\share" as everybody else writes them.
std::wstring WithoutPrefix(std::wstring path) {
    constexpr std::wstring_view Prefix = L"\\\\?\\";
    constexpr std::wstring_view NetworkPrefix = L"\\\\?\\UNC\\";
    if (path.starts_with(NetworkPrefix)) return L"\\\\" + path.substr(NetworkPrefix.size());
    return path.starts_with(Prefix) ? path.substr(Prefix.size()) : path;
}

std::wstring SearchPattern(const std::wstring& folder) {
    const bool separated = folder.empty() || folder.back() == L'\\' || folder.back() == L'/';
    return folder + (separated ? L"*" : L"\\*");
}

}  // namespace

Error GetFileInfo(const std::wstring& path, FileInfo& info) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return LastError();
    info.attributes = data.dwFileAttributes;
    info.size = info.IsFolder() ? 0 : Join(data.nFileSizeHigh, data.nFileSizeLow);
    return Error::None;
}

bool PathExists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool IsExistingFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

Error GetFinalPath(const std::wstring& path, std::wstring& result) {
    const Handle file = OwnFile(CreateFileW(
        path.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file) return LastError();
    for (DWORD room = MAX_PATH;;) {
        result.resize(room);
        const DWORD length =
            GetFinalPathNameByHandleW(file.get(), result.data(), room, VOLUME_NAME_DOS);
        if (length == 0) return LastError();
        if (length < room) {
            result.resize(length);
            result = WithoutPrefix(std::move(result));
            return Error::None;
        }
        room = length + 1;
    }
}

Error GetIdentity(const std::wstring& path, std::wstring& result) {
    const Handle file = OwnFile(
        CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    BY_HANDLE_FILE_INFORMATION info;
    if (!file || !GetFileInformationByHandle(file.get(), &info)) return LastError();
    result = std::to_wstring(info.dwVolumeSerialNumber) + L"-" +
             std::to_wstring(Join(info.nFileIndexHigh, info.nFileIndexLow));
    return Error::None;
}

Error ChangeAttributes(const std::wstring& path, std::uint32_t attributes) {
    CountStep("attributes", path);
    return ErrorUnless(SetFileAttributesW(path.c_str(), attributes));
}

Error File::Open(const std::wstring& path, const OpenOptions& options) {
    Close();
    const bool creates = options.disposition != Disposition::OpenExisting;
    if (creates) CountStep("create", path);
    const HANDLE handle =
        CreateFileW(path.c_str(), AccessRights(options.access), SharingRights(options.sharing),
                    nullptr, CreationOf(options.disposition), FlagsOf(options), nullptr);
    if (handle == INVALID_HANDLE_VALUE) return LastError();
    handle_ = reinterpret_cast<std::intptr_t>(handle);
    if (creates) CountStep("fill", path);
    return Error::None;
}

Error File::Read(std::span<std::byte> buffer, std::size_t& got) {
    const DWORD wanted = static_cast<DWORD>(std::min(buffer.size(), LargestTransfer));
    DWORD transferred = 0;
    const Error error =
        ErrorUnless(ReadFile(AsHandle(handle_), buffer.data(), wanted, &transferred, nullptr));
    got = transferred;
    return error;
}

Error File::ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& got) {
    got = 0;
    while (got < buffer.size()) {
        const std::uint64_t position = offset + got;
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(position);
        place.OffsetHigh = static_cast<DWORD>(position >> 32);
        const auto rest = buffer.subspan(got);
        const DWORD wanted = static_cast<DWORD>(std::min(rest.size(), LargestTransfer));
        DWORD transferred = 0;
        if (!ReadFile(AsHandle(handle_), rest.data(), wanted, &transferred, &place)) {
            const DWORD error = GetLastError();
            return error == ERROR_HANDLE_EOF ? Error::None : static_cast<Error>(error);
        }
        if (transferred == 0) break;
        got += transferred;
    }
    return Error::None;
}

Error File::Write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const DWORD wanted = static_cast<DWORD>(std::min(bytes.size(), LargestTransfer));
        DWORD transferred = 0;
        if (!WriteFile(AsHandle(handle_), bytes.data(), wanted, &transferred, nullptr)) {
            return LastError();
        }
        if (transferred == 0) return Error::DiskFull;
        bytes = bytes.subspan(transferred);
    }
    return Error::None;
}

Error File::Flush() {
    return ErrorUnless(FlushFileBuffers(AsHandle(handle_)));
}

Error File::Secure() {
    return Flush();
}

Error File::GetSize(std::uint64_t& size) const {
    LARGE_INTEGER value;
    if (!GetFileSizeEx(AsHandle(handle_), &value)) return LastError();
    size = static_cast<std::uint64_t>(value.QuadPart);
    return Error::None;
}

void File::Close() {
    if (handle_ != -1) CloseHandle(AsHandle(std::exchange(handle_, -1)));
}

Error MovePath(const std::wstring& from, const std::wstring& to, const MoveOptions& options) {
    CountStep("move", from);
    DWORD flags = 0;
    if (options.replaceExisting) flags |= MOVEFILE_REPLACE_EXISTING;
    if (options.writeThrough) flags |= MOVEFILE_WRITE_THROUGH;
    if (options.copyAllowed) flags |= MOVEFILE_COPY_ALLOWED;
    return ErrorUnless(MoveFileExW(from.c_str(), to.c_str(), flags));
}

Error CopyFileTo(const std::wstring& from, const std::wstring& to, bool overwrite) {
    CountStep("copy", from);
    return ErrorUnless(CopyFileW(from.c_str(), to.c_str(), !overwrite));
}

Error RemoveFile(const std::wstring& path) {
    CountStep("remove", path);
    return ErrorUnless(DeleteFileW(path.c_str()));
}

Error MakeFolder(const std::wstring& path) {
    CountStep("folder", path);
    return ErrorUnless(CreateDirectoryW(path.c_str(), nullptr));
}

Error MakeFolderPath(const std::wstring& path) {
    CountStep("folders", path);
    std::wstring native = path;  // the shell, unlike the file calls, takes no other separator
    std::replace(native.begin(), native.end(), L'/', L'\\');
    return static_cast<Error>(SHCreateDirectoryExW(nullptr, native.c_str(), nullptr));
}

Error RemoveEmptyFolder(const std::wstring& path) {
    CountStep("remove folder", path);
    return ErrorUnless(RemoveDirectoryW(path.c_str()));
}

Error ListFolder(const std::wstring& folder, std::vector<FolderEntry>& entries) {
    entries.clear();
    WIN32_FIND_DATAW data;
    const HANDLE handle = FindFirstFileW(SearchPattern(folder).c_str(), &data);
    if (handle == INVALID_HANDLE_VALUE) {
        // A drive's root has no "." entry, so an empty one answers that nothing matches.
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND ? Error::None : static_cast<Error>(error);
    }
    const Search search(handle);
    do {
        if (IsDotEntry(data.cFileName)) continue;
        entries.push_back(
            {data.cFileName, data.dwFileAttributes, Join(data.nFileSizeHigh, data.nFileSizeLow)});
    } while (FindNextFileW(search.get(), &data));
    const DWORD error = GetLastError();
    return error == ERROR_NO_MORE_FILES ? Error::None : static_cast<Error>(error);
}

}  // namespace Platform
