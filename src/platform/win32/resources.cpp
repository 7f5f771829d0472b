#include "platform/resources.h"

#include <windows.h>

#include "platform/executable_image.h"
#include "platform/files.h"
#include "platform/win32/handles.h"

namespace Platform {

namespace {

HRSRC FindRawData(HMODULE module, std::uint16_t id) {
    return FindResourceW(module, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(10));
}

}  // namespace

std::span<const std::byte> FindOwnResource(std::uint16_t id) {
    const HRSRC found = FindRawData(nullptr, id);
    if (found == nullptr) return {};
    const HGLOBAL loaded = LoadResource(nullptr, found);
    if (loaded == nullptr) return {};
    const auto* bytes = static_cast<const std::byte*>(LockResource(loaded));
    return {bytes, bytes == nullptr ? 0 : SizeofResource(nullptr, found)};
}

ResourceSearch FindResourceInFile(const std::wstring& path, std::uint16_t id) {
    const Library image(LoadLibraryExW(path.c_str(), nullptr,
                                       LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    if (!image) return ResourceSearch::Unreadable;
    return FindRawData(image.get(), id) != nullptr ? ResourceSearch::Found
                                                   : ResourceSearch::NotFound;
}

std::uint16_t ReadMachineType(const std::wstring& path) {
    File file;
    if (!Succeeded(file.Open(path, OpenOptions{}))) return 0;
    return ReadPeMachine(ReadFrom(file));
}

}  // namespace Platform
