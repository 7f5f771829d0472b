// A full frame of the toolkit and the same frame by plain Cairo, and what the toolkit itself takes
// of a frame with a thousand widgets.

#include <benchmark/benchmark.h>
#include <cairo.h>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <pango/pangocairo.h>
#include <string>

#include "bench/gui/page.h"
#include "directgl/button.h"
#include "directgl/gui.h"
#include "directgl/image.h"
#include "directgl/text.h"
#include "platform/headless/headless_desktop.h"
#include "platform/headless/held_clock.h"
#include "platform/headless/recording_graphics.h"

namespace {

using DirectGL::ColorRGBA;
using DirectGL::Window;

constexpr ColorRGBA Red{0.75F, 0.22F, 0.17F, 1.0F};
constexpr ColorRGBA Violet{0.23F, 0.16F, 0.62F, 1.0F};
constexpr ColorRGBA White{1.0F, 1.0F, 1.0F, 1.0F};

std::wstring WordsOf(std::size_t index) {
    return L"Text " + std::to_wstring(index + 10);
}

/// A Gui without a window; the frame's first rectangle changes each time, so that nothing of the
/// frame before can be kept.
class Scene {
public:
    explicit Scene(Platform::Graphics& graphics) : desktop_(graphics, clock_), gui_(desktop_) {
        gui_.SetUps(60);
        if (!gui_.Create({.title = L"", .width = Page::Width, .height = Page::Height}))
            std::abort();
        gui_.SetLayered();
        gui_.SetAlwaysRender();
        root_ = gui_.AddLayer("UI")->Create<Window>();
        root_->SetSize(Page::Width, Page::Height);
    }
    ~Scene() { gui_.Clear(); }

