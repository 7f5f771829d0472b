#pragma once

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "directgl/callback_slot.h"
#include "directgl/types.h"

namespace DirectGL {

class Gui;
class Layer;

/// The base of everything on screen: a rectangle with a parent, ordered children, a style, an
/// opacity, animations, timers, and a slot for each kind of event.
///
/// Positions are whole pixels relative to the parent. A widget is made by a Create of its layer
/// or its parent, lives in exactly one of their lists, which owns it, and is drawn and updated in
/// the order of that list. It is destroyed on the updating thread some time after it was deleted,
/// so that it may be deleted from its own callbacks. Everything here needs the toolkit's lock.
class Window {
public:
    static constexpr WindowType Type = WindowType::Window;

    explicit Window(Gui* gui);
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // The tree.

    /// A new child, drawn above its siblings.
    template <class T>
    T* Create(const std::wstring& childName = {}) {
        auto widget = std::make_unique<T>(gui);
        T* made = widget.get();
        made->EnterLayer(layer, T::Type, childName);
        AdoptChild(std::move(widget));
        return made;
    }
    /// Takes the child from where it is, or owns it from now on if nothing did. Null, a present
    /// child, a deleted one, this widget itself and its ancestors are ignored.
    void AddChild(Window* child);
    /// Cuts the child off without destroying it: the Gui keeps it until it finds a parent again or
    /// until Gui::Clear; without a Gui the caller owns it. A stranger is left alone.
    void RemoveChild(Window* child);
    /// Cuts the child off and has it destroyed. A stranger is left alone.
    void DeleteChild(Window* child);
    virtual void DeleteChildren();
    /// Deletes this widget through its parent or its layer. Twice is once.
    void Remove();
    /// Moves this widget to another parent; with null it is cut off.
    void SetParentWindow(Window* newParent);
    void BringToFront();
    void RaiseChild(Window* child);
    const std::deque<std::unique_ptr<Window>>& GetChildren() const { return children; }
    bool IsChild(const Window* candidate) const;
    Window* GetParent() const { return parent; }
    /// The topmost ancestor, or this.
    Window* GetRoot();
    /// This widget or the first below it, depth first; null when there is none.
    Window* FindById(int wanted);
    Gui* GetGui() const { return gui; }
    bool HasGui() const { return gui != nullptr; }
    Layer* GetLayer() const { return layer; }
    int GetId() const { return id; }
    void SetId(int value) { id = value; }
    WindowType GetType() const { return type; }
    void SetType(WindowType value) { type = value; }
    bool IsType(WindowType value) const { return type == value; }
    const std::wstring& GetName() const { return name; }
    std::string GetNameUtf8() const;
    /// Keeps the layer's book of names.
    void SetName(const std::wstring& value);
    void SetName(std::string_view utf8);
    /// For the factories: tells the widget what it is and where it belongs.
    void EnterLayer(Layer* itsLayer, WindowType itsType, const std::wstring& itsName);

    // Place and size.

    Point GetPosition() const { return {x, y}; }
    Size GetSize() const { return {width, height}; }
    Rect GetRect() const { return {x, y, x + width, y + height}; }
    int GetX() const { return x; }
    int GetY() const { return y; }
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }
    int GetRight() const { return x + width; }
    int GetBottom() const { return y + height; }
    Point GetAbsolutePosition() const;
    Rect GetAbsoluteRect() const;
    void SetPosition(int newX, int newY);
    void SetPosition(Point position) { SetPosition(position.x, position.y); }
    virtual void SetSize(int newWidth, int newHeight);
    void SetSize(Size size) { SetSize(size.width, size.height); }
    void MoveRight(int by) { SetPosition(x + by, y); }
    void MoveLeft(int by) { SetPosition(x - by, y); }
    void MoveDown(int by) { SetPosition(x, y + by); }
    void MoveUp(int by) { SetPosition(x, y - by); }
    void AlignLeft();
    void AlignRight();
    void AlignTop();
    void AlignBottom();
    void CenterVertically();
    void CenterHorizontally();
    /// In the absolute rectangle, all four edges included.
    bool Contains(Point point) const;
    bool Contains(int pointX, int pointY) const { return Contains({pointX, pointY}); }
    /// The topmost widget at the point that takes the pointer, or null. Children outside of the
    /// rectangle are found too, except a FrameWindow's.
    Window* HitTest(Point point);
    Rect GetClipRect() const { return clipRect; }
    virtual void UpdateClipRect();

    // Looks.

    void SetStyle(const WindowStyle& value);
    /// Fill and border of one colour.
    void SetColor(const ColorRGBA& color);
    const WindowStyle* GetStyle() const { return style.get(); }
    void SetCornerRadius(int radius);
    int GetCornerRadius() const { return cornerRadius; }
    void SetOpacity(float value);
    float GetOpacity() const { return opacity; }
    /// With every ancestor's.
    float GetEffectiveOpacity() const;
    /// Kept and summed for whoever asks; drawing does not turn anything.
    void SetRotation(float degrees);
    void Rotate(float degrees) { SetRotation(rotation + degrees); }
    float GetRotation() const { return rotation; }
    float GetEffectiveRotation() const;
    /// The opacity swings between min and max, up and down once in periodMs.
    void SetPulse(float min, float max, float periodMs);

