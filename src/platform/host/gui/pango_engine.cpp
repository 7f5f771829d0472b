#include "platform/host/gui/pango_engine.h"

#include <array>
#include <pango/pangofc-fontmap.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

#include "platform/text.h"

namespace Platform::Host {

namespace {

/// The file's content as a file without a name.
Descriptor MakeMemoryFile(std::span<const std::byte> content) {
    Descriptor file(memfd_create("font", MFD_CLOEXEC));
    if (!file) return file;
    while (!content.empty()) {
        const ssize_t written = write(file.Get(), content.data(), content.size());
        if (written <= 0) return Descriptor();
        content = content.subspan(static_cast<std::size_t>(written));
    }
    return file;
}

struct NamedWeight {
    std::string_view style;
    int weight;
};

constexpr std::array NamedWeights{
    NamedWeight{"Thin", FC_WEIGHT_THIN},     NamedWeight{"ExtraLight", FC_WEIGHT_EXTRALIGHT},
    NamedWeight{"Light", FC_WEIGHT_LIGHT},   NamedWeight{"Regular", FC_WEIGHT_REGULAR},
    NamedWeight{"Medium", FC_WEIGHT_MEDIUM}, NamedWeight{"SemiBold", FC_WEIGHT_DEMIBOLD},
    NamedWeight{"Bold", FC_WEIGHT_BOLD},     NamedWeight{"ExtraBold", FC_WEIGHT_EXTRABOLD},
    NamedWeight{"Black", FC_WEIGHT_BLACK},
};

/// Some font files tell other weights in their tables than in their names. The names are right.
void TrustStyleNames(FcConfig* config) {
    FcFontSet* fonts = FcConfigGetFonts(config, FcSetApplication);
    for (int i = 0; fonts && i < fonts->nfont; ++i) {
        FcPattern* font = fonts->fonts[i];
        FcChar8* style = nullptr;
        if (FcPatternGetString(font, FC_STYLE, 0, &style) != FcResultMatch) continue;
        const std::string_view name(reinterpret_cast<const char*>(style));
        for (const NamedWeight& named : NamedWeights) {
            if (named.style != name) continue;
            FcPatternDel(font, FC_WEIGHT);
            FcPatternAddInteger(font, FC_WEIGHT, named.weight);
        }
    }
}

PangoStyle StyleFrom(std::uint32_t style) {
    constexpr std::array Styles{PANGO_STYLE_NORMAL, PANGO_STYLE_OBLIQUE, PANGO_STYLE_ITALIC};
    return style < Styles.size() ? Styles[style] : PANGO_STYLE_NORMAL;
}

/// 1 ultra-condensed to 9 ultra-expanded, as Pango counts from 0.
PangoStretch StretchFrom(std::uint32_t stretch) {
    return stretch >= 1 && stretch <= 9 ? static_cast<PangoStretch>(stretch - 1)
                                        : PANGO_STRETCH_NORMAL;
}

}  // namespace

PangoEngine::~PangoEngine() {
    context_.reset();
    // Pango does not let go of its reference by itself.
    if (fontMap_) pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(fontMap_.get()), nullptr);
    fontMap_.reset();
    if (config_) FcConfigDestroy(config_);
}

PangoContext* PangoEngine::Context() {
    if (context_) return context_.get();
    config_ = FcInitLoadConfigAndFonts();
    fontMap_.reset(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT));
    if (!fontMap_) return nullptr;
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(fontMap_.get()), config_);
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap_.get()), 96.0);
    context_.reset(pango_font_map_create_context(fontMap_.get()));
    const CairoFontOptions options(cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(context_.get(), options.get());
    return context_.get();
}

Created<TextFormat> PangoEngine::CreateTextFormat(const TextFormatSpec& spec) {
    PangoDescription description(pango_font_description_new());
    pango_font_description_set_family(description.get(), Utf8FromWide(spec.family).c_str());
    pango_font_description_set_absolute_size(description.get(),
                                             static_cast<double>(spec.size) * PANGO_SCALE);
    pango_font_description_set_weight(description.get(), static_cast<PangoWeight>(spec.weight));
    pango_font_description_set_style(description.get(), StyleFrom(spec.style));
    pango_font_description_set_stretch(description.get(), StretchFrom(spec.stretch));
    return std::make_unique<PangoTextFormat>(std::move(description), Utf8FromWide(spec.locale));
}

Created<TextLayout> PangoEngine::CreateTextLayout(const TextFormat& format,
                                                  const TextLayoutSpec& spec) {
    PangoContext* context = Context();
    if (!context) return GraphicsFailed;
    return PangoTextLayout::Make(context, static_cast<const PangoTextFormat&>(format), spec);
}

GraphicsResult PangoEngine::AddFile(std::span<const std::byte> file) {
    Descriptor kept = MakeMemoryFile(file);
    if (!kept) return GraphicsOutOfMemory;
    files_.push_back(std::move(kept));
    return GraphicsOk;
}

GraphicsResult PangoEngine::BuildCollection() {
    if (!Context()) return GraphicsFailed;
    FcConfigAppFontClear(config_);
    bool all = true;
    for (const Descriptor& file : files_) {
        const std::string path = "/proc/self/fd/" + std::to_string(file.Get());
        all =
            FcConfigAppFontAddFile(config_, reinterpret_cast<const FcChar8*>(path.c_str())) && all;
    }
    TrustStyleNames(config_);
    pango_fc_font_map_config_changed(PANGO_FC_FONT_MAP(fontMap_.get()));
    return all ? GraphicsOk : GraphicsFailed;
}

}  // namespace Platform::Host
