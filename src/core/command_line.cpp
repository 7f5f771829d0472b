#include "core/command_line.h"

#include <algorithm>
#include <cwchar>
#include <limits>

namespace Launcher {

namespace {

struct FlagSwitch {
    std::wstring_view name;
    bool Switches::*field;
};

constexpr FlagSwitch Flags[] = {
    {L"--nopatch", &Switches::noPatch},    {L"--uninstall", &Switches::uninstall},
    {L"--force32", &Switches::force32},    {L"--minimizetest", &Switches::minimizeTest},
    {L"--eulaend", &Switches::licenceEnd}, {L"--checkonly", &Switches::checkOnly},
    {L"--selftest", &Switches::selfTest},
};

struct PageSwitch {
    std::wstring_view name;
    State page;
};

// Searched in this order; the first one that occurs wins.
constexpr PageSwitch Pages[] = {
    {L"--page=home", State::Ready},
    {L"--page=patch", State::Ready},
    {L"--page=lang", State::FirstRunLanguage},
    {L"--page=license", State::License},
    {L"--page=setup", State::Setup},
    {L"--page=picker", State::FolderPicker},
    {L"--page=install", State::Install},
    {L"--page=finish", State::InstallDone},
    {L"--page=manage", State::Manage},
    {L"--page=uninstall", State::UninstallConfirm},
    {L"--page=problem", State::Problem},
    {L"--page=notfound", State::ManageBroken},
    {L"--page=repair", State::Repair},
    {L"--page=relocate", State::Move},
    {L"--page=removed", State::UninstallDone},
    {L"--page=settings", State::Settings},
};

constexpr double DefaultAutoQuitSeconds = 2.0;

bool Contains(std::wstring_view text, std::wstring_view part) {
    return text.find(part) != std::wstring_view::npos;
}

/// The text behind the first occurrence of name.
std::optional<std::wstring> TextBehind(std::wstring_view text, std::wstring_view name) {
    const std::size_t found = text.find(name);
    if (found == std::wstring_view::npos) return std::nullopt;
    return std::wstring(text.substr(found + name.size()));
}

/// The number at the beginning of the text, 0 when there is none, the nearest one out of range.
template <typename Integer>
Integer LeadingInteger(const std::wstring& text) {
    using Limits = std::numeric_limits<Integer>;
    const long long value = std::wcstoll(text.c_str(), nullptr, 10);
    return static_cast<Integer>(std::clamp<long long>(value, Limits::min(), Limits::max()));
}

int IndexBehind(std::wstring_view text, std::wstring_view name) {
    const std::optional<std::wstring> behind = TextBehind(text, name);
    return behind ? LeadingInteger<int>(*behind) : -1;
}

Simulation ReadSimulation(std::wstring_view commandLine) {
    Simulation simulation;
    simulation.on = Contains(commandLine, L"--simulate");
    simulation.fail = Contains(commandLine, L"--simulate=fail");
    simulation.cancel = Contains(commandLine, L"--simulate=cancel");
    if (Contains(commandLine, L"--simulate=slow")) simulation.speed = 0.25F;
    if (Contains(commandLine, L"--simulate=fast")) simulation.speed = 4.0F;
    return simulation;
}

std::optional<double> ReadAutoQuit(std::wstring_view commandLine) {
    if (!Contains(commandLine, L"--autoquit")) return std::nullopt;
    const std::optional<std::wstring> text = TextBehind(commandLine, L"--autoquit=");
    const double seconds = text ? std::wcstod(text->c_str(), nullptr) : 0.0;
    return seconds > 0.0 ? seconds : DefaultAutoQuitSeconds;
}

std::optional<State> ReadPage(std::wstring_view commandLine) {
    for (const PageSwitch& entry : Pages) {
        if (Contains(commandLine, entry.name)) return entry.page;
    }
    return std::nullopt;
}

bool ReadTopmost(std::wstring_view commandLine) {
    constexpr std::wstring_view Name = L"--topmost";
    for (std::size_t at = commandLine.find(Name); at != std::wstring_view::npos;
         at = commandLine.find(Name, at + 1)) {
        const std::size_t end = at + Name.size();
        if (end == commandLine.size() || commandLine[end] == L' ' || commandLine[end] == L'\t') {
            return true;
        }
    }
    return false;
}

std::optional<std::wstring> HandoffValue(std::wstring_view commandLine, std::wstring_view name) {
    const std::optional<std::wstring> text =
        TextBehind(commandLine, L"--" + std::wstring(name) + L"=");
    if (!text) return std::nullopt;

    const bool quoted = text->starts_with(L'"');
    const std::size_t end = text->find(quoted ? L'"' : L' ', quoted ? 1 : 0);
    if (quoted && end == std::wstring::npos) return std::nullopt;
    std::wstring value = quoted ? text->substr(1, end - 1) : text->substr(0, end);
    if (value.empty()) return std::nullopt;
    return value;
}

HandoffOperation OperationNamed(std::wstring_view name) {
    if (name == L"uninstall") return HandoffOperation::Uninstall;
    if (name == L"move") return HandoffOperation::Move;
    return HandoffOperation::None;
}

}  // namespace

Switches ReadSwitches(std::wstring_view commandLine) {
    Switches switches;
    for (const FlagSwitch& flag : Flags)
        switches.*flag.field = Contains(commandLine, flag.name);
    switches.topmost = ReadTopmost(commandLine);
    switches.simulation = ReadSimulation(commandLine);
    switches.autoQuitSeconds = ReadAutoQuit(commandLine);
    switches.language = IndexBehind(commandLine, L"--lang=");
    switches.season = IndexBehind(commandLine, L"--season=");
    switches.page = ReadPage(commandLine);
    return switches;
}

HandoffArgs ParseHandoffArgs(std::wstring_view commandLine) {
    const auto value = [&](std::wstring_view name) { return HandoffValue(commandLine, name); };

    HandoffArgs args;
    if (const auto text = value(L"op")) args.op = OperationNamed(*text);
    args.target = value(L"target").value_or(L"");
    args.dest = value(L"dest").value_or(L"");
    if (const auto text = value(L"keepsettings")) args.keepSettings = *text == L"1";
    if (const auto text = value(L"sub")) args.sub = *text == L"1";
    if (const auto text = value(L"waitpid")) {
        args.waitPid = LeadingInteger<std::uint32_t>(*text);
    }
    if (const auto x = value(L"x")) {
        args.x = LeadingInteger<int>(*x);
        if (const auto y = value(L"y")) {
            args.y = LeadingInteger<int>(*y);
            args.hasPos = true;
        }
    }
    if (args.target.empty()) args.op = HandoffOperation::None;
    return args;
}

}  // namespace Launcher
