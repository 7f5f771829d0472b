#pragma once

#include <algorithm>
#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "directgl/gui_lock.h"
#include "directgl/layer.h"
#include "directgl/private_fonts.h"
#include "directgl/types.h"
#include "platform/desktop.h"

namespace DirectGL {

/// The root of the toolkit: one native window, one drawing target, named layers of widgets, and
/// the threads that live on them.
///
/// Three threads touch the widget tree, and each holds the lock for the whole of its pass: the
/// message thread (MessageLoop: every event, and the callback after each drain of the queue), the
/// rendering thread (a frame) and the updating thread (an update of every widget, and the end of
/// those that were deleted). Widget callbacks run with the lock held. Whoever else wants to touch
/// a widget, a layer or a brush holds a Gui::Guard; calls that may come without it say so.
class Gui {
public:
    /// The desktop has to outlive the Gui.
    explicit Gui(Platform::Desktop& desktop);
    ~Gui();
    Gui(const Gui&) = delete;
    Gui& operator=(const Gui&) = delete;

    class [[nodiscard]] Guard : GuiLock::Guard {
    public:
        explicit Guard(Gui& gui) : GuiLock::Guard(gui.lock_) {}
    };

    // The window. Message thread, before the other threads start or with the lock.

    /// Opens the window, hidden unless SetShowOnCreate, and its drawing target. An empty title
    /// becomes "DirectGLWindow". False when there is no window; a failed target is no failure, it
    /// is tried again with each frame.
    [[nodiscard]] bool Create(Platform::WindowSpec spec);
    void SetShowOnCreate(bool show) { showOnCreate_ = show; }
    /// Null before Create and after the window's end.
    Platform::NativeWindow* GetWindow() const { return window_.get(); }
    bool HasWindow() const { return window_ && window_->Exists(); }
    /// Destroys the native window and everything that is still in its queue.
    void DestroyWindow();
    /// From now on the frame's alpha shapes the window pixel by pixel.
    void SetLayered();
    void EnableColorKey() { colorKeyEnabled_ = true; }
    /// 0x00BBGGRR; magenta at first.
    void SetColorKey(std::uint32_t color) { colorKey_ = color; }
    void SetWindowOpacity(float opacity) { windowOpacity_ = opacity; }
    void SetRoundedRegion(int radius);
    /// Limits for resizing; a zero size is no limit.
    void SetMinTrack(Size size);
    void SetMaxTrack(Size size);
    Size GetMinTrack() const { return minTrack_; }
    Size GetMaxTrack() const { return maxTrack_; }
    /// The pointer's shape over widgets that do not ask for the hand.
    void SetCursor(Platform::CursorShape shape) { cursor_ = shape; }
    /// Off, the pointer keeps the shape that somebody else gives it.
    void SetManageCursor(bool manage) { manageCursor_ = manage; }
    /// Set while the pointer is over something to click.
    void SetHandCursor(bool hand) { handCursor_ = hand; }

    // Layers.

    /// Null when there is one of that name. Layers are drawn in the order of their making.
    Layer* AddLayer(const std::string& name);
    Layer* FindLayer(const std::string& name) const;
    /// Destroys every layer with its widgets, the orphans, the brushes and the target. Takes the
    /// lock itself; not from a callback of a widget.
    void Clear();

    // Events.

    /// Handlers see an event before the toolkit does, in the order of adding; first those for
    /// every window, then those of the main window, then those for all types.
    void AddGlobalMessageEvent(Platform::EventType type, MessageHandler handler);
    void AddMessageEvent(Platform::EventType type, MessageHandler handler);
    void AddAllMessagesEvent(MessageHandler handler);

    // Pacing. Any thread.

    void SetFps(std::uint32_t fps) { fps_ = fps; }
    void SetUps(std::uint32_t ups) { ups_ = ups; }
    std::uint32_t GetUps() const { return ups_; }
    /// Every pass of the rendering thread draws, changed or not.
    void SetAlwaysRender() { alwaysRender_ = true; }
    void SetCountFrames() { countFrames_ = true; }
    /// Frames of the last whole second, 0.0 until there was one.
    double GetMeasuredFps() const { return measuredFps_; }
    /// When the last frame was drawn, 0.0 before the first.
    double GetLastRenderTime() const { return lastRenderTime_; }
    double GetLastUpdateTime() const { return lastUpdateTime_; }
    /// Seconds since the Unix epoch.
    double Now() const;
    /// What the rendering thread last did, for a look from outside.
    enum class RenderState : std::uint8_t { Drew, HeldBack, Idle };
    RenderState GetRenderState() const { return renderState_; }

