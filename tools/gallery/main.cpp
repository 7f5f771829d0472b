#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "compare.h"
#include "platform/headless/headless_desktop.h"
#include "sheet.h"
#include "show.h"
#include "textless.h"

namespace Gallery {
namespace {

constexpr const char* Help =
    "tolvan-gallery [--fonts FOLDER] [--without-text] OUT\n"
    "tolvan-gallery [--fonts FOLDER] --window [--page NAME] [--state FILE] [--at X,Y]\n"
    "tolvan-gallery --compare FOLDER [--limit PERCENT]\n"
    "\n"
    "Draws every widget of the toolkit in its states with this build's own adapter and writes the\n"
    "pictures to the folder OUT, as SHEET-STEP.png; or shows the widgets in a window, where the\n"
    "arrow keys turn the pages and the ground moves the window.\n"
    "\n"
    "  --fonts FOLDER  where inter/ and sora/ are (default /usr/share/fonts/opentype)\n"
    "  --page NAME     the page to begin with; the last one, to try things out, is playground\n"
    "  --state FILE    a file that always tells what the window and the playground's controls do\n"
    "  --at X,Y        where on the screen the window opens (default: in the middle)\n"
    "  --without-text  the same pictures, with their texts left out\n"
    "  --compare FOLDER  compares FOLDER/host and FOLDER/windows by means of their likes without\n"
    "                  texts, host-textless and windows-textless, and writes FOLDER/differences;\n"
    "                  tools/gallery/compare.sh does all of it\n"
    "  --limit PERCENT how many pixels may differ, texts apart (default 0.5)\n";

/// None when the text is no point.
std::optional<Platform::Point> ParsePoint(const char* text) {
    Platform::Point point;
    if (std::sscanf(text, "%d,%d", &point.x, &point.y) != 2) return std::nullopt;
    return point;
}

bool WritePicture(DirectGL::Gui& gui, const std::filesystem::path& path) {
    gui.MarkDirty();
    gui.RenderPass();
    if (!gui.GetTarget()) return false;
    const std::vector<std::byte> png =
        gui.GetGraphics().GetImageCodec().EncodePng(gui.GetTarget()->ReadFrame());
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(png.data()), static_cast<std::streamsize>(png.size()));
    return !png.empty() && file.flush().good();
}

bool WriteSheet(const Sheet& sheet, Platform::Graphics& graphics,
                const std::filesystem::path& fonts, const std::filesystem::path& out) {
    Platform::HeldClock clock;
    Platform::HeadlessDesktop desktop(graphics, clock);
    DirectGL::Gui gui(desktop);
    gui.SetUps(60);
    if (!gui.Create({.title = L"Gallery", .x = 0, .y = 0, .width = Width, .height = Height}) ||
        !LoadFonts(gui, fonts))
        return false;
    gui.SetLayered();
    const std::vector<Step> steps = sheet.build(MakeRoot(gui, sheet.name));
    Stage stage(gui, *desktop.Window(), clock);
    for (const Step& step : steps) {
        step.act(stage);
        const std::string name = sheet.name + "-" + step.name + ".png";
        if (WritePicture(gui, out / name)) continue;
        std::fprintf(stderr, "tolvan-gallery: %s could not be written\n", name.c_str());
        return false;
    }
    return true;
}

int WriteSheets(const std::filesystem::path& fonts, const std::filesystem::path& out,
                bool withText) {
    std::error_code error;
    std::filesystem::create_directories(out, error);
    for (const Sheet& sheet : AllSheets()) {
        const std::unique_ptr<Platform::Graphics> graphics = Platform::OpenGraphics();
        TextlessGraphics textless(*graphics);
        Platform::Graphics& chosen = withText ? *graphics : textless;
        if (!WriteSheet(sheet, chosen, fonts, out)) return 1;
    }
    return 0;
}

}  // namespace
}  // namespace Gallery

int main(int count, char** arguments) {
    Gallery::ShowOptions options{
        .fonts = "/usr/share/fonts/opentype", .page = {}, .state = {}, .place = {}};
    std::filesystem::path out;
    std::filesystem::path compared;
    double limit = 0.5;
    bool withText = true;
    bool window = false;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--fonts" && i + 1 < count) {
            options.fonts = arguments[++i];
        } else if (argument == "--page" && i + 1 < count) {
            options.page = arguments[++i];
        } else if (argument == "--state" && i + 1 < count) {
            options.state = arguments[++i];
        } else if (argument == "--at" && i + 1 < count) {
            options.place = Gallery::ParsePoint(arguments[++i]);
        } else if (argument == "--compare" && i + 1 < count) {
            compared = arguments[++i];
        } else if (argument == "--limit" && i + 1 < count) {
            limit = std::strtod(arguments[++i], nullptr);
        } else if (argument == "--without-text") {
            withText = false;
        } else if (argument == "--window") {
            window = true;
        } else if (argument == "--help") {
            std::fputs(Gallery::Help, stdout);
            return 0;
        } else if (out.empty() && !argument.starts_with('-')) {
            out = argument;
        } else {
            std::fputs(Gallery::Help, stderr);
            return 2;
        }
    }
    if (!compared.empty()) return Gallery::ComparePictures(compared, limit);
    if (window == !out.empty()) {
        std::fputs(Gallery::Help, stderr);
        return 2;
    }
    return window ? Gallery::ShowSheets(options)
                  : Gallery::WriteSheets(options.fonts, out, withText);
}
