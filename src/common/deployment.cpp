#include "common/deployment.h"

#include "deployment_values.h"
#include "platform/paths.h"

namespace Launcher::Deployment {

namespace {

#if TOLVAN_DEVELOPER_BUILD
std::wstring Address(const wchar_t* variable, const wchar_t* built) {
    std::wstring text = Platform::GetEnvironmentText(variable);
    return text.empty() ? built : text;
}
#define TOLVAN_ADDRESS(name) Address(L## #name, name)
#else
#define TOLVAN_ADDRESS(name) name
#endif

}  // namespace

std::wstring PatchUrl() {
    return TOLVAN_ADDRESS(TOLVAN_PATCH_URL);
}
std::wstring AssetsUrl() {
    return TOLVAN_ADDRESS(TOLVAN_ASSETS_URL);
}
std::wstring SiteUrl() {
    return TOLVAN_ADDRESS(TOLVAN_SITE_URL);
}
std::wstring ProbeUrl() {
    return TOLVAN_ADDRESS(TOLVAN_PROBE_URL);
}
std::wstring HelpLink() {
    return TOLVAN_HELP_LINK;
}

}  // namespace Launcher::Deployment
