#pragma once

#include <cairo.h>
#include <memory>
#include <pango/pangocairo.h>

/// Owners for what Cairo and Pango hand out.
namespace Platform::Host {

template <auto Release>
struct ReleaseWith {
    template <class T>
    void operator()(T* object) const {
        Release(object);
    }
};

using CairoSurface = std::unique_ptr<cairo_surface_t, ReleaseWith<cairo_surface_destroy>>;
using CairoContext = std::unique_ptr<cairo_t, ReleaseWith<cairo_destroy>>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, ReleaseWith<cairo_pattern_destroy>>;
using CairoRegion = std::unique_ptr<cairo_region_t, ReleaseWith<cairo_region_destroy>>;
using CairoFontOptions =
    std::unique_ptr<cairo_font_options_t, ReleaseWith<cairo_font_options_destroy>>;
using PangoDescription =
    std::unique_ptr<PangoFontDescription, ReleaseWith<pango_font_description_free>>;
using PangoAttributes = std::unique_ptr<PangoAttrList, ReleaseWith<pango_attr_list_unref>>;

template <class T>
using GObjectOwner = std::unique_ptr<T, ReleaseWith<g_object_unref>>;

}  // namespace Platform::Host
