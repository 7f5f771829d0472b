#include "directgl/private_fonts.h"

#include <algorithm>

#include "directgl/log.h"
#include "platform/text.h"

namespace DirectGL {

bool PrivateFontBook::Register(std::span<const std::byte> file, const std::wstring& family) {
    const Platform::GraphicsResult result = fonts_.AddFile(file);
    if (result != Platform::GraphicsOk) {
        Log("%s : RegisterPrivateFont: no IDWriteFactory5; %s not loaded",
            "DirectGL::Utilities::RegisterPrivateFont", Platform::Utf8FromWide(family).c_str());
        return false;
    }
    families_.push_back(family);
    return true;
}

void PrivateFontBook::Build() {
    if (families_.empty()) return;
    built_ = fonts_.BuildCollection() == Platform::GraphicsOk;
    if (!built_) {
        Log("%s : BuildPrivateFonts: collection could not be created",
            "DirectGL::Utilities::BuildPrivateFonts");
    }
}

bool PrivateFontBook::Holds(const std::wstring& family) const {
    return built_ && std::ranges::find(families_, family) != families_.end();
}

}  // namespace DirectGL
