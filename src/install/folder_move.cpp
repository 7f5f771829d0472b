#include "install/folder_move.h"

#include <vector>

#include "common/path_text.h"
#include "install/files_in_use.h"
#include "install/folder_tree.h"
#include "install/game_client.h"
#include "install/path_resolution.h"
#include "install/path_rules.h"
#include "install/tree_copy.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/text.h"

namespace Launcher {

namespace {

using Platform::Error;
using Platform::Succeeded;

constexpr std::wstring_view TemporaryPrefix = L"_tolvan_move_";
constexpr std::size_t ShortestFolder = 3;

bool IsReparsePoint(const std::wstring& path) {
    Platform::FileInfo info;
    return Succeeded(Platform::GetFileInfo(path, info)) && info.IsReparsePoint();
}

/// The folders that a move makes above its destination, taken back when it fails.
class MadeFolders {
public:
    /// Makes the folder with all its parents, as far as they are missing.
    bool Make(const std::wstring& folder) {
        for (std::wstring missing = folder;
             missing.size() >= ShortestFolder && !Platform::PathExists(missing);
             missing = FolderOf(missing)) {
            made_.push_back(missing);
        }
        return made_.empty() || CreateFolderPath(folder);
    }
    void TakeBack() const {
        // One that was filled by somebody else meanwhile stays.
        for (const std::wstring& folder : made_)
            (void)Platform::RemoveEmptyFolder(folder);
    }

private:
    std::vector<std::wstring> made_;  ///< the deepest one first
};

class FolderMove {
public:
    FolderMove(std::wstring source, std::wstring destination, const MoveHooks& hooks,
               MoveResult& result)
        : source_(std::move(source)),
          destination_(std::move(destination)),
          hooks_(hooks),
          result_(result) {}

    bool Run() {
        if (!MayMove()) return Fail(MoveCode::Refused);
        FolderStat(source_, result_.bytes, result_.files);
        const bool mayGo = !IsProtectedFromDeletion(source_);
        if (IsSameOrInside(destination_, source_)) {
            return mayGo ? MoveIntoItself() : Fail(MoveCode::Refused);
        }
        // What may not be removed may not be renamed away either.
        return mayGo ? MoveOut() : CopyOver() && LeaveSource();
    }

private:
    bool MayMove() {
        if (source_.empty() || destination_.empty()) return false;
        if (Platform::EqualIgnoringCase(ResolvePath(source_), ResolvePath(destination_))) {
            return false;
        }
        if (!IsSafeFolder(destination_) || !IsSafeFolder(ResolvePath(destination_))) return false;
        if (CountRunningClients(source_) > 0) {
            result_.blockingPath = FindClient(source_);
            return false;
        }
        return FindFileInUse(source_, result_.blockingPath);
    }

    bool MoveIntoItself() {
        const std::wstring temporary =
            JoinPath(FolderOf(source_),
                     std::wstring(TemporaryPrefix) + std::to_wstring(Platform::OwnProcessId()));
        if (const Error error = Rename(source_, temporary); !Succeeded(error)) {
            return FailRename(error);
        }
        MadeFolders parents;
        Error error = Error::PathNotFound;
        if (parents.Make(FolderOf(destination_))) error = Rename(temporary, destination_);
        if (Succeeded(error)) return Stand();
        parents.TakeBack();
        // Should this fail too, the next start tries again.
        if (!Succeeded(Rename(temporary, source_))) result_.leftoverFolder = temporary;
        return FailRename(error);
    }

    bool MoveOut() {
        MadeFolders parents;
        // Where it cannot be made the rename tells.
        (void)parents.Make(FolderOf(destination_));
        Error error = ClearDestination();
        if (Succeeded(error)) error = Rename(source_, destination_);
        if (error == Error::NotSameDevice) return CopyOver() && RemoveSource();
        if (!Succeeded(error)) {
            if (cleared_) (void)Platform::MakeFolder(destination_);
            parents.TakeBack();
            return FailRename(error);
        }
        result_.renamed = true;
        return Stand();
    }

    /// An empty folder may be in the way. Nobody else's files ever are.
    Error ClearDestination() {
        Platform::FileInfo info;
        if (!Succeeded(Platform::GetFileInfo(destination_, info))) return Error::None;
        if (!info.IsFolder() || info.IsReparsePoint()) return Error::AlreadyExists;
        const Error error = Platform::RemoveEmptyFolder(destination_);
        cleared_ = cleared_ || Succeeded(error);
        return error == Error::FolderNotEmpty ? Error::AlreadyExists : error;
    }

