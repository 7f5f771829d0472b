#pragma once

#include <string>

#include "platform/named_objects.h"

namespace Launcher {

/// There is one launcher at a time for each file name of the executable, whatever its folder. A
/// second start asks the first one to come to the front, and goes. Main thread.
class SingleInstance {
public:
    /// fileName is the executable's, with its case.
    explicit SingleInstance(const std::wstring& fileName);

    /// Makes the objects that show this launcher to later starts. True when another one has made
    /// them before.
    bool Join();

    /// Called by a second start.
    void AskFirstToSurface() const;

    /// Whether a second start has asked since the last call.
    bool TakeSurfaceRequest();

    void Leave();

private:
    std::wstring mutexName_;
    std::wstring eventName_;
    Platform::NamedMutex mutex_;
    Platform::NamedEvent surface_;
};

}  // namespace Launcher
