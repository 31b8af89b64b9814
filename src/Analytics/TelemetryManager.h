#pragma once

#include "Analytics/TelemetryManagerConfiguration.h"

#include <QObject>
#include <QThread>

namespace vantrel {

class TelemetryWorker;

/// SHA-256 of the text and then the salt, both in UTF-8, as 64 lower-case hexadecimal digits.
[[nodiscard]] QString hashed(const QString &text, const QString &salt);

/// The preferences file of an application's analytics in a directory.
[[nodiscard]] QString preferencesPath(const QString &directory, const QString &telemetryAppID);

/// A running analytics client: gathers what belongs to a signal and hands it to a thread of its own, which
/// does all the rest. The first session begins half a second after its construction. Main thread; nothing
/// here waits for the disk or the network unless said otherwise.
class TelemetryManager : public QObject {
public:
    explicit TelemetryManager(TelemetryManagerConfiguration configuration,
                              TelemetryEnvironment environment = {});
    /// Terminates, and ends the thread; waits for the disk, not for the network.
    ~TelemetryManager() override;

    /// Records a signal. Clashing keys: what is closest to the signal wins, so its own parameters, then the
    /// enrichers', then the client's, and last the configuration's default parameters.
    void signal(const QString &name, const SignalParameters &parameters = {},
                std::optional<double> floatValue = std::nullopt,
                const std::optional<QString> &customUserID = std::nullopt);

    /// Begins a new session.
    void setSessionID(const QUuid &sessionID);
    void movedToBackground();
    /// Begins a new session when the application was away for more than five minutes.
    void returnedToForeground();
    /// Writes everything that has not been sent to the cache file. Returns when that is done or after 0.1
    /// seconds; the destructor waits for the rest. Signals recorded later are dropped.
    void aboutToTerminate();
    /// Ends the thread, and gives up everything that has not been sent or stored. Waits for the thread.
    void abandon();

private:
    /// Has the thread do it after everything posted before; false once this terminates.
    bool post(std::function<void(TelemetryWorker &)> work);
    void end();

    TelemetryManagerConfiguration m_configuration;
    const TelemetryEnvironment m_environment;
    QThread m_thread;
    TelemetryWorker *m_worker; // lives on the thread and ends with it; null once this terminates
    std::optional<QDateTime> m_backgroundSince;
};

} // namespace vantrel