    bool CopyOver() {
        if (const Error error = ClearDestination(); !Succeeded(error)) return FailRename(error);
        MadeFolders parents;
        (void)parents.Make(FolderOf(destination_));  // where it cannot be made the copy tells
        std::uint64_t bytes = 0;
        std::uint64_t files = 0;
        TreeCopyHooks hooks;
        hooks.isCancelled = hooks_.isCancelled;
        hooks.onFile = [&](std::uint64_t size) {
            bytes += size;
            ++files;
            if (hooks_.onProgress) hooks_.onProgress(bytes, files);
        };
        std::wstring failedPath;
        const Error error = CopyTree(source_, destination_, hooks, failedPath);
        if (!Succeeded(error)) {
            result_.copyResult = Platform::Code(error);
            result_.copyAborted = error == Error::Cancelled;
            return Fail(MoveCode::CopyFailed);
        }
        if (!VerifyCopy(source_, destination_, result_.copyMismatch)) {
            return Fail(MoveCode::CheckFailed);
        }
        return Stand();
    }

    bool RemoveSource() {
        if (RemoveInstallFolder(source_, nullptr)) return true;
        result_.leftoverFolder = source_;
        return Fail(MoveCode::LeftBehind);
    }

    bool LeaveSource() {
        result_.leftoverFolder = source_;
        return true;
    }

    static Error Rename(const std::wstring& from, const std::wstring& to) {
        return Platform::MovePath(from, to, {.writeThrough = true});
    }

    bool Stand() {
        if (hooks_.onStanding) hooks_.onStanding();
        return true;
    }
    bool Fail(MoveCode code) {
        result_.code = code;
        return false;
    }
    bool FailRename(Error error) {
        result_.win32Error = Platform::Code(error);
        return Fail(MoveCode::RenameFailed);
    }

    std::wstring source_;
    std::wstring destination_;
    const MoveHooks& hooks_;
    MoveResult& result_;
    bool cleared_ = false;  ///< an empty folder made room
};

/// Removes the folder when it and all below it are empty folders. False when something else stands
/// there; nothing but empty folders ever goes.
bool RemoveIfOnlyFolders(const std::wstring& folder) {
    if (!Platform::PathExists(folder)) return true;
    std::vector<Platform::FolderEntry> entries;
    if (IsReparsePoint(folder) || !Succeeded(Platform::ListFolder(folder, entries))) return false;
    for (const Platform::FolderEntry& entry : entries) {
        if (!entry.IsFolder() || entry.IsReparsePoint()) return false;
    }
    for (const Platform::FolderEntry& entry : entries) {
        if (!RemoveIfOnlyFolders(JoinPath(folder, entry.name))) return false;
    }
    return Succeeded(Platform::RemoveEmptyFolder(folder));
}

/// The id of the process that gave the folder its temporary name; 0 for another name.
std::uint32_t MoverOf(const std::wstring& name) {
    if (!name.starts_with(TemporaryPrefix)) return 0;
    const std::wstring digits = name.substr(TemporaryPrefix.size());
    const bool isNumber = !digits.empty() && digits.size() < 10 &&
                          digits.find_first_not_of(L"0123456789") == std::wstring::npos;
    return isNumber ? static_cast<std::uint32_t>(std::stoul(digits)) : 0;
}

}  // namespace

bool MoveInstallFolder(const std::wstring& source, const std::wstring& destination,
                       const MoveHooks& hooks, MoveResult& result) {
    result = {};
    return FolderMove(WithoutTrailingSeparators(source, ShortestFolder),
                      WithoutTrailingSeparators(destination, ShortestFolder), hooks, result)
        .Run();
}

void PutBackInterruptedMove(const std::wstring& installFolder) {
    if (!IsSafeFolder(installFolder) || !FindClient(installFolder).empty()) return;
    const std::wstring parent = FolderOf(installFolder);
    std::vector<Platform::FolderEntry> entries;
    // A drive alone would name its current folder.
    if (!Succeeded(Platform::ListFolder(parent + L"\\", entries))) return;
    for (const Platform::FolderEntry& entry : entries) {
        const std::uint32_t mover = MoverOf(entry.name);
        if (mover == 0 || !entry.IsFolder() || entry.IsReparsePoint()) continue;
        const std::wstring moved = JoinPath(parent, entry.name);
        // A move that is still under way looks after itself.
        if (!Platform::HasProcessEnded(mover) || FindClient(moved).empty()) continue;
        if (!RemoveIfOnlyFolders(installFolder)) return;
        // Where it cannot be put back it stays to be found.
        (void)Platform::MovePath(moved, installFolder, {.writeThrough = true});
        return;
    }
}

}  // namespace Launcher
