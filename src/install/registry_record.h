#pragma once

#include <cstdint>
#include <string>

namespace Launcher {

/// One key of the settings registry. Nothing is cached and every call opens the key anew, so a
/// value that the game changed is seen at the next read. No call tells a failure: a read can give
/// nothing but the value or the default, and a write that does not work is dropped. Any thread.
class RegistryRecord {
public:
    /// path lies below the user's root.
    explicit RegistryRecord(const wchar_t* path) : path_(path) {}

    const wchar_t* Path() const { return path_; }

    /// The type is not looked at: a value of another one gives its first four bytes, and a shorter
    /// one leaves the rest of the default's bytes.
    std::uint32_t ReadDword(const wchar_t* name, std::uint32_t fallback) const;
    /// Only a string that is not empty counts; zeros at its end are cut.
    std::wstring ReadString(const wchar_t* name, const std::wstring& fallback) const;

    void WriteDword(const wchar_t* name, std::uint32_t value) const;
    void WriteBool(const wchar_t* name, bool value) const;
    void WriteString(const wchar_t* name, const std::wstring& text) const;

private:
    const wchar_t* path_;
};

}  // namespace Launcher
