// What the program says to X11's window managers, read by one that only listens.

#include "support/WaitFor.h"

#include "App/Window/Activation.h"

#include <QApplication>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <map>
#include <memory>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

template <typename T>
using Reply = std::unique_ptr<T, decltype([](T *reply) { std::free(reply); })>;

class Listener {
public:
    Listener() : m_connection(xcb_connect(nullptr, nullptr)) {
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        xcb_change_window_attributes(m_connection, root, XCB_CW_EVENT_MASK, &mask);
        static_cast<void>(atom("_NET_ACTIVE_WINDOW")); // the listening has begun when this is answered
    }
    ~Listener() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY_MOVE(Listener)

    /// Takes in what has come: the times of requests to be active, and what is said about starts.
    void listen() {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE)
                continue;
            const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
            if (message->type == atom("_NET_ACTIVE_WINDOW"))
                activations.append({message->window, message->data.data32[1]});
            if (message->type == atom("_NET_STARTUP_INFO_BEGIN"))
                startup.clear();
            if (message->type == atom("_NET_STARTUP_INFO_BEGIN") ||
                message->type == atom("_NET_STARTUP_INFO"))
                startup.append(reinterpret_cast<const char *>(message->data.data8), 20);
        }
    }

    QList<std::pair<xcb_window_t, uint32_t>> activations;
    QByteArray startup;

private:
    xcb_atom_t atom(const QByteArray &name) {
        xcb_atom_t &known = m_atoms[name];
        if (!known)
            known =
                Reply<xcb_intern_atom_reply_t>(
                    xcb_intern_atom_reply(
                        m_connection,
                        xcb_intern_atom(m_connection, 0, uint16_t(name.size()), name.constData()), nullptr))
                    ->atom;
        return known;
    }

    xcb_connection_t *m_connection;
    std::map<QByteArray, xcb_atom_t> m_atoms;
};

TEST(X11Tests, aSecondStartIsPassedOnWithItsTimeAndIsOver) {
    QWidget window;
    window.showMinimized();
    const auto id = xcb_window_t(window.winId());
    Listener listener;
    const QByteArray token = "files-1234-a \"quoted\\\" computer_TIME4000000000";
    bringToFront(&window, token);
    const QByteArray over =
        QByteArray("remove: ID=\"files-1234-a \\\"quoted\\\\\\\" computer_TIME4000000000\"") + '\0';
    ASSERT_TRUE(waitFor([&] {
        listener.listen();
        return listener.startup.size() >= over.size();
    }));
    EXPECT_EQ(listener.startup.first(over.size()), over);
    EXPECT_EQ(listener.activations, (QList<std::pair<xcb_window_t, uint32_t>>{{id, 4'000'000'000}}))
        << "the toolkit's own request has an older time";
    EXPECT_FALSE(window.isMinimized());
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray()) << "the programs it starts are no part of that";

    // No time is made up for a token without one, nor for a start without a token.
    for (const QByteArray &other : {QByteArray("plain"), QByteArray("late_TIMEsoon")}) {
        listener.activations.clear();
        listener.startup.clear();
        bringToFront(&window, {});
        bringToFront(&window, other);
        EXPECT_TRUE(waitFor([&] {
            listener.listen();
            return listener.startup.contains(other);
        }));
        EXPECT_TRUE(listener.activations.isEmpty()) << other.toStdString();
    }
}

} // namespace
} // namespace vantrel

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    QProcess server;
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1")});
    if (!server.waitForReadyRead()) {
        std::fputs("Xvfb does not start\n", stderr);
        return 1;
    }
    qputenv("DISPLAY", ':' + server.readAllStandardOutput().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    int status = 0;
    {
        const QApplication application(argc, argv);
        status = RUN_ALL_TESTS();
    }
    server.terminate();
    server.waitForFinished();
    return status;
}
