#include "platform/host/x11_windows.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <xcb/xcb.h>

#include "platform/host/shared_library.h"

namespace Platform::Host {

namespace {

constexpr std::uint16_t SmallestMainWindow = 200;
constexpr int DeepestWindow = 4;  // window managers put frames around the programs' windows

/// The functions of libxcb that are called here. Unlike Xlib's, a connection of one's own survives
/// that windows vanish while they are looked at.
struct Xcb {
    decltype(&xcb_connect) connect;
    decltype(&xcb_connection_has_error) hasError;
    decltype(&xcb_disconnect) disconnect;
    decltype(&xcb_get_setup) getSetup;
    decltype(&xcb_setup_roots_iterator) roots;
    decltype(&xcb_intern_atom) internAtom;
    decltype(&xcb_intern_atom_reply) internAtomReply;
    decltype(&xcb_query_tree) queryTree;
    decltype(&xcb_query_tree_reply) queryTreeReply;
    decltype(&xcb_query_tree_children) children;
    decltype(&xcb_query_tree_children_length) childCount;
    decltype(&xcb_get_property) getProperty;
    decltype(&xcb_get_property_reply) getPropertyReply;
    decltype(&xcb_get_property_value) propertyValue;
    decltype(&xcb_get_window_attributes) getAttributes;
    decltype(&xcb_get_window_attributes_reply) getAttributesReply;
    decltype(&xcb_get_geometry) getGeometry;
    decltype(&xcb_get_geometry_reply) getGeometryReply;
};

std::optional<Xcb> LoadXcb() {
    const SharedLibrary library("libxcb.so.1");
    Xcb xcb{};
    const bool complete = library.Find("xcb_connect", xcb.connect) &&
                          library.Find("xcb_connection_has_error", xcb.hasError) &&
                          library.Find("xcb_disconnect", xcb.disconnect) &&
                          library.Find("xcb_get_setup", xcb.getSetup) &&
                          library.Find("xcb_setup_roots_iterator", xcb.roots) &&
                          library.Find("xcb_intern_atom", xcb.internAtom) &&
                          library.Find("xcb_intern_atom_reply", xcb.internAtomReply) &&
                          library.Find("xcb_query_tree", xcb.queryTree) &&
                          library.Find("xcb_query_tree_reply", xcb.queryTreeReply) &&
                          library.Find("xcb_query_tree_children", xcb.children) &&
                          library.Find("xcb_query_tree_children_length", xcb.childCount) &&
                          library.Find("xcb_get_property", xcb.getProperty) &&
                          library.Find("xcb_get_property_reply", xcb.getPropertyReply) &&
                          library.Find("xcb_get_property_value", xcb.propertyValue) &&
                          library.Find("xcb_get_window_attributes", xcb.getAttributes) &&
                          library.Find("xcb_get_window_attributes_reply", xcb.getAttributesReply) &&
                          library.Find("xcb_get_geometry", xcb.getGeometry) &&
                          library.Find("xcb_get_geometry_reply", xcb.getGeometryReply);
    if (!complete) return std::nullopt;
    return xcb;
}

/// Replies come from malloc.
struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Type>
using Reply = std::unique_ptr<Type, Free>;

/// Looks for windows of one process on one connection to the display.
class WindowSearch {
public:
    WindowSearch(const Xcb& xcb, std::uint32_t processId)
        : xcb_(xcb), connection_(xcb.connect(nullptr, nullptr), xcb.disconnect), id_(processId) {}

    bool Run() {
        if (xcb_.hasError(connection_.get()) != 0) return false;
        constexpr std::string_view Name = "_NET_WM_PID";
        const auto atom = Reply<xcb_intern_atom_reply_t>(xcb_.internAtomReply(
            connection_.get(),
            xcb_.internAtom(connection_.get(), 1, std::uint16_t{Name.size()}, Name.data()),
            nullptr));
        if (!atom || atom->atom == XCB_ATOM_NONE) return false;  // no window carries its process
        processAtom_ = atom->atom;
        root_ = xcb_.roots(xcb_.getSetup(connection_.get())).data->root;
        return HasMainWindowBelow(root_, 1);
    }

private:
    bool HasMainWindowBelow(xcb_window_t parent, int depth) {
        const auto tree = Reply<xcb_query_tree_reply_t>(xcb_.queryTreeReply(
            connection_.get(), xcb_.queryTree(connection_.get(), parent), nullptr));
        if (!tree) return false;
        const xcb_window_t* windows = xcb_.children(tree.get());
        for (int index = 0; index < xcb_.childCount(tree.get()); ++index) {
            if (!IsViewable(windows[index])) continue;
            if (IsMainWindow(windows[index])) return true;
            if (depth < DeepestWindow && HasMainWindowBelow(windows[index], depth + 1)) return true;
        }
        return false;
    }

    bool IsMainWindow(xcb_window_t window) {
        return ReadNumber(window, processAtom_, XCB_ATOM_CARDINAL) == id_ && !HasOwner(window) &&
               IsLargeEnough(window);
    }

    bool HasOwner(xcb_window_t window) {
        const auto owner = ReadNumber(window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW);
        // Some libraries name the root, which owns nothing.
        return owner && *owner != root_ && *owner != XCB_WINDOW_NONE;
    }

    bool IsViewable(xcb_window_t window) {
        const auto attributes = Reply<xcb_get_window_attributes_reply_t>(xcb_.getAttributesReply(
            connection_.get(), xcb_.getAttributes(connection_.get(), window), nullptr));
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    bool IsLargeEnough(xcb_window_t window) {
        const auto geometry = Reply<xcb_get_geometry_reply_t>(xcb_.getGeometryReply(
            connection_.get(), xcb_.getGeometry(connection_.get(), window), nullptr));
        return geometry && geometry->width >= SmallestMainWindow &&
               geometry->height >= SmallestMainWindow;
    }

    std::optional<std::uint32_t> ReadNumber(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) {
        const auto property = Reply<xcb_get_property_reply_t>(xcb_.getPropertyReply(
            connection_.get(), xcb_.getProperty(connection_.get(), 0, window, name, type, 0, 1),
            nullptr));
        if (!property || property->format != 32 || property->value_len != 1) return std::nullopt;
        std::uint32_t number = 0;
        std::memcpy(&number, xcb_.propertyValue(property.get()), sizeof number);
        return number;
    }

    const Xcb& xcb_;
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
    std::uint32_t id_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    xcb_atom_t processAtom_ = XCB_ATOM_NONE;
};

}  // namespace

bool HasX11MainWindow(std::uint32_t processId) {
    if (std::getenv("DISPLAY") == nullptr) return false;
    static const std::optional<Xcb> xcb = LoadXcb();
    return xcb && WindowSearch(*xcb, processId).Run();
}

}  // namespace Platform::Host
