#pragma once

#include <filesystem>
#include <memory>
#include <openssl/ssl.h>
#include <string>

namespace Server {

struct TlsContextDeleter {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};
using TlsContext = std::unique_ptr<SSL_CTX, TlsContextDeleter>;

/// A context that serves "NAME.pem" (the leaf and its intermediates) with "NAME.key" of a folder.
/// Throws std::runtime_error with the reason.
TlsContext LoadCertificate(const std::filesystem::path& folder, const std::string& name);

/// The newest error of this thread's queue in words; empties the queue.
std::string TlsProblem();

}  // namespace Server
