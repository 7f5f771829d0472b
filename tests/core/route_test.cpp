#include "core/route.h"

#include <gtest/gtest.h>

namespace Launcher {
namespace {

TEST(Route, FollowsFromKeyAndClient) {
    EXPECT_EQ(ClassifyInstall(false, false), InstallRoute::Fresh);
    EXPECT_EQ(ClassifyInstall(false, true), InstallRoute::Fresh);
    EXPECT_EQ(ClassifyInstall(true, false), InstallRoute::Broken);
    EXPECT_EQ(ClassifyInstall(true, true), InstallRoute::Installed);
}

TEST(Route, HandoffBeatsUninstallBeatsPageBeatsInstallation) {
    constexpr struct {
        const wchar_t* text;
        RouteSource source;
    } Cases[] = {
        {L"", RouteSource::Installation},
        {L"--waitpid=5 --nopatch", RouteSource::Installation},
        {L"--page=home", RouteSource::PageSwitch},
        {L"--page=home --uninstall", RouteSource::UninstallSwitch},
        {L"--page=home --uninstall --op=move --target=C:\\x", RouteSource::Handoff},
        {L"--uninstall --op=move --target=", RouteSource::UninstallSwitch},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(ChooseRouteSource(ReadSwitches(entry.text), ParseHandoffArgs(entry.text)),
                  entry.source)
            << entry.text;
    }
}

TEST(Route, RunOfAnInstalledGame) {
    constexpr struct {
        const wchar_t* text;
        RunStart start;
    } Cases[] = {
        {L"", RunStart::Now},
        {L"--checkonly", RunStart::Now},
        {L"--waitpid=5", RunStart::Held},
        {L"--nopatch", RunStart::Inhibited},
        {L"--nopatch --waitpid=5", RunStart::Inhibited},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(DecideRunStart(ReadSwitches(entry.text), ParseHandoffArgs(entry.text)),
                  entry.start)
            << entry.text;
    }
}

}  // namespace
}  // namespace Launcher
