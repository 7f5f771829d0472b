#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// Which names can be published. A name that the launcher would drop, that Windows cannot hold, or
/// that two files would share there is found here, before a player finds it. Pure.
namespace Publish {

enum class Section {
    Game,      ///< goes into "Data\", listed in scripts/index.txt
    Base,      ///< goes into the game's folder, listed in scripts/base.php
    Programs,  ///< the client and the launcher
};

/// What is wrong with a name relative to its section's folder, with "/" between folders; empty
/// when it can be published.
std::string_view ProblemWithName(Section section, std::string_view name);

/// Finds names that are one name on Windows, and names that are a file here and a folder there.
class NameClashes {
public:
    /// What clashes with this name among those given before; empty for none.
    std::string Add(std::string_view name);

private:
    struct Known {
        std::string spelling;
        bool isFolder = false;
    };
    std::map<std::wstring, Known> known_;  ///< by the lower-case name, every folder on the way too
};

/// One name on Windows: without regard to case.
std::wstring WindowsKey(std::string_view name);

}  // namespace Publish
