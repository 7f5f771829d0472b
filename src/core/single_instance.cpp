#include "core/single_instance.h"

namespace Launcher {

SingleInstance::SingleInstance(const std::wstring& fileName)
    : mutexName_(L"Local\\TolvanLauncher.single." + fileName),
      eventName_(L"Local\\TolvanLauncher.surface." + fileName) {}

bool SingleInstance::Join() {
    bool mutexExisted = false;
    bool eventExisted = false;
    const Platform::Error mutexError = mutex_.Create(mutexName_, mutexExisted);
    const Platform::Error eventError = surface_.Create(eventName_, eventExisted);
    // The event decides; of the mutex only its existence counts.
    return Platform::Succeeded(mutexError) && Platform::Succeeded(eventError) && eventExisted;
}

void SingleInstance::AskFirstToSurface() const {
    Platform::NamedEvent event;
    // A first one that has just gone cannot come to the front.
    if (Platform::Succeeded(event.Open(eventName_, Platform::EventModify))) (void)event.Set();
}

bool SingleInstance::TakeSurfaceRequest() {
    return surface_.IsOpen() && surface_.IsSet() && Platform::Succeeded(surface_.Reset());
}

void SingleInstance::Leave() {
    surface_.Close();
    mutex_.Close();
}

}  // namespace Launcher
