#pragma once

#include <array>

#include "directgl/image_resource.h"
#include "directgl/text.h"
#include "directgl/window.h"

namespace DirectGL {

/// A control to press. It is drawn in a colour or an image for each of its states, and may carry
/// a label and a child that is seen only while the pointer is over it. The click comes with the
/// release, wherever the pointer is by then.
class Button : public Window {
public:
    static constexpr WindowType Type = WindowType::Button;
    enum class State : std::uint8_t { Normal = 0, Hover = 1, Pressed = 2 };

    explicit Button(Gui* itsGui) : Window(itsGui) {}

    void SetClicked(WidgetCallback callback) { clicked.Set(std::move(callback)); }
    /// Disabled, it ignores the pointer and shows at 40 percent.
    void SetEnabled(bool value);
    bool IsEnabled() const { return enabled; }
    State GetState() const { return state; }

    void SetColors(const ColorRGBA& normal, const ColorRGBA& hover, const ColorRGBA& press);
    /// The colours at the far end of a gradient from those of SetColors.
    void SetGradient(const ColorRGBA& normalFar, const ColorRGBA& hoverFar,
                     const ColorRGBA& pressFar, bool isHorizontal = false);
    /// A stroke along the edge; turning it on with no width makes it 1.
    void SetOutline(bool on, std::uint32_t strokeWidth = 0, const ColorRGBA& color = {});
    /// Round ends, or the corner radius where one is set.
    void SetPill(bool value);
    /// Images instead of colours. Only the first is needed; nulls fall back on it.
    void SetImages(const ImageHandle& normal, const ImageHandle& hover, const ImageHandle& press,
                   const ImageHandle& disabled);
    /// The colour that a label gets.
    void SetTextColor(const ColorRGBA& color);
    /// Makes one of the children the label: it takes the text colour, lets the pointer through,
    /// and stays when the children are hidden or deleted.
    void SetLabel(Text* text);
    Text* GetLabel() const { return label; }
    /// Likewise for a child that shows only while the pointer is over the button.
    void SetHoverChild(Window* child);
    /// Whether the pointer becomes a hand over the button.
    void SetHandOnHover(bool value) { handOnHover = value; }

    void Reset() override;
    void Draw() override;
    void HideChildren() override;
    void ClearHover() override;
    void DeleteChildren() override;
    void OnMouseEnter() override;
    void OnMouseLeave() override;
    void OnMouseDown() override;
    void OnMouseUp() override;
    void OnPressCancelled() override;
    void CreateDeviceObjects() override;
    void ReleaseDeviceObjects() override;

protected:
    void ChildReleased(Window* child) override;

private:
    struct StateColors {
        ColorRGBA normal;
        ColorRGBA hover;
        ColorRGBA press;
        const ColorRGBA& For(State look) const;
    };
    enum ImageIndex : std::size_t { NormalImage, HoverImage, PressImage, DisabledImage, Images };

    bool IsPart(const Window* child) const {
        return child && (child == label || child == hoverChild);
    }
    void SetHover(bool over);
    void DrawImage(Platform::DrawTarget& target, const RectF& rect) const;
    void DrawFace(Platform::DrawTarget& target, const RectF& rect) const;
    void DrawOutline(Platform::DrawTarget& target, const RectF& rect) const;
    Platform::Brush* FaceBrush(const RectF& rect) const;
    float PillRadius() const;

    static const StateColors DefaultColors;

    StateColors colors = DefaultColors;
    StateColors farColors;
    ColorRGBA outlineColor;
    ColorRGBA textColor{1.0F, 1.0F, 1.0F, 1.0F};
    std::uint32_t outlineWidth = 0;
    std::array<ImageResource, Images> images;
    CallbackSlot clicked;
    State state = State::Normal;
    Text* label = nullptr;
    Window* hoverChild = nullptr;
    bool gradient = false;
    bool horizontal = false;
    bool outlined = false;
    bool pill = false;
    bool armed = false;
    bool handOnHover = true;
    bool enabled = true;
};

}  // namespace DirectGL
