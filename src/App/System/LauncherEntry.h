#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <optional>

namespace vantrel {

using SessionBus = QDBusConnection;

/// What the program's icon in the desktop's launcher shows beside itself, through the signals that Unity
/// began with and other desktops took up. Where none listens, nothing happens. The icon is plain again when
/// this object goes. Main thread; nothing here waits.
class LauncherEntry : public QObject {
    Q_OBJECT

public:
    struct Look {
        std::optional<double> progress = {}; ///< 0 to 1; absent: no bar
        bool isUrgent = false;               ///< it asks to be looked at

        friend bool operator==(const Look &, const Look &) = default;
    };

    /// Between two changes, in milliseconds.
    static constexpr int shortestPause = 500;

    explicit LauncherEntry(const SessionBus &bus, QObject *parent = nullptr);
    ~LauncherEntry() override;

    /// However often this is called, the desktop is told at most twice a second; of the latest look always.
    void show(const Look &look);

private:
    void send();

    SessionBus m_bus;
    Look m_wanted;
    Look m_shown;
    QTimer m_pause;
};

} // namespace vantrel
