#pragma once

#include <atomic>
#include <mutex>
#include <optional>

#include "platform/host/gui/corner_mask.h"
#include "platform/host/gui/frame_sink.h"
#include "platform/host/gui/shared_frame.h"
#include "platform/host/gui/x_connection.h"

namespace Platform::Host {

/// Puts finished frames on an X11 window, over a connection of its own and through shared memory
/// where the server takes it. Any thread, one call at a time being in work.
class XcbPresenter final : public FrameSink {
public:
    /// The window has a visual of depth bits; 32 have alpha.
    XcbPresenter(xcb_window_t window, int depth);
    ~XcbPresenter() override;

    GraphicsResult ShowFrame(const std::byte* pixels, std::size_t stride, Size size,
                             const cairo_region_t* changed,
                             const Presentation& presentation) override;
    bool TakeLoss() override { return lost_.exchange(false); }

    /// The screen no longer shows the last frame.
    void MarkLost() { lost_ = true; }
    /// Frames keep no alpha; the window is as opaque as the screen.
    void SetOpaque(bool opaque) { opaque_ = opaque; }
    /// Cuts the corners out of the frames' alpha.
    void SetCornerRadius(int radius);
    /// The last frame becomes what the server paints when it shows the window, so that it does not
    /// appear empty; False drops that again.
    void SetBackgroundFromFrame(bool set);

private:
    void Prepare(Size size);
    bool AttachSharedMemory();
    void DetachSharedMemory();
    void CopyPart(const std::byte* pixels, std::size_t stride, const cairo_rectangle_int_t& part,
                  const Presentation& presentation);
    void PutPart(xcb_drawable_t drawable, const cairo_rectangle_int_t& part);
    void WaitForServer();
    bool DrainErrors();

    const xcb_window_t window_;
    const int depth_;
    XConnection connection_;
    std::mutex mutex_;  ///< guards what follows
    xcb_gcontext_t context_ = 0;
    SharedFrame frame_;
    std::uint32_t segment_ = 0;  ///< 0 when the pixels go over the wire
    bool shares_ = false;
    CornerMask corners_{0};
    std::optional<xcb_get_input_focus_cookie_t> pending_;
    xcb_pixmap_t background_ = 0;
    std::atomic<bool> lost_ = false;
    std::atomic<bool> opaque_ = true;
};

}  // namespace Platform::Host
