#include "platform/registry.h"

#include <windows.h>

#include <utility>

#include "platform/steps.h"

namespace Platform {

namespace {

HKEY AsKey(std::uintptr_t handle) {
    return reinterpret_cast<HKEY>(handle);
}

}  // namespace

RegistryKey::~RegistryKey() {
    Close();
}

Error RegistryKey::Open(const std::wstring& path, RegistryAccess access) {
    Close();
    HKEY key = nullptr;
    const LSTATUS status =
        RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0,
                      access == RegistryAccess::Write ? KEY_WRITE : KEY_READ, &key);
    if (status == ERROR_SUCCESS) handle_ = reinterpret_cast<std::uintptr_t>(key);
    return static_cast<Error>(status);
}

Error RegistryKey::Create(const std::wstring& path) {
    Close();
    CountStep("key", path);
    HKEY key = nullptr;
    const LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0,
                                           KEY_WRITE, nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) handle_ = reinterpret_cast<std::uintptr_t>(key);
    return static_cast<Error>(status);
}

Error RegistryKey::Read(const std::wstring& name, RegistryValue& value) const {
    value.data.resize(64);
    for (;;) {
        DWORD type = REG_NONE;
        DWORD size = static_cast<DWORD>(value.data.size());
        const LSTATUS status = RegQueryValueExW(AsKey(handle_), name.c_str(), nullptr, &type,
                                                reinterpret_cast<BYTE*>(value.data.data()), &size);
        // Another process may make the value larger between two tries.
        const bool grown = status == ERROR_MORE_DATA;
        value.data.resize(status == ERROR_SUCCESS || grown ? size : 0);
        if (grown) continue;
        value.type = static_cast<RegistryType>(type);
        return static_cast<Error>(status);
    }
}

Error RegistryKey::Write(const std::wstring& name, RegistryType type,
                         std::span<const std::byte> data) {
    CountStep("value", name);
    return static_cast<Error>(RegSetValueExW(
        AsKey(handle_), name.c_str(), 0, static_cast<DWORD>(type),
        reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size())));
}

Error RegistryKey::WriteDword(const std::wstring& name, std::uint32_t value) {
    return Write(name, RegistryType::Dword, std::as_bytes(std::span(&value, 1)));
}

Error RegistryKey::WriteString(const std::wstring& name, const std::wstring& text) {
    const std::span withTerminator(text.c_str(), text.size() + 1);
    return Write(name, RegistryType::String, std::as_bytes(withTerminator));
}

void RegistryKey::Close() {
    if (handle_ != 0) RegCloseKey(AsKey(std::exchange(handle_, 0)));
}

Error RemoveRegistryTree(const std::wstring& path) {
    // The system would take an empty path for all that the user has.
    if (path.find_first_not_of(L'\\') == std::wstring::npos) return Error::InvalidParameter;
    CountStep("remove key", path);
    return static_cast<Error>(RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str()));
}

}  // namespace Platform
