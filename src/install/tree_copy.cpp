#include "install/tree_copy.h"

#include <vector>

#include "common/path_text.h"
#include "install/path_rules.h"
#include "platform/files.h"

namespace Launcher {

namespace {

using Platform::Error;
using Platform::FolderEntry;
using Platform::Succeeded;

constexpr std::uint32_t KeptFolderAttributes =
    Platform::AttributeReadOnly | Platform::AttributeHidden | Platform::AttributeSystem |
    Platform::AttributeNotContentIndexed;

bool LeadsNowhere(Error error) {
    return error == Error::FileNotFound || error == Error::PathNotFound;
}

class TreeCopier {
public:
    TreeCopier(const TreeCopyHooks& hooks, std::wstring& failedPath)
        : hooks_(hooks), failedPath_(failedPath) {}

    Error CopyFolder(const std::wstring& source, const std::wstring& destination,
                     bool behindLink) const {
        std::vector<FolderEntry> entries;
        const Error listed = Platform::ListFolder(source, entries);
        if (behindLink && LeadsNowhere(listed)) return Error::None;
        if (!Succeeded(listed)) return Fail(source, listed);
        const Error made = Platform::MakeFolder(destination);
        if (!Succeeded(made) && made != Error::AlreadyExists) return Fail(destination, made);
        for (const FolderEntry& entry : entries) {
            if (hooks_.isCancelled && hooks_.isCancelled()) return Error::Cancelled;
            if (entry.IsReparsePoint() && behindLink) continue;
            const std::wstring from = JoinPath(source, entry.name);
            const std::wstring to = JoinPath(destination, entry.name);
            const Error error = entry.IsFolder()
                                    ? CopyFolder(from, to, behindLink || entry.IsReparsePoint())
                                    : CopyOne(from, to, entry);
            if (!Succeeded(error)) return error;
        }
        CopyAttributes(source, destination);
        return Error::None;
    }

private:
    Error CopyOne(const std::wstring& from, const std::wstring& to,
                  const FolderEntry& entry) const {
        // Nothing stands there, unless two names differ in case alone or somebody came meanwhile.
        const Error error = Platform::CopyFileTo(from, to, false);
        if (entry.IsReparsePoint() && LeadsNowhere(error)) return Error::None;
        if (!Succeeded(error)) return Fail(from, error);
        if (hooks_.onFile) hooks_.onFile(entry.size);
        return Error::None;
    }

    static void CopyAttributes(const std::wstring& source, const std::wstring& destination) {
        Platform::FileInfo info;
        if (!Succeeded(Platform::GetFileInfo(source, info))) return;
        const std::uint32_t kept = info.attributes & KeptFolderAttributes;
        // The copy is whole without them.
        if (kept != 0) (void)Platform::ChangeAttributes(destination, kept);
    }

    Error Fail(const std::wstring& path, Error error) const {
        failedPath_ = path;
        return error;
    }

    const TreeCopyHooks& hooks_;
    std::wstring& failedPath_;
};

}  // namespace

Error CopyTree(const std::wstring& source, const std::wstring& destination,
               const TreeCopyHooks& hooks, std::wstring& failedPath) {
    failedPath.clear();
    return TreeCopier(hooks, failedPath).CopyFolder(source, destination, false);
}

bool VerifyCopy(const std::wstring& source, const std::wstring& destination,
                std::wstring& firstMismatch) {
    std::vector<FolderEntry> entries;
    if (!Succeeded(Platform::ListFolder(source, entries))) {
        firstMismatch = source;
        return false;
    }
    for (const FolderEntry& entry : entries) {
        if (entry.IsReparsePoint()) continue;
        const std::wstring from = JoinPath(source, entry.name);
        const std::wstring to = JoinPath(destination, entry.name);
        if (entry.IsFolder()) {
            if (!VerifyCopy(from, to, firstMismatch)) return false;
            continue;
        }
        Platform::FileInfo copy;
        if (!Succeeded(Platform::GetFileInfo(to, copy)) || copy.IsFolder() ||
            copy.size != entry.size) {
            firstMismatch = from;
            return false;
        }
    }
    return true;
}

}  // namespace Launcher
