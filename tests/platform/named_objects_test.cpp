#include "platform/named_objects.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "platform/processes.h"

using namespace Platform;

namespace {

/// A name that no other test uses.
std::wstring UniqueName(const std::wstring& rest = L"") {
    static int count = 0;
    return L"Local\\TolvanTest." + std::to_wstring(OwnProcessId()) + L"." +
           std::to_wstring(++count) + rest;
}

}  // namespace

TEST(NamedObjects, VanishWithTheirLastHolderAndTheirState) {
    const std::wstring name = UniqueName();
    NamedMutex first;
    NamedMutex second;
    NamedEvent event;
    bool existed = true;
    ASSERT_EQ(first.Create(name, existed), Error::None);
    EXPECT_FALSE(existed);
    ASSERT_EQ(second.Create(name, existed), Error::None);
    EXPECT_TRUE(existed);
    first.Close();
    EXPECT_EQ(event.Create(name, existed), Error::InvalidHandle) << "a mutex has the name";
    second.Close();
    EXPECT_EQ(event.Open(name), Error::FileNotFound);

    ASSERT_EQ(event.Create(name, existed), Error::None);
    EXPECT_FALSE(existed);
    ASSERT_EQ(event.Set(), Error::None);
    NamedEvent other;
    ASSERT_EQ(other.Create(name, existed), Error::None);
    EXPECT_TRUE(existed);
    EXPECT_TRUE(other.IsSet()) << "a second Create must leave the state alone";
    event.Close();
    other.Close();
    ASSERT_EQ(event.Create(name, existed), Error::None);
    EXPECT_FALSE(existed);
    EXPECT_FALSE(event.IsSet());
}

TEST(NamedObjects, NamesAreToldApart) {
    const std::wstring base = UniqueName();
    const std::wstring names[] = {
        base,
        base + L"..",
        base + L"/a",
        base + L"%20",
        base + L" ",
        base + L"\u4E2D\u6587",
        base + L"A",
        base + L"a",
        base + std::wstring(260 - base.size(), L'\u20AC'),
        base + std::wstring(259 - base.size(), L'\u20AC'),
    };
    std::array<NamedMutex, std::size(names)> mutexes;
    for (std::size_t index = 0; index < mutexes.size(); ++index) {
        bool existed = true;
        EXPECT_EQ(mutexes[index].Create(names[index], existed), Error::None) << index;
        EXPECT_FALSE(existed) << index;
    }
}

TEST(NamedObjects, RacersHaveOneCreatorEach) {
    constexpr int Names = 50;
    constexpr int Threads = 4;
    const std::wstring prefix = UniqueName(L".");
    std::vector<std::array<NamedMutex, Names>> mutexes(Threads);
    std::vector<std::array<bool, Names>> existed(Threads);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < Threads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int name = 0; name < Names; ++name) {
                EXPECT_EQ(mutexes[thread][name].Create(prefix + std::to_wstring(name),
                                                       existed[thread][name]),
                          Error::None);
            }
        });
    }
    threads.clear();
    for (int name = 0; name < Names; ++name) {
        int creators = 0;
        for (int thread = 0; thread < Threads; ++thread)
            creators += existed[thread][name] ? 0 : 1;
        EXPECT_EQ(creators, 1) << name;
    }
}
