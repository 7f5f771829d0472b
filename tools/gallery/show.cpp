#include "show.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/desktop.h"
#include "playground.h"
#include "sheet.h"

namespace Gallery {

namespace {

std::vector<std::byte> ReadAll(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
    return {first, first + bytes.size()};
}

bool OpenWindow(DirectGL::Gui& gui, Platform::Desktop& desktop,
                const std::optional<Platform::Point>& wanted) {
    const Platform::Size screen = desktop.GetDisplay().DesktopSize();
    const Platform::Point middle{(screen.width - Width) / 2, (screen.height - Height) / 2};
    const Platform::Point place = wanted.value_or(middle);
    gui.SetShowOnCreate(false);
    if (!gui.Create({.title = L"Tolvan gallery",
                     .x = place.x,
                     .y = place.y,
                     .width = Width,
                     .height = Height}))
        return false;
    gui.GetWindow()->MakeBorderless();
    gui.SetRoundedRegion(24);
    gui.SetLayered();
    gui.SetFps(60);
    gui.SetUps(60);
    return true;
}

}  // namespace

bool LoadFonts(DirectGL::Gui& gui, const std::filesystem::path& folder) {
    struct Face {
        const wchar_t* family;
        const char* file;
    };
    for (const Face& face :
         {Face{L"Inter", "inter/Inter-Regular.otf"}, Face{L"Inter", "inter/Inter-Bold.otf"},
          Face{L"Sora", "sora/Sora-Regular.otf"}, Face{L"Sora", "sora/Sora-Bold.otf"}}) {
        const std::filesystem::path path = folder / face.file;
        const std::vector<std::byte> bytes = ReadAll(path);
        if (!bytes.empty() && gui.GetPrivateFonts().Register(bytes, face.family)) continue;
        std::fprintf(stderr, "tolvan-gallery: no font %s\n", path.string().c_str());
        return false;
    }
    gui.GetPrivateFonts().Build();
    return true;
}

DirectGL::Window* MakeRoot(DirectGL::Gui& gui, const std::string& name) {
    auto* root = gui.AddLayer(name)->Create<DirectGL::Window>();
    root->SetSize(Width, Height);
    root->SetStyle({.fill = Rgb(0x150806), .border = Rgb(0x3E2119), .gradientEnd = {}});
    return root;
}

namespace {

/// The pages, one of which is seen.
class Pages {
public:
    void Add(DirectGL::Window* root, const std::string& name) {
        roots_.push_back(root);
        names_.push_back(name);
        root->SetNativeDragHandle(true);
        if (roots_.size() > 1) root->Hide();
    }
    void Open(const std::string& name) {
        const auto found = std::ranges::find(names_, name);
        if (found != names_.end()) Show(static_cast<std::size_t>(found - names_.begin()));
    }
    void Turn(bool forward) { Show((shown_ + (forward ? 1 : roots_.size() - 1)) % roots_.size()); }
    const std::string& ShownName() const { return names_[shown_]; }

private:
    void Show(std::size_t page) {
        roots_[shown_]->Hide();
        shown_ = page;
        roots_[shown_]->Show();
    }

    std::vector<DirectGL::Window*> roots_;
    std::vector<std::string> names_;
    std::size_t shown_ = 0;
};

/// A field needs the arrow keys for itself.
bool IsTyping(const DirectGL::Gui& gui) {
    return gui.GetFocused() && gui.GetFocused()->IsType(DirectGL::WindowType::Input);
}

/// Keeps the file at the last state that it was given; readers never see half of one.
class StateFile {
public:
    explicit StateFile(std::filesystem::path path) : path_(std::move(path)) {}

    void Write(const std::string& state) {
        if (path_.empty() || state == written_) return;
        std::filesystem::path part = path_;
        part += ".part";
        std::ofstream(part, std::ios::binary) << state;
        std::error_code error;
        std::filesystem::rename(part, path_, error);
        // A reader may hold the old one for a moment; the next pass tries again.
        if (!error) written_ = state;
    }

private:
    std::filesystem::path path_;
    std::string written_;
};

std::string DescribeWindow(const DirectGL::Gui& gui, const Pages& pages) {
    const Platform::NativeWindow& window = *gui.GetWindow();
    const DirectGL::Rect frame = window.GetFrameRect();
    std::ostringstream told;
    told << "page=" << pages.ShownName() << "\nwindow=" << frame.left << ',' << frame.top << ','
         << frame.right << ',' << frame.bottom << "\nminimized=" << window.IsMinimized()
         << "\nmouse=" << gui.GetMouse().x << ',' << gui.GetMouse().y << '\n';
    return told.str();
}

}  // namespace

int ShowSheets(const ShowOptions& options) {
    const std::unique_ptr<Platform::Desktop> desktop = Platform::OpenDesktop();
    DirectGL::Gui gui(*desktop);
    if (!OpenWindow(gui, *desktop, options.place)) {
        std::fputs("tolvan-gallery: no window can be opened\n", stderr);
        return 1;
    }
    if (!LoadFonts(gui, options.fonts)) return 1;
    Pages pages;
    for (const Sheet& sheet : AllSheets()) {
        DirectGL::Window* root = MakeRoot(gui, sheet.name);
        sheet.build(root);
        pages.Add(root, sheet.name);
    }
    DirectGL::Window* ground = MakeRoot(gui, "playground");
    Playground playground(ground);
    pages.Add(ground, "playground");
    pages.Open(options.page);
    gui.AddMessageEvent(Platform::EventType::KeyDown, [&](const Platform::Event& event) {
        const bool next = event.key == Platform::KeyRight;
        if ((next || event.key == Platform::KeyLeft) && !IsTyping(gui)) pages.Turn(next);
        return DirectGL::MessageEventRet::NotHandled;
    });
    gui.RenderPass();
    gui.GetWindow()->Show();
    gui.GetWindow()->BringToForeground();
    gui.StartRenderingThread();
    gui.StartUpdatingThread();
    StateFile state(options.state);
    gui.MessageLoop([&](double) {
        state.Write(DescribeWindow(gui, pages) + playground.Describe());
        return 10.0;
    });
    gui.Clear();
    gui.DestroyWindow();
    return 0;
}

}  // namespace Gallery
