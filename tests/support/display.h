#pragma once

#include <cstdint>

namespace TestSupport {

/// A display for the windows of the programs that a test starts: on the host an X server of its own
/// for as long as this object lives, on Windows the one that is there.
class Display {
public:
    Display();
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

private:
    std::int64_t server_ = 0;
};

}  // namespace TestSupport
