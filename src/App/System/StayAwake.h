#pragma once

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>

namespace vantrel {

/// Keeps the computer from going to sleep by itself, through the system's login manager. Where there is none,
/// or it refuses, nothing happens. Main thread; nothing here waits.
class StayAwake : public QObject {
    Q_OBJECT

public:
    /// `bus` is the one that the login manager is on.
    explicit StayAwake(const QDBusConnection &bus, QObject *parent = nullptr);

    /// From now on, or not any more. It ends with the program, too, however that ends.
    void setOn(bool isOn);

private:
    QDBusConnection m_bus;
    bool m_isOn = false;
    quint64 m_request = 0;          ///< the newest; what an older one is given is given back
    QDBusUnixFileDescriptor m_lock; ///< holds as long as it is open
};

} // namespace vantrel
