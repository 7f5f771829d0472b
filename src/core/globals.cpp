#include "core/globals.h"

namespace Launcher {

State g_state = State::Boot;
State g_openingPage = State::Ready;
std::wstring g_statusMessage;
HandoffArgs g_handoffArgs;
std::wstring g_ownDir;
std::wstring g_installDir;
PatchPipeline g_patch;
SelfUpdate g_selfUpdate;
ClientUpdate g_clientUpdate;
InstallEngine g_installEngine;
std::size_t g_clientCount = 0;
StandDown g_standDown;

}  // namespace Launcher
