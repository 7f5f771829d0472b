#include "platform/host/gui/x_connection.h"

#include <string>

namespace Platform::Host {

const xcb_screen_t* XConnection::Screen() const {
    const xcb_setup_t* setup = IsBroken() ? nullptr : xcb_get_setup(connection_);
    if (!setup) return nullptr;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(setup);
    for (int i = 0; i < screenNumber_ && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

xcb_visualid_t XConnection::AlphaVisual() const {
    const xcb_screen_t* screen = Screen();
    if (!screen) return 0;
    xcb_depth_iterator_t depths = xcb_screen_allowed_depths_iterator(screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        if (depths.data->depth != 32) continue;
        xcb_visualtype_iterator_t visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals))
            if (visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR) return visuals.data->visual_id;
    }
    return 0;
}

bool XConnection::HasCompositor() const {
    if (IsBroken()) return false;
    const std::string name = "_NET_WM_CM_S" + std::to_string(screenNumber_);
    const XReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    if (!atom) return false;
    const XReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

void XConnection::Synchronise() const {
    const XReply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

}  // namespace Platform::Host
