#pragma once

#include <windows.h>

#include <wrl/client.h>

#include "platform/created.h"

/// Owners of the system's counted objects.
namespace Platform::Win32 {

template <class T>
using Com = Microsoft::WRL::ComPtr<T>;

constexpr GraphicsResult ResultOf(HRESULT result) {
    return SUCCEEDED(result) ? GraphicsOk : static_cast<GraphicsResult>(result);
}

/// Keeps the system's components usable on every thread of the program, whether or not a thread
/// has asked for them itself.
class ComponentsInUse {
public:
    ComponentsInUse();
    ~ComponentsInUse();
    ComponentsInUse(const ComponentsInUse&) = delete;
    ComponentsInUse& operator=(const ComponentsInUse&) = delete;

private:
    CO_MTA_USAGE_COOKIE cookie_ = nullptr;
};

}  // namespace Platform::Win32
