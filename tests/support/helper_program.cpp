// A second process for the contract tests. Its command line is a command and the command's
// arguments, with "|" between them, which no file name holds. Most commands make the file READY,
// with their process id in it, when they have begun, and end when the file STOP stands there.

#include <map>
#include <span>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/entry.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "platform/shell_links.h"
#include "platform/text.h"

using namespace Platform;

namespace {

using Words = std::vector<std::wstring>;

void Write(const std::wstring& path, std::string_view text) {
    const std::wstring part = path + L".part";
    File file;
    if (!Succeeded(
            file.Open(part, {.access = AccessWrite, .disposition = Disposition::CreateAlways})) ||
        !Succeeded(file.Write(std::as_bytes(std::span(text))))) {
        return;
    }
    file.Close();
    static_cast<void>(MovePath(part, path, {.replaceExisting = true}));
}

/// A helper whose test has died ends by itself.
constexpr std::uint64_t LongestStay = 120'000;

void StayUntil(const std::wstring& ready, const std::wstring& stop) {
    const std::uint64_t end = TickMilliseconds() + LongestStay;
    Write(ready, std::to_string(OwnProcessId()));
    while (!PathExists(stop) && TickMilliseconds() < end)
        SleepMilliseconds(2);
}

/// report|anything: writes its raw command line to report.txt in its working folder.
int Report(const Words&, const std::wstring& commandLine) {
    Write(L"report.txt", Utf8FromWide(commandLine));
    return 0;
}

/// stay|READY|STOP: just stays there.
int Stay(const Words& words, const std::wstring&) {
    StayUntil(words.at(1), words.at(2));
    return 0;
}

/// open|FILE|ACCESS|SHARING|READY|STOP: holds a file open, with the numbers of FileAccess and
/// FileSharing.
int OpenFile(const Words& words, const std::wstring&) {
    File file;
    const OpenOptions options{.access = static_cast<unsigned>(std::stoul(words.at(2))),
                              .sharing = static_cast<unsigned>(std::stoul(words.at(3)))};
    if (!Succeeded(file.Open(words.at(1), options))) return 1;
    StayUntil(words.at(4), words.at(5));
    return 0;
}

/// delete-on-close|FILE|READY|STOP: holds a file that goes with its last handle.
int DeleteOnClose(const Words& words, const std::wstring&) {
    File file;
    const OpenOptions options{
        .access = AccessWrite, .disposition = Disposition::CreateAlways, .deleteOnClose = true};
    if (!Succeeded(file.Open(words.at(1), options))) return 1;
    StayUntil(words.at(2), words.at(3));
    return 0;
}

/// registry-change|KEY|READY: changes values of the key, and makes and removes keys below it,
/// until it is killed. The values are a number and a text of that many equal letters.
int ChangeRegistry(const Words& words, const std::wstring&) {
    RegistryKey key;
    if (!Succeeded(key.Create(words.at(1)))) return 1;
    Write(words.at(2), "");
    for (std::uint32_t round = 0;; ++round) {
        const auto letter = static_cast<wchar_t>(L'a' + round % 26);
        RegistryKey below;
        if (!Succeeded(key.WriteDword(L"Number", round)) ||
            !Succeeded(key.WriteString(L"Text", std::wstring(round % 3000, letter))) ||
            !Succeeded(below.Create(words.at(1) + L"\\Below\\Deeper")) ||
            !Succeeded(below.WriteDword(L"Number", round)) ||
            !Succeeded(RemoveRegistryTree(words.at(1) + L"\\Below"))) {
            return 1;
        }
    }
}

/// read-link|LINK|REPORT: writes what a shell link holds to REPORT: target, working folder,
/// description and icon, a line each.
int ReadLink(const Words& words, const std::wstring&) {
    const ShellApartment apartment;
    ShellLink link;
    if (!Succeeded(LoadShellLink(words.at(1), link))) return 1;
    Write(words.at(2), Utf8FromWide(link.target + L'\n' + link.workingFolder + L'\n' +
                                    link.description + L'\n' + link.icon + L'\n'));
    return 0;
}

const std::map<std::wstring, int (*)(const Words&, const std::wstring&)> g_commands = {
    {L"report", Report},
    {L"stay", Stay},
    {L"open", OpenFile},
    {L"delete-on-close", DeleteOnClose},
    {L"registry-change", ChangeRegistry},
    {L"read-link", ReadLink},
};

/// A starter quotes a line that holds a blank.
std::wstring WithoutQuotes(const std::wstring& line) {
    const bool quoted = line.size() >= 2 && line.front() == L'"' && line.back() == L'"';
    return quoted ? line.substr(1, line.size() - 2) : line;
}

Words SplitWords(const std::wstring& line) {
    Words words(1);
    for (const wchar_t character : line) {
        if (character == L'|') {
            words.emplace_back();
        } else {
            words.back() += character;
        }
    }
    return words;
}

}  // namespace

int ProgramMain(const std::wstring& commandLine) {
    const Words words = SplitWords(WithoutQuotes(commandLine));
    const auto command = g_commands.find(words[0]);
    return command == g_commands.end() ? 2 : command->second(words, commandLine);
}
