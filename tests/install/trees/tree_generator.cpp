#include "install/trees/tree_generator.h"

#include <gtest/gtest.h>

#include "common/path_text.h"
#include "install/path_rules.h"
#include "platform/files.h"
#include "support/links.h"
#include "support/test_files.h"
#include "support/wine.h"

namespace {

using Launcher::JoinPath;

constexpr const wchar_t* NameParts[] = {
    L"Tolvan", L"Online",  L" ",      L"Data",  L"игра", L"ゲーム", L"ألعاب", L"Ünïcode",
    L"it's",   L"&",       L"%TEMP%", L"(x86)", L"a..b", L"-",      L"@",     L"$1",
    L"日本",   L"e\u0301", L"^",      L";",     L"=",    L"~1",     L"--op=",
};

}  // namespace

std::wstring TreeGenerator::Name() {
    std::wstring name;
    for (std::size_t parts = 1 + Below(3); parts > 0; --parts)
        name += NameParts[Below(std::size(NameParts))];
    // A number keeps names apart, and blanks and dots from the end.
    return name + std::to_wstring(Below(1000000));
}

void TreeGenerator::ChangeSomeAttributes(const std::wstring& path, bool isFolder) {
    using namespace Platform;
    if (!OneIn(4)) return;
    std::uint32_t attributes = 0;
    if (OneIn(2)) attributes |= AttributeReadOnly;
    if (OneIn(2)) attributes |= AttributeHidden;
    if (OneIn(3)) attributes |= AttributeSystem;
    // Wine keeps a folder's own attributes only in part.
    if (attributes != 0 && !(isFolder && TestSupport::UnderWine())) {
        EXPECT_EQ(ChangeAttributes(path, attributes), Error::None);
    }
}

void TreeGenerator::FillFolder(const std::wstring& folder, int levels,
                               std::vector<std::wstring>& files) {
    for (std::size_t count = Below(5); count > 0; --count) {
        std::wstring path = JoinPath(folder, Name());
        TestSupport::WriteText(path, "content " + std::to_string(Below(1000000)));
        ChangeSomeAttributes(path, false);
        files.push_back(std::move(path));
    }
    if (levels == 0) return;
    for (std::size_t count = Below(3); count > 0; --count) {
        const std::wstring path = JoinPath(folder, Name());
        ASSERT_EQ(Platform::MakeFolder(path), Platform::Error::None);
        if (path.starts_with(game_)) gameFolders_.push_back(path);
        FillFolder(path, levels - 1, files);
        ChangeSomeAttributes(path, true);
    }
}

void TreeGenerator::AddLinks(const std::wstring& area) {
    const auto targets = [&]() -> std::wstring {
        switch (Below(7)) {
            case 0:
                return area + L"\\outside";
            case 1:
                return area + L"\\outside\\file";
            case 2:
                return game_;
            case 3:
                return area;
            case 4:
                return game_ + L" 2";
            case 5:
                return L"C:\\Users";
            default:
                return area + L"\\nowhere";
        }
    };
    for (std::size_t count = Below(4); count > 0; --count) {
        const std::wstring& folder = gameFolders_[Below(gameFolders_.size())];
        (void)TestSupport::MakeLink(JoinPath(folder, L"link " + Name()), targets());
    }
    // Links that lead into the game from outside stay, and lead nowhere afterwards.
    (void)TestSupport::MakeLink(area + L"\\outside\\into the game", game_);
}

void TreeGenerator::Make(const std::wstring& area) {
    game_ = JoinPath(area, Name());
    gameFiles_.clear();
    gameFolders_ = {game_};
    std::vector<std::wstring> others;
    const std::wstring outside = area + L"\\outside";
    ASSERT_TRUE(Launcher::CreateFolderPath(outside));
    TestSupport::WriteText(outside + L"\\file", "outside");
    FillFolder(outside, 2, others);

    ASSERT_TRUE(Launcher::CreateFolderPath(game_ + L"\\Data"));
    gameFolders_.push_back(game_ + L"\\Data");
    TestSupport::WriteText(game_ + L"\\.Tolvan Online.exe", "a client");
    FillFolder(game_, 3, gameFiles_);
    FillFolder(game_ + L"\\Data", 3, gameFiles_);

    // Look-alikes beside it.
    for (const std::wstring& name :
         {game_ + L" 2", game_ + L"x", game_.substr(0, game_.size() - 1), game_ + L".bak"}) {
        if (OneIn(4) || Platform::PathExists(name)) continue;
        ASSERT_TRUE(Launcher::CreateFolderPath(name));
        FillFolder(name, 1, others);
    }
    TestSupport::WriteText(game_ + L".txt", "a look-alike file");
    AddLinks(area);
}
