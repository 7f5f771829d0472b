#pragma once

#include <curl/curl.h>
#include <openssl/ssl.h>

namespace Platform {

/// The functions of libcurl, and of the OpenSSL that it brings, which this program calls. The
/// library is loaded with the first request: linked in, it would add 9 ms to every start.
struct HttpLibrary {
    decltype(&curl_global_init) globalInit = nullptr;
    decltype(&curl_version_info) versionInfo = nullptr;
    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_reset) easyReset = nullptr;
    decltype(&curl_easy_setopt) easySetopt = nullptr;
    decltype(&curl_easy_getinfo) easyGetinfo = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_multi_init) multiInit = nullptr;
    decltype(&curl_multi_add_handle) multiAddHandle = nullptr;
    decltype(&curl_multi_remove_handle) multiRemoveHandle = nullptr;
    decltype(&curl_multi_perform) multiPerform = nullptr;
    decltype(&curl_multi_poll) multiPoll = nullptr;
    decltype(&curl_multi_info_read) multiInfoRead = nullptr;
    decltype(&curl_multi_cleanup) multiCleanup = nullptr;
    decltype(&curl_slist_append) slistAppend = nullptr;
    decltype(&curl_slist_free_all) slistFreeAll = nullptr;
    decltype(&SSL_CTX_get0_param) contextParameters = nullptr;
    decltype(&SSL_CTX_set_options) contextSetOptions = nullptr;
    decltype(&X509_VERIFY_PARAM_set_flags) verifySetFlags = nullptr;
};

/// Loads the library at the first call and keeps it until the process ends. Null when this machine
/// has none that fits. Any thread.
const HttpLibrary* LoadHttpLibrary();

/// The loaded library, for those who hold something that was made with it.
inline const HttpLibrary& GetHttpLibrary() {
    return *LoadHttpLibrary();
}

}  // namespace Platform
