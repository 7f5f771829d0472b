#pragma once

#include <dlfcn.h>

namespace Platform::Host {

/// A library that is loaded only by those who need it, and stays until the process ends: code of
/// it may run in threads and exit handlers of its own.
class SharedLibrary {
public:
    explicit SharedLibrary(const char* name) : handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {}

    /// False when the library or the function is missing.
    template <typename Function>
    bool Find(const char* name, Function& function) const {
        if (handle_ == nullptr) return false;
        function = reinterpret_cast<Function>(dlsym(handle_, name));
        return function != nullptr;
    }

private:
    void* handle_;
};

}  // namespace Platform::Host
