#pragma once

#include "Analytics/SessionManager.h"
#include "Analytics/SignalManager.h"
#include "Analytics/TelemetryEnvironment.h"
#include "Analytics/TelemetryManagerConfiguration.h"

#include <QMutex>
#include <QObject>

namespace vantrel {

/// SHA-256 of the text and then the salt, both in UTF-8, as 64 lower-case hexadecimal digits.
[[nodiscard]] QString hashed(const QString &text, const QString &salt);

/// The preferences domain of an application's analytics.
[[nodiscard]] QString preferencesDomainName(const QString &telemetryAppID);

/// A running analytics client: takes signals, completes them and hands them on to be sent; counts sessions.
/// The first session begins half a second after its construction. Belongs to the main thread; what may be
/// called on others says so.
class TelemetryManager : public QObject {
public:
    explicit TelemetryManager(TelemetryManagerConfiguration configuration,
                              TelemetryEnvironment environment = {});
    /// Terminates, and ends the queues; waits for the disk, not for the network.
    ~TelemetryManager() override;

    /// Records a signal; never blocks. Any thread. Clashing keys: what is closest to the signal wins, so its
    /// own parameters, then the enrichers', then the client's, and last the configuration's default
    /// parameters.
    void signal(const QString &name, const SignalParameters &parameters = {},
                std::optional<double> floatValue = std::nullopt,
                const std::optional<QString> &customUserID = std::nullopt);

    /// Changes the configuration. Any thread. The session is not changed this way.
    void configure(const std::function<void(TelemetryManagerConfiguration &)> &edit) {
        m_shared->change(edit);
    }
    [[nodiscard]] const SharedConfiguration &configuration() const { return *m_shared; }

    /// Begins a new session.
    void setSessionID(const QUuid &sessionID);
    void movedToBackground();
    /// Begins a new session when the application was away for more than five minutes.
    void returnedToForeground();
    /// Writes everything that has not been sent to the cache file. Returns when that is done or after 0.1
    /// seconds; the destructor waits for the rest. Signals recorded later are dropped.
    void aboutToTerminate();

    [[nodiscard]] SignalManager &signalManager() { return m_signalManager; }

private:
    struct Recorded {
        QDateTime receivedAt;
        QUuid sessionID;
        QString name;
        SignalParameters parameters;
        std::optional<double> floatValue;
        std::optional<QString> customUserID;
    };

    void record(const QString &name, const SignalParameters &parameters, std::optional<double> floatValue,
                const std::optional<QString> &customUserID);
    void processRecorded();
    [[nodiscard]] SignalPostBody process(const Recorded &recorded);
    [[nodiscard]] QString userIdentifier();
    [[nodiscard]] SessionManager *sessions();

    const std::shared_ptr<SharedConfiguration> m_shared;
    TelemetryEnvironment m_environment;
    std::unique_ptr<SessionManager> m_sessionManager; // null while statistics are off
    SignalManager m_signalManager;

    QMutex m_recordedLock;
    QList<Recorded> m_recorded;   // wait for the main thread; only under the lock
    bool m_isTerminating = false; // only under the lock

    std::optional<QDateTime> m_backgroundSince;
    std::unique_ptr<QObject> m_firstSession;
};

} // namespace vantrel