    // The life of the threads. Message thread.

    /// False when the thread runs already.
    bool StartRenderingThread();
    bool StartUpdatingThread();
    /// Pumps events and calls the callback with the time until Quit or the window's end; the
    /// callback's result is how many milliseconds to sleep then. Joins the threads in the end.
    /// Returns at once when there is no window. opening is a lock that the caller took before it
    /// started the threads: it is given up after the first call, so that no frame and no update
    /// comes before that.
    void MessageLoop(const std::function<double(double time)>& callback,
                     std::unique_ptr<Guard> opening = nullptr);
    /// Ends the loop. Any thread, without the lock.
    void Quit();

    // One pass each, what the loops and threads are made of. They take the lock themselves.

    /// Handles every event in the queue. False once the window has gone.
    bool PumpEvents();
    /// Draws a frame if one is due.
    void RenderPass();
    void UpdatePass();

    // For widgets. With the lock.

    /// Null while the device is lost; what it makes belongs to the widget until
    /// ReleaseDeviceObjects.
    Platform::DrawTarget* GetTarget() const { return target_.get(); }
    /// A brush of the cache, or null. It may be used until the end of the frame; its opacity is
    /// whatever its last user set.
    Platform::Brush* GetSolidColorBrush(const ColorRGBA& color);
    /// As above; the last user's points as well.
    Platform::GradientBrush* GetLinearGradientBrush(const ColorRGBA& start, const ColorRGBA& end);
    Platform::Graphics& GetGraphics() const { return desktop_.GetGraphics(); }
    Platform::TextEngine& GetTextEngine() const { return GetGraphics().GetTextEngine(); }
    PrivateFontBook& GetPrivateFonts() { return privateFonts_; }
    const PrivateFontBook& GetPrivateFonts() const { return privateFonts_; }
    Platform::Clipboard& GetClipboard() const { return desktop_.GetClipboard(); }
    Platform::Display& GetDisplay() const { return desktop_.GetDisplay(); }
    int GetWidth() const { return width_; }
    int GetHeight() const { return height_; }
    std::uint32_t GetDpi() const { return dpi_; }
    /// The pointer's last place in client pixels.
    Point GetMouse() const { return mouse_; }
    Window* GetPressed() const { return pressedLeft_ ? pressedLeft_ : pressedRight_; }
    Window* GetFocused() const { return focused_; }
    Window* GetEntered() const { return entered_; }
    void SetFocused(Window* widget) { focused_ = widget; }
    /// Asks for a frame. Any thread, without the lock.
    void MarkDirty() { dirty_ = true; }
    /// Makes a change that can alter what is under the pointer, and tells the widgets that it left
    /// and entered.
    void ChangeUnderPointer(const std::function<void()>& change);
    /// Sends leave and enter where the widget under the pointer is no longer the one that was
    /// entered; while a button is held nothing is sent.
    void RefreshHover();
    /// Takes the pointer's hover away: every button looks normal until the pointer moves.
    void ClearHover();
    /// Moves the native window with the pointer until the left button is released. For a window
    /// without a frame.
    void BeginWindowDrag();
    Window* HitTest(Point point) const;

    // For the owners of widgets.

    /// Nothing of the Gui refers to the widget or to what is below it any more.
    void Forget(const Window* widget);
    /// As Forget, for a widget that lives on: it is told that its press, its focus and its hover
    /// end.
    void LetGo(const Window* widget);
    /// Destroys the widget at the end of the next update.
    void DestroyLater(std::unique_ptr<Window> widget);
    /// Whether the widget was given to DestroyLater.
    bool IsDoomed(const Window* widget) const;
    /// Keeps a widget that no parent holds until it finds one again, or until Clear.
    void KeepOrphan(std::unique_ptr<Window> widget);
    std::unique_ptr<Window> TakeOrphan(const Window* widget);

private:
    using HandlerTable = std::map<Platform::EventType, std::vector<MessageHandler>>;
    struct ColorHash {
        std::size_t operator()(const ColorRGBA& color) const;
    };
    struct GradientKey {
        ColorRGBA start;
        ColorRGBA end;
        bool operator==(const GradientKey&) const = default;
    };
    struct GradientHash {
        std::size_t operator()(const GradientKey& key) const;
    };

    /// Visits the top-level widgets in drawing order; those that come meanwhile are left out.
    template <class Visit>
    void _ForEachWidget(Visit visit) const {
        const std::size_t layers = layers_.size();
        for (std::size_t i = 0; i < std::min(layers, layers_.size()); ++i) {
            const auto& widgets = layers_[i].second->GetWidgets();
            const std::size_t count = widgets.size();
            for (std::size_t k = 0; k < std::min(count, widgets.size()); ++k)
                visit(*widgets[k]);
        }
    }

