#include "patch/content_length.h"

#include <charconv>
#include <string>

#include "platform/text.h"

namespace Launcher {

std::int64_t ContentLengthOf(const Platform::HttpRequest& request) {
    const std::string text = Platform::Utf8FromWide(request.ContentLength().value_or(L""));
    std::int64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    return error == std::errc() && length > 0 ? length : 0;
}

}  // namespace Launcher
