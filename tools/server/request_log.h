#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "system.h"

namespace Server {

/// The time-stamped log that people and tests read: one line an event, "TIME EVENT KEY=VALUE...".
/// A line is on its way to the file in one piece when Write returns. Any thread.
///
///   connect    c=7 listener=https peer=127.0.0.1:40312
///   handshake  c=7 failed: REASON                    (only when it fails)
///   request    c=7 r=1 GET /scripts/index.txt        (before anything is answered)
///   response   c=7 r=1 status=200 sent=5120 of=81920 ms=12.7 fault=3 GET /scripts/index.txt
///   close      c=7 requests=1
///   fault      set 3 scripts/index.txt=cut:5120      (also: cleared 3)
///
/// "sent" and "of" count the bytes of the body; "of" is "-" where the body has no end. "fault" is
/// the number of the rule that the response went through, or "-".
class RequestLog {
public:
    RequestLog() = default;
    /// Appends to the file; throws std::system_error when it cannot be opened. An empty name
    /// keeps no log, "-" writes to the standard output.
    explicit RequestLog(const std::string& path);

    void Write(std::string_view event, std::string_view text) const;

    /// What the log's file holds from an offset on; empty when it is no plain file.
    std::string Read(std::uint64_t from) const;

private:
    Descriptor file_;
};

}  // namespace Server
