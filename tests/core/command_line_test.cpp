#include "core/command_line.h"

#include <gtest/gtest.h>
#include <string>

namespace Launcher {
namespace {

TEST(Switches, AreFoundAnywhereAndByCase) {
    constexpr struct {
        const wchar_t* name;
        bool Switches::*field;
    } Cases[] = {
        {L"--nopatch", &Switches::noPatch},    {L"--uninstall", &Switches::uninstall},
        {L"--force32", &Switches::force32},    {L"--minimizetest", &Switches::minimizeTest},
        {L"--eulaend", &Switches::licenceEnd}, {L"--checkonly", &Switches::checkOnly},
        {L"--selftest", &Switches::selfTest},
    };
    for (const auto& entry : Cases) {
        const std::wstring name = entry.name;
        EXPECT_TRUE(ReadSwitches(L"x" + name + L"y").*entry.field);
        EXPECT_FALSE(ReadSwitches(name.substr(0, name.size() - 1)).*entry.field);
        EXPECT_FALSE(ReadSwitches(L"--" + std::wstring(1, name[2] - L'a' + L'A') + name.substr(3)).*
                     entry.field);
    }
}

TEST(Switches, TopmostIsAWordOfItsOwn) {
    constexpr struct {
        const wchar_t* text;
        bool topmost;
    } Cases[] = {
        {L"--topmost", true},    {L"--topmost --x", true},      {L"--topmost\t", true},
        {L"--topmostly", false}, {L"--topmost=1", false},       {L"--topmostly --topmost", true},
        {L"--topmos", false},    {L"--topmost--topmost", true},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(ReadSwitches(entry.text).topmost, entry.topmost) << entry.text;
    }
}

TEST(Switches, SimulationTakesItsFormFromTheText) {
    struct Case {
        const wchar_t* text;
        Simulation expected;
    };
    const Case cases[] = {
        {L"--simulate=cancel --simulate=fail", {.on = true, .fail = true, .cancel = true}},
        {L"--simulate=slow", {.on = true, .speed = 0.25F}},
        {L"--simulate=fast --simulate=slow", {.on = true, .speed = 4.0F}},
        {L"--simulate=unknown", {.on = true}},
        {L"simulate=fail", {}},
    };
    for (const Case& entry : cases) {
        const Simulation read = ReadSwitches(entry.text).simulation;
        EXPECT_EQ(read.on, entry.expected.on) << entry.text;
        EXPECT_EQ(read.fail, entry.expected.fail) << entry.text;
        EXPECT_EQ(read.cancel, entry.expected.cancel) << entry.text;
        EXPECT_EQ(read.speed, entry.expected.speed) << entry.text;
    }
}

TEST(Switches, AutoQuitNeedsANumberAboveZero) {
    constexpr struct {
        const wchar_t* text;
        double seconds;
    } Cases[] = {
        {L"--autoquit", 2.0},      {L"--autoquit=0", 2.0},     {L"--autoquit=-3", 2.0},
        {L"--autoquit=abc", 2.0},  {L"--autoquit=", 2.0},      {L"--autoquit=0.25 --nopatch", 0.25},
        {L"--autoquit=7abc", 7.0}, {L"--autoquit=1e2", 100.0},
    };
    for (const auto& entry : Cases) {
        const auto seconds = ReadSwitches(entry.text).autoQuitSeconds;
        ASSERT_TRUE(seconds) << entry.text;
        EXPECT_EQ(*seconds, entry.seconds) << entry.text;
    }
}

TEST(Switches, IndicesAreReadAsFarAsTheyAreNumbers) {
    constexpr struct {
        const wchar_t* text;
        int index;
    } Cases[] = {
        {L"--lang=3", 3},   {L"--lang=", 0},   {L"--lang=de", 0},
        {L"--lang=-2", -2}, {L"--lang=4x", 4}, {L"--lang=99999999999", 2147483647},
        {L"--lang 3", -1},  {L"", -1},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(ReadSwitches(entry.text).language, entry.index) << entry.text;
    }
    EXPECT_EQ(ReadSwitches(L"--season=2").season, 2);
}

TEST(Switches, FirstPageOfTheTableWins) {
    constexpr struct {
        const wchar_t* text;
        int page;
    } Cases[] = {
        {L"--page=patch", 19},
        {L"--page=removed", 34},
        {L"--page=settings --page=lang", 3},
        {L"--page=settingsx", 24},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(ReadSwitches(entry.text).page, static_cast<State>(entry.page)) << entry.text;
    }
    EXPECT_FALSE(ReadSwitches(L"--page=elsewhere").page);
}

TEST(HandoffArgs, WholeLineOfAHandoff) {
    const HandoffArgs args = ParseHandoffArgs(
        L"--op=move --target=\"C:\\Games\\Tolvan Online\" --keepsettings=1 --sub=0 --waitpid=4711 "
        L"--x=-20 --y=300 --dest=\"D:\\New place\"");
    EXPECT_EQ(args.op, HandoffOperation::Move);
    EXPECT_EQ(args.target, L"C:\\Games\\Tolvan Online");
    EXPECT_EQ(args.dest, L"D:\\New place");
    EXPECT_TRUE(args.keepSettings);
    EXPECT_FALSE(args.sub);
    EXPECT_EQ(args.waitPid, 4711U);
    EXPECT_TRUE(args.hasPos);
    EXPECT_EQ(args.x, -20);
    EXPECT_EQ(args.y, 300);
    EXPECT_FALSE(args.IsPlainStart());
}

TEST(HandoffArgs, DefaultsHoldForWhatIsMissing) {
    const HandoffArgs args = ParseHandoffArgs(L"");
    EXPECT_TRUE(args.IsPlainStart());
    EXPECT_TRUE(args.target.empty() && args.dest.empty());
    EXPECT_FALSE(args.keepSettings || args.hasPos);
    EXPECT_TRUE(args.sub);
}

TEST(HandoffArgs, OperationNeedsItsNameAndATarget) {
    constexpr struct {
        const wchar_t* text;
        HandoffOperation op;
    } Cases[] = {
        {L"--op=uninstall --target=C:\\x", HandoffOperation::Uninstall},
        {L"--target=C:\\x --op=move", HandoffOperation::Move},
        {L"--op=\"move\" --target=C:\\x", HandoffOperation::Move},
        {L"--op=Move --target=C:\\x", HandoffOperation::None},
        {L"--op=moved --target=C:\\x", HandoffOperation::None},
        {L"--op=move", HandoffOperation::None},
        {L"--op=move --target=", HandoffOperation::None},
        {L"--op=move --target= --x=1", HandoffOperation::None},
        {L"--op=move --target=\"\"", HandoffOperation::None},
        {L"--op=move --target=\"C:\\x", HandoffOperation::None},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(ParseHandoffArgs(entry.text).op, entry.op) << entry.text;
    }
}

TEST(HandoffArgs, ValueEndsAtABlankUnlessItIsQuoted) {
    constexpr struct {
        const wchar_t* text;
        const wchar_t* dest;
    } Cases[] = {
        {L"--dest=D:\\a b", L"D:\\a"},
        {L"--dest=D:\\a\tb c", L"D:\\a\tb"},
        {L"--dest=\"D:\\a b\"c", L"D:\\a b"},
        {L"--dest=D:\\\"a\" b", L"D:\\\"a\""},
        {L"--dest= --dest=D:\\a", L""},
        {L"-dest=D:\\a", L""},
        {L"--dest D:\\a", L""},
        {L"x--dest=D:\\a", L"D:\\a"},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(ParseHandoffArgs(entry.text).dest, entry.dest) << entry.text;
    }
}

TEST(HandoffArgs, FlagsAndNumbersHaveTheirForms) {
    EXPECT_FALSE(ParseHandoffArgs(L"--keepsettings=10").keepSettings);
    EXPECT_FALSE(ParseHandoffArgs(L"--keepsettings=true").keepSettings);
    EXPECT_FALSE(ParseHandoffArgs(L"--sub=yes").sub);
    EXPECT_TRUE(ParseHandoffArgs(L"--sub=").sub);
    EXPECT_FALSE(ParseHandoffArgs(L"--x=5").hasPos);
    EXPECT_FALSE(ParseHandoffArgs(L"--y=5").hasPos);
    EXPECT_TRUE(ParseHandoffArgs(L"--y=5 --x=7").hasPos);
    EXPECT_EQ(ParseHandoffArgs(L"--waitpid=4294967295").waitPid, 4294967295U);
    EXPECT_EQ(ParseHandoffArgs(L"--waitpid=-1").waitPid, 0U);
}

}  // namespace
}  // namespace Launcher
