#include "platform/entry.h"

#include <memory>

#include "common/boot_log.h"
#include "common/path_text.h"
#include "core/app_loop.h"
#include "core/command_line.h"
#include "core/globals.h"
#include "core/handoff_flow.h"
#include "core/launcher_window.h"
#include "core/move_flow.h"
#include "core/relink_flow.h"
#include "core/route.h"
#include "core/single_instance.h"
#include "core/uninstall_flow.h"
#include "directgl/gui.h"
#include "install/relocation.h"
#include "install/settings_store.h"
#include "platform/desktop.h"
#include "platform/message_box.h"
#include "platform/ole.h"
#include "platform/paths.h"
#include "update/handoff.h"

namespace Launcher {

namespace {

constexpr int ExitOk = 0;
constexpr int ExitFailed = 1;

constexpr std::uint32_t PassesPerSecond = 60;

// No text is loaded yet when a start fails this early: the box shows its caption alone.
int FailWithBox() {
    Platform::ShowErrorBox(L"Tolvan Online", L"");
    return ExitFailed;
}

bool AnchorToOwnFolder() {
    g_ownDir = FolderOf(Platform::OwnPath());
    if (g_ownDir.empty()) return false;
    // Relative paths are not used: a folder that cannot be entered does no harm.
    (void)Platform::ChangeCurrentFolder(g_ownDir);
    BootLog("wWinMain: anchored to own directory");
    g_installDir = g_ownDir;
    return true;
}

void StartToolkitThreads(DirectGL::Gui& gui) {
    gui.SetAlwaysRender();
    BootLog("wWinMain: StartRenderingThread -- entering");
    gui.StartRenderingThread();
    BootLog("wWinMain: StartUpdatingThread -- entering");
    gui.StartUpdatingThread();
    BootLog("wWinMain: both threads started");
    BootLog("wWinMain: reveal deferred to the first composited frame");
}

// Beside the running threads, so with their lock held.
void Open(DirectGL::Gui& gui, AppLoop& loop, const Switches& switches, const HandoffArgs& handoff) {
    Platform::NativeWindow& window = *gui.GetWindow();
    if (handoff.hasPos) window.MoveTo({handoff.x, handoff.y});
    loop.ArmReveal();
    if (switches.topmost) window.ShowTopmost();
    BootLog("wWinMain: window revealed");
    const RunStart start = TakeRoute(switches, handoff);
    if (!handoff.IsPlainStart()) {
        loop.AwaitPredecessor(handoff.waitPid, start == RunStart::Held);
        loop.ArmTakeOver(handoff);
    }
    BootLogF("route: opening on %s", StateName(g_openingPage));
}

// The workers go before what they could call into, the log after all of them.
void TearDown(DirectGL::Gui& gui) {
    BootLog("teardown: g_patch.Shutdown -- entering");
    g_patch.Shutdown();
    BootLog("teardown: g_newsFeed.Shutdown -- entering");
    g_selfUpdate.Stop();
    g_clientUpdate.Stop();
    g_installEngine.Stop();
    FollowUninstall();
    StopHandoff();
    StopMove();
    StopRelink();
    BootLog("teardown: gui.Clear -- entering");
    gui.Clear();
    BootLog("teardown: gui.Clear -- returned");
    if (gui.HasWindow()) {
        BootLog("teardown: DestroyWindow -- entering");
        gui.DestroyWindow();
    }
    BootLog("wWinMain: teardown complete");
    CloseBootLog();
}

int RunWithInterface(SingleInstance& instance, const Switches& switches,
                     const HandoffArgs& handoff) {
    const std::unique_ptr<Platform::Desktop> desktop = Platform::OpenDesktop();
    DirectGL::Gui gui(*desktop);
    if (!CreateLauncherWindow(gui, *desktop)) return FailWithBox();
    BootLog("wWinMain: setting fps/ups");
    gui.SetFps(PassesPerSecond);
    gui.SetUps(PassesPerSecond);
    // The reveal waits for a frame that begins after the first tick. One before it would only make
    // that wait for the frame after, a pause of 16 ms later.
    auto untilFirstTick = std::make_unique<DirectGL::Gui::Guard>(gui);
    StartToolkitThreads(gui);

    AppLoop loop(gui, instance, switches);
    Open(gui, loop, switches, handoff);
    BootLog("wWinMain: MessageLoop -- entering");
    gui.MessageLoop([&](double time) { return loop.Tick(time); }, std::move(untilFirstTick));
    BootLog("wWinMain: MessageLoop -- returned");
    TearDown(gui);
    ScheduleSelfRemoval();
    instance.Leave();
    return ExitOk;
}

void TidyUpAfterEarlierRuns() {
    PurgeOldWorkingFolders();
    RecoverInterruptedMove();
    SeedLauncherValues();
}

int RunFirstInstance(SingleInstance& instance, const Switches& switches,
                     const HandoffArgs& handoff) {
    if (handoff.op == HandoffOperation::None) TidyUpAfterEarlierRuns();
    Platform::RestrictLibrarySearch();
    BootLog("wWinMain: SetDefaultDllDirectories done");
    if (!AnchorToOwnFolder()) return FailWithBox();

    BootLog("wWinMain: OleInitialize -- entering");
    if (!Platform::Succeeded(Platform::InitialiseOle())) return ExitFailed;
    BootLog("wWinMain: OleInitialize -- returned");
    const int exitCode = RunWithInterface(instance, switches, handoff);
    Platform::UninitialiseOle();
    return exitCode;
}

/// False for a second start, which asks the first one to come to the front and goes.
bool BecomeSingleInstance(SingleInstance& instance) {
    if (!instance.Join()) return true;
    BootLog("wWinMain: another launcher is already running -- asking it to surface, and exiting");
    instance.AskFirstToSurface();
    Platform::UninitialiseOle();
    return false;
}

}  // namespace

}  // namespace Launcher

int ProgramMain(const std::wstring& commandLine) {
    using namespace Launcher;
    StartBootLog();
    BootLog("wWinMain: enter");
    const Switches switches = ReadSwitches(commandLine);
    const HandoffArgs handoff = g_handoffArgs = ParseHandoffArgs(commandLine);

    SingleInstance instance(FileNameOf(Platform::OwnPath()));
    if (handoff.IsPlainStart()) {
        if (!BecomeSingleInstance(instance)) return ExitOk;
        OpenBootLog();
    } else {
        OpenBootLogWhenFree();
    }
    return RunFirstInstance(instance, switches, handoff);
}
