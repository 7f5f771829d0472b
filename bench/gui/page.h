#pragma once

#include <cstddef>
#include <vector>

/// What both programs draw in a full frame, so that one draws what the other does: a picture that
/// is stretched over the upper part, rounded rectangles, gradients, short texts and small icons
/// that are shown smaller than they are, on the launcher's window.
namespace Page {

struct Box {
    int x;
    int y;
    int width;
    int height;
};

inline constexpr int Width = 360;
inline constexpr int Height = 540;
inline constexpr Box Picture{0, 0, 360, 308};
inline constexpr int PictureWidth = 480;  ///< of the file
inline constexpr int PictureHeight = 410;
inline constexpr int IconSide = 32;  ///< of the file

/// count boxes in rows of perRow, from the given height on.
inline std::vector<Box> Rows(int count, int perRow, int top, int width, int height) {
    std::vector<Box> boxes;
    for (int i = 0; i < count; ++i) {
        const int pitch = Width / perRow;
        boxes.push_back({i % perRow * pitch + 2, top + i / perRow * (height + 4), width, height});
    }
    return boxes;
}

inline std::vector<Box> RoundedBoxes() {
    return Rows(30, 6, 312, 54, 30);
}
inline std::vector<Box> GradientBoxes() {
    return Rows(10, 5, 490, 66, 20);
}
inline std::vector<Box> TextBoxes() {
    return Rows(60, 6, 312, 54, 18);
}
inline std::vector<Box> IconBoxes() {
    return Rows(30, 10, 10, 20, 20);
}

/// A picture of soft colours in both directions: premultiplied BGRA, opaque unless icon.
inline std::vector<std::byte> MakePixels(int width, int height, bool icon) {
    std::vector<std::byte> pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int alpha = icon ? (x * y * 7) % 256 : 255;
            for (const int part : {x * 255 / width, y * 255 / height, (x + y) % 256, 255})
                pixels.push_back(static_cast<std::byte>(part * alpha / 255));
        }
    }
    return pixels;
}

}  // namespace Page
