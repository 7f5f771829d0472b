#include "platform/ole.h"

#include <ole2.h>

namespace Platform {

Error InitialiseOle() {
    const HRESULT result = OleInitialize(nullptr);
    return FAILED(result) ? static_cast<Error>(result) : Error::None;
}

void UninitialiseOle() {
    OleUninitialize();
}

}  // namespace Platform
