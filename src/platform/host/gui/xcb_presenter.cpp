#include "platform/host/gui/xcb_presenter.h"

#include <algorithm>
#include <cstring>
#include <xcb/shm.h>

namespace Platform::Host {

namespace {

/// Requests without the extension for large ones hold this many bytes.
constexpr std::size_t MostBytesPerRequest = 200'000;

std::uint32_t Scale(std::uint32_t pixel, unsigned share) {
    std::uint32_t scaled = 0;
    for (int shift = 0; shift < 32; shift += 8)
        scaled |= ((pixel >> shift & 0xFFU) * share / 255) << shift;
    return scaled;
}

}  // namespace

XcbPresenter::XcbPresenter(xcb_window_t window, int depth) : window_(window), depth_(depth) {
    if (connection_.IsBroken()) return;
    const XReply<xcb_shm_query_version_reply_t> version(xcb_shm_query_version_reply(
        connection_.Get(), xcb_shm_query_version(connection_.Get()), nullptr));
    // From 1.2 on the memory is handed over as a descriptor.
    shares_ = version && (version->major_version > 1 || version->minor_version >= 2);
    context_ = xcb_generate_id(connection_.Get());
    xcb_create_gc(connection_.Get(), context_, window_, 0, nullptr);
}

XcbPresenter::~XcbPresenter() {
    WaitForServer();
    DetachSharedMemory();
}

void XcbPresenter::SetCornerRadius(int radius) {
    const std::lock_guard guard(mutex_);
    corners_ = CornerMask(radius);
    lost_ = true;
}

bool XcbPresenter::AttachSharedMemory() {
    if (!shares_) return false;
    Descriptor memory = frame_.DuplicateDescriptor();
    if (!memory) return false;
    const xcb_shm_seg_t segment = xcb_generate_id(connection_.Get());
    const auto cookie = xcb_shm_attach_fd_checked(connection_.Get(), segment, memory.Release(), 1);
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection_.Get(), cookie));
    if (error) {
        shares_ = false;
        return false;
    }
    segment_ = segment;
    return true;
}

void XcbPresenter::DetachSharedMemory() {
    if (segment_ != 0) xcb_shm_detach(connection_.Get(), std::exchange(segment_, 0));
}

void XcbPresenter::Prepare(Size size) {
    if (frame_.GetSize() == size) return;
    DetachSharedMemory();
    if (frame_.Allocate(size)) AttachSharedMemory();
}

void XcbPresenter::WaitForServer() {
    if (!pending_) return;
    const XReply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection_.Get(), *pending_, nullptr));
    pending_.reset();
}

bool XcbPresenter::DrainErrors() {
    bool failed = connection_.IsBroken();
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.Get())})
        if (event->response_type == 0) failed = true;
    return failed;
}

void XcbPresenter::CopyPart(const std::byte* pixels, std::size_t stride,
                            const cairo_rectangle_int_t& part, const Presentation& presentation) {
    const Size size = frame_.GetSize();
    const unsigned opacity =
        static_cast<unsigned>(std::clamp(presentation.opacity, 0.0F, 1.0F) * 255.0F);
    const int radius = opaque_ ? 0 : corners_.Radius();
    for (int y = part.y; y < part.y + part.height; ++y) {
        const std::size_t left = static_cast<std::size_t>(part.x) * 4;
        std::byte* row = frame_.Pixels() + static_cast<std::size_t>(y) * frame_.Stride() + left;
        std::memcpy(row, pixels + static_cast<std::size_t>(y) * stride + left,
                    static_cast<std::size_t>(part.width) * 4);
        const bool nearCorner = std::min(y, size.height - 1 - y) < radius;
        if (!opaque_ && opacity == 255 && !nearCorner) continue;
        auto* values = reinterpret_cast<std::uint32_t*>(row);
        for (int i = 0; i < part.width; ++i) {
            if (opaque_) {
                values[i] |= 0xFF000000U;
                continue;
            }
            const unsigned corner = nearCorner ? corners_.CoverageIn(size, part.x + i, y) : 255U;
            const unsigned share = corner * opacity / 255;
            if (share != 255) values[i] = Scale(values[i], share);
        }
    }
}

void XcbPresenter::PutPart(xcb_drawable_t drawable, const cairo_rectangle_int_t& part) {
    const Size size = frame_.GetSize();
    const auto u16 = [](int value) { return static_cast<std::uint16_t>(value); };
    const auto i16 = [](int value) { return static_cast<std::int16_t>(value); };
    const auto depth = static_cast<std::uint8_t>(depth_);
    if (segment_ != 0) {
        xcb_shm_put_image(connection_.Get(), drawable, context_, u16(size.width), u16(size.height),
                          u16(part.x), u16(part.y), u16(part.width), u16(part.height), i16(part.x),
                          i16(part.y), depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
        return;
    }
    // Whole rows, as many as fit into a request.
    const int rows = std::max(1, static_cast<int>(MostBytesPerRequest / frame_.Stride()));
    for (int y = part.y; y < part.y + part.height; y += rows) {
        const int count = std::min(rows, part.y + part.height - y);
        const std::byte* from = frame_.Pixels() + static_cast<std::size_t>(y) * frame_.Stride();
        xcb_put_image(connection_.Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, context_,
                      u16(size.width), u16(count), 0, i16(y), 0, depth,
                      static_cast<std::uint32_t>(static_cast<std::size_t>(count) * frame_.Stride()),
                      reinterpret_cast<const std::uint8_t*>(from));
    }
}

GraphicsResult XcbPresenter::ShowFrame(const std::byte* pixels, std::size_t stride, Size size,
                                       const cairo_region_t* changed,
                                       const Presentation& presentation) {
    const std::lock_guard guard(mutex_);
    if (connection_.IsBroken()) return GraphicsTargetLost;
    // The server may still be reading the last frame.
    WaitForServer();
    if (DrainErrors()) return GraphicsTargetLost;
    Prepare(size);
    if (!frame_.Pixels()) return GraphicsOutOfMemory;
    for (int i = 0, count = cairo_region_num_rectangles(changed); i < count; ++i) {
        cairo_rectangle_int_t part;
        cairo_region_get_rectangle(changed, i, &part);
        CopyPart(pixels, stride, part, presentation);
        PutPart(window_, part);
    }
    pending_ = xcb_get_input_focus(connection_.Get());
    xcb_flush(connection_.Get());
    return GraphicsOk;
}

void XcbPresenter::SetBackgroundFromFrame(bool set) {
    const std::lock_guard guard(mutex_);
    if (connection_.IsBroken() || !frame_.Pixels()) return;
    const Size size = frame_.GetSize();
    if (set && background_ == 0) {
        background_ = xcb_generate_id(connection_.Get());
        xcb_create_pixmap(connection_.Get(), static_cast<std::uint8_t>(depth_), background_,
                          window_, static_cast<std::uint16_t>(size.width),
                          static_cast<std::uint16_t>(size.height));
        PutPart(background_, {0, 0, size.width, size.height});
    }
    const std::uint32_t pixmap = set ? background_ : std::uint32_t{XCB_BACK_PIXMAP_NONE};
    xcb_change_window_attributes(connection_.Get(), window_, XCB_CW_BACK_PIXMAP, &pixmap);
    if (!set && background_ != 0) xcb_free_pixmap(connection_.Get(), std::exchange(background_, 0));
    connection_.Synchronise();
}

}  // namespace Platform::Host
