#include "fault.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "url.h"

namespace Server {

namespace {

std::optional<std::uint64_t> ReadNumber(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// A number of bytes, with an optional K, M or G for powers of 1,024.
std::optional<std::uint64_t> ReadSize(std::string_view text) {
    constexpr std::string_view Units = "KMG";
    unsigned shift = 0;
    if (!text.empty() && Units.find(text.back()) != std::string_view::npos) {
        shift = 10 * static_cast<unsigned>(Units.find(text.back()) + 1);
        text.remove_suffix(1);
    }
    const auto number = ReadNumber(text);
    if (!number || *number > std::numeric_limits<std::uint64_t>::max() >> shift)
        return std::nullopt;
    return *number << shift;
}

std::optional<Place> ReadPlace(std::string_view text) {
    if (!text.empty() && text.back() == '%') {
        text.remove_suffix(1);
        const auto share = ReadNumber(text);
        if (!share || *share > 100) return std::nullopt;
        return Place{*share, true};
    }
    const auto bytes = ReadSize(text);
    if (!bytes) return std::nullopt;
    return Place{*bytes, false};
}

template <typename Field>
bool Store(Field& field, const std::optional<std::uint64_t>& value) {
    if (!value) return false;
    field = *value;
    return true;
}

bool SetBody(Fault& fault, BodyKind kind, std::string_view value) {
    fault.body = kind;
    fault.text = value;
    return true;
}

bool SetSizedBody(Fault& fault, BodyKind kind, std::string_view value, std::string_view standard) {
    fault.body = kind;
    return Store(fault.size, ReadSize(value.empty() ? standard : value));
}

bool SetLatency(FaultRule& rule, std::string_view value) {
    const auto milliseconds = ReadNumber(value);
    if (!milliseconds || *milliseconds > 3'600'000) return false;
    rule.fault.latency = std::chrono::milliseconds(*milliseconds);
    return true;
}

bool SetStall(FaultRule& rule, std::string_view value) {
    Fault& fault = rule.fault;
    if (rule.forConnections) {
        fault.connection = ConnectionFault::Stall;
        return value.empty();
    }
    if (value.empty() || value == "headers") {
        fault.stall = value.empty() ? StallAt::BeforeHeaders : StallAt::AfterHeaders;
        return true;
    }
    const auto place = ReadPlace(value);
    if (!place) return false;
    fault.stall = StallAt::InBody;
    fault.stallPlace = *place;
    return true;
}

bool SetReset(FaultRule& rule, std::string_view value) {
    if (rule.forConnections) {
        rule.fault.connection = ConnectionFault::Reset;
    } else {
        rule.fault.reset = true;
        if (!rule.fault.cut) rule.fault.cut = Place{0, false};
    }
    return value.empty();
}

bool SetCut(FaultRule& rule, std::string_view value) {
    rule.fault.cut = ReadPlace(value.empty() ? "0" : value);
    return rule.fault.cut.has_value();
}

bool SetStatus(FaultRule& rule, std::string_view value) {
    const auto code = ReadNumber(value);
    if (!code || *code < 100 || *code > 999) return false;
    rule.fault.status = static_cast<unsigned>(*code);
    return true;
}

bool SetFlip(FaultRule& rule, std::string_view value) {
    const std::size_t plus = value.find('+');
    if (plus != std::string_view::npos) {
        if (!Store(rule.fault.flipCount, ReadSize(value.substr(plus + 1)))) return false;
        value = value.substr(0, plus);
    }
    rule.fault.flip = ReadPlace(value);
    return rule.fault.flip.has_value();
}

bool SetLength(FaultRule& rule, std::string_view value) {
    if (value.empty()) return false;
    const char sign = value.front();
    if (sign != '+' && sign != '-') return Store(rule.fault.length, ReadSize(value));
    const auto error = ReadSize(value.substr(1));
    if (!error || *error > std::uint64_t{1} << 62) return false;
    rule.fault.lengthError = static_cast<std::int64_t>(*error) * (sign == '-' ? -1 : 1);
    return true;
}

struct Action {
    std::string_view name;
    bool forRequests;
    bool forConnections;
    bool (*set)(FaultRule& rule, std::string_view value);
    std::string_view help;
};

using Rule = FaultRule&;
using Text = std::string_view;

constexpr std::array Actions = {
    Action{"latency", true, true, SetLatency, "latency:MS      wait so long before the answer"},
    Action{"stall", true, true, SetStall,
           "stall[:AT]      send nothing more: before the headers, after them (stall:headers) or\n"
           "                  from a place in the body on, until the rule is cleared"},
    Action{"cut", true, false, SetCut,
           "cut[:AT]        close the connection at a place in the body"},
    Action{"reset", true, true, SetReset,
           "reset           with cut: by a reset, not an orderly close"},
    Action{"trickle", true, false,
           [](Rule rule, Text value) {
               return Store(rule.fault.bytesPerSecond, ReadSize(value)) &&
                      *rule.fault.bytesPerSecond > 0;
           },
           "trickle:RATE    send the body at so many bytes a second"},
    Action{"status", true, false, SetStatus,
           "status:CODE     answer with this status and a page for it"},
    Action{"redirect", true, false,
           [](Rule rule, Text value) {
               rule.fault.redirect = value;
               return !value.empty();
           },
           "redirect:URL    redirect there; \"self\" is the address that was asked for"},
    Action{"body", true, false,
           [](Rule rule, Text value) { return SetBody(rule.fault, BodyKind::Text, value); },
           "body:TEXT       this text instead"},
    Action{"html", true, false,
           [](Rule rule, Text value) {
               return value.empty() && SetBody(rule.fault, BodyKind::Html, value);
           },
           "html            an HTML page instead"},
    Action{"empty", true, false,
           [](Rule rule, Text value) {
               return value.empty() && SetBody(rule.fault, BodyKind::Empty, value);
           },
           "empty           an empty body instead"},
    Action{
        "junk", true, false,
        [](Rule rule, Text value) { return SetSizedBody(rule.fault, BodyKind::Junk, value, "4K"); },
        "junk[:SIZE]     random bytes instead"},
    Action{"big", true, false,
           [](Rule rule, Text value) {
               return SetSizedBody(rule.fault, BodyKind::Big, value, "100M");
           },
           "big[:SIZE]      a list of made-up names instead, of about so many bytes"},
    Action{"endless", true, false,
           [](Rule rule, Text value) {
               return value.empty() && SetBody(rule.fault, BodyKind::Endless, value);
           },
           "endless         such a list without an end"},
    Action{"file", true, false,
           [](Rule rule, Text value) {
               return !value.empty() && SetBody(rule.fault, BodyKind::File, value);
           },
           "file:PATH       another file of the tree instead"},
    Action{"short", true, false,
           [](Rule rule, Text value) { return Store(rule.fault.shorter, ReadSize(value)); },
           "short:N         the last N bytes are missing; the length told agrees"},
    Action{"long", true, false,
           [](Rule rule, Text value) { return Store(rule.fault.longer, ReadSize(value)); },
           "long:N          N more bytes at the end; the length told agrees"},
    Action{"flip", true, false, SetFlip, "flip:AT[+N]     N wrong bytes (1) from there on"},
    Action{"length", true, false, SetLength,
           "length:[+-]N    a wrong Content-Length: N, or wrong by N; then the connection closes"},
    Action{"no-length", true, false,
           [](Rule rule, Text value) { return value.empty() && (rule.fault.noLength = true); },
           "no-length       no Content-Length; the close ends the body"},
    Action{"chunked", true, false,
           [](Rule rule, Text value) { return value.empty() && (rule.fault.chunked = true); },
           "chunked         chunked transfer coding"},
    Action{"refuse", false, true,
           [](Rule rule, Text value) {
               rule.fault.connection = ConnectionFault::Refuse;
               return value.empty();
           },
           "refuse          connections are refused until the rule is cleared"},
    Action{"close", false, true,
           [](Rule rule, Text value) {
               rule.fault.connection = ConnectionFault::Close;
               return value.empty();
           },
           "close           connections are accepted and closed at once"},
    Action{"skip", true, true,
           [](Rule rule, Text value) { return Store(rule.skip, ReadNumber(value)); },
           "skip:N          the first N matches go unharmed"},
    Action{"times", true, true,
           [](Rule rule, Text value) { return Store(rule.times, ReadNumber(value)); },
           "times:N         only N matches meet the fault; without it all do"},
};

const Action* FindAction(std::string_view name) {
    const auto* found = std::ranges::find(Actions, name, &Action::name);
    return found == Actions.end() ? nullptr : found;
}

/// A pattern may hold "=" itself ("updater.php?f=launcher/*"): the actions begin behind the first
/// "=" that an action's name follows.
std::size_t FindActions(std::string_view text) {
    for (std::size_t at = text.find('='); at != text.npos; at = text.find('=', at + 1)) {
        const std::string_view rest = text.substr(at + 1);
        if (FindAction(rest.substr(0, rest.find_first_of(":,")))) return at;
    }
    return text.npos;
}

bool ApplyAction(FaultRule& rule, std::string_view part, std::string& problem) {
    const std::size_t colon = part.find(':');
    const std::string_view name = part.substr(0, colon);
    const std::string value =
        colon == part.npos ? std::string() : DecodePercent(part.substr(colon + 1));
    const Action* action = FindAction(name);
    if (!action) {
        problem = "unknown action \"" + std::string(name) + "\"";
    } else if (!(rule.forConnections ? action->forConnections : action->forRequests)) {
        problem = "\"" + std::string(name) + "\" is not for " +
                  (rule.forConnections ? "connections" : "requests");
    } else if (!action->set(rule, value)) {
        problem = "\"" + std::string(part) + "\" has a wrong value";
    } else {
        return true;
    }
    return false;
}

}  // namespace

std::uint64_t Place::In(std::optional<std::uint64_t> length) const {
    if (!percent) return value;
    return length ? *length / 100 * value + *length % 100 * value / 100 : 0;
}

std::optional<FaultRule> ParseFaultRule(std::string_view text, std::string& problem) {
    FaultRule rule;
    rule.text = text;
    const std::size_t equals = FindActions(text);
    if (equals == text.npos || equals == 0) {
        problem = "expected PATTERN=ACTION, not \"" + std::string(text) + "\"";
        return std::nullopt;
    }
    std::string_view pattern = text.substr(0, equals);
    rule.forConnections = pattern.front() == '@';
    if (rule.forConnections || pattern.front() == '/') pattern.remove_prefix(1);
    rule.pattern = DecodePercent(pattern);

    std::string_view actions = text.substr(equals + 1);
    for (bool more = true; more;) {
        const std::size_t comma = actions.find(',');
        if (!ApplyAction(rule, actions.substr(0, comma), problem)) return std::nullopt;
        more = comma != actions.npos;
        if (more) actions.remove_prefix(comma + 1);
    }
    if (rule.fault.connection == ConnectionFault::Refuse && (rule.times || rule.skip > 0)) {
        problem = "the system refuses a connection without telling: \"refuse\" cannot be counted";
        return std::nullopt;
    }
    return rule;
}

bool Matches(const FaultRule& rule, std::string_view path, std::string_view query) {
    if (rule.forConnections) return false;
    if (rule.pattern.find('?') == std::string::npos) return MatchesPattern(rule.pattern, path);
    return MatchesPattern(rule.pattern, std::string(path).append("?").append(query));
}

bool MatchesPattern(std::string_view pattern, std::string_view text) {
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = pattern.npos;
    std::size_t retry = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            retry = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (star != pattern.npos) {
            p = star + 1;
            t = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == pattern.npos;
}

std::string FaultHelp() {
    std::string text;
    for (const Action& action : Actions) {
        text.append("  ").append(action.help);
        if (!action.forRequests) text.append(" (only for connections)");
        text += '\n';
    }
    return text;
}

}  // namespace Server
