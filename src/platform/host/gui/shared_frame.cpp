#include "platform/host/gui/shared_frame.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace Platform::Host {

bool SharedFrame::Allocate(Size size) {
    Release();
    memory_ = Descriptor(memfd_create("frame", MFD_CLOEXEC));
    size_ = size;
    if (!memory_ || ftruncate(memory_.Get(), static_cast<off_t>(Bytes())) != 0) {
        Release();
        return false;
    }
    void* mapped = mmap(nullptr, Bytes(), PROT_READ | PROT_WRITE, MAP_SHARED, memory_.Get(), 0);
    if (mapped == MAP_FAILED) {
        Release();
        return false;
    }
    pixels_ = static_cast<std::byte*>(mapped);
    return true;
}

void SharedFrame::Release() {
    if (pixels_) munmap(pixels_, Bytes());
    pixels_ = nullptr;
    memory_.Reset();
    size_ = {};
}

Descriptor SharedFrame::DuplicateDescriptor() const {
    return Descriptor(fcntl(memory_.Get(), F_DUPFD_CLOEXEC, 0));
}

}  // namespace Platform::Host
