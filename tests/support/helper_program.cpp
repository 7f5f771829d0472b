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
#include "platform/named_objects.h"
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

bool IsOver(const std::wstring& stop) {
    static const std::uint64_t end = TickMilliseconds() + LongestStay;
    return PathExists(stop) || TickMilliseconds() >= end;
}

void WaitFor(const std::wstring& path) {
    while (!IsOver(path))
        SleepMilliseconds(2);
}

void StayUntil(const std::wstring& ready, const std::wstring& stop) {
    Write(ready, std::to_string(OwnProcessId()));
    WaitFor(stop);
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

/// chain|PROGRAM|READY|STOP: starts another helper program that stays, and ends at once.
int Chain(const Words& words, const std::wstring&) {
    std::uint32_t id = 0;
    const std::wstring line = L'"' + words.at(1) + L"\" stay|" + words.at(2) + L'|' + words.at(3);
    return Succeeded(StartProcess({words.at(1), line, {}}, id)) ? 0 : 1;
}

/// burn|READY|STOP: never waits for anything.
int Burn(const Words& words, const std::wstring&) {
    Write(words.at(1), "");
    while (!IsOver(words.at(2))) {
    }
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

/// objects|MUTEX|EVENT|READY|STOP: holds a mutex and an event that is set.
int HoldObjects(const Words& words, const std::wstring&) {
    NamedMutex mutex;
    NamedEvent event;
    bool existed = false;
    if (!Succeeded(mutex.Create(words.at(1), existed)) ||
        !Succeeded(event.Create(words.at(2), existed)) || !Succeeded(event.Set())) {
        return 1;
    }
    StayUntil(words.at(3), words.at(4));
    return 0;
}

/// race|PREFIX|COUNT|READY|GO|RESULT|STOP: waits for GO, makes mutexes PREFIX0, PREFIX1, ..., and
/// writes to RESULT which of them it was the first to make, a line each. Holds them until STOP.
int Race(const Words& words, const std::wstring&) {
    std::vector<NamedMutex> mutexes(std::stoul(words.at(2)));
    Write(words.at(3), "");
    WaitFor(words.at(4));
    std::string made;
    for (std::size_t index = 0; index < mutexes.size(); ++index) {
        bool existed = false;
        const std::wstring name = words.at(1) + std::to_wstring(index);
        if (!Succeeded(mutexes[index].Create(name, existed))) return 1;
        if (!existed) made += std::to_string(index) + '\n';
    }
    Write(words.at(5), made);
    WaitFor(words.at(6));
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

/// registry-fill|KEY|PREFIX|COUNT|READY|GO: waits for GO and writes numbers PREFIX0, PREFIX1, ...
int FillRegistry(const Words& words, const std::wstring&) {
    const auto count = static_cast<std::uint32_t>(std::stoul(words.at(3)));
    StayUntil(words.at(4), words.at(5));
    for (std::uint32_t index = 0; index < count; ++index) {
        RegistryKey key;
        if (!Succeeded(key.Create(words.at(1))) ||
            !Succeeded(key.WriteDword(words.at(2) + std::to_wstring(index), index))) {
            return 1;
        }
    }
    return 0;
}

/// read-link|LINK|REPORT: writes what a shell link holds to REPORT: target, working folder and
/// description, a line each.
int ReadLink(const Words& words, const std::wstring&) {
    const ShellApartment apartment;
    ShellLink link;
    if (!Succeeded(LoadShellLink(words.at(1), link))) return 1;
    Write(words.at(2), Utf8FromWide(link.target + L'\n' + link.workingFolder + L'\n' +
                                    link.description + L'\n'));
    return 0;
}

const std::map<std::wstring, int (*)(const Words&, const std::wstring&)> g_commands = {
    {L"report", Report},
    {L"stay", Stay},
    {L"chain", Chain},
    {L"burn", Burn},
    {L"open", OpenFile},
    {L"delete-on-close", DeleteOnClose},
    {L"objects", HoldObjects},
    {L"race", Race},
    {L"registry-change", ChangeRegistry},
    {L"registry-fill", FillRegistry},
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
