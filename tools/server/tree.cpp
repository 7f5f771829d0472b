#include "tree.h"

#include <algorithm>
#include <array>
#include <boost/beast/http/status.hpp>
#include <charconv>
#include <fcntl.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace Server {

namespace {

using Pair = std::pair<std::string_view, std::string_view>;

/// Also below a folder, where several published trees lie side by side.
constexpr std::string_view Updater = "scripts/updater.php";
constexpr std::array UpdaterAnswers = {
    Pair{"launcher/Tolvan Online.exe", "scripts/updater/launcher.txt"},
    Pair{"Tolvan Online_x64.exe", "scripts/updater/client_x64.txt"},
    Pair{"Tolvan Online_x86.exe", "scripts/updater/client_x86.txt"},
};

constexpr std::array ContentTypes = {
    Pair{"scripts/", "text/plain; charset=utf-8"},
    Pair{"api/news", "application/json"},
    Pair{"api/", "text/plain; charset=utf-8"},
    Pair{"", "application/octet-stream"},
};

std::string ReadAll(const Body& body) {
    std::string text(body.Size().value_or(0), '\0');
    body.Read(0, text);
    return text;
}

std::size_t QueryNumber(const Target& target, std::string_view name, std::size_t standard) {
    const auto text = QueryValue(target.rawQuery, name);
    std::size_t number = standard;
    if (text) std::from_chars(text->data(), text->data() + text->size(), number);
    return number;
}

/// The asked-for part of the news; a file that is no such object is sent as it is.
std::string NewsPage(std::string text, const Target& target) {
    rapidjson::Document document;
    document.Parse(text.c_str());
    if (document.HasParseError() || !document.IsObject() || !document.HasMember("news"))
        return text;
    const rapidjson::Value& news = document["news"];
    if (!news.IsArray()) return text;

    const auto& all = news.GetArray();
    const std::size_t begin = std::min<std::size_t>(QueryNumber(target, "offset", 0), all.Size());
    const std::size_t count =
        std::min<std::size_t>(QueryNumber(target, "limit", all.Size()), all.Size() - begin);

    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("news");
    writer.StartArray();
    for (std::size_t i = begin; i < begin + count; ++i) {
        all[static_cast<rapidjson::SizeType>(i)].Accept(writer);
    }
    writer.EndArray();
    writer.Key("total");
    writer.Uint(all.Size());
    writer.EndObject();
    return buffer.GetString();
}

}  // namespace

Answer StatusPage(unsigned status) {
    Answer answer;
    answer.status = status;
    answer.body = TextBody(std::to_string(status) + " " +
                           std::string(boost::beast::http::obsolete_reason(
                               boost::beast::http::int_to_status(status))) +
                           "\n");
    return answer;
}

Tree::Tree(std::vector<std::filesystem::path> roots) : roots_(std::move(roots)) {}

Answer Tree::Find(const Target& target) const {
    if (target.path == Updater || target.path.ends_with("/" + std::string(Updater))) {
        const std::string folder = target.path.substr(0, target.path.size() - Updater.size());
        const auto file = QueryValue(target.rawQuery, "f");
        const auto* found = std::ranges::find(UpdaterAnswers, file.value_or(""), &Pair::first);
        return found == UpdaterAnswers.end() ? StatusPage(404)
                                             : FindFile(folder + std::string(found->second));
    }
    Answer answer = FindFile(target.path);
    if (target.path == "api/news" && answer.status == 200) {
        answer.body = TextBody(NewsPage(ReadAll(*answer.body), target));
    }
    return answer;
}

Answer Tree::FindFile(const std::string& path) const {
    Answer answer;
    answer.contentType = std::ranges::find_if(ContentTypes, [&](const Pair& entry) {
                             return path.starts_with(entry.first);
                         })->second;
    if (auto text = FindText(path)) {
        answer.body = TextBody(*std::move(text));
        return answer;
    }
    for (const auto& root : roots_) {
        Descriptor file(::open((root / path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        struct stat status {};
        if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        answer.body = FileBody(std::move(file), static_cast<std::uint64_t>(status.st_size));
        return answer;
    }
    return StatusPage(404);
}

void Tree::Put(const std::string& path, std::optional<std::string> text) {
    const std::lock_guard guard(mutex_);
    if (text) {
        texts_[path] = *std::move(text);
    } else {
        texts_.erase(path);
    }
}

void Tree::Append(const std::string& path, const std::string& text, std::uint64_t times) {
    const std::lock_guard guard(mutex_);
    std::string& whole = texts_[path];
    for (std::uint64_t i = 0; i < times; ++i)
        whole += text;
}

std::optional<std::string> Tree::FindText(const std::string& path) const {
    const std::lock_guard guard(mutex_);
    const auto found = texts_.find(path);
    if (found == texts_.end()) return std::nullopt;
    return found->second;
}

}  // namespace Server
