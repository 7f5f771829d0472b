#pragma once

#include <filesystem>

namespace Gallery {

/// Compares the pictures of both adapters, FOLDER/host and FOLDER/windows, by means of their likes
/// without texts in FOLDER/host-textless and FOLDER/windows-textless. Prints for each picture which
/// share of its pixels differs beyond a small tolerance, texts apart, and writes pictures of the
/// differences and the shares to FOLDER/differences. The exit code: 0, or 1 when a picture is
/// missing or more than the limit of all pixels differs, in per cent and texts apart.
int ComparePictures(const std::filesystem::path& folder, double limit);

}  // namespace Gallery
