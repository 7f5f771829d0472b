#include "assets/texts.h"

#include <unordered_map>

namespace Launcher {

namespace {

struct DefaultText {
    const char* key;
    const wchar_t* english;
};

/// What stands when no text file says otherwise.
constexpr DefaultText Defaults[] = {
    {"ST_PREFLIGHT", L"Pre-flight checks passed"},
    {"ST_PREFLIGHT_T", L"Running pre-flight checks"},
    {"ST_FETCH_BASE", L"Creating the game folder"},
    {"ST_FETCH_BASE_T", L"Downloading game files"},
    {"ST_FETCH_FULL", L"Downloading game data"},
    {"ST_FETCH_FULL_T", L"Downloading game data"},
    {"ST_FETCH_CLIENT", L"Installing the game client"},
    {"ST_FETCH_CLIENT_T", L"Downloading the game client"},
    {"ST_FETCH_CORE", L"Installing the launcher"},
    {"ST_FETCH_CORE_T", L"Downloading the launcher"},
    {"ST_VERIFY", L"Verifying file integrity"},
    {"ST_REGISTRY", L"Writing registry & default config"},
    {"ST_UNINST", L"Registering uninstaller"},
    {"ST_DESKTOP", L"Creating desktop shortcut"},
    {"ST_STARTMENU", L"Creating Start menu entry"},
    {"SUB_D3D_FIND", L"Checking for the shader compiler"},
    {"SUB_PREFLIGHT", L"Deploying the shader compiler"},
    {"SUB_REG_OPEN", L"Opening the settings key"},
    {"SUB_REGISTRY", L"Writing default configuration"},
    {"SUB_REG_LANG", L"Storing your language choice"},
    {"SUB_ARP_DELIVER", L"Placing the launcher in the game folder"},
    {"SUB_UNINST2", L"Registering with Add or remove programs"},
    {"SUB_LINK_FIND", L"Locating the shortcut folder"},
    {"SUB_LINK_DIR", L"Creating the Start menu folder"},
    {"SUB_DESKTOP", L"Writing Tolvan Online.lnk to the desktop"},
    {"SUB_STARTMENU", L"Adding Tolvan Online to the Start menu"},
    {"SUB_MANIFEST", L"Reading the file list"},
    {"SUB_SECURE", L"Preparing the game client"},
    {"SUB_VERIFY", L"Checking installed files"},
    {"SUB_VERIFY2", L"Counting installed files"},
    {"SUB_UNINST", L"Measuring the installed size"},
    {"UN_REMOVE_REG", L"Removing registry keys"},
    {"UN_REMOVE_LNK", L"Removing shortcuts"},
    {"UN_REMOVE_ARP", L"Removing Add/Remove Programs entry"},
    {"UN_REMOVE_FILES", L"Removing program files"},
};

using TextTable = std::unordered_map<std::string_view, std::wstring>;

const TextTable& EnglishTexts() {
    static const TextTable table = [] {
        TextTable texts;
        for (const DefaultText& text : Defaults)
            texts.emplace(text.key, text.english);
        return texts;
    }();
    return table;
}

}  // namespace

std::int32_t g_currentLanguage = 0;

const std::wstring& Tr(std::int32_t /*language: English is all there is so far*/,
                       std::string_view key) {
    static const std::wstring emptyText;
    const auto found = EnglishTexts().find(key);
    return found == EnglishTexts().end() ? emptyText : found->second;
}

}  // namespace Launcher
