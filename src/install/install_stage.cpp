#include "install/install_stage.h"

#include <array>

#include "assets/texts.h"

namespace Launcher {

namespace {

struct StageRow {
    StageKind kind;
    const char* labelKey;
    const char* titleKey;
    double weight;
    bool InstallOptions::*option;  ///< the choice that brings the stage; null: always there
};

constexpr std::array InstallRows{
    StageRow{StageKind::Preflight, "ST_PREFLIGHT", "ST_PREFLIGHT_T", 0.3, nullptr},
    StageRow{StageKind::FetchBase, "ST_FETCH_BASE", "ST_FETCH_BASE_T", 4.0, nullptr},
    StageRow{StageKind::FetchFull, "ST_FETCH_FULL", "ST_FETCH_FULL_T", 78.0,
             &InstallOptions::fullDownload},
    StageRow{StageKind::FetchClient, "ST_FETCH_CLIENT", "ST_FETCH_CLIENT_T", 8.0, nullptr},
    StageRow{StageKind::FetchCore, "ST_FETCH_CORE", "ST_FETCH_CORE_T", 4.0, nullptr},
    StageRow{StageKind::Verify, "ST_VERIFY", "ST_VERIFY", 0.5, nullptr},
    StageRow{StageKind::Registry, "ST_REGISTRY", "ST_REGISTRY", 0.3, nullptr},
    StageRow{StageKind::RegisterUninstall, "ST_UNINST", "ST_UNINST", 0.3, nullptr},
    StageRow{StageKind::Desktop, "ST_DESKTOP", "ST_DESKTOP", 0.3, &InstallOptions::desktopShortcut},
    StageRow{StageKind::StartMenu, "ST_STARTMENU", "ST_STARTMENU", 0.3,
             &InstallOptions::startMenuEntry},
};

constexpr double SettingsWeight = 6.0;
constexpr double FilesWeight = 80.0;

constexpr std::array StageKeys{
    "ST_PREFLIGHT",    "ST_FETCH_BASE", "ST_FETCH_FULL", "ST_FETCH_CLIENT", "ST_FETCH_CORE",
    "ST_VERIFY",       "ST_REGISTRY",   "ST_UNINST",     "ST_DESKTOP",      "ST_STARTMENU",
    "UN_REMOVE_FILES", "UN_REMOVE_REG", "UN_REMOVE_LNK", "UN_REMOVE_ARP",
};

Stage UninstallStage(StageKind kind, double weight) {
    const std::wstring& text = Tr(g_currentLanguage, StageKey(kind));
    return {.label = text, .title = text, .weight = weight, .kind = kind};
}

}  // namespace

const char* StageKey(StageKind kind) {
    const auto index = static_cast<std::size_t>(kind);
    return index < StageKeys.size() ? StageKeys[index] : StageKeys[0];
}

std::vector<Stage> InstallStages(const InstallOptions& options) {
    std::vector<Stage> stages;
    for (const StageRow& row : InstallRows) {
        if (row.option && !(options.*row.option)) continue;
        stages.push_back({.label = Tr(g_currentLanguage, row.labelKey),
                          .title = Tr(g_currentLanguage, row.titleKey),
                          .weight = row.weight,
                          .kind = row.kind});
    }
    return stages;
}

std::vector<Stage> UninstallStages(bool keepSettings) {
    std::vector<Stage> stages;
    if (!keepSettings) {
        stages.push_back(UninstallStage(StageKind::RemoveSettings, SettingsWeight));
    }
    stages.push_back(UninstallStage(StageKind::RemoveShortcuts, 6.0));
    stages.push_back(UninstallStage(StageKind::RemoveEntry, 8.0));
    stages.push_back(UninstallStage(StageKind::RemoveFiles,
                                    keepSettings ? FilesWeight + SettingsWeight : FilesWeight));
    return stages;
}

double TotalWeight(const std::vector<Stage>& stages) {
    double sum = 0.0;
    for (const Stage& stage : stages)
        sum += stage.weight;
    return sum > 0.0 ? sum : 1.0;
}

}  // namespace Launcher
