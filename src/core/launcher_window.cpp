#include "core/launcher_window.h"

#include "common/boot_log.h"
#include "core/globals.h"

namespace Launcher {

namespace {

constexpr int CornerSize = 24;
constexpr std::uint32_t Magenta = 0x00FF00FF;

bool OpenHidden(DirectGL::Gui& gui, Platform::Desktop& desktop) {
    const Platform::Size screen = desktop.GetDisplay().DesktopSize();
    BootLog("CreateLauncherWindow: gui.Create -- entering (D3D10.1 + D2D device)");
    gui.SetShowOnCreate(false);
    const bool created = gui.Create({.title = L"Tolvan Online",
                                     .x = screen.width / 2 - WindowWidth / 2,
                                     .y = screen.height / 2 - WindowHeight / 2,
                                     .width = WindowWidth,
                                     .height = WindowHeight});
    BootLog("CreateLauncherWindow: gui.Create -- returned");
    return created;
}

DirectGL::MessageEventRet HaltInsteadOfClosing(const Platform::Event&) {
    BootLog("WM_CLOSE received -> Halt");
    g_state = State::Halt;
    return DirectGL::MessageEventRet::HandledZero;
}

}  // namespace

bool CreateLauncherWindow(DirectGL::Gui& gui, Platform::Desktop& desktop) {
    if (!OpenHidden(gui, desktop)) return false;
    gui.GetWindow()->MakeBorderless();
    BootLog("CreateLauncherWindow: restyled to WS_POPUP");
    gui.SetRoundedRegion(CornerSize);
    gui.SetLayered();
    gui.EnableColorKey();
    gui.SetColorKey(Magenta);
    gui.AddMessageEvent(Platform::EventType::Close, HaltInsteadOfClosing);
    BootLog("CreateLauncherWindow: done (layered + colourkey + WM_CLOSE hook)");
    return true;
}

WindowPosition PositionOf(const DirectGL::Gui& gui) {
    const Platform::NativeWindow* window = gui.GetWindow();
    if (!window) return {};
    const Platform::Rect frame = window->GetFrameRect();
    return {frame.left, frame.top};
}

}  // namespace Launcher
