#include "platform/registry.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

#include "platform/clock.h"
#include "platform/processes.h"
#include "support/helper_process.h"
#include "support/test_files.h"

using namespace Platform;
using namespace TestSupport;

namespace {

/// A key of its own for each test, removed with all below it.
class Registry : public testing::Test {
protected:
    Registry() { EXPECT_EQ(key_.Create(path_), Error::None); }
    ~Registry() override { EXPECT_EQ(RemoveRegistryTree(path_), Error::None); }

    RegistryValue Read(const std::wstring& name, const std::wstring& below = L"") {
        RegistryKey key;
        RegistryValue value;
        EXPECT_EQ(key.Open(path_ + below, RegistryAccess::Read), Error::None);
        EXPECT_EQ(key.Read(name, value), Error::None);
        return value;
    }
    std::uint32_t ReadNumber(const std::wstring& name) {
        const RegistryValue value = Read(name);
        std::uint32_t number = 0;
        EXPECT_EQ(value.type, RegistryType::Dword);
        EXPECT_EQ(value.data.size(), sizeof number);
        if (value.data.size() == sizeof number) std::memcpy(&number, value.data.data(), 4);
        return number;
    }
    /// The UTF-16 units of a string without its terminating zero.
    std::u16string ReadString(const std::wstring& name) {
        const RegistryValue value = Read(name);
        EXPECT_EQ(value.type, RegistryType::String);
        std::u16string text(value.data.size() / 2, u' ');
        std::memcpy(text.data(), value.data.data(), text.size() * 2);
        EXPECT_TRUE(text.ends_with(u'\0'));
        if (!text.empty()) text.pop_back();
        return text;
    }
    bool KeyExists(const std::wstring& below) {
        RegistryKey key;
        const Error error = key.Open(path_ + below, RegistryAccess::Read);
        EXPECT_TRUE(error == Error::None || error == Error::FileNotFound);
        return Succeeded(error);
    }

    const std::wstring path_ =
        L"Software\\Tolvan Contract Test\\" + std::to_wstring(OwnProcessId());
    RegistryKey key_;
};

}  // namespace

TEST_F(Registry, KeepsAnyScriptAndSizeUnderNamesThatIgnoreCase) {
    const std::vector<std::byte> large(1 << 20, std::byte{0xA5});
    ASSERT_EQ(key_.WriteString(L"Script", L"\u017Fz\u00F6 \u4E2D \U0001F3AE"), Error::None);
    ASSERT_EQ(key_.Write(L"Large", RegistryType::Binary, large), Error::None);
    EXPECT_EQ(ReadString(L"SCRIPT"), u"\u017Fz\u00F6 \u4E2D \U0001F3AE");
    EXPECT_EQ(Read(L"large").data, large);
    RegistryKey below;
    ASSERT_EQ(below.Create(path_ + L"\\\u00C4pfel\\\u0416\u03A9"), Error::None);
    ASSERT_EQ(below.WriteDword(L"\u00DCber", 3), Error::None);
    EXPECT_EQ(Read(L"\u00FCBER", L"\\\u00E4PFEL\\\u0436\u03C9").type, RegistryType::Dword);
    EXPECT_TRUE(KeyExists(L"\\\u00C4PFEL"));
    EXPECT_FALSE(KeyExists(L"\\Apfel"));
}

TEST_F(Registry, RemovingATreeTakesItAllAndNothingElse) {
    for (const wchar_t* below : {L"\\Tree\\A\\B", L"\\Tree A", L"\\TreeA", L"\\Tree.", L"\\Tre"}) {
        RegistryKey key;
        ASSERT_EQ(key.Create(path_ + below), Error::None);
        ASSERT_EQ(key.WriteDword(L"Number", 1), Error::None);
    }
    RegistryKey inside;
    ASSERT_EQ(inside.Open(path_ + L"\\Tree\\A", RegistryAccess::Write), Error::None);
    ASSERT_EQ(RemoveRegistryTree(path_ + L"\\tree"), Error::None);
    for (const wchar_t* gone : {L"\\Tree", L"\\Tree\\A", L"\\Tree\\A\\B"}) {
        EXPECT_FALSE(KeyExists(gone));
    }
    for (const wchar_t* kept : {L"\\Tree A", L"\\TreeA", L"\\Tree.", L"\\Tre"}) {
        EXPECT_EQ(Read(L"Number", kept).type, RegistryType::Dword);
    }
    EXPECT_NE(inside.WriteDword(L"Number", 1), Error::None);
    EXPECT_FALSE(KeyExists(L"\\Tree\\A"));

    RegistryKey anew;
    RegistryValue value;
    ASSERT_EQ(anew.Create(path_ + L"\\Tree\\A\\B"), Error::None);
    ASSERT_EQ(anew.Open(path_ + L"\\Tree\\A\\B", RegistryAccess::Read), Error::None);
    EXPECT_EQ(anew.Read(L"Number", value), Error::FileNotFound);
    EXPECT_EQ(RemoveRegistryTree(path_ + L"\\Missing"), Error::FileNotFound);
    EXPECT_EQ(RemoveRegistryTree(L""), Error::InvalidParameter) << "that is the root";
}

TEST_F(Registry, WholeAfterKillingAWriter) {
    constexpr int Rounds = 30;
    const std::wstring folder = MakeTestFolder();
    const std::wstring program = folder + L"\\writer.exe";
    InstallHelper(program);
    std::mt19937 random(1);
    for (int round = 0; round < Rounds; ++round) {
        const std::wstring ready = folder + L"\\ready" + std::to_wstring(round);
        HelperProcess writer;
        ASSERT_EQ(writer.Start(program, {L"registry-change", path_, ready}), Error::None);
        ASSERT_TRUE(WaitForFile(ready));
        SleepMilliseconds(std::uniform_int_distribution<>(1, 15)(random));
        ASSERT_FALSE(HasProcessEnded(writer.Id()));
        writer.Kill();

        RegistryKey key;
        RegistryValue text;
        ASSERT_EQ(key.Open(path_, RegistryAccess::Read), Error::None);
        if (Succeeded(key.Read(L"Text", text))) {
            const std::u16string letters = ReadString(L"Text");
            EXPECT_EQ(letters, std::u16string(letters.size(), letters.empty() ? u' ' : letters[0]));
            const std::uint32_t number = ReadNumber(L"Number");
            const std::uint32_t size = static_cast<std::uint32_t>(letters.size());
            // The text is of the number's round, or, when the kill came between, of the one before.
            EXPECT_TRUE(number % 3000 == size || (number + 2999) % 3000 == size)
                << number << ", " << size;
        }
        ASSERT_EQ(key_.WriteDword(L"Number", 0), Error::None);
        ASSERT_EQ(key_.WriteString(L"Text", L""), Error::None);
    }
}
