#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// How an answer can be made to go wrong, and the language in which that is told.
namespace Server {

/// A place in a body: bytes from its start, or a share of its length.
struct Place {
    std::uint64_t value = 0;
    bool percent = false;

    /// A share of a body without an end is its start.
    std::uint64_t In(std::optional<std::uint64_t> length) const;
};

enum class StallAt { Never, BeforeHeaders, AfterHeaders, InBody };
enum class BodyKind { Own, Text, Html, Empty, Junk, Big, Endless, File };
enum class ConnectionFault { None, Refuse, Reset, Close, Stall };

/// Every field at its default is an answer without a fault. Fields combine freely.
struct Fault {
    std::chrono::milliseconds latency{0};

    StallAt stall = StallAt::Never;
    Place stallPlace;
    std::optional<Place> cut;  ///< the connection ends here
    bool reset = false;        ///< it ends with a reset instead of an orderly close
    std::optional<std::uint64_t> bytesPerSecond;

    std::optional<unsigned> status;
    std::string redirect;  ///< where to; "self" is the address that was asked for
    BodyKind body = BodyKind::Own;
    std::string text;        ///< of BodyKind::Text, or the path of BodyKind::File
    std::uint64_t size = 0;  ///< of BodyKind::Junk and BodyKind::Big

    std::uint64_t shorter = 0;    ///< the body loses so many bytes; the length told agrees
    std::uint64_t longer = 0;     ///< the body gains so many bytes; the length told agrees
    std::optional<Place> flip;    ///< from here on...
    std::uint64_t flipCount = 1;  ///< ...so many bytes are wrong

    std::optional<std::int64_t> lengthError;  ///< Content-Length is wrong by so much
    std::optional<std::uint64_t> length;      ///< Content-Length says this
    bool noLength = false;                    ///< no Content-Length: the close ends the body
    bool chunked = false;

    ConnectionFault connection = ConnectionFault::None;
};

/// Which requests or connections meet which fault.
struct FaultRule {
    std::string text;             ///< as it was given
    std::string pattern;          ///< "*" stands for any text; no other character is special
    bool forConnections = false;  ///< the pattern names listeners, not paths
    Fault fault;
    std::uint64_t skip = 0;              ///< the first so many matches go unharmed
    std::optional<std::uint64_t> times;  ///< then so many meet it; none is all
};

/// Reads "PATTERN=ACTION[:VALUE][,ACTION[:VALUE]]...". See FaultHelp for the actions. On failure
/// the result is empty and problem says what is wrong, in words for the user.
[[nodiscard]] std::optional<FaultRule> ParseFaultRule(std::string_view text, std::string& problem);

/// A rule whose pattern holds a "?" is compared with "path?query", any other with the path alone.
/// Both are decoded, without a leading slash.
bool Matches(const FaultRule& rule, std::string_view path, std::string_view query);

/// "*" matches any text, also an empty one.
bool MatchesPattern(std::string_view pattern, std::string_view text);

/// The table of actions, for --help.
std::string FaultHelp();

}  // namespace Server
