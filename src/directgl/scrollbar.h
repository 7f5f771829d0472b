#pragma once

#include "directgl/button.h"
#include "directgl/window.h"

namespace DirectGL {

/// A vertical bar with a thumb on a track between two arrow buttons, for a value from 0 to 1.
class Scrollbar : public Window {
public:
    static constexpr WindowType Type = WindowType::Scrollbar;

    explicit Scrollbar(Gui* itsGui);

    /// Clamped; the thumb is there at once.
    void SetValue(float newValue);
    float GetValue() const { return value; }
    /// Clamped; the thumb glides there if smoothing is on.
    void SetTargetValue(float newValue);
    float GetTargetValue() const { return targetValue; }
    /// What one press of an arrow moves.
    void SetStep(float newStep) { step = newStep; }
    /// The share of the way to the target that each update takes; 0 is no gliding.
    void SetSmoothing(float share) { smoothing = share; }
    /// The thumb's share of the track.
    void SetThumbRatio(float ratio);
    void SetMinThumb(int pixels) { minThumb = pixels; }
    void SetArrowsVisible(bool shown);
    void SetTrackInset(int pixels);
    /// Runs at every change of the value.
    void SetValueChanged(WidgetCallback callback) { valueChanged.Set(std::move(callback)); }
    Button* GetUpButton() const { return upButton; }
    Button* GetDownButton() const { return downButton; }
    Button* GetThumb() const { return thumb; }

    using Window::SetSize;
    void SetSize(int newWidth, int newHeight) override;
    void Reset() override;
    void HideChildren() override;
    void DeleteChildren() override;
    void Update(double time) override;

protected:
    void ChildReleased(Window* child) override;

private:
    void MakeParts();
    void _AssignButtonEvents();
    Button* MakePart(int partWidth, int partHeight);
    bool IsPart(const Window* child) const;
    int GetTrackTop() const;
    int GetTrackLength() const;
    void StepBy(float delta);
    void DragThumb();
    /// Takes the value as where the thumb is and is going.
    void Settle(float newValue);
    void UpdatePosition();
    void PlaceParts();

    CallbackSlot valueChanged;
    bool draggingThumb = false;
    float value = 0.0F;
    float step = 1.0F / 30.0F;
    Point grab;
    int trackInset = 3;
    bool arrowsVisible = true;
    float targetValue = 0.0F;
    float smoothing = 0.0F;
    int minThumb = 20;
    Button* upButton = nullptr;
    Button* downButton = nullptr;
    Button* thumb = nullptr;
};

}  // namespace DirectGL
