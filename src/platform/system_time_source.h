#pragma once

#include "platform/time_source.h"

namespace Platform {

/// The toolkit's clock on a real machine.
class SystemTimeSource : public TimeSource {
public:
    SystemTimeSource();

    double Seconds() override;
    void Sleep(std::uint32_t milliseconds) override;
    /// Nothing to do where a sleep is fine already.
    void SetFineSleep(bool) override {}

private:
    double epochAtStart_;
};

}  // namespace Platform
