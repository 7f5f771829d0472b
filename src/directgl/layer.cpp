#include "directgl/layer.h"

#include "directgl/gui.h"

namespace DirectGL {

Layer::~Layer() {
    // While this object is whole: widgets take their names out of it.
    widgets_.clear();
}

Window* Layer::FindByName(const std::wstring& name) const {
    const auto found = names_.find(name);
    return found == names_.end() ? nullptr : found->second;
}

std::unique_ptr<Window> Layer::Release(Window* widget) {
    const auto found = std::ranges::find(widgets_, widget, &std::unique_ptr<Window>::get);
    if (found == widgets_.end()) return nullptr;
    std::unique_ptr<Window> released = std::move(*found);
    widgets_.erase(found);
    return released;
}

void Layer::Adopt(std::unique_ptr<Window> widget) {
    widgets_.push_back(std::move(widget));
}

void Layer::Delete(Window* widget) {
    std::unique_ptr<Window> released = Release(widget);
    if (!released) return;
    EraseName(released->GetName(), widget);
    gui_->MarkDirty();
    gui_->Forget(widget);
    gui_->DestroyLater(std::move(released));
}

void Layer::Raise(Window* widget) {
    const auto found = std::ranges::find(widgets_, widget, &std::unique_ptr<Window>::get);
    if (found == widgets_.end()) return;
    std::rotate(found, found + 1, widgets_.end());
    widget->Invalidate();
}

void Layer::EnterName(const std::wstring& name, Window* widget) {
    names_[name] = widget;
}

void Layer::EraseName(const std::wstring& name, const Window* widget) {
    const auto found = names_.find(name);
    if (found != names_.end() && found->second == widget) names_.erase(found);
}

}  // namespace DirectGL
