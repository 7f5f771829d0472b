#pragma once

#include "platform/error.h"
#include "platform/host/http_library.h"

namespace Platform {

/// The number that Windows gives for what a transfer ended with. easy is the transfer's handle,
/// which knows more about a refused certificate.
Error ErrorFromTransfer(CURL* easy, CURLcode result);

}  // namespace Platform
