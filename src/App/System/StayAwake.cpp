#include "App/System/StayAwake.h"

#include "App/System/Product.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QVariantMap>

#include <utility>

namespace vantrel {

namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString reason = QStringLiteral("Files are being copied");

} // namespace

StayAwake::StayAwake(const QDBusConnection &system, const QDBusConnection &session, QObject *parent)
    : QObject(parent), m_system(system), m_session(session) {}

StayAwake::~StayAwake() {
    setOn(false);
}

void StayAwake::setOn(bool isOn) {
    if (m_isOn == isOn)
        return;
    m_isOn = isOn;
    ++m_request;
    m_lock = QDBusUnixFileDescriptor();
    allowLogOut(std::exchange(m_logOutRequest, QString()));
    if (!isOn)
        return;
    QDBusMessage sleep = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    sleep << QStringLiteral("sleep:idle") << product::name() << reason << QStringLiteral("block");
    ask(m_system, sleep, [this](const QVariant &answer, bool isWanted) {
        if (isWanted)
            m_lock = answer.value<QDBusUnixFileDescriptor>();
    });

    constexpr uint logOut = 1;
    QDBusMessage end = QDBusMessage::createMethodCall(
        portal, QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    end << QString() << logOut << QVariantMap{{QStringLiteral("reason"), reason}};
    ask(m_session, end, [this](const QVariant &answer, bool isWanted) {
        const QString request = answer.value<QDBusObjectPath>().path();
        if (isWanted)
            m_logOutRequest = request;
        else
            allowLogOut(request);
    });
}

/// `isWanted` tells whether nothing else has been wanted since.
void StayAwake::ask(const QDBusConnection &bus, const QDBusMessage &question,
                    const std::function<void(const QVariant &answer, bool isWanted)> &use) {
    if (!bus.isConnected())
        return;
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, use, request = m_request] {
        if (!watcher->isError())
            use(watcher->reply().arguments().value(0), request == m_request);
        watcher->deleteLater();
    });
}

void StayAwake::allowLogOut(const QString &request) {
    if (!request.isEmpty())
        m_session.send(QDBusMessage::createMethodCall(
            portal, request, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Close")));
}

} // namespace vantrel
