#include "tls.h"

#include <array>
#include <openssl/err.h>
#include <stdexcept>

namespace Server {

std::string TlsProblem() {
    const unsigned long error = ::ERR_peek_last_error();
    ::ERR_clear_error();
    if (error == 0) return "the connection ended";
    std::array<char, 256> text{};
    ::ERR_error_string_n(error, text.data(), text.size());
    return text.data();
}

TlsContext LoadCertificate(const std::filesystem::path& folder, const std::string& name) {
    TlsContext context(::SSL_CTX_new(::TLS_server_method()));
    const std::string chain = folder / (name + ".pem");
    const std::string key = folder / (name + ".key");
    if (!context || ::SSL_CTX_use_certificate_chain_file(context.get(), chain.c_str()) != 1) {
        throw std::runtime_error(chain + ": " + TlsProblem());
    }
    if (::SSL_CTX_use_PrivateKey_file(context.get(), key.c_str(), SSL_FILETYPE_PEM) != 1) {
        throw std::runtime_error(key + ": " + TlsProblem());
    }
    return context;
}

}  // namespace Server