    DirectGL::Gui& GetGui() { return gui_; }
    Window* Root() { return root_; }
    template <class T>
    T* Put(const Page::Box& box) {
        T* widget = root_->Create<T>();
        widget->SetPosition(box.x, box.y);
        widget->SetSize(box.width, box.height);
        return widget;
    }
    void ShowFrame() {
        odd_ = !odd_;
        root_->SetColor({odd_ ? 0.1F : 0.2F, 0.05F, 0.03F, 1.0F});
        gui_.RenderPass();
    }
    void Update() {
        clock_.Advance(1.0 / 60.0);
        gui_.UpdatePass();
    }

private:
    Platform::HeldClock clock_;
    Platform::HeadlessDesktop desktop_;
    DirectGL::Gui gui_;
    Window* root_ = nullptr;
    bool odd_ = false;
};

DirectGL::ImageHandle MakeImage(Platform::Graphics& graphics, int width, int height, bool icon) {
    return DirectGL::Utilities::MakeResourceHandle(graphics.GetImageCodec().EncodePng(
        {{width, height}, Page::MakePixels(width, height, icon)}));
}

void FillPage(Scene& scene, Platform::Graphics& graphics) {
    scene.Put<DirectGL::Image>(Page::Picture)
        ->SetImageFromHandle(MakeImage(graphics, Page::PictureWidth, Page::PictureHeight, false));
    scene.Root()->GetChildren().back()->SetSize(Page::Picture.width, Page::Picture.height);
    for (const Page::Box& box : Page::RoundedBoxes()) {
        auto* rounded = scene.Put<Window>(box);
        rounded->SetColor(Red);
        rounded->SetCornerRadius(8);
    }
    for (const Page::Box& box : Page::GradientBoxes())
        scene.Put<Window>(box)->SetStyle(
            {.fill = Red, .border = {}, .gradientEnd = Violet, .gradient = true});
    std::size_t index = 0;
    for (const Page::Box& box : Page::TextBoxes()) {
        auto* text = scene.Put<DirectGL::Text>(box);
        text->SetFont(L"Inter");
        text->SetFontSize(11);
        text->SetHorizontalAlignment(DirectGL::HorizontalAlignment::Left);
        text->SetText(WordsOf(index++));
    }
    const auto icon = MakeImage(graphics, Page::IconSide, Page::IconSide, true);
    for (const Page::Box& box : Page::IconBoxes()) {
        auto* image = scene.Put<DirectGL::Image>(box);
        image->SetImageFromHandle(icon);
        image->SetSize(box.width, box.height);
    }
}

void ToolkitFrame(benchmark::State& state) {
    const auto graphics = Platform::OpenGraphics();
    Scene scene(*graphics);
    FillPage(scene, *graphics);
    for (int i = 0; i < 3; ++i)
        scene.ShowFrame();
    for (auto _ : state)
        scene.ShowFrame();
}
BENCHMARK(ToolkitFrame)->Name("Frame/Toolkit")->Unit(benchmark::kMillisecond);

struct Release {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release>;
using Context = std::unique_ptr<cairo_t, Release>;
using Pattern = std::unique_ptr<cairo_pattern_t, Release>;
using Layout = std::unique_ptr<PangoLayout, Release>;

/// The same page by Cairo alone, as a program would do it that keeps its layouts and stretches with
/// a good filter.
class PlainPage {
public:
    PlainPage()
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, Page::Width, Page::Height)),
          picturePixels_(Page::MakePixels(Page::PictureWidth, Page::PictureHeight, false)),
          iconPixels_(Page::MakePixels(Page::IconSide, Page::IconSide, true)),
          picture_(Over(picturePixels_, Page::PictureWidth, Page::PictureHeight)),
          icon_(Over(iconPixels_, Page::IconSide, Page::IconSide)) {
        const Context context(cairo_create(surface_.get()));
        const std::unique_ptr<PangoFontDescription, Release> font(
            pango_font_description_from_string("Inter"));
        pango_font_description_set_absolute_size(font.get(), 11 * PANGO_SCALE);
        for (std::size_t index = 0; index < Page::TextBoxes().size(); ++index) {
            const std::wstring words = WordsOf(index);
            Layout layout(pango_cairo_create_layout(context.get()));
            pango_layout_set_font_description(layout.get(), font.get());
            pango_layout_set_text(layout.get(), std::string(words.begin(), words.end()).c_str(),
                                  -1);
            layouts_.push_back(std::move(layout));
        }
    }

