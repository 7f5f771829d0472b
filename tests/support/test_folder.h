#pragma once

#include <map>
#include <optional>
#include <string>

/// A folder of the machine for one test, with a name of its own; it goes with this object.
/// Paths are relative to it. What goes wrong here throws; a folder that cannot be removed is a
/// failure of the test.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    /// The full path, ending in a separator.
    const std::wstring& Path() const { return path_; }
    std::wstring Path(const std::wstring& relative) const { return path_ + relative; }

    void Write(const std::wstring& relative, const std::string& bytes) const;
    /// Nothing when there is no such file.
    std::optional<std::string> Read(const std::wstring& relative) const;
    /// All files below, by path with "\" between folders.
    std::map<std::wstring, std::string> Files() const;

private:
    std::wstring path_;
};
