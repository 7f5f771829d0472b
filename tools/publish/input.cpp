#include "input.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <system_error>
#include <utf8.h>

namespace fs = std::filesystem;

namespace Publish {

namespace {

struct Folder {
    Section section;
    std::string_view prefix;
    Form form;
};

constexpr Folder GameFolder{Section::Game, GamePrefix, Form::Wrapped};
constexpr Folder BaseFolder{Section::Base, BasePrefix, Form::Plain};

class Collector {
public:
    void AddFolder(const fs::path& root, const Folder& folder) {
        NameClashes clashes;
        const std::size_t before = input_.items.size() + input_.problems.size();
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            if (entry.is_directory() && !entry.is_symlink()) continue;
            const std::string name = entry.path().lexically_relative(root);
            if (entry.is_symlink()) {
                Refuse(name, "is a symbolic link");
            } else if (!entry.is_regular_file()) {
                Refuse(name, "is no file");
            } else if (const auto problem = ProblemWithName(folder.section, name);
                       !problem.empty()) {
                Refuse(name, problem);
            } else {
                names_.emplace_back(name);
                input_.items.push_back(
                    {std::string(folder.prefix) + name, entry.path(), folder.form});
            }
        }
        // In order, so that of two names that clash it is always the same one that is refused.
        std::ranges::sort(names_);
        for (const std::string& name : names_) {
            const std::string other = clashes.Add(name);
            if (!other.empty()) Refuse(name, "is one name on Windows with " + Printable(other));
        }
        names_.clear();
        if (input_.items.size() + input_.problems.size() == before) {
            Refuse(root.string(), "holds no file");
        }
    }

    void AddProgram(const Program& program, const fs::path& file) {
        const std::string_view problem = ProblemWithProgram(program, file);
        if (!problem.empty()) {
            Refuse(std::string(program.option) + " " + file.string(), problem);
        } else {
            input_.items.push_back({std::string(program.path), file, Form::Plain});
        }
    }

    Input Finish() {
        std::ranges::sort(input_.items, {}, &Item::path);
        return std::move(input_);
    }

private:
    void Refuse(std::string_view name, std::string_view problem) {
        input_.problems.push_back(Printable(name) + ": " + std::string(problem));
    }

    Input input_;
    std::vector<std::string> names_;
};

bool Contains(const fs::path& outer, const fs::path& inner) {
    const fs::path relative =
        fs::weakly_canonical(inner).lexically_relative(fs::weakly_canonical(outer));
    return !relative.empty() && *relative.begin() != "..";
}

}  // namespace

Input CollectInput(const Options& options) {
    for (const auto& folder : {options.game, options.base}) {
        if (!folder) continue;
        if (Contains(*folder, options.tree) || Contains(options.tree, *folder)) {
            throw Refused{{folder->string() + ": lies in the published tree, or holds it"}};
        }
    }
    Collector collector;
    if (options.game) collector.AddFolder(*options.game, GameFolder);
    if (options.base) collector.AddFolder(*options.base, BaseFolder);
    for (std::size_t i = 0; i < Programs.size(); ++i) {
        if (options.programs[i]) collector.AddProgram(Programs[i], *options.programs[i]);
    }
    return collector.Finish();
}

bool IsReplaced(const Options& options, std::string_view path) {
    if (path.starts_with(GamePrefix)) return options.game.has_value();
    if (path.starts_with(BasePrefix)) return options.base.has_value();
    const Program* program = FindProgram(path);
    return program &&
           options.programs.at(static_cast<std::size_t>(program - Programs.data())).has_value();
}

std::string Printable(std::string_view text) {
    std::string printable;
    while (!text.empty()) {
        const auto* begin = text.begin();
        const auto* end = begin;
        std::uint32_t character = 0;
        const bool isUtf8 =
            utf8::internal::validate_next(end, text.end(), character) == utf8::internal::UTF8_OK;
        if (isUtf8 && character >= 0x20 && character != 0x7F) {
            printable.append(begin, end);
        } else {
            std::array<char, 8> escaped{};
            std::snprintf(escaped.data(), escaped.size(), "\\x%02X",
                          static_cast<unsigned char>(text.front()));
            printable += escaped.data();
            end = begin + 1;
        }
        text.remove_prefix(static_cast<std::size_t>(end - begin));
    }
    return printable;
}

}  // namespace Publish
