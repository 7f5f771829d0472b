// Birth, tree, and states.

#include "directgl/window.h"

#include <atomic>

#include "directgl/gui.h"
#include "directgl/layer.h"
#include "platform/text.h"

namespace DirectGL {

namespace {

std::atomic<int> g_nextId = 0;

}  // namespace

Window::Window(Gui* itsGui) : gui(itsGui) {}

Window::~Window() {
    if (layer && !name.empty()) layer->EraseName(name, this);
}

void Window::EnterLayer(Layer* itsLayer, WindowType itsType, const std::wstring& itsName) {
    type = itsType;
    id = g_nextId++;
    name = itsName;
    JoinLayer(itsLayer);
}

void Window::JoinLayer(Layer* itsLayer) {
    const std::wstring itsName = name;
    SetName(std::wstring());
    layer = itsLayer;
    SetName(itsName);
    // What a constructor made knew no layer yet.
    ForEachChild([itsLayer](Window& child) { child.JoinLayer(itsLayer); });
}

std::string Window::GetNameUtf8() const {
    return Platform::Utf8FromWide(name);
}

void Window::SetName(const std::wstring& value) {
    if (layer && !name.empty()) layer->EraseName(name, this);
    name = value;
    if (layer && !name.empty()) layer->EnterName(name, this);
}

void Window::SetName(std::string_view utf8) {
    SetName(Platform::WideFromUtf8(utf8));
}

bool Window::IsChild(const Window* candidate) const {
    return candidate && candidate->parent == this;
}

void Window::AdoptChild(std::unique_ptr<Window> child) {
    child->parent = this;
    children.push_back(std::move(child));
}

std::unique_ptr<Window> Window::ReleaseChild(Window* child) {
    const auto found = std::ranges::find(children, child, &std::unique_ptr<Window>::get);
    if (found == children.end()) return nullptr;
    std::unique_ptr<Window> released = std::move(*found);
    children.erase(found);
    released->parent = nullptr;
    ChildReleased(child);
    return released;
}

void Window::AddChild(Window* child) {
    if (!child || IsChild(child) || (gui && gui->IsDoomed(child))) return;
    for (const Window* ancestor = this; ancestor; ancestor = ancestor->parent)
        if (ancestor == child) return;
    std::unique_ptr<Window> owner;
    if (child->parent) owner = child->parent->ReleaseChild(child);
    if (!owner && child->layer) owner = child->layer->Release(child);
    if (!owner && gui) owner = gui->TakeOrphan(child);
    if (!owner) owner.reset(child);
    if (child->layer != layer) child->JoinLayer(layer);
    AdoptChild(std::move(owner));
    Invalidate();
}

void Window::RemoveChild(Window* child) {
    if (gui && IsChild(child)) gui->LetGo(child);
    std::unique_ptr<Window> owner = ReleaseChild(child);
    if (!owner) return;
    Invalidate();
    if (gui)
        gui->KeepOrphan(std::move(owner));
    else
        static_cast<void>(owner.release());  // the caller's from now on
}

void Window::Discard(std::unique_ptr<Window> child) {
    if (!gui) return;  // destroyed at once
    if (layer && !child->name.empty()) layer->EraseName(child->name, child.get());
    gui->DestroyLater(std::move(child));
}

void Window::DeleteChild(Window* child) {
    if (!IsChild(child)) return;
    // Forgetting walks up the parents, so it comes before the child is cut off.
    if (gui) gui->Forget(child);
    Discard(ReleaseChild(child));
    Invalidate();
}

void Window::DeleteChildren() {
    DeleteChildrenWhere([](const Window*) { return true; });
}

void Window::DeleteChildrenWhere(const std::function<bool(const Window*)>& picks) {
    std::deque<std::unique_ptr<Window>> kept;
    std::deque<std::unique_ptr<Window>> picked;
    for (auto& child : children)
        (picks(child.get()) ? picked : kept).push_back(std::move(child));
    children = std::move(kept);
    for (auto& child : picked) {
        ChildReleased(child.get());
        if (gui) gui->Forget(child.get());
        child->parent = nullptr;
        Discard(std::move(child));
    }
    Invalidate();
}

void Window::Remove() {
    if (parent)
        parent->DeleteChild(this);
    else if (std::unique_ptr<Window> orphan = gui ? gui->TakeOrphan(this) : nullptr)
        Discard(std::move(orphan));
    else if (layer)
        layer->Delete(this);
}

void Window::SetParentWindow(Window* newParent) {
    if (newParent)
        newParent->AddChild(this);
    else if (parent)
        parent->RemoveChild(this);
}

void Window::BringToFront() {
    if (parent)
        parent->RaiseChild(this);
    else if (layer)
        layer->Raise(this);
}

void Window::RaiseChild(Window* child) {
    const auto found = std::ranges::find(children, child, &std::unique_ptr<Window>::get);
    if (found == children.end()) return;
    std::rotate(found, found + 1, children.end());
    Invalidate();
}

Window* Window::GetRoot() {
    Window* root = this;
    while (root->parent)
        root = root->parent;
    return root;
}

Window* Window::FindById(int wanted) {
    if (id == wanted) return this;
    for (const auto& child : children)
        if (Window* found = child->FindById(wanted)) return found;
    return nullptr;
}

void Window::Reset() {
    DeleteChildren();
    style.reset();
    x = y = width = height = cornerRadius = 0;
    move = {};
    resize = {};
    opacity = opacityTarget = 1.0F;
    opacityStep = rotation = 0.0F;
    visible = mouseEnabled = true;
    draggable = dragging = focusedFlag = pulseEnabled = false;
    if (gui && gui->GetFocused() == this) gui->SetFocused(nullptr);
    timers.clear();
    for (CallbackSlot& slot : callbacks)
        slot.Clear();
}

void Window::Show() {
    if (!visible) {
        const auto change = [this] {
            visible = true;
            OnShow();
        };
        gui ? gui->ChangeUnderPointer(change) : change();
    }
    Invalidate();
}

void Window::Hide() {
    if (visible) {
        const auto change = [this] {
            visible = false;
            OnHide();
        };
        gui ? gui->ChangeUnderPointer(change) : change();
    }
    Invalidate();
}

void Window::ShowChildren() {
    ForEachChild([](Window& child) { child.Show(); });
}

void Window::HideChildren() {
    ForEachChild([](Window& child) { child.Hide(); });
}

void Window::Focus() {
    if (gui) {
        Window* before = gui->GetFocused();
        gui->SetFocused(this);
        if (before && before != this) before->Blur();
        // What lost the focus may have deleted this widget or sent the focus elsewhere.
        if (gui->GetFocused() != this) return;
    }
    if (focusedFlag) return;
    focusedFlag = true;
    OnFocus();
}

void Window::Blur() {
    if (gui && gui->GetFocused() == this) gui->SetFocused(nullptr);
    if (!focusedFlag) return;
    focusedFlag = false;
    OnBlur();
}

void Window::ClearHover() {
    ForEachChild([](Window& child) { child.ClearHover(); });
}

void Window::Invalidate() {
    redrawCount = 2;
    if (gui) gui->MarkDirty();
}

bool Window::ConsumeRedraw() {
    bool wanted = false;
    if (redrawCount != 0) {
        --redrawCount;
        wanted = true;
    }
    Run(Slot::RedrawCheck);
    ForEachChild([&](Window& child) {
        if (child.ConsumeRedraw()) wanted = true;
    });
    return wanted;
}

double Window::Now() const {
    return gui ? gui->Now() : 0.0;
}

Point Window::GetMouse() const {
    return gui ? gui->GetMouse() : Point{};
}

}  // namespace DirectGL
