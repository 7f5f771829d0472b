#pragma once

#include <windows.h>

#include <memory>

#include "platform/error.h"

/// Owners of the system's handles. An empty owner is null, also where the system's own mark of
/// failure is INVALID_HANDLE_VALUE.
namespace Platform {

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

/// Owns what CreateFileW or CreateToolhelp32Snapshot gave.
inline Handle OwnFile(HANDLE handle) {
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

struct SearchCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { FindClose(handle); }
};
using Search = std::unique_ptr<void, SearchCloser>;

struct LibraryCloser {
    using pointer = HMODULE;
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using Library = std::unique_ptr<HMODULE, LibraryCloser>;

inline Error LastError() {
    return static_cast<Error>(GetLastError());
}

/// What a call that answers with a BOOL ended with.
inline Error ErrorUnless(BOOL succeeded) {
    return succeeded ? Error::None : LastError();
}

}  // namespace Platform
