#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/error.h"

/// Files and folders. Every path is a Windows path ("C:\Games\x", either separator, any case)
/// on both platforms. All calls may come from any thread.
namespace Platform {

/// Attribute bits, with their Windows values.
enum FileAttribute : std::uint32_t {
    AttributeReadOnly = 0x1,
    AttributeHidden = 0x2,
    AttributeSystem = 0x4,
    AttributeFolder = 0x10,
    AttributeArchive = 0x20,
    AttributeNormal = 0x80,
    AttributeReparsePoint = 0x400,
    AttributeNotContentIndexed = 0x2000,
};

struct FileInfo {
    std::uint32_t attributes = 0;  ///< FileAttribute bits
    std::uint64_t size = 0;        ///< bytes; 0 for a folder

    bool IsFolder() const { return (attributes & AttributeFolder) != 0; }
    bool IsReparsePoint() const { return (attributes & AttributeReparsePoint) != 0; }
};

/// A link is described as itself, never as what it points to.
[[nodiscard]] Error GetFileInfo(const std::wstring& path, FileInfo& info);

/// True when something stands at the path, whatever it is.
bool PathExists(const std::wstring& path);
bool IsExistingFolder(const std::wstring& path);

/// The one path of what stands at path: links followed, and short names and substituted drives
/// written out. For telling whether two paths lead to the same place.
[[nodiscard]] Error GetFinalPath(const std::wstring& path, std::wstring& result);

/// Tells what stands at the path from everything else, also from what is made in its place later; a
/// rename and what happens inside of a folder change nothing. A link has its own.
[[nodiscard]] Error GetIdentity(const std::wstring& path, std::wstring& result);

/// Replaces all attributes. AttributeNormal (alone) clears them.
[[nodiscard]] Error ChangeAttributes(const std::wstring& path, std::uint32_t attributes);

/// What a handle may do, and what it lets others do meanwhile. Bits that can be joined.
enum FileAccess : unsigned { AccessRead = 1, AccessWrite = 2, AccessDelete = 4 };
enum FileSharing : unsigned {
    ShareNone = 0,
    ShareRead = 1,
    ShareWrite = 2,
    ShareDelete = 4,
    ShareAll = 7
};

enum class Disposition {
    OpenExisting,  ///< FileNotFound or PathNotFound when missing
    CreateNew,     ///< FileExists when there is one
    CreateAlways,  ///< an existing file is emptied; AccessDenied when it is hidden or system
};

struct OpenOptions {
    unsigned access = AccessRead;
    unsigned sharing = ShareAll;
    Disposition disposition = Disposition::OpenExisting;
    bool deleteOnClose = false;  ///< the file goes with its last handle, also after a kill
    bool folder = false;  ///< a folder may be opened too (for AccessDelete: the in-use probe)
};

/// An open file. Not shared between threads at the same time.
class File {
public:
    File() = default;
    ~File();
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// SharingViolation when another handle, of any process, does not allow it or uses what this
    /// one would deny; AccessDenied for a folder (unless options.folder), a read-only file opened
    /// for writing, a file pending deletion, and missing rights. A running program's file can be
    /// opened for reading, and for AccessDelete, but not for writing (SharingViolation).
    /// Whatever was open before is closed first.
    [[nodiscard]] Error Open(const std::wstring& path, const OpenOptions& options);
    bool IsOpen() const;

    /// Reads at the file's position; got is 0 only at the end.
    [[nodiscard]] Error Read(std::span<std::byte> buffer, std::size_t& got);
    /// Reads at the offset, as far as the file goes. The position afterwards is not told.
    [[nodiscard]] Error ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& got);
    /// Writes all of it or fails (DiskFull).
    [[nodiscard]] Error Write(std::span<const std::byte> bytes);
    /// Hands what was written to the disk, so that it survives the end of the machine.
    [[nodiscard]] Error Flush();
    /// What was written survives the end of this process, whatever ends it.
    [[nodiscard]] Error Secure();
    [[nodiscard]] Error GetSize(std::uint64_t& size) const;
    void Close();

private:
    std::intptr_t handle_ = -1;
};

struct MoveOptions {
    bool replaceExisting = false;
    bool writeThrough = false;  ///< return only when the move itself is done on the disk
    bool copyAllowed = false;   ///< across drives: copy, then delete
};

/// Renames a file or a folder, in one step on one drive. AlreadyExists when the target stands and
/// may not be replaced; AccessDenied when the target is a folder or a running program, or the
/// source folder cannot move; SharingViolation when a handle on source or target does not share
/// deletion; NotSameDevice across drives.
[[nodiscard]] Error MovePath(const std::wstring& from, const std::wstring& to,
                             const MoveOptions& options);

/// Copies a file with its attributes. FileExists when the target stands and overwrite is false.
[[nodiscard]] Error CopyFileTo(const std::wstring& from, const std::wstring& to, bool overwrite);

/// AccessDenied for a folder, a read-only file and a running program; SharingViolation when a
/// handle does not share deletion.
[[nodiscard]] Error RemoveFile(const std::wstring& path);

/// PathNotFound when the parent is missing, AlreadyExists when something stands there.
[[nodiscard]] Error MakeFolder(const std::wstring& path);

/// Makes the folder with all its parents. AlreadyExists when it stands.
[[nodiscard]] Error MakeFolderPath(const std::wstring& path);

/// Removes an empty folder, or a reparse point to a folder without touching its target.
/// FolderNotEmpty otherwise.
[[nodiscard]] Error RemoveEmptyFolder(const std::wstring& path);

struct FolderEntry {
    std::wstring name;
    /// AttributeFolder and AttributeReparsePoint are sure here; ask GetFileInfo for the others.
    std::uint32_t attributes = 0;
    std::uint64_t size = 0;

    bool IsFolder() const { return (attributes & AttributeFolder) != 0; }
    bool IsReparsePoint() const { return (attributes & AttributeReparsePoint) != 0; }
};

/// The folder's entries, without "." and "..", in no particular order.
[[nodiscard]] Error ListFolder(const std::wstring& folder, std::vector<FolderEntry>& entries);

}  // namespace Platform
