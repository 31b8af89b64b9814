#include "App/System/StayAwake.h"

#include "App/System/Product.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace vantrel {

StayAwake::StayAwake(const QDBusConnection &bus, QObject *parent) : QObject(parent), m_bus(bus) {}

void StayAwake::setOn(bool isOn) {
    if (m_isOn == isOn)
        return;
    m_isOn = isOn;
    const quint64 request = ++m_request;
    m_lock = QDBusUnixFileDescriptor();
    if (!isOn || !m_bus.isConnected())
        return;
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    message.setArguments({QStringLiteral("sleep:idle"), product::name(),
                          QStringLiteral("Files are being copied"), QStringLiteral("block")});
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, request] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
        if (reply.isValid() && request == m_request)
            m_lock = reply.value();
        watcher->deleteLater();
    });
}

} // namespace vantrel
