#include <windows.h>

#include "support/helper_process.h"

void TestSupport::KillProcess(std::uint32_t processId) {
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, processId);
    if (process == nullptr) return;
    TerminateProcess(process, 9);
    CloseHandle(process);
}
