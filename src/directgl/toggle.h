#pragma once

#include "directgl/image_resource.h"
#include "directgl/window.h"

namespace DirectGL {

/// A switch with a knob that slides between off and on.
class Toggle : public Window {
public:
    static constexpr WindowType Type = WindowType::Toggle;

    explicit Toggle(Gui* itsGui) : Window(itsGui) {}

    /// Does not run the changed callback. Without animation the knob is there at once.
    void SetOn(bool value, bool animate);
    bool IsOn() const { return on; }
    /// Where the knob is shown, 0.0 off to 1.0 on.
    float GetKnob() const { return knob; }
    /// Runs when the user flips the switch.
    void SetChanged(WidgetCallback callback) { changed.Set(std::move(callback)); }
    void SetColors(const ColorRGBA& off, const ColorRGBA& onColor, const ColorRGBA& knobColor);
    void SetKnobMargin(int pixels);
    void SetAnimationDuration(float seconds) { animDuration = seconds; }
    /// Images instead of colours; the knob's may be null, then the track shows alone.
    void SetImages(const ImageHandle& off, const ImageHandle& onImage,
                   const ImageHandle& knobImage);

    void Draw() override;
    void OnMouseUp() override;
    void Update(double time) override;
    void CreateDeviceObjects() override;
    void ReleaseDeviceObjects() override;

private:
    float GetTarget() const { return on ? 1.0F : 0.0F; }
    void StartSliding();
    RectF GetKnobRect() const;
    void DrawColors(Platform::DrawTarget& target) const;
    void DrawImages(Platform::DrawTarget& target) const;

    bool on = false;
    float knob = 0.0F;
    float animStart = 0.0F;
    float animTarget = 0.0F;
    double animStartTime = 0.0;
    float animDuration = 0.22F;
    ColorRGBA colorOff{0.23F, 0.23F, 0.27F, 1.0F};
    ColorRGBA colorOn{0.36F, 0.77F, 0.42F, 1.0F};
    ColorRGBA colorKnob{0.96F, 0.96F, 0.98F, 1.0F};
    int knobMargin = 2;
    ImageResource imageOff;
    ImageResource imageOn;
    ImageResource imageKnob;
    CallbackSlot changed;
};

}  // namespace DirectGL
