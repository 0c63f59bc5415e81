#include "platform/translucency.hpp"

#include <QGuiApplication>
#include <string_view>

#include <xcb/xcb.h>

#include "platform/linux/xcb_reply.hpp"

namespace vorn {
namespace {

/// A compositing manager shows that it runs by owning a selection.
bool hasCompositor(xcb_connection_t& connection) {
    constexpr std::string_view kSelection = "_NET_WM_CM_S0";
    const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        &connection, xcb_intern_atom(&connection, 0, kSelection.size(), kSelection.data()), nullptr));
    if (!atom) {
        return false;
    }
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(&connection, xcb_get_selection_owner(&connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

}  // namespace

bool windowsCanBeTranslucent() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* const connection = x11 ? x11->connection() : nullptr;
    return !connection || hasCompositor(*connection);
}

}  // namespace vorn
