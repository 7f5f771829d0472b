#include "lists.h"

namespace Publish {

std::string FileList(const std::vector<ListEntry>& entries,
                     const std::vector<std::string>& deleted) {
    std::string text;
    for (const ListEntry& entry : entries) {
        text += entry.name + "=" + std::to_string(entry.content.crc) + "\t" +
                std::to_string(entry.content.size) + "\n";
    }
    for (const std::string& name : deleted)
        text += "deleted:" + name + "\n";
    return text;
}

std::string UpdaterAnswer(const Content& content) {
    return std::to_string(content.crc) + " " + std::to_string(content.size) + "\n";
}

}  // namespace Publish
