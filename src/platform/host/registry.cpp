#include "platform/registry.h"

#include <memory>
#include <utility>

#include "platform/host/registry_store.h"
#include "platform/steps.h"
#include "platform/utf16.h"

namespace Platform {

namespace {

using Host::RegistryStore;

/// What a handle stands for.
struct OpenKey {
    std::string id;
    RegistryAccess access;
};

OpenKey* AsKey(std::uintptr_t handle) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the port keeps handles as numbers.
    return reinterpret_cast<OpenKey*>(handle);
}

std::uintptr_t MakeHandle(const std::wstring& path, RegistryAccess access) {
    auto key = std::make_unique<OpenKey>(OpenKey{Host::RegistryKeyId(path), access});
    return reinterpret_cast<std::uintptr_t>(key.release());
}

}  // namespace

RegistryKey::~RegistryKey() {
    Close();
}

Error RegistryKey::Open(const std::wstring& path, RegistryAccess access) {
    Close();
    const Error error = RegistryStore::Instance().FindKey(Host::RegistryKeyId(path));
    if (Succeeded(error)) handle_ = MakeHandle(path, access);
    return error;
}

Error RegistryKey::Create(const std::wstring& path) {
    Close();
    CountStep("key", path);
    const Error error = RegistryStore::Instance().CreateKey(path);
    if (Succeeded(error)) handle_ = MakeHandle(path, RegistryAccess::Write);
    return error;
}

Error RegistryKey::Read(const std::wstring& name, RegistryValue& value) const {
    if (handle_ == 0) return Error::InvalidHandle;
    const OpenKey& key = *AsKey(handle_);
    if (key.access != RegistryAccess::Read) return Error::AccessDenied;
    return RegistryStore::Instance().ReadValue(key.id, name, value);
}

Error RegistryKey::Write(const std::wstring& name, RegistryType type,
                         std::span<const std::byte> data) {
    if (handle_ == 0) return Error::InvalidHandle;
    const OpenKey& key = *AsKey(handle_);
    if (key.access != RegistryAccess::Write) return Error::AccessDenied;
    CountStep("value", name);
    return RegistryStore::Instance().WriteValue(key.id, name, type, data);
}

Error RegistryKey::WriteDword(const std::wstring& name, std::uint32_t value) {
    return Write(name, RegistryType::Dword, std::as_bytes(std::span(&value, 1)));
}

Error RegistryKey::WriteString(const std::wstring& name, const std::wstring& text) {
    // The terminating zero belongs to the data.
    const std::wstring_view withTerminator(text.c_str(), text.size() + 1);
    return Write(name, RegistryType::String, Utf16FromWide(withTerminator));
}

void RegistryKey::Close() {
    const std::unique_ptr<OpenKey> key(AsKey(std::exchange(handle_, 0)));
}

Error RemoveRegistryTree(const std::wstring& path) {
    const std::string key = Host::RegistryKeyId(path);
    if (key.empty()) return Error::InvalidParameter;
    CountStep("remove key", path);
    return RegistryStore::Instance().RemoveTree(key);
}

}  // namespace Platform
