#include "platform/shell_links.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/files.h"
#include "platform/text.h"

// On the host a link is a text file of four lines, in UTF-8: target, working folder, description,
// icon.

namespace Platform {

namespace {

constexpr std::array Fields{&ShellLink::target, &ShellLink::workingFolder, &ShellLink::description,
                            &ShellLink::icon};

}  // namespace

Error SaveShellLink(const std::wstring& linkPath, const ShellLink& link) {
    std::string text;
    for (const auto field : Fields)
        text += Utf8FromWide(link.*field) + '\n';
    File file;
    const Error opened = file.Open(
        linkPath,
        {.access = AccessWrite, .sharing = ShareNone, .disposition = Disposition::CreateAlways});
    return Succeeded(opened) ? file.Write(std::as_bytes(std::span(text))) : opened;
}

Error LoadShellLink(const std::wstring& linkPath, ShellLink& link) {
    File file;
    Error error = file.Open(linkPath, {});
    std::uint64_t size = 0;
    if (Succeeded(error)) error = file.GetSize(size);
    std::vector<std::byte> bytes(static_cast<std::size_t>(size));
    std::size_t got = 0;
    if (Succeeded(error)) error = file.ReadAt(0, bytes, got);
    if (!Succeeded(error)) return error;

    std::string_view text(reinterpret_cast<const char*>(bytes.data()), got);
    for (const auto field : Fields) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return Error::InvalidParameter;
        link.*field = WideFromUtf8(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    return Error::None;
}

// The host's links ask nothing of a thread.
ShellApartment::ShellApartment() : entered_(true) {}
ShellApartment::~ShellApartment() = default;

}  // namespace Platform