    // gui_device.cpp
    void _RecreateDeviceResources();
    void _ReleaseDeviceResources();
    Platform::Created<Platform::DrawTarget> _CreateTarget();
    void _DrawFrame();
    Platform::GraphicsResult _DrawAndPresent();

    // gui_input.cpp
    void _Dispatch(const Platform::Event& event);
    static MessageEventRet _RunHandlers(const std::vector<MessageHandler>& handlers,
                                        const Platform::Event& event);
    MessageEventRet _RunTables(const Platform::Event& event) const;
    void _DispatchBuiltIn(const Platform::Event& event);
    void _OnResized(Size size);
    void _OnPointerMove(const Platform::Event& event);
    void _OnLeftDown();
    void _OnLeftUp();
    void _OnRightDown();
    void _OnRightUp();
    void _OnPointerLeave();
    void _OnWheel(const Platform::Event& event);
    void _OnKey(const Platform::Event& event);
    void _DragWindow();
    /// The widget under the pointer; null while that is elsewhere.
    Window* _HitUnderPointer() const;
    /// Tells the entered widget, if there is one, that the pointer has left it.
    void _LeaveEntered();
    void _CancelPress(Window*& pressed);
    void _ApplyCursor();

    // gui_threads.cpp
    void _RenderLoop();
    void _UpdateLoop();
    void _StopThreads();
    void _CountFrame(double time);

    Platform::Desktop& desktop_;
    PrivateFontBook privateFonts_;
    mutable GuiLock lock_;
    std::unique_ptr<Platform::NativeWindow> window_;
    std::unique_ptr<Platform::DrawTarget> target_;
    // The brushes go before the target that made them.
    std::unordered_map<ColorRGBA, std::unique_ptr<Platform::Brush>, ColorHash> solidBrushes_;
    std::unordered_map<GradientKey, std::unique_ptr<Platform::GradientBrush>, GradientHash>
        gradientBrushes_;

    HandlerTable windowHandlers_;
    HandlerTable globalHandlers_;
    std::vector<MessageHandler> allHandlers_;

    std::vector<std::pair<std::string, std::unique_ptr<Layer>>> layers_;
    std::deque<std::unique_ptr<Window>> pendingDelete_;
    std::vector<std::unique_ptr<Window>> orphans_;

    Window* pressedLeft_ = nullptr;
    Window* pressedRight_ = nullptr;
    Window* focused_ = nullptr;
    Window* entered_ = nullptr;  ///< who was last told that the pointer came in
    Point mouse_;
    int width_ = 0;
    int height_ = 0;
    std::uint32_t dpi_ = 96;
    Size minTrack_;
    Size maxTrack_;
    bool hoverGuard_ = false;
    bool hoverStale_ = false;  ///< the entered widget was taken away
    bool pressTaken_ = false;  ///< the left button is held, but its press has ended
    bool windowDragActive_ = false;
    Point windowDragOffset_;
    bool showOnCreate_ = true;
    Platform::CursorShape shownCursor_ = Platform::CursorShape::Arrow;
    std::uint32_t colorKey_ = 0x00FF00FF;
    unsigned failedFrames_ = 0;  ///< in a row
    double lastRecoveryTime_ = 0.0;
    double statisticsStart_ = 0.0;
    unsigned frameCount_ = 0;

    std::atomic<Platform::CursorShape> cursor_ = Platform::CursorShape::Arrow;
    std::atomic<bool> mouseOutside_ = true;
    std::atomic<bool> dirty_ = true;
    std::atomic<bool> countFrames_ = false;
    std::atomic<bool> alwaysRender_ = false;
    std::atomic<bool> minimized_ = false;
    std::atomic<bool> colorKeyEnabled_ = false;
    std::atomic<bool> handCursor_ = false;
    std::atomic<bool> manageCursor_ = true;
    std::atomic<bool> closing_ = false;
    std::atomic<bool> stopThreads_ = false;
    std::atomic<bool> layered_ = false;
    std::atomic<float> windowOpacity_ = 1.0F;
    std::atomic<std::uint32_t> fps_ = 15;
    std::atomic<std::uint32_t> ups_ = 30;
    std::atomic<double> lastRenderTime_ = 0.0;
    std::atomic<double> lastUpdateTime_ = 0.0;
    std::atomic<double> measuredFps_ = 0.0;
    std::atomic<RenderState> renderState_ = RenderState::Idle;

    std::thread renderThread_;
    std::thread updateThread_;
};

}  // namespace DirectGL
