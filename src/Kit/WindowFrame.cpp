#include "Kit/WindowFrame.h"

#include "Kit/Shapes.h"

#include <QGuiApplication>

#ifdef VANTREL_HAS_XCB
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>
#endif

namespace vantrel {

#ifdef VANTREL_HAS_XCB

namespace {

template <typename T>
using Reply = std::unique_ptr<T, decltype([](T *reply) { std::free(reply); })>;

/// A compositing manager owns a selection that is named after the screen.
bool hasCompositingManager(xcb_connection_t *connection) {
    constexpr std::string_view name = "_NET_WM_CM_S0";
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data()),
        nullptr));
    if (!atom)
        return false;
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace

#endif

bool desktopBlendsWindows() {
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return true;
#ifdef VANTREL_HAS_XCB
    // Other platforms may offer the interface without having a connection.
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 && x11->connection())
        return hasCompositingManager(x11->connection());
#endif
    return false;
}

QPainterPath roundedTop(const QRectF &rect, double radius) {
    // The lower corners of a taller shape, cut off.
    QPainterPath lowerEdge;
    lowerEdge.addRect(rect);
    return radius <= 0 ? lowerEdge
                       : roundedRect(rect.adjusted(0, 0, 0, 2 * radius), radius).intersected(lowerEdge);
}

} // namespace vantrel
