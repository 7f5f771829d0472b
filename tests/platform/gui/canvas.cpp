#include "platform/gui/canvas.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/resources.h"

namespace TestSupport {

using namespace Platform;

namespace {

constexpr std::uint16_t FirstFont = 201;
constexpr std::uint16_t LastFont = 204;

std::unique_ptr<Graphics> OpenWithFonts() {
    auto graphics = OpenGraphics();
    PrivateFonts& fonts = graphics->GetPrivateFonts();
    for (std::uint16_t id = FirstFont; id <= LastFont; ++id)
        EXPECT_EQ(fonts.AddFile(FindOwnResource(id)), GraphicsOk);
    EXPECT_EQ(fonts.BuildCollection(), GraphicsOk);
    return graphics;
}

int ToByte(float part) {
    return static_cast<int>(std::lround(part * 255.0F));
}

}  // namespace

Graphics& SharedGraphics() {
    static const std::unique_ptr<Graphics> graphics = OpenWithFonts();
    return *graphics;
}

bool Pixel::IsNear(const Pixel& other, int tolerance) const {
    return std::max({std::abs(red - other.red), std::abs(green - other.green),
                     std::abs(blue - other.blue), std::abs(alpha - other.alpha)}) <= tolerance;
}

std::ostream& operator<<(std::ostream& out, const Pixel& pixel) {
    return out << "(" << pixel.red << " " << pixel.green << " " << pixel.blue << " alpha "
               << pixel.alpha << ")";
}

Pixel PixelOf(Color color) {
    return {ToByte(color.red * color.alpha), ToByte(color.green * color.alpha),
            ToByte(color.blue * color.alpha), ToByte(color.alpha)};
}

Pixel PixelAt(const Image& image, int x, int y) {
    const std::byte* pixel =
        image.pixels.data() + static_cast<std::size_t>(y) * image.Stride() + x * 4;
    const auto part = [pixel](int at) { return std::to_integer<int>(pixel[at]); };
    return {part(2), part(1), part(0), part(3)};
}

double CoveredArea(const Image& image) {
    double sum = 0.0;
    for (std::size_t at = 3; at < image.pixels.size(); at += 4)
        sum += std::to_integer<int>(image.pixels[at]) / 255.0;
    return sum;
}

Rect InkOf(const Image& image) {
    Rect ink{image.size.width, image.size.height, 0, 0};
    for (int y = 0; y < image.size.height; ++y) {
        for (int x = 0; x < image.size.width; ++x) {
            if (PixelAt(image, x, y).alpha < 8) continue;
            ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                   std::max(ink.bottom, y + 1)};
        }
    }
    return ink;
}

Canvas::Canvas(int width, int height) {
    auto made = SharedGraphics().CreateOffscreenTarget({width, height});
    EXPECT_TRUE(made) << std::hex << made.result;
    target_ = std::move(made.object);
}

std::unique_ptr<Brush> Canvas::Solid(Color color) {
    return std::move(target_->CreateSolidBrush(color).object);
}

Image Canvas::Draw(const std::function<void(DrawTarget&)>& draw) {
    target_->BeginFrame();
    target_->Clear({});
    draw(*target_);
    EXPECT_EQ(target_->EndFrame(nullptr), GraphicsOk);
    Image frame = target_->ReadFrame();
    EXPECT_EQ(frame.size, target_->GetSize());
    EXPECT_FALSE(frame.IsEmpty());
    return frame;
}

Image MakeImage(int width, int height, const std::function<Color(int x, int y)>& colorAt) {
    Image image{{width, height}, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Pixel pixel = PixelOf(colorAt(x, y));
            for (const int part : {pixel.blue, pixel.green, pixel.red, pixel.alpha})
                image.pixels.push_back(static_cast<std::byte>(part));
        }
    }
    return image;
}

}  // namespace TestSupport
