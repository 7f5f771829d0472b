#include "platform/win32/gui/surface.h"

#include <cstring>
#include <d2d1helper.h>

namespace Platform::Win32 {

namespace {

/// Widgets lay out in pixels, whatever the screen's density.
constexpr float TargetDpi = 96.0F;

D3D10_TEXTURE2D_DESC DescribeTexture(Size size) {
    D3D10_TEXTURE2D_DESC description{};
    description.Width = static_cast<UINT>(size.width);
    description.Height = static_cast<UINT>(size.height);
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    description.SampleDesc.Count = 1;
    return description;
}

}  // namespace

Created<TextureSurface> TextureSurface::Make(ID2D1Factory* factory, Size size, DeviceKind device) {
    std::unique_ptr<TextureSurface> made(new TextureSurface);
    const GraphicsResult result = made->Create(factory, size, device);
    if (result != GraphicsOk) return result;
    return made;
}

GraphicsResult TextureSurface::CreateTexture(const D3D10_TEXTURE2D_DESC& description,
                                             Com<ID3D10Texture2D>& texture) {
    return ResultOf(device_->CreateTexture2D(&description, nullptr, texture.GetAddressOf()));
}

GraphicsResult TextureSurface::Create(ID2D1Factory* factory, Size size, DeviceKind device) {
    size_ = size;
    const auto driver =
        device == DeviceKind::Hardware ? D3D10_DRIVER_TYPE_HARDWARE : D3D10_DRIVER_TYPE_WARP;
    HRESULT result =
        D3D10CreateDevice1(nullptr, driver, nullptr, D3D10_CREATE_DEVICE_BGRA_SUPPORT,
                           D3D10_FEATURE_LEVEL_10_0, D3D10_1_SDK_VERSION, device_.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    D3D10_TEXTURE2D_DESC description = DescribeTexture(size);
    description.BindFlags = D3D10_BIND_RENDER_TARGET;
    description.MiscFlags = D3D10_RESOURCE_MISC_GDI_COMPATIBLE;
    const GraphicsResult created = CreateTexture(description, texture_);
    if (created != GraphicsOk) return created;
    result = texture_.As(&surface_);
    if (FAILED(result)) return ResultOf(result);
    const auto properties = D2D1::RenderTargetProperties(
        D2D1_RENDER_TARGET_TYPE_DEFAULT,
        D2D1::PixelFormat(DXGI_FORMAT_B8G8R8A8_UNORM, D2D1_ALPHA_MODE_PREMULTIPLIED), TargetDpi,
        TargetDpi, D2D1_RENDER_TARGET_USAGE_GDI_COMPATIBLE);
    return ResultOf(factory->CreateDxgiSurfaceRenderTarget(surface_.Get(), &properties,
                                                           target_.GetAddressOf()));
}

Image TextureSurface::ReadPixels() {
    D3D10_TEXTURE2D_DESC description = DescribeTexture(size_);
    description.Usage = D3D10_USAGE_STAGING;
    description.CPUAccessFlags = D3D10_CPU_ACCESS_READ;
    Com<ID3D10Texture2D> copy;
    D3D10_MAPPED_TEXTURE2D mapped{};
    if (CreateTexture(description, copy) != GraphicsOk) return {};
    device_->CopyResource(copy.Get(), texture_.Get());
    if (FAILED(copy->Map(0, D3D10_MAP_READ, 0, &mapped))) return {};
    Image image{size_, {}};
    const auto height = static_cast<std::size_t>(size_.height);
    image.pixels.resize(image.Stride() * height);
    for (std::size_t y = 0; y < height; ++y) {
        std::memcpy(image.pixels.data() + y * image.Stride(),
                    static_cast<const std::byte*>(mapped.pData) + y * mapped.RowPitch,
                    image.Stride());
    }
    copy->Unmap(0);
    return image;
}

Created<LayeredSurface> LayeredSurface::Make(ID2D1Factory* factory, Size size, DeviceKind device,
                                             HWND window) {
    std::unique_ptr<LayeredSurface> made(new LayeredSurface(window));
    const GraphicsResult result = made->Create(factory, size, device);
    if (result != GraphicsOk) return result;
    // Without it frames are drawn that nobody sees, and each one says so.
    made->GetTarget()->QueryInterface(IID_PPV_ARGS(made->interop_.GetAddressOf()));
    return made;
}

GraphicsResult LayeredSurface::Present(const Presentation& presentation) {
    if (!interop_) return GraphicsNotSupported;
    HDC frame = nullptr;
    const HRESULT got = interop_->GetDC(D2D1_DC_INITIALIZE_MODE_COPY, &frame);
    if (FAILED(got)) return ResultOf(got);
    RECT place{};
    GetWindowRect(window_, &place);
    POINT corner{place.left, place.top};
    POINT source{0, 0};
    SIZE size{GetSize().width, GetSize().height};
    BLENDFUNCTION blend{AC_SRC_OVER, 0, static_cast<BYTE>(presentation.opacity * 255.0F),
                        AC_SRC_ALPHA};
    DWORD flags = ULW_ALPHA;
    if (presentation.colorKey) flags |= ULW_COLORKEY;
    const HDC screen = GetDC(nullptr);
    const BOOL shown = UpdateLayeredWindow(window_, screen, &corner, &size, frame, &source,
                                           presentation.colorKey.value_or(0), &blend, flags);
    GraphicsResult result = GraphicsOk;
    if (!shown) {
        const DWORD error = GetLastError();
        // The system does not always say why.
        result = error == 0 ? GraphicsFailed : ResultOf(HRESULT_FROM_WIN32(error));
    }
    ReleaseDC(nullptr, screen);
    const RECT nothing{};
    interop_->ReleaseDC(&nothing);
    return result;
}

Created<ClientSurface> ClientSurface::Make(ID2D1Factory* factory, Size size, HWND window) {
    std::unique_ptr<ClientSurface> made(new ClientSurface(size));
    const auto properties = D2D1::RenderTargetProperties();
    const auto windowProperties = D2D1::HwndRenderTargetProperties(
        window, D2D1::SizeU(static_cast<UINT32>(size.width), static_cast<UINT32>(size.height)));
    const HRESULT result = factory->CreateHwndRenderTarget(&properties, &windowProperties,
                                                           made->target_.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    made->target_->SetDpi(TargetDpi, TargetDpi);
    return made;
}

}  // namespace Platform::Win32
