#pragma once

#include <deque>
#include <memory>
#include <string>
#include <unordered_map>

#include "directgl/window.h"

namespace DirectGL {

/// A named group of top-level widgets, drawn in their order and hit from the last to the first.
/// It makes them, owns them, and knows every named widget of its trees.
/// All calls need the toolkit's lock.
class Layer {
public:
    explicit Layer(Gui* gui) : gui_(gui) {}
    ~Layer();
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

    Gui* GetGui() const { return gui_; }
    const std::deque<std::unique_ptr<Window>>& GetWidgets() const { return widgets_; }

    /// A new top-level widget, owned by the layer.
    template <class T>
    T* Create(const std::wstring& name = {}) {
        auto widget = std::make_unique<T>(gui_);
        T* made = widget.get();
        made->EnterLayer(this, T::Type, name);
        Adopt(std::move(widget));
        return made;
    }

    /// The widget of that name anywhere below this layer, or null.
    Window* FindByName(const std::wstring& name) const;

    /// Takes a top-level widget away and has it destroyed at the next update. A stranger is left
    /// alone.
    void Delete(Window* widget);
    /// Draws a top-level widget above its siblings from now on.
    void Raise(Window* widget);

    /// The widget's place among the top-level ones is given up and it is handed out; null for a
    /// stranger.
    std::unique_ptr<Window> Release(Window* widget);
    void Adopt(std::unique_ptr<Window> widget);

    void EnterName(const std::wstring& name, Window* widget);
    /// Forgets the name only where it still means this widget.
    void EraseName(const std::wstring& name, const Window* widget);

private:
    Gui* gui_;
    std::unordered_map<std::wstring, Window*> names_;
    std::deque<std::unique_ptr<Window>> widgets_;
};

}  // namespace DirectGL
