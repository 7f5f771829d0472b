#pragma once

#include <random>
#include <string>
#include <vector>

/// Makes a game folder full of what a player's disk may hold, and a neighbourhood that must not be
/// touched: names of any script, hidden and read-only files, links in all directions, folders whose
/// names begin or end like the game's.
class TreeGenerator {
public:
    explicit TreeGenerator(unsigned seed) : dice_(seed) {}

    /// Makes the area (a folder that must not exist yet) and the game folder in it.
    void Make(const std::wstring& area);

    const std::wstring& Game() const { return game_; }
    /// Files of the game that are no links.
    const std::vector<std::wstring>& GameFiles() const { return gameFiles_; }

    std::size_t Below(std::size_t limit) { return dice_() % limit; }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
    std::wstring Name();

private:
    void FillFolder(const std::wstring& folder, int levels, std::vector<std::wstring>& files);
    void AddLinks(const std::wstring& area);
    void ChangeSomeAttributes(const std::wstring& path, bool isFolder);

    std::mt19937 dice_;
    std::wstring game_;
    std::vector<std::wstring> gameFiles_;
    std::vector<std::wstring> gameFolders_;
};
