#include "control.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Server {

namespace {

Answer Raw(std::string text, unsigned status = 200) {
    Answer answer;
    answer.status = status;
    answer.body = TextBody(std::move(text));
    return answer;
}

Answer Say(const std::string& text, unsigned status = 200) {
    return Raw(text + "\n", status);
}

std::uint64_t Number(const Target& target, std::string_view name, std::uint64_t standard) {
    const auto text = QueryValue(target.rawQuery, name);
    std::uint64_t number = standard;
    if (text) std::from_chars(text->data(), text->data() + text->size(), number);
    return number;
}

}  // namespace

Answer Control::Handle(const Target& target) {
    struct Operation {
        std::string_view path;
        Answer (Control::*handle)(const Target& target);
    };
    static constexpr std::array Operations = {
        Operation{".control/set", &Control::Set},   Operation{".control/clear", &Control::Clear},
        Operation{".control/list", &Control::List}, Operation{".control/drop", &Control::Drop},
        Operation{".control/put", &Control::Put},   Operation{".control/append", &Control::Append},
        Operation{".control/log", &Control::Log},
    };
    const auto* found = std::ranges::find(Operations, target.path, &Operation::path);
    return found == Operations.end() ? StatusPage(404) : (this->*found->handle)(target);
}

Answer Control::Set(const Target& target) {
    std::string problem;
    auto rule = ParseFaultRule(QueryValue(target.rawQuery, "rule").value_or(""), problem);
    if (!rule) return Say(problem, 400);
    const std::string text = rule->text;
    const std::string id = std::to_string(faults_.Add(*std::move(rule)));
    listeners_.ApplyRefusals();
    log_.Write("fault", "set " + id + " " + text);
    return Say(id);
}

Answer Control::Clear(const Target& target) {
    const auto text = QueryValue(target.rawQuery, "id");
    std::optional<unsigned> id;
    if (text) {
        const char* end = text->data() + text->size();
        if (std::from_chars(text->data(), end, id.emplace()).ptr != end || text->empty()) {
            return Say("\"" + *text + "\" is not a number", 400);
        }
    }
    if (!faults_.Clear(id)) return Say("there is no rule " + *text, 404);
    listeners_.ApplyRefusals();
    log_.Write("fault", "cleared " + text.value_or("all"));
    return Say("cleared");
}

Answer Control::List(const Target& /*target*/) {
    return Raw(faults_.List());
}

Answer Control::Drop(const Target& /*target*/) {
    listeners_.DropConnections();
    return Say("dropped");
}

Answer Control::Put(const Target& target) {
    tree_.Put(QueryValue(target.rawQuery, "path").value_or(""),
              QueryValue(target.rawQuery, "text"));
    return Say("put");
}

Answer Control::Append(const Target& target) {
    tree_.Append(QueryValue(target.rawQuery, "path").value_or(""),
                 QueryValue(target.rawQuery, "text").value_or(""), Number(target, "times", 1));
    return Say("appended");
}

Answer Control::Log(const Target& target) {
    return Raw(log_.Read(Number(target, "from", 0)));
}

}  // namespace Server
