#include "platform/host/sharing.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/host/errors.h"

namespace Platform::Host {

namespace {

constexpr off_t FirstByte = off_t{1} << 62;
constexpr off_t RangeLength = off_t{1} << 20;

enum class Range { Reading, Writing, Deleting, DeleteOnClose };
constexpr int RangeCount = 4;

off_t StartOf(Range range) {
    return FirstByte + static_cast<off_t>(range) * RangeLength;
}

struct flock Bytes(short type, off_t start, off_t length) {
    struct flock bytes {};
    bytes.l_type = type;
    bytes.l_whence = SEEK_SET;
    bytes.l_start = start;
    bytes.l_len = length;
    return bytes;
}

Error Set(int descriptor, short type, off_t start, off_t length) {
    struct flock bytes = Bytes(type, start, length);
    return ::fcntl(descriptor, F_OFD_SETLK, &bytes) == 0 ? Error::None : LastError();
}

// The kind of lock of somebody else that a lock of this type would meet; F_UNLCK for none.
short Obstacle(int descriptor, short type, off_t start, off_t length) {
    struct flock bytes = Bytes(type, start, length);
    return ::fcntl(descriptor, F_OFD_GETLK, &bytes) == 0 ? bytes.l_type : short{F_UNLCK};
}

Error TakeRange(int descriptor, Range range) {
    return Set(descriptor, F_RDLCK, StartOf(range), RangeLength);
}

// Bytes are handed out in turn; two users that meet on one are no conflict, and the later one
// takes another.
off_t NextByte() {
    static std::atomic<off_t> next = static_cast<off_t>(::getpid()) * 1021;
    return next.fetch_add(1, std::memory_order_relaxed) % RangeLength;
}

Error TakeByte(int descriptor, Range range, bool hold) {
    for (;;) {
        const off_t byte = StartOf(range) + NextByte();
        if (hold) {
            const Error error = Set(descriptor, F_WRLCK, byte, 1);
            if (error != Error::SharingViolation) return error;
        }
        const short obstacle = Obstacle(descriptor, F_WRLCK, byte, 1);
        if (obstacle == F_RDLCK) return Error::SharingViolation;
        if (obstacle == F_UNLCK && !hold) return Error::None;
    }
}

}  // namespace

ShareGate::ShareGate(int descriptor) : descriptor_(descriptor) {
    while (::flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) {
    }
}

ShareGate::~ShareGate() {
    ::flock(descriptor_, LOCK_UN);
}

Error AddPlainReader(int descriptor) {
    return TakeRange(descriptor, Range::Reading);
}

Error AddUser(int descriptor, unsigned access, unsigned sharing, bool isWritable) {
    struct Step {
        bool wanted;
        Range range;
        bool isByte;
    };
    // A plain reader passes no gate and sees only who denies reading: that step comes last, when
    // nothing can fail any more.
    const Step steps[] = {
        {(sharing & ShareWrite) == 0, Range::Writing, false},
        {(access & AccessWrite) != 0, Range::Writing, true},
        {(sharing & ShareDelete) == 0, Range::Deleting, false},
        {(access & AccessDelete) != 0, Range::Deleting, true},
        {(access & AccessRead) != 0, Range::Reading, false},
        {(sharing & ShareRead) == 0, Range::Reading, true},
    };
    for (const Step& step : steps) {
        if (!step.wanted) continue;
        const Error error = step.isByte ? TakeByte(descriptor, step.range, isWritable)
                                        : TakeRange(descriptor, step.range);
        if (!Succeeded(error)) return error;
    }
    return Error::None;
}

bool NeedsByte(unsigned access, unsigned sharing) {
    return (access & (AccessWrite | AccessDelete)) != 0 || (sharing & ShareRead) == 0;
}

Error CheckDeletable(int descriptor) {
    return TakeByte(descriptor, Range::Deleting, false);
}

bool IsOpenElsewhere(int descriptor) {
    return Obstacle(descriptor, F_WRLCK, FirstByte, RangeCount * RangeLength) != F_UNLCK;
}

Error AddDeleter(int descriptor) {
    return TakeRange(descriptor, Range::DeleteOnClose);
}

bool HasDeleter(int descriptor) {
    return Obstacle(descriptor, F_WRLCK, StartOf(Range::DeleteOnClose), RangeLength) != F_UNLCK;
}

bool IsShareByte(off_t byte) {
    return byte >= FirstByte && byte < FirstByte + RangeCount * RangeLength;
}

void RemoveUser(int descriptor) {
    // A failure leaves the locks to the close that follows.
    (void)Set(descriptor, F_UNLCK, FirstByte, RangeCount * RangeLength);
}

}  // namespace Platform::Host
