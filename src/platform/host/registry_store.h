#pragma once

#include <cstddef>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "platform/host/sqlite.h"
#include "platform/registry.h"

/// The machine's registry: an SQLite database that every process of the machine has open. A kill
/// at any instant leaves each change done or not done.
namespace Platform::Host {

/// Folds the case of a key's path and leaves out needless separators: what tells keys apart.
std::string RegistryKeyId(const std::wstring& path);

struct NamedRegistryValue {
    std::wstring name;
    RegistryValue value;
};

/// Keys are named by their ids; "" is the user's root. Any thread.
class RegistryStore {
public:
    /// The registry of this machine, opened at the first use.
    static RegistryStore& Instance();

    explicit RegistryStore(const std::string& file);
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    /// FileNotFound when there is no such key.
    [[nodiscard]] Error FindKey(const std::string& key);
    /// Makes the key and its parents where they are missing.
    [[nodiscard]] Error CreateKey(const std::wstring& path);
    /// Removes the key and all below it. FileNotFound when there is no such key.
    [[nodiscard]] Error RemoveTree(const std::string& key);
    /// The names of the keys right below, sorted without regard to case.
    [[nodiscard]] Error ListKeys(const std::string& key, std::vector<std::wstring>& names);

    /// FileNotFound when there is no such value.
    [[nodiscard]] Error ReadValue(const std::string& key, const std::wstring& name,
                                  RegistryValue& value);
    /// KeyDeleted when the key is gone.
    [[nodiscard]] Error WriteValue(const std::string& key, const std::wstring& name,
                                   RegistryType type, std::span<const std::byte> data);
    /// FileNotFound when there is no such value.
    [[nodiscard]] Error RemoveValue(const std::string& key, const std::wstring& name);
    /// Sorted by name without regard to case.
    [[nodiscard]] Error ListValues(const std::string& key, std::vector<NamedRegistryValue>& values);

private:
    Error Open(const std::string& file);
    int InsertKeys(const std::wstring& path);
    Error ErrorOfChange(int result) const;

    // One connection serves all threads of the process, one after the other.
    std::mutex mutex_;
    Sqlite::Database database_;
    Sqlite::Statement findKey_, insertKey_, removeTree_, listKeys_;
    Sqlite::Statement readValue_, writeValue_, removeValue_, listValues_;
    Error openError_;  ///< what every call answers when the registry could not be opened
};

}  // namespace Platform::Host
