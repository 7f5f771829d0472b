#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "platform/headless/recording_graphics.h"

/// The device objects of the recording target.
namespace Platform {

/// Counts itself while it lives.
template <class Base>
class Counted : public Base {
public:
    explicit Counted(RecordingGraphics& books) : books_(books) { ++books_.liveObjects; }
    ~Counted() override { --books_.liveObjects; }

private:
    RecordingGraphics& books_;
};

inline std::string Hex(Color color) {
    const auto byte = [](float value) {
        return static_cast<unsigned>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255.0F));
    };
    char text[16];
    std::snprintf(text, sizeof text, "#%02x%02x%02x%02x", byte(color.red), byte(color.green),
                  byte(color.blue), byte(color.alpha));
    return text;
}

inline std::string Number(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}

/// What both kinds of brush share here.
class RecordingPaint {
public:
    virtual ~RecordingPaint() = default;
    virtual Color At(float x, float y) const = 0;
    virtual std::string Describe() const = 0;
    float opacity = 1.0F;
};

class SolidRecordingBrush final : public Counted<Brush>, public RecordingPaint {
public:
    SolidRecordingBrush(RecordingGraphics& books, Color color) : Counted(books), color_(color) {}
    void SetOpacity(float value) override { opacity = value; }
    Color At(float, float) const override {
        return {color_.red, color_.green, color_.blue, color_.alpha * opacity};
    }
    std::string Describe() const override { return Hex(color_) + "*" + Number(opacity); }

private:
    Color color_;
};

class GradientRecordingBrush final : public Counted<GradientBrush>, public RecordingPaint {
public:
    GradientRecordingBrush(RecordingGraphics& books, Color start, Color end)
        : Counted(books), startColor_(start), endColor_(end) {}
    void SetOpacity(float value) override { opacity = value; }
    void SetPoints(PointF start, PointF end) override {
        start_ = start;
        end_ = end;
    }
    Color At(float x, float y) const override {
        const float dx = end_.x - start_.x;
        const float dy = end_.y - start_.y;
        const float length = dx * dx + dy * dy;
        float t = length > 0 ? ((x - start_.x) * dx + (y - start_.y) * dy) / length : 1.0F;
        t = std::clamp(t, 0.0F, 1.0F);
        const auto mix = [t](float a, float b) { return a + (b - a) * t; };
        return {mix(startColor_.red, endColor_.red), mix(startColor_.green, endColor_.green),
                mix(startColor_.blue, endColor_.blue),
                mix(startColor_.alpha, endColor_.alpha) * opacity};
    }
    std::string Describe() const override {
        return Hex(startColor_) + ">" + Hex(endColor_) + "*" + Number(opacity) + " " +
               Number(start_.x) + "," + Number(start_.y) + ">" + Number(end_.x) + "," +
               Number(end_.y);
    }

private:
    Color startColor_;
    Color endColor_;
    PointF start_{0.0F, 0.0F};
    PointF end_{0.0F, 1.0F};
};

class RecordingBitmap final : public Counted<Bitmap> {
public:
    RecordingBitmap(RecordingGraphics& books, Image image, bool opaque)
        : Counted(books), image_(std::move(image)), opaque_(opaque) {}
    Size GetSize() const override { return image_.size; }
    GraphicsResult Write(std::span<const std::byte> pixels, std::size_t stride) override {
        for (std::size_t y = 0; y < static_cast<std::size_t>(image_.size.height); ++y)
            std::copy_n(pixels.data() + y * stride, image_.Stride(),
                        image_.pixels.data() + y * image_.Stride());
        return GraphicsOk;
    }
    /// u and v from 0 to 1. Not premultiplied.
    Color At(float u, float v) const {
        const auto index = [](float part, int count) {
            return static_cast<std::size_t>(
                std::clamp(static_cast<int>(part * static_cast<float>(count)), 0, count - 1));
        };
        const std::byte* pixel = image_.pixels.data() +
                                 index(v, image_.size.height) * image_.Stride() +
                                 index(u, image_.size.width) * 4;
        const auto part = [&](int at) {
            return static_cast<float>(std::to_integer<int>(pixel[at])) / 255.0F;
        };
        const float alpha = opaque_ ? 1.0F : part(3);
        if (alpha <= 0.0F) return {};
        return {part(2) / alpha, part(1) / alpha, part(0) / alpha, alpha};
    }

private:
    Image image_;
    bool opaque_;
};

class RecordingArc final : public Counted<Arc> {
public:
    RecordingArc(RecordingGraphics& books, float arcRadius, float from, float degrees)
        : Counted(books), radius(arcRadius), start(from), sweep(degrees) {}
    const float radius;
    const float start;
    const float sweep;
};

}  // namespace Platform
