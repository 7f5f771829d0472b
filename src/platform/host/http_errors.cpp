#include "platform/host/http_errors.h"

#include <algorithm>
#include <iterator>
#include <openssl/x509_vfy.h>

namespace Platform {

namespace {

struct Mapping {
    CURLcode result;
    Error error;
};

constexpr Mapping Mappings[] = {
    {CURLE_OK, Error::None},
    {CURLE_OUT_OF_MEMORY, Error::NotEnoughMemory},
    {CURLE_OPERATION_TIMEDOUT, Error::HttpTimeout},
    {CURLE_URL_MALFORMAT, Error::HttpInvalidUrl},
    {CURLE_COULDNT_RESOLVE_HOST, Error::HttpNameNotResolved},
    {CURLE_COULDNT_RESOLVE_PROXY, Error::HttpNameNotResolved},
    {CURLE_COULDNT_CONNECT, Error::HttpCannotConnect},
    {CURLE_GOT_NOTHING, Error::HttpConnectionAborted},
    {CURLE_PARTIAL_FILE, Error::HttpConnectionAborted},
    {CURLE_SEND_ERROR, Error::HttpConnectionReset},
    {CURLE_RECV_ERROR, Error::HttpConnectionReset},
    {CURLE_TOO_MANY_REDIRECTS, Error::HttpRedirectFailed},
    {CURLE_SSL_CONNECT_ERROR, Error::HttpSecurityChannel},
    {CURLE_SSL_CACERT_BADFILE, Error::HttpCertificateIssuer},
};

Error ErrorFromCertificate(CURL* easy) {
    long verdict = X509_V_ERR_UNSPECIFIED;
    const CURLcode known = GetHttpLibrary().easyGetinfo(easy, CURLINFO_SSL_VERIFYRESULT, &verdict);
    if (known != CURLE_OK) return Error::HttpSecurityChannel;
    switch (verdict) {
        case X509_V_ERR_UNSPECIFIED:  // the chain held, and the name was refused before it counted
            return Error::HttpCertificateName;
        case X509_V_ERR_CERT_NOT_YET_VALID:
        case X509_V_ERR_CERT_HAS_EXPIRED:
            return Error::HttpCertificateDate;
        default:
            return Error::HttpCertificateIssuer;
    }
}

}  // namespace

Error ErrorFromTransfer(CURL* easy, CURLcode result) {
    if (result == CURLE_PEER_FAILED_VERIFICATION) return ErrorFromCertificate(easy);
    const auto* found = std::find_if(std::begin(Mappings), std::end(Mappings),
                                     [&](const Mapping& row) { return row.result == result; });
    return found != std::end(Mappings) ? found->error : Error::HttpInvalidResponse;
}

}  // namespace Platform
