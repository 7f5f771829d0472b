#pragma once

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/error.h"
#include "support/test_files.h"

namespace Platform {

/// How GoogleTest shows an error.
inline void PrintTo(Error error, std::ostream* out) {
    *out << "error " << Code(error);
}

}  // namespace Platform

namespace TestSupport {

/// A test with an empty folder of its own.
class Scratch : public testing::Test {
protected:
    std::wstring At(std::wstring_view name) const { return folder_ + L'\\' + std::wstring(name); }

    /// Without a trailing separator.
    const std::wstring folder_ = MakeTestFolder();
};

}  // namespace TestSupport
