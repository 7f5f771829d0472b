#include "platform/win32/gui/direct2d_graphics.h"

#include <mutex>
#include <optional>

#include "platform/win32/gui/direct2d_probe.h"
#include "platform/win32/gui/equivalent_target.h"

namespace Platform {

namespace Win32 {

namespace {

Created<TextureSurface> MakeTexture(ID2D1Factory* factory, Size size) {
    auto made = TextureSurface::Make(factory, size, DeviceKind::Hardware);
    return made ? std::move(made) : TextureSurface::Make(factory, size, DeviceKind::Software);
}

/// Whether this system's Direct2D draws everything that it should. Found out once, with a target of
/// its own. Any thread.
bool DrawsEverything(ID2D1Factory* factory) {
    static std::mutex mutex;
    static std::optional<bool> known;
    const std::lock_guard guard(mutex);
    if (known) return *known;
    auto surface = MakeTexture(factory, ProbeSize);
    // Nothing can be drawn now; the next device may be better.
    if (!surface) return true;
    Direct2DTarget target(factory, std::move(surface.object));
    known = PassesProbe(target);
    return *known;
}

}  // namespace

Direct2DGraphics::Direct2DGraphics() {
    // Without it no target can be made.
    D2D1CreateFactory(D2D1_FACTORY_TYPE_MULTI_THREADED, factory_.GetAddressOf());
}

template <class AnySurface>
Created<DrawTarget> Direct2DGraphics::MakeTarget(Created<AnySurface> surface, float cornerRadius) {
    if (!surface) return surface.result;
    if (DrawsEverything(factory_.Get()))
        return std::make_unique<Direct2DTarget>(factory_.Get(), std::move(surface.object));
    return std::make_unique<EquivalentTarget>(factory_.Get(), std::move(surface.object),
                                              cornerRadius);
}

Created<DrawTarget> Direct2DGraphics::CreateOffscreenTarget(Size size) {
    if (!factory_) return GraphicsNotSupported;
    return MakeTarget(MakeTexture(factory_.Get(), size));
}

Created<DrawTarget> Direct2DGraphics::CreateLayeredTarget(Size size, DeviceKind device, HWND window,
                                                          float cornerRadius) {
    if (!factory_) return GraphicsNotSupported;
    return MakeTarget(LayeredSurface::Make(factory_.Get(), size, device, window), cornerRadius);
}

Created<DrawTarget> Direct2DGraphics::CreateClientTarget(Size size, HWND window) {
    if (!factory_) return GraphicsNotSupported;
    return MakeTarget(ClientSurface::Make(factory_.Get(), size, window));
}

}  // namespace Win32

std::unique_ptr<Graphics> OpenGraphics() {
    return std::make_unique<Win32::Direct2DGraphics>();
}

}  // namespace Platform
