#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "patch/fetch_job.h"
#include "platform/text.h"

using namespace Launcher;

namespace {

void Demand(bool condition) {
    if (!condition) std::abort();
}

/// Judges by the standard library's view of paths what a job may write to.
void DemandInside(std::wstring_view finalPath, std::wstring_view folder) {
    Demand(finalPath.starts_with(folder));
    std::string rest = Platform::Utf8FromWide(finalPath.substr(folder.size()));
    for (char& character : rest) {
        Demand(character != ':' && character != '\0');
        if (character == '\\') character = '/';
    }
    const std::filesystem::path path = std::filesystem::path(rest).lexically_normal();
    Demand(path.is_relative() && path.has_filename() && *path.begin() != "..");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        const auto entry = ParseLine(text.substr(0, end));
        text.remove_prefix(end);
        if (!entry) continue;
        Demand(entry->path.starts_with(L"Data/") && entry->hash.find('\t') == std::string::npos);

        const std::wstring folder = L"C:\\Game\\";
        const auto job = MakeFetchJob("https://host/", folder, *entry, true);
        if (!job) continue;
        DemandInside(job->finalPath, folder);
        DemandInside(job->partPath, folder);
        for (const wchar_t character : job->url)
            Demand(character > L' ' && character < 0x7F);
    }
    return 0;
}
