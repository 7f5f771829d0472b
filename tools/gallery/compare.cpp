#include "compare.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>

#include "platform/desktop.h"

namespace Gallery {

namespace {

using Platform::Image;

/// A part of a pixel, of 255, may differ by so much: smoothing is computed in more than one way.
constexpr int Tolerance = 24;
/// What a text changes at all.
constexpr int Trace = 2;

/// A picture as both adapters draw it, with and without its texts.
struct Versions {
    Image host;
    Image windows;
    Image hostTextless;
    Image windowsTextless;
};

/// Numbers of pixels.
struct Count {
    std::size_t all = 0;
    std::size_t differ = 0;

    double Share() const {
        return all == 0 ? 0.0 : 100.0 * static_cast<double>(differ) / static_cast<double>(all);
    }
    void Add(const Count& other) {
        all += other.all;
        differ += other.differ;
    }
};

struct Difference {
    Count ground;
    Count text;
    Image picture;  ///< the host's one in grey, with what differs in colour
};

std::optional<Image> Load(Platform::ImageCodec& codec, const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    return codec.Decode(std::as_bytes(std::span(bytes)));
}

std::optional<Versions> LoadVersions(Platform::ImageCodec& codec,
                                     const std::filesystem::path& folder, const std::string& name) {
    std::array<Image, 4> images;
    auto next = images.begin();
    for (const char* version : {"host", "windows", "host-textless", "windows-textless"}) {
        auto image = Load(codec, folder / version / name);
        if (!image || (next != images.begin() && image->size != images[0].size)) {
            std::fprintf(stderr, "tolvan-gallery: no %s/%s of the right size\n", version,
                         name.c_str());
            return std::nullopt;
        }
        *next++ = std::move(*image);
    }
    return Versions{std::move(images[0]), std::move(images[1]), std::move(images[2]),
                    std::move(images[3])};
}

/// The largest difference of a part of the pixel that begins there.
int DifferenceAt(const Image& one, const Image& other, std::size_t at) {
    int most = 0;
    for (std::size_t part = at; part < at + 4; ++part) {
        most = std::max(most, std::abs(std::to_integer<int>(one.pixels[part]) -
                                       std::to_integer<int>(other.pixels[part])));
    }
    return most;
}

Difference Compare(const Versions& versions) {
    Difference result{{}, {}, {versions.host.size, {}}};
    for (std::size_t at = 0; at < versions.host.pixels.size(); at += 4) {
        const bool isText = DifferenceAt(versions.host, versions.hostTextless, at) > Trace ||
                            DifferenceAt(versions.windows, versions.windowsTextless, at) > Trace;
        const bool differs = DifferenceAt(versions.host, versions.windows, at) > Tolerance;
        (isText ? result.text : result.ground).Add({1, differs ? 1U : 0U});
        const auto grey =
            static_cast<std::byte>(64 + std::to_integer<int>(versions.host.pixels[at + 1]) / 3);
        std::array<std::byte, 4> shown{grey, grey, grey, std::byte{255}};
        if (differs && isText)
            shown = {std::byte{0}, std::byte{200}, std::byte{255}, std::byte{255}};
        if (differs && !isText)
            shown = {std::byte{0}, std::byte{0}, std::byte{255}, std::byte{255}};
        result.picture.pixels.insert(result.picture.pixels.end(), shown.begin(), shown.end());
    }
    return result;
}

std::set<std::string> NamesIn(const std::filesystem::path& folder) {
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (entry.path().extension() == ".png") names.insert(entry.path().filename().string());
    return names;
}

void PrintRow(std::FILE* shares, const std::string& name, const Count& ground, const Count& text) {
    std::printf("%-28s %8.3f %8.3f\n", name.c_str(), ground.Share(), text.Share());
    std::fprintf(shares, "%s\t%.3f\t%.3f\n", name.c_str(), ground.Share(), text.Share());
}

}  // namespace

int ComparePictures(const std::filesystem::path& folder, double limit) {
    const auto graphics = Platform::OpenGraphics();
    Platform::ImageCodec& codec = graphics->GetImageCodec();
    std::set<std::string> names = NamesIn(folder / "host");
    names.merge(NamesIn(folder / "windows"));
    const std::filesystem::path out = folder / "differences";
    std::error_code error;
    std::filesystem::create_directories(out, error);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> shares(
        std::fopen((out / "shares.tsv").string().c_str(), "w"), &std::fclose);
    if (!shares || names.empty()) {
        std::fprintf(stderr, "tolvan-gallery: no pictures in %s\n", folder.string().c_str());
        return 1;
    }
    std::printf("%-28s %8s %8s\n", "differing pixels in %", "no text", "text");
    Count ground;
    Count text;
    for (const std::string& name : names) {
        const auto versions = LoadVersions(codec, folder, name);
        if (!versions) return 1;
        const Difference difference = Compare(*versions);
        PrintRow(shares.get(), name, difference.ground, difference.text);
        ground.Add(difference.ground);
        text.Add(difference.text);
        const auto png = codec.EncodePng(difference.picture);
        std::ofstream(out / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(png.data()),
                   static_cast<std::streamsize>(png.size()));
    }
    PrintRow(shares.get(), "all", ground, text);
    if (ground.Share() <= limit) return 0;
    std::fprintf(stderr, "tolvan-gallery: more than %.3f %% of the pixels differ\n", limit);
    return 1;
}

}  // namespace Gallery
