// Links of the host stand for the reparse points of Windows, which Wine cannot make.

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "platform/files.h"
#include "platform/host/machine.h"
#include "platform/text.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

class Links : public TestSupport::Scratch {
protected:
    Links() {
        EXPECT_EQ(MakeFolderPath(At(L"target\\inner")), Error::None);
        WriteText(At(L"target\\file"), "text");
        std::filesystem::create_directory(hostOutside_);
        std::ofstream(hostOutside_ + "/file") << "outside";
    }
    ~Links() override { std::filesystem::remove_all(hostOutside_); }

    void Link(const std::string& target, std::wstring_view name) {
        std::filesystem::create_symlink(target, Host::HostPathOf(At(name)));
    }
    std::uint32_t AttributesOf(std::wstring_view name) {
        FileInfo info;
        EXPECT_EQ(GetFileInfo(At(name), info), Error::None);
        return info.attributes;
    }

    const std::string hostOutside_ =
        (std::filesystem::temp_directory_path() / ("tolvan-outside." + std::to_string(getpid())))
            .string();
};

TEST_F(Links, AreDescribedAndMovedAsThemselves) {
    Link("target", L"folder link");
    Link("target/file", L"file link");
    Link("nowhere", L"dangling");
    EXPECT_EQ(AttributesOf(L"folder link"), AttributeFolder | AttributeReparsePoint);
    EXPECT_EQ(AttributesOf(L"FILE link"), AttributeReparsePoint);
    EXPECT_EQ(AttributesOf(L"dangling"), AttributeReparsePoint);
    ASSERT_EQ(MovePath(At(L"folder link"), At(L"moved"), {}), Error::None);
    EXPECT_EQ(AttributesOf(L"moved"), AttributeFolder | AttributeReparsePoint);
    EXPECT_EQ(ReadText(At(L"moved\\file")), "text");
    EXPECT_FALSE(PathExists(At(L"folder link")));
}

TEST_F(Links, AreFollowedInsideTheMachine) {
    Link("target", L"relative");
    Link(Host::HostPathOf(At(L"target")), L"absolute");
    Link("../" + Host::HostPathOf(folder_).substr(Host::HostPathOf(folder_).rfind('/') + 1) +
             "/relative",
         L"twice");
    Link("target/FILE", L"other case");
    for (const wchar_t* name : {L"relative", L"absolute", L"Twice"}) {
        EXPECT_EQ(ReadText(At(name) + L"\\File"), "text") << Utf8FromWide(name);
        std::vector<FolderEntry> entries;
        EXPECT_EQ(ListFolder(At(name), entries), Error::None);
        EXPECT_EQ(entries.size(), 2u);
    }
    EXPECT_EQ(ReadText(At(L"other case")), "text");
    WriteText(At(L"twice\\written"), "through");
    EXPECT_EQ(ReadText(At(L"target\\written")), "through");
    Link("circle", L"circle");
    File file;
    EXPECT_EQ(file.Open(At(L"circle"), {}), Error::UnresolvableLink);
    EXPECT_EQ(file.Open(At(L"circle\\x"), {}), Error::UnresolvableLink);
}

TEST_F(Links, NothingIsReachedOutsideTheMachine) {
    Link(hostOutside_, L"absolute");
    Link("../../../../../../../../../../" + hostOutside_, L"relative");
    Link("../../../run", L"not on a drive");
    Link(hostOutside_ + "/file", L"file");
    const OpenOptions create{.access = AccessWrite, .disposition = Disposition::CreateAlways};
    for (const wchar_t* name : {L"absolute", L"relative", L"not on a drive"}) {
        const std::wstring below = At(name) + L"\\file";
        File file;
        EXPECT_EQ(file.Open(below, {}), Error::UnresolvableLink);
        EXPECT_EQ(file.Open(below, create), Error::UnresolvableLink);
        EXPECT_EQ(file.Open(below, {.access = AccessWrite}), Error::UnresolvableLink);
        EXPECT_EQ(RemoveFile(below), Error::UnresolvableLink);
        EXPECT_EQ(MakeFolder(At(name) + L"\\made"), Error::UnresolvableLink);
        EXPECT_EQ(MovePath(At(L"target\\file"), At(name) + L"\\moved", {}),
                  Error::UnresolvableLink);
        EXPECT_EQ(CopyFileTo(At(L"target\\file"), below, true), Error::UnresolvableLink);
        EXPECT_EQ(ChangeAttributes(below, AttributeReadOnly), Error::UnresolvableLink);
        std::vector<FolderEntry> entries;
        EXPECT_EQ(ListFolder(At(name), entries), Error::UnresolvableLink);
    }
    File file;
    EXPECT_EQ(file.Open(At(L"file"), create), Error::UnresolvableLink);
    std::ifstream kept(hostOutside_ + "/file");
    std::string text;
    kept >> text;
    EXPECT_EQ(text, "outside");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(hostOutside_), {}), 1);
}

TEST_F(Links, HaveTheFinalPathOfTheirTarget) {
    Link("target", L"folder link");
    Link("target/file", L"file link");
    Link("nowhere", L"dangling");
    Link(hostOutside_, L"outside");
    std::wstring path;
    EXPECT_EQ(GetFinalPath(At(L"FOLDER link\\Inner"), path), Error::None);
    EXPECT_EQ(path, At(L"target\\inner"));
    EXPECT_EQ(GetFinalPath(At(L"file link"), path), Error::None);
    EXPECT_EQ(path, At(L"target\\file"));
    EXPECT_EQ(GetFinalPath(At(L"dangling"), path), Error::FileNotFound);
    EXPECT_EQ(GetFinalPath(At(L"outside"), path), Error::UnresolvableLink);
}

TEST_F(Links, AreRemovedWithoutTheirTarget) {
    Link("target", L"folder link");
    Link("target/file", L"file link");
    Link(hostOutside_, L"outside");
    EXPECT_EQ(RemoveFile(At(L"folder link")), Error::AccessDenied);
    EXPECT_EQ(RemoveEmptyFolder(At(L"file link")), Error::InvalidFolder);
    EXPECT_EQ(ChangeAttributes(At(L"folder link"), AttributeNormal), Error::None);
    EXPECT_EQ(RemoveEmptyFolder(At(L"Folder link")), Error::None);
    EXPECT_EQ(RemoveEmptyFolder(At(L"outside")), Error::None);
    EXPECT_EQ(RemoveFile(At(L"file link")), Error::None);
    EXPECT_EQ(ReadText(At(L"target\\file")), "text");
    EXPECT_TRUE(std::filesystem::exists(hostOutside_ + "/file"));
}

}  // namespace
}  // namespace Platform
