#include "patch/fetch.h"

#include <memory>
#include <optional>

#include "patch/content_length.h"
#include "patch/crc32.h"
#include "patch/read_block.h"
#include "platform/files.h"
#include "platform/http.h"

namespace Launcher {

namespace {

constexpr wchar_t Agent[] = L"Mozilla/5.0 (Windows NT 10.0; Win64; x64) TolvanLauncher/1.0";
constexpr Platform::HttpTimeouts Timeouts{std::chrono::seconds(8), std::chrono::seconds(15),
                                          std::chrono::seconds(20)};
constexpr std::uint32_t StatusOk = 200;
constexpr std::size_t FileBlockSize = 65'536;
constexpr std::size_t TextBlockSize = 16'384;
constexpr std::size_t CrcBlockSize = 1'048'576;

/// Why a fetch failed; an empty text stands for a cancel.
struct Failure {
    std::wstring text;
};
using Outcome = std::optional<Failure>;
const Failure Cancelled;

bool IsTrue(const FetchCancelled& cancelled) {
    return cancelled && cancelled();
}

/// What a failed wait for the network means: the text, unless it was the cancel that ended it.
Failure NetworkFailure(Platform::Error error, const wchar_t* text) {
    return error == Platform::Error::HttpOperationCancelled ? Cancelled : Failure{text};
}

Platform::Error SendRequest(Platform::HttpRequest& request, Platform::HttpSession& session,
                            const std::wstring& url) {
    Platform::CrackedUrl parts;
    if (const auto error = Platform::CrackUrl(url, parts); !Succeeded(error)) return error;
    const std::uint16_t port =
        parts.port != 0 ? parts.port : Platform::DefaultHttpPort(parts.secure);
    if (const auto error = request.Connect(session, parts.host, port); !Succeeded(error)) {
        return error;
    }
    if (const auto error =
            request.Prepare(parts.path, parts.secure, Platform::CertificatePolicy::Strict);
        !Succeeded(error)) {
        return error;
    }
    return request.Send();
}

/// Opens a session of its own and sends the request.
Outcome OpenUrl(Platform::HttpSession& session, Platform::HttpRequest& request,
                const std::wstring& url, const FetchCancelled& cancelled,
                const wchar_t* failureText) {
    if (!Succeeded(session.Open(Agent, Timeouts))) return Failure{L"InternetOpen failed"};
    request.CancelWhen(cancelled);
    const auto error = SendRequest(request, session, url);
    if (!Succeeded(error)) return NetworkFailure(error, failureText);
    return std::nullopt;
}

std::wstring FolderOf(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    return separator == std::wstring::npos ? std::wstring() : path.substr(0, separator);
}

std::wstring TruncationText(std::uint64_t done, std::uint64_t length) {
    constexpr int bitsPerMebibyte = 20;
    return L"Truncated: got " + std::to_wstring(done >> bitsPerMebibyte) + L" MB of " +
           std::to_wstring(length >> bitsPerMebibyte) + L" MB";
}

Outcome CopyBody(Platform::HttpRequest& request, Platform::File& file,
                 const FetchProgress& progress, const FetchCancelled& cancelled,
                 const FetchSink& sink) {
    const auto length = static_cast<std::uint64_t>(ContentLengthOf(request));
    const auto block = std::make_unique<ReadBlock<FileBlockSize>>();
    std::uint64_t done = 0;
    while (!IsTrue(cancelled)) {
        std::size_t got = 0;
        if (const auto error = request.Read(block->bytes, got); !Succeeded(error)) {
            return NetworkFailure(error, L"Read error");
        }
        if (got == 0) {
            if (length == 0 || done >= length) return std::nullopt;
            return Failure{TruncationText(done, length)};
        }
        const std::span<const std::byte> bytes = std::span(block->bytes).first(got);
        if (!Succeeded(file.Write(bytes))) return Failure{L"Write error (is the disk full?)"};
        if (sink) sink(bytes);
        done += got;
        if (progress) progress(done, length != 0 ? length : done);
    }
    return Cancelled;
}

Outcome FetchInto(const std::wstring& url, const std::wstring& destination,
                  const FetchProgress& progress, const FetchCancelled& cancelled,
                  const FetchSink& sink) {
    Platform::HttpSession session;
    Platform::HttpRequest request;
    if (auto failure =
            OpenUrl(session, request, url, cancelled, L"Could not open the download URL")) {
        return failure;
    }
    const std::uint32_t status = request.StatusCode().value_or(0);
    if (status != 0 && status != StatusOk) return Failure{L"HTTP " + std::to_wstring(status)};

    // A folder that cannot be made shows in the next step.
    if (const std::wstring folder = FolderOf(destination); !folder.empty()) {
        static_cast<void>(Platform::MakeFolderPath(folder));
    }
    Platform::File file;
    const Platform::OpenOptions options{.access = Platform::AccessWrite,
                                        .sharing = Platform::ShareNone,
                                        .disposition = Platform::Disposition::CreateAlways};
    if (!Succeeded(file.Open(destination, options))) {
        return Failure{L"Could not create the download file"};
    }
    return CopyBody(request, file, progress, cancelled, sink);
}

Outcome ReadText(const std::wstring& url, std::string& text, std::size_t maxBytes,
                 const FetchCancelled& cancelled) {
    Platform::HttpSession session;
    Platform::HttpRequest request;
    if (auto failure =
            OpenUrl(session, request, url, cancelled, L"Could not open the manifest URL")) {
        return failure;
    }
    const std::uint32_t status = request.StatusCode().value_or(StatusOk);
    if (status != StatusOk) {
        return Failure{L"The manifest request failed (HTTP " + std::to_wstring(status) + L")"};
    }
    const auto block = std::make_unique<ReadBlock<TextBlockSize>>();
    while (true) {
        std::size_t got = 0;
        if (const auto error = request.Read(block->bytes, got); !Succeeded(error)) {
            return NetworkFailure(error, L"Read error");
        }
        if (got == 0) break;
        if (IsTrue(cancelled)) return Cancelled;
        if (got > maxBytes - text.size()) {
            return Failure{L"The manifest was larger than expected"};
        }
        text.append(reinterpret_cast<const char*>(block->bytes.data()), got);
    }
    if (text.empty()) return Failure{L"The manifest was empty"};
    return std::nullopt;
}

bool Report(const Outcome& outcome, std::wstring* errorText) {
    if (!outcome) return true;
    if (errorText != nullptr && !outcome->text.empty()) *errorText = outcome->text;
    return false;
}

}  // namespace

bool FetchFile(const std::wstring& url, const std::wstring& destination,
               const FetchProgress& progress, const FetchCancelled& cancelled,
               std::wstring* errorText, const FetchSink& sink) {
    const Outcome outcome = FetchInto(url, destination, progress, cancelled, sink);
    // Nothing to remove is as good, and what cannot be removed cannot be helped.
    if (outcome) static_cast<void>(Platform::RemoveFile(destination));
    return Report(outcome, errorText);
}

bool FetchText(const std::wstring& url, std::string& text, std::wstring* errorText,
               std::size_t maxBytes, const FetchCancelled& cancelled) {
    text.clear();
    const Outcome outcome = ReadText(url, text, maxBytes, cancelled);
    if (outcome) text.clear();
    return Report(outcome, errorText);
}

std::uint32_t CrcOfFile(const std::wstring& path) {
    Platform::File file;
    if (!Succeeded(file.Open(path, {}))) return 0;
    const auto block = std::make_unique<ReadBlock<CrcBlockSize>>();
    Crc32 crc;
    std::size_t got = 0;
    do {
        if (!Succeeded(file.Read(block->bytes, got))) return 0;
        crc.Update(std::span(block->bytes).first(got));
    } while (got > 0);
    return crc.Value();
}

}  // namespace Launcher
