#include "App/System/Notification.h"

#include "App/System/Product.h"

#include <QDBusPendingCallWatcher>
#include <QStringList>
#include <QVariantMap>

#include <utility>

namespace vantrel {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications"); // its interface is called the same
const QString path = QStringLiteral("/org/freedesktop/Notifications");

} // namespace

Notification::Notification(const QDBusConnection &bus, QObject *parent) : QObject(parent), m_bus(bus) {}

Notification::~Notification() {
    withdraw();
}

void Notification::show(const QString &heading, const QString &detail) {
    m_text = Text{heading, detail};
    m_isNew = true;
    send();
}

void Notification::withdraw() {
    m_text.reset();
    send();
}

QDBusMessage Notification::call(const QString &method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

void Notification::send() {
    // One at a time: the next one takes the place of the one that is being answered, and needs its number.
    if (m_isAsking || !m_bus.isConnected())
        return;
    if (!m_text) {
        if (const uint id = std::exchange(m_id, 0))
            m_bus.send(call(QStringLiteral("CloseNotification")) << id);
        return;
    }
    if (!std::exchange(m_isNew, false))
        return;
    listen();
    m_isAsking = true;
    constexpr int asLongAsTheDesktopLikes = -1;
    const QStringList clickable{QStringLiteral("default"), QStringLiteral("Show")};
    QDBusMessage question = call(QStringLiteral("Notify"));
    question << product::name() << m_id << product::identifier() << m_text->heading << m_text->detail
             << clickable
             << QVariantMap{{QStringLiteral("desktop-entry"), product::identifier()},
                            {QStringLiteral("category"), QStringLiteral("transfer.complete")}}
             << asLongAsTheDesktopLikes;
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        m_isAsking = false;
        m_id = answer->isError() ? 0 : answer->reply().arguments().value(0).toUInt();
        m_server = answer->reply().service();
        send();
    });
}

void Notification::listen() {
    if (std::exchange(m_isListening, true))
        return;
    // Of any sender, which takeSignal() looks at: to be told of one by name, the toolkit would wait for the
    // bus.
    for (const char *signal : {"ActivationToken", "ActionInvoked", "NotificationClosed"})
        m_bus.connect(QString(), path, service, QLatin1String(signal), this, SLOT(takeSignal(QDBusMessage)));
}

void Notification::takeSignal(const QDBusMessage &message) {
    const QVariantList arguments = message.arguments();
    if (m_id == 0 || arguments.value(0).toUInt() != m_id || message.service() != m_server)
        return;
    if (message.member() == QLatin1String("ActivationToken")) // comes before the click that it is for
        m_token = arguments.value(1).toString().toUtf8();
    else if (message.member() == QLatin1String("ActionInvoked"))
        Q_EMIT clicked(std::exchange(m_token, {}));
    else
        m_id = 0;
}

} // namespace vantrel
