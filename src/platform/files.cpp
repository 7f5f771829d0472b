#include "platform/files.h"

#include <utility>

namespace Platform {

File::~File() {
    Close();
}

File::File(File&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        Close();
        handle_ = std::exchange(other.handle_, -1);
    }
    return *this;
}

bool File::IsOpen() const {
    return handle_ != -1;
}

}  // namespace Platform
