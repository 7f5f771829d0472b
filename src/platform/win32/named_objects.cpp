#include "platform/named_objects.h"

#include <windows.h>

#include <utility>

#include "platform/win32/handles.h"

namespace Platform {

namespace {

HANDLE AsHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

/// Takes over what CreateMutexW or CreateEventW gave; the last error is still theirs.
Error Adopt(HANDLE created, std::intptr_t& handle, bool& existed) {
    const DWORD error = GetLastError();
    existed = created != nullptr && error == ERROR_ALREADY_EXISTS;
    handle = reinterpret_cast<std::intptr_t>(created);
    return created != nullptr ? Error::None : static_cast<Error>(error);
}

}  // namespace

Error NamedMutex::Create(const std::wstring& name, bool& existed) {
    Close();
    return Adopt(CreateMutexW(nullptr, FALSE, name.c_str()), handle_, existed);
}

void NamedMutex::Close() {
    if (handle_ != 0) CloseHandle(AsHandle(std::exchange(handle_, 0)));
}

Error NamedEvent::Create(const std::wstring& name, bool& existed) {
    Close();
    return Adopt(CreateEventW(nullptr, TRUE, FALSE, name.c_str()), handle_, existed);
}

Error NamedEvent::Open(const std::wstring& name, unsigned rights) {
    Close();
    DWORD access = 0;
    if (rights & EventWait) access |= SYNCHRONIZE;
    if (rights & EventModify) access |= EVENT_MODIFY_STATE;
    const HANDLE handle = OpenEventW(access, FALSE, name.c_str());
    if (handle == nullptr) return LastError();
    handle_ = reinterpret_cast<std::intptr_t>(handle);
    return Error::None;
}

Error NamedEvent::Set() {
    return ErrorUnless(SetEvent(AsHandle(handle_)));
}

Error NamedEvent::Reset() {
    return ErrorUnless(ResetEvent(AsHandle(handle_)));
}

bool NamedEvent::IsSet() const {
    return handle_ != 0 && WaitForSingleObject(AsHandle(handle_), 0) == WAIT_OBJECT_0;
}

void NamedEvent::Close() {
    if (handle_ != 0) CloseHandle(AsHandle(std::exchange(handle_, 0)));
}

}  // namespace Platform
