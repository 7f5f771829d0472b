#include "fault_table.h"

#include <algorithm>

namespace Server {

namespace {

bool MatchesListener(const FaultRule& rule, std::string_view listener) {
    return rule.forConnections && MatchesPattern(rule.pattern, listener);
}

}  // namespace

unsigned FaultTable::Add(FaultRule rule) {
    const std::lock_guard guard(mutex_);
    rules_.push_back(std::make_shared<ActiveRule>(++lastId_, std::move(rule)));
    return lastId_;
}

bool FaultTable::Clear(std::optional<unsigned> id) {
    const std::lock_guard guard(mutex_);
    const auto removed = std::erase_if(rules_, [id](const std::shared_ptr<ActiveRule>& rule) {
        if (id && rule->id != *id) return false;
        rule->cleared.Set();
        return true;
    });
    return !id || removed > 0;
}

template <typename Predicate>
std::shared_ptr<const ActiveRule> FaultTable::Take(Predicate matches) {
    const std::lock_guard guard(mutex_);
    const auto applies = [&](const std::shared_ptr<ActiveRule>& active) {
        const FaultRule& rule = active->rule;
        if (!matches(rule)) return false;
        const std::uint64_t earlier = active->matches++;
        return earlier >= rule.skip && (!rule.times || earlier - rule.skip < *rule.times);
    };
    const auto found = std::find_if(rules_.rbegin(), rules_.rend(), applies);
    return found == rules_.rend() ? nullptr : *found;
}

std::shared_ptr<const ActiveRule> FaultTable::ForRequest(std::string_view path,
                                                         std::string_view query) {
    return Take([&](const FaultRule& rule) { return Matches(rule, path, query); });
}

std::shared_ptr<const ActiveRule> FaultTable::ForConnection(std::string_view listener) {
    return Take([&](const FaultRule& rule) { return MatchesListener(rule, listener); });
}

bool FaultTable::Refuses(std::string_view listener) const {
    const std::lock_guard guard(mutex_);
    return std::ranges::any_of(rules_, [&](const auto& active) {
        return active->rule.fault.connection == ConnectionFault::Refuse &&
               MatchesListener(active->rule, listener);
    });
}

std::string FaultTable::List() const {
    const std::lock_guard guard(mutex_);
    std::string text;
    for (const auto& active : rules_) {
        text += std::to_string(active->id) + "\t" + std::to_string(active->matches) + "\t" +
                active->rule.text + "\n";
    }
    return text;
}

}  // namespace Server
