#include "platform/processes.h"

#include <windows.h>

#include <tlhelp32.h>

#include "platform/steps.h"
#include "platform/win32/handles.h"

namespace Platform {

namespace {

constexpr LONG SmallestMainWindow = 200;

struct WindowSearch {
    DWORD processId;
    bool found;
};

bool IsMainWindow(HWND window) {
    RECT area;
    return IsWindowVisible(window) && GetWindow(window, GW_OWNER) == nullptr &&
           GetWindowRect(window, &area) && area.right - area.left >= SmallestMainWindow &&
           area.bottom - area.top >= SmallestMainWindow;
}

BOOL CALLBACK VisitWindow(HWND window, LPARAM parameter) {
    WindowSearch& search = *reinterpret_cast<WindowSearch*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    search.found = owner == search.processId && IsMainWindow(window);
    return !search.found;
}

}  // namespace

Error StartProcess(const ProcessStart& start, std::uint32_t& processId) {
    CountStep("start", start.application);
    std::wstring commandLine = start.commandLine;  // the system writes into it
    const wchar_t* folder = start.workingFolder.empty() ? nullptr : start.workingFolder.c_str();
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    DWORD flags = 0;
    if (start.hidden) {
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_HIDE;
        flags = CREATE_NO_WINDOW;
    }
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(start.application.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                        flags, nullptr, folder, &startup, &started)) {
        return LastError();
    }
    const Handle process(started.hProcess);
    const Handle thread(started.hThread);
    processId = started.dwProcessId;
    return Error::None;
}

[[noreturn]] void EndOwnProcess() {
    for (;;)
        TerminateProcess(GetCurrentProcess(), 1);
}

std::uint32_t OwnProcessId() {
    return GetCurrentProcessId();
}

std::vector<RunningProcess> ListProcesses() {
    std::vector<RunningProcess> processes;
    const Handle snapshot = OwnFile(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot) return processes;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more;
         more = Process32NextW(snapshot.get(), &entry)) {
        processes.push_back({entry.th32ProcessID, entry.szExeFile});
    }
    return processes;
}

std::wstring GetProcessImagePath(std::uint32_t processId) {
    const Handle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (!process) return {};
    wchar_t path[32768];  // the longest that the system can give
    DWORD length = static_cast<DWORD>(std::size(path));
    if (!QueryFullProcessImageNameW(process.get(), 0, path, &length)) return {};
    return std::wstring(path, length);
}

bool HasProcessEnded(std::uint32_t processId) {
    if (processId == 0) return true;
    const Handle process(OpenProcess(SYNCHRONIZE, FALSE, processId));
    return !process || WaitForSingleObject(process.get(), 0) != WAIT_TIMEOUT;
}

bool HasMainWindow(std::uint32_t processId) {
    WindowSearch search{processId, false};
    EnumWindows(VisitWindow, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

bool IsProcessIdle(std::uint32_t processId) {
    const Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | SYNCHRONIZE, FALSE, processId));
    return process && WaitForInputIdle(process.get(), 0) == 0;
}

}  // namespace Platform
