#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "body.h"
#include "url.h"

namespace Server {

/// What is to be sent when nothing goes wrong.
struct Answer {
    unsigned status = 200;
    std::string contentType = "text/plain; charset=utf-8";
    std::string location;  ///< of a redirect
    std::unique_ptr<Body> body;
};

/// A page of a few words for a status.
Answer StatusPage(unsigned status);

/// The folders that are served: the first one that holds a file gives it. Files are opened anew at
/// each request, so they may change at any time. Any thread.
///
/// Texts that were put in by hand come before the folders' files.
///
/// Two addresses are more than a file's name, as they are on the real servers:
///   scripts/updater.php?f=...  scripts/updater/launcher.txt, client_x64.txt or client_x86.txt
///   api/news?limit=&offset=    that part of the "news" array of the file api/news
class Tree {
public:
    explicit Tree(std::vector<std::filesystem::path> roots);

    Answer Find(const Target& target) const;
    /// The file at a path below the roots; a page for status 404 without one.
    Answer FindFile(const std::string& path) const;

    /// Serves this text at a path from now on; without one the folders' file shows again.
    void Put(const std::string& path, std::optional<std::string> text);
    /// Puts the text behind what was put at the path, so many times.
    void Append(const std::string& path, const std::string& text, std::uint64_t times);

private:
    std::optional<std::string> FindText(const std::string& path) const;

    std::vector<std::filesystem::path> roots_;
    mutable std::mutex mutex_;
    std::map<std::string, std::string> texts_;  ///< guarded by mutex_
};

}  // namespace Server
