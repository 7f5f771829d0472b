#include "directgl/image_resource.h"

#include "directgl/gui.h"
#include "directgl/log.h"

namespace DirectGL {

namespace Utilities {

std::shared_ptr<const ResourceHandle> MakeResourceHandle(std::span<const std::byte> bytes) {
    return std::make_shared<ResourceHandle>(
        ResourceHandle{std::vector<std::byte>(bytes.begin(), bytes.end())});
}

std::unique_ptr<Platform::Bitmap> GetImageFromBuffer(std::span<const std::byte> bytes,
                                                     Platform::DrawTarget* target,
                                                     Platform::ImageCodec& codec) {
    constexpr const char* Function = "DirectGL::Utilities::GetImageFromBuffer";
    if (!target) return nullptr;
    const std::optional<Platform::Image> image = codec.Decode(bytes);
    if (!image) {
        LogFailure(Function, __LINE__, Platform::GraphicsFailed);
        return nullptr;
    }
    auto made = target->CreateBitmap(*image);
    if (!made) LogFailure(Function, __LINE__, made.result);
    return std::move(made.object);
}

}  // namespace Utilities

void ImageResource::Set(const Gui* gui, ImageHandle handle) {
    handle_ = std::move(handle);
    bitmap_.reset();
    CreateBitmap(gui);
}

void ImageResource::CreateBitmap(const Gui* gui) {
    if (!handle_ || !gui) return;
    bitmap_ = Utilities::GetImageFromBuffer(handle_->bytes, gui->GetTarget(),
                                            gui->GetGraphics().GetImageCodec());
}

}  // namespace DirectGL
