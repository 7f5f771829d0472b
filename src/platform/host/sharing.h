#pragma once

#include <sys/types.h>

#include "platform/error.h"

/// Share modes between processes, by locks of the system on the file itself: they end with the last
/// holder of the descriptor, also when it is killed.
///
/// For each of reading, writing and deleting there is a range of bytes far behind the end of any
/// file. One side locks the whole range shared, the other side one byte of it exclusively, and so
/// only the two sides exclude each other:
///
///     reading   users the range       who denies it one byte
///     writing   users one byte        who denies it the range
///     deleting  users one byte        who denies it the range
///
/// The sides are chosen so that reading while sharing everything, by far the most frequent, is one
/// call on a descriptor that need not be writable. An exclusive lock needs one that is.
namespace Platform::Host {

/// Held while a handle is added that takes more than one lock, and while a file is removed or
/// renamed: between these, what one sees another cannot change. It belongs to the open file.
class ShareGate {
public:
    explicit ShareGate(int descriptor);
    ~ShareGate();
    ShareGate(const ShareGate&) = delete;
    ShareGate& operator=(const ShareGate&) = delete;

private:
    int descriptor_;
};

/// Adds a reader that shares everything. SharingViolation when somebody denies reading.
[[nodiscard]] Error AddPlainReader(int descriptor);

/// Adds any other user, inside a ShareGate. What takes a byte is only checked, and not held, when
/// the descriptor cannot be written to: a folder, a running program, a read-only disk.
[[nodiscard]] Error AddUser(int descriptor, unsigned access, unsigned sharing, bool isWritable);

/// True when a user has to open the file for writing for its locks alone.
bool NeedsByte(unsigned access, unsigned sharing);

/// SharingViolation when somebody denies deleting. Inside a ShareGate.
[[nodiscard]] Error CheckDeletable(int descriptor);

/// True when anybody else has the file open. Inside a ShareGate.
bool IsOpenElsewhere(int descriptor);

/// Marks the file as held by a handle that will delete it, and asks whether one does.
[[nodiscard]] Error AddDeleter(int descriptor);
bool HasDeleter(int descriptor);

/// True for a byte of a file that only these locks use.
bool IsShareByte(off_t byte);

/// Drops all at once, also those that a child process has inherited and not closed yet.
void RemoveUser(int descriptor);

}  // namespace Platform::Host
