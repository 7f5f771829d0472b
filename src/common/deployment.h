#pragma once

#include <string>

/// The values that an operator gives a build. A developer build takes the addresses from the
/// environment (TOLVAN_PATCH_URL, TOLVAN_ASSETS_URL, TOLVAN_SITE_URL, TOLVAN_PROBE_URL) where it
/// names them; a release build has no such code in it.
namespace Launcher::Deployment {

/// Base addresses, each ending in a slash.
std::wstring PatchUrl();
std::wstring AssetsUrl();
std::wstring SiteUrl();

/// A plain-HTTP page of a large public site.
std::wstring ProbeUrl();

std::wstring HelpLink();

}  // namespace Launcher::Deployment
