#include "platform/host/http_library.h"

#include <dlfcn.h>
#include <optional>

namespace Platform {

namespace {

template <typename Function>
bool Find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

std::optional<HttpLibrary> Load() {
    // The search through this handle goes on into the libraries that libcurl itself is linked with,
    // and so finds the OpenSSL that it uses.
    void* library = dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return std::nullopt;
    HttpLibrary table;
    const bool complete = Find(library, "curl_global_init", table.globalInit) &&
                          Find(library, "curl_version_info", table.versionInfo) &&
                          Find(library, "curl_easy_init", table.easyInit) &&
                          Find(library, "curl_easy_reset", table.easyReset) &&
                          Find(library, "curl_easy_setopt", table.easySetopt) &&
                          Find(library, "curl_easy_getinfo", table.easyGetinfo) &&
                          Find(library, "curl_easy_cleanup", table.easyCleanup) &&
                          Find(library, "curl_multi_init", table.multiInit) &&
                          Find(library, "curl_multi_add_handle", table.multiAddHandle) &&
                          Find(library, "curl_multi_remove_handle", table.multiRemoveHandle) &&
                          Find(library, "curl_multi_perform", table.multiPerform) &&
                          Find(library, "curl_multi_poll", table.multiPoll) &&
                          Find(library, "curl_multi_info_read", table.multiInfoRead) &&
                          Find(library, "curl_multi_cleanup", table.multiCleanup) &&
                          Find(library, "curl_slist_append", table.slistAppend) &&
                          Find(library, "curl_slist_free_all", table.slistFreeAll) &&
                          Find(library, "SSL_CTX_get0_param", table.contextParameters) &&
                          Find(library, "SSL_CTX_set_options", table.contextSetOptions) &&
                          Find(library, "X509_VERIFY_PARAM_set_flags", table.verifySetFlags);
    if (!complete || table.globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK) return std::nullopt;
    return table;
}

}  // namespace

const HttpLibrary* LoadHttpLibrary() {
    static const std::optional<HttpLibrary> library = Load();
    return library ? &*library : nullptr;
}

}  // namespace Platform
