#include "install/registry_record.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <optional>

#include "platform/registry.h"
#include "platform/utf16.h"

namespace Launcher {

namespace {

static_assert(std::endian::native == std::endian::little, "the registry's numbers are copied");

std::optional<Platform::RegistryValue> ReadValue(const wchar_t* path, const wchar_t* name) {
    Platform::RegistryKey key;
    Platform::RegistryValue value;
    if (!Platform::Succeeded(key.Open(path, Platform::RegistryAccess::Read)) ||
        !Platform::Succeeded(key.Read(name, value))) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::uint32_t RegistryRecord::ReadDword(const wchar_t* name, std::uint32_t fallback) const {
    const std::optional<Platform::RegistryValue> value = ReadValue(path_, name);
    if (value && !value->data.empty()) {
        std::memcpy(&fallback, value->data.data(), std::min(value->data.size(), sizeof fallback));
    }
    return fallback;
}

std::wstring RegistryRecord::ReadString(const wchar_t* name, const std::wstring& fallback) const {
    const std::optional<Platform::RegistryValue> value = ReadValue(path_, name);
    if (!value || value->type != Platform::RegistryType::String || value->data.empty()) {
        return fallback;
    }
    std::wstring text = Platform::WideFromUtf16(value->data);
    text.erase(text.find_last_not_of(L'\0') + 1);
    return text;
}

// The writes are dropped when they fail: no caller could do anything about it.

void RegistryRecord::WriteDword(const wchar_t* name, std::uint32_t value) const {
    Platform::RegistryKey key;
    if (Platform::Succeeded(key.Create(path_))) (void)key.WriteDword(name, value);
}

void RegistryRecord::WriteBool(const wchar_t* name, bool value) const {
    WriteDword(name, value ? 1 : 0);
}

void RegistryRecord::WriteString(const wchar_t* name, const std::wstring& text) const {
    Platform::RegistryKey key;
    if (Platform::Succeeded(key.Create(path_))) (void)key.WriteString(name, text);
}

}  // namespace Launcher
