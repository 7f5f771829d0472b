#include "attribute_command.h"

#include <cctype>
#include <cstdint>
#include <cstdio>

#include "failure.h"
#include "platform/files.h"
#include "platform/text.h"

namespace MachineTool {

using namespace Platform;

namespace {

struct Letter {
    char letter;
    std::uint32_t attribute;
};

constexpr Letter Letters[] = {{'A', AttributeArchive},
                              {'S', AttributeSystem},
                              {'H', AttributeHidden},
                              {'R', AttributeReadOnly},
                              {'I', AttributeNotContentIndexed}};

struct Change {
    std::uint32_t set = 0;
    std::uint32_t clear = 0;
};

bool IsChange(const std::string& argument) {
    return argument.size() == 2 && (argument[0] == '+' || argument[0] == '-');
}

void AddTo(Change& change, const std::string& argument) {
    const int letter = std::toupper(static_cast<unsigned char>(argument[1]));
    for (const Letter& known : Letters) {
        if (known.letter != letter) continue;
        (argument[0] == '+' ? change.set : change.clear) |= known.attribute;
        return;
    }
    throw Failure("\"" + argument + "\" is none of the attributes r, a, s, h and i", 2);
}

void Print(const std::string& path, std::uint32_t attributes) {
    std::string letters;
    for (const Letter& known : Letters) {
        letters += (attributes & known.attribute) != 0 ? known.letter : ' ';
    }
    std::printf("%s  %s\n", letters.c_str(), path.c_str());
}

}  // namespace

void RunAttributeCommand(const std::vector<std::string>& arguments) {
    Change change;
    std::string path;
    for (const std::string& argument : arguments) {
        if (IsChange(argument)) {
            AddTo(change, argument);
        } else if (path.empty()) {
            path = argument;
        } else {
            throw Failure("attrib takes one path", 2);
        }
    }
    if (path.empty()) throw Failure("attrib needs a path", 2);
    const std::wstring widePath = WideFromUtf8(path);
    FileInfo info;
    const Error found = GetFileInfo(widePath, info);
    if (!Succeeded(found)) throw Failure(path + " cannot be found", found);
    if (change.set == 0 && change.clear == 0) {
        Print(path, info.attributes);
        return;
    }
    const std::uint32_t wanted = (info.attributes & ~change.clear) | change.set;
    const Error changed = ChangeAttributes(widePath, wanted == 0 ? AttributeNormal : wanted);
    if (!Succeeded(changed)) throw Failure(path + " cannot be changed", changed);
}

}  // namespace MachineTool
