#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>

#include <functional>

namespace vantrel {

/// Keeps the computer from going to sleep by itself, through the system's login manager, and lets the desktop
/// ask before it ends the session, through its portal. Where there is none, or it refuses, nothing happens.
/// Main thread; nothing here waits.
class StayAwake : public QObject {
    Q_OBJECT

public:
    /// `system` is the bus that the login manager is on, `session` that of the portal.
    StayAwake(const QDBusConnection &system, const QDBusConnection &session, QObject *parent = nullptr);
    ~StayAwake() override;

    /// From now on, or not any more. It ends with the program, too, however that ends.
    void setOn(bool isOn);

private:
    void ask(const QDBusConnection &bus, const QDBusMessage &question,
             const std::function<void(const QVariant &answer, bool isWanted)> &use);
    void allowLogOut(const QString &request);

    QDBusConnection m_system;
    QDBusConnection m_session;
    bool m_isOn = false;
    quint64 m_request = 0;          ///< the newest; what an older one is given is given back
    QDBusUnixFileDescriptor m_lock; ///< holds as long as it is open
    QString m_logOutRequest;        ///< the portal's object that holds until it is closed, or empty
};

} // namespace vantrel
