#include "support/links.h"

#include <filesystem>
#include <system_error>

#include "platform/host/machine.h"

namespace TestSupport {

bool MakeLink(const std::wstring& path, const std::wstring& target) {
    std::error_code error;
    std::filesystem::create_symlink(Platform::Host::HostPathOf(target),
                                    Platform::Host::HostPathOf(path), error);
    return !error;
}

std::string ReadLinkText(const std::wstring& path) {
    std::error_code ignored;
    return std::filesystem::read_symlink(Platform::Host::HostPathOf(path), ignored).string();
}

}  // namespace TestSupport
