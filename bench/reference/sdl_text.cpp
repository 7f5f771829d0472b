// Reference for a start: a bare SDL window of the launcher's size with one text by Pango. Says
// "shown" with the first frame and ends when its input does.

#include <SDL2/SDL.h>
#include <cstdio>
#include <pango/pangocairo.h>

int main() {
    SDL_SetHint(SDL_HINT_VIDEODRIVER, "x11");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return 1;
    SDL_Window* window = SDL_CreateWindow("bare", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                          360, 540, SDL_WINDOW_BORDERLESS);
    SDL_Surface* surface = window ? SDL_GetWindowSurface(window) : nullptr;
    if (!surface) return 1;
    cairo_surface_t* pixels = cairo_image_surface_create_for_data(
        static_cast<unsigned char*>(surface->pixels), CAIRO_FORMAT_RGB24, surface->w, surface->h,
        surface->pitch);
    cairo_t* cairo = cairo_create(pixels);
    cairo_set_source_rgb(cairo, 0.08, 0.03, 0.02);
    cairo_paint(cairo);
    PangoLayout* layout = pango_cairo_create_layout(cairo);
    PangoFontDescription* font = pango_font_description_from_string("Inter 14");
    pango_layout_set_font_description(layout, font);
    pango_layout_set_text(layout, "Tolvan Online", -1);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_move_to(cairo, 100, 250);
    pango_cairo_show_layout(cairo, layout);
    cairo_surface_flush(pixels);
    SDL_UpdateWindowSurface(window);
    std::puts("shown");
    std::fflush(stdout);
    std::getchar();
    pango_font_description_free(font);
    g_object_unref(layout);
    cairo_destroy(cairo);
    cairo_surface_destroy(pixels);
    SDL_Quit();
    return 0;
}
