#pragma once

#include "Analytics/HttpClient.h"
#include "Analytics/LogHandler.h"
#include "Analytics/SignalPostBody.h"

#include <QReadWriteLock>
#include <QUrl>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

namespace vantrel {

/// Adds parameters to a signal, given its name, the user identifier it was recorded with and its value.
/// Called on the main thread.
using SignalEnricher = std::function<SignalParameters(
    const QString &signalType, const std::optional<QString> &clientUser, std::optional<double> floatValue)>;

/// How the client behaves.
struct TelemetryManagerConfiguration {
    /// Without a `baseURL` there is no destination, and nothing leaves the computer.
    explicit TelemetryManagerConfiguration(QString appID, QString salt = {}, QUrl baseURL = {},
                                           std::optional<QString> nameSpace = std::nullopt);

    QString telemetryAppID;
    QUrl apiBaseURL;
    std::optional<QString> nameSpace; ///< part of the service's address
    QString salt;                     ///< hashed behind the user identifier
    std::optional<QString> defaultUser;
    std::optional<QString> defaultSignalPrefix;
    std::optional<QString> defaultParameterPrefix;
    /// Called on the main thread for every signal.
    std::function<SignalParameters()> defaultParameters = [] { return SignalParameters(); };
    bool sendNewSessionBeganSignal = true;
    /// Of a running client it is set with TelemetryManager::setSessionID(), which begins a new session.
    QUuid sessionID = QUuid::createUuid();
    std::shared_ptr<HttpClient> urlSession;       ///< null: a network client of the manager's own
    int cacheLimit = 10000;                       ///< signals
    double transmitInterval = 10.0;               ///< seconds
    double maxBackoffInterval = 300.0;            ///< seconds
    bool sendSignalsInDebugConfiguration = false; ///< for the caller's use; sending does not consult it
    std::optional<bool> testMode;                 ///< unset counts as false
    std::optional<bool> previewMode;              ///< true: nothing is recorded or sent
    bool analyticsDisabled = false;               ///< true: nothing is recorded
    bool reservedParameterWarningsEnabled = true;
    bool sessionStatsEnabled = true;
    bool showDebugLogs = false; ///< true: debug messages pass whatever the handler's minimum level
    std::optional<LogHandler> logHandler = LogHandler::platformLog();
    QList<SignalEnricher> metadataEnrichers;

    /// Whether signals are to be recorded at all.
    [[nodiscard]] bool records() const { return !analyticsDisabled && !previewMode.value_or(false); }
    /// Whether a message of this level would be passed on; spares putting long ones together.
    [[nodiscard]] bool logs(LogLevel level) const;
    void log(LogLevel level, const QString &message) const;
};

/// The one configuration of a running client. Readers on any thread get an unchanging snapshot and never wait
/// for each other; a change replaces it.
class SharedConfiguration {
public:
    explicit SharedConfiguration(TelemetryManagerConfiguration configuration);

    [[nodiscard]] std::shared_ptr<const TelemetryManagerConfiguration> current() const;
    void change(const std::function<void(TelemetryManagerConfiguration &)> &edit);

private:
    mutable QReadWriteLock m_lock;
    std::shared_ptr<const TelemetryManagerConfiguration> m_current;
};

} // namespace vantrel
