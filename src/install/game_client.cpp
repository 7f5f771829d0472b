#include "install/game_client.h"

#include "common/path_text.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/resources.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr std::uint16_t MarkerResource = 1;

constexpr const wchar_t* PlainNames[] = {L"Tolvan Online_x64.exe", L"Tolvan Online_x86.exe",
                                         L"Tolvan Online.exe"};

bool RunsX64(Platform::Architecture architecture) {
    return architecture == Platform::Architecture::X64 ||
           architecture == Platform::Architecture::Arm64;
}

bool IsExistingFile(const std::wstring& path) {
    Platform::FileInfo info;
    return Platform::Succeeded(Platform::GetFileInfo(path, info)) && !info.IsFolder();
}

}  // namespace

std::vector<std::wstring> ClientFileNames(Platform::Architecture architecture) {
    std::vector<std::wstring> names;
    for (const wchar_t* prefix : {L".", L""}) {
        for (const std::wstring plain : PlainNames) {
            if (plain.find(L"_x64") != plain.npos && !RunsX64(architecture)) continue;
            names.push_back(prefix + plain);
        }
    }
    return names;
}

std::wstring FindClient(const std::wstring& folder) {
    if (folder.empty()) return {};
    for (const std::wstring& name : ClientFileNames(Platform::GetNativeArchitecture())) {
        std::wstring path = JoinPath(folder, name);
        if (IsExistingFile(path) && !IsLauncherFile(path)) return path;
    }
    return {};
}

bool IsLauncherFile(const std::wstring& path) {
    return Platform::FindResourceInFile(path, MarkerResource) == Platform::ResourceSearch::Found;
}

std::vector<std::uint32_t> RunningClients(const std::wstring& folder) {
    const std::wstring client = FindClient(folder);
    const std::wstring name = FileNameOf(client);
    std::vector<std::uint32_t> running;
    if (name.empty()) return running;

    for (const Platform::RunningProcess& process : Platform::ListProcesses()) {
        if (process.id == 0 || process.id == Platform::OwnProcessId()) continue;
        if (!Platform::EqualIgnoringCase(process.fileName, name)) continue;
        if (name.starts_with(L'.') ||
            Platform::EqualIgnoringCase(Platform::GetProcessImagePath(process.id), client)) {
            running.push_back(process.id);
        }
    }
    return running;
}

std::size_t CountRunningClients(const std::wstring& folder) {
    return RunningClients(folder).size();
}

}  // namespace Launcher
