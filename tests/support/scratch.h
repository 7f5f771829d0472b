#pragma once

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/error.h"
#include "support/test_files.h"
#include "support/test_folder.h"

namespace Platform {

/// How GoogleTest shows an error.
inline void PrintTo(Error error, std::ostream* out) {
    *out << "error " << Code(error);
}

}  // namespace Platform

namespace TestSupport {

/// A test with an empty folder of its own, which goes with it.
class Scratch : public testing::Test {
protected:
    std::wstring At(std::wstring_view name) const { return scratch_.Path(std::wstring(name)); }

    const TestFolder scratch_;
    /// Its path without a trailing separator.
    const std::wstring folder_ = scratch_.Path().substr(0, scratch_.Path().size() - 1);
};

}  // namespace TestSupport
