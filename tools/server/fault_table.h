#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fault.h"
#include "system.h"

namespace Server {

/// A rule at work. The event is set when the rule is cleared, so that whoever stalls because of it
/// goes on.
struct ActiveRule {
    ActiveRule(unsigned number, FaultRule given) : id(number), rule(std::move(given)) {}

    const unsigned id;
    const FaultRule rule;
    const Event cleared;
    std::uint64_t matches = 0;  ///< guarded by the table
};

/// The rules in force. Any thread.
class FaultTable {
public:
    unsigned Add(FaultRule rule);
    /// Clears one rule, or all without a number; false when there is no such rule.
    bool Clear(std::optional<unsigned> id);

    /// The newest rule that matches and is not used up, or null. The match is counted.
    std::shared_ptr<const ActiveRule> ForRequest(std::string_view path, std::string_view query);
    std::shared_ptr<const ActiveRule> ForConnection(std::string_view listener);
    bool Refuses(std::string_view listener) const;

    /// One line a rule: number, how often it matched, and its text.
    std::string List() const;

private:
    template <typename Predicate>
    std::shared_ptr<const ActiveRule> Take(Predicate matches);

    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<ActiveRule>> rules_;  ///< newest last; guarded by mutex_
    unsigned lastId_ = 0;                             ///< guarded by mutex_
};

}  // namespace Server
