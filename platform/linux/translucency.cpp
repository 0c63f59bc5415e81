#include "platform/translucency.hpp"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace vorn {
namespace {

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

/// A compositing manager shows that it runs by owning a selection.
bool hasCompositor(xcb_connection_t& connection) {
    constexpr std::string_view kSelection = "_NET_WM_CM_S0";
    const Reply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(&connection, xcb_intern_atom(&connection, 0, kSelection.size(), kSelection.data()),
                              nullptr),
        &std::free);
    if (!atom) {
        return false;
    }
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(&connection, xcb_get_selection_owner(&connection, atom->atom), nullptr),
        &std::free);
    return owner && owner->owner != XCB_NONE;
}

}  // namespace

bool windowsCanBeTranslucent() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* const connection = x11 ? x11->connection() : nullptr;
    return !connection || hasCompositor(*connection);
}

}  // namespace vorn
