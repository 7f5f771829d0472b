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

bool MutexExists(const std::wstring& name) {
    NamedMutex mutex;
    bool existed = false;
    EXPECT_EQ(mutex.Create(name, existed), Error::None);
    return existed;
}

}  // namespace

TEST(NamedMutex, ExistsAsLongAsSomebodyHoldsIt) {
    const std::wstring name = UniqueName();
    NamedMutex first;
    NamedMutex second;
    bool existed = true;
    ASSERT_EQ(first.Create(name, existed), Error::None);
    EXPECT_FALSE(existed);
    ASSERT_EQ(second.Create(name, existed), Error::None);
    EXPECT_TRUE(existed);
    first.Close();
    EXPECT_TRUE(MutexExists(name));
    second.Close();
    EXPECT_FALSE(MutexExists(name));
}

TEST(NamedMutex, NamesAreToldApart) {
    const std::wstring base = UniqueName();
    const std::wstring names[] = {
        base,
        base + L" ",
        base + L".",
        base + L"..",
        base + L"/a",
        base + L"%20",
        base + L"\u0130\u00DF",
        base + L"\u4E2D\u6587",
        base + L"A",
        base + L"a",
        base + std::wstring(260 - base.size(), L'x'),
        base + std::wstring(260 - base.size(), L'\u20AC'),
        base + std::wstring(259 - base.size(), L'x'),
    };
    std::array<NamedMutex, std::size(names)> mutexes;
    for (std::size_t index = 0; index < mutexes.size(); ++index) {
        bool existed = true;
        EXPECT_EQ(mutexes[index].Create(names[index], existed), Error::None) << index;
        EXPECT_FALSE(existed) << index;
    }
}

TEST(NamedEvent, StaysSetUntilReset) {
    const std::wstring name = UniqueName();
    NamedEvent made;
    bool existed = true;
    ASSERT_EQ(made.Create(name, existed), Error::None);
    EXPECT_FALSE(existed);
    NamedEvent opened;
    ASSERT_EQ(opened.Open(name), Error::None);
    EXPECT_FALSE(opened.IsSet());
    ASSERT_EQ(opened.Set(), Error::None);
    EXPECT_TRUE(made.IsSet());
    EXPECT_TRUE(made.IsSet());

    NamedEvent again;
    ASSERT_EQ(again.Create(name, existed), Error::None);
    EXPECT_TRUE(existed);
    EXPECT_TRUE(again.IsSet()) << "a second Create must leave the state alone";
    ASSERT_EQ(again.Reset(), Error::None);
    EXPECT_FALSE(made.IsSet());
}

TEST(NamedEvent, IsOpenForWhatWasAskedAlone) {
    const std::wstring name = UniqueName();
    NamedEvent made;
    NamedEvent looking;
    NamedEvent changing;
    bool existed = true;
    ASSERT_EQ(made.Create(name, existed), Error::None);
    ASSERT_EQ(looking.Open(name, EventWait), Error::None);
    ASSERT_EQ(changing.Open(name, EventModify), Error::None);
    EXPECT_EQ(looking.Set(), Error::AccessDenied);
    EXPECT_FALSE(made.IsSet());
    EXPECT_EQ(changing.Set(), Error::None);
    EXPECT_TRUE(looking.IsSet());
    EXPECT_FALSE(changing.IsSet());
    EXPECT_EQ(looking.Reset(), Error::AccessDenied);
    EXPECT_TRUE(made.IsSet());
}

TEST(NamedEvent, VanishesWithItsState) {
    const std::wstring name = UniqueName();
    NamedEvent event;
    bool existed = true;
    ASSERT_EQ(event.Create(name, existed), Error::None);
    ASSERT_EQ(event.Set(), Error::None);
    event.Close();
    EXPECT_FALSE(event.IsSet());
    EXPECT_NE(event.Set(), Error::None);
    EXPECT_EQ(event.Open(name), Error::FileNotFound);
    // An object of any kind may take the name.
    NamedMutex mutex;
    ASSERT_EQ(mutex.Create(name, existed), Error::None);
    EXPECT_FALSE(existed);
    EXPECT_EQ(event.Create(name, existed), Error::InvalidHandle);
    EXPECT_EQ(event.Open(name), Error::InvalidHandle);
    EXPECT_FALSE(event.IsOpen());
    mutex.Close();
    ASSERT_EQ(event.Create(name, existed), Error::None);
    EXPECT_FALSE(existed);
    EXPECT_FALSE(event.IsSet());
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