    // States.

    virtual void Show();
    virtual void Hide();
    void ShowChildren();
    virtual void HideChildren();
    bool IsVisible() const { return visible; }
    /// Without the mouse the pointer goes through to what lies behind; children still take it.
    void EnableMouse() { mouseEnabled = true; }
    void DisableMouse() { mouseEnabled = false; }
    bool AcceptsMouse() const { return mouseEnabled; }
    virtual void Focus();
    virtual void Blur();
    bool IsFocused() const { return focusedFlag; }
    /// Lets the pointer drag the widget within its parent.
    void SetDraggable(bool value) { draggable = value; }
    bool IsDraggable() const { return draggable; }
    /// Lets the pointer drag the native window by this widget.
    void SetNativeDragHandle(bool value) { nativeDragHandle = value; }
    /// Back to what it was at birth: no children, style, callbacks and timers.
    virtual void Reset();
    /// Takes away the look of being under the pointer, here and below.
    virtual void ClearHover();

    // Animations, counted in updates at the rate that the Gui has when they start.

    /// The callback runs when the target is reached; without one an earlier one stays.
    void FadeTo(float target, double seconds, WidgetCallback callback = {});
    void MoveTo(Point target, double seconds, WidgetCallback callback = {});
    void ResizeTo(Size target, double seconds, WidgetCallback callback = {});
    void StepFade();
    void StepMove();
    virtual void StepResize();

    /// Runs the callback every so many seconds, first after that time, until it answers Done.
    int AddTimer(double seconds, WidgetCallback callback);
    void RemoveTimer(int timerId);

    // Passes of the threads.

    /// Asks for two frames.
    void Invalidate();
    bool NeedsRedraw() const { return redrawCount != 0; }
    /// Whether this widget or one below it wants a frame; counts the asking down.
    virtual bool ConsumeRedraw();
    virtual void Update(double time);
    virtual void Draw();
    virtual void DrawBackground();
    virtual void DrawChildren();
    /// After a new target; before a target goes. Subclasses do their own part first.
    virtual void CreateDeviceObjects();
    virtual void ReleaseDeviceObjects();

    // Events. Each runs its callback; subclasses add what they do themselves.

    virtual void OnMouseUp();
    virtual void OnMouseDown();
    virtual void OnRightUp();
    virtual void OnRightDown();
    virtual void OnMouseMove();
    virtual void OnMouseEnter();
    virtual void OnMouseLeave();
    /// The press ended without a release: another window took the pointer.
    virtual void OnPressCancelled();
    /// Without a callback the parent gets the event.
    virtual void OnWheel(const WheelEvent& event);
    virtual void OnKeyDown(const KeyEvent& event);
    virtual void OnKeyUp(const KeyEvent& event);
    virtual void OnFocus();
    virtual void OnBlur();
    virtual void OnShow();
    virtual void OnHide();
    virtual void OnResized();
    virtual void OnMoved();
    virtual void OnWindowResized();
    virtual void OnParentMoved();
    virtual void OnParentResized();
    virtual void OnParentRotated();
    virtual void OnDragStart();
    virtual void OnDrag();
    virtual void OnDragEnd();
    /// The last ones, for callbacks.
    const WheelEvent& GetWheelEvent() const { return wheelEvent; }
    const KeyEvent& GetKeyEvent() const { return keyEvent; }

    // Callbacks; a new one takes the place of the old one.

