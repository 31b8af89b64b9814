#include "App/Window/Activation.h"

#include <QGuiApplication>
#include <QWidget>

#ifdef VANTREL_HAS_XCB
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#endif

namespace vantrel {

namespace {

#ifdef VANTREL_HAS_XCB

xcb_connection_t *x11Connection() {
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

/// When the user asked for the start with this token, in the X server's milliseconds; it ends with that.
std::optional<uint32_t> timeOf(const QByteArray &token) {
    const QByteArray mark = QByteArrayLiteral("_TIME");
    const qsizetype at = token.lastIndexOf(mark);
    bool isNumber = false;
    const uint32_t time = at < 0 ? 0 : token.sliced(at + mark.size()).toUInt(&isNumber);
    return isNumber ? std::optional(time) : std::nullopt;
}

/// Speaks to the window manager about one window. The toolkit would name the time of its own latest event,
/// which is older than what the user did since, and be refused.
class DesktopMessage {
public:
    DesktopMessage(xcb_connection_t *connection, const QWidget &window)
        : m_connection(connection), m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root),
          m_window(static_cast<xcb_window_t>(window.winId())) {}

    void activate(uint32_t time) const {
        constexpr uint32_t fromAnApplication = 1;
        xcb_client_message_event_t event = message("_NET_ACTIVE_WINDOW", 32);
        event.data.data32[0] = fromAnApplication;
        event.data.data32[1] = time;
        send(event, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    }

    /// Ends the sign of a start, such as a busy mouse pointer.
    void startIsOver(const QByteArray &token) const {
        const QByteArray quoted = QByteArray(token).replace('\\', "\\\\").replace('"', "\\\"");
        QByteArray text = "remove: ID=\"" + quoted + '"';
        text.append('\0');
        xcb_client_message_event_t event = message("_NET_STARTUP_INFO_BEGIN", 8);
        const xcb_atom_t next = atom("_NET_STARTUP_INFO");
        constexpr qsizetype piece = sizeof event.data.data8;
        for (qsizetype at = 0; at < text.size(); at += piece, event.type = next) {
            std::fill_n(event.data.data8, piece, uint8_t(0));
            std::copy_n(text.cbegin() + at, std::min(piece, text.size() - at), event.data.data8);
            send(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
        }
    }

private:
    [[nodiscard]] xcb_atom_t atom(const char *name) const {
        using Reply =
            std::unique_ptr<xcb_intern_atom_reply_t, decltype([](auto *reply) { std::free(reply); })>;
        const Reply reply(xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, uint16_t(qstrlen(name)), name), nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }
    [[nodiscard]] xcb_client_message_event_t message(const char *type, uint8_t format) const {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = format;
        event.window = m_window;
        event.type = atom(type);
        return event;
    }
    void send(const xcb_client_message_event_t &event, uint32_t mask) const {
        xcb_send_event(m_connection, 0, m_root, mask, reinterpret_cast<const char *>(&event));
        xcb_flush(m_connection);
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    xcb_window_t m_window;
};

#endif

} // namespace

void bringToFront(QWidget *window, const QByteArray &activationToken) {
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
#ifdef VANTREL_HAS_XCB
    if (xcb_connection_t *connection = x11Connection()) {
        const DesktopMessage message(connection, *window);
        if (const auto time = timeOf(activationToken))
            message.activate(*time);
        else
            window->activateWindow();
        if (!activationToken.isEmpty())
            message.startIsOver(activationToken);
        return;
    }
#endif
    if (!activationToken.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activationToken); // where the toolkit looks for it
    window->activateWindow();
}

} // namespace vantrel
