#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/text_layout.h"

namespace DirectGL {

/// A text with its marks taken out: "**" turns bold on and off.
struct MarkedText {
    std::wstring plain;
    std::vector<Platform::TextRange> bold;  ///< in plain
    bool operator==(const MarkedText&) const = default;
};

MarkedText ReadBoldMarks(std::wstring_view marked);

}  // namespace DirectGL
