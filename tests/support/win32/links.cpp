#include "support/links.h"

namespace TestSupport {

bool MakeLink(const std::wstring&, const std::wstring&) {
    return false;
}

std::string ReadLinkText(const std::wstring&) {
    return {};
}

}  // namespace TestSupport
