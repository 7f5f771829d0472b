#pragma once

#include <cstdint>
#include <optional>

#include "fault_table.h"
#include "transport.h"
#include "tree.h"

namespace Server {

/// The most bytes that the headers of a request may take.
inline constexpr std::size_t HeaderLimit = 65536;

struct Sent {
    std::uint64_t bytes = 0;             ///< of the body
    std::optional<std::uint64_t> total;  ///< of the body, none if it has no end
    bool keepConnection = false;         ///< the next request may follow
};

/// What an answer becomes under a fault that changes what is sent: another status, another body.
Answer ApplyToAnswer(Answer answer, const Fault& fault, const Tree& tree,
                     const std::string& target);

/// Sends an answer, through a rule's fault if there is one. withBody is false for HEAD. Returns
/// when all is sent, the fault has ended the connection, the peer has left or the server stops.
Sent Send(Transport& transport, const Answer& answer, const ActiveRule* rule, bool withBody,
          bool keepAlive);

}  // namespace Server
