#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The stages that an install or an uninstall walks through, as a list with weights.
namespace Launcher {

enum class StageKind : std::int32_t {
    Preflight = 0,
    FetchBase = 1,
    FetchFull = 2,
    FetchClient = 3,
    FetchCore = 4,
    Verify = 5,
    Registry = 6,
    RegisterUninstall = 7,
    Desktop = 8,
    StartMenu = 9,
    RemoveFiles = 10,
    RemoveSettings = 11,
    RemoveShortcuts = 12,
    RemoveEntry = 13,
};

/// The text key of a stage's row; the preflight's for a value that is none.
const char* StageKey(StageKind kind);

struct Stage {
    std::wstring label;   ///< translated, the row once the stage is done
    std::wstring title;   ///< translated, shown while it runs
    double weight = 0.0;  ///< relative share of the progress bar
    StageKind kind = StageKind::Preflight;
};

struct InstallOptions {
    std::wstring path;  ///< install folder, normalised
    bool desktopShortcut = false;
    bool startMenuEntry = false;
    bool fullDownload = false;
    std::int32_t language = 0;         ///< index in the text table, written as LANGUAGE
    std::uint64_t estimatedBytes = 0;  ///< registered when the folder cannot be measured
};

std::vector<Stage> InstallStages(const InstallOptions& options);
/// With keepSettings their stage is left out, and its weight goes to the files.
std::vector<Stage> UninstallStages(bool keepSettings);

/// The sum of the weights, or 1 when it is not above 0.
double TotalWeight(const std::vector<Stage>& stages);

}  // namespace Launcher
