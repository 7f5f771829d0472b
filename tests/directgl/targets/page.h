#pragma once

#include "directgl/button.h"
#include "directgl/framed_text.h"
#include "directgl/headless_gui.h"
#include "directgl/image.h"
#include "directgl/input.h"
#include "directgl/modal.h"
#include "directgl/scrollbar.h"
#include "directgl/toggle.h"

namespace DirectGL {

/// One of everything that shows something, within 200 by 100 pixels.
inline void FillPage(Window* page, const ImageHandle& picture) {
    const auto addImage = [&](int x, int width, int height) {
        auto* image = page->Create<Image>();
        image->SetImageFromHandle(picture);
        return Place(image, x, 0, width, height);
    };
    addImage(0, 40, 30);
    addImage(50, 8, 8)->SetTint(Red);
    addImage(60, 8, 8)->SetTile(5.0F, 5.0F);
    auto* button = Place(page->Create<Button>(), 80, 0, 40, 20);
    button->SetImages(picture, picture, picture, picture);
    auto* label = button->Create<Text>();
    label->SetText(L"Play", true);
    button->SetLabel(label);
    auto* pill = Place(page->Create<Button>(), 80, 25, 40, 20);
    pill->SetPill(true);
    pill->SetGradient(Red, Green, Blue);
    Place(page->Create<Toggle>(), 130, 0, 40, 20);
    Place(page->Create<Toggle>(), 130, 25, 40, 20)->SetImages(picture, picture, picture);
    Place(page->Create<Input>(), 0, 50, 80, 20)->SetText(L"typed");
    Place(page->Create<FramedText>(), 0, 75, 60, 20)->SetFullText(L"Longer than its box is");
    Place(page->Create<Scrollbar>(), 180, 0, 20, 100);
    auto* modal = Place(page->Create<Modal>(), 100, 50, 60, 40);
    modal->SetBackdrop(picture);
    modal->SetOpacity(0.5F);
}

}  // namespace DirectGL
