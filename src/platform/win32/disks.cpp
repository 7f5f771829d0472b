#include "platform/disks.h"

#include <windows.h>

#include "platform/win32/handles.h"

namespace Platform {

Error GetDiskSpace(const std::wstring& root, DiskSpace& space) {
    ULARGE_INTEGER available;
    ULARGE_INTEGER total;
    if (!GetDiskFreeSpaceExW(root.c_str(), &available, &total, nullptr)) return LastError();
    space.freeBytes = available.QuadPart;
    space.totalBytes = total.QuadPart;
    return Error::None;
}

std::vector<std::wstring> ListFixedDrives() {
    std::vector<std::wstring> drives;
    const DWORD present = GetLogicalDrives();
    for (unsigned index = 0; index < 26; ++index) {
        if ((present & (1U << index)) == 0) continue;
        const std::wstring drive{static_cast<wchar_t>(L'A' + index), L':'};
        if (GetDriveTypeW((drive + L"\\").c_str()) == DRIVE_FIXED) drives.push_back(drive);
    }
    return drives;
}

}  // namespace Platform
