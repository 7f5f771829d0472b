#include "directgl/button.h"
#include "directgl/image.h"
#include "directgl/modal.h"
#include "sheet.h"

namespace Gallery {

Sheet ModalSheet() {
    return {"modal", [](DirectGL::Window* root) {
                auto* picture = root->Create<DirectGL::Image>();
                picture->SetImageFromHandle(Landscape(*root->GetGui(), Width, 308));
                Label(root, 16, 330, L"What lies behind a modal", 18, Rgb(0xF2E4DF), 700, L"Sora");

                auto* modal = Put<DirectGL::Modal>(root, 0, 0, Width, Height);
                modal->SetDimColor(Rgb(0x0A0403, 0.8F));
                modal->Hide();
                auto* panel =
                    Box(modal, 40, 190, 280, 150,
                        {.fill = Rgb(0x1A0A07), .border = Rgb(0xC9943A), .gradientEnd = {}}, 10);
                Label(panel, 20, 18, L"Stop the download?", 15, Rgb(0xF2E4DF), 700);
                auto* words =
                    Label(panel, 20, 48, L"What has arrived so far is kept.", 12, Rgb(0xB27A69));
                words->SetWordWrap(true);
                auto* close = Put<DirectGL::Button>(panel, 160, 100, 100, 32);
                close->SetColors(Rgb(0xC0392B), Rgb(0xE8603A), Rgb(0x7B1F1A));
                close->SetPill(true);
                auto* label = Label(close, 0, 0, L"Stop", 13, Rgb(0xFFFFFF), 700);
                label->SetSize(100, 32);
                label->SetHorizontalAlignment(DirectGL::HorizontalAlignment::Center);
                close->SetLabel(label);
                modal->SetBackdropClicked([](DirectGL::Window* widget) {
                    widget->Hide();
                    return DirectGL::WidgetEventRet::Keep;
                });

                return std::vector<Step>{{"closed", [](Stage&) {}},
                                         {"open",
                                          [=](Stage& stage) {
                                              modal->Show();
                                              stage.PointAt(close);
                                          }},
                                         {"dismissed", [](Stage& stage) {
                                              stage.Native().Click(10, 500);
                                              stage.Wait(0.1);
                                          }}};
            }};
}

}  // namespace Gallery
