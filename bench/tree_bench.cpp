// Walks a folder of the machine as an install or an uninstall does.
// usage: tree_bench measure|remove FOLDER
// Prints the bytes and files that were measured, or the files that were removed.

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "install/folder_tree.h"
#include "platform/text.h"

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const std::wstring folder = Platform::WideFromUtf8(argv[2]);
    std::uint64_t bytes = 0;
    std::uint64_t files = 0;
    if (std::string_view(argv[1]) == "measure") {
        Launcher::FolderStat(folder, bytes, files);
        std::printf("%llu %llu\n", static_cast<unsigned long long>(bytes),
                    static_cast<unsigned long long>(files));
        return files > 0 ? 0 : 1;
    }
    const bool removed = Launcher::RemoveInstallFolder(folder, [&files] { ++files; });
    std::printf("%llu\n", static_cast<unsigned long long>(files));
    return removed ? 0 : 1;
}
