#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/error.h"

/// The user's settings registry: keys that hold typed values, all below the current user's root
/// ("Software\..."). Names are compared without regard to case. Any thread; every write is seen
/// by the next read of any process, and a kill at any instant leaves each value old or new.
namespace Platform {

enum class RegistryType : std::uint32_t { String = 1, Binary = 3, Dword = 4 };

struct RegistryValue {
    RegistryType type = RegistryType::Binary;
    /// A string is UTF-16 little-endian with its terminating zero; a number 4 bytes little-endian.
    std::vector<std::byte> data;
};

enum class RegistryAccess { Read, Write };

/// An open key. Reading needs Read access and writing Write access (AccessDenied); a value of a key
/// that was removed meanwhile is neither read nor written.
class RegistryKey {
public:
    RegistryKey() = default;
    ~RegistryKey();
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    /// FileNotFound when the key is missing.
    [[nodiscard]] Error Open(const std::wstring& path, RegistryAccess access);
    /// Opens the key for writing and makes it, with its parents, where it is missing.
    [[nodiscard]] Error Create(const std::wstring& path);

    /// FileNotFound when the value is missing.
    [[nodiscard]] Error Read(const std::wstring& name, RegistryValue& value) const;
    [[nodiscard]] Error Write(const std::wstring& name, RegistryType type,
                              std::span<const std::byte> data);
    [[nodiscard]] Error WriteDword(const std::wstring& name, std::uint32_t value);
    [[nodiscard]] Error WriteString(const std::wstring& name, const std::wstring& text);

    void Close();

private:
    std::uintptr_t handle_ = 0;
};

/// Removes a key with all below it. FileNotFound when there is none, InvalidParameter for the root.
[[nodiscard]] Error RemoveRegistryTree(const std::wstring& path);

}  // namespace Platform