    void SetMouseUp(WidgetCallback callback) { Set(Slot::MouseUp, std::move(callback)); }
    void SetMouseDown(WidgetCallback callback) { Set(Slot::MouseDown, std::move(callback)); }
    void SetRightUp(WidgetCallback callback) { Set(Slot::RightUp, std::move(callback)); }
    void SetRightDown(WidgetCallback callback) { Set(Slot::RightDown, std::move(callback)); }
    void SetMouseMove(WidgetCallback callback) { Set(Slot::MouseMove, std::move(callback)); }
    void SetMouseEnter(WidgetCallback callback) { Set(Slot::MouseEnter, std::move(callback)); }
    void SetMouseLeave(WidgetCallback callback) { Set(Slot::MouseLeave, std::move(callback)); }
    void SetPressCancelled(WidgetCallback callback) {
        Set(Slot::PressCancelled, std::move(callback));
    }
    void SetWheel(WidgetCallback callback) { Set(Slot::Wheel, std::move(callback)); }
    void SetKeyDown(WidgetCallback callback) { Set(Slot::KeyDown, std::move(callback)); }
    void SetKeyUp(WidgetCallback callback) { Set(Slot::KeyUp, std::move(callback)); }
    void SetFocus(WidgetCallback callback) { Set(Slot::Focus, std::move(callback)); }
    void SetBlur(WidgetCallback callback) { Set(Slot::Blur, std::move(callback)); }
    void SetShow(WidgetCallback callback) { Set(Slot::Show, std::move(callback)); }
    void SetHide(WidgetCallback callback) { Set(Slot::Hide, std::move(callback)); }
    void SetResized(WidgetCallback callback) { Set(Slot::Resized, std::move(callback)); }
    void SetMoved(WidgetCallback callback) { Set(Slot::Moved, std::move(callback)); }
    void SetUpdate(WidgetCallback callback) { Set(Slot::Update, std::move(callback)); }
    void SetRedrawCheck(WidgetCallback callback) { Set(Slot::RedrawCheck, std::move(callback)); }
    void SetDeviceObjectsCreated(WidgetCallback callback) {
        Set(Slot::DeviceObjectsCreated, std::move(callback));
    }
    void SetWindowResized(WidgetCallback callback) {
        Set(Slot::WindowResized, std::move(callback));
    }
    void SetParentMoved(WidgetCallback callback) { Set(Slot::ParentMoved, std::move(callback)); }
    void SetParentResized(WidgetCallback callback) {
        Set(Slot::ParentResized, std::move(callback));
    }
    void SetParentRotated(WidgetCallback callback) {
        Set(Slot::ParentRotated, std::move(callback));
    }
    void SetDragStart(WidgetCallback callback) { Set(Slot::DragStart, std::move(callback)); }
    void SetDrag(WidgetCallback callback) { Set(Slot::Drag, std::move(callback)); }
    void SetDragEnd(WidgetCallback callback) { Set(Slot::DragEnd, std::move(callback)); }

protected:
    enum class Slot : std::uint8_t {
        MouseUp,
        MouseDown,
        RightUp,
        RightDown,
        MouseMove,
        WindowResized,
        Focus,
        Blur,
        MouseEnter,
        MouseLeave,
        PressCancelled,
        Resized,
        Moved,
        Show,
        Hide,
        Wheel,
        KeyDown,
        KeyUp,
        Update,
        FadeDone,
        MoveDone,
        ResizeDone,
        RedrawCheck,
        DeviceObjectsCreated,
        ParentResized,
        ParentMoved,
        ParentRotated,
        DragStart,
        DragEnd,
        Drag,
        Count
    };
    void Set(Slot slot, WidgetCallback callback);
    /// True when there was a callback.
    bool Run(Slot slot);
    /// Visits the children in drawing order; those that come meanwhile are left out.
    template <class Visit>
    void ForEachChild(Visit visit) const {
        const std::size_t count = children.size();
        for (std::size_t i = 0; i < std::min(count, children.size()); ++i)
            visit(*children[i]);
    }
    /// A child was cut off or deleted; for widgets that remember one.
    virtual void ChildReleased(Window*) {}
    /// Deletes the children that the predicate picks.
    void DeleteChildrenWhere(const std::function<bool(const Window*)>& picks);
    /// The space to align in: the parent's, else the Gui's, else none.
    Size GetAlignmentSpace() const;
    double Now() const;
    Point GetMouse() const;

    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    Rect clipRect;
    Window* parent = nullptr;
    std::deque<std::unique_ptr<Window>> children;
    Layer* layer = nullptr;
    Gui* gui;
    WindowType type = WindowType::Window;
    int id = -1;
    std::wstring name;
    std::unique_ptr<WindowStyle> style;
    std::uint8_t redrawCount = 2;
    bool focusedFlag = false;
    bool visible = true;
    bool mouseEnabled = true;
    bool draggable = false;
    bool dragging = false;
    bool nativeDragHandle = false;
    int cornerRadius = 0;
    float opacity = 1.0F;
    float rotation = 0.0F;
    WheelEvent wheelEvent;
    KeyEvent keyEvent;

private:
    /// A pair of values on their way to a target, as a position or a size.
    struct Motion {
        int targetA = 0;
        int targetB = 0;
        float stepA = 0.0F;  ///< per update
        float stepB = 0.0F;
        float accumA = 0.0F;
        float accumB = 0.0F;
    };
    struct Timer {
        WidgetCallback callback;
        double nextTime = 0.0;
        double interval = 0.0;
        int timerId = 0;
    };
    void JoinLayer(Layer* itsLayer);
    double TicksIn(double seconds) const;
    void StartMotion(Motion& motion, int fromA, int fromB, int toA, int toB, double seconds) const;
    /// One tick; true while there was something to do. done tells that the target is reached.
    static bool StepMotion(Motion& motion, int& a, int& b, bool& done);
    void StepPulse(double time);
    void RunTimers(double time);
    void AdoptChild(std::unique_ptr<Window> child);
    std::unique_ptr<Window> ReleaseChild(Window* child);
    void BeginDrag();
    void DragMove();
    void EndDrag();
    void Discard(std::unique_ptr<Window> child);

    std::array<CallbackSlot, static_cast<std::size_t>(Slot::Count)> callbacks;
    Motion move;
    Motion resize;
    Point dragOffset;
    float opacityTarget = 1.0F;
    float opacityStep = 0.0F;
    bool pulseEnabled = false;
    float pulseMin = 0.0F;
    float pulseMax = 1.0F;
    float pulsePeriod = 1000.0F;
    std::deque<Timer> timers;
    int lastTimerId = 0;
};

}  // namespace DirectGL