    void Draw() {
        const Context context(cairo_create(surface_.get()));
        cairo_t* cairo = context.get();
        odd_ = !odd_;
        cairo_set_operator(cairo, CAIRO_OPERATOR_CLEAR);
        cairo_paint(cairo);
        cairo_set_operator(cairo, CAIRO_OPERATOR_OVER);
        cairo_set_source_rgba(cairo, odd_ ? 0.1 : 0.2, 0.05, 0.03, 1.0);
        cairo_rectangle(cairo, 0, 0, Page::Width, Page::Height);
        cairo_fill(cairo);
        Stretch(cairo, picture_.get(), Page::PictureWidth, Page::PictureHeight, Page::Picture);
        Set(cairo, Red);
        for (const Page::Box& box : Page::RoundedBoxes())
            Round(cairo, box, 8);
        for (const Page::Box& box : Page::GradientBoxes())
            Grade(cairo, box);
        Set(cairo, White);
        const std::vector<Page::Box> places = Page::TextBoxes();
        for (std::size_t index = 0; index < places.size(); ++index) {
            cairo_move_to(cairo, places[index].x, places[index].y);
            pango_cairo_show_layout(cairo, layouts_[index].get());
        }
        for (const Page::Box& box : Page::IconBoxes())
            Stretch(cairo, icon_.get(), Page::IconSide, Page::IconSide, box);
        cairo_surface_flush(surface_.get());
    }

private:
    static Surface Over(std::vector<std::byte>& pixels, int width, int height) {
        return Surface(
            cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels.data()),
                                                CAIRO_FORMAT_ARGB32, width, height, width * 4));
    }
    static void Set(cairo_t* cairo, const ColorRGBA& color) {
        cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
    }
    static void Stretch(cairo_t* cairo, cairo_surface_t* from, int width, int height,
                        const Page::Box& to) {
        cairo_save(cairo);
        cairo_translate(cairo, to.x, to.y);
        cairo_scale(cairo, static_cast<double>(to.width) / width,
                    static_cast<double>(to.height) / height);
        cairo_set_source_surface(cairo, from, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_GOOD);
        cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
        cairo_rectangle(cairo, 0, 0, width, height);
        cairo_fill(cairo);
        cairo_restore(cairo);
    }
    static void Round(cairo_t* cairo, const Page::Box& box, double radius) {
        constexpr double Quarter = 1.5707963267948966;
        const double right = box.x + box.width;
        const double bottom = box.y + box.height;
        cairo_new_sub_path(cairo);
        cairo_arc(cairo, right - radius, box.y + radius, radius, -Quarter, 0);
        cairo_arc(cairo, right - radius, bottom - radius, radius, 0, Quarter);
        cairo_arc(cairo, box.x + radius, bottom - radius, radius, Quarter, 2 * Quarter);
        cairo_arc(cairo, box.x + radius, box.y + radius, radius, 2 * Quarter, 3 * Quarter);
        cairo_close_path(cairo);
        cairo_fill(cairo);
    }
    static void Grade(cairo_t* cairo, const Page::Box& box) {
        const Pattern pattern(cairo_pattern_create_linear(box.x, box.y, box.x, box.y + box.height));
        cairo_pattern_add_color_stop_rgba(pattern.get(), 0, Red.red, Red.green, Red.blue, 1);
        cairo_pattern_add_color_stop_rgba(pattern.get(), 1, Violet.red, Violet.green, Violet.blue,
                                          1);
        cairo_set_source(cairo, pattern.get());
        cairo_rectangle(cairo, box.x, box.y, box.width, box.height);
        cairo_fill(cairo);
    }

    Surface surface_;
    std::vector<std::byte> picturePixels_;
    std::vector<std::byte> iconPixels_;
    Surface picture_;
    Surface icon_;
    std::vector<Layout> layouts_;
    bool odd_ = false;
};

void PlainFrame(benchmark::State& state) {
    PlainPage page;
    for (int i = 0; i < 3; ++i)
        page.Draw();
    for (auto _ : state)
        page.Draw();
}
BENCHMARK(PlainFrame)->Name("Frame/Cairo")->Unit(benchmark::kMillisecond);

/// A thousand widgets in a tree of pages, rows and controls, with a target that does nothing.
void FillTree(Scene& scene) {
    for (int page = 0; page < 10; ++page) {
        auto* panel = scene.Put<Window>({0, page * 50, Page::Width, 48});
        panel->SetColor(Violet);
        for (int row = 0; row < 11; ++row) {
            auto* line = panel->Create<Window>();
            line->SetPosition(2, row * 4);
            line->SetSize(350, 4);
            for (int cell = 0; cell < 8; ++cell) {
                Window* widget = cell % 2 == 0
                                     ? line->Create<DirectGL::Button>()
                                     : static_cast<Window*>(line->Create<DirectGL::Text>());
                widget->SetPosition(cell * 40, 0);
                widget->SetSize(38, 4);
                if (auto* text = dynamic_cast<DirectGL::Text*>(widget)) text->SetText(L"words");
            }
        }
    }
}

void ToolkitShare(benchmark::State& state) {
    Platform::RecordingGraphics graphics;
    graphics.recording = false;
    Scene scene(graphics);
    FillTree(scene);
    scene.ShowFrame();
    int x = 0;
    for (auto _ : state) {
        scene.Update();
        scene.ShowFrame();
        x = (x + 7) % Page::Width;
        benchmark::DoNotOptimize(scene.GetGui().HitTest({x, x}));
    }
}
BENCHMARK(ToolkitShare)->Name("Share/1000 widgets")->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
