#include "core/command_line.h"

#include <gtest/gtest.h>
#include <string>

namespace Launcher {
namespace {

TEST(Switches, AreFoundWhereverTheyStand) {
    const Switches read = ReadSwitches(
        L"x--force32 --eulaend--selftest --simulate=slow --simulate=fail --lang=3x "
        L"--season=2 --page=settingsx --page=lang");
    EXPECT_TRUE(read.force32 && read.licenceEnd && read.selfTest);
    EXPECT_FALSE(read.noPatch || read.uninstall || read.minimizeTest || read.checkOnly);
    EXPECT_TRUE(read.simulation.on && read.simulation.fail);
    EXPECT_FALSE(read.simulation.cancel);
    EXPECT_EQ(read.simulation.speed, 0.25F);
    EXPECT_EQ(read.language, 3);
    EXPECT_EQ(read.season, 2);
    EXPECT_EQ(read.page, State::FirstRunLanguage) << "of several the first of the table";
    EXPECT_EQ(ReadSwitches(L"").language, -1);
    EXPECT_FALSE(ReadSwitches(L"--Force32").force32);
    // This one alone is a word of its own.
    EXPECT_FALSE(ReadSwitches(L"--topmostly --topmost=1").topmost);
    EXPECT_TRUE(ReadSwitches(L"--topmostly --topmost").topmost);
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
