#pragma once

#include <memory>

#include "platform/clipboard.h"
#include "platform/created.h"
#include "platform/display.h"
#include "platform/drawing.h"
#include "platform/fonts.h"
#include "platform/image_codec.h"
#include "platform/text_layout.h"
#include "platform/time_source.h"
#include "platform/window.h"

namespace Platform {

/// Pictures and text without a window: what draws, and what measures. Outlives all its objects.
class Graphics {
public:
    virtual ~Graphics() = default;

    virtual TextEngine& GetTextEngine() = 0;
    virtual PrivateFonts& GetPrivateFonts() = 0;
    virtual ImageCodec& GetImageCodec() = 0;
    /// A target that only ReadFrame shows.
    virtual Created<DrawTarget> CreateOffscreenTarget(Size size) = 0;
};

/// This machine's drawing, in the adapter's GUI library. Never null.
std::unique_ptr<Graphics> OpenGraphics();

/// Everything of the machine that the toolkit uses. It lives on the message thread and outlives
/// its windows.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// One window at a time.
    virtual Created<NativeWindow> OpenWindow(const WindowSpec& spec) = 0;
    virtual Clipboard& GetClipboard() = 0;
    virtual Display& GetDisplay() = 0;
    virtual Graphics& GetGraphics() = 0;
    virtual TimeSource& GetTimeSource() = 0;
};

/// This machine's desktop, in the adapter's GUI library. Never null: where its display cannot be
/// reached OpenWindow fails. On the host a session without any display (no DISPLAY), or one that
/// says TOLVAN_WINDOW=none, gets a desktop whose windows nobody sees.
std::unique_ptr<Desktop> OpenDesktop();

}  // namespace Platform
