#include "support/wine.h"

#include <windows.h>

bool TestSupport::UnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}
