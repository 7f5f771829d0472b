#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/http.h"

/// One GET through the port, as the tests want it.
struct HttpGet {
    explicit HttpGet(const std::wstring& url,
                     Platform::CertificatePolicy policy = Platform::CertificatePolicy::Strict,
                     std::optional<Platform::HttpTimeouts> timeouts = std::nullopt) {
        Platform::CrackedUrl parts;
        error = Platform::CrackUrl(url, parts);
        if (Succeeded(error)) error = session.Open(L"Test agent", timeouts);
        if (Succeeded(error)) {
            const std::uint16_t standard = Platform::DefaultHttpPort(parts.secure);
            error = request.Connect(session, parts.host, parts.port ? parts.port : standard);
        }
        if (Succeeded(error)) error = request.Prepare(parts.path, parts.secure, policy);
    }

    /// Sends unless something failed before.
    HttpGet& Send() {
        if (Succeeded(error)) error = request.Send();
        return *this;
    }
    /// Reads to the end, in pieces of the given size.
    HttpGet& ReadAll(std::size_t pieceSize = 65'536) {
        std::vector<std::byte> piece(pieceSize);
        std::size_t got = 1;
        while (Succeeded(error) && got > 0) {
            error = request.Read(piece, got);
            body.append(reinterpret_cast<const char*>(piece.data()), got);
        }
        return *this;
    }
    HttpGet& Run() { return Send().ReadAll(); }

    Platform::Error error;
    Platform::HttpSession session;
    Platform::HttpRequest request;
    std::string body;
};
