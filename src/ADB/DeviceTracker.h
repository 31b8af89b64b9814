#pragma once

#include "ADB/DeviceText.h"

#include <QObject>
#include <QProcess>

namespace vantrel {

/// `adb track-devices`: one process that stays and tells at once when a phone is plugged in or out, so that
/// nobody has to look. It ends with this object, with this process, and when what it prints makes no sense.
///
/// For the thread that it was made on, which needs an event loop; nothing here blocks.
class DeviceTracker : public QObject {
    Q_OBJECT

public:
    explicit DeviceTracker(QObject *parent = nullptr);
    ~DeviceTracker() override;

    /// Starts the process, unless it runs. Whether that goes well, changed() or ended() tells.
    void start();
    /// Ends it, silently.
    void stop();
    [[nodiscard]] bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    /// Whether it has told what is plugged in, and would tell of a change.
    [[nodiscard]] bool isTracking() const { return m_isTracking; }

Q_SIGNALS:
    /// All phones that adb knows now.
    void changed(const QList<ListedPhone> &phones);
    /// It ended by itself, or could not be started.
    void ended();

private:
    void read();
    void end();

    QProcess m_process;
    ADBClient::TrackedDevices m_devices;
    bool m_isTracking = false;
    bool m_isAwaited = false; ///< what it tells, and its end, is passed on
};

} // namespace vantrel
