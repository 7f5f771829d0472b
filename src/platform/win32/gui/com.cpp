#include "platform/win32/gui/com.h"

namespace Platform::Win32 {

namespace {

/// Systems before Windows 8 lack the two calls; there a thread has to ask for itself.
template <class Function>
Function* FindCall(const char* name) {
    return reinterpret_cast<Function*>(GetProcAddress(GetModuleHandleW(L"ole32.dll"), name));
}

}  // namespace

ComponentsInUse::ComponentsInUse() {
    const auto increment = FindCall<HRESULT WINAPI(CO_MTA_USAGE_COOKIE*)>("CoIncrementMTAUsage");
    if (increment) increment(&cookie_);
}

ComponentsInUse::~ComponentsInUse() {
    const auto decrement = FindCall<HRESULT WINAPI(CO_MTA_USAGE_COOKIE)>("CoDecrementMTAUsage");
    if (decrement && cookie_) decrement(cookie_);
}

}  // namespace Platform::Win32
