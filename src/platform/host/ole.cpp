#include "platform/ole.h"

namespace Platform {

Error InitialiseOle() {
    return Error::None;
}

void UninitialiseOle() {}

}  // namespace Platform
