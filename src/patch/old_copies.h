#pragma once

#include <cstdint>
#include <string>

namespace Launcher {

/// Files that were in use when their successor came. A running program's file can be moved though
/// not overwritten, so it stands as "old" and a number in the top of the install folder until a
/// later pass can delete it.
///
/// Between the two moves there is no file at its place. For that while a record beside the copy,
/// "old", the number and ".from", tells where it belongs: a kill then costs nothing, because the
/// next pass moves the copy back. One thread at a time.
class OldCopies {
public:
    /// installFolder ends in a separator.
    explicit OldCopies(std::wstring installFolder);

    /// Moves back the copies whose place is empty and recorded, and deletes every other file in the
    /// top of the folder whose name begins with "old". What is still in use stays.
    void CleanUp() const;

    /// Moves a file of the install folder to a number that is free, with a record. Returns the path
    /// of the copy, or an empty one when the file could not be moved.
    std::wstring MoveAside(const std::wstring& path);

    /// Drops the record: there is a file at the copy's place again.
    void Settle(const std::wstring& copy) const;

private:
    bool WriteRecord(const std::wstring& copy, const std::wstring& path) const;
    bool MoveBack(const std::wstring& copy) const;

    std::wstring installFolder_;
    std::uint32_t counter_ = 0;
};

}  // namespace Launcher
