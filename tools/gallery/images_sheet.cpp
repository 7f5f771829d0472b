#include "directgl/image.h"
#include "sheet.h"

namespace Gallery {

namespace {

DirectGL::Image* Show(DirectGL::Window* root, int x, int y, const DirectGL::ImageHandle& handle) {
    auto* image = root->Create<DirectGL::Image>();
    image->SetImageFromHandle(handle);
    image->SetPosition(x, y);
    return image;
}

}  // namespace

Sheet ImagesSheet() {
    return {"images", [](DirectGL::Window* root) {
                const DirectGL::Gui& gui = *root->GetGui();
                Caption(root, 16, 12, L"In its own size, stretched, shrunk, faded");
                const auto landscape = Landscape(gui, 80, 60);
                Show(root, 16, 30, landscape);
                Show(root, 104, 30, landscape)->SetSize(104, 60);
                Show(root, 216, 30, landscape)->SetSize(40, 30);
                Show(root, 264, 30, landscape)->SetOpacity(0.4F);

                Caption(root, 16, 106, L"Clear ground, and as a mask in colours");
                const auto star = Star(gui, 48, 0xFFE2A8);
                Show(root, 16, 124, star);
                int x = 76;
                for (const unsigned color : {0xE8603AU, 0x2FD17EU, 0x33B6FFU}) {
                    Show(root, x, 124, star)->SetTint(Rgb(color));
                    x += 60;
                }
                auto* pale = Show(root, x, 124, star);
                pale->SetTint(Rgb(0xB45CFF, 0.7F));
                pale->SetSize(70, 48);

                Caption(root, 16, 190, L"Repeated 10 by 3 times, and 4.5 by 2");
                const auto tile = Star(gui, 16, 0xC9943A);
                Show(root, 16, 208, tile)->SetTile(10.0F, 3.0F);
                auto* second = Show(root, 200, 208, tile);
                second->SetTile(4.5F, 2.0F);
                second->SetOpacity(0.5F);

                Caption(root, 16, 276, L"Over a picture");
                Show(root, 16, 294, Landscape(gui, 328, 220));
                Show(root, 30, 310, Star(gui, 64, 0xFFE2A8))->SetTint(Rgb(0xFFFFFF, 0.8F));
                return std::vector<Step>{{"still", [](Stage&) {}}};
            }};
}

}  // namespace Gallery
