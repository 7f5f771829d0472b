#include "record.h"

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace Publish {

namespace {

constexpr std::string_view FirstLine = "tolvan-publish record 1";

bool ReadLine(const std::string& line, Record& record) {
    std::istringstream in(line);
    std::string kind;
    in >> kind;
    RecordedFile file;
    RecordedRemoval removal;
    if (kind == "file") {
        Stamp& stamp = file.stamp;
        in >> file.content.size >> file.content.crc >> stamp.device >> stamp.inode >> stamp.size >>
            stamp.modified >> stamp.changed;
    } else if (kind == "removed") {
        in >> removal.when;
    } else {
        return false;
    }
    std::string path;
    if (in.get() != ' ' || !std::getline(in, path)) return false;
    if (kind == "file") {
        record.files.emplace(std::move(path), file);
    } else {
        record.removed.emplace(std::move(path), removal);
    }
    return true;
}

}  // namespace

Record ReadRecord(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::string line;
    if (!std::getline(in, line) || line != FirstLine) {
        throw std::runtime_error(file.string() + ": is no record of a release");
    }
    Record record;
    while (std::getline(in, line)) {
        if (!ReadLine(line, record)) {
            throw std::runtime_error(file.string() + ": has a damaged line: " + line);
        }
    }
    return record;
}

void WriteRecord(const Record& record, const std::filesystem::path& file) {
    std::ofstream out(file);
    out << FirstLine << '\n';
    for (const auto& [path, entry] : record.files) {
        const Stamp& stamp = entry.stamp;
        out << "file " << entry.content.size << ' ' << entry.content.crc << ' ' << stamp.device
            << ' ' << stamp.inode << ' ' << stamp.size << ' ' << stamp.modified << ' '
            << stamp.changed << ' ' << path << '\n';
    }
    for (const auto& [path, removal] : record.removed) {
        out << "removed " << removal.when << ' ' << path << '\n';
    }
    out.close();
    if (!out) throw std::runtime_error(file.string() + ": cannot be written");
}

}  // namespace Publish
